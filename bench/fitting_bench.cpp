// Fitting speed: one Newton step, and Optimise Region by both methods (BenchOptions) on a
// 5000-point region with 4 and with 10 peaks; on a full project, the unsaved-changes check
// and the undo history.

#include <cmath>
#include <memory>

#include <benchmark/benchmark.h>

#include "bench_options.h"
#include "fitting/driver.h"
#include "fitting/newton.h"
#include "model/project.h"
#include "session/history.h"
#include "session/mainwindow.h"
#include "session/peakdrag.h"
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

/// One step of dragging a peak's apex in a 10-peak, 5000-point region: the peak editor's
/// Accept with the new position and height, the peak's curve, the envelope, residual and
/// chi-square (the repaint is BM_PlotPaint's).
void BM_DragPeakStep(benchmark::State& state) {
    auto project = std::make_unique<Project>();
    MakeRegion(*project, 10);
    project->Options = BenchOptions(1);
    const PlotPoint apex = *PeakApex(*project, 4);
    SessionHost host;
    double dx = 0;
    for (auto _ : state) {
        dx = dx > 0.5 ? -0.5 : dx + 0.01;
        benchmark::DoNotOptimize(DragPeakApex(*project, host, 4, {apex.be + dx, apex.i}));
    }
}
BENCHMARK(BM_DragPeakStep)->Unit(benchmark::kMillisecond);

/// Ten 5000-point regions with 46 peaks: ten in the first, four in each of the others.
std::unique_ptr<Project> FullProject() {
    auto project = std::make_unique<Project>();
    MakeRegion(*project, 10);
    int slot = 10;
    for (int r = 1; r < kRegionCount; ++r) {
        Region& region = project->Regions[r];
        region = project->Regions[0];
        region.PeakCount = 4;
        for (int k = 0; k < 4; ++k, ++slot) {
            project->Peaks[slot] = project->Peaks[k];
            project->Peaks[slot].Region = static_cast<Int16>(r);
            project->SavedPeaks[slot] = project->Peaks[slot];
            region.PeakIndex[k] = static_cast<Int16>(slot);
        }
    }
    RecomputeRegionsWithBackground(*project, QuietHost());
    return project;
}

/// The main window's once-a-second check for unsaved changes: the file bytes of the
/// full project compared with those of the last save.
void BM_UnsavedChangesCheck(benchmark::State& state) {
    auto project = FullProject();
    SavedProject saved;
    saved.Mark(*project, "full.xps");
    for (auto _ : state) benchmark::DoNotOptimize(saved.Changed(*project));
}
BENCHMARK(BM_UnsavedChangesCheck)->Unit(benchmark::kMillisecond);

/// The undo history after every click or key: `changed` 0, the check alone; 1, a peak
/// moved first, so that the whole project is kept as a step. The counter is the memory
/// of one step.
void BM_UndoRecord(benchmark::State& state) {
    auto project = FullProject();
    UndoHistory history;
    history.Reset(*project);
    for (auto _ : state) {
        if (state.range(0) != 0) project->Peaks[0].Position += 0.001f;
        benchmark::DoNotOptimize(history.Record(*project));
    }
    state.counters["MB_per_step"] =
        static_cast<double>(history.Bytes()) / static_cast<double>(history.Steps() + 1) / 1e6;
    state.counters["steps_kept"] = static_cast<double>(history.Steps());
}
BENCHMARK(BM_UndoRecord)->ArgName("changed")->Arg(0)->Arg(1)->Unit(benchmark::kMillisecond);

/// Undo and Redo of one step of the full project, the whole project reported each time.
void BM_UndoRedo(benchmark::State& state) {
    auto project = FullProject();
    UndoHistory history;
    history.Reset(*project);
    project->Peaks[0].Position += 0.1f;
    history.Record(*project);
    SessionHost host;
    for (auto _ : state) {
        history.Undo(*project, host);
        history.Redo(*project, host);
    }
}
BENCHMARK(BM_UndoRedo)->Unit(benchmark::kMillisecond);

}  // namespace
}  // namespace molvera
