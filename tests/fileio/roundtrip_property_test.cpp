// Round trips of random valid projects: what is saved loads back field for field, and
// saving again gives the same bytes.

#include <random>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "base/numtext.h"
#include "fileio/projectfile.h"
#include "model/project.h"
#include "spectral/background.h"
#include "spectral/envelope.h"
#include "spectral/regionedit.h"
#include "support/recording_host.h"

namespace molvera {
namespace {

constexpr int kIterations = 150;

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

// A measured spectrum with falling binding energies.
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

// A background over a random part of the data, up to ten peaks, sometimes one deleted.
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
        Peak& p = project.Peaks[s];
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
    if (region.PeakCount > 1 && rnd.Coin(0.3)) {
        project.CurrentPeak = region.PeakIndex[rnd.Int(0, region.PeakCount - 1)];
        DeletePeak(project, QuietHost());
    }
    RecomputeRegion(project, QuietHost());  // areas follow the heights
}

Project RandomProject(Random& rnd) {
    Project p;
    ClearProject(p, QuietHost());
    std::vector<int> withData;
    for (int r = 0; r < kRegionCount; ++r) {
        if (!rnd.Coin(0.6)) continue;
        RandomData(rnd, p.Regions[r]);
        withData.push_back(r);
        if (rnd.Coin(0.8)) RandomFit(rnd, p, r);
    }
    std::vector<int> used;
    for (int s = 0; s < kPeakSlots; ++s)
        if (IsSet(p.Peaks[s].InUse)) used.push_back(s);
    auto any = [&](const std::vector<int>& v) {
        return v[static_cast<std::size_t>(rnd.Int(0, static_cast<int>(v.size()) - 1))];
    };
    for (int s : used) {
        for (PeakParameter g : kPeakParameters) {
            ParameterConstraint& c = p.Constraints[s][g];
            if (rnd.Coin(0.3)) {
                c.Linked = kTrue;
                c.RefPeak = static_cast<Int16>(any(used));
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
    p.CurrentRegion = static_cast<Int16>(withData.empty() ? 0 : any(withData));
    p.CurrentPeak = static_cast<Int16>(rnd.Int(0, kPeakSlots - 1));
    if (IsSet(p.Peaks[p.CurrentPeak].InUse)) p.EditPeak = p.Peaks[p.CurrentPeak];
    p.TotalPeakCount = static_cast<Int16>(rnd.Int(0, kPeakSlots));
    p.AreaScale = rnd.Real(0, 10);
    p.Description = rnd.Text(kDescriptionLength);
    RecomputeAllRegions(p, QuietHost());  // as a load will
    return p;
}

// Each load goes over the project of the one before, whose work must not survive. Slots
// without data or peak are stored as a tag only: what stood there before is not compared.
TEST(RoundTripProperty, ProjectFileGivesBackTheProjectAndTheSameBytes) {
    Random rnd(20261123);
    int peaksSeen = 0;
    Project q;
    test::RecordingHost host;
    for (int it = 0; it < kIterations && !HasFailure(); ++it) {
        SCOPED_TRACE(it);
        Project p = RandomProject(rnd);
        for (const Peak& peak : p.Peaks) peaksSeen += IsSet(peak.InUse);
        const std::string first = ProjectFileBytes(p);
        ASSERT_TRUE(LoadProjectBytes(q, host, first).ok());
        for (int r = 0; r < kRegionCount; ++r) {
            ASSERT_EQ(IsSet(p.Regions[r].HasData), IsSet(q.Regions[r].HasData)) << r;
            if (!IsSet(p.Regions[r].HasData)) continue;
            EXPECT_TRUE(p.Regions[r] == q.Regions[r]) << r;
            EXPECT_EQ(host.ChiText(r), FormatGeneral(p.Regions[r].ChiSquare)) << r;
        }
        for (int s = 0; s < kPeakSlots; ++s) {
            ASSERT_EQ(IsSet(p.Peaks[s].InUse), IsSet(q.Peaks[s].InUse)) << s;
            if (!IsSet(p.Peaks[s].InUse)) continue;
            EXPECT_TRUE(p.Peaks[s] == q.Peaks[s]) << s;
            EXPECT_TRUE(p.Constraints[s] == q.Constraints[s]) << s;
        }
        EXPECT_TRUE(p.EditPeak == q.EditPeak);
        EXPECT_EQ(p.CurrentRegion, q.CurrentRegion);
        EXPECT_EQ(p.CurrentPeak, q.CurrentPeak);
        EXPECT_EQ(p.TotalPeakCount, q.TotalPeakCount);
        EXPECT_EQ(p.TotalChiSquare, q.TotalChiSquare);
        EXPECT_EQ(p.AreaScale, q.AreaScale);
        EXPECT_EQ(p.Description, q.Description);
        ASSERT_EQ(ProjectFileBytes(q), first);
    }
    EXPECT_GT(peaksSeen, kIterations * 5);  // the generator does produce busy projects
}

}  // namespace
}  // namespace molvera
