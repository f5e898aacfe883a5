// A search level over a grid of a million trials (fine step, wide range, as an option
// file can give) still lets Stop Fitting through.

#include <gtest/gtest.h>

#include "fitting/driver.h"
#include "fitting/fit_fixture.h"
#include "fitting/search.h"

namespace molvera {
namespace {

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
