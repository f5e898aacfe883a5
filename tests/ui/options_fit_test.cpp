// The options dialog's controls and messages, and a fit stopped from "Stop Fitting".
#include <filesystem>
#include <tuple>

#include <QCheckBox>
#include <QLabel>
#include <QTimer>

#include "base/messages.h"
#include "base/numtext.h"
#include "ui/fittingwindow.h"
#include "ui/gui_fixture.h"
#include "ui/optionswindow.h"

namespace molvera::test {
namespace {

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
    timer.setInterval(0);
    QObject::connect(&timer, &QTimer::timeout, [&] {
        if (++ticks != 3) return;
        fittingShown = gui->fittingWindow().isVisible();
        othersDisabled = !main().isEnabled() && !region().CommandsEnabled();
        gui->fittingWindow().StopButton()->click();
    });
    timer.start();
    const float before = project().TotalChiSquare;
    const int redrawsBefore = gui->host().RedrawCount();
    Menu("optimiseRegionAction");
    timer.stop();

    EXPECT_GE(ticks, 3);
    EXPECT_TRUE(fittingShown);
    EXPECT_TRUE(othersDisabled);
    EXPECT_FALSE(gui->fittingWindow().isVisible());
    EXPECT_TRUE(main().isEnabled());
    EXPECT_TRUE(region().CommandsEnabled());
    EXPECT_FALSE(project().StopRequested);
    // One redraw per finished trial: far fewer than the 200 asked for.
    EXPECT_LT(gui->host().RedrawCount() - redrawsBefore, 100);
    EXPECT_LT(project().TotalChiSquare, before);  // the steps made before Stop are kept
    EXPECT_EQ(main().TotalLabel()->text().toStdString(), FormatGeneral(project().TotalChiSquare));
}

}  // namespace
}  // namespace molvera::test
