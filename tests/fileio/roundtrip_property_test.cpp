// Round trips of random valid projects, region parameter files and option files:
// what is saved loads back field for field, and saving again gives the same bytes.

#include <filesystem>
#include <random>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "fileio/optionfile.h"
#include "fileio/projectfile.h"
#include "fileio/regionparams.h"
#include "model/project.h"
#include "spectral/background.h"
#include "spectral/envelope.h"
#include "spectral/regionedit.h"
#include "support/files.h"
#include "support/recording_host.h"

namespace molvera {
namespace {

constexpr int kIterations = 150;

using test::ReadBytes;

class Random {
public:
    explicit Random(unsigned seed) : rng_(seed) {}
    int Int(int lo, int hi) { return std::uniform_int_distribution<int>(lo, hi)(rng_); }
    float Real(double lo, double hi) {
        return static_cast<float>(std::uniform_real_distribution<double>(lo, hi)(rng_));
    }
    bool Coin(double p = 0.5) { return std::bernoulli_distribution(p)(rng_); }
    Flag RandomFlag() { return Coin() ? kTrue : kFalse; }
    // Latin-1 text of printable characters, accented ones included.
    std::string Text(int maxLength) {
        std::string s(static_cast<std::size_t>(Int(0, maxLength)), ' ');
        for (char& c : s) {
            const int v = Int(32, 255 - 33);
            c = static_cast<char>(v < 127 ? v : v + 33);  // skip 127..159
        }
        return s;
    }

private:
    std::mt19937 rng_;
};

// A measured spectrum, falling binding energies, in region r.
void RandomData(Random& rnd, Region& region) {
    const int n = rnd.Int(2, 300);
    const float high = rnd.Real(50, 1400);
    const float step = rnd.Real(0.02, 1.0);
    ResizeRegionArrays(region, n);
    region.PointCount = static_cast<Int16>(n);
    for (int i = 1; i <= n; ++i) {
        region.BindingEnergy[i] = high - step * static_cast<float>(i - 1);
        region.RawIntensity[i] = rnd.Real(0, 1e5);
    }
    region.HasData = kTrue;
    UpdateDataExtents(region);
    region.ImportRegionNumber = static_cast<Int16>(rnd.Int(0, 20));
    region.Caption = Text20::From(rnd.Text(24));
    region.EndPointAverage = static_cast<Int16>(rnd.Int(1, 5));
    region.Shift = rnd.Coin() ? 0.0f : rnd.Real(-2, 2);
}

void RandomPeakValues(Random& rnd, Peak& p, const Region& region) {
    p.Label = Text20::From(rnd.Text(20));
    p.PeakType = static_cast<Subshell>(rnd.Int(0, 3));
    p.Splitting = rnd.Real(0, 10);
    p.Position = rnd.Real(region.BackgroundLowBE, region.BackgroundHighBE);
    p.HeightPercent = rnd.Real(1, 100);
    p.FWHM = rnd.Real(0.3, 4);
    p.PercentGL = static_cast<Int16>(rnd.Int(0, 100));
    p.FixPosition = rnd.RandomFlag();
    p.FixFWHM = rnd.RandomFlag();
    p.FixArea = rnd.RandomFlag();
    p.FixGL = rnd.RandomFlag();
    p.TailScale = rnd.Coin() ? 0.0f : rnd.Real(0, 1);
    p.TailLength = rnd.Real(1, 5);
}

// Background over a random part of the data, up to ten peaks, sometimes one deleted.
void RandomFit(Random& rnd, Project& project, int r) {
    Region& region = project.Regions[r];
    project.CurrentRegion = static_cast<Int16>(r);
    region.BackgroundType = static_cast<BackgroundKind>(rnd.Int(0, 2));
    region.BackgroundParameter = rnd.Real(0, 3000);
    const float a = rnd.Real(region.MinBE, region.MaxBE);
    const float b = rnd.Real(region.MinBE, region.MaxBE);
    region.BackgroundLowBE = std::min(a, b);
    region.BackgroundHighBE = std::max(a, b);
    region.HasBackground = kTrue;
    RecomputeRegion(project, QuietHost());
    const int peaks = rnd.Int(0, kMaxPeaksPerRegion);
    for (int k = 0; k < peaks; ++k) {
        const int s = AddPeak(project, QuietHost());
        if (s < 0) break;
        RandomPeakValues(rnd, project.Peaks[s], region);
    }
    if (region.PeakCount > 1 && rnd.Coin(0.3)) {
        project.CurrentPeak = region.PeakIndex[rnd.Int(0, region.PeakCount - 1)];
        DeletePeak(project, QuietHost());
    }
    RecomputeRegion(project, QuietHost());  // areas follow the heights
}

void RandomConstraints(Random& rnd, Project& project) {
    std::vector<int> used;
    for (int s = 0; s < kPeakSlots; ++s)
        if (IsSet(project.Peaks[s].InUse)) used.push_back(s);
    for (int s : used) {
        for (PeakParameter g : kPeakParameters) {
            ParameterConstraint& c = project.Constraints[s][g];
            if (rnd.Coin(0.3)) {
                c.Linked = kTrue;
                c.RefPeak = static_cast<Int16>(
                    used[static_cast<std::size_t>(rnd.Int(0, static_cast<int>(used.size()) - 1))]);
                c.Operation = static_cast<Int16>(rnd.Int(0, 3));
                c.Argument = rnd.Real(0.1, 5);
            }
            c.IsReference = rnd.Coin(0.2) ? kTrue : kFalse;
            c.DependentPeak = static_cast<Int16>(rnd.Int(0, kPeakSlots - 1));
            c.UseLimits = rnd.RandomFlag();
            c.LowLimit = rnd.Real(-100, 100);
            c.HighLimit = c.LowLimit + rnd.Real(0, 100);
        }
    }
}

Project RandomProject(Random& rnd) {
    Project p;
    ClearProject(p, QuietHost());
    std::vector<int> withData;
    for (int r = 0; r < kRegionCount; ++r) {
        if (!rnd.Coin(0.6)) {
            p.Regions[r].EndPointAverage = 1;  // as every slot is after a load
            continue;
        }
        RandomData(rnd, p.Regions[r]);
        withData.push_back(r);
        if (rnd.Coin(0.8)) RandomFit(rnd, p, r);
    }
    RandomConstraints(rnd, p);
    p.CurrentRegion = withData.empty() ? 0
                                       : static_cast<Int16>(withData[static_cast<std::size_t>(
                                             rnd.Int(0, static_cast<int>(withData.size()) - 1))]);
    p.CurrentPeak = static_cast<Int16>(rnd.Int(0, kPeakSlots - 1));
    if (IsSet(p.Peaks[p.CurrentPeak].InUse)) p.EditPeak = p.Peaks[p.CurrentPeak];
    p.TotalPeakCount = static_cast<Int16>(rnd.Int(0, kPeakSlots));
    p.AreaScale = rnd.Real(0, 10);
    p.Description = rnd.Text(kDescriptionLength);
    RecomputeAllRegions(p, QuietHost());  // as a load will
    return p;
}

void ExpectSameSavedFields(const Project& a, const Project& b, int iteration) {
    for (int r = 0; r < kRegionCount; ++r)
        EXPECT_TRUE(a.Regions[r] == b.Regions[r]) << "iteration " << iteration << " region " << r;
    for (int s = 0; s < kPeakSlots; ++s) {
        // A free slot is stored as a hole: what a deleted peak left there is not kept.
        EXPECT_EQ(IsSet(a.Peaks[s].InUse), IsSet(b.Peaks[s].InUse))
            << "iteration " << iteration << " peak " << s;
        if (!IsSet(a.Peaks[s].InUse)) continue;
        EXPECT_TRUE(a.Peaks[s] == b.Peaks[s]) << "iteration " << iteration << " peak " << s;
        EXPECT_TRUE(a.Constraints[s] == b.Constraints[s])
            << "iteration " << iteration << " constraint " << s;
    }
    EXPECT_TRUE(a.EditPeak == b.EditPeak) << "iteration " << iteration;
    EXPECT_EQ(a.CurrentRegion, b.CurrentRegion) << "iteration " << iteration;
    EXPECT_EQ(a.CurrentPeak, b.CurrentPeak) << "iteration " << iteration;
    EXPECT_EQ(a.TotalPeakCount, b.TotalPeakCount) << "iteration " << iteration;
    EXPECT_EQ(a.TotalChiSquare, b.TotalChiSquare) << "iteration " << iteration;
    EXPECT_EQ(a.AreaScale, b.AreaScale) << "iteration " << iteration;
    EXPECT_EQ(a.Description, b.Description) << "iteration " << iteration;
}

TEST(RoundTripProperty, ProjectFileGivesBackTheProjectAndTheSameBytes) {
    const auto dir = test::ScratchDir();
    const std::string first = (dir / "a.xps").string();
    const std::string second = (dir / "b.xps").string();
    Random rnd(20261123);
    int peaksSeen = 0;
    for (int it = 0; it < kIterations; ++it) {
        Project p = RandomProject(rnd);
        for (const Peak& peak : p.Peaks) peaksSeen += IsSet(peak.InUse);
        ASSERT_TRUE(SaveProject(p, first).ok());
        Project q;
        test::RecordingHost host;
        ASSERT_TRUE(LoadProject(q, host, first).ok()) << "iteration " << it;
        ExpectSameSavedFields(p, q, it);
        ASSERT_TRUE(SaveProject(q, second).ok());
        ASSERT_EQ(ReadBytes(first), ReadBytes(second)) << "iteration " << it;
        if (HasFailure()) break;
    }
    EXPECT_GT(peaksSeen, kIterations * 5);  // the generator does produce busy projects
}

TEST(RoundTripProperty, RegionParametersLoadIntoAnEqualRegion) {
    const auto dir = test::ScratchDir();
    const std::string first = (dir / "a.rpa").string();
    const std::string second = (dir / "b.rpa").string();
    Random rnd(4711);
    int checked = 0;
    for (int it = 0; it < kIterations; ++it) {
        Project p = RandomProject(rnd);
        const int r = p.CurrentRegion;
        Region& region = p.Regions[r];
        if (!IsSet(region.HasBackground)) continue;
        // Not stored in the file: a region without shift, caption or ties compares whole.
        region.Shift = 0;
        region.Caption = Text20();
        for (int k = 0; k < region.PeakCount; ++k) {
            for (PeakParameter g : kPeakParameters) {
                p.Constraints[region.PeakIndex[k]][g].Linked = kFalse;
                p.Constraints[region.PeakIndex[k]][g].IsReference = kFalse;
            }
        }
        RecomputeRegion(p, QuietHost());
        ASSERT_TRUE(SaveRegionParameters(p, first).ok());

        Project q = p;
        test::RecordingHost host;
        ASSERT_TRUE(LoadRegionParameters(q, host, first).ok()) << "iteration " << it;
        const Region& loaded = q.Regions[r];
        Region expected = region;
        expected.PeakIndex = loaded.PeakIndex;  // lowest free slots, not the saved ones
        EXPECT_TRUE(loaded == expected) << "iteration " << it;
        for (int k = 0; k < region.PeakCount; ++k) {
            EXPECT_TRUE(q.Peaks[loaded.PeakIndex[k]] == p.Peaks[region.PeakIndex[k]])
                << "iteration " << it;
            EXPECT_TRUE(q.Constraints[loaded.PeakIndex[k]] == p.Constraints[region.PeakIndex[k]])
                << "iteration " << it;
        }
        ASSERT_TRUE(SaveRegionParameters(q, second).ok());
        EXPECT_EQ(ReadBytes(first), ReadBytes(second)) << "iteration " << it;
        ++checked;
        if (HasFailure()) break;
    }
    EXPECT_GT(checked, kIterations / 3);
}

TEST(RoundTripProperty, OptionFileGivesBackTheOptionsAndTheSameBytes) {
    const auto dir = test::ScratchDir();
    const std::string first = (dir / "a.opa").string();
    const std::string second = (dir / "b.opa").string();
    Random rnd(99);
    for (int it = 0; it < kIterations; ++it) {
        FitOptions o;
        std::vector<OptionField> fields = OptionFileFields(o);
        for (OptionField& f : fields) {
            if (auto* p = std::get_if<float*>(&f.value))
                **p = rnd.Real(-1e6, 1e6);
            else
                *std::get<std::int16_t*>(f.value) =
                    static_cast<std::int16_t>(rnd.Int(-32768, 32767));
        }
        ASSERT_TRUE(WriteOptionFile(o, first).ok());
        EXPECT_EQ(std::filesystem::file_size(first), kOptionFileSize);
        FitOptions back;
        ASSERT_TRUE(ReadOptionFile(back, first).ok());
        EXPECT_TRUE(back == o) << "iteration " << it;
        ASSERT_TRUE(WriteOptionFile(back, second).ok());
        EXPECT_EQ(ReadBytes(first), ReadBytes(second)) << "iteration " << it;
    }
}

}  // namespace
}  // namespace molvera
