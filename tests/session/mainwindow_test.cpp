// The main window's rule for the file name a save dialog proposes, and the unsaved-changes
// mark and question.
#include "session/mainwindow.h"

#include <memory>

#include <gtest/gtest.h>

#include "fileio/projectfile.h"
#include "support/recording_host.h"
#include "support/sample_region.h"

namespace molvera {
namespace {

TEST(MainWindowProposeFileName, ReplacesEverythingAfterTheFirstDotOfTheName) {
    EXPECT_EQ(ProposeFileName("/data/c1s.des", "dat"), "/data/c1s.dat");
    EXPECT_EQ(ProposeFileName("sample.fit.rpa", "xps"), "sample.xps");
    EXPECT_EQ(ProposeFileName("/my.folder/c1s", "xps"), "/my.folder/c1s");
    EXPECT_EQ(ProposeFileName("/my.folder/c1s.csv", "par"), "/my.folder/c1s.par");
    EXPECT_EQ(ProposeFileName("trailing.", "opa"), "trailing.opa");
}

TEST(SavedProject, ChangedAfterAnEditUntilTheNextSave) {
    auto project = std::make_unique<Project>();
    test::RecordingHost host;
    ASSERT_TRUE(
        LoadProject(*project, host,
                    std::string(MOLVERA_SOURCE_DIR) + "/fuzz/corpus/project/c1s_three_peaks.xps"));
    SavedProject saved;
    saved.Mark(*project, "/data/c1s.xps");
    EXPECT_EQ(saved.Title(*project), "c1s.xps - Molvera");
    test::FillSampleRegion(*project, 9);
    EXPECT_EQ(saved.Title(*project), "c1s.xps* - Molvera");
    saved.Mark(*project, "");
    EXPECT_EQ(saved.Title(*project), "Untitled - Molvera");
    // A description too long for the file is cut only by a save, not by the check.
    project->Description = std::string(300, 'd');
    EXPECT_TRUE(saved.Changed(*project));
    EXPECT_EQ(project->Description.size(), 300u);
}

TEST(SavedProject, AsksBeforeDroppingChangesAndFollowsTheAnswer) {
    struct Case {
        SaveChangesAnswer answer;
        bool saveSucceeds, mayDrop, saveCalled;
    } cases[] = {
        {SaveChangesAnswer::Save, true, true, true},
        {SaveChangesAnswer::Save, false, false, true},  // the save dialog was cancelled
        {SaveChangesAnswer::Discard, true, true, false},
        {SaveChangesAnswer::Cancel, true, false, false},
    };
    auto project = std::make_unique<Project>();
    SavedProject saved;
    saved.Mark(*project, "/data/c1s.xps");
    for (const Case& c : cases) {
        test::RecordingHost host;
        host.saveAnswer = c.answer;
        bool saveCalled = false;
        const auto save = [&] { return saveCalled = true, c.saveSucceeds; };
        EXPECT_TRUE(saved.MayDrop(*project, host, save));  // unchanged: no question
        EXPECT_TRUE(host.saveQuestions.empty());
        project->Description = "edited";
        EXPECT_EQ(saved.MayDrop(*project, host, save), c.mayDrop);
        EXPECT_EQ(saveCalled, c.saveCalled);
        EXPECT_EQ(host.saveQuestions, std::vector<std::string>{"Save changes to c1s.xps?"});
        project->Description.clear();
    }
}

}  // namespace
}  // namespace molvera
