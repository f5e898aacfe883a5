// Every seed and regression input of the fuzz targets, replayed through its reader
// as an ordinary test (and so under the ASan build too).

#include <filesystem>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "fileio/exports.h"
#include "fileio/optionfile.h"
#include "fileio/projectfile.h"
#include "fileio/regionparams.h"
#include "spectral/envelope.h"
#include "spectral/regionedit.h"
#include "support/files.h"
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

// A refusal says what and where; what was loaded (and a region that refused region
// parameters) goes through what the fuzz targets do next: per region with data a
// background, a peak, the envelope and both exports.
TEST(FuzzCorpusReplay, EveryReaderTakesOrRefusesEveryInput) {
    int replayed = 0;
    auto exercise = [&](const Status& st, Project& project, const std::string& file,
                        bool evenRefused = false) {
        SCOPED_TRACE(file);
        ++replayed;
        EXPECT_TRUE(st.ok() || !(st.message().empty() || st.detail().empty()));
        if (!st.ok() && !evenRefused) return;
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
    };
    test::RecordingHost host;
    for (const std::string& f : FuzzInputs("project")) {
        Project p;
        exercise(LoadProject(p, host, f), p, f);
    }
    for (const std::string& f : FuzzInputs("regionparams")) {
        Project p;
        test::FillSampleRegion(p, 0, 1001, 700.0f, 0.5f);
        exercise(LoadRegionParameters(p, host, f), p, f, true);
    }
    for (const ImportFormat& format : ImportFormats()) {
        for (const std::string& f : FuzzInputs(std::string(format.name))) {
            Project p;
            const ImportResult result = ImportFile(p, host, format, f);
            for (const Status& notice : result.notices) EXPECT_FALSE(notice.message().empty()) << f;
            exercise(result.status, p, f);
        }
    }
    for (const std::string& f : FuzzInputs("optionfile")) {
        FitOptions o;
        const Status st = ReadOptionFile(o, f);
        EXPECT_EQ(st.ok(), fs::file_size(f) >= kOptionFileSize - 2) << f;
        ++replayed;
    }
    EXPECT_GT(replayed, 10);  // the corpus is there
}

}  // namespace
}  // namespace molvera
