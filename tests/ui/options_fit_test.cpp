// The options dialog's controls and messages, and a fit stopped from "Stop Fitting".
#include <filesystem>

#include <QCheckBox>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QRadioButton>
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
        main().findChild<QPushButton*>("optionsButton")->click();
    }
    ui::OptionsWindow& dialog() { return gui->optionsWindow(); }
    template <class W>
    W* Control(const char* name) {
        W* w = dialog().findChild<W*>(QString::fromLatin1(name));
        EXPECT_NE(w, nullptr) << name;
        return w;
    }
    void Type(const char* box, const char* text) { Control<QLineEdit>(box)->setText(text); }
    void Ok() { Control<QPushButton>("okButton")->click(); }
};

TEST_F(OptionsTest, OpensFilledFromTheOptions) {
    EXPECT_TRUE(dialog().isVisible());
    EXPECT_EQ(dialog().windowTitle(), "Option");
    EXPECT_TRUE(Control<QRadioButton>("useNewton")->isChecked());
    EXPECT_FALSE(Control<QRadioButton>("useSearch")->isChecked());
    EXPECT_EQ(Control<QLineEdit>("newtonTrialsText")->text(),
              QString::number(DefaultNewtonTrials()));
    EXPECT_EQ(Control<QCheckBox>("usePositionNewton0")->isChecked(),
              IsSet(project().Options.PositionNewton[0].Use));
    EXPECT_EQ(Control<QRadioButton>("glSum")->isChecked(), IsSet(project().Options.GLSum));
    EXPECT_NE(Control<QRadioButton>("glProduct")->isChecked(), IsSet(project().Options.GLSum));
    for (const char* name :
         {"positionRangeText3", "areaStepText2", "fwhmRangeText0", "positionDeltaText1",
          "areaDeltaText3", "fwhmDeltaText0", "toleranceText", "searchTrialsText"})
        Control<QLineEdit>(name);
    for (const char* name : {"loadParametersButton", "saveParametersButton"})
        Control<QPushButton>(name);
}

TEST_F(OptionsTest, MethodButtonsSitInTwoFramesAndStayExclusive) {
    Control<QRadioButton>("useSearch")->click();
    EXPECT_EQ(project().Options.Method, 0.0f);
    EXPECT_FALSE(Control<QRadioButton>("useNewton")->isChecked());
    Control<QRadioButton>("useNewton")->click();
    EXPECT_EQ(project().Options.Method, 1.0f);
    EXPECT_FALSE(Control<QRadioButton>("useSearch")->isChecked());

    Control<QRadioButton>("glSum")->click();
    EXPECT_TRUE(IsSet(project().Options.GLSum));  // at once, without OK
    Control<QRadioButton>("glProduct")->click();
    EXPECT_FALSE(IsSet(project().Options.GLSum));
}

TEST_F(OptionsTest, OkReportsTheFirstFailureAndKeepsTheDialogOpen) {
    Type("searchTrialsText", "201");
    Ok();
    ASSERT_EQ(sink.messages, std::vector<std::string>{msg::kSearchTrialsRange});
    EXPECT_TRUE(dialog().isVisible());

    Type("searchTrialsText", "2.5");
    Type("newtonTrialsText", "0");
    Ok();
    EXPECT_EQ(sink.messages.back(), msg::kNewtonTrialsRange);
    EXPECT_EQ(project().Options.SearchTrials, 2);  // stored before the failure

    Type("newtonTrialsText", "200");
    Type("toleranceText", "100.5");
    Ok();
    EXPECT_EQ(sink.messages.back(), msg::kToleranceRange);

    Type("toleranceText", "0.01");
    Control<QCheckBox>("usePositionSearch0")->setChecked(true);
    Type("positionRangeText0", "0");
    Ok();
    EXPECT_EQ(sink.messages.back(), "Range value for Position of level 1 must be >0");
    EXPECT_TRUE(IsSet(project().Options.PositionSearch[0].Use));
    EXPECT_EQ(project().Options.Tolerance, 0.01f / 100.0f);

    Type("positionRangeText0", "1");
    Control<QCheckBox>("useFWHMNewton2")->setChecked(true);
    Type("fwhmDeltaText2", "-1");
    Ok();
    EXPECT_EQ(sink.messages.back(), "Delta value for FWHM of level 3 must be >0");

    Type("fwhmDeltaText2", "0.01");
    const std::size_t shown = sink.messages.size();
    Ok();
    EXPECT_EQ(sink.messages.size(), shown);
    EXPECT_FALSE(dialog().isVisible());
    EXPECT_EQ(project().Options.NewtonTrials, 200);
}

TEST_F(OptionsTest, SaveAndLoadParametersGoThroughTheFileDialog) {
    const auto dir = ScratchDir();
    const std::string opa = (dir / "mine.opa").string();
    Type("newtonTrialsText", "7");
    chooser.paths.push_back(opa);
    Control<QPushButton>("saveParametersButton")->click();
    EXPECT_TRUE(sink.messages.empty());
    EXPECT_EQ(chooser.requests.back().filter, "Parameter Files (*.opa)");
    EXPECT_EQ(std::filesystem::file_size(opa), 206u);

    main().findChild<QPushButton*>("optionsButton")->click();
    Type("newtonTrialsText", "9");
    Ok();
    EXPECT_EQ(project().Options.NewtonTrials, 9);
    chooser.paths.push_back(opa);
    Control<QPushButton>("loadParametersButton")->click();
    EXPECT_EQ(chooser.requests.back().name, "");  // the dialog's name is emptied first
    EXPECT_EQ(project().Options.NewtonTrials, 7);
    EXPECT_EQ(Control<QLineEdit>("newtonTrialsText")->text(), "7");
    EXPECT_TRUE(dialog().isVisible());
}

TEST_F(GuiTest, StopFittingEndsALongFitEarly) {
    ImportSample();
    GiveBackground();
    for (int k = 0; k < 6; ++k) Menu("addPeakAction");
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
    EXPECT_EQ(gui->fittingWindow().StopButton()->text(), "Stop Fitting");
    EXPECT_EQ(gui->fittingWindow().windowTitle(), "Fitting");
    EXPECT_FALSE(gui->fittingWindow().isVisible());
    EXPECT_TRUE(main().isEnabled());
    EXPECT_TRUE(region().CommandsEnabled());
    EXPECT_FALSE(project().StopRequested);
    // One redraw per finished trial: far fewer than the 200 asked for.
    RecordProperty("redraws", gui->host().RedrawCount() - redrawsBefore);
    EXPECT_LT(gui->host().RedrawCount() - redrawsBefore, 100);
    EXPECT_LT(project().TotalChiSquare, before);  // the steps made before Stop are kept
    EXPECT_EQ(main().TotalLabel()->text().toStdString(), FormatGeneral(project().TotalChiSquare));
}

}  // namespace
}  // namespace molvera::test
