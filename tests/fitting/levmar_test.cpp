// Levenberg-Marquardt fits and the uncertainties: derivatives against finite differences,
// known peaks recovered within their uncertainties, the coverage of those uncertainties,
// and the fits that cannot run.

#include <cmath>
#include <random>
#include <tuple>
#include <vector>

#include <gtest/gtest.h>

#include "constraints/propagation.h"
#include "fit_fixture.h"
#include "fitting/driver.h"
#include "fitting/peakmodel.h"
#include "fitting/uncertainty.h"
#include "session/fitcommands.h"

namespace molvera {
namespace {

using test::KnownPeak;

/// Counting noise: every count moves by a normal deviate of its square root.
void AddNoise(Region& region, unsigned seed) {
    std::mt19937 random(seed);
    std::normal_distribution<double> normal;
    for (int j = 1; j <= region.PointCount; ++j) {
        const double y = region.RawIntensity[j];
        region.RawIntensity[j] = region.RangeIntensity[j] =
            static_cast<float>(y + std::sqrt(y) * normal(random));
    }
}

enum Op : Int16 { kPlus = 0, kTimes = 2, kDivide = 3 };

void Link(Project& project, int follower, PeakParameter g, int reference, Op op, float argument) {
    project.Constraints[follower][g] = {
        kTrue, static_cast<Int16>(reference), kFalse, 0, op, argument, kFalse, 0, 0};
    project.Constraints[reference][g].IsReference = kTrue;
}

/// Region 0 holding `truth`, with `guess` as its peaks, fitted by Levenberg-Marquardt.
struct LmFit {
    LmFit(const std::vector<KnownPeak>& truth, const std::vector<KnownPeak>& guess,
          int points = 400) {
        ClearProject(project, host);
        test::MakeSyntheticRegion(project, 0, points, truth);
        for (std::size_t i = 0; i < guess.size(); ++i)
            test::AddKnownPeak(project, 0, static_cast<int>(i), guess[i]);
        project.Options = test::TestOptions(2, 200);
    }
    FitSummary Fit() {
        ApplyAllRelations(project);
        test::Settle(project);
        return OptimiseRegionCommand(project, host);
    }
    Sigma SigmaOf(int slot, PeakParameter g) const {
        return ComputeUncertainties(project, {0}).peaks[slot].parameters[static_cast<int>(g)];
    }
    Project project;
    test::WatchingHost host;
};

TEST(LevenbergMarquardt, DerivativesMatchFiniteDifferencesForEveryShape) {
    struct Case {
        const char* name;
        bool glSum, linked;
        Subshell type;
        float tailScale, tailLength;
    };
    const Case cases[] = {
        {"product", false, false, Subshell::S, 0, 0},
        {"sum", true, false, Subshell::S, 0, 0},
        {"sum with tail", true, false, Subshell::S, 0.4f, 1.5f},
        {"product p doublet", false, false, Subshell::P, 0, 0},
        {"sum d doublet with tail", true, false, Subshell::D, 0.3f, 2.0f},
        {"product f doublet", false, false, Subshell::F, 0, 0},
        {"links +, x and /", true, true, Subshell::S, 0, 0},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        LmFit f({{284.8f, 1000, 1.3f, 30}, {286.5f, 500, 1.4f, 30}},
                {{284.6f, 900, 1.2f, 40}, {286.7f, 450, 1.5f, 60}}, 300);
        f.project.Options.GLSum = c.glSum ? kTrue : kFalse;
        for (int p : {0, 1}) {
            Peak& peak = f.project.Peaks[p];
            std::tie(peak.FixGL, peak.PeakType, peak.TailScale, peak.TailLength) =
                std::tuple(0, c.type, c.tailScale, c.tailLength);
            peak.Splitting = 1.1f + 0.4f * static_cast<float>(p);
        }
        if (c.linked) {
            Link(f.project, 1, PeakParameter::Position, 0, kPlus, 1.9f);
            Link(f.project, 1, PeakParameter::FWHM, 0, kTimes, 1.2f);
            Link(f.project, 1, PeakParameter::Area, 0, kDivide, 2.0f);
        }
        ApplyAllRelations(f.project);
        const FitModel model(f.project, {0}, {0});
        ASSERT_EQ(model.FreeCount(), c.linked ? 5 : 8);
        // Away from the whole-number %GL where the tables' interpolation has a kink.
        std::vector<double> theta = model.Start();
        for (int i = 0; i < model.FreeCount(); ++i)
            theta[i] += model.Free()[i].which == PeakParameter::GL ? 0.37 : 0.013 * (1 + i % 3);
        const int m = model.ResidualCount(), n = model.FreeCount();
        std::vector<double> r(m), jac(static_cast<std::size_t>(m) * n), up(m), down(m);
        ASSERT_TRUE(model.Evaluate(theta.data(), r.data(), jac.data()));
        for (int i = 0; i < n; ++i) {
            const double h = 1e-6 * std::max(1.0, std::fabs(theta[i]));
            std::vector<double> t = theta;
            t[i] = theta[i] + h;
            model.Evaluate(t.data(), up.data(), nullptr);
            t[i] = theta[i] - h;
            model.Evaluate(t.data(), down.data(), nullptr);
            double scale = 0, worst = 0;
            for (int j = 0; j < m; ++j) {
                const double analytic = jac[static_cast<std::size_t>(j) * n + i];
                scale = std::max(scale, std::fabs(analytic));
                worst = std::max(worst, std::fabs(analytic - (up[j] - down[j]) / (2 * h)));
            }
            EXPECT_GT(scale, 0) << "parameter " << i;
            EXPECT_LT(worst, 1e-5 * scale) << "parameter " << i;
        }
    }
}

TEST(LevenbergMarquardt, RecoversKnownPeaksWithinThreeSigmaWithLinksAndLimits) {
    // Peak 1 has peak 0's width and half its area; rough starting values.
    const std::vector<KnownPeak> truth{
        {284.8f, 1200, 1.3f, 30}, {286.3f, 600, 1.3f, 30}, {288.9f, 300, 1.6f, 30}};
    LmFit f(truth, {{285.1f, 900, 1.0f, 30}, {286.0f, 780, 1.0f, 30}, {289.2f, 210, 1.3f, 30}});
    AddNoise(f.project.Regions[0], 7);
    Link(f.project, 1, PeakParameter::FWHM, 0, kTimes, 1.0f);
    Link(f.project, 1, PeakParameter::Area, 0, kDivide, 2.0f);
    f.project.Constraints[0].FWHM = {kFalse, 0, kTrue, 1, 0, 0, kTrue, 0.8f, 2.0f};
    f.project.Constraints[2].Position = {kFalse, 0, kFalse, 0, 0, 0, kTrue, 288.0f, 290.0f};
    const FitSummary summary = f.Fit();
    EXPECT_TRUE(summary.method == "Levenberg-Marquardt" && summary.note.empty());
    EXPECT_NEAR(summary.reducedChiSquare, 1.0, 0.2) << "counting noise weighted by 1/R";

    for (int p = 0; p < 3; ++p) {
        SCOPED_TRACE(p);
        const Peak& peak = f.project.Peaks[p];
        const std::tuple<PeakParameter, float, float> values[] = {
            {PeakParameter::Position, peak.Position, truth[p].position},
            {PeakParameter::FWHM, peak.FWHM, truth[p].fwhm},
            {PeakParameter::Area, peak.Area, truth[p].area}};
        for (const auto& [g, fitted, known] : values) {
            const Sigma s = f.SigmaOf(p, g);
            ASSERT_EQ(s.state, Sigma::State::Value) << ParameterName(g);
            EXPECT_LT(std::fabs(fitted - known), 3 * s.value) << ParameterName(g);
        }
    }
    // Linked values are where propagation puts them, limits hold.
    Project propagated = f.project;
    ApplyAllRelations(propagated);
    EXPECT_EQ(f.project.Peaks, propagated.Peaks);
    EXPECT_EQ(f.project.Peaks[1].FWHM, f.project.Peaks[0].FWHM);
    EXPECT_TRUE(f.project.Peaks[0].FWHM >= 0.8f && f.project.Peaks[0].FWHM <= 2.0f);
    // A linked value's uncertainty follows its reference's: area / 2 has half the sigma.
    EXPECT_DOUBLE_EQ(f.SigmaOf(1, PeakParameter::Area).value,
                     f.SigmaOf(0, PeakParameter::Area).value / 2);
}

TEST(LevenbergMarquardt, AboutTwoThirdsOfFittedPositionsLieWithinOneSigma) {
    const std::vector<KnownPeak> truth{{284.8f, 1200, 1.3f, 30}, {286.2f, 700, 1.5f, 30}};
    int inside = 0, total = 0;
    for (unsigned seed = 1; seed <= 150; ++seed) {
        LmFit f(truth, {{284.9f, 1100, 1.2f, 30}, {286.1f, 800, 1.4f, 30}}, 300);
        AddNoise(f.project.Regions[0], seed);
        f.Fit();
        const Uncertainties u = ComputeUncertainties(f.project, {0});
        for (int p : {0, 1}) {
            const Sigma& s = u.peaks[p].parameters[0];
            ASSERT_EQ(s.state, Sigma::State::Value);
            inside += std::fabs(f.project.Peaks[p].Position - truth[p].position) < s.value;
            ++total;
        }
    }
    // 68.3 % expected; 300 positions give a binomial spread of 2.7 %.
    EXPECT_NEAR(static_cast<double>(inside) / total, 0.683, 0.09) << inside << " of " << total;
}

TEST(LevenbergMarquardt, OptimiseAllFitsRegionsTiedByALinkTogether) {
    Project project;
    test::RecordingHost host;
    ClearProject(project, host);
    test::MakeSyntheticRegion(project, 0, 300, {{284.8f, 1000, 1.3f, 30}});
    test::MakeSyntheticRegion(project, 1, 300, {{286.3f, 700, 1.4f, 30}});
    test::AddKnownPeak(project, 0, 0, {285.1f, 800, 1.1f, 30});
    test::AddKnownPeak(project, 1, 1, {286.0f, 800, 1.2f, 30});
    Link(project, 1, PeakParameter::Position, 0, kPlus, 1.5f);
    project.Options = test::TestOptions(2, 200);
    ApplyAllRelations(project);
    test::Settle(project);
    const FitSummary summary = OptimiseAllCommand(project, host);
    EXPECT_NEAR(project.Peaks[0].Position, 284.8f, 1e-3);
    EXPECT_EQ(project.Peaks[1].Position, project.Peaks[0].Position + 1.5f);
    EXPECT_NEAR(project.Peaks[1].Area, 700, 1);
    EXPECT_LT(summary.chiSquareAfter, 1e-3f * summary.chiSquareBefore);
}

TEST(LevenbergMarquardt, TwoIdenticalPeaksAtOnePlaceAreNotDetermined) {
    LmFit f({{285.0f, 1000, 1.3f, 30}}, {{285.0f, 500, 1.3f, 30}, {285.0f, 500, 1.3f, 30}});
    AddNoise(f.project.Regions[0], 3);
    f.Fit();
    for (int p : {0, 1})
        EXPECT_EQ(SigmaText(f.SigmaOf(p, PeakParameter::Position)), "\xB1 not determined");
}

TEST(LevenbergMarquardt, StopsWhenAskedAndRefusesWhatCannotBeFitted) {
    // Stop Fitting at the first iteration keeps that iteration's better values.
    LmFit stop({{284.8f, 1200, 1.3f, 30}}, {{285.3f, 700, 1.0f, 30}});
    int yields = 0;
    stop.host.onYield = [&] {
        // BeginFit yields once, then every iteration from iteration 0 (the start).
        if (++yields == 3) stop.project.StopRequested = true;
    };
    const FitSummary stopped = stop.Fit();
    EXPECT_TRUE(stopped.stopped && stopped.iterations <= 1);
    EXPECT_LT(stopped.chiSquareAfter, stopped.chiSquareBefore);

    LmFit fixed({{284.8f, 1200, 1.3f, 30}}, {{285.3f, 700, 1.0f, 30}});
    Peak& peak = fixed.project.Peaks[0];
    peak.FixPosition = peak.FixArea = peak.FixFWHM = 1;
    EXPECT_EQ(fixed.Fit().note, "nothing to fit: every peak parameter is fixed or linked");
    EXPECT_EQ(peak.Position, 285.3f);

    LmFit nan({{284.8f, 1200, 1.3f, 30}}, {{285.3f, 700, 1.0f, 30}});
    nan.project.Regions[0].RangeIntensity[17] = std::nanf("");
    EXPECT_EQ(nan.Fit().note, "the chi-square is not finite at the start");
    EXPECT_EQ(nan.project.Peaks[0].Position, 285.3f);
}

}  // namespace
}  // namespace molvera
