#include "session/backgroundform.h"

#include <string>
#include <tuple>

#include <gtest/gtest.h>

#include "base/numtext.h"
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

TEST_F(BackgroundFormTest, OpensOnTheDataExtent) {
    EXPECT_TRUE(form.visible);
    EXPECT_EQ(form.caption, "Region 2");
    EXPECT_EQ(std::tuple(form.lowBEText, form.highBEText, form.averagePoints, form.backgroundType,
                         form.areaText),
              std::tuple("280", "290", "None", "Shirley", "-----"));
}

// Each refusal corrects one thing, in this order: low boundary, high boundary, both
// boundaries when crossed or closer than two points, averaging, then (after an empty
// slope box is written as 0) the type.
TEST_F(BackgroundFormTest, RefusalsCorrectTheirBoxAndStoreNothing) {
    struct Case {
        const char *low, *high, *average, *type;
        const char *lowAfter, *highAfter, *averageAfter, *typeAfter, *slopeAfter = "";
    };
    const Case cases[] = {
        {"279.5", "291", "None", "Shirley", "280", "291", "None", "Shirley"},
        {"280", "291", "None", "Shirley", "280", "290", "None", "Shirley"},
        {"285", "285", "None", "Shirley", "280", "290", "None", "Shirley"},
        {"288", "282", "None", "Shirley", "280", "290", "None", "Shirley"},
        {"284.9", "285.2", "None", "Shirley", "280", "290", "None", "Shirley"},  // m = 1
        {"280", "290", "4", "Foo", "280", "290", "None", "Foo"},
        {"280", "290", "3", "Shirly", "280", "290", "3", "Shirley", "0"},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(std::string(c.low) + " " + c.high + " " + c.average + " " + c.type);
        form.lowBEText = c.low;
        form.highBEText = c.high;
        form.averagePoints = c.average;
        form.backgroundType = c.type;
        form.shirleySlopeText = "";
        ExpectRefused();
        EXPECT_EQ(form.lowBEText, c.lowAfter);
        EXPECT_EQ(form.highBEText, c.highAfter);
        EXPECT_EQ(form.averagePoints, c.averageAfter);
        EXPECT_EQ(form.backgroundType, c.typeAfter);
        EXPECT_EQ(form.shirleySlopeText, c.slopeAfter);
    }
    // Two points are enough: m = round(0.6 + 1) = 2.
    form.lowBEText = "284.8";
    form.highBEText = "285.4";
    test::RecordingHost host;
    EXPECT_TRUE(AcceptBackground(project, host, form));
    EXPECT_EQ(host.regionWindowShows, 1);
    EXPECT_EQ(project.Regions[2].RangeCount, 2);
    EXPECT_EQ(project.Regions[2].EndPointAverage, 3);
    EXPECT_FALSE(IsSet(project.KeepAreas));
}

// Accepted settings are stored, and shown when the dialog opens again.
TEST_F(BackgroundFormTest, AcceptStoresTheTypeAndItsParameter) {
    struct Case {
        const char *type, *average, *slope, *b1;
        BackgroundKind kind;
        float parameter;
        const char *slopeAfter, *b1After, *reopened;  ///< reopened: B1 | slope shown
    };
    const Case cases[] = {
        {"Shirley", "None", "", "3000", BackgroundKind::Shirley, 0, "0", "3000", "3000|0"},
        {"Shirley", "7", "0.5", "1", BackgroundKind::Shirley, 0.5f, "0.5", "1", "3000|0.5"},
        {"Tougaard", "None", "", "0", BackgroundKind::Tougaard, 3000, "0", "3000", "3000|"},
        {"Tougaard", "5", "2", "abc", BackgroundKind::Tougaard, 3000, "2", "3000", "3000|"},
        {"Tougaard", "3", "2", "2500", BackgroundKind::Tougaard, 2500, "2", "2500", "2500|"},
        {"Linear", "9", "4", "3000", BackgroundKind::Linear, 7.5f, "4", "3000", "3000|"},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(std::string(c.type) + " " + c.slope + " " + c.b1);
        project.Regions[2].BackgroundParameter = 7.5f;
        form.backgroundType = c.type;
        form.averagePoints = c.average;
        form.shirleySlopeText = c.slope;
        form.tougaardB1Text = c.b1;
        ASSERT_TRUE(AcceptBackground(project, QuietHost(), form));
        const Region& r = project.Regions[2];
        EXPECT_TRUE(IsSet(r.HasBackground));
        EXPECT_EQ(r.BackgroundType, c.kind);
        EXPECT_EQ(r.BackgroundParameter, c.parameter);
        EXPECT_EQ(form.shirleySlopeText, c.slopeAfter);
        EXPECT_EQ(form.tougaardB1Text, c.b1After);
        EXPECT_EQ(r.BackgroundLowBE, 280.0f);
        EXPECT_EQ(r.BackgroundHighBE, 290.0f);
        EXPECT_EQ(r.RangeCount, 11);
        EXPECT_EQ(form.areaText, FormatGeneral(static_cast<float>(NetArea(r))));
        BackgroundForm again;
        ShowBackgroundDialog(project, again);
        EXPECT_EQ(std::tuple(again.backgroundType, again.averagePoints,
                             again.tougaardB1Text + "|" + again.shirleySlopeText),
                  std::tuple(c.type, c.average, c.reopened));
    }
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
