#include "fitting/driver.h"

#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "fit_fixture.h"
#include "fitting/search.h"
#include "session/fitcommands.h"

namespace molvera {
namespace {

using test::KnownPeak;

class DriverTest : public ::testing::Test {
protected:
    void SetUp() override {
        ClearProject(project, host);
        test::MakeSyntheticRegion(project, 0, 400,
                                  {{284.6f, 1000, 1.3f, 30}, {286.2f, 400, 1.5f, 30}});
        test::AddKnownPeak(project, 0, 0, {284.4f, 900, 1.2f, 30});
        test::AddKnownPeak(project, 0, 1, {286.4f, 450, 1.4f, 30});
        project.Options = test::TestOptions(0, 3);
        test::Settle(project);
    }
    /// Makes every group of peak 0 a reference of a tiny peak 2: Region mode everywhere,
    /// so every trial shows up at the chi-square box with peak 0's values.
    void WatchVariedParameters() {
        test::AddKnownPeak(project, 0, 2, {290.0f, 1, 1.0f, 30});
        for (PeakParameter g : kPeakParameters) {
            project.Constraints[2][g] = {kTrue, 0, kFalse, 0, 2, 1.0f, kFalse, 0, 0};
            project.Constraints[0][g].IsReference = kTrue;
        }
        project.Peaks[0].FixGL = 0;
        test::Settle(project);
        last = project.Peaks[0];
        host.onChi = [this] {
            const Peak& p = project.Peaks[0];
            const char c = p.Position != last.Position     ? 'P'
                           : p.Area != last.Area           ? 'A'
                           : p.FWHM != last.FWHM           ? 'F'
                           : p.PercentGL != last.PercentGL ? 'G'
                                                           : 0;
            if (c != 0 && (varied.empty() || varied.back() != c)) varied.push_back(c);
            last = p;
        };
    }
    Project project;
    test::WatchingHost host;
    Peak last;
    std::string varied;
};

// A region search varies position, area, FWHM, %GL; a peak search FWHM before area.
TEST_F(DriverTest, RegionAndPeakSearchOrder) {
    WatchVariedParameters();
    project.Options.SearchTrials = 1;
    SearchPeak(project, host, 0);
    EXPECT_EQ(varied, "PFAG");
    varied.clear();
    project.Peaks[1].FixPosition = project.Peaks[1].FixArea = project.Peaks[1].FixFWHM = 1;
    OptimiseRegion(project, host);
    EXPECT_EQ(varied, "PAFG");
}

TEST_F(DriverTest, AllFixedConvergesAtOnceUnlessToleranceIsZero) {
    for (int p : {0, 1})
        project.Peaks[p].FixPosition = project.Peaks[p].FixArea = project.Peaks[p].FixFWHM = 1;
    project.Options.Tolerance = 0.001f;
    const Project before = project;
    OptimiseRegion(project, host);
    EXPECT_TRUE(project.StopRequested);  // left for EndFit to clear
    EXPECT_EQ(host.yields, 1);           // the trial's yield only
    EXPECT_TRUE(project.Peaks == before.Peaks);
    EndFit(project, host);
    EXPECT_FALSE(project.StopRequested);

    project.Options.Tolerance = 0;
    project.Options.SearchTrials = 4;
    host.yields = 0;
    OptimiseRegion(project, host);
    EXPECT_FALSE(project.StopRequested);
    EXPECT_EQ(host.yields, 4);
}

TEST_F(DriverTest, StopAtAParameterStepLeavesConsistentBestValues) {
    for (float method : {0.0f, 1.0f}) {
        SetUp();
        project.Options.Method = method;
        project.Options.SearchTrials = project.Options.NewtonTrials = 50;
        const float start = project.TotalChiSquare;
        test::WatchingHost stopper;
        int yields = 0;
        stopper.onYield = [&] {
            if (++yields == 3) project.StopRequested = true;
        };
        BeginFit(project, stopper);
        OptimiseRegion(project, stopper);
        EXPECT_LE(yields, 4) << method;  // ended right after the step that saw Stop
        Project check = project;
        RecomputeRegionsWithBackground(check, QuietHost());
        EXPECT_FLOAT_EQ(check.TotalChiSquare, project.TotalChiSquare) << method;
        EXPECT_TRUE(check.Regions[0].PeakSumCurve == project.Regions[0].PeakSumCurve) << method;
        EXPECT_LT(project.TotalChiSquare, start) << method;
        EndFit(project, stopper);
    }
}

TEST_F(DriverTest, OptimiseAllSkipsRegionsWithoutBackgroundAndRestoresCurrent) {
    test::MakeSyntheticRegion(project, 3, 400, {{285.0f, 800, 1.2f, 30}});
    test::AddKnownPeak(project, 3, 5, {284.7f, 800, 1.2f, 30});
    test::MakeSyntheticRegion(project, 5, 400, {{285.0f, 800, 1.2f, 30}});
    test::AddKnownPeak(project, 5, 6, {284.7f, 800, 1.2f, 30});
    project.Regions[5].HasBackground = kFalse;
    project.CurrentRegion = 7;
    test::Settle(project);
    OptimiseAllCommand(project, host);
    EXPECT_EQ(project.CurrentRegion, 7);
    EXPECT_NEAR(project.Peaks[5].Position, 285.0f, 0.02);
    EXPECT_EQ(project.Peaks[6].Position, 284.7f);
    EXPECT_NEAR(project.Peaks[0].Position, 284.6f, 0.02);
}

}  // namespace
}  // namespace molvera
