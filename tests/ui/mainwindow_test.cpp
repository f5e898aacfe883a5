// Start-up, region and peak buttons, Save and Open of the main window.
#include <QApplication>

#include "base/messages.h"
#include "ui/gui_fixture.h"
#include "ui/optionswindow.h"

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

}  // namespace
}  // namespace molvera::test
