// Autosave and recovery: which copies are offered, what Yes and No do, when the copy goes.
#include "session/recovery.h"

#include <cstdlib>
#include <memory>

#include <gtest/gtest.h>

#include "fileio/projectfile.h"
#include "support/files.h"
#include "support/sample_region.h"

namespace molvera {
namespace {

namespace fs = std::filesystem;
// Above the largest pid Linux hands out (2^22): a program that is gone.
constexpr long kGonePid = 99999999;

TEST(Recovery, FolderAndIntervalFromTheEnvironment) {
    setenv("HOME", "/home/ann", 1);
    setenv("XDG_STATE_HOME", "/var/state", 1);
    EXPECT_EQ(RecoveryFolder(), "/var/state/molvera");
    setenv("XDG_STATE_HOME", "state", 1);  // relative: ignored
    EXPECT_EQ(RecoveryFolder(), "/home/ann/.local/state/molvera");
    unsetenv("XDG_STATE_HOME");
    EXPECT_EQ(RecoveryFolder(), "/home/ann/.local/state/molvera");
    for (const auto& [text, seconds] : {std::pair{"2", 2}, {"0", 60}, {"2x", 60}, {"", 60}}) {
        setenv("MOLVERA_AUTOSAVE_SECONDS", text, 1);
        EXPECT_EQ(AutosaveSeconds(), seconds) << text;
    }
    unsetenv("MOLVERA_AUTOSAVE_SECONDS");
}

TEST(Recovery, CopyOnlyWhileChangedAndOfferedOnlyWhenItsProgramIsGone) {
    const fs::path dir = test::ScratchDir() / "state";
    auto project = std::make_unique<Project>();
    SavedProject saved;
    saved.Mark(*project, "/data/c1s.xps");
    const RecoveryFile own(dir.string(), getpid()), gone(dir.string(), kGonePid);
    ASSERT_TRUE(gone.Update(*project, saved));
    EXPECT_FALSE(fs::exists(dir));  // unchanged: nothing written
    test::FillSampleRegion(*project, 2);
    ASSERT_TRUE(gone.Update(*project, saved));
    ASSERT_TRUE(own.Update(*project, saved));
    EXPECT_EQ(test::ReadBytes(dir / "recovery-99999999.xps"), ProjectFileBytes(*project));
    // Only the copy of the program that is gone is offered, by its own program only.
    ASSERT_EQ(own.Orphans().size(), 1u);
    EXPECT_EQ(own.Orphans()[0].originalPath, "/data/c1s.xps");
    EXPECT_EQ(own.Orphans()[0].writtenAt.size(), std::string("2026-11-24 05:10").size());
    EXPECT_TRUE(gone.Orphans().empty());
    own.Remove();  // a clean exit
    EXPECT_FALSE(fs::exists(dir / ("recovery-" + std::to_string(getpid()) + ".xps")));
    saved.Mark(*project, "/data/c1s.xps");  // saved: no longer unsaved, no copy
    ASSERT_TRUE(gone.Update(*project, saved));
    EXPECT_TRUE(fs::is_empty(dir));
}

TEST(Recovery, YesRestoresUnderTheOldNameAndNoDeletes) {
    const fs::path dir = test::ScratchDir();
    auto work = std::make_unique<Project>();
    test::RecordingHost quiet;
    ASSERT_TRUE(
        LoadProject(*work, quiet,
                    std::string(MOLVERA_SOURCE_DIR) + "/fuzz/corpus/project/c1s_three_peaks.xps"));
    SavedProject before;
    before.Mark(*work, "/data/c1s.xps");
    work->Description = "etched";
    const std::string bytes = ProjectFileBytes(*work);
    for (const bool yes : {false, true}) {
        ASSERT_TRUE(RecoveryFile(dir.string(), kGonePid).Update(*work, before));
        auto project = std::make_unique<Project>();
        SavedProject saved;
        saved.Mark(*project, "");
        test::RecordingHost host;
        host.answers = {yes};
        const RecoveryFile own(dir.string(), getpid());
        const std::string question = RestoreQuestion(own.Orphans().at(0));
        EXPECT_TRUE(question.starts_with(
            "Molvera did not close normally. Restore the unsaved work on c1s.xps from 20"));
        ASSERT_TRUE(own.OfferRestore(*project, host, saved));
        EXPECT_TRUE(own.Orphans().empty());
        EXPECT_EQ(ProjectFileBytes(*project) == bytes, yes);
        EXPECT_EQ(saved.Title(*project), yes ? "c1s.xps* - Molvera" : "Untitled - Molvera");
        // Restored work is at once in this program's own copy.
        EXPECT_EQ(fs::exists(dir / ("recovery-" + std::to_string(getpid()) + ".xps")), yes);
    }
}

}  // namespace
}  // namespace molvera
