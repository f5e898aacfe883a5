#include "fileio/regionparams.h"

#include <cstring>
#include <filesystem>
#include <sstream>
#include <string>

#include <gtest/gtest.h>

#include "base/binstream.h"
#include "base/messages.h"
#include "fileio/records_io.h"
#include "model/project.h"
#include "spectral/envelope.h"
#include "spectral/lineshape.h"
#include "spectral/regionedit.h"
#include "support/files.h"
#include "support/le_bytes.h"
#include "support/recording_host.h"
#include "support/sample_region.h"

namespace molvera {
namespace {

using test::ExpectValuesAt;
using test::ReadBytes;

// Region 0 holds 11 points 290..280 eV with a Shirley background over 289..281 and
// two peaks in slots 4 and 3 (listed in that order), saved to `path`; slots 0..2
// belong to region 5.
class RegionParamsTest : public ::testing::Test {
protected:
    void SetUp() override {
        ClearProject(project, QuietHost());
        dir = test::ScratchDir();
        path = (dir / "set.rpa").string();
        test::FillSampleRegion(project, 5);
        test::GiveSampleBackground(project, 5);
        for (int i = 0; i < 3; ++i) ASSERT_EQ(AddPeak(project, QuietHost()), i);

        test::FillSampleRegion(project, 0);
        test::GiveSampleBackground(project, 0);
        Region& r = project.Regions[0];
        r.BackgroundLowBE = 281;
        r.BackgroundHighBE = 289;
        RecomputeRegion(project, QuietHost());
        AddPeakAt(4, 285.0f, 0);
        AddPeakAt(3, 283.5f, 1);
        // Peak 4's position is tied to peak 3, which has FWHM limits.
        project.Constraints[4].Position.Linked = kTrue;
        project.Constraints[4].Position.RefPeak = 3;
        project.Constraints[4].Position.Operation = 0;
        project.Constraints[4].Position.Argument = 1.5f;
        project.Constraints[3].Position.IsReference = kTrue;
        project.Constraints[3].Position.DependentPeak = 4;
        project.Constraints[3].FWHM.UseLimits = kTrue;
        project.Constraints[3].FWHM.LowLimit = 0.7f;
        project.Constraints[3].FWHM.HighLimit = 2.5f;
        ComputeRegionEnvelope(project, QuietHost());
        project.CurrentRegion = 0;
        ASSERT_TRUE(SaveRegionParameters(project, path).ok());
    }

    void AddPeakAt(int slot, float position, int k) {
        Region& r = project.Regions[0];
        Peak& p = project.Peaks[slot];
        p.InUse = kTrue;
        p.Region = 0;
        p.PeakType = slot == 4 ? Subshell::P : Subshell::S;
        p.Position = position;
        p.FWHM = 1.25f;
        p.Splitting = 1.0f;
        p.PercentGL = static_cast<Int16>(40 + slot);
        p.Area = 800.0f + static_cast<float>(slot);
        p.TailScale = 0.25f;
        p.TailLength = 3.0f;
        p.Label = Text20::From("peak" + std::to_string(slot));
        p.HeightPercent = AreaToHeightPercent(project, p);
        ResizePeakCurve(project, slot, r.RangeCount);
        r.PeakIndex[k] = static_cast<Int16>(slot);
        r.PeakCount = static_cast<Int16>(k + 1);
    }

    Project project;
    std::filesystem::path dir;
    std::string path;
};

TEST_F(RegionParamsTest, RegionWithoutPeaksIsHeaderAndSixteenBytes) {
    Region& r = project.Regions[7];
    r.PeakCount = 0;
    r.RangeCount = 123;
    r.HasBackground = kFalse;
    r.BackgroundType = BackgroundKind::Tougaard;
    r.BackgroundHighBE = 290.5f;
    r.BackgroundLowBE = 280.25f;
    project.CurrentRegion = 7;
    ASSERT_TRUE(SaveRegionParameters(project, path).ok());
    const std::string b = ReadBytes(path);
    ASSERT_EQ(b.size(), 29u + 16u);
    EXPECT_EQ(b.substr(0, 29), "MOLVERA 4.0 Region Parameters");
    // PeakCount, RangeCount, HasBackground, type, then the high end before the low end.
    ExpectValuesAt(
        b, 29,
        {{0, 'h', 0}, {2, 'h', 123}, {4, 'h', 0}, {6, 'h', 2}, {8, 'f', 290.5}, {12, 'f', 280.25}});
}

TEST_F(RegionParamsTest, PeaksAreWrittenInSlotOrderWithTheirConstraints) {
    const Region& r = project.Regions[0];
    const std::string b = ReadBytes(path);
    const std::size_t curve = 10 + 4 * (static_cast<std::size_t>(r.RangeCount) + 1);
    const std::size_t peakBytes = 64 + curve + 96;
    ASSERT_EQ(b.size(), 45 + 2 * peakBytes);
    // clang-format off
    ExpectValuesAt(b, 29, {{0, 'h', 2}, {2, 'h', static_cast<double>(r.RangeCount)}, {4, 'h', -1}, {8, 'f', 289}, {12, 'f', 281}});
    // First record is slot 3 although PeakIndex lists slot 4 first; TailScale follows
    // the curve, then the constraint record (position IsReference, FWHM limits).
    const std::size_t c1 = 45 + 64 + curve;
    EXPECT_EQ(b.substr(47, 20), "peak3" + std::string(15, ' '));
    ExpectValuesAt(b, 45, {{0, 'h', -1}, {28, 'f', 283.5}, {44, 'h', 43}, {56 + curve, 'f', 0.25},
                           {c1 - 45 + 4, 'h', -1}, {c1 - 45 + 62, 'h', -1}, {c1 - 45 + 64, 'f', 0.7}});
    // Slot 4: position linked to peak 3.
    ExpectValuesAt(b, 45 + peakBytes, {{28, 'f', 285}, {64 + curve, 'h', -1}, {66 + curve, 'h', 3}});
    // clang-format on
}

TEST_F(RegionParamsTest, LoadTakesLowestFreeSlotsDropsTiesKeepsLimits) {
    test::FillSampleRegion(project, 3, 21, 295.0f, 1.0f);  // wider data, 295..275
    project.CurrentRegion = 3;
    test::RecordingHost host;
    ASSERT_TRUE(LoadRegionParameters(project, host, path).ok());

    const Region& r = project.Regions[3];
    // Slots 0..4 are taken by regions 5 and 0: the free ones are 5 and 6.
    ASSERT_EQ(r.PeakCount, 2);
    EXPECT_EQ(r.PeakIndex[0], 5);
    EXPECT_EQ(r.PeakIndex[1], 6);
    EXPECT_EQ(project.CurrentPeak, 6);
    EXPECT_EQ(host.PeakButton(30).caption, "5");
    EXPECT_EQ(r.BackgroundLowBE, 281.0f);
    // Range recomputed from the energies on this region's data: 289 eV is point 7.
    EXPECT_EQ(r.RangeStart, 7);
    EXPECT_EQ(r.RangeEnd, 15);
    EXPECT_EQ(r.RangeCount, 9);

    const Peak& first = project.Peaks[5];  // the saved slot 3
    EXPECT_EQ(first.Region, 3);
    EXPECT_EQ(first.Position, 283.5f);
    EXPECT_FALSE(IsSet(project.Constraints[5].Position.IsReference));
    EXPECT_TRUE(IsSet(project.Constraints[5].FWHM.UseLimits));
    EXPECT_EQ(project.Constraints[5].FWHM.HighLimit, 2.5f);
    const ParameterConstraint& tied = project.Constraints[6].Position;
    EXPECT_FALSE(IsSet(tied.Linked));
    EXPECT_EQ(tied.RefPeak, 3);  // kept as read
    // The source region is untouched.
    EXPECT_EQ(project.Regions[0].PeakIndex[0], 4);
    EXPECT_TRUE(IsSet(project.Constraints[4].Position.Linked));
}

TEST_F(RegionParamsTest, DataMustCoverTheSavedRangeRefusalsChangeNothing) {
    struct Case {
        int points;
        float high;
        float step;
        const char* message;
    };
    const Case cases[] = {
        {8, 300.0f, 1.0f, msg::kIncompatibleRegion},         // 8 points, range of 9
        {40, 288.0f, 0.25f, msg::kBindingEnergyOutOfRange},  // data end below 289 eV
        {12, 289.0f, 0.5f, msg::kBindingEnergyOutOfRange},   // 289..283.5 eV: 281 missing
        {9, 289.0f, 1.0f, ""},                               // exactly 289..281: accepted
    };
    for (const Case& c : cases) {
        test::FillSampleRegion(project, 3, c.points, c.high, c.step);
        SCOPED_TRACE(c.points);
        project.CurrentRegion = 3;
        Region& r = project.Regions[3];
        r.HasBackground = kTrue;
        r.BackgroundType = BackgroundKind::Linear;
        r.BackgroundLowBE = r.MinBE;
        r.Caption = Text20::From("kept");
        r.Shift = 0.5f;
        const Project before = project;
        test::RecordingHost host;
        const Status s = LoadRegionParameters(project, host, path);
        EXPECT_EQ(s.message(), c.message);
        if (s.ok()) {
            EXPECT_EQ(project.Regions[3].RangeCount, 9);
            continue;
        }
        EXPECT_EQ(project.Regions[3], before.Regions[3]);
        for (int k = 0; k < kPeakSlots; ++k) EXPECT_EQ(project.Peaks[k], before.Peaks[k]);
        EXPECT_EQ(host.beeps, 0);
    }
}

TEST_F(RegionParamsTest, TooManyPeaksKeepsThePlacedOnesConsistent) {
    // Fill every slot but 50 with peaks of other regions (10 each at most).
    const int others[] = {6, 7, 8, 9, 1, 2, 4};
    int o = 0;
    for (int s = 0; s < kPeakSlots - 1; ++s) {
        Peak& p = project.Peaks[s];
        if (IsSet(p.InUse)) continue;
        while (project.Regions[others[o]].PeakCount == kMaxPeaksPerRegion) ++o;
        const int region = others[o];
        Region& r = project.Regions[region];
        p.InUse = kTrue;
        p.Region = static_cast<Int16>(region);
        r.PeakIndex[r.PeakCount] = static_cast<Int16>(s);
        r.PeakCount = static_cast<Int16>(r.PeakCount + 1);
    }
    test::FillSampleRegion(project, 3);
    project.CurrentRegion = 3;
    test::RecordingHost host;
    const Status s = LoadRegionParameters(project, host, path);
    EXPECT_EQ(s.message(), msg::kTooManyPeaks);
    EXPECT_EQ(host.beeps, 1);
    const Region& r = project.Regions[3];
    ASSERT_EQ(r.PeakCount, 1);
    EXPECT_EQ(r.PeakIndex[0], 50);
    EXPECT_EQ(project.Peaks[50].Region, 3);
    EXPECT_EQ(project.Peaks[50].Curve.size(), 10u);  // range recomputed as after a full load
}

TEST_F(RegionParamsTest, DamagedFilesAreReadErrorsAndChangeNothing) {
    const std::string good = ReadBytes(path);
    test::FillSampleRegion(project, 3);
    test::GiveSampleBackground(project, 3);

    std::string tooMany = good;
    tooMany[29] = 11;  // PeakCount 11
    std::string negativeRange = good;
    negativeRange[31] = '\xff';
    negativeRange[32] = '\xff';
    const std::string cases[] = {good.substr(0, good.size() - 50), good.substr(0, 40), tooMany,
                                 negativeRange, std::string()};
    for (const std::string& bytes : cases) {
        test::WriteBytes(path, bytes);
        const Project before = project;
        test::RecordingHost host;
        EXPECT_EQ(LoadRegionParameters(project, host, path).message(), msg::kErrorReadingFile);
        EXPECT_EQ(project.Regions[3], before.Regions[3]);
        for (int k = 0; k < kPeakSlots; ++k) EXPECT_EQ(project.Peaks[k], before.Peaks[k]);
    }
    test::RecordingHost host;
    EXPECT_EQ(LoadRegionParameters(project, host, (dir / "none.rpa").string()).message(),
              msg::kErrorReadingFile);
}

TEST_F(RegionParamsTest, OlderTaggedLayoutGivesSymmetricPeaks) {
    std::ostringstream buf;
    BinaryWriter w(buf);
    w.I16(2);  // PeakCount as a tagged Int16
    w.I16(1);
    w.I16(3);  // RangeCount as a tagged Int32
    w.I32(7);
    w.I16(-1);  // HasBackground
    w.I16(1);   // Linear
    w.F32(288.0f);
    w.I16(5);  // BackgroundLowBE as a tagged Double
    const double low = 282.0;
    std::uint64_t bits = 0;
    std::memcpy(&bits, &low, 8);
    w.I32(static_cast<std::int32_t>(bits & 0xFFFFFFFFu));
    w.I32(static_cast<std::int32_t>(bits >> 32));
    // Peak in the 3.0 form: fields up to Region, then Curve, no tail fields.
    w.I16(-1);
    WriteText20(w, Text20::From("old"));
    w.I16(3);
    for (float v : {2.5f, 284.25f, 640.0f, 30.0f, 1.75f}) w.F32(v);
    for (Int16 v : {Int16{55}, Int16{1}, Int16{0}, Int16{1}, Int16{0}, Int16{8}}) w.I16(v);
    w.WriteSingleArray(SingleArray(8, 0.0f));
    PeakConstraint c;
    c.Area.Linked = kTrue;
    c.Area.RefPeak = 9;
    c.Area.Operation = 2;
    c.Area.Argument = 0.5f;
    c.GL.UseLimits = kTrue;
    c.GL.HighLimit = 60;
    WritePeakConstraint(w, c);
    test::WriteBytes(path, buf.str());

    test::FillSampleRegion(project, 3);
    project.CurrentRegion = 3;
    project.Peaks[5].TailScale = 0.9f;  // the slot's old tail must not survive
    test::RecordingHost host;
    ASSERT_TRUE(LoadRegionParameters(project, host, path).ok());
    const Region& r = project.Regions[3];
    ASSERT_EQ(r.PeakCount, 1);
    EXPECT_EQ(r.BackgroundLowBE, 282.0f);
    EXPECT_EQ(r.RangeCount, 7);
    const Peak& p = project.Peaks[5];
    EXPECT_EQ(r.PeakIndex[0], 5);
    EXPECT_EQ(p.Position, 284.25f);
    EXPECT_EQ(p.FWHM, 1.75f);
    EXPECT_EQ(p.FixArea, 1);
    EXPECT_EQ(p.TailScale, 0.0f);
    EXPECT_EQ(p.TailLength, 1.0f);
    EXPECT_FALSE(IsSet(project.Constraints[5].Area.Linked));
    EXPECT_EQ(project.Constraints[5].GL.HighLimit, 60.0f);
}

TEST_F(RegionParamsTest, LoadingReplacesTheRegionsOwnPeaks) {
    // Loading a region's own file back: its peaks are cleared first, so the same
    // slots 3 and 4 come back, now in slot order.
    project.Regions[0].Caption = Text20::From("gone");  // not in the file: the load clears it
    test::RecordingHost host;
    ASSERT_TRUE(LoadRegionParameters(project, host, path).ok());
    const Region& r = project.Regions[0];
    ASSERT_EQ(r.PeakCount, 2);
    EXPECT_EQ(r.PeakIndex[0], 3);
    EXPECT_EQ(r.PeakIndex[1], 4);
    EXPECT_EQ(r.Caption, Text20());
    EXPECT_FALSE(IsSet(project.Constraints[4].Position.Linked));
}

}  // namespace
}  // namespace molvera
