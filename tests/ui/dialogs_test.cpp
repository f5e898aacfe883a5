// The background, options, peak editor and constraint dialogs on the running program:
// their controls reach the session's forms (whose rules are tested there), and what only
// the windows show: the busy state, trials in the boxes, repaints, the fitting window.
#include <filesystem>
#include <functional>
#include <set>
#include <tuple>

#include <QCheckBox>
#include <QCloseEvent>
#include <QComboBox>
#include <QCoreApplication>
#include <QGroupBox>
#include <QGuiApplication>
#include <QLabel>
#include <QScrollBar>
#include <QTimer>

#include "base/messages.h"
#include "base/numtext.h"
#include "session/peakform.h"
#include "spectral/background.h"
#include "ui/backgrounddialog.h"
#include "ui/constraintdialog.h"
#include "ui/fittingwindow.h"
#include "ui/gui_fixture.h"
#include "ui/optionswindow.h"
#include "ui/peakeditor.h"
#include "ui/plotwidget.h"

namespace molvera::test {
namespace {

class BackgroundDialogTest : public GuiTest {
protected:
    void SetUp() override {
        GuiTest::SetUp();
        main().RegionButton(3)->click();
        ImportSample();
        Menu("backgroundAction");
    }
    ui::BackgroundDialog& dialog() { return gui->backgroundDialog(); }
    void Choose(const char* name, const char* text) {
        Child<QComboBox>(dialog(), name)->setCurrentText(QString::fromLatin1(text));
    }
    std::string Box(const char* name) { return Text(dialog(), name); }
    const Region& reg() { return project().Regions[3]; }
    // The busy state: hourglass, and no window takes input.
    bool Busy() {
        const QCursor* c = QGuiApplication::overrideCursor();
        return c && c->shape() == Qt::WaitCursor && !main().isEnabled() && !region().isEnabled() &&
               !dialog().isEnabled();
    }
};

// Calls `probe` at every pass of the event loop while a button's command runs.
class Probe {
public:
    explicit Probe(std::function<void()> probe) {
        QObject::connect(&timer_, &QTimer::timeout, std::move(probe));
        timer_.start(0);
    }

private:
    QTimer timer_;
};

TEST_F(BackgroundDialogTest, ControlsReachTheRegionAndTheAreaComesBack) {
    EXPECT_FALSE(dialog().isModal());
    EXPECT_EQ(dialog().windowTitle(), QStringLiteral("Region 3"));
    EXPECT_EQ(Box("highBEText"), FormatGeneral(reg().MaxBE));
    Type(dialog(), "lowBEText", "270");
    Type(dialog(), "highBEText", "295.5");
    Choose("averagePoints", "5");
    Choose("backgroundType", "Tougaard");
    Type(dialog(), "tougaardB1Text", "2500");
    Click(dialog(), "acceptButton");
    const Region& r = reg();
    EXPECT_EQ(std::tuple(r.BackgroundLowBE, r.BackgroundHighBE, r.EndPointAverage, r.BackgroundType,
                         r.BackgroundParameter),
              std::tuple(270.0f, 295.5f, Int16{5}, BackgroundKind::Tougaard, 2500.0f));
    EXPECT_EQ(Box("areaText"), FormatGeneral(static_cast<float>(NetArea(r))));
    // Refusals correct their control, with a beep: averaging, type, low boundary.
    Type(dialog(), "shirleySlopeText", "0.5");
    Choose("averagePoints", "4");
    Click(dialog(), "acceptButton");
    Choose("backgroundType", "Shirly");
    Click(dialog(), "acceptButton");
    Type(dialog(), "lowBEText", "100");
    Click(dialog(), "acceptButton");
    EXPECT_EQ(std::tuple(Child<QComboBox>(dialog(), "averagePoints")->currentText().toStdString(),
                         Child<QComboBox>(dialog(), "backgroundType")->currentText().toStdString(),
                         Box("lowBEText"), sink.beeps),
              std::tuple("None", "Shirley", FormatGeneral(reg().MinBE), 3));
    Click(dialog(), "acceptButton");
    EXPECT_EQ(r.BackgroundParameter, 0.5f);
    Click(dialog(), "closeButton");
    EXPECT_FALSE(dialog().isVisible());
}

TEST_F(BackgroundDialogTest, TougaardOptimiseRunsBusyWithTheBoxFollowingTheTrials) {
    Choose("backgroundType", "Tougaard");
    std::set<std::string> shown;
    bool busyEverywhere = true;
    int probes = 0;
    {
        Probe probe([&] {
            ++probes;
            shown.insert(Box("tougaardB1Text"));
            busyEverywhere = busyEverywhere && Busy();
        });
        Click(dialog(), "tougaardB1SearchButton");
    }
    EXPECT_TRUE(probes >= 57 && busyEverywhere);
    EXPECT_GT(shown.size(), 10u);  // the box showed the trial values as they ran
    EXPECT_EQ(Box("tougaardB1Text"), FormatGeneral(reg().BackgroundParameter));
    EXPECT_EQ(Box("areaText"), FormatGeneral(static_cast<float>(NetArea(reg()))));
    EXPECT_TRUE(!QGuiApplication::overrideCursor() && main().isEnabled() && region().isEnabled() &&
                dialog().isEnabled());
}

TEST_F(BackgroundDialogTest, ShirleySlopeSearchShowsEveryTrialAndPaintsThePlot) {
    // Over the whole C 1s range the Shirley background lies above the falling
    // high-energy tail, so the search has something to do.
    Click(dialog(), "acceptButton");
    std::vector<std::string> slopes;
    const int paintsBefore = region().Plot()->PaintCount();
    {
        Probe probe([&] {
            if (slopes.empty() || slopes.back() != Box("shirleySlopeText"))
                slopes.push_back(Box("shirleySlopeText"));
        });
        Click(dialog(), "shirleySlopeSearchButton");
    }
    // At least one doubling and the 21 bisection steps, each shown and painted.
    ASSERT_GE(slopes.size(), 22u);
    EXPECT_GE(region().Plot()->PaintCount() - paintsBefore, 22);
    EXPECT_EQ(slopes.back(), FormatGeneral(reg().BackgroundParameter));
}

class OptionsTest : public GuiTest {
protected:
    void SetUp() override {
        GuiTest::SetUp();
        Click(main(), "optionsButton");
    }
    ui::OptionsWindow& dialog() { return gui->optionsWindow(); }
    QAbstractButton* Button(const std::string& name) {
        return Child<QAbstractButton>(dialog(), name.c_str());
    }
};

// A refusal names the row and level of the box it read: boxes from each frame, row
// and level reach their own option; the one refused is shown and the dialog stays open.
TEST_F(OptionsTest, LevelBoxesReachTheirOwnOptionAndOkShowsARefusal) {
    EXPECT_EQ(Text(dialog(), "newtonTrialsText"), std::to_string(DefaultNewtonTrials()));
    const std::array<const char*, 3> cases[] = {
        {"usePositionSearch2", "positionRangeText2", "Range value for Position of level 3"},
        {"useAreaSearch0", "areaStepText0", "Step value for Area of level 1"},
        {"useFWHMNewton3", "fwhmDeltaText3", "Delta value for FWHM of level 4"},
        {"usePositionNewton1", "positionDeltaText1", "Delta value for Position of level 2"},
    };
    for (const auto& [use, box, message] : cases) {
        Button(use)->setChecked(true);
        Type(dialog(), box, "-1");
        Click(dialog(), "okButton");
        EXPECT_EQ(sink.messages.back(), std::string(message) + " must be >0");
        EXPECT_TRUE(dialog().isVisible());
        Type(dialog(), box, "0.5");
    }
    Type(dialog(), "searchTrialsText", "7");
    Type(dialog(), "toleranceText", "2");
    Click(dialog(), "okButton");
    EXPECT_EQ(sink.messages.size(), 4u);
    EXPECT_FALSE(dialog().isVisible());
    const FitOptions& o = project().Options;
    EXPECT_EQ(std::tuple(o.PositionSearch[2].Range, o.AreaSearch[0].Step, o.FWHMNewton[3].Delta,
                         o.PositionNewton[1].Delta, o.SearchTrials, o.Tolerance),
              std::tuple(0.5f, 0.5f, 0.5f, 0.5f, Int16{7}, 0.02f));
}

TEST_F(OptionsTest, MethodAndLineShapeButtonsActAtOnceAndStayExclusive) {
    EXPECT_EQ(dialog().windowTitle(), "Option");
    EXPECT_NE(Button("glProduct")->isChecked(), IsSet(project().Options.GLSum));
    Button("useSearch")->click();
    EXPECT_EQ(project().Options.Method, 0.0f);
    EXPECT_FALSE(Button("useNewton")->isChecked());
    Button("useNewton")->click();
    EXPECT_EQ(project().Options.Method, 1.0f);
    EXPECT_FALSE(Button("useSearch")->isChecked());
    Button("glSum")->click();
    EXPECT_TRUE(IsSet(project().Options.GLSum));
    EXPECT_FALSE(Button("glProduct")->isChecked());
    Button("glProduct")->click();
    EXPECT_FALSE(IsSet(project().Options.GLSum));
}

TEST_F(OptionsTest, SaveAndLoadParametersGoThroughTheFileDialog) {
    const std::string opa = (ScratchDir() / "mine.opa").string();
    Type(dialog(), "newtonTrialsText", "7");
    chooser.paths.push_back(opa);
    Click(dialog(), "saveParametersButton");
    EXPECT_TRUE(sink.messages.empty());
    EXPECT_EQ(std::filesystem::file_size(opa), 206u);

    Type(dialog(), "newtonTrialsText", "9");
    Click(dialog(), "okButton");
    EXPECT_EQ(project().Options.NewtonTrials, 9);
    Click(main(), "optionsButton");
    chooser.paths.push_back(opa);
    Click(dialog(), "loadParametersButton");
    EXPECT_EQ(chooser.requests.back().name, "");  // the dialog's name is emptied first
    EXPECT_EQ(project().Options.NewtonTrials, 7);
    EXPECT_EQ(Text(dialog(), "newtonTrialsText"), "7");
    EXPECT_TRUE(dialog().isVisible());
}

TEST_F(GuiTest, StopFittingEndsALongFitEarly) {
    SampleWithPeaks(6);
    for (int k = 0; k < 6; ++k) {
        Peak& p = project().Peaks[static_cast<std::size_t>(k)];
        p.Position += static_cast<float>(k - 3);
        p.FixGL = 0;
    }
    project().Options.Method = 1;
    project().Options.NewtonTrials = 200;

    // The zero timer runs once per pass of the event loop during the fit; on its
    // third run Stop is clicked, a few milliseconds into a fit of 200 trials.
    int ticks = 0;
    bool fittingShown = false, othersDisabled = false;
    QTimer timer;
    QObject::connect(&timer, &QTimer::timeout, [&] {
        if (++ticks != 3) return;
        fittingShown = gui->fittingWindow().isVisible();
        othersDisabled = !main().isEnabled() && !region().CommandsEnabled();
        gui->fittingWindow().StopButton()->click();
    });
    timer.start(0);
    const float before = project().TotalChiSquare;
    const int redrawsBefore = gui->host().RedrawCount();
    Menu("optimiseRegionAction");
    timer.stop();

    EXPECT_GE(ticks, 3);
    EXPECT_TRUE(fittingShown && othersDisabled);
    EXPECT_EQ(gui->fittingWindow().windowTitle(), "Fitting");
    EXPECT_EQ(gui->fittingWindow().StopButton()->text(), "Stop Fitting");
    EXPECT_TRUE(!gui->fittingWindow().isVisible() && main().isEnabled() &&
                region().CommandsEnabled() && !project().StopRequested);
    // One redraw per finished trial: far fewer than the 200 asked for.
    EXPECT_LT(gui->host().RedrawCount() - redrawsBefore, 100);
    EXPECT_LT(project().TotalChiSquare, before);  // the steps made before Stop are kept
    EXPECT_EQ(main().TotalLabel()->text().toStdString(), FormatGeneral(project().TotalChiSquare));
}

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
    ASSERT_TRUE(editor().isVisible() && !editor().isModal());
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
    auto* type = Child<QComboBox>(editor(), "peakType");
    Type(editor(), "splittingText", "0.9");
    Type(editor(), "tailScaleText", "1.7");
    Type(editor(), "tailLengthText", "3");
    type->setCurrentText(QStringLiteral("p"));
    Click(editor(), "redrawButton");
    EXPECT_TRUE(editor().isVisible());
    const Peak& p = peak();
    EXPECT_EQ(std::tuple(p.Splitting, p.TailScale, p.TailLength, p.PeakType),
              std::tuple(0.9f, 1.0f, 3.0f, Subshell::P));
    // What the editor corrects comes back: TS limited to 1, an unknown type as the peak's.
    type->setEditText(QStringLiteral("q"));
    Click(editor(), "redrawButton");
    EXPECT_EQ(Text(editor(), "tailScaleText"), "1");
    EXPECT_EQ(type->currentText(), QStringLiteral("p"));
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
    EXPECT_FALSE(editor().isVisible() || IsSet(peak().InUse) || main().PeakButton(10)->isEnabled());
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
