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
#include "support/sample_region.h"

namespace molvera {
namespace {

// Random fitted projects: regions of random size and energy, most with a background of
// a random kind over a random part of the data and up to ten peaks (one sometimes deleted),
// random relations between the peaks, Latin-1 texts with accented characters.
Project RandomProject(std::mt19937& rng) {
    auto pick = [&](int lo, int hi) { return std::uniform_int_distribution<int>(lo, hi)(rng); };
    auto real = [&](double lo, double hi) {
        return static_cast<float>(std::uniform_real_distribution<double>(lo, hi)(rng));
    };
    auto flag = [&](int percent) { return pick(1, 100) <= percent ? kTrue : kFalse; };
    auto text = [&](int maxLength) {
        std::string s(static_cast<std::size_t>(pick(0, maxLength)), ' ');
        for (char& c : s) c = static_cast<char>(flag(75) ? pick(32, 126) : pick(160, 255));
        return s;
    };
    Project p;
    ClearProject(p, QuietHost());
    std::vector<int> used;
    for (int r = 0; r < kRegionCount; ++r) {
        if (!flag(60)) continue;
        test::FillSampleRegion(p, r, pick(2, 300), real(50, 1400), real(0.02, 1.0));
        Region& region = p.Regions[r];
        for (float& y : region.RawIntensity) y = real(0, 1e5);  // no flat data: no NaN
        UpdateDataExtents(region);
        region.ImportRegionNumber = static_cast<Int16>(pick(0, 20));
        region.Caption = Text20::From(text(24));
        region.EndPointAverage = static_cast<Int16>(pick(1, 5));
        region.Shift = flag(50) ? 0.0f : real(-2, 2);
        p.CurrentRegion = static_cast<Int16>(r);
        if (!flag(80)) continue;
        region.BackgroundType = static_cast<BackgroundKind>(pick(0, 2));
        region.BackgroundParameter = real(0, 3000);
        const float a = real(region.MinBE, region.MaxBE), b = real(region.MinBE, region.MaxBE);
        region.BackgroundLowBE = std::min(a, b);
        region.BackgroundHighBE = std::max(a, b);
        region.HasBackground = kTrue;
        RecomputeRegion(p, QuietHost());
        for (int k = pick(0, kMaxPeaksPerRegion), s = 0;
             k > 0 && (s = AddPeak(p, QuietHost())) >= 0; --k) {
            // clang-format off
            p.Peaks[s] = {kTrue, Text20::From(text(20)), static_cast<Subshell>(pick(0, 3)), real(0, 10),
                          real(region.BackgroundLowBE, region.BackgroundHighBE), 0, real(1, 100), real(0.3, 4),
                          static_cast<Int16>(pick(0, 100)), flag(50), flag(50), flag(50), flag(50),
                          static_cast<Int16>(r), p.Peaks[s].Curve, flag(50) ? 0.0f : real(0, 1), real(1, 5)};
            // clang-format on
            used.push_back(s);
        }
        if (region.PeakCount > 1 && flag(30)) {
            p.CurrentPeak = region.PeakIndex[pick(0, region.PeakCount - 1)];
            std::erase(used, p.CurrentPeak);
            DeletePeak(p, QuietHost());
        }
        RecomputeRegion(p, QuietHost());  // areas follow the heights
    }
    for (int s : used) {
        for (PeakParameter g : kPeakParameters) {
            const float low = real(-100, 100);
            const auto ref =
                used[static_cast<std::size_t>(pick(0, static_cast<int>(used.size()) - 1))];
            // clang-format off
            if (flag(30))
                p.Constraints[s][g] = {kTrue, static_cast<Int16>(ref), flag(20), static_cast<Int16>(pick(0, kPeakSlots - 1)),
                                       static_cast<Int16>(pick(0, 3)), real(0.1, 5), flag(50), low, low + real(0, 100)};
            // clang-format on
        }
    }
    p.CurrentPeak = static_cast<Int16>(pick(0, kPeakSlots - 1));
    if (IsSet(p.Peaks[p.CurrentPeak].InUse)) p.EditPeak = p.Peaks[p.CurrentPeak];
    p.TotalPeakCount = static_cast<Int16>(pick(0, kPeakSlots));
    p.AreaScale = real(0, 10);
    p.Description = text(kDescriptionLength);
    RecomputeAllRegions(p, QuietHost());  // as a load will
    return p;
}

// Each load goes over the project of the one before, whose work must not survive. Slots
// without data or peak are stored as a tag only: what stood there before is not compared.
TEST(RoundTripProperty, ProjectFileGivesBackTheProjectAndTheSameBytes) {
    std::mt19937 rng(20261123);
    int peaksSeen = 0;
    Project q;
    test::RecordingHost host;
    for (int it = 0; it < 150 && !HasFailure(); ++it) {
        SCOPED_TRACE(it);
        Project p = RandomProject(rng);
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
