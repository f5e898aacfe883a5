// The main window's rules and the region shift and caption dialogs.
#include "session/mainwindow.h"

#include <gtest/gtest.h>

#include "session/regiondialogs.h"
#include "spectral/regionedit.h"
#include "support/recording_host.h"
#include "support/sample_region.h"

namespace molvera {
namespace {

TEST(MainWindowProposeFileName, ReplacesEverythingAfterTheFirstDotOfTheName) {
    EXPECT_EQ(ProposeFileName("/data/c1s.des", "dat"), "/data/c1s.dat");
    EXPECT_EQ(ProposeFileName("sample.fit.rpa", "xps"), "sample.xps");
    EXPECT_EQ(ProposeFileName("/my.folder/c1s", "xps"), "/my.folder/c1s");
    EXPECT_EQ(ProposeFileName("/my.folder/c1s.csv", "par"), "/my.folder/c1s.par");
    EXPECT_EQ(ProposeFileName("trailing.", "opa"), "trailing.opa");
}

struct RegionHost : test::RecordingHost {
    int dialogHides = 0;
    void HideRegionDialogs() override { ++dialogHides; }
};

TEST(MainWindowSelectRegion, OnlyTheCurrentRegionsPeakButtonsTakeInput) {
    Project project;
    RegionHost host;
    ClearProject(project, host);
    test::FillSampleRegion(project, 1);
    test::GiveSampleBackground(project, 1);
    ASSERT_EQ(AddPeak(project, host), 0);
    ASSERT_EQ(AddPeak(project, host), 1);
    test::FillSampleRegion(project, 2);  // data, no background

    SelectRegion(project, host, 0);
    EXPECT_EQ(project.CurrentRegion, 0);
    EXPECT_EQ(host.PeakButton(11), (PeakButtonText{"1", false}));
    EXPECT_EQ(host.dialogHides, 1);
    EXPECT_EQ(host.regionWindowShows, 1);
    SelectRegion(project, host, 1);
    EXPECT_EQ(host.PeakButton(10), (PeakButtonText{"0", true}));
    EXPECT_EQ(host.PeakButton(11), (PeakButtonText{"1", true}));
    EXPECT_EQ(host.PeakButton(12), (PeakButtonText{"", false}));
    SelectRegion(project, host, 2);
    EXPECT_FALSE(host.PeakButton(10).enabled);
    SelectRegion(project, host, 10);  // no such region
    EXPECT_EQ(project.CurrentRegion, 2);
}

TEST(RegionDialogs, ShiftTakesTheLeadingNumberWithoutRedrawing) {
    Project project;
    project.CurrentRegion = 2;
    project.Regions[2].Shift = 0.25f;
    RegionShiftForm form;
    OpenRegionShift(project, form);
    EXPECT_TRUE(form.visible);
    EXPECT_EQ(form.shiftText, "0.25");
    for (const auto& [typed, stored] : {std::pair{"0.35 eV", 0.35f}, {"abc", 0.0f}}) {
        form.shiftText = typed;
        AcceptRegionShift(project, form);
        EXPECT_EQ(project.Regions[2].Shift, stored) << typed;
        EXPECT_FALSE(form.visible);
    }
}

TEST(RegionDialogs, CaptionIsCutOrPaddedTo20AndRedrawnWhenThereAreData) {
    Project project;
    project.CurrentRegion = 1;
    RegionCaptionForm form;
    OpenRegionCaption(project, form);
    EXPECT_EQ(form.captionText, std::string(20, ' '));  // an empty caption is 20 blanks
    test::RecordingHost host;
    form.captionText = "C 1s, sputtered 30 minutes";
    AcceptRegionCaption(project, host, form);
    EXPECT_EQ(project.Regions[1].Caption.Str(), "C 1s, sputtered 30 m");
    EXPECT_FALSE(form.visible);
    EXPECT_EQ(host.redraws, 0);  // no data in the region

    test::FillSampleRegion(project, 1);
    form.captionText = "Fe 2p";
    AcceptRegionCaption(project, host, form);
    EXPECT_EQ(host.redraws, 1);
    OpenRegionCaption(project, form);
    EXPECT_EQ(form.captionText, "Fe 2p               ");
}

}  // namespace
}  // namespace molvera
