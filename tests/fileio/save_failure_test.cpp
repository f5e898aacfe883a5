// No lost work: every file the program writes (project, region parameters, options,
// both exports) reports a failed save and leaves the previous file as it was.

#include <sys/resource.h>

#include <csignal>
#include <filesystem>
#include <functional>

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

// Region 0: 60 points, a Shirley background and two peaks; every file it gives is
// well over 100 bytes.
class SaveFailure : public ::testing::Test {
protected:
    void SetUp() override {
        test::FillSampleRegion(project, 0, 60, 295.0f, 0.25f);
        test::GiveSampleBackground(project, 0);
        for (int k = 0; k < 2; ++k) AddPeak(project, QuietHost());
    }
    Project project;
    const std::pair<const char*, std::function<Status(const std::string&)>> writers[5] = {
        {"project", [this](const std::string& f) { return SaveProject(project, f); }},
        {"region parameters",
         [this](const std::string& f) { return SaveRegionParameters(project, f); }},
        {"options", [this](const std::string& f) { return WriteOptionFile(project.Options, f); }},
        {"spectrum export", [this](const std::string& f) { return ExportSpectrum(project, f); }},
        {"peak export", [this](const std::string& f) { return ExportPeakParameters(project, f); }},
    };
    const fs::path dir = test::ScratchDir();
};

TEST_F(SaveFailure, MissingFolderAndDirectoryPathAreReported) {
    for (const auto& [name, write] : writers) {
        SCOPED_TRACE(name);
        EXPECT_EQ(write((dir / "no" / "such" / "file").string()).message(), msg::kErrorWritingFile);
        const fs::path folder = dir / (std::string(name) + ".d");
        fs::create_directory(folder);
        test::WriteBytes(folder / "inside", "kept");
        EXPECT_EQ(write(folder.string()).message(), msg::kErrorWritingFile);
        EXPECT_EQ(ReadBytes(folder / "inside"), "kept");
    }
    EXPECT_FALSE(fs::exists(dir / "no"));
}

TEST_F(SaveFailure, WriteCutShortByTheFileSizeLimitKeepsThePreviousFile) {
    const fs::path target = dir / "target";
    for (const auto& [name, write] : writers) {
        SCOPED_TRACE(name);
        // A successful save replaces a longer previous file whole.
        ASSERT_TRUE(write(target.string()).ok());
        const std::string fresh = ReadBytes(target);
        test::WriteBytes(target, std::string(100000, 'x'));
        ASSERT_TRUE(write(target.string()).ok() && fresh.size() > 100u);
        EXPECT_EQ(ReadBytes(target), fresh);

        // A file size limit makes the write itself fail (even for a privileged user).
        test::WriteBytes(target, "previous contents");
        rlimit old{};
        ASSERT_EQ(getrlimit(RLIMIT_FSIZE, &old), 0);
        const rlimit small{100, old.rlim_max};
        auto previousHandler = std::signal(SIGXFSZ, SIG_IGN);
        ASSERT_EQ(setrlimit(RLIMIT_FSIZE, &small), 0);
        const Status st = write(target.string());
        setrlimit(RLIMIT_FSIZE, &old);
        std::signal(SIGXFSZ, previousHandler);
        EXPECT_TRUE(st.message() == msg::kErrorWritingFile &&
                    ReadBytes(target) == "previous contents");
        EXPECT_EQ(std::distance(fs::directory_iterator(dir), {}), 1) << "temporary file left";
    }
}

}  // namespace
}  // namespace molvera
