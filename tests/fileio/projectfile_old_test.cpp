// Project files of version 3.0 and of the older "SF" layout, built by hand from the
// record descriptions.

#include <gtest/gtest.h>

#include "base/messages.h"
#include "fileio/projectfile.h"
#include "support/le_bytes.h"
#include "support/recording_host.h"

namespace molvera {
namespace {

using test::LeBytes;
using test::RecordingHost;

constexpr int kBlock = 2001;

// A fixed block of 2001 Singles whose first elements are `values`.
void Block(LeBytes& b, std::initializer_list<float> values) {
    for (float v : values) b.F32(v);
    for (std::size_t i = values.size(); i < kBlock; ++i) b.F32(-999.0f);
}

// The fixed region fields after RawIntensity, up to ChiSquare.
void RegionMiddle(LeBytes& b, int hasBackground, int peakCount, int firstPeak, int rangeCount) {
    b.F32(290).F32(288).F32(30).F32(10);  // MaxBE, MinBE, MaxIntensity, MinIntensity
    b.I16(hasBackground).I16(peakCount);  // HasBackground, PeakCount
    b.I16(firstPeak);
    for (int i = 1; i < 10; ++i) b.I16(0);  // PeakIndex
    b.I16(1).F32(288).F32(290).F32(-10);    // BackgroundType, Low, High, LinearStep
    b.I16(1).I16(3).I16(rangeCount);        // RangeStart, RangeEnd, RangeCount
    b.F32(20).F32(0).F32(0.2f).F32(4.5f);   // NetMax, NetMin, NetScale, ChiSquare
}

// Peak fields from InUse to Region.
void PeakHead(LeBytes& b, float position, int region) {
    b.I16(-1).Text20("old peak").I16(1);
    b.F32(0).F32(position).F32(500).F32(60).F32(1.2f);
    b.I16(30).I16(0).I16(1).I16(0).I16(1).I16(region);
}

TEST(ProjectFileVersion30, LoadsWithSymmetricPeaks) {
    LeBytes b;
    b.Raw("MOLVERA 3.0");
    b.Raw("DA").Raw("DP").I16(3);
    b.I16(-1).I16(0).Text20("Region two").I16(3);
    b.Array({0, 290, 289, 288}).Array({0, 10, 20, 30});
    RegionMiddle(b, 0, 1, 4, 3);  // no background: nothing is recomputed
    for (float base : {100.f, 200.f, 300.f, 400.f, 500.f, 600.f})
        b.Array({0, base + 1, base + 2, base + 3});
    b.F32(30).F32(10).I16(1).F32(0).F32(0.125f);
    for (int k = 2; k < 10 + 4; ++k) b.Raw("DA");  // regions 2..9, peak slots 0..3
    b.Raw("DP").I16(3);
    PeakHead(b, 289.0f, 1);
    b.Array({0, 1, 2, 3});
    for (int g = 0; g < 4; ++g)
        b.I16(0).I16(0).I16(0).I16(0).I16(g).F32(1.5f).I16(-1).F32(-1).F32(g);
    for (int k = 5; k < 51; ++k) b.Raw("DA");
    b.I16(4);
    PeakHead(b, 288.5f, 1);
    b.Array({0, 7, 8, 9});
    b.I16(1).F32(4.5f).F32(3).I16(1);
    b.I16(8).I16(3).Raw("old");

    Project q;
    q.Peaks[4].TailScale = 0.7f;
    q.Peaks[4].TailLength = 9;
    q.EditPeak.TailScale = 0.7f;
    RecordingHost host;
    const Status st = LoadProjectBytes(q, host, b.bytes);
    ASSERT_TRUE(st.ok()) << st.message();
    const Region& r = q.Regions[1];
    EXPECT_EQ(r.Caption.Str(), "Region two          ");
    EXPECT_TRUE(r.Residual == SingleArray({0, 601, 602, 603}) && r.Shift == 0.125f);
    // Symmetric peaks: no tail, whatever the slot held.
    const Peak& k = q.Peaks[4];
    EXPECT_TRUE(k.Position == 289.0f && k.Curve == SingleArray({0, 1, 2, 3}));
    EXPECT_TRUE(k.TailScale == 0.0f && k.TailLength == 1.0f && q.EditPeak.TailScale == 0.0f);
    EXPECT_TRUE(q.Constraints[4].GL.Operation == 3 && q.Constraints[4].GL.HighLimit == 3.0f);
    EXPECT_TRUE(q.EditPeak.Position == 288.5f && q.CurrentRegion == 1 && q.Description == "old");
}

std::string OldLayoutFile() {
    LeBytes b;
    b.Raw("SF");
    b.Raw("DP");
    b.I16(-1).I16(2).Text20("SF region").I16(3);
    Block(b, {0, 290, 289, 288});
    Block(b, {0, 10, 20, 30});
    RegionMiddle(b, -1, 1, 20, 2);
    for (float base : {100.f, 200.f, 300.f, 400.f, 500.f, 600.f})
        Block(b, {0, base + 1, base + 2, base + 3});
    b.F32(30).F32(10).I16(0).F32(0).F32(0.25f);     // EndPointAverage 0
    for (int k = 1; k < 10 + 20; ++k) b.Raw("DA");  // regions 1..9, peak slots 0..19
    b.Raw("DP");
    PeakHead(b, 289.5f, 0);
    Block(b, {0, 5, 6});
    // Short groups: Linked 1 (any non-zero), RefPeak, IsReference, DependentPeak,
    // Operation, Argument.
    for (int g = 0; g < 4; ++g)
        b.I16(g == 1 ? 1 : 0).I16(g).I16(g == 2 ? 7 : 0).I16(0).I16(2).F32(2.5f);
    b.I16(20);
    PeakHead(b, 289.25f, 0);
    Block(b, {0, 8, 9});
    b.I16(1).F32(4.5f).F32(0).I16(0);
    b.I16(8).I16(2).Raw("sf");
    return b.bytes;
}

TEST(ProjectFileOldLayout, LoadsFixedBlocksAndShortConstraints) {
    Project q;
    q.Constraints[20].Area.UseLimits = kTrue;
    q.Constraints[20].Area.LowLimit = -4;
    RecordingHost host;
    const Status st = LoadProjectBytes(q, host, OldLayoutFile());
    ASSERT_TRUE(st.ok()) << st.message();
    // Blocks cut to 0..PointCount (the curves stored, not recomputed); EndPointAverage 0 read as 1.
    const Region& r = q.Regions[0];
    EXPECT_TRUE(r.BindingEnergy == SingleArray({0, 290, 289, 288}) &&
                r.RangeBE == SingleArray({0, 101, 102, 103}));
    EXPECT_TRUE(r.BackgroundCurve == SingleArray({0, 401, 402, 403}) && r.EndPointAverage == 1);
    // Peak curves cut to 0..RangeCount of their region; no tail.
    const Peak& k = q.Peaks[20];
    EXPECT_TRUE(k.Position == 289.5f && k.Curve.size() == 3u && k.TailScale == 0.0f &&
                k.TailLength == 1.0f);
    EXPECT_TRUE(q.EditPeak.Position == 289.25f && q.EditPeak.Curve == SingleArray({0, 8, 9}));
    // Short constraint groups: any non-zero Linked is true; limits are not stored, so kept.
    const PeakConstraint& c = q.Constraints[20];
    EXPECT_TRUE(c.Area.Linked == kTrue && c.Area.RefPeak == 1 && c.FWHM.IsReference == kTrue);
    EXPECT_TRUE(c.GL.Operation == 2 && c.GL.Argument == 2.5f);
    EXPECT_TRUE(c.Area.UseLimits == kFalse && c.Area.LowLimit == -4.0f);
    EXPECT_EQ(q.Description, "sf");
}

}  // namespace
}  // namespace molvera
