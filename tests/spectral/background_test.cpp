#include "spectral/background.h"

#include <algorithm>
#include <cmath>
#include <tuple>
#include <vector>

#include <gtest/gtest.h>

#include "spectral/envelope.h"
#include "spectral/lineshape.h"
#include "spectral/region_builder.h"
#include "support/recording_host.h"

namespace molvera {
namespace {

using test::AddTestPeak;
using test::FallingEnergies;
using test::MakeRegion;
using test::RecordingHost;

class BackgroundTest : public ::testing::Test {
protected:
    /// Points 10, 9, ..., 1 eV with intensities 100, 101, ...
    Region& TenPoints() {
        std::vector<float> y;
        for (int i = 0; i < 10; ++i) y.push_back(100.0f + i);
        return MakeRegion(project, 0, FallingEnergies(10, 10, 1), y);
    }
    /// Sets the boundaries and the kind of `reg` (current) and recomputes it.
    void Recompute(Region& reg, float low, float high,
                   BackgroundKind kind = BackgroundKind::Linear) {
        reg.BackgroundLowBE = low;
        reg.BackgroundHighBE = high;
        reg.BackgroundType = kind;
        RecomputeRegion(project, host);
    }
    /// A region set up for the background computations alone.
    Region& DirectRange(const std::vector<float>& be, const std::vector<float>& y, int type,
                        float param) {
        Region& reg = test::WholeRange(project, 0, be, y);
        reg.BackgroundType = static_cast<BackgroundKind>(type);
        reg.BackgroundParameter = param;
        return reg;
    }
    /// A step-and-peak spectrum from 300 to 280 eV: higher on the high-energy side.
    static std::vector<float> StepAndPeak(const std::vector<float>& be) {
        std::vector<float> y;
        for (float e : be)
            y.push_back(static_cast<float>(100 + 60 / (1 + std::exp(-(e - 290) / 0.5)) +
                                           400 * std::exp(-std::pow((e - 290) / 0.8, 2))));
        return y;
    }
    Project project;
    RecordingHost host;
};

TEST_F(BackgroundTest, RangeFromTheNearestPointsAndTheMeanStep) {
    struct Case {
        float low, high;
        int start, end, count;
        const char* why;
    };
    const Case cases[] = {
        {3.2f, 7.9f, 3, 8, 6, "4.7 eV at 1 eV per point, plus one, rounded"},
        {2.25f, 7.75f, 3, 9, 6,
         "6.5 points round to even; 2 eV is nearest, but m stops the range at 3 eV"},
        {2.5f, 8.5f, 2, 8, 7, "halfway boundaries take the higher energy"},
        {8.5f, 2.5f, 2, 8, 7, "swapped ends are put in order"},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.why);
        Region& reg = TenPoints();  // point p at 11 - p eV, intensity 99 + p
        Recompute(reg, c.low, c.high);
        EXPECT_EQ(std::tuple(reg.RangeStart, reg.RangeEnd, reg.RangeCount, reg.BackgroundLowBE),
                  std::tuple(c.start, c.end, c.count, std::min(c.low, c.high)));
        for (int j = 1; j <= c.count; ++j) {
            EXPECT_EQ(reg.RangeBE[j], 12.0f - static_cast<float>(c.start + j));
            if (j > 1 && j < c.count) {  // the ends hold the end averages
                EXPECT_EQ(reg.RangeIntensity[j], 98.0f + static_cast<float>(c.start + j));
            }
        }
        EXPECT_EQ(reg.RangeBE.size(), 11u);  // region arrays keep their bounds
    }
}

TEST_F(BackgroundTest, UnevenSpacingReadsStayInsideTheSpectrum) {
    Region& reg = MakeRegion(project, 0, {10, 9.5f, 9, 7, 5, 3, 1}, {7, 6, 5, 4, 3, 2, 1});
    Recompute(reg, 1, 9.5f);
    // Mean step 1.5 eV: 8.5 * 6 / 9 + 1 = 6.67 -> 7 points from point 2, past point 7.
    ASSERT_EQ(std::tuple(reg.RangeStart, reg.RangeEnd, reg.RangeCount), std::tuple(2, 7, 7));
    // Range point 7 would be data point 8, which does not exist: point 7 again.
    EXPECT_EQ(std::tuple(reg.RangeBE[5], reg.RangeBE[6], reg.RangeBE[7], reg.RangeIntensity[7]),
              std::tuple(3.0f, 1.0f, 1.0f, 1.0f));
}

TEST_F(BackgroundTest, EndAveragesClampAtTheSpectrumEnds) {
    Region& reg = MakeRegion(project, 0, FallingEnergies(6, 6, 1), {10, 20, 40, 80, 160, 320});
    std::tie(reg.RangeStart, reg.RangeEnd, reg.RangeCount, reg.EndPointAverage) =
        std::tuple(1, 6, 6, 5);
    AverageEndPoints(reg);
    EXPECT_FLOAT_EQ(reg.StartAverage, (3 * 10 + 20 + 40) / 5.0f);
    EXPECT_FLOAT_EQ(reg.EndAverage, (80 + 160 + 3 * 320) / 5.0f);
    EXPECT_EQ(reg.RangeIntensity[1], reg.StartAverage);
    EXPECT_EQ(reg.RangeIntensity[6], reg.EndAverage);

    // A stored 0 means no averaging, and is stored as 1.
    std::tie(reg.RangeStart, reg.RangeEnd, reg.RangeCount, reg.EndPointAverage) =
        std::tuple(2, 5, 4, 0);
    AverageEndPoints(reg);
    EXPECT_EQ(std::tuple(reg.EndPointAverage, reg.StartAverage, reg.EndAverage),
              std::tuple(1, 20.0f, 160.0f));

    // Indices outside 1..n on either side are clamped.
    std::tie(reg.RangeStart, reg.RangeEnd, reg.EndPointAverage) = std::tuple(20, -4, 9);
    AverageEndPoints(reg);
    EXPECT_FLOAT_EQ(reg.StartAverage, 320.0f);
    EXPECT_FLOAT_EQ(reg.EndAverage, 10.0f);
}

TEST_F(BackgroundTest, LinearRunsBetweenTheEndAverages) {
    Region& reg = TenPoints();
    reg.RawIntensity[2] = 200;
    reg.EndPointAverage = 3;
    Recompute(reg, 2, 9);
    // Start average over points 1..3 (100, 200, 102), end average over 8..10.
    EXPECT_FLOAT_EQ(reg.StartAverage, 134);
    EXPECT_FLOAT_EQ(reg.EndAverage, 108);
    EXPECT_FLOAT_EQ(reg.LinearStep, (108 - 134) / 7.0f);
    EXPECT_FLOAT_EQ(reg.BackgroundCurve[4], 134 + 3 * (108 - 134) / 7.0f);
    EXPECT_FLOAT_EQ(reg.BackgroundCurve[8], 108);
}

TEST_F(BackgroundTest, ShirleyWorkedByHand) {
    // N = 8, 4, 0: the passes settle at k = -2 and a remainder of 0, -4, 0.
    Region& reg = DirectRange({3, 2, 1}, {10, 6, 2}, 0, 0);
    ComputeShirley(reg);
    EXPECT_NEAR(reg.BackgroundCurve[1], 10, 1e-4);
    EXPECT_NEAR(reg.BackgroundCurve[2], 10, 1e-4);
    EXPECT_EQ(reg.BackgroundCurve[3], 2.0f);
}

TEST_F(BackgroundTest, ShirleyIsSelfConsistentAndMeetsBothEnds) {
    const std::vector<float> be = FallingEnergies(81, 300, 0.25f);
    Region& reg = DirectRange(be, StepAndPeak(be), 0, 0);
    ComputeShirley(reg);
    const SingleArray& B = reg.BackgroundCurve;
    const SingleArray& y = reg.RangeIntensity;
    const int m = 81;
    EXPECT_EQ(B[m], reg.EndAverage);
    EXPECT_NEAR(B[1], reg.StartAverage, 1e-4 * reg.StartAverage);
    // Shirley's condition: the rise above the low end at each point is proportional
    // to the net area from that point to the low end.
    double total = 0;
    for (int i = 1; i < m; ++i) total += y[i] - B[i];
    for (int j = 1; j < m; j += 8) {
        double tail = 0;
        for (int i = j; i < m; ++i) tail += y[i] - B[i];
        EXPECT_NEAR((B[j] - B[m]) / (B[1] - B[m]), tail / total, 2e-3) << j;
    }

    // With a slope s the high end sits s below the start average.
    reg.BackgroundParameter = 0.5f;
    ComputeShirley(reg);
    EXPECT_NEAR(B[1], reg.StartAverage - 0.5, 1e-3);
    EXPECT_EQ(B[m], reg.EndAverage);
}

TEST_F(BackgroundTest, LowerHighEnergyEndGetsTheLinearBackground) {
    for (int type : {0, 2}) {
        Region& reg = DirectRange({4, 3, 2, 1}, {5, 50, 9, 8}, type, 3000);
        ComputeShirley(reg);
        if (type == 2) ComputeTougaard(reg);
        for (int j = 1; j <= 4; ++j) EXPECT_EQ(reg.BackgroundCurve[j], reg.BackgroundWork[j]);
    }
}

TEST_F(BackgroundTest, TougaardWorkedByHand) {
    // Three points 1 eV apart: only the middle point lies above the low end.
    Region& reg = DirectRange({3, 2, 1}, {10, 8, 2}, 2, 3000);
    ComputeTougaard(reg);
    EXPECT_FLOAT_EQ(reg.BackgroundCurve[1], 2 + 3000 * 6.0 / (1644.0 * 1644.0));
    EXPECT_EQ(reg.BackgroundCurve[2], 2.0f);
    EXPECT_EQ(reg.BackgroundCurve[3], 2.0f);

    // Four points 0.5 eV apart; B1 = 0 gives a flat background at the end average.
    Region& reg4 = DirectRange({2, 1.5f, 1, 0.5f}, {30, 20, 12, 4}, 2, 2500);
    reg4.BackgroundParameter = 0;
    ComputeTougaard(reg4);
    for (int i = 1; i <= 4; ++i) EXPECT_EQ(reg4.BackgroundCurve[i], reg4.EndAverage);
}

TEST_F(BackgroundTest, NetRangeNeverAboveOrBelowItsStartValues) {
    Region& reg = MakeRegion(project, 0, FallingEnergies(4, 4, 1), {10, 0, 0, 10});
    Recompute(reg, 1, 4);
    // Every point at or below the background.
    EXPECT_EQ(std::tuple(reg.NetMax, reg.NetMin, reg.NetScale), std::tuple(0.0f, -10.0f, 0.1f));

    // An unknown type keeps the old background.
    for (int j = 1; j <= 4; ++j) reg.BackgroundCurve[j] = -1.0e8f;
    Recompute(reg, 1, 4, static_cast<BackgroundKind>(7));
    EXPECT_EQ(std::tuple(reg.BackgroundCurve[2], reg.NetMin, reg.NetMax),
              std::tuple(-1.0e8f, 10000000.0f, 1.0e8f + 10));
}

TEST_F(BackgroundTest, KeepAreasDecidesWhetherAreaOrHeightFollows) {
    const std::vector<float> be = FallingEnergies(41, 295, 0.25f);
    Region& reg = MakeRegion(project, 0, be, StepAndPeak(be));
    reg.HasBackground = kTrue;
    const int q = AddTestPeak(project, 0, 290, 1, 1.6f, 30);
    project.Peaks[q].HeightPercent = 60;
    project.KeepAreas = kFalse;
    Recompute(reg, 285, 295, BackgroundKind::Shirley);
    Peak& peak = project.Peaks[q];
    EXPECT_EQ(peak.HeightPercent, 60.0f);
    EXPECT_NEAR(PeakValue(false, peak, 290, 0), 60 * reg.NetScale, 1e-4 * 60 * reg.NetScale);
    EXPECT_EQ(project.SavedPeaks[q].Curve.size(), static_cast<std::size_t>(reg.RangeCount) + 1);

    // A new background with KeepAreas: the area stays, the height follows.
    project.KeepAreas = kTrue;
    const float area = peak.Area;
    Recompute(reg, 285, 295);
    EXPECT_EQ(peak.Area, area);
    EXPECT_NEAR(PeakValue(false, peak, 290, 0), peak.HeightPercent * reg.NetScale, 1e-3);
    EXPECT_NE(peak.HeightPercent, 60.0f);
}

TEST_F(BackgroundTest, DegenerateRangesDoNotWriteOutOfBounds) {
    Region& reg = TenPoints();
    project.Peaks[AddTestPeak(project, 0, 5, 10, 1, 30)].Curve.clear();

    // No point within 100 eV: the old (invalid) indices stay; m is bounded by the arrays.
    reg.RangeStart = 0;
    reg.RangeEnd = 0;
    Recompute(reg, 500, 600, BackgroundKind::Shirley);
    EXPECT_EQ(std::tuple(reg.RangeStart, reg.RangeCount, reg.RangeBE[1]), std::tuple(0, 10, 10.0f));

    // Both ends at the same point: one range point, a flat background.
    for (int type : {0, 1, 2}) {
        Recompute(reg, 5, 5, static_cast<BackgroundKind>(type));
        EXPECT_EQ(std::tuple(reg.RangeCount, reg.LinearStep, reg.BackgroundCurve[1]),
                  std::tuple(1, 0.0f, reg.StartAverage));
        EXPECT_TRUE(std::isfinite(reg.NetScale));
    }

    // A PointCount larger than the arrays.
    Region& one = MakeRegion(project, 1, {5}, {3});
    one.PointCount = 4000;
    RecomputeRegion(project, host);
    EXPECT_EQ(one.RangeBE.size(), 2u);
}

TEST_F(BackgroundTest, NetAreaUsesTheFirstStep) {
    Region& reg = DirectRange({5, 4.5f, 4, 3.5f}, {9, 7, 7, 1}, 1, 0);
    for (int j = 1; j <= 4; ++j) reg.BackgroundCurve[j] = 1;
    reg.RangeIntensity = {0, 2, 3, 4, 5};  // net 1, 2, 3, 4
    EXPECT_DOUBLE_EQ(NetArea(reg), 0.5 * 10);
}

}  // namespace
}  // namespace molvera
