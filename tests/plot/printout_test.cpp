#include "plot/printout.h"

#include <string>
#include <tuple>
#include <vector>

#include <gtest/gtest.h>

#include "model/project.h"
#include "plot/recording_canvas.h"
#include "spectral/background.h"

namespace molvera {
namespace {

using test::CanvasOp;
using test::RecordingCanvas;

// Eleven points from highBE to lowBE, intensities 100 .. 1100.
void FillRegion(Project& p, double highBE, double lowBE) {
    test::FillRegion(p, 11, highBE, lowBE, 100, 1100);
    p.Regions[0].Caption = Text20::From("O 1s");
    p.Description = "Sample A";
}

const CanvasOp* FindText(const RecordingCanvas& c, const std::string& text) {
    for (const auto& op : c.ops)
        if (op.kind == CanvasOp::Text && op.text == text) return &op;
    return nullptr;
}

TEST(Printout, PeakTableRowFormats) {
    Project p;
    Peak& peak = p.Peaks[3];
    std::tie(peak.Position, peak.Area, peak.FWHM, peak.PercentGL) =
        std::tuple(284.5f, 12345.6789f, 1.2f, Int16{30});
    EXPECT_EQ(PeakTableCells(p, 3),
              (std::array<std::string, 5>{"3", "284.500eV", "12345.679", "1.200eV", "30%"}));
    std::tie(peak.Position, peak.Area, peak.FWHM, peak.PercentGL) =
        std::tuple(0.25f, 0.0f, 0.0004f, Int16{100});
    EXPECT_EQ(PeakTableCells(p, 3),
              (std::array<std::string, 5>{"3", "0.250eV", "0.000", "0.000eV", "100%"}));
}

TEST(Printout, DescriptionAboveCaptionAndNoTableUnlessAsked) {
    Project p;
    FillRegion(p, 300, 280);
    RecordingCanvas c;
    DrawPrintout(p, c, false);

    const CanvasOp* description = FindText(c, "Sample A");
    const CanvasOp* caption = FindText(c, Text20::From("O 1s").Str());
    ASSERT_TRUE(description && caption);
    EXPECT_TRUE(description->bold && caption->bold);
    EXPECT_GT(description->y1, caption->y1);  // caption on the line below
    EXPECT_EQ(FindText(c, "Peak"), nullptr);
}

TEST(Printout, TicksStopAtOnePointTwoPerMille) {
    Project p;
    FillRegion(p, 100.5, 95.5);  // step 1; 101 / 100.5 = 1.005 passes the screen's 1.01 only
    RecordingCanvas c;
    DrawPrintout(p, c, false);
    EXPECT_NE(FindText(c, "100.0"), nullptr);
    EXPECT_EQ(FindText(c, "101.0"), nullptr);
    EXPECT_NE(FindText(c, "96.0"), nullptr);
}

TEST(Printout, TableWithHeaderOnlyWithoutBackgroundAndRowsInPeakOrder) {
    Project p;
    FillRegion(p, 300, 280);
    RecordingCanvas c;
    DrawPrintout(p, c, true);
    ASSERT_NE(FindText(c, "Peak"), nullptr);
    EXPECT_TRUE(FindText(c, "Peak")->bold);
    for (const char* h : {"Position", "Area", "FWHM", "%GL"})
        EXPECT_NE(FindText(c, h), nullptr) << h;
    // Nothing after the header row: the last text drawn is "%GL".
    EXPECT_EQ(c.Of(CanvasOp::Text).back().text, "%GL");

    Region& r = p.Regions[0];
    r.HasBackground = kTrue;
    r.RangeCount = 3;
    r.RangeBE = {0, 290, 289, 288};
    r.BackgroundCurve.assign(4, 1.0f);
    r.PeakSumCurve.assign(4, 2.0f);
    r.PeakCount = 2;
    r.PeakIndex[0] = 12;
    r.PeakIndex[1] = 4;
    for (int s : {12, 4}) {
        p.Peaks[s].InUse = kTrue;
        p.Peaks[s].Curve.assign(4, 1.5f);
        p.Peaks[s].Position = static_cast<float>(s);
    }
    RecordingCanvas t;
    DrawPrintout(p, t, true);
    const CanvasOp* first = FindText(t, "12");
    const CanvasOp* second = FindText(t, "4");
    ASSERT_TRUE(first && second && FindText(t, "12.000eV"));
    EXPECT_GT(first->y1, second->y1);  // rows in the region's peak order
    EXPECT_FALSE(first->bold);
}

}  // namespace
}  // namespace molvera
