// Options dialog: filling, the OK checks in their order, the immediate handlers, and
// the Load/Save Parameters commands.

#include "session/optionsform.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>

#include "fitting/optionfile.h"
#include "model/messages.h"
#include "model/records.h"
#include "support/paths.h"
#include "support/recording_host.h"

namespace molvera {
namespace {

using test::RecordingHost;

// A dialog that passes every check: trials 10 / 20, tolerance 0.5 %, levels 1 and 2
// ticked for every row.
OptionsForm ValidForm() {
    OptionsForm f;
    f.Visible = true;
    f.UseSearch = true;
    f.SearchTrial = "10";
    f.NewtonTrial = "20";
    f.TolVal = "0.5";
    for (int i = 0; i < 2; ++i) {
        for (auto* check : {&f.PosSearchCheck, &f.AreaSearchCheck, &f.FWHMSearchCheck,
                            &f.PosNewtonCheck, &f.AreaNewtonCheck, &f.FWHMNewtonCheck})
            (*check)[i] = true;
        for (auto* box : {&f.PosRange, &f.PosStep, &f.AreaRange, &f.AreaStep, &f.FWHMRange,
                          &f.FWHMStep, &f.PosDelta, &f.AreaDelta, &f.FWHMDelta})
            (*box)[i] = i == 0 ? "1" : "0.25";
    }
    return f;
}

TEST(OptionsDialogFill, CopiesEveryControl) {
    FitOptions o;
    o.Method = 2;  // any non-zero value is Newton's method
    o.SearchTrials = 5;
    o.NewtonTrials = 150;
    o.Tolerance = 0.25f;
    o.AreaSearch[3] = {-1, 12.5f, 0.5f};
    o.FWHMNewton[1] = {1, 0.001f};
    o.PositionSearch[0] = {0, 1234567.0f, 0.1f};
    o.GLSum = -1;
    OptionsForm f;
    FillOptionsDialog(o, f);
    EXPECT_TRUE(f.Visible);
    EXPECT_FALSE(f.UseSearch);
    EXPECT_TRUE(f.UseNewton);
    EXPECT_EQ(f.SearchTrial, "5");
    EXPECT_EQ(f.NewtonTrial, "150");
    EXPECT_EQ(f.TolVal, "25");
    EXPECT_TRUE(f.AreaSearchCheck[3]);
    EXPECT_EQ(f.AreaRange[3], "12.5");
    EXPECT_EQ(f.AreaStep[3], "0.5");
    EXPECT_TRUE(f.FWHMNewtonCheck[1]);
    EXPECT_EQ(f.FWHMDelta[1], "0.001");
    EXPECT_FALSE(f.PosSearchCheck[0]);
    EXPECT_EQ(f.PosRange[0], "1234567");
    EXPECT_EQ(f.PosStep[0], "0.1");
    EXPECT_EQ(f.PosDelta[2], "0");
    EXPECT_TRUE(f.GLSum);
    EXPECT_FALSE(f.GLProduct);
    EXPECT_TRUE(f.AsymmetryFrameEnabled);

    o.Method = 0;
    o.GLSum = 0;
    o.Tolerance = 0.0001f;
    FillOptionsDialog(o, f);
    EXPECT_TRUE(f.UseSearch);
    EXPECT_FALSE(f.UseNewton);
    EXPECT_FALSE(f.AsymmetryFrameEnabled);
    EXPECT_TRUE(f.GLProduct);
    // 0.0001 as a Single times 100, rounded to a Single, then up to 14 decimals.
    EXPECT_EQ(f.TolVal, "0.00999999977648");
}

TEST(OptionsDialogApply, ValidFormIsStoredAndHidden) {
    OptionsForm f = ValidForm();
    FitOptions o;
    ASSERT_TRUE(ApplyOptionsDialog(f, o).ok());
    EXPECT_FALSE(f.Visible);
    EXPECT_EQ(o.Method, 0.0f);
    EXPECT_EQ(o.SearchTrials, 10);
    EXPECT_EQ(o.NewtonTrials, 20);
    EXPECT_EQ(o.Tolerance, 0.005f);
    EXPECT_EQ(o.AreaSearch[1].Use, kTrue);
    EXPECT_EQ(o.AreaSearch[1].Step, 0.25f);
    EXPECT_EQ(o.FWHMNewton[0].Delta, 1.0f);
    EXPECT_EQ(o.PositionNewton[2].Use, kFalse);
    f.UseSearch = false;
    f.UseNewton = true;
    ASSERT_TRUE(ApplyOptionsDialog(f, o).ok());
    EXPECT_EQ(o.Method, 1.0f);
}

TEST(OptionsDialogApply, Tolerance) {
    FitOptions o;
    OptionsForm f = ValidForm();
    f.TolVal = "0.01";
    ASSERT_TRUE(ApplyOptionsDialog(f, o).ok());
    EXPECT_EQ(o.Tolerance, 0.0001f);
    for (const char* ok : {"0", "100", "abc"}) {  // text without a number reads as 0
        f.TolVal = ok;
        EXPECT_TRUE(ApplyOptionsDialog(f, o).ok()) << ok;
    }
    EXPECT_EQ(o.Tolerance, 0.0f);
    f.TolVal = "100";
    ASSERT_TRUE(ApplyOptionsDialog(f, o).ok());
    EXPECT_EQ(o.Tolerance, 1.0f);
    for (const char* bad : {"-0.5", "100.001", "1e5"}) {
        f.TolVal = bad;
        f.Visible = true;
        EXPECT_EQ(ApplyOptionsDialog(f, o).message(), msg::kToleranceRange) << bad;
        EXPECT_EQ(o.Tolerance, 1.0f) << bad;
        EXPECT_TRUE(f.Visible);
    }
}

TEST(OptionsDialogApply, Trials) {
    FitOptions o;
    OptionsForm f = ValidForm();
    struct Case {
        const char* text;
        int stored;  // 0: refused
    };
    for (Case c : {Case{"200", 200}, Case{"1", 1}, Case{"2.5", 2}, Case{"3.5", 4}, Case{"7 trials", 7},
                   Case{"201", 0}, Case{"0", 0}, Case{"0.5", 0}, Case{"-3", 0}, Case{"", 0},
                   Case{"40000", 0}, Case{"1e300", 0}}) {
        o.SearchTrials = 99;
        o.NewtonTrials = 99;
        f.SearchTrial = c.text;
        f.NewtonTrial = "20";
        const Status st = ApplyOptionsDialog(f, o);
        if (c.stored) {
            EXPECT_TRUE(st.ok()) << c.text;
            EXPECT_EQ(o.SearchTrials, c.stored) << c.text;
        } else {
            EXPECT_EQ(st.message(), msg::kSearchTrialsRange) << c.text;
            EXPECT_EQ(o.SearchTrials, 99) << c.text;
            EXPECT_EQ(o.NewtonTrials, 99) << c.text;  // later steps not run
        }
        f.SearchTrial = "20";
        f.NewtonTrial = c.text;
        const Status nt = ApplyOptionsDialog(f, o);
        if (c.stored) {
            EXPECT_EQ(o.NewtonTrials, c.stored) << c.text;
        } else {
            EXPECT_EQ(nt.message(), msg::kNewtonTrialsRange) << c.text;
            EXPECT_EQ(o.SearchTrials, 20) << c.text;  // stored by the step before
        }
    }
}

TEST(OptionsDialogApply, UntickedLevelKeepsItsValues) {
    FitOptions o;
    o.PositionSearch[2] = {-1, 3.5f, 0.7f};
    o.AreaNewton[3] = {-1, 0.02f};
    OptionsForm f = ValidForm();
    f.PosRange[2] = "0";  // not checked, so not read
    f.AreaDelta[3] = "-5";
    ASSERT_TRUE(ApplyOptionsDialog(f, o).ok());
    EXPECT_EQ(o.PositionSearch[2].Use, kFalse);
    EXPECT_EQ(o.PositionSearch[2].Range, 3.5f);
    EXPECT_EQ(o.PositionSearch[2].Step, 0.7f);
    EXPECT_EQ(o.AreaNewton[3].Use, kFalse);
    EXPECT_EQ(o.AreaNewton[3].Delta, 0.02f);
}

TEST(OptionsDialogApply, TickedLevelWithZeroRangeIsRefusedAndStaysInUse) {
    FitOptions o;
    o.PositionSearch[0] = {0, 9.0f, 9.0f};
    o.AreaSearch[0] = {0, 9.0f, 9.0f};
    OptionsForm f = ValidForm();
    f.PosRange[0] = "0";
    const Status st = ApplyOptionsDialog(f, o);
    EXPECT_EQ(st.message(), "Range value for Position of level 1 must be >0");
    EXPECT_EQ(o.PositionSearch[0].Use, kTrue);
    EXPECT_EQ(o.PositionSearch[0].Range, 9.0f);
    EXPECT_EQ(o.PositionSearch[0].Step, 9.0f);  // its step comes later
    EXPECT_EQ(o.AreaSearch[0].Use, kFalse);     // so does the next row
    EXPECT_TRUE(f.Visible);
}

TEST(OptionsDialogApply, MessagesFollowRowAndLevelOrder) {
    struct Case {
        std::array<std::string, kLevels> OptionsForm::*box;
        int level;
        const char* message;
    };
    const Case cases[] = {
        {&OptionsForm::PosStep, 1, "Step value for Position of level 1 must be >0"},
        {&OptionsForm::AreaRange, 2, "Range value for Area of level 2 must be >0"},
        {&OptionsForm::AreaStep, 1, "Step value for Area of level 1 must be >0"},
        {&OptionsForm::FWHMRange, 1, "Range value for FWHM of level 1 must be >0"},
        {&OptionsForm::FWHMStep, 2, "Step value for FWHM of level 2 must be >0"},
        {&OptionsForm::PosDelta, 2, "Delta value for Position of level 2 must be >0"},
        {&OptionsForm::AreaDelta, 1, "Delta value for Area of level 1 must be >0"},
        {&OptionsForm::FWHMDelta, 2, "Delta value for FWHM of level 2 must be >0"},
    };
    for (const Case& c : cases) {
        OptionsForm f = ValidForm();
        (f.*c.box)[c.level - 1] = "-1";
        FitOptions o;
        EXPECT_EQ(ApplyOptionsDialog(f, o).message(), c.message);
    }
    // Level 1 is checked whole before level 2: a bad level-2 position range comes
    // after every row of level 1 has been stored.
    OptionsForm f = ValidForm();
    f.PosRange[1] = "x";
    f.FWHMDelta[1] = "0";
    FitOptions o;
    EXPECT_EQ(ApplyOptionsDialog(f, o).message(), "Range value for Position of level 2 must be >0");
    EXPECT_EQ(o.FWHMNewton[0].Delta, 1.0f);
    EXPECT_EQ(o.FWHMNewton[1].Use, kFalse);
}

TEST(OptionsDialogClicks, MethodButtonsStayExclusive) {
    OptionsForm f;
    FitOptions o;
    f.UseNewton = true;
    UseNewtonClick(f, o);
    EXPECT_EQ(o.Method, 1.0f);
    EXPECT_FALSE(f.UseSearch);
    f.UseSearch = true;
    UseSearchClick(f, o);
    EXPECT_EQ(o.Method, 0.0f);
    EXPECT_FALSE(f.UseNewton);
    f.UseNewton = false;
    UseNewtonClick(f, o);
    EXPECT_TRUE(f.UseSearch);
    EXPECT_EQ(o.Method, 0.0f);
}

TEST(OptionsDialogClicks, LineShapeTakesEffectAtOnce) {
    OptionsForm f;
    FitOptions o;
    f.GLSum = true;
    GLSumClick(f, o);
    EXPECT_EQ(o.GLSum, -1);
    EXPECT_TRUE(f.AsymmetryFrameEnabled);
    EXPECT_FALSE(f.GLProduct);
    f.GLProduct = true;
    GLProductClick(f, o);
    EXPECT_EQ(o.GLSum, 0);
    EXPECT_FALSE(f.AsymmetryFrameEnabled);
    EXPECT_FALSE(f.GLSum);
}

TEST(OptionsDialogFiles, ProposedName) {
    EXPECT_EQ(ProposeOptionFileName("C:/data/run1.xps"), "C:/data/run1.opa");
    EXPECT_EQ(ProposeOptionFileName("a.b.c"), "a.opa");
    EXPECT_EQ(ProposeOptionFileName("noext"), "noext");
}

TEST(OptionsDialogFiles, SaveAfterAFailedCheckStillWrites) {
    const auto dir = test::ScratchDir();
    OptionsForm f = ValidForm();
    f.NewtonTrial = "0";
    FitOptions o;
    RecordingHost host;
    ASSERT_TRUE(SaveOptionsCommand((dir / "a.opa").string(), f, o, host).ok());
    EXPECT_EQ(host.messages, std::vector<std::string>{msg::kNewtonTrialsRange});
    EXPECT_EQ(std::filesystem::file_size(dir / "a.opa"), kOptionFileSize);
    FitOptions back;
    ASSERT_TRUE(ReadOptionFile(back, (dir / "a.opa").string()).ok());
    EXPECT_EQ(back.SearchTrials, 10);  // stored before the failing step
    EXPECT_EQ(back, o);
}

TEST(OptionsDialogFiles, LoadRefreshesOnlyOnSuccess) {
    const auto dir = test::ScratchDir();
    FitOptions saved;
    saved.SearchTrials = 33;
    saved.GLSum = -1;
    ASSERT_TRUE(WriteOptionFile(saved, (dir / "a.opa").string()).ok());
    {
        std::ofstream(dir / "short.opa", std::ios::binary) << std::string(10, '\0');
    }
    OptionsForm f;
    FitOptions o;
    RecordingHost host;
    EXPECT_EQ(LoadOptionsCommand((dir / "short.opa").string(), f, o, host).message(), msg::kErrorReadingFile);
    EXPECT_EQ(host.messages, std::vector<std::string>{msg::kErrorReadingFile});
    EXPECT_FALSE(f.Visible);
    EXPECT_EQ(f.SearchTrial, "");
    ASSERT_TRUE(LoadOptionsCommand((dir / "a.opa").string(), f, o, host).ok());
    EXPECT_TRUE(f.Visible);
    EXPECT_EQ(f.SearchTrial, "33");
    EXPECT_TRUE(f.AsymmetryFrameEnabled);

    OptionsForm start;
    FitOptions startOptions;
    LoadDefaultOptions((dir / "missing.opa").string(), start, startOptions);
    EXPECT_EQ(startOptions, FitOptions{});
    LoadDefaultOptions((dir / "a.opa").string(), start, startOptions);
    EXPECT_FALSE(start.Visible);
    EXPECT_EQ(start.SearchTrial, "33");
}

}  // namespace
}  // namespace molvera
