// Every seed and regression input of the fuzz targets, replayed through its reader
// as an ordinary test (and so under the ASan build too).

#include <filesystem>
#include <string>
#include <vector>

#include <gtest/gtest.h>

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

// The files of fuzz/corpus/<target> and fuzz/regressions/<target>, of which there must be
// some unless the target's seeds are only the real files.
std::vector<std::string> FuzzInputs(const std::string& target, bool seeded = true) {
    std::vector<std::string> files;
    for (const char* kind : {"corpus", "regressions"}) {
        const fs::path dir = fs::path(MOLVERA_SOURCE_DIR) / "fuzz" / kind / target;
        if (!fs::is_directory(dir)) continue;
        for (const auto& e : fs::recursive_directory_iterator(dir))
            if (e.is_regular_file()) files.push_back(e.path().string());
    }
    EXPECT_TRUE(!seeded || !files.empty()) << target;
    return files;
}

// A refusal carries the text shown to the user and a detail saying where and why; what
// was loaded goes through what the fuzz targets do after a load: per region with data a
// background, a peak, the envelope and both exports.
void ExerciseLoaded(const Status& st, Project& project, const std::string& file) {
    SCOPED_TRACE(file);
    if (!st.ok()) {
        EXPECT_FALSE(st.message().empty() || st.detail().empty());
        return;
    }
    RecomputeRegionsWithBackground(project, QuietHost());
    for (int r = 0; r < kRegionCount; ++r) {
        if (!IsSet(project.Regions[r].HasData)) continue;
        if (!IsSet(project.Regions[r].HasBackground)) test::GiveSampleBackground(project, r);
        project.CurrentRegion = static_cast<Int16>(r);
        if (project.Regions[r].PeakCount == 0) AddPeak(project, QuietHost());
        ComputeRegionEnvelope(project, QuietHost());
        EXPECT_EQ(SpectrumExportText(project).rfind("B.E.(eV)", 0), 0u);
        EXPECT_NE(PeakParameterExportText(project).find("Position (eV)"), std::string::npos);
    }
}

TEST(FuzzCorpusReplay, ProjectAndRegionParameterFiles) {
    for (const std::string& f : FuzzInputs("project")) {
        Project p;
        test::RecordingHost host;
        ExerciseLoaded(LoadProject(p, host, f), p, f);
    }
    for (const std::string& f : FuzzInputs("regionparams")) {
        Project p;
        test::FillSampleRegion(p, 0, 1001, 700.0f, 0.5f);
        test::RecordingHost host;
        const Status st = LoadRegionParameters(p, host, f);
        ExerciseLoaded(st, p, f);
        if (!st.ok()) ExerciseLoaded(Status::Ok(), p, f);  // a refusal leaves a usable region
    }
}

TEST(FuzzCorpusReplay, OptionFiles) {
    for (const std::string& f : FuzzInputs("optionfile")) {
        FitOptions o;
        const Status st = ReadOptionFile(o, f);
        EXPECT_EQ(st.ok(), fs::file_size(f) >= kOptionFileSize - 2) << f;
        EXPECT_TRUE(st.ok() || !st.detail().empty()) << f;
    }
}

TEST(FuzzCorpusReplay, Imports) {
    for (const ImportFormat& format : ImportFormats()) {
        for (const std::string& f : FuzzInputs(std::string(format.name), format.name != "vamas")) {
            Project p;
            test::RecordingHost host;
            const ImportResult result = ImportFile(p, host, format, f);
            for (const Status& notice : result.notices) EXPECT_FALSE(notice.message().empty()) << f;
            ExerciseLoaded(result.status, p, f);
        }
    }
}

}  // namespace
}  // namespace molvera
