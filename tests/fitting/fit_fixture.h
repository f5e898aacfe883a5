#pragma once
// Synthetic regions for the fitting tests: known peaks on a smooth step background.

#include <algorithm>
#include <cmath>
#include <functional>
#include <tuple>
#include <vector>

#include "model/project.h"
#include "spectral/envelope.h"
#include "spectral/lineshape.h"
#include "support/recording_host.h"

namespace molvera::test {

struct KnownPeak {
    float position = 285;
    float area = 1000;
    float fwhm = 1.2f;
    Int16 gl = 30;
};

/// Region r with n points from 296 eV down in 0.05 eV steps: a step background
/// (higher on the high-BE side) plus the known peaks. Range = all points.
inline void MakeSyntheticRegion(Project& project, int r, int n,
                                const std::vector<KnownPeak>& peaks) {
    Region& region = project.Regions[r];
    ResizeRegionArrays(region, n);
    region.HasData = region.HasBackground = kTrue;
    region.PeakCount = 0;
    region.ChiSquare = 0;
    region.RangeStart = 1;
    region.PointCount = region.RangeEnd = region.RangeCount = static_cast<Int16>(n);
    for (int j = 1; j <= n; ++j) {
        const double e = 296.0 - 0.05 * (j - 1);
        const double b = 500.0 + 300.0 / (1.0 + std::exp((285.0 - e) / 0.7));
        double y = b;
        for (const KnownPeak& k : peaks)
            y += PeakValue(false, e, k.position, k.area, k.fwhm, k.gl, 0, Subshell::S, 0, 0);
        region.BindingEnergy[j] = region.RangeBE[j] = static_cast<float>(e);
        region.RawIntensity[j] = region.RangeIntensity[j] = static_cast<float>(y);
        region.BackgroundCurve[j] = region.BackgroundWork[j] = static_cast<float>(b);
    }
    region.MaxBE = region.BindingEnergy[1];
    region.MinBE = region.BindingEnergy[n];
    double netMax = 0;
    for (int j = 1; j <= n; ++j)
        netMax = std::max(netMax, double(region.RangeIntensity[j]) - region.BackgroundCurve[j]);
    region.NetMax = static_cast<float>(netMax);
    region.NetScale = static_cast<float>(netMax / 100);
}

/// A peak slot in region r with the given values (GL product, singlet, %GL fixed).
inline int AddKnownPeak(Project& project, int r, int slot, const KnownPeak& k) {
    Region& region = project.Regions[r];
    Peak& peak = project.Peaks[slot];
    peak.InUse = kTrue;
    peak.Region = static_cast<Int16>(r);
    peak.PeakType = Subshell::S;
    std::tie(peak.Position, peak.Area, peak.FWHM, peak.PercentGL) =
        std::tie(k.position, k.area, k.fwhm, k.gl);
    peak.FixPosition = peak.FixArea = peak.FixFWHM = 0;
    peak.FixGL = 1;
    peak.HeightPercent =
        AreaToHeightPercent(false, region.NetScale, k.area, k.fwhm, k.gl, Subshell::S, 0, 0);
    ResizePeakCurve(project, slot, region.PointCount);
    region.PeakIndex[region.PeakCount++] = static_cast<Int16>(slot);
    ++project.TotalPeakCount;
    return slot;
}

/// Every region's curves and the total, as after loading a project.
inline void Settle(Project& project) { RecomputeRegionsWithBackground(project, QuietHost()); }

/// Coarse-to-fine options for both methods.
inline FitOptions TestOptions(float method, int trials) {
    FitOptions o;
    o.Method = method;
    o.SearchTrials = o.NewtonTrials = static_cast<Int16>(trials);
    o.Tolerance = 0;
    o.PositionSearch[0] = {kTrue, 1.0f, 0.1f};
    o.PositionSearch[1] = {kTrue, 0.1f, 0.01f};
    o.AreaSearch[0] = {kTrue, 10.0f, 1.0f};
    o.AreaSearch[1] = {kTrue, 1.0f, 0.1f};
    o.FWHMSearch[0] = {kTrue, 0.5f, 0.05f};
    o.FWHMSearch[1] = {kTrue, 0.05f, 0.005f};
    o.PositionNewton[0] = o.AreaNewton[0] = o.FWHMNewton[0] = {kTrue, 0.02f};
    return o;
}

/// A host that calls back at every chi-square report: during a Region-mode trial this is
/// the moment the trial value sits in the peak.
class WatchingHost : public RecordingHost {
public:
    std::function<void()> onChi;
    std::function<void()> onYield;
    void ChiSquareChanged(int region, float value) override {
        RecordingHost::ChiSquareChanged(region, value);
        if (onChi) onChi();
    }
    void Yield() override {
        RecordingHost::Yield();
        if (onYield) onYield();
    }
};

}  // namespace molvera::test
