// The peak editor and the constraint dialog on the running program: opening from Add
// Peak and the peak buttons, what the scroll bars write, Cancel and the title-bar X
// after ReDraw, TS/TL limits, Fix, Delete Peak, and the constraint dialog's OK.
#include "ui/peakeditor.h"

#include <cmath>

#include <QCheckBox>
#include <QCloseEvent>
#include <QComboBox>
#include <QCoreApplication>
#include <QGroupBox>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QRadioButton>
#include <QScrollBar>

#include "base/numtext.h"
#include "spectral/envelope.h"
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
        ImportSample();
        GiveBackground();
        Menu("addPeakAction");
        slot = project().CurrentPeak;
    }
    ui::PeakEditor& editor() { return gui->peakEditor(); }
    ui::ConstraintDialog& cnt() { return gui->constraintDialog(); }
    Peak& peak() { return project().Peaks[slot]; }
    template <class W>
    W* In(QWidget& w, const char* name) {
        W* found = w.findChild<W*>(name);
        EXPECT_NE(found, nullptr) << name;
        return found;
    }
    QLineEdit* Box(const char* name) { return In<QLineEdit>(editor(), name); }
    std::string Text(const char* name) { return Box(name)->text().toStdString(); }
    void Click(const char* name) { In<QPushButton>(editor(), name)->click(); }
    /// Reopens the editor from the main window's button of the region's first peak.
    void Reopen() {
        editor().HideEditor();
        main().PeakButton(10 * project().CurrentRegion)->click();
    }
    int slot = -1;
};

TEST_F(PeakEditorTest, AddPeakOpensTheEditorOnTheNewPeakHighlighted) {
    ASSERT_GE(slot, 0);
    ASSERT_TRUE(editor().isVisible());
    EXPECT_FALSE(editor().isModal());
    EXPECT_EQ(editor().windowTitle(), QStringLiteral("Peak %1").arg(slot));
    EXPECT_EQ(gui->regionWindow().Plot()->SelectedPeak(), slot);
    EXPECT_TRUE(main().PeakButton(10)->isEnabled());

    auto* type = In<QComboBox>(editor(), "peakType");
    QStringList items;
    for (int i = 0; i < type->count(); ++i) items << type->itemText(i);
    EXPECT_EQ(items, (QStringList{"s", "p", "d", "f"}));
    QStringList frames;
    for (const QGroupBox* g : editor().findChildren<QGroupBox*>()) frames << g->title();
    EXPECT_EQ(frames, (QStringList{"Position", "FWHM", "Area", "% Lorentzian-Gaussian (0:G, 100:L)",
                                   "Asymmetry (TS=0 for symmetry)"}));
    for (const char* name :
         {"optimisePeakButton", "redrawButton", "acceptButton", "cancelButton", "deletePeakButton",
          "optimisePositionButton", "positionConstraintsButton", "optimiseGLButton",
          "glConstraintsButton"})
        EXPECT_NE(editor().findChild<QPushButton*>(name), nullptr) << name;
    EXPECT_EQ(In<QPushButton>(editor(), "optimisePeakButton")->text(),
              QStringLiteral("Optimise Peak"));
    EXPECT_EQ(In<QCheckBox>(editor(), "fixArea")->text(), QStringLiteral("Fix"));
    // The asymmetry frame follows the line shape of the options.
    auto* asymmetry = In<QGroupBox>(editor(), "asymmetryFrame");
    EXPECT_EQ(asymmetry->isEnabled(), project().Options.GLSum != 0);
    main().findChild<QPushButton*>("optionsButton")->click();  // Options
    In<QRadioButton>(gui->optionsWindow(), "glSum")->click();
    EXPECT_TRUE(asymmetry->isEnabled());
    In<QRadioButton>(gui->optionsWindow(), "glProduct")->click();
    EXPECT_FALSE(asymmetry->isEnabled());

    // The bars: position in 0.01 eV steps over the background range, area around its middle.
    const Region& reg = project().Current();
    auto* pos = In<QScrollBar>(editor(), "positionBar");
    EXPECT_EQ(pos->minimum(), 0);
    EXPECT_EQ(pos->maximum(),
              static_cast<int>(std::lround((reg.BackgroundHighBE - reg.BackgroundLowBE) * 100)));
    EXPECT_EQ(In<QScrollBar>(editor(), "areaBar")->value(), 500);
    EXPECT_EQ(In<QScrollBar>(editor(), "fwhmBar")->minimum(), 30);
    EXPECT_EQ(In<QScrollBar>(editor(), "fwhmBar")->maximum(), 500);
}

TEST_F(PeakEditorTest, OpeningRoundsThroughTheBarsAndCancelRestoresAfterReDraw) {
    editor().HideEditor();
    peak().Position = 284.567f;
    peak().FWHM = 0.3f;
    ComputeRegionEnvelope(project(), gui->host());  // its curve to match
    const Peak before = peak();
    main().PeakButton(10)->click();
    ASSERT_TRUE(editor().isVisible());
    EXPECT_EQ(Text("positionText"), "284.57");
    EXPECT_EQ(Text("fwhmText"), "0.5");

    // A bar moved by the user rewrites its box; ReDraw applies the boxes and stays open.
    auto* bar = In<QScrollBar>(editor(), "positionBar");
    bar->setValue(bar->value() + 10);
    EXPECT_EQ(Text("positionText"), "284.67");
    Box("glText")->setText(QStringLiteral("35"));
    Click("redrawButton");
    EXPECT_TRUE(editor().isVisible());
    EXPECT_FLOAT_EQ(peak().Position, 284.67f);
    EXPECT_FLOAT_EQ(peak().FWHM, 0.5f);
    EXPECT_EQ(peak().PercentGL, 35);

    Click("cancelButton");
    EXPECT_FALSE(editor().isVisible());
    EXPECT_EQ(gui->regionWindow().Plot()->SelectedPeak(), -1);
    EXPECT_TRUE(peak() == before) << "the peak as it was when opened";

    // The title-bar X restores the same way.
    main().PeakButton(10)->click();
    Box("fwhmText")->setText(QStringLiteral("0.3"));
    Click("redrawButton");
    EXPECT_FLOAT_EQ(peak().FWHM, 0.3f);  // typed below the bar's range, kept
    Box("areaText")->setText(QStringLiteral("12345"));
    Click("redrawButton");
    QCloseEvent close;
    QCoreApplication::sendEvent(&editor(), &close);
    EXPECT_TRUE(close.isAccepted());
    EXPECT_FALSE(editor().isVisible());
    EXPECT_TRUE(peak() == before);
}

TEST_F(PeakEditorTest, AcceptLimitsTailAndKeepsTheTypeForAnUnknownText) {
    auto* type = In<QComboBox>(editor(), "peakType");
    type->setCurrentText(QStringLiteral("p"));
    Click("redrawButton");
    EXPECT_EQ(peak().PeakType, Subshell::P);
    type->setEditText(QStringLiteral("q"));
    Box("tailScaleText")->setText(QStringLiteral("1.7"));
    Box("tailLengthText")->setText(QStringLiteral("0"));
    Box("positionText")->setText(QStringLiteral("285.123"));
    Click("acceptButton");
    EXPECT_FALSE(editor().isVisible());
    EXPECT_EQ(peak().PeakType, Subshell::P);
    EXPECT_EQ(peak().TailScale, 1.0f);
    EXPECT_EQ(peak().TailLength, 0.01f);
    EXPECT_FLOAT_EQ(peak().Position, 285.123f);  // typed text is not rounded by the bar
    EXPECT_EQ(Text("tailScaleText"), "1");
    EXPECT_EQ(Text("tailLengthText"), "0.01");

    Reopen();
    Box("tailLengthText")->setText(QStringLiteral("500"));
    Click("acceptButton");
    EXPECT_EQ(peak().TailLength, 200.0f);
}

TEST_F(PeakEditorTest, FixBoxesWriteTheirFlagAtOnce) {
    ASSERT_FALSE(IsSet(peak().FixPosition));
    In<QCheckBox>(editor(), "fixPosition")->setChecked(true);
    EXPECT_TRUE(IsSet(peak().FixPosition));
    In<QCheckBox>(editor(), "fixGL")->setChecked(true);
    EXPECT_TRUE(IsSet(peak().FixGL));
    EXPECT_FALSE(IsSet(peak().FixArea));
}

TEST_F(PeakEditorTest, DeletePeakEmptiesTheSlotAndTheButton) {
    Click("deletePeakButton");
    EXPECT_FALSE(editor().isVisible());
    EXPECT_FALSE(IsSet(peak().InUse));
    EXPECT_EQ(project().Current().PeakCount, 0);
    EXPECT_FALSE(main().PeakButton(10)->isEnabled());
    EXPECT_EQ(gui->regionWindow().Plot()->SelectedPeak(), -1);
}

TEST_F(PeakEditorTest, OptimiseButtonsFitTheOnePeakAndWriteTheBoxes) {
    // Start the peak off the C 1s maximum: the position search must move it.
    Box("positionText")->setText(QStringLiteral("283.5"));
    Click("redrawButton");
    const float chiBefore = project().Current().ChiSquare;
    Click("optimisePositionButton");
    EXPECT_NE(peak().Position, 283.5f);
    EXPECT_EQ(Text("positionText"), FormatGeneral(peak().Position));
    Click("optimisePeakButton");
    EXPECT_LT(project().Current().ChiSquare, chiBefore);
    EXPECT_EQ(Text("areaText"), FormatGeneral(peak().Area));
    EXPECT_TRUE(editor().isEnabled()) << "enabled again after the fit";
}

class ConstraintDialogTest : public PeakEditorTest {
protected:
    void SetUp() override {
        PeakEditorTest::SetUp();
        first = slot;
        Click("acceptButton");
        Menu("addPeakAction");
        slot = project().CurrentPeak;
    }
    QLineEdit* CntBox(const char* name) { return In<QLineEdit>(cnt(), name); }
    void Ok() { In<QPushButton>(cnt(), "okButton")->click(); }
    int first = -1;
};

TEST_F(ConstraintDialogTest, LinkingToItselfIsRefusedThenALinkIsStored) {
    Click("positionConstraintsButton");
    ASSERT_TRUE(cnt().isVisible());
    EXPECT_EQ(cnt().windowTitle(), QStringLiteral("Constraints for Peak Position"));
    EXPECT_EQ(In<QLabel>(cnt(), "peakLabel")->text(), QString::number(slot));

    In<QCheckBox>(cnt(), "useRelation")->setChecked(true);
    CntBox("referencePeakText")->setText(QString::number(slot));
    Ok();
    ASSERT_EQ(sink.messages, (std::vector<std::string>{"Wrong Reference Peak"}));
    EXPECT_TRUE(cnt().isVisible());
    EXPECT_EQ(CntBox("referencePeakText")->text(), QString::number(slot)) << "entries kept";
    EXPECT_FALSE(IsSet(project().Constraints[slot].Position.Linked));

    CntBox("referencePeakText")->setText(QString::number(first));
    In<QComboBox>(cnt(), "operation")->setCurrentText(QStringLiteral("-"));
    CntBox("argumentText")->setText(QStringLiteral("1.5"));
    Ok();
    EXPECT_EQ(sink.messages.size(), 1u);
    EXPECT_FALSE(cnt().isVisible());
    const ParameterConstraint& c = project().Constraints[slot].Position;
    EXPECT_TRUE(IsSet(c.Linked));
    EXPECT_EQ(c.RefPeak, first);
    EXPECT_EQ(c.Operation, 1);
    EXPECT_EQ(c.Argument, 1.5f);
    EXPECT_TRUE(IsSet(project().Constraints[first].Position.IsReference));

    // Accept applies the relation: this peak sits 1.5 eV below the first.
    Click("acceptButton");
    EXPECT_FLOAT_EQ(peak().Position, project().Peaks[first].Position - 1.5f);
}

TEST_F(ConstraintDialogTest, ALimitRefusalKeepsTheRelationStored) {
    Click("areaConstraintsButton");
    EXPECT_EQ(cnt().windowTitle(), QStringLiteral("Constraints for Peak Area"));
    In<QCheckBox>(cnt(), "useRelation")->setChecked(true);
    CntBox("referencePeakText")->setText(QString::number(first));
    In<QComboBox>(cnt(), "operation")->setCurrentText(QStringLiteral("*"));
    CntBox("argumentText")->setText(QStringLiteral("0.5"));
    In<QCheckBox>(cnt(), "useLimits")->setChecked(true);
    CntBox("lowLimitText")->setText(QStringLiteral("-1"));
    CntBox("highLimitText")->setText(QStringLiteral("10"));
    Ok();
    EXPECT_EQ(sink.messages, (std::vector<std::string>{"Negative range value"}));
    EXPECT_TRUE(cnt().isVisible());
    EXPECT_TRUE(IsSet(project().Constraints[slot].Area.Linked));
    EXPECT_FALSE(IsSet(project().Constraints[slot].Area.UseLimits));

    // Another region's choice closes the dialog with the editor.
    main().RegionButton(4)->click();
    EXPECT_FALSE(cnt().isVisible());
    EXPECT_FALSE(editor().isVisible());
}

}  // namespace
}  // namespace molvera::test
