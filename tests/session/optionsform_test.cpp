// Options dialog: filling, the OK checks in their order, and Load Parameters.

#include "session/optionsform.h"

#include <filesystem>

#include <gtest/gtest.h>

#include "base/messages.h"
#include "model/records.h"
#include "support/files.h"

namespace molvera {
namespace {

// A dialog that passes every check: trials 10 / 20, tolerance 0.5 %, levels 1 and 2
// ticked for every row, their boxes 1 and 0.25.
OptionsForm ValidForm() {
    OptionsForm f;
    f.visible = f.useSearch = true;
    f.searchTrialsText = "10";
    f.newtonTrialsText = "20";
    f.toleranceText = "0.5";
    for (auto* check : {&f.usePositionSearch, &f.useAreaSearch, &f.useFWHMSearch,
                        &f.usePositionNewton, &f.useAreaNewton, &f.useFWHMNewton})
        (*check)[0] = (*check)[1] = true;
    for (auto* box : {&f.positionRangeText, &f.positionStepText, &f.areaRangeText, &f.areaStepText,
                      &f.fwhmRangeText, &f.fwhmStepText, &f.positionDeltaText, &f.areaDeltaText,
                      &f.fwhmDeltaText})
        (*box)[0] = "1", (*box)[1] = "0.25";
    return f;
}

TEST(OptionsDialog, FillShowsTolerancePerCentMethodTwoAsLevenbergMarquardtOtherNonZeroAsNewton) {
    FitOptions o;
    o.Tolerance = 0.0001f;  // times 100 as a Single, then up to 14 decimals
    for (float method : {1.0f, 2.0f, 2.5f, 3.0f, -1.0f}) {
        SCOPED_TRACE(method);
        o.Method = method;
        OptionsForm f;
        FillOptionsDialog(o, f);
        EXPECT_FALSE(f.useSearch);
        EXPECT_EQ(f.useLevenbergMarquardt, method == 2.0f);
        EXPECT_EQ(f.useNewton, method != 2.0f);
        EXPECT_TRUE(f.visible);
        EXPECT_EQ(f.toleranceText, "0.00999999977648");
    }
}

TEST(OptionsDialog, ValidFormIsStoredAndHidden) {
    OptionsForm f = ValidForm();
    f.areaDeltaText[3] = "-5";  // not ticked, so not read
    FitOptions o;
    o.AreaNewton[3] = {-1, 0.02f};
    ASSERT_TRUE(ApplyOptionsDialog(f, o).ok());
    EXPECT_FALSE(f.visible);
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

TEST(OptionsDialog, ToleranceFrom0To100PerCent) {
    const std::pair<const char*, float> cases[] = {
        {"0.01", 0.0001f}, {"abc", 0},      {"100", 1},    // no number reads as 0
        {"-0.5", -1},      {"100.001", -1}, {"1e5", -1}};  // -1: refused, 1 kept
    FitOptions o;
    OptionsForm f = ValidForm();
    for (const auto& [text, stored] : cases) {
        f.toleranceText = text;
        f.visible = true;
        EXPECT_EQ(ApplyOptionsDialog(f, o).message(), stored < 0 ? msg::kToleranceRange : "")
            << text;
        EXPECT_EQ(o.Tolerance, stored < 0 ? 1 : stored) << text;
        EXPECT_EQ(f.visible, stored < 0) << text;
    }
}

TEST(OptionsDialog, TrialsFrom1To200RoundedHalfToEven) {
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

TEST(OptionsDialog, MessagesFollowRowAndLevelOrder) {
    struct Case {
        std::array<std::string, kLevels> OptionsForm::*box;
        int level;
        const char* message;
    };
    const Case cases[] = {
        {&OptionsForm::positionRangeText, 1, "Range value for Position of level 1"},
        {&OptionsForm::positionStepText, 1, "Step value for Position of level 1"},
        {&OptionsForm::areaRangeText, 2, "Range value for Area of level 2"},
        {&OptionsForm::areaStepText, 1, "Step value for Area of level 1"},
        {&OptionsForm::fwhmRangeText, 1, "Range value for FWHM of level 1"},
        {&OptionsForm::fwhmStepText, 2, "Step value for FWHM of level 2"},
        {&OptionsForm::positionDeltaText, 2, "Delta value for Position of level 2"},
        {&OptionsForm::areaDeltaText, 1, "Delta value for Area of level 1"},
        {&OptionsForm::fwhmDeltaText, 2, "Delta value for FWHM of level 2"},
    };
    for (const Case& c : cases) {
        OptionsForm f = ValidForm();
        (f.*c.box)[c.level - 1] = "-1";
        (f.*c.box)[2] = "0";  // level 3 is not ticked: not read
        FitOptions o;
        EXPECT_EQ(ApplyOptionsDialog(f, o).message(), std::string(c.message) + " must be >0");
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

TEST(OptionsDialog, ProposedNameAndAFailedLoadLeavesTheDialogAlone) {
    EXPECT_EQ(ProposeOptionFileName("a.b.c"), "a.opa");
    EXPECT_EQ(ProposeOptionFileName("abc"), "abc");
    const auto path = test::ScratchDir() / "short.opa";
    test::WriteBytes(path, std::string(10, '\0'));
    OptionsForm g;
    FitOptions o;
    EXPECT_EQ(LoadOptionsCommand(path.string(), g, o).message(), msg::kErrorReadingFile);
    EXPECT_FALSE(g.visible);
}

}  // namespace
}  // namespace molvera
