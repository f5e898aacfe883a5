// Start-up, region selection, peak buttons, Save and Open of the main window.
#include <filesystem>

#include <QApplication>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>

#include "base/messages.h"
#include "fileio/projectfile.h"
#include "ui/gui_fixture.h"
#include "ui/optionswindow.h"

namespace molvera::test {
namespace {

QColor ButtonColour(QPushButton* b) { return b->palette().color(QPalette::Button); }

TEST_F(GuiTest, StartUpShowsBothWindowsWithEveryPeakButtonDisabled) {
    EXPECT_TRUE(main().isVisible());
    EXPECT_TRUE(region().isVisible());
    EXPECT_FALSE(gui->optionsWindow().isVisible());
    for (int i = 0; i < 100; ++i) {
        EXPECT_FALSE(main().PeakButton(i)->isEnabled()) << i;
        EXPECT_TRUE(main().PeakButton(i)->text().isEmpty()) << i;
    }
    for (int r = 0; r < 10; ++r) EXPECT_EQ(main().RegionButton(r)->text(), QString::number(r + 1));
    EXPECT_EQ(project().CurrentRegion, 0);
    // default.opa was read: Newton's method and its trials.
    EXPECT_NE(project().Options.Method, 0.0f);
    EXPECT_GT(DefaultNewtonTrials(), 0);
    EXPECT_EQ(project().Options.NewtonTrials, DefaultNewtonTrials());
    for (const char* caption : {"Options", "Open XPS", "Save XPS", "Close", "Optimise All"}) {
        bool found = false;
        for (QPushButton* b : main().findChildren<QPushButton*>()) found |= b->text() == caption;
        EXPECT_TRUE(found) << caption;
    }
    EXPECT_TRUE(sink.messages.empty());
}

TEST_F(GuiTest, MissingDefaultOptionsLeaveZerosWithoutMessage) {
    gui = std::make_unique<ui::Gui>(sink, chooser);
    gui->Start((ScratchDir() / "default.opa").string());
    EXPECT_EQ(project().Options, FitOptions{});
    EXPECT_TRUE(sink.messages.empty());
}

TEST_F(GuiTest, RegionButtonsSelectAndColour) {
    const QColor face = QApplication::palette(main().RegionButton(0)).color(QPalette::Button);
    EXPECT_EQ(ButtonColour(main().RegionButton(0)), QColor(255, 255, 192));
    EXPECT_EQ(ButtonColour(main().RegionButton(4)), face);

    main().RegionButton(3)->click();
    EXPECT_EQ(project().CurrentRegion, 3);
    EXPECT_EQ(region().windowTitle(), "Region 4");
    EXPECT_EQ(ButtonColour(main().RegionButton(3)), QColor(255, 255, 192));
    EXPECT_EQ(ButtonColour(main().RegionButton(0)), face);

    ImportSample();
    main().RegionButton(6)->click();
    EXPECT_EQ(ButtonColour(main().RegionButton(3)), QColor(192, 255, 192));  // has data
    EXPECT_EQ(ButtonColour(main().RegionButton(6)), QColor(255, 255, 192));
    for (int i = 0; i < 100; ++i) EXPECT_FALSE(main().PeakButton(i)->isEnabled());
}

TEST_F(GuiTest, PeakButtonsFollowTheCurrentRegionAndSetCurrentPeak) {
    main().RegionButton(1)->click();
    ImportSample();
    GiveBackground();
    Menu("addPeakAction");
    Menu("addPeakAction");
    EXPECT_EQ(main().PeakButton(10)->text(), "0");
    EXPECT_EQ(main().PeakButton(11)->text(), "1");
    EXPECT_TRUE(main().PeakButton(11)->isEnabled());

    project().Peaks[0].Position = 123.5f;
    main().PeakButton(10)->click();
    EXPECT_EQ(project().CurrentPeak, 0);
    EXPECT_EQ(project().SavedPeaks[0].Position, 123.5f);

    main().RegionButton(0)->click();
    EXPECT_FALSE(main().PeakButton(10)->isEnabled());
    EXPECT_EQ(main().PeakButton(10)->text(), "0");
    main().RegionButton(1)->click();
    EXPECT_TRUE(main().PeakButton(10)->isEnabled());
}

TEST_F(GuiTest, SaveAndOpenRoundTripThroughTheButtons) {
    const auto dir = ScratchDir();
    const std::string csv = (dir / "C1s.sample.csv").string();
    std::filesystem::copy_file(DataFile("real/lg4x/C1s_sample.csv"), csv);
    chooser.paths.push_back(csv);
    Menu("importAsciiAction");
    GiveBackground();
    Menu("addPeakAction");
    main().DescriptionBox()->setText(QStringLiteral("C 1s, caf\u00e9"));
    EXPECT_EQ(project().Description, "C 1s, caf\xe9");  // kept as Latin-1

    const std::string xps = (dir / "saved.xps").string();
    chooser.paths.push_back(xps);
    main().findChild<QPushButton*>("saveProjectButton")->click();
    ASSERT_EQ(sink.messages, std::vector<std::string>{msg::kFileSaved});
    const auto& saveRequest = chooser.requests.back();
    EXPECT_TRUE(saveRequest.save);
    EXPECT_EQ(saveRequest.title, "Open file");
    EXPECT_EQ(saveRequest.filter, "Data Files (*.xps)");
    EXPECT_EQ(saveRequest.name, (dir / "C1s.xps").string());  // after the first "."

    // Cancelling Save does nothing.
    main().findChild<QPushButton*>("saveProjectButton")->click();
    EXPECT_EQ(sink.messages.size(), 1u);

    const Region savedRegion = project().Regions[0];
    const Peak savedPeak = project().Peaks[0];
    RecordingSink sink2;
    ScriptedChooser chooser2;
    ui::Gui other(sink2, chooser2);
    other.Start(std::string(MOLVERA_SOURCE_DIR) + "/default.opa");
    chooser2.paths.push_back(xps);
    other.mainWindow().findChild<QPushButton*>("openProjectButton")->click();
    EXPECT_TRUE(sink2.messages.empty());
    EXPECT_EQ(chooser2.requests.back().title, "Open file");
    EXPECT_FALSE(chooser2.requests.back().save);
    const Region& r = other.project().Regions[0];
    EXPECT_EQ(r.PointCount, savedRegion.PointCount);
    EXPECT_EQ(r.BindingEnergy, savedRegion.BindingEnergy);
    EXPECT_EQ(r.RawIntensity, savedRegion.RawIntensity);
    EXPECT_EQ(r.ChiSquare, savedRegion.ChiSquare);
    EXPECT_EQ(other.project().Peaks[0].Position, savedPeak.Position);
    EXPECT_EQ(other.project().Peaks[0].Area, savedPeak.Area);
    EXPECT_EQ(other.mainWindow().DescriptionBox()->text(), QStringLiteral("C 1s, caf\u00e9"));
    EXPECT_EQ(other.mainWindow().PeakButton(0)->text(), "0");
    EXPECT_TRUE(other.mainWindow().PeakButton(0)->isEnabled());
    EXPECT_FALSE(other.mainWindow().ChiSquareBox(0)->text().isEmpty());
    EXPECT_EQ(other.regionWindow().windowTitle(), "Region 1");
}

TEST_F(GuiTest, OpenOfAWrongFileShowsTheMessageOnceWithItsDetail) {
    chooser.paths.push_back(DataFile("real/lg4x/C1s_sample.csv"));
    main().findChild<QPushButton*>("openProjectButton")->click();
    ASSERT_EQ(sink.messages.size(), 1u);
    // The same text as molvera-cli prints: the fixed message, and the detail below it.
    EXPECT_EQ(
        sink.messages[0],
        std::string(msg::kWrongFileFormat) +
            "\nC1s_sample.csv: no project header (\"MOLVERA 4.0\", \"MOLVERA 3.0\" or \"SF\")");
}

}  // namespace
}  // namespace molvera::test
