#pragma once
// Small hand-made regions for the spectral tests.

#include <tuple>
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

/// Region r whose background range is its whole spectrum: end averages of one point,
/// BackgroundWork the straight line between the ends, and `bg` (if given) as its
/// background curve.
inline Region& WholeRange(Project& project, int r, const std::vector<float>& be,
                          const std::vector<float>& y, const std::vector<float>& bg = {}) {
    Region& reg = MakeRegion(project, r, be, y);
    const int m = static_cast<int>(be.size());
    reg.RangeStart = 1;
    reg.RangeEnd = static_cast<Int16>(m);
    reg.RangeCount = static_cast<Int16>(m);
    reg.EndPointAverage = 1;
    reg.StartAverage = y.front();
    reg.EndAverage = y.back();
    const double step = m > 1 ? (double(y.back()) - y.front()) / (m - 1) : 0;
    for (int j = 1; j <= m; ++j) {
        reg.RangeBE[j] = be[j - 1];
        reg.RangeIntensity[j] = y[j - 1];
        reg.BackgroundWork[j] = static_cast<float>(y.front() + (j - 1) * step);
        if (!bg.empty()) reg.BackgroundCurve[j] = bg[j - 1];
    }
    reg.HasBackground = bg.empty() ? kFalse : kTrue;
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
    std::tie(p.InUse, p.PeakType, p.Position, p.Area, p.FWHM, p.TailScale, p.TailLength) =
        std::tuple(kTrue, Subshell::S, position, area, fwhm, 0.0f, 1.0f);
    p.PercentGL = static_cast<Int16>(gl);
    p.Region = static_cast<Int16>(r);
    Region& reg = project.Regions[r];
    reg.PeakIndex[reg.PeakCount++] = static_cast<Int16>(slot);
    return slot;
}

}  // namespace molvera::test
