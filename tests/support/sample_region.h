#pragma once
// A small measured spectrum in a region slot, for tests of the region's files and dialogs.

#include <cmath>

#include "model/project.h"
#include "model/records.h"
#include "spectral/background.h"

namespace molvera::test {

/// Fills region `r` with n points from `highBE` down in steps of `step` eV: a peak
/// at 285 eV on a step that is 100 higher on the high binding-energy side.
inline void FillSampleRegion(Project& project, int r, int n = 11, float highBE = 290.0f,
                             float step = 1.0f) {
    Region& region = project.Regions[r];
    ResizeRegionArrays(region, n);
    region.PointCount = static_cast<Int16>(n);
    for (int i = 1; i <= n; ++i) {
        const float be = highBE - step * static_cast<float>(i - 1);
        const double x = (be - 285.0) / 1.2;
        region.BindingEnergy[i] = be;
        region.RawIntensity[i] =
            static_cast<float>(200.0 + 1000.0 * std::exp(-x * x) + (be > 285.0f ? 100.0 : 0.0));
    }
    region.HasData = kTrue;
    UpdateDataExtents(region);
}

/// A Shirley background over the whole data of region `r`, which becomes current.
inline void GiveSampleBackground(Project& project, int r) {
    project.CurrentRegion = static_cast<Int16>(r);
    Region& region = project.Regions[r];
    region.BackgroundType = BackgroundKind::Shirley;
    region.BackgroundParameter = 0;
    region.EndPointAverage = 1;
    region.BackgroundLowBE = region.MinBE;
    region.BackgroundHighBE = region.MaxBE;
    region.HasBackground = kTrue;
    RecomputeRegion(project, QuietHost());
}

/// A peak in use in `slot`, listed by region `r` (marked as holding data), with only what
/// quantification reads: label, position and area.
inline void AddQuantPeak(Project& project, int r, int slot, const char* label, float position,
                         float area) {
    Region& region = project.Regions[r];
    region.HasData = kTrue;
    region.PeakIndex[region.PeakCount++] = static_cast<Int16>(slot);
    Peak& peak = project.Peaks[slot];
    peak.InUse = kTrue;
    peak.Label = Text20::From(label);
    peak.Position = position;
    peak.Area = area;
}

}  // namespace molvera::test
