// The main window, the region window's menu (imports of the format table, exports,
// Add Peak, Delete Region, Clear Parameters, clipboard, printing) and the region shift
// and caption dialogs, on the running program.
#include <filesystem>

#include <QApplication>
#include <QClipboard>
#include <QDialog>
#include <QImage>
#include <QMenu>
#include <QTimer>

#include "base/messages.h"
#include "fileio/formats.h"
#include "ui/backgrounddialog.h"
#include "ui/constraintdialog.h"
#include "ui/gui_fixture.h"
#include "ui/optionswindow.h"
#include "ui/peakeditor.h"
#include "ui/regiondialogs.h"

namespace molvera::test {
namespace {

TEST_F(GuiTest, StartUpReadsDefaultOptionsAndShowsBothWindows) {
    EXPECT_TRUE(main().isVisible() && region().isVisible());
    EXPECT_FALSE(gui->optionsWindow().isVisible());
    for (int i = 0; i < 100; ++i) EXPECT_FALSE(main().PeakButton(i)->isEnabled()) << i;
    EXPECT_GT(DefaultNewtonTrials(), 0);
    EXPECT_EQ(project().Options.NewtonTrials, DefaultNewtonTrials());
    // Without a default.opa the options stay zero, silently.
    gui = std::make_unique<ui::Gui>(sink, chooser);
    gui->Start((ScratchDir() / "default.opa").string());
    EXPECT_EQ(project().Options, FitOptions{});
    EXPECT_TRUE(sink.messages.empty());
}

TEST_F(GuiTest, RegionButtonsSelectAndColourAndPeakButtonsFollow) {
    auto colour = [&](int k) { return main().RegionButton(k)->palette().color(QPalette::Button); };
    const QColor face = QApplication::palette(main().RegionButton(0)).color(QPalette::Button);
    main().RegionButton(1)->click();
    EXPECT_EQ(project().CurrentRegion, 1);
    EXPECT_EQ(region().windowTitle(), "Region 2");
    EXPECT_EQ(colour(1), QColor(255, 255, 192));
    EXPECT_EQ(colour(0), face);
    SampleWithPeaks(2);
    EXPECT_EQ(main().PeakButton(11)->text(), "1");
    EXPECT_TRUE(main().PeakButton(11)->isEnabled());
    main().RegionButton(6)->click();
    EXPECT_EQ(colour(1), QColor(192, 255, 192));  // has data
    EXPECT_FALSE(main().PeakButton(11)->isEnabled());
}

// Save and Open are wired in the workflow test.
TEST_F(GuiTest, OpenOfAWrongFileShowsTheMessageOnceWithItsDetail) {
    chooser.paths = {DataFile("real/lg4x/C1s_sample.csv")};
    Click(main(), "openProjectButton");
    EXPECT_EQ(sink.messages, std::vector<std::string>{std::string(msg::kWrongFileFormat) +
                                                      "\nC1s_sample.csv: no project header "
                                                      "(\"MOLVERA 4.0\", \"MOLVERA 3.0\" or "
                                                      "\"SF\")"});
}

TEST(QtFilter, DescriptionAndPatternPairsBecomeQtFilters) {
    EXPECT_EQ(ui::QtFilter("Data Files (*.dat) |*.dat|"), "Data Files (*.dat)");
    EXPECT_EQ(ui::QtFilter("Data |*.xps|Any (*.*)|*.*|"), "Data (*.xps);;Any (*.*)");
    EXPECT_EQ(ui::QtFilter("No pattern||"), "");
}

TEST_F(GuiTest, DataMenuImportsEveryFormatOfTheTableInItsOrder) {
    const QList<QAction*> items = Child<QMenu>(region(), "dataMenu")->actions();
    const auto formats = ImportFormats();
    ASSERT_GE(items.size(), static_cast<qsizetype>(formats.size()));
    for (std::size_t k = 0; k < formats.size(); ++k) {
        EXPECT_EQ(items[static_cast<qsizetype>(k)]->text().toStdString(), formats[k].menuCaption);
        items[static_cast<qsizetype>(k)]->trigger();  // cancelled: nothing happens
        EXPECT_EQ(chooser.requests.back().title, formats[k].title);
    }
    EXPECT_TRUE(sink.messages.empty());
}

TEST_F(GuiTest, ExportsNeedDataOrABackgroundProposeNamesAndReport) {
    Menu("exportSpectrumAction");  // no data: nothing is asked
    EXPECT_TRUE(chooser.requests.empty());
    const auto dir = ScratchDir();
    std::filesystem::copy_file(DataFile("real/lg4x/C1s_sample.csv"), dir / "sample.des");
    chooser.paths = {(dir / "sample.des").string(), (dir / "out.dat").string()};
    Menu("importAsciiAction");
    Menu("exportSpectrumAction");
    EXPECT_TRUE(chooser.requests.back().save);
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

TEST_F(GuiTest, AddPeakNeedsABackgroundAndBeepsAtTheEleventh) {
    ImportSample();
    Menu("addPeakAction");
    EXPECT_EQ(project().Regions[0].PeakCount, 0);
    GiveBackground();
    for (int k = 0; k < 11; ++k) Menu("addPeakAction");
    EXPECT_EQ(main().PeakButton(0)->text() + main().PeakButton(9)->text(), "09");
    EXPECT_EQ(project().Regions[0].PeakCount, 10);
    EXPECT_EQ(sink.beeps, 1);
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

TEST_F(GuiTest, ClipboardGetsThePictureAndCancellingThePrintDialogChangesNothing) {
    SampleWithPeaks(1);
    QApplication::clipboard()->clear();
    Menu("exportClipboardAction");
    EXPECT_GE(QApplication::clipboard()->image().width(), 800);

    QStringList titles;
    QTimer closer;
    QObject::connect(&closer, &QTimer::timeout, [&] {
        if (auto* d = qobject_cast<QDialog*>(QApplication::activeModalWidget())) {
            titles << d->windowTitle();
            d->reject();
        }
    });
    closer.start(10);
    const Region before = project().Regions[0];
    Menu("printWithPeakParametersAction");
    main().RegionButton(5)->click();
    Menu("printSpectrumAction");  // no data: no dialog
    closer.stop();
    EXPECT_EQ(titles, QStringList{"Print with peak parameters"});
    EXPECT_TRUE(project().Regions[0] == before);
    EXPECT_TRUE(sink.messages.empty());
}

TEST_F(GuiTest, RegionShiftAndCaptionDialogsReachTheRegion) {
    main().RegionButton(2)->click();
    ImportSample();
    project().Regions[2].Shift = 0.25f;
    Menu("regionShiftAction");
    ui::RegionShiftDialog& shift = gui->regionShiftDialog();
    ASSERT_TRUE(shift.isVisible());
    EXPECT_EQ(shift.windowTitle(), "Region Shift");
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
    EXPECT_EQ(caption.windowTitle(), "Region Caption");
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
