#include "session/backgroundform.h"

#include <string>
#include <tuple>

#include <gtest/gtest.h>

#include "base/numtext.h"
#include "model/project.h"
#include "spectral/background.h"
#include "support/recording_host.h"
#include "support/sample_region.h"

namespace molvera {
namespace {

// Region 2 (the third) holds 11 points 290..280 eV, 1 eV apart, without a background.
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
        EXPECT_EQ(std::tuple(host.beeps, host.regionWindowShows, project.KeepAreas),
                  std::tuple(1, 0, kFalse));
        EXPECT_EQ(project.Regions[2], before);
    }

    Project project;
    BackgroundForm form;
};

// Each refusal corrects one thing, in this order: low boundary, high boundary, both
// boundaries when crossed or closer than two points, averaging, then (after an empty
// slope box is written as 0) the type.
TEST_F(BackgroundFormTest, RefusalsCorrectTheirBoxAndStoreNothing) {
    EXPECT_EQ(std::tuple(form.visible, form.caption, form.lowBEText, form.highBEText,
                         form.averagePoints, form.backgroundType, form.areaText),
              std::tuple(true, "Region 3", "280", "290", "None", "Shirley", "-----"));
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
        std::tie(form.lowBEText, form.highBEText, form.averagePoints, form.backgroundType,
                 form.shirleySlopeText) = std::tuple(c.low, c.high, c.average, c.type, "");
        ExpectRefused();
        EXPECT_EQ(std::tuple(form.lowBEText, form.highBEText, form.averagePoints,
                             form.backgroundType, form.shirleySlopeText),
                  std::tuple(c.lowAfter, c.highAfter, c.averageAfter, c.typeAfter, c.slopeAfter));
    }
    // Two points are enough: m = round(0.6 + 1) = 2.
    form.lowBEText = "284.8";
    form.highBEText = "285.4";
    test::RecordingHost host;
    EXPECT_TRUE(AcceptBackground(project, host, form));
    const Region& r = project.Regions[2];
    EXPECT_EQ(
        std::tuple(host.regionWindowShows, r.RangeCount, r.EndPointAverage, project.KeepAreas),
        std::tuple(1, Int16{2}, Int16{3}, kFalse));
}

// Accepted settings are stored, and shown when the dialog opens again.
// A box that holds no number is refused by name, without a beep, and nothing is stored;
// the slope box of a Tougaard background is not read.
TEST_F(BackgroundFormTest, BoxesWithoutANumberAreRefusedByName) {
    const Region before = project.Regions[2];
    test::RecordingHost host;
    form.lowBEText = "x280";
    EXPECT_EQ(AcceptBackground(project, host, form).message(), "Low BE: 'x280' is not a number");
    form.lowBEText = "280";
    form.shirleySlopeText = "1e999";
    EXPECT_EQ(AcceptBackground(project, host, form).message(), "Slope: '1e999' is not a number");
    EXPECT_EQ(std::tuple(form.invalidBox, host.beeps), std::tuple("shirleySlopeText", 0));
    EXPECT_EQ(project.Regions[2], before);
    form.backgroundType = "Tougaard";
    EXPECT_TRUE(AcceptBackground(project, host, form).ok());
    EXPECT_EQ(form.invalidBox, "");
}

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
        {"Tougaard", "5", "2", "", BackgroundKind::Tougaard, 3000, "2", "3000", "3000|"},
        {"Tougaard", "3", "2", "2500", BackgroundKind::Tougaard, 2500, "2", "2500", "2500|"},
        {"Linear", "9", "4", "3000", BackgroundKind::Linear, 7.5f, "4", "3000", "3000|"},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(std::string(c.type) + " " + c.slope + " " + c.b1);
        project.Regions[2].BackgroundParameter = 7.5f;
        std::tie(form.backgroundType, form.averagePoints, form.shirleySlopeText,
                 form.tougaardB1Text) = std::tuple(c.type, c.average, c.slope, c.b1);
        ASSERT_TRUE(AcceptBackground(project, QuietHost(), form));
        const Region& r = project.Regions[2];
        EXPECT_EQ(std::tuple(r.HasBackground, r.RangeCount, r.BackgroundType, r.BackgroundParameter,
                             form.shirleySlopeText, form.tougaardB1Text),
                  std::tuple(kTrue, Int16{11}, c.kind, c.parameter, c.slopeAfter, c.b1After));
        EXPECT_EQ(form.areaText, FormatGeneral(static_cast<float>(NetArea(r))));
        BackgroundForm again;
        ShowBackgroundDialog(project, again);
        EXPECT_EQ(std::tuple(again.backgroundType, again.averagePoints,
                             again.tougaardB1Text + "|" + again.shirleySlopeText, again.areaText),
                  std::tuple(c.type, c.average, c.reopened, form.areaText));
    }
    // The same dialog opened on a region without a background keeps no area of region 3.
    test::FillSampleRegion(project, 4);
    project.CurrentRegion = 4;
    ShowBackgroundDialog(project, form);
    EXPECT_EQ(form.areaText, "-----");
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
    EXPECT_EQ(form.lowBEText + "|" + form.highBEText, "280|290");
    EXPECT_TRUE(AcceptBackground(project, QuietHost(), form));
}

}  // namespace
}  // namespace molvera
