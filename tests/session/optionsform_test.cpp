// Options dialog: filling, the OK checks in their order, and Load Parameters.

#include "session/optionsform.h"

#include <filesystem>
#include <tuple>

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
    o.Tolerance = 0.0001f;  // in per cent, as typed
    for (float method : {1.0f, 2.0f, 2.5f, 3.0f, -1.0f}) {
        SCOPED_TRACE(method);
        o.Method = method;
        OptionsForm f;
        FillOptionsDialog(o, f);
        EXPECT_FALSE(f.useSearch);
        EXPECT_EQ(f.useLevenbergMarquardt, method == 2.0f);
        EXPECT_EQ(f.useNewton, method != 2.0f);
        EXPECT_TRUE(f.visible);
        EXPECT_EQ(f.toleranceText, "0.01");
    }
    // OK without typing stores the tolerance shown as it was.
    o.SearchTrials = o.NewtonTrials = 10;
    for (float tolerance : {1e-5f, 0.00123456789f, 0.5f, 3e-9f}) {
        o.Tolerance = tolerance;
        OptionsForm f;
        FillOptionsDialog(o, f);
        ASSERT_TRUE(ApplyOptionsDialog(f, o).ok());
        EXPECT_EQ(o.Tolerance, tolerance) << f.toleranceText;
    }
}

TEST(OptionsDialog, ValidFormIsStoredAndHidden) {
    OptionsForm f = ValidForm();
    f.areaDeltaText[3] = "-5";  // not ticked, so not read
    FitOptions o;
    o.AreaNewton[3] = {-1, 0.02f};
    ASSERT_TRUE(ApplyOptionsDialog(f, o).ok());
    // An unticked level is switched off and keeps its value.
    EXPECT_EQ(std::tuple(f.visible, o.Method, o.AreaSearch[1].Step, o.FWHMNewton[0].Delta,
                         o.AreaNewton[3].Use, o.AreaNewton[3].Delta),
              std::tuple(false, 0.0f, 0.25f, 1.0f, kFalse, 0.02f));
    f.useSearch = false;
    f.useNewton = true;
    ASSERT_TRUE(ApplyOptionsDialog(f, o).ok());
    EXPECT_EQ(o.Method, 1.0f);
}

// Checked in this order, each stored when it passes: search and Newton trials (1..200,
// halves to even), tolerance (0..100 %, no number reads as 0). A refusal keeps the old
// value, runs no later check and leaves the dialog open.
TEST(OptionsDialog, TrialsAndToleranceInOrder) {
    using Box = std::string OptionsForm::*;
    const Box search = &OptionsForm::searchTrialsText, newton = &OptionsForm::newtonTrialsText,
              tolerance = &OptionsForm::toleranceText;
    struct Case {
        Box box;
        const char* text;
        float stored;  ///< -1: refused by its range; -2: as no number, nothing stored
    };
    const Case cases[] = {
        {search, "200", 200},       {search, "1", 1},           {search, "2.5", 2},
        {search, "3.5", 4},         {search, "7 trials", -2},   {search, "201", -1},
        {search, "0.5", -1},        {search, "-3", -1},         {search, "", -2},
        {search, "40000", -1},      {search, "1e300", -2},      {newton, "200", 200},
        {newton, "2.5", 2},         {newton, "201", -1},        {newton, "0.5", -1},
        {tolerance, "0.01", 1e-4f}, {tolerance, "abc", -2},     {tolerance, "100", 1},
        {tolerance, "-0.5", -1},    {tolerance, "100.001", -1}, {tolerance, "1e5", -1},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.text);
        OptionsForm f = ValidForm();
        f.*c.box = c.text;
        FitOptions o;
        o.SearchTrials = o.NewtonTrials = 99;
        o.Tolerance = 7;
        const bool refused = c.stored < 0;
        const std::string refusal = c.box == search   ? msg::kSearchTrialsRange
                                    : c.box == newton ? msg::kNewtonTrialsRange
                                                      : msg::kToleranceRange;
        if (c.stored == -2) {
            EXPECT_TRUE(ApplyOptionsDialog(f, o).message().ends_with(": '" + std::string(c.text) +
                                                                     "' is not a number"));
            EXPECT_EQ(std::tuple(o.SearchTrials, o.NewtonTrials, o.Tolerance),
                      std::tuple(99, 99, 7.0f));
            continue;
        }
        EXPECT_EQ(ApplyOptionsDialog(f, o).message(), refused ? refusal : "");
        EXPECT_EQ(f.visible, refused);
        const auto expected = [&](Box box, float old, float valid, bool reached) {
            return c.box == box ? (refused ? old : c.stored) : reached ? valid : old;
        };
        EXPECT_EQ(std::tuple(static_cast<float>(o.SearchTrials), static_cast<float>(o.NewtonTrials),
                             o.Tolerance),
                  std::tuple(expected(search, 99, 10, true),
                             expected(newton, 99, 20, !(refused && c.box == search)),
                             expected(tolerance, 7, 0.005f, !refused)));
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
    f.positionRangeText[1] = "0";
    f.fwhmDeltaText[1] = "0";
    FitOptions o;
    EXPECT_EQ(ApplyOptionsDialog(f, o).message(), "Range value for Position of level 2 must be >0");
    EXPECT_EQ(o.FWHMNewton[0].Delta, 1.0f);
    EXPECT_EQ(o.FWHMNewton[1].Use, kFalse);
    // A box in use that holds no number is refused before anything is stored.
    f.positionRangeText[1] = "x";
    FitOptions untouched;
    EXPECT_EQ(ApplyOptionsDialog(f, untouched).message(),
              "Range value for Position of level 2: 'x' is not a number");
    EXPECT_EQ(f.invalidBox, "positionRangeText1");
    EXPECT_EQ(untouched, FitOptions());
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
