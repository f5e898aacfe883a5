// Options dialog: filling, the OK checks in their order, the method buttons, and the
// Load/Save Parameters commands.

#include "session/optionsform.h"

#include <filesystem>

#include <gtest/gtest.h>

#include "base/messages.h"
#include "fileio/optionfile.h"
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
    f.visible = true;
    f.useSearch = true;
    f.searchTrialsText = "10";
    f.newtonTrialsText = "20";
    f.toleranceText = "0.5";
    for (int i = 0; i < 2; ++i) {
        for (auto* check : {&f.usePositionSearch, &f.useAreaSearch, &f.useFWHMSearch,
                            &f.usePositionNewton, &f.useAreaNewton, &f.useFWHMNewton})
            (*check)[i] = true;
        for (auto* box : {&f.positionRangeText, &f.positionStepText, &f.areaRangeText,
                          &f.areaStepText, &f.fwhmRangeText, &f.fwhmStepText, &f.positionDeltaText,
                          &f.areaDeltaText, &f.fwhmDeltaText})
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
    EXPECT_TRUE(f.useNewton);
    EXPECT_FALSE(f.useSearch);
    EXPECT_EQ(f.toleranceText, "0.00999999977648");
}

TEST(OptionsDialogApply, ValidFormIsStoredAndHidden) {
    OptionsForm f = ValidForm();
    f.areaDeltaText[3] = "-5";  // not ticked, so not read
    FitOptions o;
    o.AreaNewton[3] = {-1, 0.02f};
    ASSERT_TRUE(ApplyOptionsDialog(f, o).ok());
    EXPECT_EQ(o.Method, 0.0f);
    EXPECT_EQ(o.AreaSearch[1].Step, 0.25f);
    EXPECT_EQ(o.FWHMNewton[0].Delta, 1.0f);
    EXPECT_EQ(o.AreaNewton[3].Use, kFalse);  // unticked: off, its value kept
    EXPECT_EQ(o.AreaNewton[3].Delta, 0.02f);
    f.useSearch = false;
    f.useNewton = true;
    ASSERT_TRUE(ApplyOptionsDialog(f, o).ok());
    EXPECT_EQ(o.Method, 1.0f);
}

TEST(OptionsDialogApply, ToleranceFrom0To100PerCent) {
    struct Case {
        const char* text;
        bool ok;
        float stored;
    };
    const Case cases[] = {
        {"0.01", true, 0.0001f}, {"abc", true, 0},      {"100", true, 1},  // no number reads as 0
        {"-0.5", false, 1},      {"100.001", false, 1}, {"1e5", false, 1}};
    FitOptions o;
    OptionsForm f = ValidForm();
    for (const Case& c : cases) {
        f.toleranceText = c.text;
        f.visible = true;
        EXPECT_EQ(ApplyOptionsDialog(f, o).message(), c.ok ? "" : msg::kToleranceRange) << c.text;
        EXPECT_EQ(o.Tolerance, c.stored) << c.text;
        EXPECT_EQ(f.visible, !c.ok) << c.text;
    }
}

TEST(OptionsDialogApply, TrialsFrom1To200RoundedHalfToEven) {
    FitOptions o;
    OptionsForm f = ValidForm();
    const std::pair<const char*, int> cases[] = {
        {"200", 200}, {"1", 1},  {"2.5", 2}, {"3.5", 4},   {"7 trials", 7}, {"201", 0},
        {"0.5", 0},   {"-3", 0}, {"", 0},    {"40000", 0}, {"1e300", 0}};  // 0: refused
    for (const auto& [text, stored] : cases) {
        SCOPED_TRACE(text);
        o.SearchTrials = o.NewtonTrials = 99;
        f.searchTrialsText = text;
        f.newtonTrialsText = "20";
        EXPECT_EQ(ApplyOptionsDialog(f, o).message(), stored ? "" : msg::kSearchTrialsRange);
        EXPECT_EQ(o.SearchTrials, stored ? stored : 99);
        EXPECT_EQ(o.NewtonTrials, stored ? 20 : 99);  // later steps not run after a refusal
        f.searchTrialsText = "20";
        f.newtonTrialsText = text;
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
        {&OptionsForm::positionRangeText, 1, "Range value for Position of level 1 must be >0"},
        {&OptionsForm::positionStepText, 1, "Step value for Position of level 1 must be >0"},
        {&OptionsForm::areaRangeText, 2, "Range value for Area of level 2 must be >0"},
        {&OptionsForm::areaStepText, 1, "Step value for Area of level 1 must be >0"},
        {&OptionsForm::fwhmRangeText, 1, "Range value for FWHM of level 1 must be >0"},
        {&OptionsForm::fwhmStepText, 2, "Step value for FWHM of level 2 must be >0"},
        {&OptionsForm::positionDeltaText, 2, "Delta value for Position of level 2 must be >0"},
        {&OptionsForm::areaDeltaText, 1, "Delta value for Area of level 1 must be >0"},
        {&OptionsForm::fwhmDeltaText, 2, "Delta value for FWHM of level 2 must be >0"},
    };
    for (const Case& c : cases) {
        OptionsForm f = ValidForm();
        (f.*c.box)[c.level - 1] = "-1";
        (f.*c.box)[2] = "0";  // level 3 is not ticked: not read
        FitOptions o;
        EXPECT_EQ(ApplyOptionsDialog(f, o).message(), c.message);
        EXPECT_TRUE(f.visible);
    }
    // Level 1 is checked whole before level 2: a bad level-2 position range comes
    // after every row of level 1 has been stored.
    OptionsForm f = ValidForm();
    f.positionRangeText[1] = "x";
    f.fwhmDeltaText[1] = "0";
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
    f.newtonTrialsText = "0";
    f.searchTrialsText = "33";
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
    EXPECT_EQ(LoadOptionsCommand((dir / "short.opa").string(), g, o).message(),
              msg::kErrorReadingFile);
    EXPECT_FALSE(g.visible);
    EXPECT_EQ(g.searchTrialsText, "");
}

}  // namespace
}  // namespace molvera
