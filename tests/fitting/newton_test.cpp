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

// One step from 285 eV, area 1000 (the data's peak lies at 285.3 eV): a limit caps the
// step exactly, a step that scores the same counts as improved, and a worse step (or
// none, when the peak has no influence) leaves the peak and the region as they were.
TEST_F(NewtonTest, LimitedEqualWorseAndNoSteps) {
    struct Case {
        const char* why;
        PeakParameter g;
        float low, high, delta, area;
        bool improved;
        float value;
    };
    const Case cases[] = {
        {"capped", PeakParameter::Position, 284, 285.1f, 0.01f, 1000, true, 285.1f},
        {"equal", PeakParameter::Area, 1000, 1000, 10, 1000, true, 1000},
        {"worse", PeakParameter::Position, 280, 283, 0.01f, 1000, false, 285},
        {"no influence", PeakParameter::Position, 0, 1000, 0.01f, 0, false, 285},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.why);
        SetUp();
        project.Peaks[0].Area = c.area;
        project.Constraints[0][c.g] = Limits(c.low, c.high);
        test::Settle(project);
        const Region before = project.Regions[0];
        bool improved = !c.improved;
        const bool area = c.g == PeakParameter::Area;
        (area ? NewtonArea : NewtonPosition)(project, host, 0, c.delta, improved);
        EXPECT_EQ(std::pair(improved, area ? project.Peaks[0].Area : project.Peaks[0].Position),
                  std::pair(c.improved, c.value));
        if (!c.improved) {
            EXPECT_EQ(project.Regions[0].PeakSumCurve, before.PeakSumCurve);
            EXPECT_EQ(project.Regions[0].ChiSquare, before.ChiSquare);
        }
    }
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
