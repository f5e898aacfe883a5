#pragma once
// Background range and curve of the current region.

#include "model/host.h"
#include "model/records.h"

namespace molvera {

/// Range, end averages, background, net scale, peak areas/heights (KeepAreas rule),
/// then ComputeRegionEnvelope.
void RecomputeRegion(Project& project, Host& host);

/// RangeBE and RangeIntensity 1..RangeCount: the spectrum from point RangeStart on.
void CopyRangeFromSpectrum(Region& region);

/// StartAverage, EndAverage, RangeIntensity[1] and RangeIntensity[m].
void AverageEndPoints(Region& region);

/// BackgroundCurve of the region's BackgroundType from the range and BackgroundWork (the
/// linear background); a type without a name leaves it as it is.
void ComputeBackground(Region& region);

/// NetMax and NetMin: the extremes of RangeIntensity - BackgroundCurve, NetMax at least 0.
/// Worked in Double, with the result of Single: the Double difference of two Singles
/// rounds to their Single difference.
void MeasureNetRange(Region& region);

/// Shirley background (with the linear slope BackgroundParameter), 30 passes.
void ComputeShirley(Region& region);

/// Tougaard background with B1 = BackgroundParameter.
void ComputeTougaard(Region& region);

/// The "Area (I*eV)" of the background dialog.
double NetArea(const Region& region);

/// MaxBE, MinBE, MaxIntensity, MinIntensity from points 1..PointCount.
void UpdateDataExtents(Region& region);

}  // namespace molvera
