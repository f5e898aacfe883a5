#pragma once
// Peak curves, envelope, residual and chi-square of a region.

#include "model/host.h"
#include "model/records.h"

namespace molvera {

/// RangeCount bounded by the lengths of the region's six range arrays; never negative.
int UsableRangeCount(const Region& region);

/// All curves, envelope, residual and ChiSquare of the current region; updates its
/// share of TotalChiSquare and the chi-square boxes.
void ComputeRegionEnvelope(Project& project, Host& host);

/// The same curves and ChiSquare (shown in the region's chi-square box); TotalChiSquare is
/// left to the caller.
void RecomputeRegionQuiet(Project& project, Host& host);

/// ComputeRegionEnvelope for every region with a background and peaks, then the
/// total as their sum; CurrentRegion is restored.
void RecomputeAllRegions(Project& project, Host& host);

/// Curves and ChiSquare of every region with a background; TotalChiSquare as their
/// sum; every such chi-square box and the total are shown.
void RecomputeAllRegionsShown(Project& project, Host& host);

/// As RecomputeAllRegionsShown, without touching the window.
void RecomputeAllRegionsSilent(Project& project);

/// Every peak curve of the current region, then PeakSumCurve and Residual without
/// peak q; ChiSquare unchanged.
void ResidualWithoutPeak(Project& project, int q);

/// Region chi-square for q's present parameters after ResidualWithoutPeak(q):
/// one peak evaluation per range point, no allocation. Overwrites q's Curve only.
float TrialChiSquare(Project& project, int q);

}  // namespace molvera
