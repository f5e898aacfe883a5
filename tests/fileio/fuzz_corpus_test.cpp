// Every seed and regression input of the fuzz targets, replayed through its reader
// as an ordinary test (and so under the ASan build too).

#include <filesystem>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "base/messages.h"
#include "fileio/exports.h"
#include "fileio/formats.h"
#include "fileio/optionfile.h"
#include "fileio/projectfile.h"
#include "fileio/regionparams.h"
#include "spectral/envelope.h"
#include "spectral/regionedit.h"
#include "support/recording_host.h"
#include "support/sample_region.h"

namespace molvera {
namespace {

namespace fs = std::filesystem;

// The files of fuzz/corpus/<target> and fuzz/regressions/<target>.
std::vector<std::string> FuzzInputs(const std::string& target) {
    std::vector<std::string> files;
    for (const char* kind : {"corpus", "regressions"}) {
        const fs::path dir = fs::path(MOLVERA_SOURCE_DIR) / "fuzz" / kind / target;
        if (!fs::is_directory(dir)) continue;
        for (const auto& e : fs::recursive_directory_iterator(dir))
            if (e.is_regular_file()) files.push_back(e.path().string());
    }
    return files;
}

// What the fuzz targets do after a successful load: recompute, then per region with
// data a background, a peak, the envelope and both exports.
void ExerciseLoaded(Project& project) {
    RecomputeRegionsWithBackground(project, QuietHost());
    for (int r = 0; r < kRegionCount; ++r) {
        if (!IsSet(project.Regions[r].HasData)) continue;
        if (!IsSet(project.Regions[r].HasBackground)) test::GiveSampleBackground(project, r);
        project.CurrentRegion = static_cast<Int16>(r);
        if (project.Regions[r].PeakCount == 0) AddPeak(project, QuietHost());
        ComputeRegionEnvelope(project, QuietHost());
        EXPECT_EQ(SpectrumExportText(project).rfind("B.E.(eV)", 0), 0u);
        EXPECT_EQ(PeakParameterExportText(project).find("Position (eV)") != std::string::npos,
                  true);
    }
}

// A refusal carries the text shown to the user and a detail saying where and why.
void ExpectFailureNamed(const Status& st, const std::string& file) {
    if (st.ok()) return;
    EXPECT_FALSE(st.message().empty()) << file;
    EXPECT_FALSE(st.detail().empty()) << file;
}

TEST(FuzzCorpusReplay, ProjectFiles) {
    const auto files = FuzzInputs("project");
    ASSERT_FALSE(files.empty());
    for (const std::string& f : files) {
        Project p;
        test::RecordingHost host;
        const Status st = LoadProject(p, host, f);
        ExpectFailureNamed(st, f);
        if (st.ok()) ExerciseLoaded(p);
    }
}

TEST(FuzzCorpusReplay, RegionParameterFiles) {
    const auto files = FuzzInputs("regionparams");
    ASSERT_FALSE(files.empty());
    for (const std::string& f : files) {
        Project p;
        test::FillSampleRegion(p, 0, 1001, 700.0f, 0.5f);
        test::RecordingHost host;
        ExpectFailureNamed(LoadRegionParameters(p, host, f), f);
        ExerciseLoaded(p);
    }
}

TEST(FuzzCorpusReplay, OptionFiles) {
    const auto files = FuzzInputs("optionfile");
    ASSERT_FALSE(files.empty());
    for (const std::string& f : files) {
        FitOptions o;
        const Status st = ReadOptionFile(o, f);
        ExpectFailureNamed(st, f);
        if (st.ok()) {
            EXPECT_GE(fs::file_size(f), kOptionFileSize - 2) << f;
        }
    }
}

TEST(FuzzCorpusReplay, Imports) {
    int replayed = 0;
    for (const ImportFormat& format : ImportFormats()) {
        for (const std::string& f : FuzzInputs(std::string(format.name))) {
            Project p;
            test::RecordingHost host;
            const ImportResult result = ImportFile(p, host, format, f);
            ExpectFailureNamed(result.status, f);
            for (const Status& notice : result.notices) EXPECT_FALSE(notice.message().empty()) << f;
            if (result.status.ok()) ExerciseLoaded(p);
            ++replayed;
        }
    }
    EXPECT_GT(replayed, 0);
}

}  // namespace
}  // namespace molvera
