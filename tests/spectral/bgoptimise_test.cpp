#include "spectral/bgoptimise.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <vector>

#include "spectral/background.h"
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

TEST(BackgroundCrossingTest, RangesBelowTenPointsNeverCross) {
    Project project;
    for (int m : {2, 5, 9}) {
        Region& reg = DirectRange(project, std::vector<float>(m, 10.0f));
        for (int j = 1; j <= m; ++j) reg.BackgroundCurve[j] = 1e6f;
        EXPECT_FALSE(BackgroundCrosses(reg)) << m;
    }
    Region& reg = DirectRange(project, std::vector<float>(10, 10.0f));
    reg.BackgroundCurve[5] = 11;  // m = 10 tests point 5 alone
    EXPECT_TRUE(BackgroundCrosses(reg));
}

// Spectrum with intensity falling towards low binding energies and a peak at 290 eV.
std::vector<float> StepAndPeak(int m) {
    std::vector<float> y;
    for (int i = 0; i < m; ++i) {
        const double e = 300 - 0.5 * i;
        y.push_back(static_cast<float>(100 + 1000 * std::exp(-(e - 290) * (e - 290)) +
                                       300 * (1 - std::exp(-(e - 280.5) / 6))));
    }
    return y;
}

// The head is the first ten points (all of a shorter range) of the full Tougaard
// background of the same B1, bit for bit, and nothing else is written.
TEST(TougaardHeadTest, FirstTenPointsOfTheFullBackgroundAndTheRestUntouched) {
    Project project;
    std::vector<float> rising = StepAndPeak(30);
    std::reverse(rising.begin(), rising.end());
    for (const std::vector<float>& y : {StepAndPeak(40), rising, std::vector<float>{500, 400, 300, 250, 200}}) {
        Region& reg = DirectRange(project, y);
        const int m = reg.RangeCount;
        reg.BackgroundParameter = 2500;
        reg.BackgroundCurve = reg.BackgroundWork;  // a rising range keeps the linear one
        ComputeTougaard(reg);
        const SingleArray full = reg.BackgroundCurve;
        reg.BackgroundCurve.assign(full.size(), -1);
        ComputeTougaardHead(reg, 2500);
        for (int i = 1; i <= m; ++i) EXPECT_EQ(reg.BackgroundCurve[i], i <= 10 ? full[i] : -1) << m << " " << i;
    }
}

TEST(TougaardHeadTest, MisfitSumsSquaresOverTheHeadOnly) {
    Project project;
    Region& reg = DirectRange(project, std::vector<float>(12, 10.0f));
    for (int j = 1; j <= 12; ++j) reg.BackgroundCurve[j] = 10;
    reg.BackgroundCurve[1] = 7;    // 9
    reg.BackgroundCurve[10] = 12;  // 4
    reg.BackgroundCurve[11] = 0;   // outside the head
    EXPECT_DOUBLE_EQ(HeadMisfit(reg), 13.0);

    Region& shortRange = DirectRange(project, {5, 4, 3});
    shortRange.BackgroundCurve = {0, 5, 2, 3, 99};  // element 4 lies beyond the range
    EXPECT_DOUBLE_EQ(HeadMisfit(shortRange), 4.0);
}

}  // namespace
}  // namespace molvera
