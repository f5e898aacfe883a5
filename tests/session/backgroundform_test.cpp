#include "session/backgroundform.h"

#include <string>

#include <gtest/gtest.h>

#include "model/project.h"
#include "spectral/background.h"
#include "spectral/lineshape.h"
#include "spectral/regionedit.h"
#include "support/recording_host.h"
#include "support/sample_region.h"

namespace molvera {
namespace {

// Region 2 holds 11 points 290..280 eV, 1 eV apart, without a background.
class BackgroundFormTest : public ::testing::Test {
protected:
    void SetUp() override {
        ClearProject(project, QuietHost());
        test::FillSampleRegion(project, 2);
        project.CurrentRegion = 2;
        project.Regions[2].BackgroundLowBE = 123;  // sentinels: a refusal stores nothing
        project.Regions[2].BackgroundParameter = 7.5f;
        project.Regions[2].EndPointAverage = 3;
        ShowBackgroundDialog(project, form);
    }

    // Accepts once and checks that it was refused with one beep and nothing stored.
    void ExpectRefused() {
        const Region before = project.Regions[2];
        test::RecordingHost host;
        EXPECT_FALSE(AcceptBackground(project, host, form));
        EXPECT_EQ(host.beeps, 1);
        EXPECT_EQ(host.regionWindowShows, 0);
        EXPECT_EQ(project.Regions[2], before);
        EXPECT_FALSE(IsSet(project.KeepAreas));
    }

    Project project;
    BackgroundForm form;
};

TEST_F(BackgroundFormTest, BoundariesAreCheckedOneAtATimeThenAccepted) {
    form.lowBEText = "279.5";
    form.highBEText = "291";
    ExpectRefused();
    EXPECT_EQ(form.lowBEText, "280");
    EXPECT_EQ(form.highBEText, "291");  // step 2 not reached yet
    ExpectRefused();
    EXPECT_EQ(form.highBEText, "290");

    test::RecordingHost host;
    EXPECT_TRUE(AcceptBackground(project, host, form));
    EXPECT_EQ(host.beeps, 0);
    EXPECT_EQ(host.regionWindowShows, 1);
    const Region& r = project.Regions[2];
    EXPECT_TRUE(IsSet(r.HasBackground));
    EXPECT_EQ(r.BackgroundLowBE, 280.0f);
    EXPECT_EQ(r.BackgroundHighBE, 290.0f);
    EXPECT_EQ(r.EndPointAverage, 1);
    EXPECT_EQ(r.BackgroundType, BackgroundKind::Shirley);
    EXPECT_EQ(r.RangeCount, 11);
    EXPECT_FALSE(IsSet(project.KeepAreas));
}

TEST_F(BackgroundFormTest, EqualCrossedOrTooCloseBoundariesResetBothBoxes) {
    const std::pair<const char*, const char*> cases[] = {
        {"285", "285"},      // Low = High
        {"288", "282"},      // Low above High
        {"284.9", "285.2"},  // one range point: m = round(0.3 + 1) = 1
    };
    for (const auto& [low, high] : cases) {
        form.lowBEText = low;
        form.highBEText = high;
        ExpectRefused();
        EXPECT_EQ(form.lowBEText, "280") << low;
        EXPECT_EQ(form.highBEText, "290") << high;
    }
    // Two points are enough: m = round(0.6 + 1) = 2.
    form.lowBEText = "284.8";
    form.highBEText = "285.4";
    test::RecordingHost host;
    EXPECT_TRUE(AcceptBackground(project, host, form));
    EXPECT_EQ(project.Regions[2].RangeCount, 2);
}

TEST_F(BackgroundFormTest, UnknownAveragingIsRefusedBeforeTheSlopeIsCorrected) {
    form.averagePoints = "4";
    form.backgroundType = "Foo";
    form.shirleySlopeText = "";
    ExpectRefused();
    EXPECT_EQ(form.averagePoints, "None");
    EXPECT_EQ(form.backgroundType, "Foo");
    EXPECT_EQ(form.shirleySlopeText, "");
}

TEST_F(BackgroundFormTest, EmptySlopeGivesPureShirleyAndLinearKeepsTheParameter) {
    form.shirleySlopeText = "";
    test::RecordingHost host;
    ASSERT_TRUE(AcceptBackground(project, host, form));
    EXPECT_EQ(form.shirleySlopeText, "0");
    const Region& r = project.Regions[2];
    // A pure Shirley ends at the low-energy end average.
    EXPECT_FLOAT_EQ(r.BackgroundCurve[r.RangeCount], r.EndAverage);
    EXPECT_EQ(r.BackgroundParameter, 0.0f);
    form.backgroundType = "Linear";
    form.shirleySlopeText = "4";
    project.Regions[2].BackgroundParameter = 7.5f;
    ASSERT_TRUE(AcceptBackground(project, host, form));
    EXPECT_EQ(r.BackgroundType, BackgroundKind::Linear);
    EXPECT_EQ(r.BackgroundParameter, 7.5f);
}

TEST_F(BackgroundFormTest, PeaksKeepTheirAreasWhenTheBackgroundChanges) {
    test::GiveSampleBackground(project, 2);
    ASSERT_EQ(AddPeak(project, QuietHost()), 0);
    Peak& p = project.Peaks[0];
    p.Area = 500;
    p.HeightPercent = AreaToHeightPercent(project, p);
    ShowBackgroundDialog(project, form);
    form.lowBEText = "283";
    form.highBEText = "287";
    test::RecordingHost host;
    ASSERT_TRUE(AcceptBackground(project, host, form));
    EXPECT_EQ(p.Area, 500.0f);
    EXPECT_NEAR(HeightPercentToArea(project, p), 500.0f, 0.05f);  // the height follows
}

TEST_F(BackgroundFormTest, CorrectedBoxIsAcceptedForAnyDataMinimum) {
    // Data limits that seven digits do not represent: the boxes show "280" and "290",
    // which lie just outside the data.
    Region& r = project.Regions[2];
    r.BindingEnergy[1] = 289.99997f;
    r.BindingEnergy[11] = 280.00003f;
    UpdateDataExtents(r);
    ASSERT_LT(280.0f, r.MinBE);
    ASSERT_GT(290.0f, r.MaxBE);
    form.lowBEText = "200";
    ExpectRefused();
    form.highBEText = "400";
    ExpectRefused();
    EXPECT_EQ(form.lowBEText, "280");
    EXPECT_EQ(form.highBEText, "290");
    test::RecordingHost host;
    EXPECT_TRUE(AcceptBackground(project, host, form));
}

}  // namespace
}  // namespace molvera
