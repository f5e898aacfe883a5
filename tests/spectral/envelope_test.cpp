#include "spectral/envelope.h"

#include <algorithm>
#include <cmath>
#include <functional>
#include <limits>
#include <thread>

#include <gtest/gtest.h>

#include "base/numtext.h"
#include "constraints/propagation.h"
#include "spectral/lineshape.h"
#include "spectral/region_builder.h"
#include "support/recording_host.h"

namespace molvera {
namespace {

using test::AddTestPeak;
using test::RecordingHost;

using test::WholeRange;

class EnvelopeTest : public ::testing::Test {
protected:
    Project project;
    RecordingHost host;
};

TEST_F(EnvelopeTest, NoPeaksLeavesBackgroundAsEnvelopeAndWeightsZeroCountsByOne) {
    Region& reg = WholeRange(project, 2, {5, 4, 3, 2}, {10, 0, -4, 6}, {8, 2, 1, 6});
    ComputeRegionEnvelope(project, host);
    // Residuals 2, -2, -5, 0; weights 10, 1 (zero count), 4, 6.
    const float res[] = {2, -2, -5, 0};
    for (int j = 1; j <= 4; ++j) {
        EXPECT_EQ(reg.PeakSumCurve[j], reg.BackgroundCurve[j]);
        EXPECT_EQ(reg.Residual[j], res[j - 1]);
    }
    const double chi = (4.0 / 10 + 4.0 / 1 + 25.0 / 4 + 0) / 4;
    EXPECT_FLOAT_EQ(reg.ChiSquare, chi);
    EXPECT_EQ(host.ChiText(2), FormatGeneral(reg.ChiSquare));
    EXPECT_EQ(reg.PeakSumCurve[0], 0.0f);  // element 0 untouched
}

TEST_F(EnvelopeTest, PeaksSitOnTheBackgroundAndAdd) {
    Region& reg =
        WholeRange(project, 0, {3, 2, 1, 0, -1}, {20, 40, 90, 40, 20}, {10, 10, 10, 10, 10});
    reg.Shift = 0.5f;
    const int a = AddTestPeak(project, 0, 0.5f, 60, 1.2f, 40);
    const int b = AddTestPeak(project, 0, 0.5f, 60, 1.2f, 40);
    ComputeRegionEnvelope(project, host);
    for (int j = 1; j <= 5; ++j) {
        // Position 0.5 plus the shift 0.5 puts both peaks at 1.0 eV.
        const float one = PeakValue(false, reg.RangeBE[j], 1.0, 60, 1.2, 40, 0, Subshell::S, 0, 1);
        EXPECT_FLOAT_EQ(project.Peaks[a].Curve[j], one + 10) << j;
        EXPECT_EQ(project.Peaks[b].Curve[j], project.Peaks[a].Curve[j]);
        EXPECT_FLOAT_EQ(reg.PeakSumCurve[j], 10 + 2 * one) << j;
        EXPECT_FLOAT_EQ(reg.Residual[j], reg.RangeIntensity[j] - reg.PeakSumCurve[j]);
    }
    // The top of the envelope carries both peaks: no saturation.
    EXPECT_GT(reg.PeakSumCurve[3] - 10, 1.9f * (project.Peaks[a].Curve[3] - 10));
}

TEST_F(EnvelopeTest, TrialAfterResidualWithoutPeakEqualsEnvelopeChiSquare) {
    std::vector<float> be, y, bg;
    for (int i = 0; i < 60; ++i) {
        be.push_back(290 - 0.1f * i);
        y.push_back(100 + 80 * std::exp(-std::pow((be.back() - 286.5f) / 0.8f, 2.0f)) + (i % 7));
        bg.push_back(100 + 0.05f * i);
    }
    Region& reg = WholeRange(project, 1, be, y, bg);
    const int p1 = AddTestPeak(project, 1, 286.4f, 120, 1.4f, 30);
    const int p2 = AddTestPeak(project, 1, 287.9f, 20, 1.0f, 60);
    project.Peaks[p2].PeakType = Subshell::P;
    project.Peaks[p2].Splitting = 0.9f;
    {
        ComputeRegionEnvelope(project, host);
        const float chi = reg.ChiSquare;
        const SingleArray envelope = reg.PeakSumCurve;
        for (int q : {p1, p2}) {
            ResidualWithoutPeak(project, q);
            EXPECT_NEAR(TrialChiSquare(project, q), chi, 1e-5 * chi) << q;
            EXPECT_EQ(reg.ChiSquare, chi);  // neither call changes it
        }
        // A worse trial value scores worse; the residual stays as ResidualWithoutPeak left it.
        ResidualWithoutPeak(project, p1);
        const SingleArray residual = reg.Residual;
        project.Peaks[p1].Position += 1.0f;
        EXPECT_GT(TrialChiSquare(project, p1), chi);
        EXPECT_EQ(reg.Residual, residual);
        project.Peaks[p1].Position -= 1.0f;
        EXPECT_NE(reg.PeakSumCurve, envelope);  // without p1
    }
}

/// The region computed from nothing: in a thread of its own, which has reused nothing.
Project Fresh(const Project& project) {
    Project fresh = project;
    std::thread([&fresh] { RecomputeRegionsWithBackground(fresh, QuietHost()); }).join();
    return fresh;
}

TEST_F(EnvelopeTest, ReusedCurvesAndBatchedTrialsGiveTheBitsOfAFreshComputation) {
    // 70 points: two whole blocks of the line-shape loops and a rest.
    std::vector<float> be, y, bg;
    for (int i = 0; i < 70; ++i) {
        be.push_back(290 - 0.1f * static_cast<float>(i));
        bg.push_back(100 + 0.5f * static_cast<float>(i));
        y.push_back(bg.back() + 90 * std::exp(-std::pow((be.back() - 286.5f) / 0.8f, 2.0f)));
    }
    for (const bool glSum : {false, true}) {
        SCOPED_TRACE(glSum);
        project = Project{};
        project.Options.GLSum = glSum ? kTrue : kFalse;
        Region& reg = WholeRange(project, 1, be, y, bg);
        const int a = AddTestPeak(project, 1, 286.4f, 120, 1.4f, 30);
        const int b = AddTestPeak(project, 1, 287.9f, 20, 1.0f, 60);
        const int c = AddTestPeak(project, 1, 285.0f, 30, 1.2f, 0);
        project.Peaks[a].TailScale = 0.4f;
        project.Peaks[b].PeakType = Subshell::P;
        project.Peaks[b].Splitting = 0.9f;
        auto& link = project.Constraints[b][PeakParameter::Position];
        link.Linked = kTrue;
        link.RefPeak = static_cast<Int16>(a);
        link.Argument = 1.5f;
        project.Constraints[a][PeakParameter::Position].IsReference = kTrue;
        // Each change, then the envelope as a fit computes it, against a fresh one.
        const std::vector<std::function<void()>> changes{
            [] {},
            [&] {
                project.Peaks[a].Position += 0.3f;
                Propagate(project, PeakParameter::Position, a);
            },
            [&] { reg.BackgroundCurve[40] += 1; },
            [&] { project.Peaks[c].Curve[3] = 0; },
            [&] { reg.RangeBE[69] -= 0.05f; },
            [&] { reg.Shift = 0.2f; },
        };
        for (std::size_t i = 0; i < changes.size(); ++i) {
            changes[i]();
            ComputeRegionEnvelope(project, host);
            const Project fresh = Fresh(project);
            EXPECT_EQ(reg, fresh.Regions[1]) << i;
            for (int q : {a, b, c}) {
                EXPECT_EQ(project.Peaks[q].Curve, fresh.Peaks[q].Curve) << i;
                // Point by point, with every exponential (the far tails of peak c are left
                // out above, where they cannot change the curve).
                for (int j = 1; j <= 70; ++j) {
                    const double v = PeakValue(glSum, project.Peaks[q], reg.RangeBE[j], reg.Shift);
                    ASSERT_EQ(project.Peaks[q].Curve[j],
                              static_cast<float>(v + reg.BackgroundCurve[j]))
                        << i << " " << q << " " << j;
                }
            }
        }

        // Trials four at a time, and area trials through the kept factors, as one by one.
        for (const auto field : {&Peak::Position, &Peak::Area}) {
            std::vector<float> values{285.9f, 286.0f, 286.4f, 300, 286.1f, 286.2f};
            if (field == &Peak::Area) std::ranges::for_each(values, [](float& v) { v /= 10; });
            ResidualWithoutPeak(project, b);
            std::vector<float> one;
            for (float v : values) {
                project.Peaks[b].*field = v;
                one.push_back(TrialChiSquare(project, b));
            }
            const SingleArray curve = project.Peaks[b].Curve;
            std::vector<float> batched(values.size());
            AreaTrialCache cache(reg);
            TrialChiSquares(project, b, project.Peaks[b].*field, values, batched, &cache);
            EXPECT_EQ(batched, one);
            EXPECT_EQ(project.Peaks[b].Curve, curve);
            EXPECT_EQ(project.Peaks[b].*field, values.back());
        }
    }
}

TEST_F(EnvelopeTest, TotalChiSquareBookkeeping) {
    WholeRange(project, 0, {2, 1, 0}, {5, 9, 4}, {4, 4, 4});
    AddTestPeak(project, 0, 1, 5, 1, 50);
    WholeRange(project, 4, {2, 1, 0}, {3, 7, 3}, {1, 1, 1});
    AddTestPeak(project, 4, 1, 4, 1, 50);
    WholeRange(project, 6, {2, 1, 0}, {3, 3, 3}, {2, 2, 2});  // background, no peaks

    project.CurrentRegion = 0;
    ComputeRegionEnvelope(project, host);
    const float chi0 = project.Regions[0].ChiSquare;
    EXPECT_FLOAT_EQ(project.TotalChiSquare, chi0);
    ComputeRegionEnvelope(project, host);  // replaces its own share
    EXPECT_FLOAT_EQ(project.TotalChiSquare, chi0);
    EXPECT_EQ(host.MainTexts().totalChiSquare, FormatGeneral(project.TotalChiSquare));

    // All regions with a background and peaks; region 6 has no peaks.
    project.CurrentRegion = 6;
    project.TotalChiSquare = 123;
    project.Regions[6].ChiSquare = 55;
    RecomputeAllRegions(project, host);
    EXPECT_EQ(project.CurrentRegion, 6);
    EXPECT_EQ(project.Regions[6].ChiSquare, 55);
    EXPECT_FLOAT_EQ(project.TotalChiSquare,
                    project.Regions[0].ChiSquare + project.Regions[4].ChiSquare);

    // Every region with a background is taken, with a background, peaks or not.
    RecordingHost shown;
    RecomputeRegionsWithBackground(project, shown);
    const float chi6 = (1.0f / 3 + 1.0f / 3 + 1.0f / 3) / 3;
    EXPECT_FLOAT_EQ(project.Regions[6].ChiSquare, chi6);
    const float sum = project.Regions[0].ChiSquare + project.Regions[4].ChiSquare + chi6;
    EXPECT_FLOAT_EQ(project.TotalChiSquare, sum);
    EXPECT_EQ(std::count_if(shown.MainTexts().chiSquare.begin(), shown.MainTexts().chiSquare.end(),
                            [](const std::string& t) { return !t.empty(); }),
              3);

    // Quiet: the region's chi-square and box, the total left alone.
    project.CurrentRegion = 4;
    project.Peaks[project.Regions[4].PeakIndex[0]].Area = 8;
    RecordingHost quiet;
    ComputeRegionEnvelopeKeepingTotal(project, quiet);
    EXPECT_FLOAT_EQ(project.TotalChiSquare, sum);
    EXPECT_EQ(quiet.ChiText(4), FormatGeneral(project.Regions[4].ChiSquare));
    EXPECT_EQ(quiet.MainTexts().totalChiSquare, "0");  // never reported
}

TEST_F(EnvelopeTest, ArithmeticFailuresAreSkipped) {
    Region& reg = WholeRange(project, 0, {2, 1, 0}, {5, 9, 4}, {4, 4, 4});
    const int q = AddTestPeak(project, 0, 1, 5, 0, 50);  // FWHM 0
    project.Peaks[q].Curve.assign(4, 7.0f);
    ComputeRegionEnvelope(project, host);
    // Every curve value is undefined with a width of 0: the old values stay.
    EXPECT_EQ(project.Peaks[q].Curve, SingleArray(4, 7.0f));
    EXPECT_TRUE(std::isfinite(reg.ChiSquare) && std::isfinite(project.TotalChiSquare));

    // m = 0 gives a chi-square of 0.
    reg.RangeCount = 0;
    reg.ChiSquare = 3;
    ComputeRegionEnvelope(project, host);
    EXPECT_EQ(std::pair(reg.ChiSquare, host.ChiText(0)), std::pair(0.0f, std::string("0")));
}

}  // namespace
}  // namespace molvera
