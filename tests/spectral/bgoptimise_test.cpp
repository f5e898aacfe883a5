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
using test::MakeRegion;

// A range of m points laid directly into the range arrays (range = spectrum).
Region& DirectRange(Project& project, const std::vector<float>& y, float step = 0.5f) {
    const int m = static_cast<int>(y.size());
    Region& reg = MakeRegion(project, 0, FallingEnergies(m, 300, step), y);
    reg.RangeStart = 1;
    reg.RangeEnd = static_cast<Int16>(m);
    reg.RangeCount = static_cast<Int16>(m);
    for (int j = 1; j <= m; ++j) {
        reg.RangeBE[j] = reg.BindingEnergy[j];
        reg.RangeIntensity[j] = y[j - 1];
        reg.BackgroundWork[j] =
            y[0] + (y[m - 1] - y[0]) * static_cast<float>(j - 1) / static_cast<float>(m - 1);
    }
    return reg;
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

// The Tougaard background at range point i written out from the loss function.
double TougaardByHand(const Region& reg, int i, double b1) {
    const int m = reg.RangeCount;
    const double dE = double(reg.RangeBE[1]) - reg.RangeBE[2];
    double k = 0;
    for (int j = i + 1; j <= m; ++j) {
        const double T = (j - i) * dE;
        const double D = T * T + 1643;
        k += (double(reg.RangeIntensity[j]) - reg.RangeIntensity[m]) * T * dE / (D * D);
    }
    return reg.RangeIntensity[m] + b1 * k;
}

TEST(TougaardHeadTest, FirstTenPointsFollowTheLossFunctionAndTheRestIsUntouched) {
    Project project;
    Region& reg = DirectRange(project, StepAndPeak(40));
    for (int j = 1; j <= 40; ++j) reg.BackgroundCurve[j] = -1;
    ComputeTougaardHead(reg, 2500);
    for (int i = 1; i <= 10; ++i)
        EXPECT_NEAR(reg.BackgroundCurve[i], TougaardByHand(reg, i, 2500), 1e-3) << i;
    for (int i = 11; i <= 40; ++i) EXPECT_EQ(reg.BackgroundCurve[i], -1) << i;

    // The head of the full background with the same B1 is the same, bit for bit.
    const SingleArray head = reg.BackgroundCurve;
    reg.BackgroundParameter = 2500;
    ComputeTougaard(reg);
    for (int i = 1; i <= 10; ++i) EXPECT_EQ(reg.BackgroundCurve[i], head[i]) << i;
}

TEST(TougaardHeadTest, RisingRangeGetsTheLinearHeadAndShortRangeIsWhole) {
    Project project;
    std::vector<float> rising = StepAndPeak(30);
    std::reverse(rising.begin(), rising.end());
    Region& reg = DirectRange(project, rising);
    for (int j = 1; j <= 30; ++j) reg.BackgroundCurve[j] = -1;
    ComputeTougaardHead(reg, 3000);
    for (int i = 1; i <= 10; ++i) EXPECT_EQ(reg.BackgroundCurve[i], reg.BackgroundWork[i]);
    EXPECT_EQ(reg.BackgroundCurve[11], -1);

    Region& shortRange = DirectRange(project, {500, 400, 300, 250, 200});
    shortRange.BackgroundCurve.assign(shortRange.BackgroundCurve.size(), -1);
    ComputeTougaardHead(shortRange, 3000);
    for (int i = 1; i <= 5; ++i)
        EXPECT_NEAR(shortRange.BackgroundCurve[i], TougaardByHand(shortRange, i, 3000), 1e-3) << i;
    EXPECT_EQ(shortRange.BackgroundCurve[5], 200);
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
