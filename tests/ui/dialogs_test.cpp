// The background, options, peak editor, constraint and fitting windows on the running
// program: their controls reach the session's forms (whose rules are tested there), and
// what only the windows show: the fitting window.
#include <tuple>

#include <QCheckBox>
#include <QClipboard>
#include <QComboBox>
#include <QGuiApplication>
#include <QLabel>
#include <QMenu>
#include <QRegularExpression>
#include <QScrollBar>
#include <QTimer>
#include <QtTest/QTest>

#include "base/numtext.h"
#include "spectral/background.h"
#include "ui/backgrounddialog.h"
#include "ui/constraintdialog.h"
#include "ui/fittingwindow.h"
#include "ui/gui_fixture.h"
#include "ui/optionswindow.h"
#include "ui/peakeditor.h"
#include "ui/peaktable.h"
#include "ui/plotwidget.h"
#include "ui/quantwindow.h"

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
    QComboBox* Combo(const char* name) { return Child<QComboBox>(dialog(), name); }
    std::string Box(const char* name) { return Text(dialog(), name); }
    const Region& reg() { return project().Regions[3]; }
};

TEST_F(BackgroundDialogTest, ControlsReachTheRegionAndTheAreaComesBack) {
    EXPECT_EQ(Box("highBEText"), FormatGeneral(reg().MaxBE));
    Type(dialog(), "lowBEText", "270");
    Type(dialog(), "highBEText", "295.5");
    Combo("averagePoints")->setCurrentText("5");
    Combo("backgroundType")->setCurrentText("Tougaard");
    Type(dialog(), "tougaardB1Text", "2500");
    Click(dialog(), "acceptButton");
    const Region& r = reg();
    EXPECT_EQ(std::tuple(r.BackgroundLowBE, r.BackgroundHighBE, r.EndPointAverage, r.BackgroundType,
                         r.BackgroundParameter),
              std::tuple(270.0f, 295.5f, Int16{5}, BackgroundKind::Tougaard, 2500.0f));
    EXPECT_EQ(Box("areaText"), FormatGeneral(static_cast<float>(NetArea(r))));
    // A refusal corrects its control, with a beep (the rules are the form's).
    Type(dialog(), "shirleySlopeText", "0.5");
    Combo("backgroundType")->setCurrentText("Shirly");
    Click(dialog(), "acceptButton");
    EXPECT_EQ(std::pair(Combo("backgroundType")->currentText().toStdString(), sink.beeps),
              std::pair(std::string("Shirley"), 1));
    Click(dialog(), "acceptButton");
    EXPECT_EQ(r.BackgroundParameter, 0.5f);
    Click(dialog(), "closeButton");
    EXPECT_FALSE(dialog().isVisible());
}

TEST_F(BackgroundDialogTest, OptimiseRefusesABoxWithoutANumberAndStoresNothing) {
    Combo("backgroundType")->setCurrentText("Tougaard");
    Type(dialog(), "tougaardB1Text", "abc");
    const Region before = reg();
    Click(dialog(), "tougaardB1SearchButton");
    EXPECT_EQ(sink.messages, std::vector<std::string>{"B1: 'abc' is not a number"});
    EXPECT_TRUE(reg() == before);
    EXPECT_TRUE(Child<QLineEdit>(dialog(), "tougaardB1Text")->property("invalid").toBool());
}

// Boxes reach their own option, a refusal is shown with the window left open, the method
// and line-shape buttons act at once and Cancel gives back the options as opened.
TEST_F(GuiTest, OptionsWindowReachesTheOptions) {
    Click(main(), "optionsButton");
    ui::OptionsWindow& w = gui->optionsWindow();
    auto button = [&](const char* name) { return Child<QAbstractButton>(w, name); };
    FitOptions& o = project().Options;
    EXPECT_GT(o.NewtonTrials, 0);  // default.opa read at start
    const FitOptions opened = o;
    button("useSearch")->click();
    EXPECT_EQ(o.Method, 0.0f);
    button("glSum")->click();
    EXPECT_TRUE(IsSet(o.GLSum));
    Click(w, "cancelButton");
    EXPECT_TRUE(o == opened && !w.isVisible());
    Click(main(), "optionsButton");
    // The refusal names the row and level of the box it read.
    button("useFWHMNewton3")->setChecked(true);
    Type(w, "fwhmDeltaText3", "-1");
    Click(w, "okButton");
    EXPECT_EQ(sink.messages,
              std::vector<std::string>{"Delta value for FWHM of level 4 must be >0"});
    EXPECT_TRUE(w.isVisible());
    Type(w, "fwhmDeltaText3", "0.5");
    Type(w, "newtonTrialsText", "9");
    Type(w, "toleranceText", "2");
    Click(w, "okButton");
    EXPECT_EQ(std::tuple(o.FWHMNewton[3].Delta, o.NewtonTrials, o.Tolerance, w.isVisible()),
              std::tuple(0.5f, Int16{9}, 0.02f, false));
}

TEST_F(GuiTest, StopFittingEndsALongFitEarly) {
    SampleWithPeaks(6);
    for (int k = 0; k < 6; ++k) {
        project().Peaks[static_cast<std::size_t>(k)].Position += static_cast<float>(k - 3);
        project().Peaks[static_cast<std::size_t>(k)].FixGL = 0;
    }
    project().Options.Method = 1;
    project().Options.NewtonTrials = 200;
    // The zero timer runs once per pass of the event loop during the fit; from its third
    // run, once the window shows a step, Stop is clicked, a few milliseconds into a fit of
    // 200 trials.
    int ticks = 0;
    bool shownAlone = false;  // the fitting window shown, the others disabled
    QString progressText;
    int redrawsAtStop = 0;
    QTimer timer;
    QObject::connect(&timer, &QTimer::timeout, [&] {
        if (++ticks < 3 || project().StopRequested || !progressText.isEmpty()) return;
        const QString text = gui->fittingWindow().ProgressLabel()->text();
        if (text.startsWith(QStringLiteral("Starting"))) return;
        progressText = text;
        shownAlone =
            gui->fittingWindow().isVisible() && !main().isEnabled() && !region().CommandsEnabled();
        gui->fittingWindow().StopButton()->click();
        redrawsAtStop = gui->host().RedrawCount();
    });
    timer.start(0);
    const float before = project().TotalChiSquare;
    Menu("optimiseRegionAction");
    timer.stop();
    EXPECT_TRUE(ticks >= 3 && shownAlone);
    // The window stays with the summary until closed by the same button.
    ui::FittingWindow& fitting = gui->fittingWindow();
    EXPECT_TRUE(fitting.isVisible() && main().isEnabled() && region().CommandsEnabled() &&
                !project().StopRequested);
    EXPECT_TRUE(QRegularExpression(QStringLiteral("^Newton's method   trial [1-9]\\d*   "
                                                  "chi-square [1-9][.\\d]*   \\d+\\.\\d s$"))
                    .match(progressText)
                    .hasMatch())
        << progressText.toStdString();
    const QString summary = fitting.SummaryLabel()->text();
    EXPECT_TRUE(summary.startsWith(QStringLiteral("Newton's method, ")) &&
                summary.contains(QStringLiteral(" trials")))
        << summary.toStdString();
    EXPECT_GE(fitting.Trace().Size(), 1u);  // at least the step the window showed
    fitting.StopButton()->click();
    EXPECT_FALSE(fitting.isVisible());
    // Stop ends the fit at once: a few redraws after it, where trial 1 alone makes dozens.
    EXPECT_LT(gui->host().RedrawCount() - redrawsAtStop, 13);
    EXPECT_LT(project().TotalChiSquare, before);  // the steps made before Stop are kept
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

TEST_F(PeakEditorTest, ControlsReachThePeak) {
    EXPECT_EQ(region().Plot()->SelectedPeak(), slot);  // Add Peak opened the editor on it
    auto* type = Child<QComboBox>(editor(), "peakType");
    Type(editor(), "splittingText", "0.9");
    Type(editor(), "tailScaleText", "1.7");
    Type(editor(), "tailLengthText", "3");
    type->setCurrentText(QStringLiteral("p"));
    Click(editor(), "redrawButton");
    const Peak& p = peak();
    EXPECT_EQ(std::tuple(p.Splitting, p.TailScale, p.TailLength, p.PeakType),
              std::tuple(0.9f, 1.0f, 3.0f, Subshell::P));
    EXPECT_EQ(Text(editor(), "tailScaleText"), "1");  // what the form corrects comes back
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

// A box without a number: an error naming it, the box framed until it is edited, and
// nothing stored; the other dialogs mark their boxes the same way.
TEST_F(PeakEditorTest, ABoxWithoutANumberIsRefusedAndMarked) {
    const Peak before = peak();
    Type(editor(), "positionText", "abc");
    Click(editor(), "acceptButton");
    EXPECT_EQ(sink.messages, std::vector<std::string>{"Position: 'abc' is not a number"});
    EXPECT_EQ(sink.errors, 1);
    EXPECT_TRUE(peak() == before && editor().isVisible());
    auto* box = Child<QLineEdit>(editor(), "positionText");
    EXPECT_TRUE(box->property("invalid").toBool());
    EXPECT_FALSE(Child<QLineEdit>(editor(), "fwhmText")->property("invalid").toBool());
    QTest::keyClicks(box, "1");
    EXPECT_FALSE(box->property("invalid").toBool());

    Click(main(), "optionsButton");
    ui::OptionsWindow& options = gui->optionsWindow();
    Type(options, "toleranceText", "zz");
    Click(options, "okButton");
    EXPECT_EQ(sink.messages.back(), "% Tolerance: 'zz' is not a number");
    EXPECT_TRUE(Child<QLineEdit>(options, "toleranceText")->property("invalid").toBool());
}

// Typed values take effect after the pause without a click and the table follows; its
// cells, rows and Ctrl+C work by keyboard and mouse; a linked value is read-only.
TEST_F(PeakEditorTest, LiveTypingAndThePeakTable) {
    auto* fwhm = Child<QLineEdit>(editor(), "fwhmText");
    fwhm->selectAll();
    QTest::keyClicks(fwhm, "2.5");
    EXPECT_NE(peak().FWHM, 2.5f);
    QTest::qWait(ui::PeakEditor::kLivePauseMs + ui::PeakTable::kRefreshPauseMs + 100);
    ui::PeakTable& table = *region().Table();
    EXPECT_EQ(std::tuple(peak().FWHM, fwhm->text(), table.item(0, kFWHMColumn)->text()),
              std::tuple(2.5f, QStringLiteral("2.5"), QStringLiteral("2.5")));
    for (const char* text : {"abc", "5000"}) {
        table.setCurrentCell(0, kAreaColumn);
        QTest::keyClick(&table, Qt::Key_F2);
        auto* cell = table.viewport()->findChild<QLineEdit*>();
        ASSERT_NE(cell, nullptr);
        cell->selectAll();
        QTest::keyClicks(cell, text);
        QTest::keyClick(cell, Qt::Key_Return);
        QTest::qWait(1);  // the commit is queued, the closed editor deleted later
    }
    EXPECT_EQ(sink.messages, std::vector<std::string>{"Area: 'abc' is not a number"});
    EXPECT_EQ(std::pair(peak().Area, Text(editor(), "areaText")),
              std::pair(5000.0f, std::string("5000")));
    gui->UndoStep();  // the cell edit was one step
    EXPECT_NE(peak().Area, 5000.0f);

    Menu("addPeakAction");  // the editor on the second peak selects its row
    const int second = project().CurrentPeak;
    table.Refresh();
    EXPECT_EQ(table.selectedRanges().value(0).topRow(), 1);
    const QPoint first = table.visualItemRect(table.item(0, kPeakColumn)).center();
    QTest::mouseClick(table.viewport(), Qt::LeftButton, {}, first);
    EXPECT_EQ(region().Plot()->SelectedPeak(), slot);
    QTest::mouseDClick(table.viewport(), Qt::LeftButton, {}, first);
    EXPECT_EQ(project().CurrentPeak, slot);  // the editor on that peak
    QTest::keyClick(&table, Qt::Key_C, Qt::ControlModifier);
    EXPECT_EQ(QGuiApplication::clipboard()->text().toLatin1().toStdString(),
              PeakTableText(PeakTableRows(project(), project().CurrentRegion)));

    project().Constraints[second].Position = {kTrue, Int16(slot), kFalse, 0, 0, 1.5f, 0, 0, 0};
    main().PeakButton(11)->click();
    EXPECT_TRUE(Child<QLineEdit>(editor(), "positionText")->isReadOnly() &&
                Child<QLabel>(editor(), "positionSigma")
                    ->text()
                    .startsWith(QStringLiteral("= peak %1 + 1.5").arg(slot)));
}

// A label picked from the suggestions and a typed RSF reach the quantification window (from
// the menu), which follows Accept and Undo, refuses a bad setting and copies both tables.
TEST_F(PeakEditorTest, LabelAndRsfReachTheQuantificationWindow) {
    gui->RecordStep();  // the peak as added: where Undo goes back to
    Menu("quantificationAction");
    ui::QuantWindow& quant = gui->quantWindow();
    auto* choices = Child<QMenu>(editor(), "labelChoicesMenu");
    emit choices->aboutToShow();
    for (QAction* choice : choices->actions())
        if (choice->text() == QStringLiteral("C 1s")) choice->trigger();
    Type(editor(), "rsfText", "1.5");
    Click(editor(), "acceptButton");
    QTest::qWait(ui::QuantWindow::kRefreshPauseMs + 50);
    ASSERT_EQ(quant.Lines().peaks.size(), 1u);
    EXPECT_EQ(
        std::tuple(quant.Lines().peaks[0].cells[kQuantLabelColumn],
                   quant.Lines().peaks[0].cells[kQuantRsfColumn], quant.Lines().elements.at(0)[2]),
        std::tuple("C 1s", "1.5", "100.00"));
    gui->UndoStep();
    QTest::qWait(ui::QuantWindow::kRefreshPauseMs + 50);
    EXPECT_TRUE(quant.Lines().elements.empty() && !quant.Lines().peaks.at(0).counted);

    Child<QComboBox>(quant, "sourceChoice")->setCurrentIndex(kSourceOther);
    emit Child<QComboBox>(quant, "sourceChoice")->activated(kSourceOther);
    auto* energy = Child<QLineEdit>(quant, "energyText");
    energy->selectAll();
    QTest::keyClicks(energy, "abc");
    QTest::keyClick(energy, Qt::Key_Return);
    EXPECT_EQ(sink.messages, std::vector<std::string>{"Source energy: 'abc' is not a number"});
    QTest::keyClick(Child<QWidget>(quant, "quantPeakTable"), Qt::Key_C, Qt::ControlModifier);
    EXPECT_EQ(QGuiApplication::clipboard()->text().toLatin1().toStdString(),
              QuantTablesText(quant.Lines()));
}

TEST_F(PeakEditorTest, ConstraintDialogShowsARefusalAndKeepsTheEntries) {
    ui::ConstraintDialog& cnt = gui->constraintDialog();
    Click(editor(), "areaConstraintsButton");
    Child<QCheckBox>(cnt, "useRelation")->setChecked(true);
    Type(cnt, "referencePeakText", QString::number(slot));
    Click(cnt, "okButton");
    EXPECT_EQ(sink.messages, (std::vector<std::string>{"Wrong Reference Peak"}));
    EXPECT_TRUE(cnt.isVisible() && Text(cnt, "referencePeakText") == std::to_string(slot));
}

}  // namespace
}  // namespace molvera::test
