// Project file: layout by bytes, a known project loaded back, and damaged files.

#include "fileio/projectfile.h"

#include <gtest/gtest.h>

#include "base/messages.h"
#include "model/project.h"
#include "support/le_bytes.h"
#include "support/paths.h"
#include "support/recording_host.h"
#include "support/sample_region.h"

namespace molvera {
namespace {

using test::ExpectValuesAt;
using test::I16At;
using test::RecordingHost;

SingleArray Ramp(std::size_t size, float start, float step) {
    SingleArray a(size);
    for (std::size_t i = 0; i < size; ++i) a[i] = start + step * static_cast<float>(i);
    return a;
}

// Region 0: three points, two peaks (slots 2 and 5), no background so that loading
// recomputes nothing; region 3: two points, no range. Every field has its own value.
Project MakeKnownProject() {
    Project p;
    Region& r = p.Regions[0];
    // clang-format off
    for (auto [field, v] : {std::pair{&r.HasData, -1}, {&r.ImportRegionNumber, 7}, {&r.PointCount, 3}, {&r.PeakCount, 2},
                            {&r.RangeStart, 1}, {&r.RangeEnd, 3}, {&r.RangeCount, 3}, {&r.EndPointAverage, 3}})
        *field = static_cast<Int16>(v);
    for (auto [field, v] : {std::pair{&r.MaxBE, 290.0f}, {&r.MinBE, 288.0f}, {&r.MaxIntensity, 30.0f},
                            {&r.MinIntensity, 10.0f}, {&r.BackgroundLowBE, 288.25f}, {&r.BackgroundHighBE, 289.75f},
                            {&r.LinearStep, 0.5f}, {&r.NetMax, 7.0f}, {&r.NetMin, -1.0f}, {&r.NetScale, 0.08f},
                            {&r.ChiSquare, 12.5f}, {&r.EndAverage, 30.5f}, {&r.StartAverage, 10.5f},
                            {&r.BackgroundParameter, 0.25f}, {&r.Shift, -0.5f}})
        *field = v;
    // clang-format on
    r.Caption = Text20::From("C 1s");
    r.BindingEnergy = {0, 290, 289, 288};
    r.RawIntensity = {0, 10, 20, 30};
    r.PeakIndex = {5, 2, 0, 0, 0, 0, 0, 0, 0, 0};
    r.BackgroundType = BackgroundKind::Tougaard;
    r.RangeBE = Ramp(4, 100, 1);
    r.RangeIntensity = Ramp(4, 200, 1);
    r.BackgroundWork = Ramp(4, 300, 1);
    r.BackgroundCurve = Ramp(4, 400, 1);
    r.PeakSumCurve = Ramp(4, 500, 1);
    r.Residual = Ramp(4, 600, -1);

    Region& r3 = p.Regions[3];
    r3.HasData = kTrue;
    r3.PointCount = 2;
    ResizeRegionArrays(r3, 2);
    r3.BindingEnergy = {0, 500, 499};
    r3.RawIntensity = {0, 1, 2};
    r3.EndPointAverage = 1;
    r3.Caption = Text20::From("O 1s");

    for (int s : {2, 5}) {
        Peak& k = p.Peaks[s];
        const float f = static_cast<float>(s);
        // A %GL relation "* 2" on an 80 % peak stores 160: such work must open again.
        // clang-format off
        for (auto [field, v] : {std::pair{&k.InUse, -1}, {&k.PercentGL, s == 2 ? 32 : 160}, {&k.FixPosition, 1},
                                {&k.FixArea, 1}, {&k.Region, 0}})
            *field = static_cast<Int16>(v);
        for (auto [field, v] : {std::pair{&k.Splitting, 1.25f * f}, {&k.Position, 288.5f + f / 10},
                                {&k.Area, 1000.0f + f}, {&k.HeightPercent, 40.0f + f}, {&k.FWHM, 1.5f},
                                {&k.TailScale, 0.3f}, {&k.TailLength, 2.5f}})
            *field = v;
        // clang-format on
        k.Label = Text20::From(s == 2 ? "Label two" : "Label five");
        k.PeakType = s == 2 ? Subshell::P : Subshell::F;
        k.Curve = Ramp(4, 10.0f * f, 0.5f);
        int v = 1;
        for (PeakParameter g : kPeakParameters) {
            ParameterConstraint& c = p.Constraints[s][g];
            c.Linked = kTrue;
            c.RefPeak = static_cast<Int16>(v);
            c.DependentPeak = static_cast<Int16>(v + 10);
            c.Operation = static_cast<Int16>(v % 4);
            c.Argument = 0.5f * static_cast<float>(v);
            c.UseLimits = kTrue;
            c.LowLimit = -static_cast<float>(v);
            c.HighLimit = static_cast<float>(v) * 3;
            ++v;
        }
    }
    p.CurrentPeak = 5;
    p.EditPeak = p.Peaks[5];
    p.EditPeak.Position = 111.0f;
    p.TotalPeakCount = 4;
    p.TotalChiSquare = 9.75f;
    p.AreaScale = 2;
    p.CurrentRegion = 3;
    p.Description = "Test description";
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

// Loaded over other work, which must go; the windows follow. (Field for field: the
// round trip of random projects.)
TEST(ProjectFileLoad, KnownProjectReplacesTheOpenOneAndDescriptionIsCutTo128) {
    Project p = MakeKnownProject();
    std::string text(200, 'a');
    text[10] = static_cast<char>(0xE9);  // Latin-1 e acute stays one byte
    text[127] = 'z';
    p.Description = text;
    const std::string b = ProjectFileBytes(p);
    EXPECT_EQ(p.Description, text.substr(0, 128));
    EXPECT_EQ(I16At(b, b.size() - 130), 128);
    Project q;
    test::FillSampleRegion(q, 7);
    q.Peaks[9].InUse = kTrue;
    q.Regions[6].EndPointAverage = 0;  // an empty slot is set to 1 as well
    RecordingHost host;
    ASSERT_TRUE(LoadProjectBytes(q, host, b).ok());
    EXPECT_FALSE(IsSet(q.Regions[7].HasData));
    EXPECT_FALSE(IsSet(q.Peaks[9].InUse));
    EXPECT_EQ(q.Regions[6].EndPointAverage, 1);
    EXPECT_EQ(q.Peaks[5], p.Peaks[5]);  // with its %GL of 160
    EXPECT_EQ(q.Description, text.substr(0, 128));
    EXPECT_EQ(host.description, text.substr(0, 128));
    // Peak buttons of the listed peaks, enabled only for the current region.
    EXPECT_EQ(host.PeakButton(0).caption, "5");
    EXPECT_EQ(host.PeakButton(1).caption, "2");
    EXPECT_FALSE(host.PeakButton(0).enabled);
}

TEST(ProjectFileLoad, WrongMagicKeepsTheProjectMissingFileIsAReadError) {
    std::string b = KnownBytes();
    Project q;
    RecordingHost host;
    ASSERT_TRUE(LoadProjectBytes(q, host, b).ok());
    const Project loaded = q;
    b[8] = '5';  // "MOLVERA 5.0"
    EXPECT_EQ(LoadProjectBytes(q, host, b).message(), msg::kWrongFileFormat);
    EXPECT_EQ(q, loaded);
    const auto dir = test::ScratchDir();
    const Status missing = LoadProject(q, host, (dir / "none.xps").string());
    EXPECT_EQ(missing.message(), msg::kErrorReadingFile);
    EXPECT_EQ(missing.detail(), "none.xps: no such file");
    EXPECT_EQ(LoadProject(q, host, dir.string()).message(), msg::kErrorReadingFile);
}

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
        if (len < desc) {
            EXPECT_EQ(st.message(), msg::kErrorReadingFile) << len;
            EXPECT_EQ(host.regionWindowShows, 0) << len;
        } else {
            EXPECT_TRUE(st.ok()) << len;
        }
        if (len == desc || len == b.size()) {
            EXPECT_EQ(q.Description, "kept") << len;
            EXPECT_EQ(host.description, "box") << len;
        }
    }
}

// Each damage is refused as a read error, never reaching code that would index with it.
TEST(ProjectFileLoad, HostileValuesAreRefused) {
    const std::string b = KnownBytes();
    const std::size_t a = kRegion0AfterA2;
    const std::size_t desc = b.size() - 20;
    struct Damage {
        const char* what;
        std::size_t at;
        int width;
        std::int32_t value;
    };
    // clang-format off
    const Damage damages[] = {
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
    for (const Damage& d : damages) {
        std::string damaged = b;
        const std::string v =
            d.width == 2 ? test::LeBytes().I16(d.value).bytes : test::LeBytes().I32(d.value).bytes;
        damaged.replace(d.at, v.size(), v);
        Project q;
        RecordingHost host;
        EXPECT_EQ(LoadProjectBytes(q, host, damaged).message(), msg::kErrorReadingFile) << d.what;
    }
}

TEST(ProjectFileLoad, FiveThousandPointsLoadAnArrayOf5002IsRefused) {
    Project p;
    test::FillSampleRegion(p, 0, kMaxPoints, 1000.0f, 0.1f);
    std::string b = ProjectFileBytes(p);
    Project q;
    RecordingHost host;
    ASSERT_TRUE(LoadProjectBytes(q, host, b).ok());
    EXPECT_EQ(q.Regions[0].RawIntensity, p.Regions[0].RawIntensity);
    ASSERT_EQ(test::I32At(b, kRegion0A1 + 2), 5001);
    b.replace(kRegion0A1 + 2, 4, test::LeBytes().I32(5002).bytes);  // the bytes for it are present
    const Status st = LoadProjectBytes(q, host, b);
    EXPECT_EQ(st.message(), msg::kErrorReadingFile);
    // The detail says where reading stopped: after the array header.
    EXPECT_EQ(st.detail(), "byte " + std::to_string(kRegion0A1 + 10) + ": bad array header");
}

}  // namespace
}  // namespace molvera
