// Region parameter file: layout by bytes, where a loaded model goes, and refusals.

#include "fileio/regionparams.h"

#include <string>
#include <tuple>

#include <gtest/gtest.h>

#include "base/messages.h"
#include "model/project.h"
#include "spectral/envelope.h"
#include "spectral/lineshape.h"
#include "spectral/regionedit.h"
#include "support/le_bytes.h"
#include "support/paths.h"
#include "support/recording_host.h"
#include "support/sample_region.h"

namespace molvera {
namespace {

using test::ExpectValuesAt;

// Region 0 holds 11 points 290..280 eV with a linear background over 289..281 and
// two peaks in slots 4 and 3 (listed in that order), whose file is `bytes`; slots 0..2
// belong to region 5.
class RegionParamsTest : public ::testing::Test {
protected:
    void SetUp() override {
        ClearProject(project, QuietHost());
        test::FillSampleRegion(project, 5);
        test::GiveSampleBackground(project, 5);
        for (int i = 0; i < 3; ++i) ASSERT_EQ(AddPeak(project, QuietHost()), i);
        test::FillSampleRegion(project, 0);
        test::GiveSampleBackground(project, 0);
        Region& r = project.Regions[0];
        std::tie(r.BackgroundLowBE, r.BackgroundHighBE, r.BackgroundType) =
            std::tuple(281.0f, 289.0f, BackgroundKind::Linear);
        RecomputeRegion(project, QuietHost());
        for (int slot : {3, 4}) {
            ASSERT_EQ(AddPeak(project, QuietHost()), slot);
            Peak& p = project.Peaks[slot];
            p.PeakType = slot == 4 ? Subshell::P : Subshell::S;
            p.Position = slot == 4 ? 285.0f : 283.5f;
            p.PercentGL = static_cast<Int16>(40 + slot);
            p.TailScale = 0.25f;
            p.Label = Text20::From("peak" + std::to_string(slot));
        }
        std::swap(r.PeakIndex[0], r.PeakIndex[1]);
        // Peak 4's position is tied to peak 3, which has FWHM limits.
        project.Constraints[4].Position = {.Linked = kTrue, .RefPeak = 3};
        project.Constraints[3].Position.IsReference = kTrue;
        project.Constraints[3].FWHM = {.UseLimits = kTrue, .LowLimit = 0.7f, .HighLimit = 2.5f};
        ComputeRegionEnvelope(project, QuietHost());
        bytes = RegionParameterBytes(project);
    }

    // Loads `file` into region 3; a refusal must leave the region and every peak as they were.
    Status LoadIntoRegion3(std::string_view file, test::RecordingHost& host) {
        project.CurrentRegion = 3;
        const Project before = project;
        const Status s = ApplyRegionParameterBytes(project, host, file);
        if (!s.ok()) {
            EXPECT_EQ(project.Regions[3], before.Regions[3]);
            EXPECT_EQ(project.Peaks, before.Peaks);
            EXPECT_EQ(host.beeps, s.message() == msg::kTooManyPeaks ? 1 : 0);
        }
        return s;
    }

    Project project;
    std::string bytes;
};

TEST_F(RegionParamsTest, PeaksAreWrittenInSlotOrderWithTheirConstraints) {
    const std::string& b = bytes;
    const std::size_t curve = 10 + 4 * (9 + 1);  // a range of nine points
    const std::size_t peakBytes = 64 + curve + 96;
    ASSERT_EQ(b.size(), 45 + 2 * peakBytes);
    EXPECT_EQ(b.substr(0, 29), "MOLVERA 4.0 Region Parameters");
    // clang-format off
    // PeakCount, RangeCount, HasBackground, type, then the high end before the low end.
    ExpectValuesAt(b, 29, {{0, 'h', 2}, {2, 'h', 9}, {4, 'h', -1}, {6, 'h', 1}, {8, 'f', 289}, {12, 'f', 281}});
    // First record is slot 3 although PeakIndex lists slot 4 first; TailScale follows
    // the curve, then the constraint record (position IsReference, FWHM limits).
    const std::size_t c1 = 64 + curve;
    EXPECT_EQ(b.substr(47, 20), "peak3" + std::string(15, ' '));
    ExpectValuesAt(b, 45, {{0, 'h', -1}, {28, 'f', 283.5}, {44, 'h', 43}, {56 + curve, 'f', 0.25},
                           {c1 + 4, 'h', -1}, {c1 + 62, 'h', -1}, {c1 + 64, 'f', 0.7}});
    // Slot 4: position linked to peak 3.
    ExpectValuesAt(b, 45 + peakBytes, {{28, 'f', 285}, {64 + curve, 'h', -1}, {66 + curve, 'h', 3}});
    // clang-format on
    project.CurrentRegion = 7;  // a region without peaks: the head alone
    EXPECT_EQ(RegionParameterBytes(project).size(), 45u);
}

TEST_F(RegionParamsTest, LoadTakesLowestFreeSlotsDropsTiesKeepsLimits) {
    test::FillSampleRegion(project, 3, 21, 295.0f, 1.0f);  // wider data, 295..275
    test::RecordingHost host;
    ASSERT_TRUE(LoadIntoRegion3(bytes, host).ok());
    const Region& r = project.Regions[3];
    // Slots 0..4 are taken by regions 5 and 0: the free ones are 5 (the saved slot 3) and 6.
    ASSERT_EQ(r.PeakCount, 2);
    EXPECT_EQ(
        std::tuple(r.PeakIndex[0], r.PeakIndex[1], project.CurrentPeak, project.Peaks[5].Region),
        (std::tuple<Int16, Int16, Int16, Int16>(5, 6, 6, 3)));
    EXPECT_TRUE(project.Peaks[5].Position == 283.5f && host.PeakButton(30).caption == "5");
    // The saved background; its range found on this region's data: 289 eV is point 7.
    EXPECT_TRUE(IsSet(r.HasBackground) && r.BackgroundType == BackgroundKind::Linear);
    EXPECT_EQ(std::tuple(r.BackgroundLowBE, r.BackgroundHighBE), std::tuple(281.0f, 289.0f));
    EXPECT_EQ(std::tuple(r.RangeStart, r.RangeEnd, r.RangeCount),
              (std::tuple<Int16, Int16, Int16>(7, 15, 9)));
    // Ties are dropped (the reference kept as read), limits kept; the source region untouched.
    const PeakConstraint &c5 = project.Constraints[5], &c6 = project.Constraints[6];
    EXPECT_FALSE(IsSet(c5.Position.IsReference) || IsSet(c6.Position.Linked));
    EXPECT_TRUE(IsSet(c5.FWHM.UseLimits) && c5.FWHM.HighLimit == 2.5f && c6.Position.RefPeak == 3);
    EXPECT_TRUE(project.Regions[0].PeakIndex[0] == 4 &&
                IsSet(project.Constraints[4].Position.Linked));
}

TEST_F(RegionParamsTest, DataMustCoverTheSavedRangeRefusalsChangeNothing) {
    const std::tuple<int, float, float, const char*> cases[] = {
        {8, 300.0f, 1.0f, msg::kIncompatibleRegion},         // 8 points, range of 9
        {40, 288.0f, 0.25f, msg::kBindingEnergyOutOfRange},  // data end below 289 eV
        {12, 289.0f, 0.5f, msg::kBindingEnergyOutOfRange},   // 289..283.5 eV: 281 missing
        {9, 289.0f, 1.0f, ""},                               // exactly 289..281: accepted
    };
    for (const auto& [points, high, step, message] : cases) {
        SCOPED_TRACE(points);
        test::FillSampleRegion(project, 3, points, high, step);
        Region& r = project.Regions[3];
        std::tie(r.HasBackground, r.BackgroundType, r.BackgroundLowBE, r.Caption, r.Shift) =
            std::tuple(kTrue, BackgroundKind::Linear, r.MinBE, Text20::From("kept"), 0.5f);
        test::RecordingHost host;
        EXPECT_EQ(LoadIntoRegion3(bytes, host).message(), message);
    }
    EXPECT_EQ(project.Regions[3].RangeCount, 9);
}

TEST_F(RegionParamsTest, TooManyPeaksChangesNothing) {
    // Fill every slot but 50 with peaks of other regions (10 each at most).
    const int others[] = {6, 7, 8, 9, 1, 2, 4};
    int o = 0;
    for (int s = 0; s < kPeakSlots - 1; ++s) {
        Peak& p = project.Peaks[s];
        if (IsSet(p.InUse)) continue;
        while (project.Regions[others[o]].PeakCount == kMaxPeaksPerRegion) ++o;
        Region& r = project.Regions[others[o]];
        p.InUse = kTrue;
        p.Region = static_cast<Int16>(others[o]);
        r.PeakIndex[r.PeakCount] = static_cast<Int16>(s);
        r.PeakCount = static_cast<Int16>(r.PeakCount + 1);
    }
    test::FillSampleRegion(project, 3);
    test::RecordingHost host;
    EXPECT_EQ(LoadIntoRegion3(bytes, host).message(), msg::kTooManyPeaks);
}

TEST_F(RegionParamsTest, DamagedFilesAreReadErrorsAndChangeNothing) {
    test::FillSampleRegion(project, 3);
    test::GiveSampleBackground(project, 3);
    std::string tooMany = bytes, negativeRange = bytes;
    tooMany[29] = 11;                          // PeakCount 11
    negativeRange.replace(31, 2, "\xff\xff");  // RangeCount -1
    for (const std::string& damaged : {bytes.substr(0, bytes.size() - 50), bytes.substr(0, 40),
                                       tooMany, negativeRange, std::string()}) {
        test::RecordingHost host;
        EXPECT_EQ(LoadIntoRegion3(damaged, host).message(), msg::kErrorReadingFile);
    }
}

// The region's own file loaded back: its peaks are cleared first, so the same slots 3 and
// 4 come back, now in slot order, without the tie; caption and shift are not in the file.
TEST_F(RegionParamsTest, LoadingReplacesTheRegionsOwnPeaks) {
    project.Regions[0].Caption = Text20::From("gone");
    project.Regions[0].Shift = 0.5f;
    test::RecordingHost host;
    ASSERT_TRUE(ApplyRegionParameterBytes(project, host, bytes).ok());
    const Region& r = project.Regions[0];
    ASSERT_EQ(r.PeakCount, 2);
    EXPECT_TRUE(r.PeakIndex[0] == 3 && r.PeakIndex[1] == 4);
    EXPECT_TRUE(r.Caption == Text20() && r.Shift == 0.0f);
    EXPECT_FALSE(IsSet(project.Constraints[4].Position.Linked));
}

// The older layout, built by hand: tagged numbers in the head, peaks without tail fields.
TEST_F(RegionParamsTest, OlderTaggedLayoutGivesSymmetricPeaks) {
    test::LeBytes b;
    b.I16(2).I16(1);                  // PeakCount as a tagged Int16
    b.I16(3).I32(7);                  // RangeCount as a tagged Int32
    b.I16(-1).I16(1);                 // HasBackground, Linear
    b.F32(288.0f).I16(5).F64(282.0);  // BackgroundHighBE, BackgroundLowBE as a tagged Double
    // Peak in the 3.0 form: fields up to Region, then Curve (8 elements), no tail fields.
    b.I16(-1).Text20("old").I16(3);
    for (float v : {2.5f, 284.25f, 640.0f, 30.0f, 1.75f}) b.F32(v);
    for (int v : {55, 1, 0, 1, 0, 8}) b.I16(v);
    b.I16(1).I32(8).I32(0);
    for (int i = 0; i < 8; ++i) b.F32(0);
    // Constraint groups: position; area linked to peak 9 by "*" 0.5; FWHM; %GL limited to 60.
    b.I16(0).I16(0).I16(0).I16(0).I16(0).F32(0).I16(0).F32(0).F32(0);
    b.I16(-1).I16(9).I16(0).I16(0).I16(2).F32(0.5f).I16(0).F32(0).F32(0);
    b.I16(0).I16(0).I16(0).I16(0).I16(0).F32(0).I16(0).F32(0).F32(0);
    b.I16(0).I16(0).I16(0).I16(0).I16(0).F32(0).I16(-1).F32(0).F32(60);

    test::FillSampleRegion(project, 3);
    project.Peaks[5].TailScale = 0.9f;  // the slot's old tail must not survive
    test::RecordingHost host;
    ASSERT_TRUE(LoadIntoRegion3(b.bytes, host).ok());
    const Region& r = project.Regions[3];
    ASSERT_EQ(r.PeakCount, 1);
    EXPECT_TRUE(r.PeakIndex[0] == 5 && r.BackgroundLowBE == 282.0f && r.RangeCount == 7);
    const Peak& p = project.Peaks[5];
    EXPECT_EQ(std::tuple(p.Position, p.FWHM, p.TailScale, p.TailLength),
              std::tuple(284.25f, 1.75f, 0.0f, 1.0f));
    EXPECT_EQ(p.FixArea, 1);
    const PeakConstraint& c = project.Constraints[5];
    EXPECT_TRUE(!IsSet(c.Area.Linked) && c.Area.RefPeak == 9 && c.GL.HighLimit == 60.0f);
}

}  // namespace
}  // namespace molvera
