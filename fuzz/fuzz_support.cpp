#include "fuzz_support.h"

#include <unistd.h>

#include <filesystem>
#include <fstream>

#include "fileio/exports.h"
#include "model/host.h"
#include "model/project.h"
#include "spectral/background.h"
#include "spectral/envelope.h"
#include "spectral/regionedit.h"

namespace molvera::fuzz {

std::string InputFile(const char* target, const std::uint8_t* data, std::size_t size) {
    static const std::string path = [target] {
        const std::filesystem::path dir = std::filesystem::exists("/dev/shm")
                                              ? std::filesystem::path("/dev/shm")
                                              : std::filesystem::temp_directory_path();
        return (dir / ("molvera-fuzz-" + std::string(target) + "-" + std::to_string(getpid())))
            .string();
    }();
    std::ofstream out(path, std::ios::binary | std::ios::trunc);
    out.write(reinterpret_cast<const char*>(data), static_cast<std::streamsize>(size));
    return path;
}

void FillRegion(Project& project, int r, int n, float highBE, float step) {
    Region& region = project.Regions[r];
    ResizeRegionArrays(region, n);
    region.PointCount = static_cast<Int16>(n);
    for (int i = 1; i <= n; ++i) {
        const float be = highBE - step * static_cast<float>(i - 1);
        const float x = (be - (highBE - step * static_cast<float>(n) / 2)) / 1.5f;
        region.BindingEnergy[i] = be;
        region.RawIntensity[i] = 100.0f + 1000.0f / (1.0f + x * x) + (i < n / 2 ? 50.0f : 0.0f);
    }
    region.HasData = kTrue;
    UpdateDataExtents(region);
}

namespace {

// A Shirley background over all of the current region's data.
void GiveBackground(Project& project) {
    Region& region = project.Regions[project.CurrentRegion];
    region.BackgroundType = BackgroundKind::Shirley;
    region.EndPointAverage = 1;
    region.BackgroundLowBE = region.MinBE;
    region.BackgroundHighBE = region.MaxBE;
    region.HasBackground = kTrue;
    RecomputeRegion(project, QuietHost());
}

}  // namespace

Project SampleProject(bool crowded) {
    Project project;
    ClearProject(project, QuietHost());
    if (crowded) {
        for (int r = 1; r <= 5; ++r) {
            FillRegion(project, r, 41, 540.0f, 0.25f);
            project.CurrentRegion = static_cast<Int16>(r);
            GiveBackground(project);
            const int peaks = r == 5 ? 5 : kMaxPeaksPerRegion;
            for (int k = 0; k < peaks; ++k) AddPeak(project, QuietHost());
        }
    }
    FillRegion(project, 0, 1001, 700.0f, 0.5f);
    project.CurrentRegion = 0;
    return project;
}

void ExerciseProject(Project& project) {
    RecomputeRegionsWithBackground(project, QuietHost());
    const Int16 current = project.CurrentRegion;
    for (int r = 0; r < kRegionCount; ++r) {
        if (!IsSet(project.Regions[r].HasData)) continue;
        project.CurrentRegion = static_cast<Int16>(r);
        if (!IsSet(project.Regions[r].HasBackground)) GiveBackground(project);
        if (project.Regions[r].PeakCount == 0) AddPeak(project, QuietHost());
        ComputeRegionEnvelope(project, QuietHost());
        (void)SpectrumExportText(project);
        (void)PeakParameterExportText(project);
    }
    project.CurrentRegion = current;
}

}  // namespace molvera::fuzz
