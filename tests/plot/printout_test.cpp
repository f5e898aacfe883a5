#include "plot/printout.h"

#include <string>
#include <tuple>

#include <gtest/gtest.h>

#include "model/project.h"
#include "plot/recording_canvas.h"

namespace molvera {
namespace {

using test::CanvasOp;
using test::RecordingCanvas;

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
}

TEST(Printout, TicksStopAtOnePointTwoPerMille) {
    Project p;
    test::FillRegion(p, 11, 100.5, 95.5, 100, 1100);  // 101 / 100.5 passes the screen's 1.01
    RecordingCanvas c;
    DrawPrintout(p, c, false);
    EXPECT_TRUE(FindText(c, "100.0") && !FindText(c, "101.0") && FindText(c, "96.0"));
}

TEST(Printout, TableWithHeaderOnlyWithoutBackgroundAndRowsInPeakOrder) {
    Project p;
    test::FillRegion(p, 11, 300, 280, 100, 1100);
    RecordingCanvas c;
    DrawPrintout(p, c, true);
    ASSERT_NE(FindText(c, "Peak"), nullptr);
    EXPECT_TRUE(FindText(c, "Peak")->bold);
    for (const char* h : {"Position", "Area", "FWHM", "%GL"})
        EXPECT_NE(FindText(c, h), nullptr) << h;
    EXPECT_EQ(c.Of(CanvasOp::Text).back().text, "%GL");  // nothing after the header row

    Region& r = p.Regions[0];
    std::tie(r.HasBackground, r.RangeCount, r.PeakCount) = std::tuple(kTrue, 3, 2);
    r.RangeBE = {0, 290, 289, 288};
    r.BackgroundCurve.assign(4, 1.0f);
    r.PeakSumCurve.assign(4, 2.0f);
    r.PeakIndex = {12, 4};
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
    // The table lies below the data, above the frame's bottom line: from the header's top
    // to the last row's foot (a text's top-left is its point).
    const double line = t.TextHeight("Peak");
    const double frameBottom = t.Of(CanvasOp::Line)[2].y1;
    EXPECT_LT(FindText(t, "Peak")->y1, r.MinIntensity);
    EXPECT_GT(second->y1 - line, frameBottom);
}

}  // namespace
}  // namespace molvera
