#pragma once
// How the optimisers score a trial value of one parameter of one peak.

#include "model/host.h"
#include "model/records.h"

namespace molvera {

/// Alone: only the peak changes (TrialChiSquare). Region: peaks of this region follow
/// it (region ChiSquare). AllRegions: peaks of other regions follow it (TotalChiSquare).
enum class ScoreMode { Alone, Region, AllRegions };

/// The mode for parameter group `g` of peak p: Alone unless p is a reference; then
/// AllRegions when an in-use peak naming p as RefPeak lies outside CurrentRegion.
ScoreMode ChooseScoreMode(const Project& project, PeakParameter g, int p);

/// The Single field of position, area or FWHM.
float& ParameterField(Peak& peak, PeakParameter g);

/// Score of the value now in peak p: Alone TrialChiSquare; Region propagate and
/// ComputeRegionEnvelope, region ChiSquare; AllRegions propagate and
/// RecomputeRegionsWithBackground (quietly), TotalChiSquare.
float ScoreTrial(Project& project, Host& host, ScoreMode mode, PeakParameter g, int p);

/// Brings every curve and chi-square up to date with the value now in peak p:
/// Alone ComputeRegionEnvelope; Region propagate and ComputeRegionEnvelope;
/// AllRegions propagate and RecomputeRegionsWithBackground.
void SettleProject(Project& project, Host& host, ScoreMode mode, PeakParameter g, int p);

/// True for a peak slot number 0..50.
inline bool IsPeakSlot(int p) { return p >= 0 && p < kPeakSlots; }

}  // namespace molvera
