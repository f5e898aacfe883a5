// Round trips of random valid projects: what is saved loads back field for field (the
// load recomputes the curves), and saving again gives the same bytes.

#include <random>
#include <string>
#include <tuple>
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

struct Random {
    std::mt19937 rng{20261123};
    int Int(int lo, int hi) { return std::uniform_int_distribution<int>(lo, hi)(rng); }
    float Real(double lo, double hi) {
        return static_cast<float>(std::uniform_real_distribution<double>(lo, hi)(rng));
    }
    bool Coin(double p = 0.5) { return std::bernoulli_distribution(p)(rng); }
    // Latin-1 text of printable characters, accented ones included (127..159 skipped).
    std::string Text(int maxLength) {
        std::string s(static_cast<std::size_t>(Int(0, maxLength)), ' ');
        for (char& c : s) c = static_cast<char>(Int(32, 222) < 127 ? Int(32, 126) : Int(160, 255));
        return s;
    }
};

// Falling spectra in some regions; in most of them a background over a random part of the
// data and up to ten peaks, sometimes one deleted; random relations between the peaks.
Project RandomProject(Random& rnd) {
    Project p;
    ClearProject(p, QuietHost());
    std::vector<int> used;
    for (int r = 0; r < kRegionCount; ++r) {
        if (!rnd.Coin(0.6)) continue;
        Region& region = p.Regions[r];
        const int n = rnd.Int(2, 300);
        const float high = rnd.Real(50, 1400), step = rnd.Real(0.02, 1.0);
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
        p.CurrentRegion = static_cast<Int16>(r);
        if (rnd.Coin(0.2)) continue;
        region.BackgroundType = static_cast<BackgroundKind>(rnd.Int(0, 2));
        region.BackgroundParameter = rnd.Real(0, 3000);
        const float a = rnd.Real(region.MinBE, region.MaxBE),
                    b = rnd.Real(region.MinBE, region.MaxBE);
        region.BackgroundLowBE = std::min(a, b);
        region.BackgroundHighBE = std::max(a, b);
        region.HasBackground = kTrue;
        RecomputeRegion(p, QuietHost());
        for (int k = rnd.Int(0, kMaxPeaksPerRegion), s = 0;
             k > 0 && (s = AddPeak(p, QuietHost())) >= 0; --k) {
            Peak& peak = p.Peaks[s];
            peak.Label = Text20::From(rnd.Text(20));
            peak.PeakType = static_cast<Subshell>(rnd.Int(0, 3));
            peak.Splitting = rnd.Real(0, 10);
            peak.Position = rnd.Real(region.BackgroundLowBE, region.BackgroundHighBE);
            peak.HeightPercent = rnd.Real(1, 100);
            peak.FWHM = rnd.Real(0.3, 4);
            peak.PercentGL = static_cast<Int16>(rnd.Int(0, 100));
            for (Int16* fix : {&peak.FixPosition, &peak.FixFWHM, &peak.FixArea, &peak.FixGL})
                *fix = rnd.Coin() ? kTrue : kFalse;
            peak.TailScale = rnd.Coin() ? 0.0f : rnd.Real(0, 1);
            peak.TailLength = rnd.Real(1, 5);
            used.push_back(s);
        }
        if (region.PeakCount > 1 && rnd.Coin(0.3)) {
            p.CurrentPeak = region.PeakIndex[rnd.Int(0, region.PeakCount - 1)];
            std::erase(used, p.CurrentPeak);
            DeletePeak(p, QuietHost());
        }
        RecomputeRegion(p, QuietHost());  // areas follow the heights
    }
    for (int s : used) {
        for (PeakParameter g : kPeakParameters) {
            if (!rnd.Coin(0.3)) continue;
            const float low = rnd.Real(-100, 100);
            p.Constraints[s][g] = {
                kTrue,
                static_cast<Int16>(used[rnd.Int(0, static_cast<int>(used.size()) - 1)]),
                rnd.Coin(0.2) ? kTrue : kFalse,
                static_cast<Int16>(rnd.Int(0, kPeakSlots - 1)),
                static_cast<Int16>(rnd.Int(0, 3)),
                rnd.Real(0.1, 5),
                kTrue,
                low,
                low + rnd.Real(0, 100)};
        }
    }
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
    Random rnd;
    int peaksSeen = 0;
    Project q;
    test::RecordingHost host;
    for (int it = 0; it < 150 && !HasFailure(); ++it) {
        SCOPED_TRACE(it);
        Project p = RandomProject(rnd);
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
            peaksSeen += IsSet(p.Peaks[s].InUse);
            EXPECT_TRUE(!IsSet(p.Peaks[s].InUse) ||
                        (p.Peaks[s] == q.Peaks[s] && p.Constraints[s] == q.Constraints[s]))
                << s;
        }
        EXPECT_TRUE(p.EditPeak == q.EditPeak);
        EXPECT_EQ(std::tie(p.CurrentRegion, p.CurrentPeak, p.TotalPeakCount, p.TotalChiSquare,
                           p.AreaScale, p.Description),
                  std::tie(q.CurrentRegion, q.CurrentPeak, q.TotalPeakCount, q.TotalChiSquare,
                           q.AreaScale, q.Description));
        ASSERT_EQ(ProjectFileBytes(q), first);
    }
    EXPECT_GT(peaksSeen, 150 * 5);  // the generator does produce busy projects
}

}  // namespace
}  // namespace molvera
