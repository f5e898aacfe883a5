// The main window's rule for the file name a save dialog proposes, the unsaved-changes
// mark and question, and how a file named on the command line is taken.
#include "session/mainwindow.h"

#include <memory>

#include <gtest/gtest.h>

#include "fileio/projectfile.h"
#include "support/files.h"
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

TEST(NamedFile, ProjectByItsHeaderInstrumentFileByItsExtension) {
    const std::filesystem::path dir = test::ScratchDir();
    auto project = std::make_unique<Project>();
    test::WriteBytes(dir / "project.vms", ProjectFileBytes(*project));
    test::WriteBytes(dir / "notes.foo", "VAMAS Surface Chemical Analysis Standard\n");
    const std::string vamas = test::DataFile("real/lg4x/Mutlipak_vms.npl");
    EXPECT_TRUE(ClassifyNamedFile((dir / "project.vms").string()).project);
    EXPECT_TRUE(ClassifyNamedFile("/missing/c1s.xps").project);  // the reader says why
    EXPECT_EQ(ClassifyNamedFile(vamas).format, FindImportFormat("vamas"));
    EXPECT_EQ(ClassifyNamedFile("/data/C1S.CSV").format, FindImportFormat("ascii"));
    const NamedFile unknown = ClassifyNamedFile((dir / "notes.foo").string());
    EXPECT_FALSE(unknown.project || unknown.format);
    EXPECT_EQ(unknown.refusal.Text(),
              "Wrong file format\nnotes.foo: neither a project (xps) nor an instrument file "
              "(des dat asc vms npl txt csv xy)");
    // An import goes into the first empty region; a refused one leaves the current region.
    test::FillSampleRegion(*project, 0);
    test::RecordingHost host;
    ASSERT_TRUE(ImportIntoEmptyRegion(*project, host, *FindImportFormat("vamas"),
                                      test::DataFile("real/lg4x/0-150W.vms"))
                    .status);
    EXPECT_EQ(project->CurrentRegion, 1);
    EXPECT_TRUE(IsSet(project->Regions[1].HasData));
    EXPECT_FALSE(ImportIntoEmptyRegion(*project, host, *FindImportFormat("vamas"),
                                       (dir / "notes.foo").string())
                     .status);
    EXPECT_EQ(project->CurrentRegion, 1);
}

}  // namespace
}  // namespace molvera
