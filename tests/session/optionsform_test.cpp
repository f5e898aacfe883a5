// Options dialog: filling, the OK checks in their order, the method buttons, and the
// Load/Save Parameters commands.

#include "session/optionsform.h"

#include <gtest/gtest.h>

#include <filesystem>

#include "fileio/optionfile.h"
#include "base/messages.h"
#include "model/records.h"
#include "support/files.h"
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

TEST(OptionsDialogFill, ToleranceInPerCentAndAnyNonZeroMethodIsNewton) {
    FitOptions o;
    o.Method = 2;
    o.Tolerance = 0.0001f;  // times 100 as a Single, then up to 14 decimals
    OptionsForm f;
    FillOptionsDialog(o, f);
    EXPECT_TRUE(f.UseNewton);
    EXPECT_FALSE(f.UseSearch);
    EXPECT_EQ(f.TolVal, "0.00999999977648");
}

TEST(OptionsDialogApply, ValidFormIsStoredAndHidden) {
    OptionsForm f = ValidForm();
    f.AreaDelta[3] = "-5";  // not ticked, so not read
    FitOptions o;
    o.AreaNewton[3] = {-1, 0.02f};
    ASSERT_TRUE(ApplyOptionsDialog(f, o).ok());
    EXPECT_EQ(o.Method, 0.0f);
    EXPECT_EQ(o.AreaSearch[1].Step, 0.25f);
    EXPECT_EQ(o.FWHMNewton[0].Delta, 1.0f);
    EXPECT_EQ(o.AreaNewton[3].Use, kFalse);  // unticked: off, its value kept
    EXPECT_EQ(o.AreaNewton[3].Delta, 0.02f);
    f.UseSearch = false;
    f.UseNewton = true;
    ASSERT_TRUE(ApplyOptionsDialog(f, o).ok());
    EXPECT_EQ(o.Method, 1.0f);
}

TEST(OptionsDialogApply, ToleranceFrom0To100PerCent) {
    struct Case {
        const char* text;
        bool ok;
        float stored;
    };
    const Case cases[] = {{"0.01", true, 0.0001f}, {"abc", true, 0}, {"100", true, 1},  // no number reads as 0
                          {"-0.5", false, 1},      {"100.001", false, 1}, {"1e5", false, 1}};
    FitOptions o;
    OptionsForm f = ValidForm();
    for (const Case& c : cases) {
        f.TolVal = c.text;
        f.Visible = true;
        EXPECT_EQ(ApplyOptionsDialog(f, o).message(), c.ok ? "" : msg::kToleranceRange) << c.text;
        EXPECT_EQ(o.Tolerance, c.stored) << c.text;
        EXPECT_EQ(f.Visible, !c.ok) << c.text;
    }
}

TEST(OptionsDialogApply, TrialsFrom1To200RoundedHalfToEven) {
    FitOptions o;
    OptionsForm f = ValidForm();
    const std::pair<const char*, int> cases[] = {{"200", 200}, {"1", 1},     {"2.5", 2},  {"3.5", 4},
                                                 {"7 trials", 7}, {"201", 0}, {"0.5", 0}, {"-3", 0},
                                                 {"", 0},      {"40000", 0}, {"1e300", 0}};  // 0: refused
    for (const auto& [text, stored] : cases) {
        SCOPED_TRACE(text);
        o.SearchTrials = o.NewtonTrials = 99;
        f.SearchTrial = text;
        f.NewtonTrial = "20";
        EXPECT_EQ(ApplyOptionsDialog(f, o).message(), stored ? "" : msg::kSearchTrialsRange);
        EXPECT_EQ(o.SearchTrials, stored ? stored : 99);
        EXPECT_EQ(o.NewtonTrials, stored ? 20 : 99);  // later steps not run after a refusal
        f.SearchTrial = "20";
        f.NewtonTrial = text;
        EXPECT_EQ(ApplyOptionsDialog(f, o).message(), stored ? "" : msg::kNewtonTrialsRange);
        EXPECT_EQ(o.SearchTrials, 20);  // stored by the step before
        EXPECT_EQ(o.NewtonTrials, stored ? stored : 99);
    }
}

TEST(OptionsDialogApply, MessagesFollowRowAndLevelOrder) {
    struct Case {
        std::array<std::string, kLevels> OptionsForm::*box;
        int level;
        const char* message;
    };
    const Case cases[] = {
        {&OptionsForm::PosRange, 1, "Range value for Position of level 1 must be >0"},
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
        (f.*c.box)[2] = "0";  // level 3 is not ticked: not read
        FitOptions o;
        EXPECT_EQ(ApplyOptionsDialog(f, o).message(), c.message);
        EXPECT_TRUE(f.Visible);
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

TEST(OptionsDialogFiles, ProposedNameSaveAfterAFailedCheckAndLoad) {
    EXPECT_EQ(ProposeOptionFileName("a.b.c"), "a.opa");
    // Save Parameters stores what the checks got to, then writes.
    const auto dir = test::ScratchDir();
    OptionsForm f = ValidForm();
    f.NewtonTrial = "0";
    f.SearchTrial = "33";
    FitOptions o;
    o.GLSum = -1;
    EXPECT_EQ(ApplyOptionsDialog(f, o).message(), msg::kNewtonTrialsRange);
    ASSERT_TRUE(WriteOptionFile(o, (dir / "a.opa").string()).ok());
    FitOptions back;
    ASSERT_TRUE(ReadOptionFile(back, (dir / "a.opa").string()).ok());
    EXPECT_EQ(back.SearchTrials, 33);  // stored before the failing step
    EXPECT_EQ(back, o);

    // A failed load leaves the dialog alone.
    test::WriteBytes(dir / "short.opa", std::string(10, '\0'));
    OptionsForm g;
    EXPECT_EQ(LoadOptionsCommand((dir / "short.opa").string(), g, o).message(), msg::kErrorReadingFile);
    EXPECT_FALSE(g.Visible);
    EXPECT_EQ(g.SearchTrial, "");
}

}  // namespace
}  // namespace molvera
