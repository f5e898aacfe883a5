// The cost of the desktop program during a fit: a 10-peak, 5000-point Optimise Region
// with the GUI host and the region window's plot visible, against the same fit with a
// quiet host. Goal: the GUI fit takes at most 1.2 times the quiet one.

#include <cmath>
#include <memory>

#include <benchmark/benchmark.h>

#include <QApplication>
#include <QSettings>
#include <QTemporaryDir>
#include <QThread>

#include "bench_options.h"
#include "fitting/driver.h"
#include "model/project.h"
#include "session/fitcommands.h"
#include "spectral/background.h"
#include "spectral/envelope.h"
#include "spectral/lineshape.h"
#include "ui/gui.h"
#include "ui/plotwidget.h"
#include "ui/regionwindow.h"
#include "ui/usersink.h"

namespace molvera {
namespace {

QApplication& App() {
    static int argc = 1;
    static char name[] = "molvera_bench";
    static char* argv[] = {name, nullptr};
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM")) qputenv("QT_QPA_PLATFORM", "offscreen");
    // Never destroyed: a QApplication torn down among the static destructors after main()
    // crashes on Qt's own statics already gone.
    static QApplication* app = new QApplication(argc, argv);
    static const QTemporaryDir settings;  // the windows' geometry goes there, not to the user's
    QSettings::setPath(QSettings::NativeFormat, QSettings::UserScope, settings.path());
    return *app;
}

class SilentSink : public ui::UserSink {
    void Message(const QString&, bool) override {}
    bool AskYesNo(const QString&, const QString&) override { return false; }
    SaveChangesAnswer AskSaveChanges(const QString&) override { return SaveChangesAnswer::Cancel; }
    void Beep() override {}
};

class NoFiles : public ui::FileChooser {
    QString OpenFile(const QString&, const QString&, const QString&) override { return {}; }
    QString SaveFile(const QString&, const QString&, const QString&) override { return {}; }
};

/// Region 0: 5000 points with ten peaks on a step, a linear background over all of it,
/// and ten peaks started a little off; Newton's method with ten trials.
void PrepareFit(Project& project) {
    Region& region = project.Regions[0];
    const int n = kMaxPoints;
    ResizeRegionArrays(region, n);
    region.PointCount = static_cast<Int16>(n);
    for (int j = 1; j <= n; ++j) {
        const double e = 300.0 - 0.005 * (j - 1);
        double y = 500.0 + 300.0 / (1.0 + std::exp((287.5 - e) / 1.0));
        for (int k = 0; k < 10; ++k)
            y += PeakValue(false, e, 278.0 + 2.0 * k, 800, 1.2, 30, 0, Subshell::S, 0, 0);
        region.BindingEnergy[j] = static_cast<float>(e);
        region.RawIntensity[j] = static_cast<float>(y);
    }
    region.HasData = kTrue;
    UpdateDataExtents(region);
    region.BackgroundType = BackgroundKind::Linear;
    region.EndPointAverage = 1;
    region.BackgroundLowBE = region.MinBE;
    region.BackgroundHighBE = region.MaxBE;
    region.HasBackground = kTrue;
    project.CurrentRegion = 0;
    RecomputeRegion(project, QuietHost());
    for (int k = 0; k < 10; ++k) {
        Peak& p = project.Peaks[static_cast<std::size_t>(k)];
        p.InUse = kTrue;
        p.PeakType = Subshell::S;
        p.Region = 0;
        p.Position = static_cast<float>(278.0 + 2.0 * k + 0.2);
        p.FWHM = 1.3f;
        p.PercentGL = 30;
        p.FixGL = 1;
        p.HeightPercent = 40;
        p.Area = HeightPercentToArea(project, p);
        ResizePeakCurve(project, k, region.RangeCount);
        region.PeakIndex[static_cast<std::size_t>(k)] = static_cast<Int16>(k);
    }
    region.PeakCount = 10;
    ComputeRegionEnvelope(project, QuietHost());
    project.Options = BenchOptions(1);
}

void BM_OptimiseRegionQuiet(benchmark::State& state) {
    auto project = std::make_unique<Project>();
    SessionHost quiet;  // as in molvera-cli: texts kept, nothing shown
    for (auto _ : state) {
        state.PauseTiming();
        ClearProject(*project, quiet);
        PrepareFit(*project);
        state.ResumeTiming();
        OptimiseRegionCommand(*project, quiet);
        benchmark::DoNotOptimize(project->TotalChiSquare);
    }
}
BENCHMARK(BM_OptimiseRegionQuiet)->Unit(benchmark::kMillisecond);

void BM_OptimiseRegionGui(benchmark::State& state) {
    App();
    SilentSink sink;
    NoFiles files;
    ui::Gui gui(sink, files);
    gui.Start(std::string(MOLVERA_SOURCE_DIR) + "/default.opa");
    int paints = 0;
    for (auto _ : state) {
        state.PauseTiming();
        ClearProject(gui.project(), gui.host());
        PrepareFit(gui.project());
        // The region is on screen before Optimise Region is pressed.
        const int shown = gui.regionWindow().Plot()->PaintCount();
        gui.host().RegionInView();
        for (int i = 0; i < 200 && gui.regionWindow().Plot()->PaintCount() == shown; ++i) {
            QThread::msleep(1);
            gui.host().Yield();
        }
        const int before = gui.regionWindow().Plot()->PaintCount();
        state.ResumeTiming();
        OptimiseRegionCommand(gui.project(), gui.host());
        gui.regionWindow().Plot()->RedrawNow();  // the final picture belongs to the fit
        paints += gui.regionWindow().Plot()->PaintCount() - before;
        benchmark::DoNotOptimize(gui.project().TotalChiSquare);
    }
    state.counters["paints"] = benchmark::Counter(paints, benchmark::Counter::kAvgIterations);
}
BENCHMARK(BM_OptimiseRegionGui)->Unit(benchmark::kMillisecond);

/// One paint of the fitted 10-peak, 5000-point region in the region window, with its
/// residual panel. Goal: at most 5 ms.
void BM_PlotPaint(benchmark::State& state) {
    App();
    SilentSink sink;
    NoFiles files;
    ui::Gui gui(sink, files);
    gui.Start(std::string(MOLVERA_SOURCE_DIR) + "/default.opa");
    ClearProject(gui.project(), gui.host());
    PrepareFit(gui.project());
    gui.host().RegionInView();
    for (auto _ : state) gui.regionWindow().Plot()->RedrawNow();
}
BENCHMARK(BM_PlotPaint)->Unit(benchmark::kMillisecond);

}  // namespace
}  // namespace molvera
