#include "fitting/search.h"

#include <vector>

#include <gtest/gtest.h>

#include "fit_fixture.h"
#include "fitting/driver.h"

namespace molvera {
namespace {

// One peak (area 1000, FWHM 1.2 eV, 30 %GL) at 285 eV in the data and in slot 0.
class SearchTest : public ::testing::Test {
protected:
    void SetUp() override {
        ClearProject(project, host);
        test::MakeSyntheticRegion(project, 0, 400, {{285.0f, 1000, 1.2f, 30}});
        test::AddKnownPeak(project, 0, 0, {285.0f, 1000, 1.2f, 30});
        project.Options = test::TestOptions(0, 1);
    }
    /// Makes peak 0 a reference of peak 1 (same region) in group g: Region mode, in which
    /// every trial value shows at the chi-square report; they are recorded in `seen`.
    template <class T>
    void WatchTrials(PeakParameter g, T Peak::*field, std::vector<T>& seen) {
        test::AddKnownPeak(project, 0, 1, {290.0f, 10, 1.0f, 30});
        // Position +5 eV, area x0.01, FWHM x1, %GL +0: the follower stays out of the way.
        const Int16 ops[] = {0, 2, 2, 0};
        const float args[] = {5.0f, 0.01f, 1.0f, 0.0f};
        const int k = static_cast<int>(g);
        project.Constraints[1][g] = {kTrue, 0, kFalse, 0, ops[k], args[k], kFalse, 0, 0};
        project.Constraints[0][g].IsReference = kTrue;
        test::Settle(project);
        host.onChi = [this, field, &seen] { seen.push_back(project.Peaks[0].*field); };
    }
    Project project;
    test::WatchingHost host;
};

// Trials from x - range to x + range by step, both ends included and x itself left out,
// then the finishing envelope with the best value; limits clamp the trials.
TEST_F(SearchTest, GridOfALevelIncludesBothEndsSkipsZeroAndIsClampedByLimits) {
    std::vector<float> seen;
    WatchTrials(PeakParameter::Position, &Peak::Position, seen);
    project.Options.PositionSearch = {};
    project.Options.PositionSearch[0] = {kTrue, 1.0f, 0.25f};
    project.Options.PositionSearch[1] = {kTrue, 1.0f, 0.0f};   // step 0: skipped
    project.Options.PositionSearch[2] = {kFalse, 1.0f, 0.5f};  // not in use
    SearchPosition(project, host, 0);
    EXPECT_EQ(seen, (std::vector<float>{284.0f, 284.25f, 284.5f, 284.75f, 285.25f, 285.5f, 285.75f,
                                        286.0f, 285.0f}));  // nothing beats 285

    // From 284 with the true peak beyond the high limit: the first of equal scores wins.
    seen.clear();
    project.Peaks[0].Position = 284.0f;
    project.Constraints[0][PeakParameter::Position] = {kFalse, 0,     kTrue, 0,     0,
                                                       0,      kTrue, 283,   284.5f};
    test::Settle(project);
    SearchPosition(project, host, 0);
    EXPECT_EQ(seen, (std::vector<float>{283.0f, 283.25f, 283.5f, 283.75f, 284.25f, 284.5f, 284.5f,
                                        284.5f, 284.5f}));
    EXPECT_EQ(project.Peaks[0].Position, 284.5f);
}

TEST_F(SearchTest, AreaIsSearchedThroughHeightBelow110) {
    std::vector<float> seen;
    WatchTrials(PeakParameter::Area, &Peak::Area, seen);
    Peak& peak = project.Peaks[0];
    const float netScale = project.Current().NetScale;
    const auto area = [&](double h) {
        return HeightPercentToArea(false, netScale, h, 1.2f, 30, Subshell::S, 0, 0);
    };
    peak.HeightPercent = 105;
    peak.Area = area(105);
    test::Settle(project);
    seen.clear();
    project.Options.AreaSearch = {};
    project.Options.AreaSearch[0] = {kTrue, 10.0f, 1.0f};
    SearchArea(project, host, 0);
    std::vector<float> expected;
    for (int h = 95; h <= 109; ++h)
        if (h != 105) expected.push_back(area(h));
    seen.pop_back();  // the finishing envelope
    EXPECT_EQ(seen, expected);
    // The true height is 100: the best trial is the 95..109 value closest to it.
    EXPECT_FLOAT_EQ(peak.HeightPercent,
                    AreaToHeightPercent(false, netScale, peak.Area, 1.2f, 30, Subshell::S, 0, 0));
    EXPECT_NEAR(peak.Area, 1000.0f, 1000 * 0.06);
    EXPECT_LT(peak.Area, area(105));
}

TEST_F(SearchTest, GLCoarseThenFine) {
    std::vector<Int16> seen;
    project.Peaks[0].PercentGL = 80;
    WatchTrials(PeakParameter::GL, &Peak::PercentGL, seen);
    SearchGL(project, host, 0);
    // The data were made with 30 %: the coarse best is 30, then 21..39 without 30.
    std::vector<Int16> expected{0, 10, 20, 30, 40, 50, 60, 70, 80, 90, 100};
    for (int d = -9; d <= 9; ++d)
        if (d != 0) expected.push_back(static_cast<Int16>(30 + d));
    expected.push_back(30);
    EXPECT_EQ(seen, expected);
    EXPECT_EQ(project.Peaks[0].PercentGL, 30);
}

TEST_F(SearchTest, ALinkedParameterIsNotSearched) {
    test::AddKnownPeak(project, 0, 1, {287.0f, 300, 1.5f, 30});
    project.Constraints[0][PeakParameter::Position].Linked = kTrue;
    project.Constraints[0][PeakParameter::Position].RefPeak = 1;
    project.Peaks[0].Position = 284.0f;
    project.Peaks[0].Area = 1000;
    test::Settle(project);
    test::RecordingHost quiet;
    SearchPosition(project, quiet, 0);
    EXPECT_EQ(std::pair(project.Peaks[0].Position, quiet.yields), std::pair(284.0f, 0));
}

TEST_F(SearchTest, AllRegionsModeScoresTrialsByTheTotal) {
    // Peak 5 in region 1 follows peak 0's position (+0); region 1's data have their peak
    // 0.4 eV higher, so the best shared position lies between the two.
    test::MakeSyntheticRegion(project, 1, 400, {{285.4f, 3000, 1.2f, 30}});
    test::AddKnownPeak(project, 1, 5, {285.0f, 3000, 1.2f, 30});
    project.Constraints[5][PeakParameter::Position].Linked = kTrue;
    project.Constraints[5][PeakParameter::Position].RefPeak = 0;
    project.Constraints[0][PeakParameter::Position].IsReference = kTrue;
    test::Settle(project);
    project.Options.PositionSearch = {};
    project.Options.PositionSearch[0] = {kTrue, 0.5f, 0.05f};
    // Brute force over the same grid with the total chi-square.
    Project probe = project;
    float bestTotal = probe.TotalChiSquare;
    float bestPos = 285.0f;
    for (int k = 0; k <= 20; ++k) {
        const double d = -0.5 + k * static_cast<double>(0.05f);
        if (d == 0 || d > 0.5) continue;
        probe.Peaks[0].Position = probe.Peaks[5].Position = static_cast<float>(285.0 + d);
        RecomputeRegionsWithBackground(probe, QuietHost());
        if (probe.TotalChiSquare < bestTotal)
            bestTotal = probe.TotalChiSquare, bestPos = probe.Peaks[0].Position;
    }
    SearchPosition(project, host, 0);
    EXPECT_EQ(project.Peaks[0].Position, bestPos);
    EXPECT_EQ(project.Peaks[5].Position, bestPos);
    EXPECT_GT(bestPos, 285.0f);  // the region's own optimum (285) would be wrong
    EXPECT_FLOAT_EQ(project.TotalChiSquare, bestTotal);
}

// Regression: a search level over a grid of a million trials (fine step, wide range, as
// an option file can give) still lets Stop Fitting through.
TEST(SearchStop, MillionTrialGridYieldsAndEndsOnStop) {
    Project project;
    test::MakeSyntheticRegion(project, 0, 40, {{294.5f, 1000, 1.3f, 30}});
    test::AddKnownPeak(project, 0, 0, {294.3f, 900, 1.2f, 30});
    test::Settle(project);
    project.Options = test::TestOptions(0, 1);
    project.Options.PositionSearch[0] = {kTrue, 1000.0f, 0.0001f};  // 2e7 steps, capped
    const float start = project.TotalChiSquare;
    test::WatchingHost stopper;
    int yields = 0;
    stopper.onYield = [&] {
        if (++yields == 3) project.StopRequested = true;
    };
    BeginFit(project, stopper);
    yields = 0;
    SearchPosition(project, stopper, 0);
    // Three yields inside the grid, Stop pressed at the third (after 3 * 1024 of the
    // million trials), then the parameter step's own yield.
    EXPECT_EQ(yields, 4);
    EXPECT_TRUE(project.StopRequested);
    // The best value found so far is kept and the region is consistent with it.
    EXPECT_LE(project.TotalChiSquare, start);
    Project check = project;
    test::Settle(check);
    EXPECT_FLOAT_EQ(check.TotalChiSquare, project.TotalChiSquare);
}

}  // namespace
}  // namespace molvera
