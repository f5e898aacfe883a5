#include "fitting/newton.h"

#include <vector>

#include <gtest/gtest.h>

#include "fit_fixture.h"

namespace molvera {
namespace {

class NewtonTest : public ::testing::Test {
protected:
    void SetUp() override {
        ClearProject(project, host);
        test::MakeSyntheticRegion(project, 0, 400, {{285.3f, 1000, 2.0f, 30}});
        test::AddKnownPeak(project, 0, 0, {285.0f, 1000, 2.0f, 30});
        project.Options = test::TestOptions(1, 5);
        test::Settle(project);
    }
    static ParameterConstraint Limits(float low, float high) {
        return {kFalse, 0, kFalse, 0, 0, 0, kTrue, low, high};
    }
    Project project;
    test::WatchingHost host;
};

TEST_F(NewtonTest, SamplesInOrderThenMovesTowardTheMinimum) {
    // Region mode (a follower in the region) exposes each sample through the chi-square box.
    test::AddKnownPeak(project, 0, 1, {290.0f, 1, 1.0f, 30});
    project.Constraints[1][PeakParameter::Position] = {kTrue, 0, kFalse, 0, 0, 5.0f, kFalse, 0, 0};
    project.Constraints[0][PeakParameter::Position].IsReference = kTrue;
    test::Settle(project);
    std::vector<float> seen;
    host.onChi = [&] { seen.push_back(project.Peaks[0].Position); };
    bool improved = false;
    NewtonPosition(project, host, 0, 0.01f, improved);
    ASSERT_EQ(seen.size(), 13u);
    const int order[] = {6, 5, 4, 3, 2, 1, -1, -2, -3, -4, -5, -6};
    for (int i = 0; i < 12; ++i)
        EXPECT_EQ(seen[i], static_cast<float>(285.0 + order[i] * double(0.01f))) << i;
    EXPECT_TRUE(improved);
    EXPECT_GT(project.Peaks[0].Position, 285.1f);
    EXPECT_EQ(project.Peaks[1].Position, project.Peaks[0].Position + 5.0f);
}

TEST_F(NewtonTest, HighLimitCapsTheStepExactly) {
    project.Constraints[0][PeakParameter::Position] = Limits(284.0f, 285.1f);
    bool improved = false;
    NewtonPosition(project, host, 0, 0.01f, improved);
    EXPECT_TRUE(improved);
    EXPECT_EQ(project.Peaks[0].Position, 285.1f);
}

TEST_F(NewtonTest, AreaNeverDropsBelowOneTenth) {
    // The data hold no peak at all, so the best area is 0 and the estimate lies below 0.1.
    ClearProject(project, host);
    test::MakeSyntheticRegion(project, 0, 400, {});
    test::AddKnownPeak(project, 0, 0, {285.0f, 0.5f, 2.0f, 30});
    test::Settle(project);
    bool improved = false;
    NewtonArea(project, host, 0, 0.01f, improved);
    EXPECT_TRUE(improved);
    EXPECT_EQ(project.Peaks[0].Area, 0.1f);
}

TEST_F(NewtonTest, NoInfluenceMeansNoStep) {
    project.Peaks[0].Area = 0;
    test::Settle(project);
    const float chi = project.Regions[0].ChiSquare;
    bool improved = true;
    NewtonPosition(project, host, 0, 0.01f, improved);
    EXPECT_FALSE(improved);
    EXPECT_EQ(project.Peaks[0].Position, 285.0f);
    EXPECT_EQ(project.Regions[0].ChiSquare, chi);
}

TEST_F(NewtonTest, EqualScoreCountsAsImproved) {
    // Limits pinning the area to its value: the step lands on x0 and scores the same.
    project.Constraints[0][PeakParameter::Area] = Limits(1000, 1000);
    bool improved = false;
    NewtonArea(project, host, 0, 10.0f, improved);
    EXPECT_TRUE(improved);
    EXPECT_EQ(project.Peaks[0].Area, 1000.0f);
}

TEST_F(NewtonTest, WorseStepIsUndoneAndProjectConsistent) {
    // A high limit far on the wrong side forces a step that scores worse.
    project.Constraints[0][PeakParameter::Position] = Limits(280, 283);
    const Region before = project.Regions[0];
    bool improved = true;
    NewtonPosition(project, host, 0, 0.01f, improved);
    EXPECT_FALSE(improved);
    EXPECT_EQ(project.Peaks[0].Position, 285.0f);
    EXPECT_TRUE(project.Regions[0].PeakSumCurve == before.PeakSumCurve);
    EXPECT_EQ(project.Regions[0].ChiSquare, before.ChiSquare);
}

TEST_F(NewtonTest, FWHMSamplesAtOrBelowZeroAreTolerated) {
    project.Peaks[0].FWHM = 0.05f;
    test::Settle(project);
    bool improved = true;
    NewtonFWHM(project, host, 0, 0.5f, improved);  // samples down to 0.05 - 3 eV
    EXPECT_TRUE(std::isfinite(project.Peaks[0].FWHM));
    EXPECT_TRUE(std::isfinite(project.Regions[0].ChiSquare));
    if (!improved) {
        EXPECT_EQ(project.Peaks[0].FWHM, 0.05f);
    }
}

TEST_F(NewtonTest, PeakOperationsConvergeOnTheData) {
    test::RecordingHost quiet;
    NewtonPeakPosition(project, quiet, 0);
    EXPECT_NEAR(project.Peaks[0].Position, 285.3f, 0.002);
    project.Peaks[0].Area = 0;  // replaced by 1 before the first step
    project.Peaks[0].FWHM = 1.7f;
    project.Options.NewtonTrials = 60;
    project.Options.AreaNewton[0].Delta = 0.05f;
    NewtonPeak(project, quiet, 0);
    EXPECT_NEAR(project.Peaks[0].Area, 1000.0f, 5.0f);
    EXPECT_NEAR(project.Peaks[0].FWHM, 2.0f, 0.01f);
}

}  // namespace
}  // namespace molvera
