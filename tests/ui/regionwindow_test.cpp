// The region window's menu: imports, exports, Add Peak, Delete Region, Clear Parameters.
#include <filesystem>
#include <fstream>

#include <QApplication>
#include <QClipboard>
#include <QDialog>
#include <QImage>
#include <QMenuBar>
#include <QPushButton>
#include <QTimer>

#include "base/messages.h"
#include "ui/gui_fixture.h"

namespace molvera::test {
namespace {

TEST_F(GuiTest, MenuHasEveryItemWithItsCaption) {
    const std::pair<const char*, const char*> items[] = {
        {"importKratosAction", "Import (Kratos)"},
        {"importLeyboldAction", "Import (Leybold)"},
        {"importPhiAction", "Import (Phi)"},
        {"importVamasAction", "Import (VAMAS)"},
        {"importAsciiAction", "Import (ASCII)"},
        {"exportSpectrumAction", "Export (Spectrum)"},
        {"exportPeakParametersAction", "Export (Peak Parameters)"},
        {"exportClipboardAction", "Export to clipboard"},
        {"printSpectrumAction", "Print Spectrum"},
        {"printWithPeakParametersAction", "Print with peak parameters"},
        {"backgroundAction", "Background"},
        {"addPeakAction", "Add Peak"},
        {"regionCaptionAction", "Region Caption"},
        {"loadRegionParametersAction", "Load Region Parameters"},
        {"saveRegionParametersAction", "Save Region Parameters"},
        {"clearParametersAction", "Clear Parameters"},
        {"deleteRegionAction", "Delete Region"},
        {"regionShiftAction", "Region Shift"},
        {"optimiseRegionAction", "Optimise Region"},
        {"redisplayAction", "ReDisplay"},
    };
    for (const auto& [name, caption] : items) {
        QAction* a = region().Action(QString::fromLatin1(name));
        ASSERT_NE(a, nullptr) << name;
        EXPECT_EQ(a->text(), QString::fromLatin1(caption));
    }
    QStringList top;
    for (QAction* a : region().menuBar()->actions()) top << a->text();
    EXPECT_EQ(top, (QStringList{"Data", "Background", "Add Peak", "Parameters", "Optimise Region",
                                "ReDisplay"}));
}

TEST_F(GuiTest, ImportThroughTheMenuFillsTheRegion) {
    main().RegionButton(2)->click();
    const std::string path = ImportSample();
    ASSERT_EQ(chooser.requests.size(), 1u);
    EXPECT_FALSE(chooser.requests[0].save);
    EXPECT_EQ(chooser.requests[0].title, "Import Ascii format (BE  Intensity)");
    EXPECT_EQ(chooser.requests[0].filter, "ASCII Files (*.*)");
    EXPECT_TRUE(sink.messages.empty());
    const Region& r = project().Regions[2];
    EXPECT_TRUE(IsSet(r.HasData));
    EXPECT_EQ(r.PointCount, 351);  // 352 lines less the header
    EXPECT_FLOAT_EQ(r.BindingEnergy[1], 301.5f);
    EXPECT_FLOAT_EQ(r.RawIntensity[1], 1709.0f);
    EXPECT_EQ(project().FileName, path);
    EXPECT_EQ(region().windowTitle(), "Region 3");

    // A cancelled import changes nothing.
    Menu("importVamasAction");
    EXPECT_EQ(chooser.requests.back().title, "Import VAMAS format");
    EXPECT_EQ(chooser.requests.back().filter, "VAMAS Files (*.*)");
    EXPECT_EQ(project().Regions[2].PointCount, 351);
    EXPECT_TRUE(sink.messages.empty());
}

TEST_F(GuiTest, ExportsProposeNamesAndReport) {
    // No data: the precondition fails and nothing is asked.
    Menu("exportSpectrumAction");
    EXPECT_TRUE(chooser.requests.empty());

    const auto dir = ScratchDir();
    const std::string des = (dir / "sample.des").string();
    std::filesystem::copy_file(DataFile("real/lg4x/C1s_sample.csv"), des);
    chooser.paths.push_back(des);
    Menu("importAsciiAction");
    const std::string dat = (dir / "out.dat").string();
    chooser.paths.push_back(dat);
    Menu("exportSpectrumAction");
    EXPECT_TRUE(chooser.requests.back().save);
    EXPECT_EQ(chooser.requests.back().title, "Export Spectral and Fitted data in Ascii format");
    EXPECT_EQ(chooser.requests.back().filter, "Data Files (*.dat)");
    EXPECT_EQ(chooser.requests.back().name, (dir / "sample.dat").string());
    ASSERT_EQ(sink.messages, std::vector<std::string>{msg::kDataFileExported});
    EXPECT_GT(std::filesystem::file_size(dat), 351u * 4);

    // Peak parameters need a background; Save Region Parameters too.
    const std::size_t asked = chooser.requests.size();
    Menu("exportPeakParametersAction");
    Menu("saveRegionParametersAction");
    EXPECT_EQ(chooser.requests.size(), asked);

    GiveBackground();
    Menu("exportPeakParametersAction");  // cancelled
    EXPECT_EQ(chooser.requests.back().title, "Export peak parameters");
    EXPECT_EQ(chooser.requests.back().name, (dir / "out.par").string());
    EXPECT_EQ(sink.messages.back(), msg::kErrorSavingFile);

    chooser.paths.push_back((dir / "no-such-folder" / "x.rpa").string());
    Menu("saveRegionParametersAction");
    EXPECT_EQ(chooser.requests.back().title, "Save region parameters");
    EXPECT_EQ(chooser.requests.back().filter, "Region Parameter Files (*.rpa)");
    EXPECT_EQ(sink.messages.back(), msg::kErrorSavingFile);

    const std::string rpa = (dir / "c1s.rpa").string();
    chooser.paths.push_back(rpa);
    Menu("saveRegionParametersAction");
    EXPECT_EQ(sink.messages.back(), msg::kParameterFileSaved);

    Menu("loadRegionParametersAction");  // cancelled
    EXPECT_EQ(chooser.requests.back().title, "Load Region Parameters");
    EXPECT_EQ(sink.messages.back(), msg::kErrorReadingFile);
}

TEST_F(GuiTest, AddPeakNeedsABackgroundAndBeepsAtTheEleventh) {
    ImportSample();
    Menu("addPeakAction");
    EXPECT_EQ(project().Regions[0].PeakCount, 0);
    EXPECT_EQ(sink.beeps, 0);

    GiveBackground();
    for (int k = 0; k < 10; ++k) Menu("addPeakAction");
    EXPECT_EQ(sink.beeps, 0);
    EXPECT_EQ(project().Regions[0].PeakCount, 10);
    for (int k = 0; k < 10; ++k) {
        EXPECT_EQ(main().PeakButton(k)->text(), QString::number(k));
        EXPECT_TRUE(main().PeakButton(k)->isEnabled());
    }
    Menu("addPeakAction");
    EXPECT_EQ(sink.beeps, 1);
    EXPECT_EQ(project().Regions[0].PeakCount, 10);
    EXPECT_FALSE(IsSet(project().Peaks[10].InUse));
    EXPECT_FALSE(main().ChiSquareBox(0)->text().isEmpty());
}

TEST_F(GuiTest, DeleteRegionAsksAndOnlyYesDeletes) {
    main().RegionButton(1)->click();
    ImportSample();
    GiveBackground();
    Menu("addPeakAction");
    Menu("addPeakAction");
    const std::string question =
        std::string(msg::kDeleteRegionTitle) + "|" + msg::kDeleteRegionText;

    sink.answers = {false};
    Menu("deleteRegionAction");
    ASSERT_EQ(sink.questions, std::vector<std::string>{question});
    EXPECT_TRUE(IsSet(project().Regions[1].HasData));
    EXPECT_EQ(project().Regions[1].PeakCount, 2);
    EXPECT_TRUE(main().PeakButton(11)->isEnabled());

    sink.answers = {true};
    Menu("deleteRegionAction");
    EXPECT_EQ(sink.questions.size(), 2u);
    EXPECT_FALSE(IsSet(project().Regions[1].HasData));
    EXPECT_FALSE(IsSet(project().Regions[1].HasBackground));
    EXPECT_EQ(project().Regions[1].PeakCount, 0);
    EXPECT_FALSE(IsSet(project().Peaks[0].InUse));
    for (int i = 10; i < 12; ++i) {
        EXPECT_FALSE(main().PeakButton(i)->isEnabled());
        EXPECT_TRUE(main().PeakButton(i)->text().isEmpty());
    }
    EXPECT_EQ(region().windowTitle(), "Region 2");
    main().RegionButton(0)->click();
    EXPECT_EQ(main().RegionButton(1)->palette().color(QPalette::Button),
              QApplication::palette(main().RegionButton(1)).color(QPalette::Button));
}

TEST_F(GuiTest, ClearParametersKeepsDataAndEmptiesCaption) {
    ImportSample();
    GiveBackground();
    Menu("addPeakAction");
    project().Regions[0].Caption = Text20::From("C 1s");
    Menu("clearParametersAction");
    EXPECT_TRUE(sink.questions.empty());
    EXPECT_TRUE(IsSet(project().Regions[0].HasData));
    EXPECT_FALSE(IsSet(project().Regions[0].HasBackground));
    EXPECT_EQ(project().Regions[0].Caption, Text20());
    EXPECT_FALSE(main().PeakButton(0)->isEnabled());
    EXPECT_EQ(main().ChiSquareBox(0)->text(), "0");
}

TEST_F(GuiTest, ExportToClipboardPutsAPicture) {
    ImportSample();
    GiveBackground();
    Menu("addPeakAction");
    QApplication::clipboard()->clear();
    Menu("exportClipboardAction");
    const QImage image = QApplication::clipboard()->image();
    EXPECT_FALSE(image.isNull());
    EXPECT_GE(image.width(), 800);
}

TEST_F(GuiTest, PrintNeedsDataAndCancellingThePrintDialogChangesNothing) {
    QStringList titles;
    QTimer closer;
    closer.setInterval(10);
    QObject::connect(&closer, &QTimer::timeout, [&] {
        if (auto* d = qobject_cast<QDialog*>(QApplication::activeModalWidget())) {
            titles << d->windowTitle();
            d->reject();
        }
    });
    closer.start();
    Menu("printSpectrumAction");  // no data: no dialog
    EXPECT_TRUE(titles.isEmpty());

    ImportSample();
    const Region before = project().Regions[0];
    Menu("printWithPeakParametersAction");
    closer.stop();
    EXPECT_EQ(titles, QStringList{"Print with peak parameters"});
    EXPECT_TRUE(project().Regions[0] == before);
    EXPECT_TRUE(sink.messages.empty());
}

}  // namespace
}  // namespace molvera::test
