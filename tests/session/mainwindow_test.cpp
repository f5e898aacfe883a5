#include "session/mainwindow.h"

#include <gtest/gtest.h>

#include "model/project.h"
#include "model/regionops.h"
#include "support/recording_host.h"
#include "support/sample_region.h"

namespace molvera {
namespace {

using test::RecordingHost;

TEST(MainWindowColours, CurrentWinsOverDataAndEmptyIsButtonFace) {
    auto project = std::make_unique<Project>();
    test::FillSampleRegion(*project, 0);
    test::FillSampleRegion(*project, 3);
    project->CurrentRegion = 3;
    EXPECT_EQ(RegionButtonColourOf(*project, 3), RegionButtonColour::Current);
    EXPECT_EQ(RegionButtonColourOf(*project, 0), RegionButtonColour::HasData);
    EXPECT_EQ(RegionButtonColourOf(*project, 1), RegionButtonColour::ButtonFace);
    const Rgb green = RegionButtonRgb(RegionButtonColour::HasData);
    const Rgb yellow = RegionButtonRgb(RegionButtonColour::Current);
    EXPECT_EQ(green.r * 65536 + green.g * 256 + green.b, 0xC0FFC0);
    EXPECT_EQ(yellow.r * 65536 + yellow.g * 256 + yellow.b, 0xFFFFC0);
}

TEST(MainWindowSelectRegion, SwapsEnabledPeakButtonsBetweenRegions) {
    auto project = std::make_unique<Project>();
    RecordingHost host;
    ClearProject(*project, host);
    for (int r : {0, 2}) {
        test::FillSampleRegion(*project, r);
        test::GiveSampleBackground(*project, r);
    }
    project->CurrentRegion = 0;
    ASSERT_EQ(AddPeak(*project, host), 0);
    project->CurrentRegion = 2;
    ASSERT_EQ(AddPeak(*project, host), 1);
    ASSERT_EQ(AddPeak(*project, host), 2);

    host = RecordingHost{};
    SelectRegion(*project, host, 0);
    EXPECT_EQ(project->CurrentRegion, 0);
    // Region 2's two buttons are disabled, region 0's one button enabled.
    ASSERT_EQ(host.peakButtons.size(), 3u);
    EXPECT_FALSE(host.peakButtons[20].enabled);
    EXPECT_EQ(host.peakButtons[21].caption, "2");
    EXPECT_FALSE(host.peakButtons[21].enabled);
    EXPECT_EQ(host.peakButtons[0].caption, "0");
    EXPECT_TRUE(host.peakButtons[0].enabled);
    EXPECT_EQ(host.regionWindowShows, 1);

    // A region without data enables nothing.
    host = RecordingHost{};
    SelectRegion(*project, host, 5);
    EXPECT_EQ(project->CurrentRegion, 5);
    ASSERT_EQ(host.peakButtons.size(), 1u);
    EXPECT_FALSE(host.peakButtons[0].enabled);

    // Out of range: nothing happens.
    SelectRegion(*project, host, 10);
    EXPECT_EQ(project->CurrentRegion, 5);
}

TEST(MainWindowProposeFileName, ReplacesEverythingAfterTheFirstDotOfTheName) {
    EXPECT_EQ(ProposeFileName("/data/c1s.des", "dat"), "/data/c1s.dat");
    EXPECT_EQ(ProposeFileName("sample.fit.rpa", "xps"), "sample.xps");
    EXPECT_EQ(ProposeFileName("/data/noext", "xps"), "/data/noext");
    EXPECT_EQ(ProposeFileName("/my.folder/c1s", "xps"), "/my.folder/c1s");
    EXPECT_EQ(ProposeFileName("/my.folder/c1s.csv", "par"), "/my.folder/c1s.par");
    EXPECT_EQ(ProposeFileName("", "xps"), "");
    EXPECT_EQ(ProposeFileName("trailing.", "opa"), "trailing.opa");
}

}  // namespace
}  // namespace molvera
