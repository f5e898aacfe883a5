#pragma once
// Background range and curve of the current region.

#include "model/host.h"
#include "model/records.h"

namespace molvera {

/// Range, end averages, background, net scale, peak areas/heights (KeepAreas rule),
/// then ComputeRegionEnvelope.
void RecomputeRegion(Project& project, Host& host);

/// StartAverage, EndAverage, RangeIntensity[1] and RangeIntensity[m].
void AverageEndPoints(Region& region);

/// Shirley background (with the linear slope BackgroundParameter), 30 passes.
void ComputeShirley(Region& region);

/// Tougaard background with B1 = BackgroundParameter.
void ComputeTougaard(Region& region);

/// The "Area (I*eV)" of the background dialog.
double NetArea(const Region& region);

/// MaxBE, MinBE, MaxIntensity, MinIntensity from points 1..PointCount.
void UpdateDataExtents(Region& region);

}  // namespace molvera
