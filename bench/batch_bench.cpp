// Series speed: spectra per second of molvera-cli batch's core on 1 and 2 workers, a
// 3-peak C 1s model fitted by Levenberg-Marquardt to 500-point spectra.

#include <algorithm>
#include <cmath>
#include <random>
#include <string>
#include <vector>

#include <benchmark/benchmark.h>

#include "base/numtext.h"
#include "cli/batch.h"
#include "fileio/optionfile.h"
#include "fileio/regionparams.h"
#include "model/project.h"
#include "session/backgroundform.h"
#include "session/peakform.h"
#include "spectral/lineshape.h"

namespace molvera {
namespace {

constexpr int kSpectra = 32;
constexpr int kPoints = 500;

/// Spectrum `index` of the series: C-C, C-O and O-C=O lines whose shares drift along the
/// series, on a Shirley-like step, with Poisson-like noise.
ImportedSpectrum SeriesSpectrum(int index) {
    ImportedSpectrum s;
    std::mt19937 rng(static_cast<unsigned>(index) + 1);
    const double shift = 0.2 * index / kSpectra;
    for (int j = 0; j < kPoints; ++j) {
        const double e = 295.0 - 0.03 * j;
        double y = 200.0 + 100.0 / (1.0 + std::exp((287.0 - e) / 1.0));
        y += PeakValue(false, e, 284.8, 3000.0 - 40.0 * index, 1.3, 30, 0, Subshell::S, 0, 0);
        y +=
            PeakValue(false, e, 286.4 + shift, 800.0 + 30.0 * index, 1.4, 30, 0, Subshell::S, 0, 0);
        y += PeakValue(false, e, 288.9, 400.0, 1.5, 30, 0, Subshell::S, 0, 0);
        std::normal_distribution<double> noise(0.0, std::sqrt(y));
        s.energy.push_back(static_cast<float>(e));
        s.intensity.push_back(static_cast<float>(y + noise(rng)));
    }
    return s;
}

/// The model: a Shirley background over 281..294 eV and three peaks started off their lines.
std::string ModelBytes(const cli::SeriesSpectrum& first, const FitOptions& options) {
    Project project;
    Host& host = QuietHost();
    ClearProject(project, host);
    project.Options = options;
    ImportedData data;
    data.spectra.push_back(first.spectrum);
    (void)StoreImport(project, host, data, first.format->policy).status;
    BackgroundForm background;
    ShowBackgroundDialog(project, background);
    background.lowBEText = "281";
    background.highBEText = "294";
    background.averagePoints = "None";
    background.backgroundType = "Shirley";
    (void)AcceptBackground(project, host, background);
    for (const char* position : {"284.6", "286.7", "288.6"}) {
        PeakForm form;
        AddPeakAndEdit(project, host, form);
        form.positionText = position;
        form.fwhmText = "1.2";
        form.areaText = "1000";
        (void)AcceptPeakEditor(project, host, form);
    }
    return RegionParameterBytes(project);
}

void BM_BatchSeries(benchmark::State& state) {
    FitOptions options;
    (void)ReadOptionFile(options, MOLVERA_SOURCE_DIR "/default.opa");
    options.Method = 2;  // Levenberg-Marquardt
    std::vector<cli::SeriesSpectrum> series;
    std::vector<int> indices;
    for (int i = 0; i < kSpectra; ++i) {
        series.push_back({"synthetic", i + 1, FindImportFormat("ascii"), SeriesSpectrum(i), {}});
        indices.push_back(i);
    }
    const std::string model = ModelBytes(series[0], options);
    std::string rows;
    for (auto _ : state) {
        rows =
            cli::FitSeriesRows(series, indices, model, options, static_cast<int>(state.range(0)));
        benchmark::DoNotOptimize(rows.data());
    }
    // Every spectrum fitted: three peak rows each, none with a reason.
    if (rows.find(",\n") == std::string::npos ||
        static_cast<int>(std::count(rows.begin(), rows.end(), '\n')) != 3 * kSpectra)
        state.SkipWithError("not every spectrum was fitted");
    state.SetItemsProcessed(state.iterations() * kSpectra);
}
BENCHMARK(BM_BatchSeries)
    ->ArgName("jobs")
    ->Arg(1)
    ->Arg(2)
    ->UseRealTime()
    ->Unit(benchmark::kMillisecond);

}  // namespace
}  // namespace molvera
