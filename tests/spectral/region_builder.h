#pragma once
// Small hand-made regions for the spectral tests.

#include <vector>

#include "model/project.h"
#include "model/records.h"

namespace molvera::test {

/// Fills region slot r with the given points (index 1..n), marks it as holding data
/// and makes it the current region.
inline Region& MakeRegion(Project& project, int r, const std::vector<float>& be,
                          const std::vector<float>& intensity) {
    Region& reg = project.Regions[r];
    const int n = static_cast<int>(be.size());
    ResizeRegionArrays(reg, n);
    reg.PointCount = static_cast<Int16>(n);
    for (int i = 1; i <= n; ++i) {
        reg.BindingEnergy[i] = be[i - 1];
        reg.RawIntensity[i] = intensity[i - 1];
    }
    reg.HasData = kTrue;
    project.CurrentRegion = static_cast<Int16>(r);
    return reg;
}

/// Evenly spaced binding energies from `first` down by `step`.
inline std::vector<float> FallingEnergies(int n, float first, float step) {
    std::vector<float> be(n);
    for (int i = 0; i < n; ++i) be[i] = first - step * static_cast<float>(i);
    return be;
}

/// Puts a new in-use singlet peak into the lowest free slot and region r's list.
inline int AddTestPeak(Project& project, int r, float position, float area, float fwhm, int gl) {
    int slot = FirstFreePeakSlot(project);
    Peak& p = project.Peaks[slot];
    p.InUse = kTrue;
    p.PeakType = 1;
    p.Position = position;
    p.Area = area;
    p.FWHM = fwhm;
    p.PercentGL = static_cast<Int16>(gl);
    p.TailScale = 0;
    p.TailLength = 1;
    p.Region = static_cast<Int16>(r);
    Region& reg = project.Regions[r];
    reg.PeakIndex[reg.PeakCount++] = static_cast<Int16>(slot);
    return slot;
}

}  // namespace molvera::test
