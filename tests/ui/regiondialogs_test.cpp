// "Region Shift" and "Region Caption" from the Parameters menu, and what every dialog
// does while a fit runs and when another region is chosen.
#include "ui/regiondialogs.h"

#include "ui/backgrounddialog.h"
#include "ui/constraintdialog.h"
#include "ui/gui_fixture.h"
#include "ui/peakeditor.h"

namespace molvera::test {
namespace {

TEST_F(GuiTest, RegionShiftAndCaptionDialogsReachTheRegion) {
    main().RegionButton(2)->click();
    ImportSample();
    project().Regions[2].Shift = 0.25f;
    Menu("regionShiftAction");
    ui::RegionShiftDialog& shift = gui->regionShiftDialog();
    ASSERT_TRUE(shift.isVisible());
    EXPECT_EQ(Text(shift, "shiftText"), "0.25");
    const int redraws = gui->host().RedrawCount();
    Type(shift, "shiftText", "0.35 eV");
    Click(shift, "acceptButton");
    EXPECT_EQ(project().Regions[2].Shift, 0.35f);
    EXPECT_FALSE(shift.isVisible());
    EXPECT_EQ(gui->host().RedrawCount(), redraws);

    Menu("regionCaptionAction");
    ui::RegionCaptionDialog& caption = gui->regionCaptionDialog();
    ASSERT_TRUE(caption.isVisible());
    EXPECT_EQ(Text(caption, "captionText"), std::string(20, ' '));
    Type(caption, "captionText", "C 1s, sputtered 30 minutes");
    Click(caption, "okButton");
    EXPECT_EQ(project().Regions[2].Caption.Str(), "C 1s, sputtered 30 m");
    EXPECT_FALSE(caption.isVisible());
    EXPECT_EQ(gui->host().RedrawCount(), redraws + 1);
}

TEST_F(GuiTest, DialogsAreDisabledDuringAFitAndRegionDialogsCloseOnAnotherRegion) {
    SampleWithPeaks(1);  // opens the peak editor
    Menu("backgroundAction");
    Menu("regionShiftAction");
    Menu("regionCaptionAction");
    Click(gui->peakEditor(), "areaConstraintsButton");
    QWidget* dialogs[] = {&gui->backgroundDialog(), &gui->regionShiftDialog(),
                          &gui->regionCaptionDialog(), &gui->constraintDialog(),
                          &gui->peakEditor()};
    for (QWidget* w : dialogs) ASSERT_TRUE(w->isVisible()) << w->objectName().toStdString();
    gui->host().FitStarted();
    for (QWidget* w : dialogs) EXPECT_FALSE(w->isEnabled()) << w->objectName().toStdString();
    gui->host().FitEnded();
    for (QWidget* w : dialogs) EXPECT_TRUE(w->isEnabled()) << w->objectName().toStdString();

    main().RegionButton(4)->click();
    EXPECT_FALSE(gui->backgroundDialog().isVisible());
    EXPECT_FALSE(gui->constraintDialog().isVisible());
    EXPECT_FALSE(gui->peakEditor().isVisible());
}

}  // namespace
}  // namespace molvera::test
