// Undo and redo over a scripted session: every step returns the exact project bytes.
#include "session/history.h"

#include <memory>
#include <string>
#include <tuple>
#include <vector>

#include <gtest/gtest.h>

#include "fileio/projectfile.h"
#include "session/backgroundform.h"
#include "session/constraintform.h"
#include "session/fitcommands.h"
#include "session/mainwindow.h"
#include "session/peakform.h"
#include "session/regiondialogs.h"
#include "support/files.h"
#include "support/recording_host.h"

namespace molvera {
namespace {

class History : public ::testing::Test {
protected:
    void SetUp() override {
        ASSERT_TRUE(LoadProject(
            *project, host,
            std::string(MOLVERA_SOURCE_DIR) + "/fuzz/corpus/project/c1s_three_peaks.xps"));
        history.Reset(*project);
        states.push_back(ProjectFileBytes(*project));
    }
    // Records after a command; a command that changed only the view updates the last state.
    bool Step() {
        const bool added = history.Record(*project);
        (added ? states.emplace_back() : states.back()) = ProjectFileBytes(*project);
        return added;
    }
    int Slot(int k) const { return project->Current().PeakIndex[static_cast<std::size_t>(k)]; }
    void EditPeak(int k, const std::string& position) {
        PeakForm form;
        ASSERT_TRUE(OpenPeakEditor(*project, host, form, project->CurrentRegion * 10 + k));
        form.positionText = position;
        ASSERT_TRUE(AcceptPeakEditor(*project, host, form));
    }

    std::unique_ptr<Project> project = std::make_unique<Project>();
    test::RecordingHost host;
    UndoHistory history;
    std::vector<std::string> states;
};

TEST_F(History, EveryStepOfAScriptedSessionComesBackByteForByte) {
    EditPeak(0, "284.9");
    EXPECT_TRUE(Step());
    PeakForm peak;
    ASSERT_TRUE(AddPeakAndEdit(*project, host, peak));
    peak.positionText = "287.5";
    ASSERT_TRUE(AcceptPeakEditor(*project, host, peak));
    EXPECT_TRUE(Step());
    BackgroundForm background;
    ShowBackgroundDialog(*project, background);
    background.backgroundType = "Linear";
    ASSERT_TRUE(AcceptBackground(*project, host, background));
    EXPECT_TRUE(Step());
    project->CurrentPeak = static_cast<Int16>(Slot(1));
    ConstraintForm area;  // peak 1's area half that of peak 0
    OpenAreaConstraint(*project, area);
    std::tie(area.useRelation, area.referencePeakText, area.operation, area.argumentText) =
        std::tuple(true, std::to_string(Slot(0)), "*", "0.5");
    ASSERT_TRUE(AcceptConstraint(*project, area));
    EXPECT_TRUE(Step());
    RegionShiftForm shift{"0.5"};
    AcceptRegionShift(*project, host, shift);
    EXPECT_TRUE(Step());
    RegionCaptionForm caption{"C 1s, etched"};
    AcceptRegionCaption(*project, host, caption);
    EXPECT_TRUE(Step());
    project->Options.Method = 2;            // Levenberg-Marquardt
    OptimiseRegionCommand(*project, host);  // a whole fit is one step
    EXPECT_TRUE(Step());
    for (const char c : std::string("Sample A")) {  // typing is one step
        project->Description += c;
        Step();
    }
    SelectRegion(*project, host, 5);  // looking elsewhere is no step
    EXPECT_FALSE(Step());
    ASSERT_TRUE(test::ImportText(*project, host, "ascii", "290 10\n289 30\n288 20\n").status);
    EXPECT_TRUE(Step());
    ASSERT_EQ(states.size(), 10u);
    EXPECT_EQ(history.Steps(), 9u);

    for (std::size_t i = states.size() - 1; i-- > 0;) {
        ASSERT_TRUE(history.Undo(*project, host));
        ASSERT_TRUE(ProjectFileBytes(*project) == states[i]) << "undo to state " << i;
    }
    EXPECT_FALSE(history.Undo(*project, host));
    for (std::size_t i = 1; i < states.size(); ++i) {
        ASSERT_TRUE(history.Redo(*project, host));
        ASSERT_TRUE(ProjectFileBytes(*project) == states[i]) << "redo to state " << i;
    }
    EXPECT_FALSE(history.CanRedo());

    // A change not yet recorded becomes a step of its own on Undo, and drops the redo.
    history.Undo(*project, host);
    SelectRegion(*project, host, 0);
    EditPeak(0, "283");
    const std::string edited = ProjectFileBytes(*project);
    ASSERT_TRUE(history.Undo(*project, host));
    EXPECT_TRUE(ProjectFileBytes(*project) == states[states.size() - 2]);
    ASSERT_TRUE(history.Redo(*project, host));
    EXPECT_TRUE(ProjectFileBytes(*project) == edited && !history.CanRedo());
}

TEST_F(History, KeepsAtMostTheStepsAndTheMemoryAllowed) {
    struct Case {
        std::size_t maxSteps, maxBytes, kept;
    } cases[] = {{3, std::size_t{1} << 30, 3}, {100, 1, 1}};
    for (const Case& c : cases) {
        history = UndoHistory(c.maxSteps, c.maxBytes);
        history.Reset(*project);
        for (int i = 0; i < 5; ++i) {
            EditPeak(0, std::to_string(284 + 0.1 * i));
            history.Record(*project);
        }
        EXPECT_EQ(history.Steps(), c.kept);
        for (std::size_t i = 0; i < c.kept; ++i) EXPECT_TRUE(history.Undo(*project, host));
        EXPECT_FALSE(history.CanUndo());
    }
}

}  // namespace
}  // namespace molvera
