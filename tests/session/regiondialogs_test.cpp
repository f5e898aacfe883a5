#include "session/regiondialogs.h"

#include <gtest/gtest.h>

#include "support/recording_host.h"

namespace molvera {
namespace {

TEST(RegionShiftDialog, TakesTheLeadingNumber) {
    Project project;
    project.CurrentRegion = 3;
    project.Regions[3].Shift = -1.25f;
    RegionShiftForm form;
    OpenRegionShift(project, form);
    EXPECT_TRUE(form.visible);
    EXPECT_EQ(form.ShiftText, "-1.25");

    form.ShiftText = "0.35 eV";
    AcceptRegionShift(project, form);
    EXPECT_EQ(project.Regions[3].Shift, 0.35f);
    EXPECT_FALSE(form.visible);

    form.ShiftText = "abc";
    AcceptRegionShift(project, form);
    EXPECT_EQ(project.Regions[3].Shift, 0.0f);
    EXPECT_EQ(project.Regions[2].Shift, 0.0f);
}

TEST(RegionCaptionDialog, CutsAndPadsToTwentyCharacters) {
    Project project;
    project.CurrentRegion = 1;
    project.Regions[1].HasData = kTrue;
    RegionCaptionForm form;
    test::RecordingHost host;

    form.Text = "C 1s after sputtering 10 min";
    AcceptRegionCaption(project, host, form);
    EXPECT_EQ(project.Regions[1].Caption.Str(), "C 1s after sputterin");
    EXPECT_EQ(host.redraws, 1);
    EXPECT_FALSE(form.visible);

    form.Text = "O 1s";
    AcceptRegionCaption(project, host, form);
    OpenRegionCaption(project, form);
    EXPECT_TRUE(form.visible);
    EXPECT_EQ(form.Text, "O 1s                ");
    EXPECT_EQ(form.Text.size(), 20u);
}

TEST(RegionCaptionDialog, RegionWithoutDataIsNotRedrawn) {
    Project project;
    RegionCaptionForm form{"empty", true};
    test::RecordingHost host;
    AcceptRegionCaption(project, host, form);
    EXPECT_EQ(project.Regions[0].Caption, Text20::From("empty"));
    EXPECT_EQ(host.redraws, 0);
}

}  // namespace
}  // namespace molvera
