// Project file: layout by bytes, round trips, the older layouts and damaged files.

#include "fileio/projectfile.h"

#include <gtest/gtest.h>

#include <csignal>
#include <filesystem>
#include <fstream>
#include <sys/resource.h>

#include "fileio/numtext.h"
#include "model/messages.h"
#include "model/project.h"
#include "model/regionops.h"
#include "spectral/envelope.h"
#include "support/le_bytes.h"
#include "support/paths.h"
#include "support/recording_host.h"
#include "support/sample_region.h"

namespace molvera {
namespace {

using test::F32At;
using test::I16At;
using test::I32At;
using test::LeBytes;
using test::RecordingHost;

std::string ReadBytes(const std::filesystem::path& p) {
    std::ifstream in(p, std::ios::binary);
    return std::string(std::istreambuf_iterator<char>(in), {});
}

void WriteBytes(const std::filesystem::path& p, const std::string& bytes) {
    std::ofstream out(p, std::ios::binary | std::ios::trunc);
    out.write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
}

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
    r.HasData = kTrue;
    r.ImportRegionNumber = 7;
    r.Caption = Text20::From("C 1s");
    r.PointCount = 3;
    r.BindingEnergy = {0, 290, 289, 288};
    r.RawIntensity = {0, 10, 20, 30};
    r.MaxBE = 290;
    r.MinBE = 288;
    r.MaxIntensity = 30;
    r.MinIntensity = 10;
    r.PeakCount = 2;
    r.PeakIndex = {5, 2, 0, 0, 0, 0, 0, 0, 0, 0};
    r.BackgroundType = 2;
    r.BackgroundLowBE = 288.25f;
    r.BackgroundHighBE = 289.75f;
    r.LinearStep = 0.5f;
    r.RangeStart = 1;
    r.RangeEnd = 3;
    r.RangeCount = 3;
    r.NetMax = 7;
    r.NetMin = -1;
    r.NetScale = 0.08f;
    r.ChiSquare = 12.5f;
    r.RangeBE = Ramp(4, 100, 1);
    r.RangeIntensity = Ramp(4, 200, 1);
    r.BackgroundWork = Ramp(4, 300, 1);
    r.BackgroundCurve = Ramp(4, 400, 1);
    r.PeakSumCurve = Ramp(4, 500, 1);
    r.Residual = Ramp(4, 600, -1);
    r.EndAverage = 30.5f;
    r.StartAverage = 10.5f;
    r.EndPointAverage = 3;
    r.BackgroundParameter = 0.25f;
    r.Shift = -0.5f;

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
        k.InUse = kTrue;
        k.Label = Text20::From(s == 2 ? "Label two" : "Label five");
        k.PeakType = static_cast<Int16>(s == 2 ? 2 : 4);
        k.Splitting = 1.25f * static_cast<float>(s);
        k.Position = 288.5f + static_cast<float>(s) / 10;
        k.Area = 1000.0f + static_cast<float>(s);
        k.HeightPercent = 40.0f + static_cast<float>(s);
        k.FWHM = 1.5f;
        k.PercentGL = static_cast<Int16>(30 + s);
        k.FixPosition = 1;
        k.FixFWHM = 0;
        k.FixArea = 1;
        k.FixGL = 0;
        k.Region = 0;
        k.Curve = Ramp(4, 10.0f * static_cast<float>(s), 0.5f);
        k.TailScale = 0.3f;
        k.TailLength = 2.5f;
        int v = 1;
        for (Group g : {Group::Position, Group::Area, Group::FWHM, Group::GL}) {
            ParameterConstraint& c = p.Constraints[s][g];
            c.Linked = kTrue;
            c.RefPeak = static_cast<Int16>(v);
            c.IsReference = kFalse;
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

std::string SaveToBytes(Project& p, const std::filesystem::path& file) {
    EXPECT_TRUE(SaveProject(p, file.string()).ok());
    return ReadBytes(file);
}

TEST(ProjectFileLayout, EmptyProjectIs225Bytes) {
    const auto dir = test::ScratchDir();
    Project p;
    const std::string b = SaveToBytes(p, dir / "empty.xps");
    ASSERT_EQ(b.size(), 225u);
    EXPECT_EQ(b.substr(0, 11), "MOLVERA 4.0");
    for (int k = 0; k < 61; ++k) EXPECT_EQ(b.substr(11 + 2 * k, 2), "DA") << k;
    std::size_t at = 11 + 61 * 2;
    EXPECT_EQ(I16At(b, at), 0);                     // CurrentPeak
    EXPECT_EQ(b.substr(at + 2 + 2, 20), std::string(20, ' '));  // EditPeak Label
    EXPECT_EQ(I16At(b, at + 2 + 56), 1);            // Curve header: one dimension,
    EXPECT_EQ(I32At(b, at + 2 + 58), 0);            // no element,
    EXPECT_EQ(I32At(b, at + 2 + 62), 0);            // lower bound 0
    at += 2 + 74;
    EXPECT_EQ(I16At(b, at + 10), 0);                // CurrentRegion
    EXPECT_EQ(I16At(b, at + 12), 8);                // description type code
    EXPECT_EQ(I16At(b, at + 14), 0);                // and length
}

TEST(ProjectFileLayout, RegionFieldsAtTheirOffsets) {
    const auto dir = test::ScratchDir();
    Project p = MakeKnownProject();
    const std::string b = SaveToBytes(p, dir / "known.xps");
    EXPECT_EQ(b.substr(11, 2), "DP");
    EXPECT_EQ(I16At(b, 13), 3);
    EXPECT_EQ(I16At(b, kRegion0 + 0), -1);
    EXPECT_EQ(I16At(b, kRegion0 + 2), 7);
    EXPECT_EQ(b.substr(kRegion0 + 4, 20), "C 1s                ");
    EXPECT_EQ(I16At(b, kRegion0 + 24), 3);
    EXPECT_EQ(I16At(b, kRegion0A1), 1);
    EXPECT_EQ(I32At(b, kRegion0A1 + 2), 4);
    EXPECT_EQ(I32At(b, kRegion0A1 + 6), 0);
    EXPECT_EQ(F32At(b, kRegion0A1 + 10 + 4), 290.0f);
    EXPECT_EQ(F32At(b, kRegion0A1 + 26 + 10 + 12), 30.0f);  // RawIntensity[3]
    const std::size_t a = kRegion0AfterA2;
    EXPECT_EQ(F32At(b, a + 0), 290.0f);
    EXPECT_EQ(F32At(b, a + 4), 288.0f);
    EXPECT_EQ(F32At(b, a + 8), 30.0f);
    EXPECT_EQ(F32At(b, a + 12), 10.0f);
    EXPECT_EQ(I16At(b, a + 16), 0);
    EXPECT_EQ(I16At(b, a + 18), 2);
    EXPECT_EQ(I16At(b, a + 20), 5);
    EXPECT_EQ(I16At(b, a + 22), 2);
    EXPECT_EQ(I16At(b, a + 40), 2);
    EXPECT_EQ(F32At(b, a + 42), 288.25f);  // low end before high end
    EXPECT_EQ(F32At(b, a + 46), 289.75f);
    EXPECT_EQ(F32At(b, a + 50), 0.5f);
    EXPECT_EQ(I16At(b, a + 54), 1);
    EXPECT_EQ(I16At(b, a + 56), 3);
    EXPECT_EQ(I16At(b, a + 58), 3);
    EXPECT_EQ(F32At(b, a + 60), 7.0f);
    EXPECT_EQ(F32At(b, a + 64), -1.0f);
    EXPECT_EQ(F32At(b, a + 68), 0.08f);
    EXPECT_EQ(F32At(b, a + 72), 12.5f);
    // The six range arrays in record order, then the last five fields.
    for (int k = 0; k < 6; ++k) {
        const std::size_t arr = a + 76 + static_cast<std::size_t>(k) * 26;
        EXPECT_EQ(I32At(b, arr + 2), 4) << k;
        EXPECT_EQ(F32At(b, arr + 10 + 4), p.Regions[0].RangeBE[0] + 100.0f * static_cast<float>(k) +
                                              (k == 5 ? -1.0f : 1.0f))
            << k;
    }
    const std::size_t tail = a + 76 + 6 * 26;
    EXPECT_EQ(F32At(b, tail + 0), 30.5f);
    EXPECT_EQ(F32At(b, tail + 4), 10.5f);
    EXPECT_EQ(I16At(b, tail + 8), 3);
    EXPECT_EQ(F32At(b, tail + 10), 0.25f);
    EXPECT_EQ(F32At(b, tail + 14), -0.5f);
    EXPECT_EQ(tail + 18, kRegion0 + kRegion0Size);
}

TEST(ProjectFileLayout, PeakAndConstraintFieldsAtTheirOffsets) {
    const auto dir = test::ScratchDir();
    Project p = MakeKnownProject();
    const std::string b = SaveToBytes(p, dir / "known.xps");
    EXPECT_EQ(b.substr(kPeakTable, 4), "DADA");
    EXPECT_EQ(b.substr(kPeak2 - 4, 2), "DP");
    EXPECT_EQ(I16At(b, kPeak2 - 2), 3);  // RangeCount of the peak's region
    const std::size_t k = kPeak2;
    EXPECT_EQ(I16At(b, k + 0), -1);
    EXPECT_EQ(b.substr(k + 2, 20), "Label two           ");
    EXPECT_EQ(I16At(b, k + 22), 2);
    EXPECT_EQ(F32At(b, k + 24), 2.5f);
    EXPECT_EQ(F32At(b, k + 28), 288.7f);
    EXPECT_EQ(F32At(b, k + 32), 1002.0f);
    EXPECT_EQ(F32At(b, k + 36), 42.0f);
    EXPECT_EQ(F32At(b, k + 40), 1.5f);
    EXPECT_EQ(I16At(b, k + 44), 32);
    EXPECT_EQ(I16At(b, k + 46), 1);
    EXPECT_EQ(I16At(b, k + 48), 0);
    EXPECT_EQ(I16At(b, k + 50), 1);
    EXPECT_EQ(I16At(b, k + 52), 0);
    EXPECT_EQ(I16At(b, k + 54), 0);
    EXPECT_EQ(I32At(b, k + 56 + 2), 4);
    EXPECT_EQ(F32At(b, k + 56 + 10 + 4), 20.5f);
    EXPECT_EQ(F32At(b, k + 56 + 26), 0.3f);
    EXPECT_EQ(F32At(b, k + 56 + 30), 2.5f);
    // Constraint: four groups of 24 bytes; the area group (second) has v = 2.
    const std::size_t c = k + kPeakSize + 24;
    EXPECT_EQ(I16At(b, c + 0), -1);
    EXPECT_EQ(I16At(b, c + 2), 2);
    EXPECT_EQ(I16At(b, c + 4), 0);
    EXPECT_EQ(I16At(b, c + 6), 12);
    EXPECT_EQ(I16At(b, c + 8), 2);
    EXPECT_EQ(F32At(b, c + 10), 1.0f);
    EXPECT_EQ(I16At(b, c + 14), -1);
    EXPECT_EQ(F32At(b, c + 16), -2.0f);
    EXPECT_EQ(F32At(b, c + 20), 6.0f);
    // Slots 3 and 4 empty, slot 5 next.
    EXPECT_EQ(b.substr(k + kPeakSize + 96, 4), "DADA");
    EXPECT_EQ(b.substr(k + kPeakSize + 100, 2), "DP");
    // The tail ends with CurrentRegion and the tagged description.
    const std::size_t desc = b.size() - 4 - 16;
    EXPECT_EQ(I16At(b, desc - 2), 3);
    EXPECT_EQ(F32At(b, desc - 6), 2.0f);
    EXPECT_EQ(F32At(b, desc - 10), 9.75f);
    EXPECT_EQ(I16At(b, desc - 12), 4);
    EXPECT_EQ(F32At(b, desc - 12 - kPeakSize + 28), 111.0f);  // EditPeak.Position
    EXPECT_EQ(I16At(b, desc - 12 - kPeakSize - 2), 5);          // CurrentPeak
    EXPECT_EQ(I16At(b, desc), 8);
    EXPECT_EQ(I16At(b, desc + 2), 16);
    EXPECT_EQ(b.substr(desc + 4), "Test description");
}

// A project with other contents, so that a load must replace them.
Project DirtyProject() {
    Project q;
    test::FillSampleRegion(q, 7);
    q.Peaks[9].InUse = kTrue;
    q.Peaks[9].Region = 7;
    q.Regions[7].PeakCount = 1;
    q.Regions[7].PeakIndex[0] = 9;
    q.Description = "stale";
    return q;
}

TEST(ProjectFileRoundTrip, Version40FieldForField) {
    const auto dir = test::ScratchDir();
    Project p = MakeKnownProject();
    ASSERT_TRUE(SaveProject(p, (dir / "known.xps").string()).ok());
    Project q = DirtyProject();
    RecordingHost host;
    const Status st = LoadProject(q, host, (dir / "known.xps").string());
    ASSERT_TRUE(st.ok()) << st.message();
    EXPECT_TRUE(host.messages.empty());
    EXPECT_EQ(q.Regions[0], p.Regions[0]);
    EXPECT_EQ(q.Regions[3], p.Regions[3]);
    EXPECT_FALSE(IsSet(q.Regions[7].HasData));
    EXPECT_FALSE(IsSet(q.Peaks[9].InUse));
    for (int s : {2, 5}) {
        EXPECT_EQ(q.Peaks[s], p.Peaks[s]) << s;
        EXPECT_EQ(q.Constraints[s], p.Constraints[s]) << s;
    }
    EXPECT_EQ(q.EditPeak, p.EditPeak);
    EXPECT_EQ(q.CurrentPeak, 5);
    EXPECT_EQ(q.CurrentRegion, 3);
    EXPECT_EQ(q.TotalPeakCount, 4);
    EXPECT_EQ(q.AreaScale, 2.0f);
    EXPECT_EQ(q.Description, "Test description");
    // The windows follow: description, peak buttons of the listed peaks (enabled only
    // for the current region), total label, region window.
    EXPECT_EQ(host.description, "Test description");
    EXPECT_EQ(host.peakButtons[0].caption, "5");
    EXPECT_EQ(host.peakButtons[1].caption, "2");
    EXPECT_FALSE(host.peakButtons[0].enabled);
    EXPECT_EQ(host.peakButtons[2].caption, "");
    EXPECT_EQ(host.chiTexts[0], "0");
    EXPECT_EQ(host.chiTexts[5], "");
    EXPECT_EQ(host.totalChiText, FormatGeneral(q.TotalChiSquare));
    EXPECT_EQ(host.regionWindowShows, 1);
}

TEST(ProjectFileRoundTrip, FittedRegionLoadsWithTheSameChiSquare) {
    const auto dir = test::ScratchDir();
    Project p;
    RecordingHost host;
    test::FillSampleRegion(p, 1, 41, 295.0f, 0.25f);
    test::GiveSampleBackground(p, 1);
    ASSERT_GE(AddPeak(p, host), 0);
    ComputeRegionEnvelope(p, host);
    ASSERT_TRUE(SaveProject(p, (dir / "fit.xps").string()).ok());
    Project q;
    ASSERT_TRUE(LoadProject(q, host, (dir / "fit.xps").string()).ok());
    EXPECT_EQ(q.Regions[1].ChiSquare, p.Regions[1].ChiSquare);
    EXPECT_EQ(q.Regions[1].PeakSumCurve, p.Regions[1].PeakSumCurve);
    EXPECT_EQ(q.TotalChiSquare, p.TotalChiSquare);
    EXPECT_EQ(host.chiTexts[1], FormatGeneral(p.Regions[1].ChiSquare));
}

TEST(ProjectFileRoundTrip, PercentGLOutsideTheTablesStillLoads) {
    // A %GL relation "* 2" on a 80 % peak stores 160; such work must open again.
    const auto dir = test::ScratchDir();
    Project p;
    RecordingHost host;
    test::FillSampleRegion(p, 0, 41, 295.0f, 0.25f);
    test::GiveSampleBackground(p, 0);
    const int slot = AddPeak(p, host);
    ASSERT_GE(slot, 0);
    p.Peaks[slot].PercentGL = 160;
    ComputeRegionEnvelope(p, host);
    ASSERT_TRUE(SaveProject(p, (dir / "gl.xps").string()).ok());
    Project q;
    const Status st = LoadProject(q, host, (dir / "gl.xps").string());
    ASSERT_TRUE(st.ok()) << st.message();
    EXPECT_EQ(q.Peaks[slot].PercentGL, 160);
}

TEST(ProjectFileRoundTrip, HolesInPeakSlotsStayHoles) {
    const auto dir = test::ScratchDir();
    Project p = MakeKnownProject();
    ASSERT_TRUE(SaveProject(p, (dir / "k.xps").string()).ok());
    Project q;
    RecordingHost host;
    ASSERT_TRUE(LoadProject(q, host, (dir / "k.xps").string()).ok());
    for (int s = 0; s < kPeakSlots; ++s) EXPECT_EQ(IsSet(q.Peaks[s].InUse), s == 2 || s == 5) << s;
}

TEST(ProjectFileRoundTrip, EmptyProjectLoadsEmpty) {
    const auto dir = test::ScratchDir();
    Project p;
    ASSERT_TRUE(SaveProject(p, (dir / "e.xps").string()).ok());
    Project q = DirtyProject();
    RecordingHost host;
    ASSERT_TRUE(LoadProject(q, host, (dir / "e.xps").string()).ok());
    for (const Region& r : q.Regions) EXPECT_FALSE(IsSet(r.HasData));
    for (const Peak& k : q.Peaks) EXPECT_FALSE(IsSet(k.InUse));
    EXPECT_EQ(q.Description, "");
    EXPECT_EQ(host.peakButtons.size(), 100u);
    for (auto& [i, b] : host.peakButtons) EXPECT_FALSE(b.enabled) << i;
}

TEST(ProjectFileRoundTrip, FiveThousandPointRegion) {
    const auto dir = test::ScratchDir();
    Project p;
    test::FillSampleRegion(p, 4, kMaxPoints, 1000.0f, 0.1f);
    ASSERT_TRUE(SaveProject(p, (dir / "big.xps").string()).ok());
    Project q;
    RecordingHost host;
    ASSERT_TRUE(LoadProject(q, host, (dir / "big.xps").string()).ok());
    EXPECT_EQ(q.Regions[4].PointCount, kMaxPoints);
    EXPECT_EQ(q.Regions[4].RawIntensity, p.Regions[4].RawIntensity);
}

TEST(ProjectFileDescription, CutTo128OnSave) {
    const auto dir = test::ScratchDir();
    Project p;
    std::string text;
    for (int i = 0; i < 200; ++i) text.push_back(static_cast<char>('a' + i % 26));
    text[10] = static_cast<char>(0xE9);  // Latin-1 e acute stays one byte
    p.Description = text;
    ASSERT_TRUE(SaveProject(p, (dir / "d.xps").string()).ok());
    EXPECT_EQ(p.Description, text.substr(0, 128));
    EXPECT_EQ(ReadBytes(dir / "d.xps").size(), 225u + 128u);
    Project q;
    RecordingHost host;
    ASSERT_TRUE(LoadProject(q, host, (dir / "d.xps").string()).ok());
    EXPECT_EQ(q.Description, text.substr(0, 128));
    EXPECT_EQ(host.description, text.substr(0, 128));
}

TEST(ProjectFileDescription, MissingOrNotTextIsIgnored) {
    const auto dir = test::ScratchDir();
    Project p = MakeKnownProject();
    std::string b = SaveToBytes(p, dir / "k.xps");
    const std::size_t desc = b.size() - 20;
    for (int variant = 0; variant < 2; ++variant) {
        std::string damaged = b;
        if (variant == 0) damaged.resize(desc);  // no description at all
        else damaged[desc] = 5;                  // a type code other than 8
        WriteBytes(dir / "x.xps", damaged);
        Project q;
        q.Description = "kept";
        RecordingHost host;
        host.description = "box";
        ASSERT_TRUE(LoadProject(q, host, (dir / "x.xps").string()).ok()) << variant;
        EXPECT_EQ(q.Description, "kept");
        EXPECT_EQ(host.description, "box");
        EXPECT_TRUE(host.messages.empty());
        EXPECT_TRUE(IsSet(q.Regions[0].HasData));
    }
}

TEST(ProjectFileLoad, EndPointAverageZeroLoadsAsOne) {
    const auto dir = test::ScratchDir();
    Project p = MakeKnownProject();
    p.Regions[0].EndPointAverage = 0;
    ASSERT_TRUE(SaveProject(p, (dir / "k.xps").string()).ok());
    Project q;
    q.Regions[6].EndPointAverage = 0;  // an empty slot is corrected as well
    RecordingHost host;
    ASSERT_TRUE(LoadProject(q, host, (dir / "k.xps").string()).ok());
    EXPECT_EQ(q.Regions[0].EndPointAverage, 1);
    EXPECT_EQ(q.Regions[6].EndPointAverage, 1);
}

TEST(ProjectFileLoad, WrongMagicClearsTheProject) {
    const auto dir = test::ScratchDir();
    Project p = MakeKnownProject();
    std::string b = SaveToBytes(p, dir / "k.xps");
    b[8] = '5';  // "MOLVERA 5.0"
    WriteBytes(dir / "w.xps", b);
    Project q;
    RecordingHost host;
    ASSERT_TRUE(LoadProject(q, host, (dir / "k.xps").string()).ok());
    const Status st = LoadProject(q, host, (dir / "w.xps").string());
    EXPECT_EQ(st.message(), msg::kWrongFileFormat);
    EXPECT_EQ(host.messages, std::vector<std::string>{msg::kWrongFileFormat});
    for (const Region& r : q.Regions) EXPECT_FALSE(IsSet(r.HasData));
    for (const Peak& k : q.Peaks) EXPECT_FALSE(IsSet(k.InUse));
}

TEST(ProjectFileLoad, MissingFileReportsReadError) {
    const auto dir = test::ScratchDir();
    Project q;
    RecordingHost host;
    EXPECT_EQ(LoadProject(q, host, (dir / "none.xps").string()).message(), msg::kErrorReadingFile);
    EXPECT_EQ(LoadProject(q, host, dir.string()).message(), msg::kErrorReadingFile);
}

TEST(ProjectFileLoad, EveryTruncationBeforeTheDescriptionFails) {
    const auto dir = test::ScratchDir();
    Project p = MakeKnownProject();
    const std::string b = SaveToBytes(p, dir / "k.xps");
    const std::size_t desc = b.size() - 20;
    for (std::size_t len = 0; len < b.size(); ++len) {
        // A new file each time: truncating one file over and over is slow on some disks.
        const auto file = dir / ("t" + std::to_string(len) + ".xps");
        WriteBytes(file, b.substr(0, len));
        Project q;
        RecordingHost host;
        const Status st = LoadProject(q, host, file.string());
        if (len < desc) {
            EXPECT_EQ(st.message(), msg::kErrorReadingFile) << len;
            EXPECT_EQ(host.regionWindowShows, 0) << len;
        } else {
            EXPECT_TRUE(st.ok()) << len;
        }
    }
}

// Each damage is refused as a read error, never reaching code that would index with it.
TEST(ProjectFileLoad, HostileValuesAreRefused) {
    const auto dir = test::ScratchDir();
    Project p = MakeKnownProject();
    const std::string b = SaveToBytes(p, dir / "k.xps");
    const std::size_t a = kRegion0AfterA2;
    const std::size_t desc = b.size() - 20;
    const std::size_t currentPeak = desc - 12 - kPeakSize - 2;
    struct Damage {
        const char* what;
        std::size_t at;
        int width;
        std::int32_t value;
    };
    const Damage damages[] = {
        {"huge array count", kRegion0A1 + 2, 4, 0x7FFFFFFF},
        {"negative array count", kRegion0A1 + 2, 4, -1},
        {"two dimensions", kRegion0A1, 2, 2},
        {"lower bound 1", kRegion0A1 + 6, 4, 1},
        {"leading count negative", 13, 2, -1},
        {"leading count 5001", 13, 2, 5001},
        {"PointCount 0", kRegion0 + 24, 2, 0},
        {"PointCount above the arrays", kRegion0 + 24, 2, 4},
        {"PointCount 5001", kRegion0 + 24, 2, 5001},
        {"PeakCount 11", a + 18, 2, 11},
        {"PeakCount negative", a + 18, 2, -1},
        {"PeakIndex 51", a + 20, 2, 51},
        {"PeakIndex negative", a + 38, 2, -2},
        {"listed slot not in use", a + 22, 2, 7},
        {"RangeCount beyond the arrays", a + 58, 2, 4},
        {"RangeEnd beyond the data", a + 56, 2, 4},
        {"peak Region 10", kPeak2 + 54, 2, 10},
        {"peak of another region listed", kPeak2 + 54, 2, 3},
        {"peak curve count huge", kPeak2 + 58, 4, 0x40000000},
        {"peak leading count", kPeak2 - 2, 2, -5},
        {"RefPeak 51", kPeak2 + kPeakSize + 2, 2, 51},
        {"CurrentPeak 51", currentPeak, 2, 51},
        {"CurrentRegion 10", desc - 2, 2, 10},
        {"CurrentRegion negative", desc - 2, 2, -1},
    };
    for (const Damage& d : damages) {
        std::string damaged = b;
        LeBytes v;
        if (d.width == 2) v.I16(d.value);
        else v.I32(d.value);
        damaged.replace(d.at, v.bytes.size(), v.bytes);
        WriteBytes(dir / "h.xps", damaged);
        Project q;
        RecordingHost host;
        const Status st = LoadProject(q, host, (dir / "h.xps").string());
        EXPECT_EQ(st.message(), msg::kErrorReadingFile) << d.what;
        EXPECT_EQ(host.messages, std::vector<std::string>{msg::kErrorReadingFile}) << d.what;
    }
}

TEST(ProjectFileLoad, ArrayCountAbove5001RefusedEvenWithTheBytesPresent) {
    const auto dir = test::ScratchDir();
    Project p;
    test::FillSampleRegion(p, 0, kMaxPoints, 1000.0f, 0.1f);
    std::string b = SaveToBytes(p, dir / "big.xps");
    ASSERT_EQ(I32At(b, kRegion0A1 + 2), 5001);
    LeBytes v;
    v.I32(5002);
    b.replace(kRegion0A1 + 2, 4, v.bytes);
    WriteBytes(dir / "h.xps", b);
    Project q;
    RecordingHost host;
    EXPECT_EQ(LoadProject(q, host, (dir / "h.xps").string()).message(), msg::kErrorReadingFile);
}

TEST(ProjectFileSave, FailureKeepsThePreviousFile) {
    const auto dir = test::ScratchDir();
    Project p = MakeKnownProject();
    EXPECT_EQ(SaveProject(p, (dir / "no" / "such" / "x.xps").string()).message(),
              msg::kErrorWritingFile);
    std::filesystem::create_directory(dir / "folder.xps");
    EXPECT_EQ(SaveProject(p, (dir / "folder.xps").string()).message(), msg::kErrorWritingFile);
    EXPECT_TRUE(std::filesystem::is_directory(dir / "folder.xps"));

    // A file size limit makes the write itself fail (even for a privileged user).
    WriteBytes(dir / "old.xps", "previous contents");
    rlimit old{};
    ASSERT_EQ(getrlimit(RLIMIT_FSIZE, &old), 0);
    rlimit small = old;
    small.rlim_cur = 100;
    auto previousHandler = std::signal(SIGXFSZ, SIG_IGN);
    ASSERT_EQ(setrlimit(RLIMIT_FSIZE, &small), 0);
    const Status st = SaveProject(p, (dir / "old.xps").string());
    setrlimit(RLIMIT_FSIZE, &old);
    std::signal(SIGXFSZ, previousHandler);
    EXPECT_EQ(st.message(), msg::kErrorWritingFile);
    EXPECT_EQ(ReadBytes(dir / "old.xps"), "previous contents");
    EXPECT_EQ(std::distance(std::filesystem::directory_iterator(dir), {}), 2);  // no temp left
}

}  // namespace
}  // namespace molvera
