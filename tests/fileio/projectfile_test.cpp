// Project file: layout by bytes, a known project loaded back, and damaged files.

#include "fileio/projectfile.h"

#include <tuple>

#include <gtest/gtest.h>

#include "base/messages.h"
#include "base/numtext.h"
#include "model/project.h"
#include "spectral/background.h"
#include "spectral/envelope.h"
#include "spectral/regionedit.h"
#include "support/le_bytes.h"
#include "support/paths.h"
#include "support/recording_host.h"
#include "support/sample_region.h"

namespace molvera {
namespace {

using test::ExpectValuesAt;
using test::I16At;
using test::RecordingHost;

// Region 0: three points, two peaks (slots 2 and 5), no background so that loading
// recomputes nothing; region 3: two points, no range. Every field has its own value.
Project MakeKnownProject() {
    Project p;
    auto ramp = [](float start, float step) {
        return SingleArray{start, start + step, start + 2 * step, start + 3 * step};
    };
    // clang-format off
    p.Regions[0] = {.HasData = kTrue, .ImportRegionNumber = 7, .Caption = Text20::From("C 1s"), .PointCount = 3,
                    .BindingEnergy = {0, 290, 289, 288}, .RawIntensity = {0, 10, 20, 30}, .MaxBE = 290, .MinBE = 288,
                    .MaxIntensity = 30, .MinIntensity = 10, .PeakCount = 2, .PeakIndex = {5, 2},
                    .BackgroundType = BackgroundKind::Tougaard, .BackgroundLowBE = 288.25f, .BackgroundHighBE = 289.75f,
                    .LinearStep = 0.5f, .RangeStart = 1, .RangeEnd = 3, .RangeCount = 3, .NetMax = 7, .NetMin = -1,
                    .NetScale = 0.08f, .ChiSquare = 12.5f, .RangeBE = ramp(100, 1), .RangeIntensity = ramp(200, 1),
                    .BackgroundWork = ramp(300, 1), .BackgroundCurve = ramp(400, 1), .PeakSumCurve = ramp(500, 1),
                    .Residual = ramp(600, -1), .EndAverage = 30.5f, .StartAverage = 10.5f, .EndPointAverage = 3,
                    .BackgroundParameter = 0.25f, .Shift = -0.5f};
    // clang-format on
    Region& r3 = p.Regions[3];
    ResizeRegionArrays(r3, 2);
    std::tie(r3.HasData, r3.PointCount, r3.EndPointAverage, r3.Caption) =
        std::tuple(kTrue, 2, 1, Text20::From("O 1s"));
    r3.BindingEnergy = {0, 500, 499};
    r3.RawIntensity = {0, 1, 2};
    for (int s : {2, 5}) {
        const float f = static_cast<float>(s);
        // A %GL relation "* 2" on an 80 % peak stores 160: such work must open again.
        // clang-format off
        p.Peaks[s] = {.InUse = kTrue, .Label = Text20::From(s == 2 ? "Label two" : "Label five"),
                      .PeakType = s == 2 ? Subshell::P : Subshell::F, .Splitting = 1.25f * f, .Position = 288.5f + f / 10,
                      .Area = 1000 + f, .HeightPercent = 40 + f, .FWHM = 1.5f,
                      .PercentGL = static_cast<Int16>(s == 2 ? 32 : 160), .FixPosition = 1, .FixArea = 1,
                      .Curve = ramp(10 * f, 0.5f), .TailScale = 0.3f, .TailLength = 2.5f};
        // clang-format on
        for (int v = 1; PeakParameter g : kPeakParameters) {
            const auto i = static_cast<Int16>(v);
            const float x = static_cast<float>(v++);
            p.Constraints[s][g] = {
                kTrue, i,  kFalse, static_cast<Int16>(i + 10), static_cast<Int16>(i % 4), x / 2,
                kTrue, -x, 3 * x};
        }
    }
    p.EditPeak = p.Peaks[5];
    p.EditPeak.Position = 111.0f;
    std::tie(p.CurrentPeak, p.TotalPeakCount, p.TotalChiSquare, p.AreaScale, p.CurrentRegion,
             p.Description) = std::tuple(5, 4, 9.75f, 2.0f, 3, "Test description");
    return p;
}

// Offsets in the file written from MakeKnownProject, worked from the record maps.
constexpr std::size_t kRegion0 = 11 + 2 + 2;  // header, "DP", point count
constexpr std::size_t kRegion0A1 = kRegion0 + 26;
constexpr std::size_t kRegion0AfterA2 = kRegion0A1 + 2 * (10 + 4 * 4);
constexpr std::size_t kRegion0Size = 120 + 8 * (10 + 4 * 4);
constexpr std::size_t kRegion3Size = 120 + 8 * (10 + 4 * 3);
constexpr std::size_t kPeakTable = 11 + (4 + kRegion0Size) + 2 * 2 + (4 + kRegion3Size) + 6 * 2;
constexpr std::size_t kPeak2 = kPeakTable + 2 * 2 + 4;  // slots 0, 1 empty; "DP", range count
constexpr std::size_t kPeakSize = 64 + 10 + 4 * 4;

std::string KnownBytes() {
    Project p = MakeKnownProject();
    return ProjectFileBytes(p);
}

TEST(ProjectFileLayout, EmptyProjectIs225Bytes) {
    Project p;
    const std::string b = ProjectFileBytes(p);
    ASSERT_EQ(b.size(), 225u);
    EXPECT_EQ(b.substr(0, 11), "MOLVERA 4.0");
    for (int k = 0; k < 61; ++k) EXPECT_EQ(b.substr(11 + 2 * k, 2), "DA") << k;
    EXPECT_EQ(b.substr(137, 20), std::string(20, ' '));  // EditPeak Label
    // CurrentPeak; Curve header (one dimension, no element, lower bound 0);
    // CurrentRegion, then the description's type code and length.
    // clang-format off
    ExpectValuesAt(b, 0, {{133, 'h', 0}, {191, 'h', 1}, {193, 'i', 0}, {197, 'i', 0}, {219, 'h', 0},
                          {221, 'h', 8}, {223, 'h', 0}});
    // clang-format on
}

TEST(ProjectFileLayout, EveryFieldAtItsOffset) {
    const std::string b = KnownBytes();
    EXPECT_EQ(b.substr(11, 2), "DP");
    EXPECT_EQ(b.substr(kRegion0 + 4, 20), "C 1s                ");
    // clang-format off
    // Region 0 head and its first two arrays (header: dimensions, count, lower bound).
    ExpectValuesAt(b, 0, {{13, 'h', 3}, {kRegion0, 'h', -1}, {kRegion0 + 2, 'h', 7}, {kRegion0 + 24, 'h', 3},
                          {kRegion0A1, 'h', 1}, {kRegion0A1 + 2, 'i', 4}, {kRegion0A1 + 6, 'i', 0},
                          {kRegion0A1 + 14, 'f', 290}, {kRegion0A1 + 48, 'f', 30}});
    // MaxBE .. ChiSquare; the low end of the background comes before the high end.
    ExpectValuesAt(b, kRegion0AfterA2,
                   {{0, 'f', 290},   {4, 'f', 288},      {8, 'f', 30},       {12, 'f', 10},   {16, 'h', 0},
                    {18, 'h', 2},    {20, 'h', 5},       {22, 'h', 2},       {40, 'h', 2},    {42, 'f', 288.25},
                    {46, 'f', 289.75}, {50, 'f', 0.5},   {54, 'h', 1},       {56, 'h', 3},    {58, 'h', 3},
                    {60, 'f', 7},    {64, 'f', -1},      {68, 'f', 0.08},    {72, 'f', 12.5}});
    // The six range arrays in record order (second elements 101, 201, .. 501, 599).
    for (std::size_t k = 0; k < 6; ++k)
        ExpectValuesAt(b, kRegion0AfterA2 + 76 + 26 * k, {{2, 'i', 4}, {14, 'f', k == 5 ? 599.0 : 100 * k + 101}});
    const std::size_t tail = kRegion0AfterA2 + 76 + 6 * 26;
    ExpectValuesAt(b, tail, {{0, 'f', 30.5}, {4, 'f', 10.5}, {8, 'h', 3}, {10, 'f', 0.25}, {14, 'f', -0.5}});
    EXPECT_EQ(tail + 18, kRegion0 + kRegion0Size);

    // Peak slot 2, after two empty slots and the range count of its region.
    EXPECT_EQ(b.substr(kPeakTable, 4), "DADA");
    EXPECT_EQ(b.substr(kPeak2 - 4, 2), "DP");
    EXPECT_EQ(b.substr(kPeak2 + 2, 20), "Label two           ");
    ExpectValuesAt(b, kPeak2,
                   {{0, 'h', -1},   {22, 'h', 2},   {24, 'f', 2.5}, {28, 'f', 288.7}, {32, 'f', 1002}, {36, 'f', 42},
                    {40, 'f', 1.5}, {44, 'h', 32},  {46, 'h', 1},   {48, 'h', 0},     {50, 'h', 1},    {52, 'h', 0},
                    {54, 'h', 0},   {58, 'i', 4},   {70, 'f', 20.5}, {82, 'f', 0.3},  {86, 'f', 2.5}});
    EXPECT_EQ(I16At(b, kPeak2 - 2), 3);
    // Its constraint: four groups of 24 bytes; the area group (second) has v = 2.
    ExpectValuesAt(b, kPeak2 + kPeakSize + 24,
                   {{0, 'h', -1}, {2, 'h', 2}, {4, 'h', 0}, {6, 'h', 12}, {8, 'h', 2}, {10, 'f', 1},
                    {14, 'h', -1}, {16, 'f', -2}, {20, 'f', 6}});
    EXPECT_EQ(b.substr(kPeak2 + kPeakSize + 96, 6), "DADADP");  // slots 3, 4 empty, slot 5
    // Tail: CurrentPeak, EditPeak, TotalPeakCount, TotalChiSquare, AreaScale,
    // CurrentRegion, then the tagged description.
    const std::size_t t = b.size() - 20 - 14 - kPeakSize;
    ExpectValuesAt(b, t, {{0, 'h', 5}, {30, 'f', 111}, {92, 'h', 4}, {94, 'f', 9.75}, {98, 'f', 2},
                          {102, 'h', 3}, {104, 'h', 8}, {106, 'h', 16}});
    // clang-format on
    EXPECT_EQ(b.substr(b.size() - 16), "Test description");
}

// Loaded over other work, which must go; the windows follow. Every field comes back as
// saved (with the %GL of 160); the description is cut to 128.
TEST(ProjectFileLoad, KnownProjectReplacesTheOpenOneFieldForField) {
    Project p = MakeKnownProject();
    std::string text(200, 'a');
    text[10] = static_cast<char>(0xE9);  // Latin-1 e acute stays one byte
    text[127] = 'z';
    p.Description = text;
    const std::string b = ProjectFileBytes(p);
    EXPECT_EQ(I16At(b, b.size() - 130), 128);
    Project q;
    test::FillSampleRegion(q, 7);
    q.Peaks[9].InUse = kTrue;
    q.Regions[6].EndPointAverage = 0;  // an empty slot is set to 1 as well
    RecordingHost host;
    ASSERT_TRUE(LoadProjectBytes(q, host, b).ok());
    EXPECT_FALSE(IsSet(q.Regions[7].HasData) || IsSet(q.Peaks[9].InUse));
    EXPECT_EQ(q.Regions[6].EndPointAverage, 1);
    q.Regions[6].EndPointAverage = 0;
    for (int k : {0, 3}) EXPECT_EQ(q.Regions[k], p.Regions[k]) << k;
    for (int k : {2, 5})
        EXPECT_TRUE(q.Peaks[k] == p.Peaks[k] && q.Constraints[k] == p.Constraints[k]);
    EXPECT_EQ(q.EditPeak, p.EditPeak);
    EXPECT_EQ(q.Description, text.substr(0, 128));
    EXPECT_EQ(host.description, text.substr(0, 128));
    // Peak buttons of the listed peaks, enabled only for the current region.
    EXPECT_TRUE(host.PeakButton(0) == (PeakButtonText{"5", false}) &&
                host.PeakButton(1).caption == "2");
}

// Fitted regions with each background kind, tails, a deleted peak and a relation, loaded
// over other work: the load recomputes them to what was saved (the chi-square boxes too),
// and saving again gives the same bytes.
TEST(ProjectFileLoad, FittedProjectComesBackAsSavedAndSavesTheSameBytes) {
    Project p;
    for (int r : {1, 4, 8}) {
        test::FillSampleRegion(p, r, 40 + 7 * r, 295.0f - static_cast<float>(r), 0.25f);
        test::GiveSampleBackground(p, r);
        Region& region = p.Regions[r];
        std::tie(region.Caption, region.BackgroundType, region.BackgroundParameter,
                 region.EndPointAverage, region.BackgroundLowBE, region.Shift) =
            std::tuple(Text20::From("C 1s \xE9t\xE9"), static_cast<BackgroundKind>(r % 3), 900.0f,
                       3, region.MinBE + 1.5f, 0.25f);
        RecomputeRegion(p, QuietHost());
        for (int k = 0; k < 4; ++k) {
            Peak& peak = p.Peaks[AddPeak(p, QuietHost())];
            peak.Position = 284.0f + 0.9f * static_cast<float>(k);
            peak.TailScale = 0.1f * static_cast<float>(k);
            peak.PercentGL = static_cast<Int16>(25 * k);
        }
        p.CurrentPeak = region.PeakIndex[1];
        DeletePeak(p, QuietHost());
        p.Constraints[region.PeakIndex[2]].Area = {kTrue, region.PeakIndex[0], kFalse, 0, 2, 0.5f};
        RecomputeRegion(p, QuietHost());
    }
    p.AreaScale = 3;
    p.Description = "caf\xE9";
    RecomputeAllRegions(p, QuietHost());  // as a load will
    const std::string b = ProjectFileBytes(p);
    Project q = MakeKnownProject();
    RecordingHost host;
    ASSERT_TRUE(LoadProjectBytes(q, host, b).ok());
    for (int r = 0; r < kRegionCount; ++r) {
        ASSERT_EQ(IsSet(q.Regions[r].HasData), IsSet(p.Regions[r].HasData)) << r;
        if (!IsSet(p.Regions[r].HasData)) continue;
        EXPECT_EQ(q.Regions[r], p.Regions[r]) << r;
        EXPECT_EQ(host.ChiText(r), FormatGeneral(p.Regions[r].ChiSquare)) << r;
    }
    for (int s = 0; s < kPeakSlots; ++s) {
        ASSERT_EQ(IsSet(q.Peaks[s].InUse), IsSet(p.Peaks[s].InUse)) << s;
        EXPECT_TRUE(!IsSet(p.Peaks[s].InUse) ||
                    (q.Peaks[s] == p.Peaks[s] && q.Constraints[s] == p.Constraints[s]))
            << s;
    }
    // clang-format off
    EXPECT_EQ(std::tie(q.CurrentRegion, q.CurrentPeak, q.TotalPeakCount, q.TotalChiSquare, q.AreaScale, q.Description),
              std::tie(p.CurrentRegion, p.CurrentPeak, p.TotalPeakCount, p.TotalChiSquare, p.AreaScale, p.Description));
    // clang-format on
    EXPECT_EQ(q.EditPeak, p.EditPeak);
    EXPECT_EQ(ProjectFileBytes(q), b);
}

// Cut anywhere before the description: a read error, nothing shown. The description is
// optional: a file ending in it or before it, or holding another type there, keeps the box.
TEST(ProjectFileLoad, EveryTruncationBeforeTheDescriptionFailsAMissingDescriptionIsIgnored) {
    std::string b = KnownBytes();
    const std::size_t desc = b.size() - 20;
    for (std::size_t len = 0; len <= b.size(); ++len) {
        if (len == b.size()) b[desc] = 5;  // a type code other than 8
        Project q;
        q.Description = "kept";
        RecordingHost host;
        host.description = "box";
        const Status st = LoadProjectBytes(q, host, std::string_view(b).substr(0, len));
        EXPECT_EQ(st.message(), len < desc ? msg::kErrorReadingFile : "") << len;
        EXPECT_EQ(host.regionWindowShows, len < desc ? 0 : 1) << len;
        EXPECT_TRUE(len < desc || (q.Description == "kept" && host.description == "box")) << len;
    }
}

// Each damage is refused as a read error, never reaching code that would index with it;
// another version's header is another format.
TEST(ProjectFileLoad, HostileValuesAreRefused) {
    const std::string b = KnownBytes();
    const std::size_t a = kRegion0AfterA2;
    const std::size_t desc = b.size() - 20;
    // clang-format off
    const std::tuple<const char*, std::size_t, int, std::int32_t> damages[] = {
        {"huge array count", kRegion0A1 + 2, 4, 0x7FFFFFFF}, {"negative array count", kRegion0A1 + 2, 4, -1},
        {"two dimensions", kRegion0A1, 2, 2},                {"lower bound 1", kRegion0A1 + 6, 4, 1},
        {"leading count negative", 13, 2, -1},               {"leading count 5001", 13, 2, 5001},
        {"PointCount 0", kRegion0 + 24, 2, 0},               {"PointCount above the arrays", kRegion0 + 24, 2, 4},
        {"PointCount 5001", kRegion0 + 24, 2, 5001},         {"PeakCount 11", a + 18, 2, 11},
        {"PeakCount negative", a + 18, 2, -1},               {"PeakIndex 51", a + 20, 2, 51},
        {"PeakIndex negative", a + 38, 2, -2},               {"listed slot not in use", a + 22, 2, 7},
        {"RangeCount beyond the arrays", a + 58, 2, 4},      {"RangeEnd beyond the data", a + 56, 2, 4},
        {"peak Region 10", kPeak2 + 54, 2, 10},              {"peak of another region listed", kPeak2 + 54, 2, 3},
        {"peak curve count huge", kPeak2 + 58, 4, 0x40000000}, {"peak leading count", kPeak2 - 2, 2, -5},
        {"RefPeak 51", kPeak2 + kPeakSize + 2, 2, 51},       {"CurrentPeak 51", desc - 14 - kPeakSize, 2, 51},
        {"CurrentRegion 10", desc - 2, 2, 10},               {"CurrentRegion negative", desc - 2, 2, -1},
    };
    // clang-format on
    Project q;
    RecordingHost host;
    for (const auto& [what, at, width, value] : damages) {
        std::string damaged = b;
        damaged.replace(at, static_cast<std::size_t>(width),
                        test::LeBytes().Int(static_cast<std::uint64_t>(value), width).bytes);
        EXPECT_EQ(LoadProjectBytes(q, host, damaged).message(), msg::kErrorReadingFile) << what;
    }
    std::string other = b;
    other[8] = '5';  // "MOLVERA 5.0"
    EXPECT_EQ(LoadProjectBytes(q, host, other).message(), msg::kWrongFileFormat);
}

// 5000 points load; an array of 5002 is refused although its bytes are there, the detail
// saying where reading stopped (after the array header).
TEST(ProjectFileLoad, FiveThousandPointsLoadAnArrayOf5002IsRefused) {
    Project p, q;
    test::FillSampleRegion(p, 0, kMaxPoints, 1000.0f, 0.1f);
    std::string b = ProjectFileBytes(p);
    RecordingHost host;
    ASSERT_TRUE(LoadProjectBytes(q, host, b).ok());
    EXPECT_EQ(q.Regions[0].RawIntensity, p.Regions[0].RawIntensity);
    ASSERT_EQ(test::I32At(b, kRegion0A1 + 2), 5001);
    b.replace(kRegion0A1 + 2, 4, test::LeBytes().I32(5002).bytes);
    const Status st = LoadProjectBytes(q, host, b);
    EXPECT_EQ(st.message(), msg::kErrorReadingFile);
    EXPECT_EQ(st.detail(), "byte " + std::to_string(kRegion0A1 + 10) + ": bad array header");
}

}  // namespace
}  // namespace molvera
