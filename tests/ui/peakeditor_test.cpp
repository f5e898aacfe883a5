// The peak editor and the constraint dialog on the running program, beside what the
// workflow test types into them: the controls it leaves out, Cancel and the title-bar X,
// Delete Peak, the Optimise buttons and a refusal of the constraint dialog.
#include "ui/peakeditor.h"

#include <tuple>

#include <QCheckBox>
#include <QCloseEvent>
#include <QComboBox>
#include <QCoreApplication>
#include <QGroupBox>
#include <QLabel>
#include <QScrollBar>

#include "base/numtext.h"
#include "session/peakform.h"
#include "ui/constraintdialog.h"
#include "ui/gui_fixture.h"
#include "ui/optionswindow.h"
#include "ui/plotwidget.h"

namespace molvera::test {
namespace {

class PeakEditorTest : public GuiTest {
protected:
    void SetUp() override {
        GuiTest::SetUp();
        main().RegionButton(1)->click();
        SampleWithPeaks(1);
        slot = project().CurrentPeak;
    }
    ui::PeakEditor& editor() { return gui->peakEditor(); }
    Peak& peak() { return project().Peaks[slot]; }
    int slot = -1;
};

TEST_F(PeakEditorTest, AddPeakOpensTheEditorShowingItsForm) {
    ASSERT_TRUE(editor().isVisible());
    EXPECT_FALSE(editor().isModal());
    EXPECT_EQ(editor().windowTitle(), QStringLiteral("Peak %1").arg(slot));
    EXPECT_EQ(region().Plot()->SelectedPeak(), slot);
    PeakForm form;
    FillPeakEditor(project(), form, slot);
    EXPECT_EQ(Text(editor(), "positionText"), form.positionText);
    EXPECT_EQ(Child<QScrollBar>(editor(), "positionBar")->maximum(), form.positionBar.max);
    EXPECT_EQ(Child<QScrollBar>(editor(), "areaBar")->value(), form.areaBar.value);
    // The asymmetry frame follows the line shape chosen in the options.
    auto* asymmetry = Child<QGroupBox>(editor(), "asymmetryFrame");
    Click(main(), "optionsButton");
    Click(gui->optionsWindow(), "glSum");
    EXPECT_TRUE(asymmetry->isEnabled());
    Click(gui->optionsWindow(), "glProduct");
    EXPECT_FALSE(asymmetry->isEnabled());
}

TEST_F(PeakEditorTest, ControlsReachThePeak) {
    Type(editor(), "splittingText", "0.9");
    Type(editor(), "tailScaleText", "0.4");
    Type(editor(), "tailLengthText", "3");
    Child<QComboBox>(editor(), "peakType")->setCurrentText(QStringLiteral("p"));
    Click(editor(), "redrawButton");
    EXPECT_TRUE(editor().isVisible());
    const Peak& p = peak();
    EXPECT_EQ(std::tuple(p.Splitting, p.TailScale, p.TailLength, p.PeakType),
              std::tuple(0.9f, 0.4f, 3.0f, Subshell::P));
    // A bar moved by the user rewrites its box; a Fix box sets its flag at once.
    auto* bar = Child<QScrollBar>(editor(), "fwhmBar");
    bar->setValue(bar->value() + 10);
    EXPECT_EQ(Text(editor(), "fwhmText"), FormatGeneral(bar->value() / 100.0f));
    for (const auto& [fix, flag] : {std::pair{"fixPosition", &Peak::FixPosition},
                                    {"fixFWHM", &Peak::FixFWHM},
                                    {"fixArea", &Peak::FixArea},
                                    {"fixGL", &Peak::FixGL}}) {
        Child<QCheckBox>(editor(), fix)->setChecked(true);
        EXPECT_TRUE(IsSet(peak().*flag)) << fix;
    }
}

TEST_F(PeakEditorTest, CancelAndTheTitleBarXRestoreThePeakAsOpened) {
    const Peak before = peak();
    for (bool titleBar : {false, true}) {
        main().PeakButton(10)->click();
        Type(editor(), "areaText", "12345");
        Click(editor(), "redrawButton");
        EXPECT_EQ(peak().Area, 12345.0f);
        QCloseEvent close;
        if (titleBar)
            QCoreApplication::sendEvent(&editor(), &close);
        else
            Click(editor(), "cancelButton");
        EXPECT_FALSE(editor().isVisible());
        EXPECT_EQ(region().Plot()->SelectedPeak(), -1);
        EXPECT_TRUE(peak() == before);
    }
}

TEST_F(PeakEditorTest, DeletePeakEmptiesTheSlotAndTheButton) {
    Click(editor(), "deletePeakButton");
    EXPECT_FALSE(editor().isVisible());
    EXPECT_FALSE(IsSet(peak().InUse));
    EXPECT_FALSE(main().PeakButton(10)->isEnabled());
    EXPECT_EQ(region().Plot()->SelectedPeak(), -1);
}

TEST_F(PeakEditorTest, OptimiseButtonsFitTheOnePeakAndWriteTheBoxes) {
    Type(editor(), "positionText", "283.5");  // off the C 1s maximum
    Click(editor(), "redrawButton");
    const float chiBefore = project().Current().ChiSquare;
    Click(editor(), "optimisePositionButton");
    EXPECT_NE(peak().Position, 283.5f);
    EXPECT_EQ(Text(editor(), "positionText"), FormatGeneral(peak().Position));
    Click(editor(), "optimisePeakButton");
    EXPECT_LT(project().Current().ChiSquare, chiBefore);
    EXPECT_EQ(Text(editor(), "areaText"), FormatGeneral(peak().Area));
    EXPECT_TRUE(editor().isEnabled()) << "enabled again after the fit";
}

TEST_F(PeakEditorTest, ConstraintDialogShowsARefusalAndKeepsTheEntries) {
    ui::ConstraintDialog& cnt = gui->constraintDialog();
    Click(editor(), "areaConstraintsButton");
    ASSERT_TRUE(cnt.isVisible());
    EXPECT_EQ(cnt.windowTitle(), QStringLiteral("Constraints for Peak Area"));
    EXPECT_EQ(Child<QLabel>(cnt, "peakLabel")->text(), QString::number(slot));
    Child<QCheckBox>(cnt, "useRelation")->setChecked(true);
    Type(cnt, "referencePeakText", QString::number(slot));
    Click(cnt, "okButton");
    EXPECT_EQ(sink.messages, (std::vector<std::string>{"Wrong Reference Peak"}));
    EXPECT_TRUE(cnt.isVisible());
    EXPECT_EQ(Text(cnt, "referencePeakText"), std::to_string(slot)) << "entries kept";
    EXPECT_FALSE(IsSet(project().Constraints[slot].Area.Linked));
}

}  // namespace
}  // namespace molvera::test
