#include "spectral/bgoptimise.h"

#include <vector>

#include <gtest/gtest.h>

#include "spectral/region_builder.h"

namespace molvera {
namespace {

using test::FallingEnergies;

// A range of m points 0.5 eV apart from 300 eV (range = spectrum).
Region& DirectRange(Project& project, const std::vector<float>& y) {
    return test::WholeRange(project, 0, FallingEnergies(static_cast<int>(y.size()), 300, 0.5f), y);
}

TEST(BackgroundCrossingTest, ComparesWithTheNinePointMeanOverPoints5ToMMinus5) {
    Project project;
    std::vector<float> y(12, 100.0f);
    y[0] = 190;  // only the window of point 5 (points 1..9) sees it: mean 110 there
    Region& reg = DirectRange(project, y);
    for (int j = 1; j <= 12; ++j) reg.BackgroundCurve[j] = 99;
    EXPECT_FALSE(BackgroundCrosses(reg));

    reg.BackgroundCurve[5] = 109;  // above the data point, below the 9-point mean
    EXPECT_FALSE(BackgroundCrosses(reg));
    reg.BackgroundCurve[5] = 111;
    EXPECT_TRUE(BackgroundCrosses(reg));

    // Points 1..4 and m-4..m are never tested; point 7 = m - 5 is.
    reg.BackgroundCurve[5] = 99;
    for (int j : {1, 4, 8, 12}) reg.BackgroundCurve[j] = 1000;
    EXPECT_FALSE(BackgroundCrosses(reg));
    reg.BackgroundCurve[7] = 100.5f;
    EXPECT_TRUE(BackgroundCrosses(reg));
    reg.BackgroundCurve[7] = 100;  // equal to the mean is not above it
    EXPECT_FALSE(BackgroundCrosses(reg));
}

}  // namespace
}  // namespace molvera
