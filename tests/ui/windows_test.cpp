// The main window, the region window's menu commands and the region shift and caption
// dialogs on the running program.
#include <filesystem>
#include <tuple>

#include <QApplication>
#include <QDropEvent>
#include <QLabel>
#include <QMimeData>
#include <QMouseEvent>
#include <QPlainTextEdit>
#include <QProcess>
#include <QTest>
#include <QTimer>
#include <QUrl>

#include "base/messages.h"
#include "base/version.h"
#include "fileio/projectfile.h"
#include "session/peakdrag.h"
#include "session/report.h"
#include "support/files.h"
#include "ui/backgrounddialog.h"
#include "ui/constraintdialog.h"
#include "ui/fittingwindow.h"
#include "ui/gui_fixture.h"
#include "ui/peakeditor.h"
#include "ui/plotwidget.h"
#include "ui/regiondialogs.h"
#include "ui/workspace.h"

namespace molvera::test {
namespace {

TEST_F(GuiTest, RegionButtonsSelectAndColourAndPeakButtonsFollow) {
    ImportSample();
    Menu("addPeakAction");  // no background: nothing
    GiveBackground();
    for (int k = 0; k < 11; ++k) Menu("addPeakAction");  // the eleventh only beeps
    EXPECT_EQ(std::tuple(project().Regions[0].PeakCount, sink.beeps), std::tuple(10, 1));
    EXPECT_EQ(main().PeakButton(0)->text() + main().PeakButton(9)->text(), "09");
    EXPECT_TRUE(main().PeakButton(0)->isEnabled());
    main().RegionButton(1)->click();
    EXPECT_EQ(project().CurrentRegion, 1);
    EXPECT_FALSE(main().PeakButton(0)->isEnabled());
}

TEST_F(GuiTest, ExportsNeedDataOrABackgroundProposeNamesAndReport) {
    Menu("exportSpectrumAction");  // no data: nothing is asked
    EXPECT_TRUE(chooser.requests.empty());
    const auto dir = ScratchDir();
    std::filesystem::copy_file(DataFile("real/lg4x/C1s_sample.csv"), dir / "sample.des");
    chooser.paths = {(dir / "sample.des").string(), (dir / "out.dat").string()};
    Menu("importAsciiAction");
    Menu("exportSpectrumAction");
    EXPECT_EQ(chooser.requests.back().name, (dir / "sample.dat").string());
    EXPECT_EQ(sink.messages, std::vector<std::string>{msg::kDataFileExported});
    // Peak parameters and Save Region Parameters need a background.
    const std::size_t asked = chooser.requests.size();
    Menu("exportPeakParametersAction");
    Menu("saveRegionParametersAction");
    EXPECT_EQ(chooser.requests.size(), asked);
    GiveBackground();
    Menu("exportPeakParametersAction");  // cancelled
    EXPECT_EQ(chooser.requests.back().name, (dir / "out.par").string());
    EXPECT_EQ(sink.messages.back(), msg::kErrorSavingFile);
    chooser.paths = {(dir / "no-such-folder" / "x.rpa").string(), (dir / "c1s.rpa").string()};
    Menu("saveRegionParametersAction");
    EXPECT_EQ(sink.messages.back(), msg::kErrorSavingFile);
    Menu("saveRegionParametersAction");
    EXPECT_EQ(sink.messages.back(), msg::kParameterFileSaved);
    Menu("loadRegionParametersAction");  // cancelled
    EXPECT_EQ(sink.messages.back(), msg::kErrorReadingFile);
}

TEST_F(GuiTest, CloseAsksBeforeAnEditedDescriptionIsLost) {
    Type(main(), "descriptionBox", "etched C 1s");
    EXPECT_EQ(main().windowTitle().toStdString(), "Untitled* - Molvera");
    sink.saveAnswer = SaveChangesAnswer::Cancel;
    Click(main(), "closeButton");
    EXPECT_TRUE(main().isVisible());
    const std::string path = (ScratchDir() / "etched.xps").string();
    sink.saveAnswer = SaveChangesAnswer::Save;
    chooser.paths = {"", path};  // the first save dialog is cancelled: the program stays
    Click(main(), "closeButton");
    EXPECT_TRUE(main().isVisible());
    main().close();  // the title-bar X
    EXPECT_FALSE(main().isVisible());
    EXPECT_EQ(sink.questions, std::vector<std::string>(3, "Save changes to Untitled?"));
    EXPECT_NE(ReadBytes(path).find("etched C 1s"), std::string::npos);
}

// The real program, killed (SIGKILL) with a command-line import unsaved, leaves a recovery
// copy that the next start restores: the same project as the import made here.
TEST_F(GuiTest, AKilledProgramsUnsavedImportIsRestoredAtTheNextStart) {
    const std::filesystem::path state = ScratchDir();
    const std::string vamas = DataFile("real/lg4x/Mutlipak_vms.npl");
    QProcess app;
    QProcessEnvironment env = QProcessEnvironment::systemEnvironment();
    env.insert("QT_QPA_PLATFORM", "offscreen");
    env.insert("XDG_STATE_HOME", QString::fromStdString(state.string()));
    env.insert("XDG_CONFIG_HOME", QString::fromStdString(state.string()));  // its settings
    env.insert("MOLVERA_AUTOSAVE_SECONDS", "1");
    app.setProcessEnvironment(env);
    app.setWorkingDirectory(MOLVERA_SOURCE_DIR);  // its default.opa, as here
    app.start(MOLVERA_APP_PATH, {QString::fromStdString(vamas)});
    ASSERT_TRUE(app.waitForStarted(10000));
    const auto copy = state / "molvera" / ("recovery-" + std::to_string(app.processId()) + ".xps");
    for (int i = 0; i < 300 && !std::filesystem::exists(copy); ++i) app.waitForFinished(100);
    ASSERT_TRUE(std::filesystem::exists(copy));
    app.kill();  // SIGKILL
    ASSERT_TRUE(app.waitForFinished(10000));

    chooser.paths = {vamas};
    Menu("importVamasAction");
    const std::string imported = ProjectFileBytes(project());
    EXPECT_TRUE(ReadBytes(copy) == imported);  // the killed program's work, byte for byte
    sink.answers = {true};
    ui::Gui next(sink, chooser);
    next.Start(std::string(MOLVERA_SOURCE_DIR) + "/default.opa", (state / "molvera").string());
    EXPECT_TRUE(sink.questions.back().starts_with("Restore unsaved work|Molvera did not close"));
    // Restored as Open XPS reads a file (which sets an end-point average of 0 to 1).
    ASSERT_TRUE(LoadProjectBytes(project(), gui->host(), imported));
    EXPECT_TRUE(ProjectFileBytes(next.project()) == ProjectFileBytes(project()));
    EXPECT_EQ(next.mainWindow().windowTitle().toStdString(), "Untitled* - Molvera");
    next.mainWindow().close();  // Discard: a clean exit leaves no copy
    EXPECT_TRUE(std::filesystem::is_empty(state / "molvera"));
}

// The cursor read-out belongs to the plot it was read on: another region or another
// project clears it.
TEST_F(GuiTest, CursorReadOutAndZoomClearOnAnotherRegionOrProject) {
    ImportSample();
    ui::PlotWidget& plot = *region().Plot();
    auto point = [&] {
        plot.RedrawNow();
        QMouseEvent move(QEvent::MouseMove, QPointF(100, 100), plot.mapToGlobal(QPointF(100, 100)),
                         Qt::NoButton, Qt::NoButton, Qt::NoModifier);
        QApplication::sendEvent(&plot, &move);
        return plot.HasReadout();
    };
    ASSERT_TRUE(point());
    main().RegionButton(1)->click();
    EXPECT_FALSE(plot.HasReadout());
    main().RegionButton(0)->click();
    ASSERT_TRUE(point());
    plot.SetView(ZoomAbout(plot.Layout().spectrum.view, 285, 1000, 0.5));
    chooser.paths = {std::string(MOLVERA_SOURCE_DIR) + "/fuzz/corpus/project/c1s_three_peaks.xps"};
    Click(main(), "openProjectButton");
    EXPECT_TRUE(!plot.HasReadout() && plot.View().IsAuto());  // the new project unzoomed
}

TEST_F(GuiTest, DeleteRegionAsksAndOnlyYesDeletesClearParametersDoesNotAsk) {
    main().RegionButton(1)->click();
    SampleWithPeaks(2);
    sink.answers = {false, true};
    Menu("deleteRegionAction");
    EXPECT_EQ(sink.questions, std::vector<std::string>{std::string(msg::kDeleteRegionTitle) + "|" +
                                                       msg::kDeleteRegionText});
    EXPECT_EQ(project().Regions[1].PeakCount, 2);
    Menu("deleteRegionAction");
    EXPECT_FALSE(IsSet(project().Regions[1].HasData) || IsSet(project().Peaks[0].InUse));
    EXPECT_TRUE(main().PeakButton(11)->text().isEmpty());

    main().RegionButton(0)->click();
    SampleWithPeaks(1);
    project().Regions[0].Caption = Text20::From("C 1s");
    Menu("clearParametersAction");
    EXPECT_EQ(sink.questions.size(), 2u);
    EXPECT_TRUE(IsSet(project().Regions[0].HasData));
    EXPECT_FALSE(IsSet(project().Regions[0].HasBackground) || IsSet(project().Peaks[0].InUse));
    EXPECT_EQ(project().Regions[0].Caption, Text20());
    EXPECT_EQ(main().ChiSquareBox(0)->text(), "0");
}

// Help > About in both windows: the version of project() and the whole licence, compiled
// in as a resource.
TEST_F(GuiTest, AboutBoxShowsVersionAndLicence) {
    for (QWidget* window : {static_cast<QWidget*>(&main()), static_cast<QWidget*>(&region())}) {
        window->findChild<QAction*>(QStringLiteral("aboutAction"))->trigger();
        auto* about = window->findChild<QWidget*>(QStringLiteral("aboutDialog"));
        ASSERT_TRUE(about && about->isVisible());
        EXPECT_TRUE(about->findChild<QLabel*>(QStringLiteral("aboutTitle"))
                        ->text()
                        .contains(QLatin1String(ProgramVersion())));
        const QString licence =
            about->findChild<QPlainTextEdit*>(QStringLiteral("licenceText"))->toPlainText();
        EXPECT_TRUE(licence.startsWith(QLatin1String("MIT License")) &&
                    licence.endsWith(QLatin1String("SOFTWARE.")));
        about->close();
    }
}

TEST_F(GuiTest, RegionShiftAndCaptionDialogsReachTheRegion) {
    main().RegionButton(2)->click();
    ImportSample();
    project().Regions[2].Shift = 0.25f;
    Menu("regionShiftAction");
    ui::RegionShiftDialog& shift = gui->regionShiftDialog();
    EXPECT_EQ(Text(shift, "shiftText"), "0.25");
    const int redraws = gui->host().RedrawCount();
    Type(shift, "shiftText", "0.35 eV");
    Click(shift, "acceptButton");
    EXPECT_EQ(project().Regions[2].Shift, 0.35f);
    EXPECT_EQ(gui->host().RedrawCount(), redraws + 1);  // the shift is drawn at once

    Menu("regionCaptionAction");
    ui::RegionCaptionDialog& caption = gui->regionCaptionDialog();
    Type(caption, "captionText", "C 1s, sputtered 30 minutes");
    Click(caption, "okButton");
    EXPECT_EQ(project().Regions[2].Caption.Str(), "C 1s, sputtered 30 m");
    EXPECT_EQ(gui->host().RedrawCount(), redraws + 2);
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
    EXPECT_FALSE(gui->backgroundDialog().isVisible() || gui->constraintDialog().isVisible() ||
                 gui->peakEditor().isVisible());
}

// Each finished command is one undo step, a whole fit included, whatever input arrives
// while it runs; Ctrl+Z and Ctrl+Shift+Z walk the steps in either window.
TEST_F(GuiTest, UndoAndRedoWalkWholeCommands) {
    chooser.paths = {std::string(MOLVERA_SOURCE_DIR) + "/fuzz/corpus/project/c1s_three_peaks.xps"};
    QTest::mouseClick(Child<QPushButton>(main(), "openProjectButton"), Qt::LeftButton);
    const std::string opened = ProjectFileBytes(project());
    std::tie(project().Options.Method, project().Options.NewtonTrials) = std::tuple(1.f, 50);
    int ticks = 0;  // a key pressed during the fit must not cut it into two steps
    QTimer timer;
    QObject::connect(&timer, &QTimer::timeout, [&] {
        if (++ticks == 2) QTest::keyClick(gui->fittingWindow().StopButton(), Qt::Key_A);
    });
    timer.start(0);
    QTest::mouseClick(Child<QPushButton>(main(), "optimiseAllButton"), Qt::LeftButton);
    timer.stop();
    const std::string fitted = ProjectFileBytes(project());
    ASSERT_TRUE(ticks >= 2 && fitted != opened);
    QTest::keyClicks(Child<QLineEdit>(main(), "descriptionBox"), "etched");
    EXPECT_EQ(gui->history().Steps(), 2u);  // the fit, the typing
    main().activateWindow();
    ASSERT_TRUE(QTest::qWaitForWindowActive(&main()));
    QTest::keyClick(&main(), Qt::Key_Z, Qt::ControlModifier);
    EXPECT_TRUE(Text(main(), "descriptionBox").empty() && ProjectFileBytes(project()) == fitted);
    QTest::keyClick(&region(), Qt::Key_Z, Qt::ControlModifier);
    EXPECT_TRUE(ProjectFileBytes(project()) == opened &&
                !region().Action("undoAction")->isEnabled());
    QTest::keyClick(&main(), Qt::Key_Z, Qt::ControlModifier | Qt::ShiftModifier);
    EXPECT_TRUE(ProjectFileBytes(project()) == fitted);
}

// During Optimise All the plot paints at most every few frames; the title always names the
// region the plot shows. A warning stays in the status line until the next command.
TEST_F(GuiTest, TitleFollowsThePlotDuringOptimiseAllWarningsStayInTheStatusLine) {
    for (int r : {0, 1, 2}) {
        main().RegionButton(r)->click();
        SampleWithPeaks(2);
    }
    int steps = 0, mismatches = 0;
    gui->host().beforeYield = [&] {
        const int painted = region().Plot()->PaintedRegion();
        ++steps;
        if (painted >= 0 && region().windowTitle() != QStringLiteral("Region %1").arg(painted + 1))
            ++mismatches;
    };
    Click(main(), "optimiseAllButton");
    gui->host().beforeYield = nullptr;
    EXPECT_TRUE(steps > 3 && mismatches == 0) << mismatches;

    main().RegionButton(0)->click();
    float& position = project().Peaks[0].Position;  // region 1's first peak
    const float fitted = position;
    position = 512;
    Menu("redisplayAction");
    EXPECT_EQ(region().WarningText().toStdString(),
              "Warning: peak 0 at 512.0 eV lies outside the data (266.5 .. 301.5 eV)");
    position = fitted;
    Menu("redisplayAction");
    EXPECT_TRUE(region().WarningText().isEmpty() && sink.messages.empty());  // no message box
}

// File > Export Report writes the report of the project in the format of the name chosen.
TEST_F(GuiTest, ExportReportWritesTheChosenFormat) {
    chooser.paths = {std::string(MOLVERA_SOURCE_DIR) + "/fuzz/corpus/project/c1s_three_peaks.xps"};
    Click(main(), "openProjectButton");
    const std::string csv = (ScratchDir() / "r.csv").string();
    const std::string html = (ScratchDir() / "r.html").string();
    chooser.paths = {csv, html};
    Menu("exportReportAction");
    Menu("exportReportAction");
    EXPECT_EQ(ReadBytes(csv), ReportCsv(project(), ReportRegions(project(), -1)));
    EXPECT_NE(ReadBytes(html).find("data:image/png;base64,iVBOR"), std::string::npos);
}

// File > Save As asks, Save then writes the same file without a dialog; both files used
// are recent, an entry re-opens its file as `molvera FILE` would, a missing one goes;
// Quit asks before unsaved changes are lost.
TEST_F(GuiTest, FileMenuSavesAndReopensRecentFiles) {
    const std::string csv = ImportSample();
    const std::string xps = (ScratchDir() / "c1s.xps").string();
    chooser.paths = {xps};
    Menu("saveAsAction");
    main().DescriptionBox()->setText(QStringLiteral("etched"));
    Menu("saveAction");
    EXPECT_EQ(chooser.requests.size(), 2u);  // the import and Save As only
    EXPECT_EQ(ReadBytes(xps), ProjectFileBytes(project()));
    const std::vector<std::string>& recent = gui->workspace().Recent().Paths();
    ASSERT_TRUE(recent.size() >= 2 && recent[0] == xps && recent[1] == csv);
    Menu("recentFileAction1");  // the spectrum again, into the first empty region
    EXPECT_TRUE(IsSet(project().Regions[1].HasData) && project().CurrentRegion == 1);
    std::filesystem::remove(xps);
    Menu("recentFileAction1");
    EXPECT_EQ(sink.messages.back(), MissingRecentFileText(xps));
    EXPECT_TRUE(recent[0] == csv && std::count(recent.begin(), recent.end(), xps) == 0);
    sink.saveAnswer = SaveChangesAnswer::Cancel;
    Menu("quitAction");  // asks about the import as Close does; Cancel keeps the program
    EXPECT_TRUE(sink.questions.size() == 1 && main().isVisible());
}

// Files dropped on a window open as on the command line, in one undo step; the windows
// start side by side.
TEST_F(GuiTest, DroppedFilesOpenInOneStep) {
    EXPECT_FALSE(main().frameGeometry().intersects(region().frameGeometry()));
    QMimeData mime;
    mime.setUrls(
        {QUrl::fromLocalFile(QString::fromStdString(std::string(MOLVERA_SOURCE_DIR) +
                                                    "/fuzz/corpus/project/c1s_three_peaks.xps")),
         QUrl::fromLocalFile(QString::fromStdString(DataFile("real/lg4x/C1s_sample.csv")))});
    // As the platform delivers a drag: to the window, entering, then dropping.
    QDragEnterEvent enter(QPoint(20, 20), Qt::CopyAction, &mime, Qt::LeftButton, Qt::NoModifier);
    QDropEvent drop(QPointF(20, 20), Qt::CopyAction, &mime, Qt::LeftButton, Qt::NoModifier);
    QApplication::sendEvent(region().windowHandle(), &enter);
    QApplication::sendEvent(region().windowHandle(), &drop);
    EXPECT_TRUE(drop.isAccepted() && IsSet(project().Regions[1].HasData) &&
                project().CurrentRegion == 1 && gui->history().Steps() == 1u);
    EXPECT_TRUE(main().windowTitle().startsWith(QStringLiteral("c1s_three_peaks.xps")));
}

// The windows come back where they were at the last exit only when that is on a screen.
TEST_F(GuiTest, GeometryComesBackWhereItFits) {
    for (int away : {0, 5000}) {
        main().move(0, 30);
        const QRect was(main().frameGeometry().right() + 10 + away, 30, 220, 400);
        region().setGeometry(was);
        gui = std::make_unique<ui::Gui>(sink, chooser);  // the old one saves at its end
        gui->Start(std::string(MOLVERA_SOURCE_DIR) + "/default.opa");
        EXPECT_EQ(region().geometry() == was, away == 0);
        EXPECT_FALSE(main().frameGeometry().intersects(region().frameGeometry()));
    }
}

}  // namespace
}  // namespace molvera::test

namespace molvera::test {
namespace {

// A peak's apex and a background end dragged with the mouse: the peak follows the pointer,
// the drag is one undo step, and Ctrl+Z gives the project back byte for byte.
TEST_F(GuiTest, DraggingAPeakAndABackgroundEndIsOneUndoStepEach) {
    SampleWithPeaks(1);
    gui->RecordStep();  // the menu items ran without input events
    ui::PlotWidget& plot = *region().Plot();
    plot.RedrawNow();
    const int slot = project().Current().PeakIndex[0];
    const std::string before = ProjectFileBytes(project());
    const std::size_t steps = gui->history().Steps();
    const auto drag = [&](QPointF from, QPointF to) {
        QTest::mousePress(&plot, Qt::LeftButton, {}, from.toPoint());
        for (int i = 1; i <= 4; ++i) {
            const QPointF at = from + (to - from) * i / 4.0;
            QMouseEvent move(QEvent::MouseMove, at, plot.mapToGlobal(at), Qt::NoButton,
                             Qt::LeftButton, Qt::NoModifier);
            QApplication::sendEvent(&plot, &move);
        }
        QTest::mouseRelease(&plot, Qt::LeftButton, {}, to.toPoint());
    };
    const QPointF apex = plot.ToWidget(*PeakApex(project(), slot)).toPoint();
    const QPointF target = apex + QPointF(-40, -30);
    drag(apex, target);
    const QPointF pointer = plot.ToPlotUnits(target);
    const PlotPoint moved = *PeakApex(project(), slot);
    EXPECT_NEAR(moved.be, pointer.x(), 1e-3);
    EXPECT_NEAR(moved.i, pointer.y(), 1e-3 * pointer.y());
    EXPECT_EQ(gui->history().Steps(), steps + 1);
    EXPECT_EQ(plot.SelectedPeak(), slot);

    const Region& r = project().Current();
    const float low = r.BackgroundLowBE;
    const QPointF end = plot.ToWidget({low, BackgroundAt(r, low)}).toPoint();
    drag(end, end + QPointF(-60, 0));  // to the left: higher binding energy
    EXPECT_GT(r.BackgroundLowBE, low);
    EXPECT_EQ(gui->history().Steps(), steps + 2);
    gui->UndoStep();
    gui->UndoStep();
    EXPECT_TRUE(ProjectFileBytes(project()) == before);
}

}  // namespace
}  // namespace molvera::test
