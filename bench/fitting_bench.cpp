// Fitting speed: one Newton step, and Optimise Region by both methods (BenchOptions) on a
// 5000-point region with 4 and with 10 peaks; the unsaved-changes check of a full project.

#include <cmath>
#include <memory>

#include <benchmark/benchmark.h>

#include "bench_options.h"
#include "fitting/driver.h"
#include "fitting/newton.h"
#include "model/project.h"
#include "session/mainwindow.h"
#include "spectral/envelope.h"
#include "spectral/lineshape.h"

namespace molvera {
namespace {

/// A 5000-point region with `peaks` peaks spread over it, started a little off.
void MakeRegion(Project& project, int peaks) {
    ClearProject(project, QuietHost());
    Region& region = project.Regions[0];
    const int n = kMaxPoints;
    ResizeRegionArrays(region, n);
    region.HasData = region.HasBackground = kTrue;
    region.PointCount = region.RangeCount = region.RangeEnd = static_cast<Int16>(n);
    region.RangeStart = 1;
    for (int j = 1; j <= n; ++j) {
        const double e = 300.0 - 0.005 * (j - 1);
        const double b = 500.0 + 300.0 / (1.0 + std::exp((287.5 - e) / 1.0));
        double y = b;
        for (int k = 0; k < peaks; ++k) {
            y += PeakValue(false, e, 277.0 + 21.0 * (k + 0.5) / peaks, 800, 1.2, 30, 0, Subshell::S,
                           0, 0);
        }
        region.BindingEnergy[j] = region.RangeBE[j] = static_cast<float>(e);
        region.RawIntensity[j] = region.RangeIntensity[j] = static_cast<float>(y);
        region.BackgroundCurve[j] = region.BackgroundWork[j] = static_cast<float>(b);
    }
    region.NetScale = 10;
    for (int k = 0; k < peaks; ++k) {
        Peak& p = project.Peaks[k];
        p.InUse = kTrue;
        p.PeakType = Subshell::S;
        p.Position = static_cast<float>(277.0 + 21.0 * (k + 0.5) / peaks + 0.2);
        p.Area = 700;
        p.FWHM = 1.3f;
        p.PercentGL = 30;
        p.FixGL = 1;
        p.HeightPercent = AreaToHeightPercent(project, p);
        ResizePeakCurve(project, k, n);
        region.PeakIndex[k] = static_cast<Int16>(k);
    }
    region.PeakCount = static_cast<Int16>(peaks);
    RecomputeRegionsWithBackground(project, QuietHost());
}

void BM_NewtonStep(benchmark::State& state) {
    Project project;
    MakeRegion(project, 10);
    project.Options = BenchOptions(1);
    for (auto _ : state) {
        bool improved = false;
        NewtonPosition(project, QuietHost(), 3, 0.01f, improved);
        benchmark::DoNotOptimize(improved);
    }
}
BENCHMARK(BM_NewtonStep)->Unit(benchmark::kMicrosecond);

void BM_OptimiseRegion(benchmark::State& state) {
    const float method = static_cast<float>(state.range(0));
    const int peaks = static_cast<int>(state.range(1));
    for (auto _ : state) {
        state.PauseTiming();
        Project project;
        MakeRegion(project, peaks);
        project.Options = BenchOptions(method);
        state.ResumeTiming();
        OptimiseRegion(project, QuietHost());
        benchmark::DoNotOptimize(project.TotalChiSquare);
    }
}
BENCHMARK(BM_OptimiseRegion)
    ->ArgNames({"newton", "peaks"})
    ->Args({0, 4})
    ->Args({0, 10})
    ->Args({1, 4})
    ->Args({1, 10})
    ->Unit(benchmark::kMillisecond);

/// The main window's once-a-second check for unsaved changes: the file bytes of ten
/// 5000-point regions (ten peaks in the first), compared with those of the last save.
void BM_UnsavedChangesCheck(benchmark::State& state) {
    auto project = std::make_unique<Project>();
    MakeRegion(*project, 10);
    for (int r = 1; r < kRegionCount; ++r) {
        project->Regions[r] = project->Regions[0];
        project->Regions[r].PeakCount = 0;  // the 51 peak slots are shared by all regions
    }
    SavedProject saved;
    saved.Mark(*project, "full.xps");
    for (auto _ : state) benchmark::DoNotOptimize(saved.Changed(*project));
}
BENCHMARK(BM_UnsavedChangesCheck)->Unit(benchmark::kMillisecond);

}  // namespace
}  // namespace molvera
