// No lost work: every file the program writes (project, region parameters, options,
// both exports) reports a failed save and leaves the previous file as it was.

#include <sys/resource.h>

#include <csignal>
#include <filesystem>
#include <functional>
#include <string>

#include <gtest/gtest.h>

#include "base/messages.h"
#include "fileio/exports.h"
#include "fileio/optionfile.h"
#include "fileio/projectfile.h"
#include "fileio/regionparams.h"
#include "spectral/regionedit.h"
#include "support/files.h"
#include "support/sample_region.h"

namespace molvera {
namespace {

namespace fs = std::filesystem;
using test::ReadBytes;

struct NamedWriter {
    const char* name;
    std::function<Status(const std::string&)> write;
};

// Region 0: 60 points, a Shirley background and two peaks; every file it gives is
// well over 100 bytes.
class SaveFailure : public ::testing::Test {
protected:
    void SetUp() override {
        test::FillSampleRegion(project, 0, 60, 295.0f, 0.25f);
        test::GiveSampleBackground(project, 0);
        AddPeak(project, QuietHost());
        AddPeak(project, QuietHost());
    }
    Project project;
    std::vector<NamedWriter> writers{
        {"project", [this](const std::string& f) { return SaveProject(project, f); }},
        {"region parameters",
         [this](const std::string& f) { return SaveRegionParameters(project, f); }},
        {"options", [this](const std::string& f) { return WriteOptionFile(project.Options, f); }},
        {"spectrum export", [this](const std::string& f) { return ExportSpectrum(project, f); }},
        {"peak export", [this](const std::string& f) { return ExportPeakParameters(project, f); }},
    };
};

TEST_F(SaveFailure, MissingFolderAndDirectoryPathAreReported) {
    const fs::path dir = test::ScratchDir();
    for (const NamedWriter& w : writers) {
        EXPECT_EQ(w.write((dir / "no" / "such" / "file").string()).message(),
                  msg::kErrorWritingFile)
            << w.name;
        const fs::path folder = dir / (std::string(w.name) + ".d");
        fs::create_directory(folder);
        test::WriteBytes(folder / "inside", "kept");
        EXPECT_EQ(w.write(folder.string()).message(), msg::kErrorWritingFile) << w.name;
        EXPECT_EQ(ReadBytes(folder / "inside"), "kept") << w.name;
    }
    EXPECT_FALSE(fs::exists(dir / "no"));
}

TEST_F(SaveFailure, WriteCutShortByTheFileSizeLimitKeepsThePreviousFile) {
    const fs::path dir = test::ScratchDir();
    for (const NamedWriter& w : writers) {
        const fs::path target = dir / "target";
        // The complete output is larger than the limit below.
        ASSERT_TRUE(w.write(target.string()).ok()) << w.name;
        ASSERT_GT(fs::file_size(target), 100u) << w.name;
        test::WriteBytes(target, "previous contents");

        // A file size limit makes the write itself fail (even for a privileged user).
        rlimit old{};
        ASSERT_EQ(getrlimit(RLIMIT_FSIZE, &old), 0);
        rlimit small = old;
        small.rlim_cur = 100;
        auto previousHandler = std::signal(SIGXFSZ, SIG_IGN);
        ASSERT_EQ(setrlimit(RLIMIT_FSIZE, &small), 0);
        const Status st = w.write(target.string());
        setrlimit(RLIMIT_FSIZE, &old);
        std::signal(SIGXFSZ, previousHandler);

        EXPECT_EQ(st.message(), msg::kErrorWritingFile) << w.name;
        EXPECT_EQ(ReadBytes(target), "previous contents") << w.name;
        EXPECT_EQ(std::distance(fs::directory_iterator(dir), {}), 1)
            << w.name << ": temporary file left";
    }
}

TEST_F(SaveFailure, SuccessfulSaveReplacesThePreviousFileWhole) {
    const fs::path dir = test::ScratchDir();
    for (const NamedWriter& w : writers) {
        const fs::path target = dir / "target";
        ASSERT_TRUE(w.write(target.string()).ok()) << w.name;
        const std::string fresh = ReadBytes(target);
        test::WriteBytes(target, std::string(100000, 'x'));
        ASSERT_TRUE(w.write(target.string()).ok()) << w.name;
        EXPECT_EQ(ReadBytes(target), fresh) << w.name << ": no tail of the longer old file";
    }
}

}  // namespace
}  // namespace molvera
