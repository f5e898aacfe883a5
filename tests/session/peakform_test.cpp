#include "session/peakform.h"

#include <array>
#include <tuple>

#include <gtest/gtest.h>

#include "model/project.h"
#include "spectral/envelope.h"
#include "spectral/lineshape.h"
#include "spectral/regionedit.h"
#include "support/recording_host.h"
#include "support/sample_region.h"

namespace molvera {
namespace {

// Region 1: 11 points 290..280 eV with a Shirley background over all of them;
// peak 0 at 284.567 eV, FWHM 0.3, area 250 (button 10).
class PeakFormTest : public ::testing::Test {
protected:
    void SetUp() override {
        ClearProject(project, QuietHost());
        test::FillSampleRegion(project, 1);
        test::GiveSampleBackground(project, 1);
        ASSERT_EQ(AddPeak(project, QuietHost()), 0);
        Peak& p = project.Peaks[0];
        std::tie(p.Position, p.FWHM, p.Area, p.PercentGL) = std::tuple(284.567f, 0.3f, 250.0f, 30);
        p.HeightPercent = AreaToHeightPercent(project, p);
        ComputeRegionEnvelope(project, QuietHost());
    }
    Peak& peak() { return project.Peaks[0]; }

    Project project;
    PeakForm form;
    test::RecordingHost host;
};

TEST_F(PeakFormTest, OpeningShowsValuesThroughTheScrollBars) {
    EXPECT_FALSE(OpenPeakEditor(project, host, form, 11));  // a button without a peak
    ASSERT_TRUE(OpenPeakEditor(project, host, form, 10));
    // Position in 0.01 eV steps from the background's low end: 284.567 shows as 284.57;
    // a FWHM below the bar's 0.5 eV shows as 0.5.
    EXPECT_EQ(std::tuple(form.visible, form.caption, form.positionBar.max, form.positionBar.value,
                         form.positionText, form.fwhmBar.value, form.fwhmText, form.areaBar.value,
                         project.AreaScale),
              std::tuple(true, "Peak 0", 1000, 457, "284.57", 50, "0.5", 500, 0.5f));
    EXPECT_TRUE(project.SavedPeaks[0] == peak());
    // Moves outside a bar's range are refused.
    EXPECT_TRUE(MoveScrollBar(form, PeakParameter::Position, 1));
    EXPECT_TRUE(MoveScrollBar(form, PeakParameter::Area, 1000));
    EXPECT_EQ(form.areaText, "500");  // twice the area at the right end
    EXPECT_FALSE(MoveScrollBar(form, PeakParameter::FWHM, 29));
    EXPECT_FALSE(MoveScrollBar(form, PeakParameter::Position, 1001));
    EXPECT_EQ(std::pair(form.fwhmText, form.positionBar.value), std::pair(std::string("0.5"), 1));
}

TEST_F(PeakFormTest, ZeroAreaOpensWithAUnitBar) {
    peak().Area = 0;
    ASSERT_TRUE(OpenPeakEditor(project, host, form, 10));
    EXPECT_EQ(std::tuple(project.AreaScale, form.areaBar.value, form.areaText),
              std::tuple(1.0f, 1, "1"));
}

TEST_F(PeakFormTest, ApplyLimitsTheBoxesAndKeepsTypedValues) {
    struct Case {
        std::string PeakForm::*box;
        const char* typed;
        float Peak::*field;
        float stored;
        const char* shown;  ///< the box afterwards
    };
    const Case cases[] = {
        {&PeakForm::tailScaleText, "1.7", &Peak::TailScale, 1, "1"},
        {&PeakForm::tailScaleText, "-2", &Peak::TailScale, 0, "0"},
        {&PeakForm::tailLengthText, "0", &Peak::TailLength, 0.01f, "0.01"},
        {&PeakForm::tailLengthText, "500", &Peak::TailLength, 200, "200"},
        {&PeakForm::positionText, "285.123", &Peak::Position, 285.123f, "285.123"},  // no bar
        {&PeakForm::fwhmText, "0.3", &Peak::FWHM, 0.3f, "0.3"},  // below the bar's range
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.typed);
        ASSERT_TRUE(OpenPeakEditor(project, host, form, 10));
        form.*c.box = c.typed;
        ASSERT_TRUE(ApplyPeakEditor(project, form));
        EXPECT_EQ(peak().*c.field, c.stored);
        EXPECT_EQ(form.*c.box, c.shown);
    }
    // %GL is limited to 0..100 the same way; an unknown type text leaves the type alone.
    form.glText = "150";
    form.peakType = "p";
    ASSERT_TRUE(ApplyPeakEditor(project, form));
    EXPECT_EQ(std::tuple(peak().PercentGL, form.glText, peak().PeakType),
              std::tuple(Int16{100}, "100", Subshell::P));
    form.peakType = "q";
    ASSERT_TRUE(ApplyPeakEditor(project, form));
    EXPECT_EQ(peak().PeakType, Subshell::P);
}

// Text that is not all one number a Single holds is refused by the box's name, the box
// is named for the window to mark, and nothing is stored; ReDraw refuses it too.
TEST_F(PeakFormTest, BoxesWithoutANumberAreRefusedByNameAndStoreNothing) {
    const std::tuple<std::string PeakForm::*, const char*, const char*> boxes[] = {
        {&PeakForm::positionText, "Position", "positionText"},
        {&PeakForm::fwhmText, "FWHM", "fwhmText"},
        {&PeakForm::areaText, "Area", "areaText"},
        {&PeakForm::glText, "%GL", "glText"},
        {&PeakForm::splittingText, "S.O.S.", "splittingText"},
        {&PeakForm::tailScaleText, "TS", "tailScaleText"},
        {&PeakForm::tailLengthText, "TL", "tailLengthText"},
    };
    for (const auto& [box, name, field] : boxes) {
        for (const std::string text : {"abc", "x1.2", "1.2x", "1e999", "nan", ""}) {
            SCOPED_TRACE(std::string(name) + " " + text);
            ASSERT_TRUE(OpenPeakEditor(project, host, form, 10));
            const Peak before = peak();
            form.*box = text;
            EXPECT_EQ(AcceptPeakEditor(project, host, form).message(),
                      std::string(name) + ": '" + text + "' is not a number");
            EXPECT_EQ(form.invalidBox, field);
            EXPECT_FALSE(RedrawPeakEditor(project, host, form).ok());
            EXPECT_TRUE(form.visible);
            EXPECT_TRUE(peak() == before);
        }
    }
    form.tailLengthText = " 12 ";  // blanks around a number are fine
    EXPECT_TRUE(AcceptPeakEditor(project, host, form).ok());
    EXPECT_EQ(std::pair(peak().TailLength, form.invalidBox), std::pair(12.0f, std::string()));
}

TEST_F(PeakFormTest, AcceptRoundsGLRecomputesHeightAndAppliesRelations) {
    ASSERT_EQ(AddPeak(project, QuietHost()), 1);
    project.Constraints[1].Position = {kTrue, 0, kFalse, 0, 0, 2, kFalse, 0, 0};  // 0 + 2 eV
    project.Constraints[0].Position = {kFalse, 0, kTrue, 1, 0, 0, kFalse, 0, 0};
    ASSERT_TRUE(OpenPeakEditor(project, host, form, 10));
    form.positionText = "284";
    form.areaText = "400";
    form.glText = "42.5";  // halves to even
    ASSERT_TRUE(AcceptPeakEditor(project, host, form));
    const Peak& p = peak();
    EXPECT_EQ(std::tuple(form.visible, p.Area, p.PercentGL), std::tuple(false, 400.0f, Int16{42}));
    EXPECT_NEAR(HeightPercentToArea(project, p), 400.0f, 1e-3);
    EXPECT_EQ(project.Peaks[1].Position, 286.0f);
}

// Live editing: a typed box takes effect keeping its text; one without a number waits;
// a linked parameter shows its relation.
TEST_F(PeakFormTest, LiveEditsKeepTypedTextsAndWaitForANumber) {
    ASSERT_EQ(AddPeak(project, QuietHost()), 1);
    project.Constraints[1].Area = {kTrue, 0, kFalse, 0, 2, 0.5f, kFalse, 0, 0};  // 0 x 0.5
    project.Constraints[0].Area = {kFalse, 0, kTrue, 1, 0, 0, kFalse, 0, 0};
    ASSERT_TRUE(OpenPeakEditor(project, host, form, 11));
    EXPECT_EQ(form.relationText, (std::array<std::string, 4>{"", "= peak 0 \xD7 0.5", "", ""}));
    const Peak opened = project.Peaks[1];
    form.positionText = "284.";
    form.areaText = "-";  // not a number yet: nothing happens
    EXPECT_FALSE(LiveApplyPeakEditor(project, host, form));
    EXPECT_TRUE(project.Peaks[1] == opened && form.invalidBox.empty());
    form.areaText = form.shownText["areaText"];
    form.glText = "150";  // corrected as Accept does
    EXPECT_TRUE(LiveApplyPeakEditor(project, host, form));
    EXPECT_EQ(std::tuple(project.Peaks[1].Position, project.Peaks[1].PercentGL, form.positionText,
                         form.glText, project.Peaks[1].Area),
              std::tuple(284.0f, Int16{100}, "284.", "100", 125.0f));  // the relation applied
}

TEST_F(PeakFormTest, ReDrawStaysOpenCancelAndCloseRestoreThePeakAsOpened) {
    const Peak opened = peak();
    for (auto leave : {&CancelPeakEditor, &ClosePeakEditor}) {
        ASSERT_TRUE(OpenPeakEditor(project, host, form, 10));
        form.areaText = "12345";
        ASSERT_TRUE(RedrawPeakEditor(project, host, form));
        EXPECT_TRUE(form.visible);
        EXPECT_EQ(peak().Area, 12345.0f);
        leave(project, host, form);
        EXPECT_FALSE(form.visible);
        EXPECT_TRUE(peak() == opened);
    }
}

// The bars show 1.066 eV as "1.07" and 284.567 eV as "284.57": Accept reads only the
// boxes the user changed, by typing or by a bar, and the others keep their exact values.
TEST_F(PeakFormTest, AcceptReadsOnlyTheBoxesTheUserChanged) {
    peak().FWHM = 1.066f;
    ASSERT_TRUE(OpenPeakEditor(project, host, form, 10));
    ASSERT_EQ(form.fwhmText + " " + form.positionText, "1.07 284.57");
    form.areaText = "300";
    ASSERT_TRUE(AcceptPeakEditor(project, host, form));
    EXPECT_EQ(std::tuple(peak().FWHM, peak().Position, peak().Area),
              std::tuple(1.066f, 284.567f, 300.0f));
    ASSERT_TRUE(OpenPeakEditor(project, host, form, 10));
    ASSERT_TRUE(MoveScrollBar(form, PeakParameter::FWHM, 120));
    ASSERT_TRUE(AcceptPeakEditor(project, host, form));
    EXPECT_EQ(std::pair(peak().FWHM, peak().Position), std::pair(1.2f, 284.567f));
}

// Add Peak opens the editor on the new peak; leaving without Accept (ReDraw accepts
// nothing) takes the peak away again, with the region's chi-square as before.
TEST_F(PeakFormTest, CancelAndCloseRemoveAPeakAddPeakMadeUnlessAccepted) {
    const float chi = project.Regions[1].ChiSquare;
    for (auto leave : {&CancelPeakEditor, &ClosePeakEditor}) {
        ASSERT_TRUE(AddPeakAndEdit(project, host, form));
        const int slot = project.CurrentPeak;
        ASSERT_TRUE(RedrawPeakEditor(project, host, form));
        leave(project, host, form);
        EXPECT_EQ(std::tuple(project.Regions[1].PeakCount, project.Peaks[slot].InUse,
                             project.Regions[1].ChiSquare, form.visible),
                  std::tuple(Int16{1}, kFalse, chi, false));
    }
    ASSERT_TRUE(AddPeakAndEdit(project, host, form));
    ASSERT_TRUE(AcceptPeakEditor(project, host, form));
    ASSERT_TRUE(OpenPeakEditor(project, host, form, 11));
    CancelPeakEditor(project, host, form);
    EXPECT_EQ(project.Regions[1].PeakCount, 2);
}

}  // namespace
}  // namespace molvera
