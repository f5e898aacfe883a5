#include "session/constraintform.h"

#include <tuple>

#include <gtest/gtest.h>

#include "base/messages.h"
#include "model/project.h"

namespace molvera {
namespace {

// Peaks 0..4 in use (4 in region 2); region 0 spans 280..300 eV; peak 1 is current.
class ConstraintFormTest : public ::testing::Test {
protected:
    void SetUp() override {
        ClearProject(project, QuietHost());
        for (int s : {0, 1, 2, 3, 4}) project.Peaks[s].InUse = kTrue;
        std::tie(project.Peaks[4].Region, project.Regions[0].MaxBE, project.Regions[0].MinBE,
                 project.CurrentPeak) = std::tuple(2, 300.0f, 280.0f, 1);
    }
    /// Opens the dialog on `kind` for peak p and links it to `ref` by op/arg, with limits
    /// when `low` is given.
    Status Link(int p, PeakParameter kind, const std::string& ref, const std::string& op = "+",
                const std::string& arg = "1", const char* low = nullptr, const char* high = "") {
        project.CurrentPeak = static_cast<Int16>(p);
        OpenConstraint(project, form, kind);
        form.useRelation = true;
        form.referencePeakText = ref;
        form.operation = op;
        form.argumentText = arg;
        form.useLimits = low != nullptr;
        form.lowLimitText = low ? low : "";
        form.highLimitText = high;
        return AcceptConstraint(project, form);
    }
    Project project;
    ConstraintForm form;
};

TEST_F(ConstraintFormTest, ReferencePeakNumbers) {
    // Halves round to even, another region is fine.
    for (const auto& [ref, stored] : {std::pair{"2.5", 2}, {"3.5", 4}, {"0", 0}}) {
        ASSERT_TRUE(Link(1, PeakParameter::Position, ref).ok()) << ref;
        EXPECT_EQ(project.Constraints[1].Position.RefPeak, stored) << ref;
        EXPECT_FALSE(form.visible);
    }
    // Itself, an unused slot, out of 0..50.
    for (const char* ref : {"1", "7", "51", "-1", "1e9"}) {
        EXPECT_EQ(Link(1, PeakParameter::Area, ref).message(), msg::kWrongReferencePeak) << ref;
        EXPECT_FALSE(IsSet(project.Constraints[1].Area.Linked)) << ref;
        EXPECT_TRUE(form.visible);
    }
    form.useRelation = false;  // out of range is refused even with the relation switched off
    form.referencePeakText = "60";
    EXPECT_EQ(AcceptConstraint(project, form).message(), msg::kWrongReferencePeak);
}

TEST_F(ConstraintFormTest, CircularReferences) {
    ASSERT_TRUE(Link(0, PeakParameter::FWHM, "1").ok());
    EXPECT_EQ(Link(1, PeakParameter::FWHM, "0").message(), msg::kCircularReference);
    ASSERT_TRUE(Link(2, PeakParameter::FWHM, "0").ok());  // 2 -> 0 -> 1
    EXPECT_EQ(Link(1, PeakParameter::FWHM, "2").message(), msg::kCircularReference);
    EXPECT_FALSE(IsSet(project.Constraints[1].FWHM.Linked));
    EXPECT_TRUE(Link(1, PeakParameter::GL, "0").ok());  // another group is independent
    // A loop from a file that does not pass through the peak ends.
    project.Constraints[3].Position = {kTrue, 2, kTrue, 2, 0, 0, kFalse, 0, 0};
    project.Constraints[2].Position = {kTrue, 3, kTrue, 3, 0, 0, kFalse, 0, 0};
    EXPECT_FALSE(IsCircularPosition(project, 1, 3));
    EXPECT_TRUE(Link(1, PeakParameter::Position, "3").ok());
    project.Constraints[2].Area = {kTrue, 300, kFalse, 0, 0, 0, kFalse, 0, 0};
    EXPECT_FALSE(IsCircularArea(project, 1, 2));
}

TEST_F(ConstraintFormTest, ZeroArgumentOnlyRefusedForTimesAndDivideWhenUsed) {
    EXPECT_EQ(Link(1, PeakParameter::Area, "0", "*", "0").message(), msg::kZeroArgument);
    EXPECT_EQ(Link(1, PeakParameter::Area, "0", "/", "abc").message(),
              "Argument: 'abc' is not a number");
    EXPECT_FALSE(IsSet(project.Constraints[0].Area.IsReference));
    EXPECT_TRUE(Link(1, PeakParameter::Area, "0", "+", "0").ok());
    OpenConstraint(project, form, PeakParameter::Area);
    form.useRelation = false;
    form.operation = "/";
    form.argumentText = "0";
    ASSERT_TRUE(AcceptConstraint(project, form).ok());
    EXPECT_EQ(
        std::pair(project.Constraints[1].Area.Operation, project.Constraints[1].Area.Argument),
        std::pair(Int16{3}, 0.0f));
    form.operation = "x";  // unknown text: "+"
    ASSERT_TRUE(AcceptConstraint(project, form).ok());
    EXPECT_EQ(project.Constraints[1].Area.Operation, 0);
}

TEST_F(ConstraintFormTest, UncheckingRecountsTheReference) {
    ASSERT_TRUE(Link(1, PeakParameter::Position, "0").ok());
    ASSERT_TRUE(Link(3, PeakParameter::Position, "0").ok());
    const ParameterConstraint& ref = project.Constraints[0].Position;
    EXPECT_EQ(ref.DependentPeak, 3);
    for (int p : {3, 1}) {
        project.CurrentPeak = static_cast<Int16>(p);
        OpenPositionConstraint(project, form);
        form.useRelation = false;
        ASSERT_TRUE(AcceptConstraint(project, form).ok());
        EXPECT_EQ(IsSet(ref.IsReference), p == 3);  // 1 still refers to 0, then nobody
        EXPECT_EQ(ref.DependentPeak, 1);            // the last one left, then left as it was
    }
}

TEST_F(ConstraintFormTest, LimitMessagesInOrderAndRelationAlreadyStored) {
    const auto limits = [&](PeakParameter kind, const char* low, const char* high) {
        return Link(1, kind, "0", "+", "1", low, high).message();
    };
    EXPECT_EQ(limits(PeakParameter::Position, "301", "299"), msg::kRangeInvalid);
    EXPECT_EQ(limits(PeakParameter::Position, "285", "300.002"), msg::kHighBEOutOfRange);
    EXPECT_EQ(limits(PeakParameter::Position, "279.998", "290"), msg::kLowBEOutOfRange);
    EXPECT_EQ(limits(PeakParameter::Position, "279.9995", "300.0005"), "");
    EXPECT_EQ(limits(PeakParameter::Area, "-1", "5"), msg::kNegativeRange);
    EXPECT_EQ(limits(PeakParameter::FWHM, "2", "2"), "");  // Low = High accepted
    EXPECT_EQ(limits(PeakParameter::GL, "10", "101"), msg::kOutOfRange);
    // The relation is stored before the refusal; the limits keep their old values.
    const auto& c = project.Constraints[1];
    EXPECT_EQ(std::tuple(c.GL.Linked, c.GL.UseLimits, c.FWHM.LowLimit, c.FWHM.HighLimit),
              std::tuple(kTrue, kFalse, 2.0f, 2.0f));
}

TEST_F(ConstraintFormTest, OpeningCorrectsLimitsAndFillsTheForm) {
    auto& pos = project.Constraints[1].Position;
    pos = {kFalse, 4, kFalse, 0, 3, 2.5f, kFalse, 290, 0};
    OpenPositionConstraint(project, form);
    EXPECT_EQ(
        std::tuple(pos.LowLimit, pos.HighLimit, form.lowLimitText, form.highLimitText,
                   form.operation, form.argumentText, form.caption),
        std::tuple(290.0f, 300.0f, " 290", " 300", "/", "2.5", "Constraints for Peak Position"));
    auto& gl = project.Constraints[1].GL;
    gl.HighLimit = 120;
    gl.LowLimit = -3;
    OpenGLConstraint(project, form);
    EXPECT_EQ(std::tuple(gl.LowLimit, gl.HighLimit, form.caption),
              std::tuple(0.0f, 100.0f, "Constraint for Peak %GL"));
}

}  // namespace
}  // namespace molvera
