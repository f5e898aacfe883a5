#include "session/backgroundoptimise.h"

#include <cmath>
#include <string>
#include <tuple>
#include <vector>

#include <gtest/gtest.h>

#include "base/numtext.h"
#include "model/project.h"
#include "spectral/background.h"
#include "spectral/region_builder.h"
#include "support/recording_host.h"

namespace molvera {
namespace {

// Records the dialog's boxes at every yield, that is once per trial of either search,
// and the busy state.
struct TrialHost : test::RecordingHost {
    const BackgroundForm* form = nullptr;
    const Project* project = nullptr;
    std::vector<std::string> slopes, b1s;
    std::vector<float> parameters;
    int busy = 0, busyYields = 0;
    void BeginBusy() override { ++busy; }
    void EndBusy() override { --busy; }
    void Yield() override {
        RecordingHost::Yield();
        slopes.push_back(form->shirleySlopeText);
        b1s.push_back(form->tougaardB1Text);
        parameters.push_back(project->Regions[0].BackgroundParameter);
        busyYields += busy == 1 && !IsSet(project->Idle);
    }
};

// Falls towards low binding energy, peak at 290 eV; points 0.5 eV apart from 300 eV.
std::vector<float> RisingTailAndPeak(int m) {
    std::vector<float> y;
    for (int i = 0; i < m; ++i) {
        const double e = 300 - 0.5 * i;
        y.push_back(static_cast<float>(100 + 1000 * std::exp(-(e - 290) * (e - 290)) +
                                       300 * (1 - std::exp(-(e - 280.5) / 6))));
    }
    return y;
}

// The crossing test written out: some point 5..m-5 above the mean of 9 intensities.
bool CrossesByHand(const Region& reg) {
    for (int i = 5; i <= reg.RangeCount - 5; ++i) {
        double mean = 0;
        for (int j = i - 4; j <= i + 4; ++j) mean += reg.RangeIntensity[j] / 9.0;
        if (reg.BackgroundCurve[i] > mean + 1e-3) return true;
    }
    return false;
}

bool CrossesWithSlope(Region reg, double s) {  // the region's own curve is left alone
    reg.BackgroundParameter = static_cast<float>(s);
    ComputeShirley(reg);
    return CrossesByHand(reg);
}

// B1 minimising the misfit over range points 1..10, from the closed form of the
// least-squares fit of y[i] - y[m] by B1 x K[i].
double BestB1ByHand(const Region& reg) {
    const int m = reg.RangeCount;
    const double dE = double(reg.RangeBE[1]) - reg.RangeBE[2];
    double num = 0, den = 0;
    for (int i = 1; i <= std::min(m, 10); ++i) {
        double k = 0;
        for (int j = i + 1; j <= m; ++j) {
            const double T = (j - i) * dE;
            k += (double(reg.RangeIntensity[j]) - reg.RangeIntensity[m]) * T * dE /
                 ((T * T + 1643) * (T * T + 1643));
        }
        num += (double(reg.RangeIntensity[i]) - reg.RangeIntensity[m]) * k;
        den += k * k;
    }
    return num / den;
}

class BackgroundOptimiseTest : public ::testing::Test {
protected:
    void SetUp() override {
        ClearProject(project, QuietHost());
        host.form = &form;
        host.project = &project;
    }
    // Region 0 with these intensities and an accepted background of the given kind.
    Region& Accepted(const std::vector<float>& y, const std::string& type,
                     const std::string& slope = "", const std::string& b1 = "3000") {
        project.Regions[0] = Region{};
        Region& reg = test::MakeRegion(
            project, 0, test::FallingEnergies(static_cast<int>(y.size()), 300, 0.5f), y);
        UpdateDataExtents(reg);
        ShowBackgroundDialog(project, form);
        form.backgroundType = type;
        form.shirleySlopeText = slope;
        form.tougaardB1Text = b1;
        EXPECT_TRUE(AcceptBackground(project, QuietHost(), form));
        return reg;
    }
    Project project;
    BackgroundForm form;
    TrialHost host;
};

TEST_F(BackgroundOptimiseTest, SlopeSearchFromZeroStartsAtTwoAndEndsAtTheSmallestSafeSlope) {
    Region& reg = Accepted(RisingTailAndPeak(40), "Shirley", "0");
    ASSERT_TRUE(CrossesByHand(reg) && CrossesWithSlope(reg, 1) && !CrossesWithSlope(reg, 2));
    // Brute force: the smallest slope on a fine grid above which nothing crosses.
    double smallest = 2;
    for (double s = 2; s >= 1; s -= 1e-4) {
        if (CrossesWithSlope(reg, s)) break;
        smallest = s;
    }

    OptimiseShirleySlope(project, host, form);
    ASSERT_EQ(host.yields, 1 + 21);  // one doubling, 21 bisections
    EXPECT_EQ(std::tuple(host.slopes[0], host.parameters[0], host.redraws),
              std::tuple("2", 2.0f, 22 + 1));
    for (std::size_t t = 1; t < host.parameters.size(); ++t) {
        EXPECT_TRUE(host.parameters[t] > 1.0f && host.parameters[t] < 2.0f) << t;
        EXPECT_EQ(host.slopes[t], FormatGeneral(host.parameters[t]));
    }
    const float result = reg.BackgroundParameter;
    EXPECT_EQ(std::pair(result, form.shirleySlopeText),
              std::pair(host.parameters.back(), FormatGeneral(result)));
    EXPECT_NEAR(result, smallest, 1e-4 + 1.0 / (1 << 21));
    // The curve left behind is the Shirley background of the last slope tried.
    Region check = reg;
    ComputeShirley(check);
    EXPECT_EQ(check.BackgroundCurve, reg.BackgroundCurve);
}

TEST_F(BackgroundOptimiseTest, SlopeSearchStopsAfterTwentyDoublingsAndClosesInOnTheLast) {
    // Convex data rising towards low binding energy: the linear background that such a
    // range gets lies above the data whatever the slope.
    std::vector<float> y;
    for (int j = 0; j < 20; ++j) y.push_back(100.0f + static_cast<float>(j * j));
    Region& reg = Accepted(y, "Shirley", "0.5");
    ASSERT_TRUE(CrossesByHand(reg));
    OptimiseShirleySlope(project, host, form);
    ASSERT_EQ(host.yields, 20 + 21);
    // Doublings up to 0.5 x 2^20; every bisection crosses, so a moves up to c each time:
    // b - (b - a) / 2^21.
    EXPECT_EQ(std::tuple(host.parameters[0], host.parameters[19], reg.BackgroundParameter,
                         form.shirleySlopeText),
              std::tuple(1.0f, 524288.0f, 524288.0f - 0.125f, FormatGeneral(524287.875f)));
}

TEST_F(BackgroundOptimiseTest, SlopeSearchOnlyForShirleyAndOnlyOnTenPointsOrMore) {
    Region& linear = Accepted(RisingTailAndPeak(40), "Linear", "0");
    const Region linearBefore = linear;
    OptimiseShirleySlope(project, host, form);
    EXPECT_EQ(linear, linearBefore);
    EXPECT_EQ(host.beeps + host.yields, 0);

    // Nine points: the beep alone.
    Region& reg = Accepted({100, 101, 104, 109, 116, 125, 136, 149, 164}, "Shirley", "0");
    const Region before = reg;
    test::RecordingHost quiet;
    OptimiseShirleySlope(project, quiet, form);
    EXPECT_EQ(reg, before);
    EXPECT_EQ(std::tuple(quiet.beeps, quiet.yields, form.shirleySlopeText), std::tuple(1, 0, "0"));
}

TEST_F(BackgroundOptimiseTest, TougaardButtonMakes57BusyTrialsMovingAtMostByTheStageFactors) {
    Region& reg = Accepted(RisingTailAndPeak(40), "Shirley", "0");
    OptimiseTougaardBackground(project, host, form);  // only for "Tougaard": a beep
    EXPECT_EQ(std::pair(host.beeps, reg.BackgroundType), std::pair(1, BackgroundKind::Shirley));
    ASSERT_GT(BestB1ByHand(reg), 3000 * 1.9 * 1.09 * 1.009 * 1.1);
    form.backgroundType = "Tougaard";
    OptimiseTougaardBackground(project, host, form);
    EXPECT_EQ(std::pair(host.yields, host.busyYields), std::pair(57, 57));
    for (const std::string& b : host.b1s) {
        EXPECT_GE(LeadingNumber(b), 3000 * 0.1 * 0.999);
        EXPECT_LE(LeadingNumber(b), 3000 * 1.9 * 1.09 * 1.009 * 1.0001);
    }
    EXPECT_NEAR(reg.BackgroundParameter, 3000 * 1.9 * 1.09 * 1.009, 0.01);
    EXPECT_EQ(form.tougaardB1Text, FormatGeneral(reg.BackgroundParameter));
    EXPECT_EQ(form.areaText, FormatGeneral(static_cast<float>(NetArea(reg))));
    Region check = reg;
    ComputeTougaard(check);
    EXPECT_EQ(check.BackgroundCurve, reg.BackgroundCurve);
    EXPECT_TRUE(host.busy == 0 && IsSet(project.Idle));
}

TEST_F(BackgroundOptimiseTest, TougaardSearchFindsTheBestB1OverTheFirstTenPoints) {
    Region& reg = Accepted(RisingTailAndPeak(40), "Tougaard", "", "3000");
    const double best = BestB1ByHand(reg);
    form.tougaardB1Text = FormatGeneral(static_cast<float>(1.3 * best));
    OptimiseTougaardB1(project, host, form);
    // The last stage steps by a thousandth of its start value.
    EXPECT_NEAR(reg.BackgroundParameter, best, best * 0.0006);
}

TEST_F(BackgroundOptimiseTest, B1StaysWhenNoTrialIsStrictlyBetter) {
    // Flat after its first point: no loss sum anywhere, every B1 gives the same misfit.
    std::vector<float> y(30, 200.0f);
    y[0] = 500;
    Region& reg = Accepted(y, "Tougaard", "", "2500");
    OptimiseTougaardB1(project, host, form);
    EXPECT_EQ(std::tuple(host.yields, reg.BackgroundParameter, form.tougaardB1Text),
              std::tuple(57, 2500.0f, "2500"));
}

}  // namespace
}  // namespace molvera
