// Speed of the fitting hot path and of the Tougaard background.

#include <algorithm>
#include <array>
#include <cmath>

#include <benchmark/benchmark.h>

#include "model/project.h"
#include "spectral/background.h"
#include "spectral/envelope.h"
#include "spectral/lineshape.h"

namespace {

using namespace molvera;

/// Region 0 with m evenly spaced points over a C 1s-like spectrum on a linear
/// background, three peaks (one a doublet), the range covering everything.
void FillProject(Project& project, int m, bool glSum) {
    Region& reg = project.Regions[0];
    ResizeRegionArrays(reg, m);
    reg.PointCount = static_cast<Int16>(m);
    reg.RangeCount = static_cast<Int16>(m);
    reg.HasData = kTrue;
    reg.HasBackground = kTrue;
    const float step = 20.0f / static_cast<float>(m);
    for (int j = 1; j <= m; ++j) {
        const float be = 295 - step * static_cast<float>(j);
        const float y = 200 + 30 * static_cast<float>(j) / m +
                        900 * std::exp(-std::pow((be - 285) / 0.9f, 2.0f)) +
                        200 * std::exp(-std::pow((be - 287) / 1.1f, 2.0f));
        reg.BindingEnergy[j] = reg.RangeBE[j] = be;
        reg.RawIntensity[j] = reg.RangeIntensity[j] = y;
        reg.BackgroundCurve[j] = 230 - 30 * static_cast<float>(j) / m;
    }
    const float positions[] = {285, 286.5f, 288};
    for (int k = 0; k < 3; ++k) {
        Peak& p = project.Peaks[k];
        p.InUse = kTrue;
        p.PeakType = k == 2 ? Subshell::P : Subshell::S;
        p.Splitting = 0.8f;
        p.Position = positions[k];
        p.Area = 1500;
        p.FWHM = 1.2f;
        p.PercentGL = 30;
        p.TailScale = k == 0 ? 0.3f : 0;
        p.TailLength = 2;
        p.Region = 0;
        reg.PeakIndex[k] = static_cast<Int16>(k);
        ResizePeakCurve(project, k, m);
    }
    reg.PeakCount = 3;
    project.Options.GLSum = glSum ? kTrue : kFalse;
    project.CurrentRegion = 0;
}

void BM_TrialChiSquare(benchmark::State& state) {
    static Project project;
    FillProject(project, static_cast<int>(state.range(0)), state.range(1) != 0);
    ResidualWithoutPeak(project, 0);
    // The trial position steps back and forth so that the peak stays where it is
    // however many iterations run.
    float step = 0.001f;
    for (auto _ : state) {
        project.Peaks[0].Position += step;
        step = -step;
        benchmark::DoNotOptimize(TrialChiSquare(project, 0));
    }
    state.SetItemsProcessed(state.iterations() * state.range(0));
}
BENCHMARK(BM_TrialChiSquare)->ArgsProduct({{500, 2000, 5000}, {0, 1}})->ArgNames({"m", "glSum"});

/// The floor of a trial: the line shape evaluated as fast as it is (block by block) and
/// the same serial sum as TrialChiSquare, without the curve, the checks or the project
/// around them. The goal: BM_TrialChiSquare within 1.5 times this.
void BM_TrialChiSquareReference(benchmark::State& state) {
    static Project project;
    const int m = static_cast<int>(state.range(0));
    FillProject(project, m, state.range(1) != 0);
    ResidualWithoutPeak(project, 0);
    const Region& reg = project.Regions[0];
    const float* E = reg.RangeBE.data();
    const float* R = reg.RangeIntensity.data();
    const float* B = reg.BackgroundCurve.data();
    const float* res = reg.Residual.data();
    float step = 0.001f;
    std::array<float, kShapeBlock> v{};
    for (auto _ : state) {
        project.Peaks[0].Position += step;
        step = -step;
        const PeakShape shape(state.range(1) != 0, project.Peaks[0], reg.Shift);
        float acc = 0;
        for (int j0 = 1; j0 <= m; j0 += kShapeBlock) {
            const int n = std::min(kShapeBlock, m + 1 - j0);
            shape.Values(E + j0, n, v.data());
            for (int k = 0; k < n; ++k) {
                const int j = j0 + k;
                const double c = static_cast<float>(static_cast<double>(v[k]) + B[j]);
                const double d = static_cast<double>(res[j]) - (c - B[j]);
                const double w = R[j] == 0 ? 1.0 : std::fabs(static_cast<double>(R[j]));
                acc = static_cast<float>(acc + d * d / w);
            }
        }
        benchmark::DoNotOptimize(static_cast<float>(static_cast<double>(acc) / m));
    }
    state.SetItemsProcessed(state.iterations() * state.range(0));
}
BENCHMARK(BM_TrialChiSquareReference)
    ->ArgsProduct({{500, 2000, 5000}, {0, 1}})
    ->ArgNames({"m", "glSum"});

void BM_ComputeTougaard(benchmark::State& state) {
    static Project project;
    FillProject(project, static_cast<int>(state.range(0)), false);
    Region& reg = project.Regions[0];
    reg.BackgroundParameter = 3000;
    for (int j = 1; j <= reg.RangeCount; ++j) reg.BackgroundWork[j] = reg.BackgroundCurve[j];
    for (auto _ : state) {
        ComputeTougaard(reg);
        benchmark::DoNotOptimize(reg.BackgroundCurve.data());
    }
}
BENCHMARK(BM_ComputeTougaard)->Arg(5000)->Unit(benchmark::kMillisecond);

}  // namespace
