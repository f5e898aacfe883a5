// The region window's menu: the imports of the format table, exports, Add Peak, Delete
// Region and Clear Parameters, the clipboard and printing.
#include <filesystem>

#include <QApplication>
#include <QClipboard>
#include <QDialog>
#include <QImage>
#include <QMenu>
#include <QTimer>

#include "base/messages.h"
#include "fileio/formats.h"
#include "ui/gui_fixture.h"

namespace molvera::test {
namespace {

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
    EXPECT_EQ(main().PeakButton(9)->text(), "9");
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

}  // namespace
}  // namespace molvera::test
