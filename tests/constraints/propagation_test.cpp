#include "constraints/propagation.h"

#include <tuple>

#include <gtest/gtest.h>

#include "model/project.h"

namespace molvera {
namespace {

// Peaks 0..5 in use at 280 + slot eV.
class PropagationTest : public ::testing::Test {
protected:
    void SetUp() override {
        ClearProject(project, QuietHost());
        for (int s = 0; s < 6; ++s) {
            project.Peaks[s].InUse = kTrue;
            project.Peaks[s].Position = 280.0f + s;
        }
    }
    /// Peak d follows peak r in group g by operation op and argument arg.
    void Link(PeakParameter g, int d, int r, int op, float arg) {
        project.Constraints[d][g] = {
            kTrue, static_cast<Int16>(r), kFalse, 0, static_cast<Int16>(op), arg, kFalse, 0, 0};
        project.Constraints[r][g].IsReference = kTrue;
        project.Constraints[r][g].DependentPeak = static_cast<Int16>(d);
    }
    Project project;
};

// Each operation, and what is not stored: an unknown operation, a division by zero (from
// a file) and a %GL beyond Int16. %GL rounds halves to even and is not limited to 100.
TEST_F(PropagationTest, EachOperationAndWhatIsNotStored) {
    using enum PeakParameter;
    struct Case {
        PeakParameter g;
        int op;
        float arg, reference, expected;  ///< the dependent's value, 7 before
    };
    const Case cases[] = {
        {Position, 0, 2.5f, 284, 286.5f},
        {Area, 1, 250, 1000, 750},
        {Area, 2, 0.5f, 1000, 500},
        {Area, 3, 8, 1000, 125},
        {Area, 7, 8, 1000, 7},
        {GL, 2, 1.5f, 25, 38},
        {GL, 2, 1.5f, 35, 52},
        {GL, 2, 1.5f, 90, 135},
        {GL, 2, 1000, 100, 7},
        {FWHM, 3, 0, 1.2f, 7},
        {GL, 3, 0, 30, 7},
        {FWHM, 3, 0, 0, 7},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(::testing::Message() << static_cast<int>(c.g) << " op " << c.op << " " << c.arg
                                          << " on " << c.reference);
        SetUp();
        Link(c.g, 1, 0, c.op, c.arg);
        Peak& r = project.Peaks[0];
        Peak& d = project.Peaks[1];
        std::tie(r.Position, r.Area, r.FWHM, r.PercentGL) =
            std::tuple(c.reference, c.reference, c.reference, static_cast<Int16>(c.reference));
        std::tie(d.Position, d.Area, d.FWHM, d.PercentGL) = std::tuple(7.0f, 7.0f, 7.0f, Int16{7});
        Propagate(project, c.g, 0);
        const float values[] = {d.Position, d.Area, d.FWHM, static_cast<float>(d.PercentGL)};
        EXPECT_EQ(values[static_cast<int>(c.g)], c.expected);
        EXPECT_EQ(project.Peaks[2].Position, 282.0f);  // an unrelated peak is left alone
    }
}

TEST_F(PropagationTest, ChainsFollowTheirReferencesOnly) {
    // 2 refers to 4, 4 refers to 0: the chain reaches 2 with 4's new value.
    Link(PeakParameter::Position, 4, 0, 0, 1.0f);
    Link(PeakParameter::Position, 2, 4, 0, 1.0f);
    // 3 (another region) refers to 0; 5 refers to 1, which has nothing to do with 0.
    project.Peaks[3].Region = 4;
    Link(PeakParameter::Position, 3, 0, 1, 2.0f);
    Link(PeakParameter::Position, 5, 1, 0, 1.0f);
    project.Peaks[0].Position = 100.0f;
    PropagatePosition(project, 0);
    EXPECT_EQ(project.Peaks[4].Position, 101.0f);
    EXPECT_EQ(project.Peaks[2].Position, 102.0f);
    EXPECT_EQ(project.Peaks[3].Position, 98.0f);
    EXPECT_EQ(project.Peaks[5].Position, 285.0f);
}

TEST_F(PropagationTest, UnusedSlotSkippedByChainButSetByApplyAll) {
    Link(PeakParameter::Position, 7, 0, 0, 5.0f);  // slot 7 is not in use
    project.Peaks[7].Position = 1.0f;
    project.Peaks[0].Position = 290.0f;
    PropagatePosition(project, 0);
    EXPECT_EQ(project.Peaks[7].Position, 1.0f);
    ApplyAllRelations(project);
    EXPECT_EQ(project.Peaks[7].Position, 295.0f);
}

TEST_F(PropagationTest, CycleFromFileEndsAndSetsStartOnce) {
    // 0 -> 1 -> 0: propagation from 0 sets 1 from 0, then 0 from the new 1.
    Link(PeakParameter::Position, 1, 0, 0, 1.0f);
    Link(PeakParameter::Position, 0, 1, 0, 1.0f);
    project.Peaks[0].Position = 10.0f;
    PropagatePosition(project, 0);
    EXPECT_EQ(project.Peaks[1].Position, 11.0f);
    EXPECT_EQ(project.Peaks[0].Position, 12.0f);
}

TEST_F(PropagationTest, DamagedReferenceNumbersAreHarmless) {
    project.Constraints[1][PeakParameter::Position] = {kTrue, 300, 0, 0, 0, 0, 0, 0, 0};
    project.Constraints[2][PeakParameter::Position] = {kTrue, -5, 0, 0, 0, 0, 0, 0, 0};
    const Project before = project;
    PropagatePosition(project, 0);
    PropagatePosition(project, 60);
    PropagatePosition(project, -1);
    ApplyAllRelations(project);
    EXPECT_EQ(project.Peaks, before.Peaks);
}

TEST_F(PropagationTest, ApplyAllIsOnePassUsingIsReference) {
    // 1 refers to 3, 3 refers to 0. Slot 1 is visited (k = 3) after 3 is set (k = 0),
    // so both follow in one pass; a reference without IsReference is ignored.
    Link(PeakParameter::FWHM, 3, 0, 2, 2.0f);
    Link(PeakParameter::FWHM, 1, 3, 2, 2.0f);
    project.Peaks[0].FWHM = 1.0f;
    ApplyAllRelations(project);
    EXPECT_EQ(project.Peaks[3].FWHM, 2.0f);
    EXPECT_EQ(project.Peaks[1].FWHM, 4.0f);
    // Now 3 refers to 4 (higher slot), 2 refers to 3: 2 keeps the old value of 3.
    Link(PeakParameter::Position, 3, 4, 0, 1.0f);
    Link(PeakParameter::Position, 2, 3, 0, 1.0f);
    project.Peaks[4].Position = 50.0f;
    ApplyAllRelations(project);
    EXPECT_EQ(project.Peaks[3].Position, 51.0f);
    EXPECT_EQ(project.Peaks[2].Position, 284.0f);  // old 283 + 1
    project.Constraints[4][PeakParameter::Position].IsReference = kFalse;
    project.Peaks[4].Position = 70.0f;
    ApplyAllRelations(project);
    EXPECT_EQ(project.Peaks[3].Position, 51.0f);
}

}  // namespace
}  // namespace molvera
