#include "plot/printout.h"

#include <string>
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
    peak.Position = 284.5f;
    peak.Area = 12345.6789f;
    peak.FWHM = 1.2f;
    peak.PercentGL = 30;
    EXPECT_EQ(PeakTableCells(p, 3),
              (std::array<std::string, 5>{"3", "284.500eV", "12345.679", "1.200eV", "30%"}));
    peak.Position = 0.25f;
    peak.Area = 0;
    peak.FWHM = 0.0004f;
    peak.PercentGL = 100;
    EXPECT_EQ(PeakTableCells(p, 3),
              (std::array<std::string, 5>{"3", "0.250eV", "0.000", "0.000eV", "100%"}));
}

TEST(Printout, FrameInsidePageMarginsAndTextsAtTheCorner) {
    Project p;
    FillRegion(p, 300, 280);
    RecordingCanvas c;
    DrawPrintout(p, c, false);

    const auto scales = c.Of(CanvasOp::Scale);
    ASSERT_EQ(scales.size(), 3u);
    // Provisional box 301..279 x 1150..50, widened by an eighth and a seventh.
    EXPECT_DOUBLE_EQ(scales[0].x1, 301 + 22.0 / 8);
    EXPECT_DOUBLE_EQ(scales[0].x2, 279 - 22.0 / 8);
    EXPECT_DOUBLE_EQ(scales[0].y1, 1150 + 1100.0 / 7);

    // Four frame lines form the plot box; the final scale is that box plus the margins.
    const auto lines = c.Of(CanvasOp::Line);
    ASSERT_GE(lines.size(), 4u);
    const double left = lines[0].x1, top = lines[0].y1, right = lines[0].x2;
    const double bottom = lines[1].y2;
    EXPECT_EQ(lines[0].y2, top);
    EXPECT_EQ(lines[3].x2, left);
    EXPECT_EQ(lines[3].y2, top);
    EXPECT_NEAR(scales[2].x1, left + (left - right) / 8, 1e-9);
    EXPECT_NEAR(scales[2].x2, right - (left - right) / 8, 1e-9);
    EXPECT_NEAR(scales[2].y2, bottom - (top - bottom) / 7, 1e-9);
    // The box itself follows the screen formulas with w and h of the page scale.
    const double w = 32.0 / 800 * (scales[1].x1 - scales[1].x2);
    EXPECT_NEAR(left, 300 + 0.5 + w / 2, 1e-9);

    const CanvasOp* description = FindText(c, "Sample A");
    const CanvasOp* caption = FindText(c, Text20::From("O 1s").Str());
    ASSERT_TRUE(description && caption);
    EXPECT_TRUE(description->bold && caption->bold);
    EXPECT_NEAR(description->x1, 300.5, 1e-9);
    EXPECT_EQ(caption->x1, description->x1);
    EXPECT_GT(description->y1, caption->y1);  // caption on the line below
    EXPECT_EQ(FindText(c, "Peak"), nullptr);

    // The spectrum starts with a point at the first data point.
    const auto points = c.Of(CanvasOp::Point);
    ASSERT_EQ(points.size(), 1u);
    EXPECT_EQ(points[0].x1, 300);
    EXPECT_EQ(points[0].colour, kBlue);
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
    const CanvasOp* peakHeader = FindText(c, "Peak");
    ASSERT_NE(peakHeader, nullptr);
    EXPECT_TRUE(peakHeader->bold);
    for (const char* h : {"Position", "Area", "FWHM", "%GL"}) EXPECT_NE(FindText(c, h), nullptr) << h;
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
    const auto scales = t.Of(CanvasOp::Scale);
    const double w = 32.0 / 800 * (scales.back().x1 - scales.back().x2);
    const double h = 16.0 / 600 * (scales.back().y1 - scales.back().y2);
    const double x0 = 300.5, y0 = 1100 + 3 * h;
    const CanvasOp* head = FindText(t, "Position");
    ASSERT_NE(head, nullptr);
    EXPECT_NEAR(head->x1, x0 - 3.2 * w, 1e-9);
    EXPECT_NEAR(head->y1, y0 - 2 * h, 1e-9);
    const CanvasOp* first = FindText(t, "12");
    const CanvasOp* second = FindText(t, "4");
    const CanvasOp* position = FindText(t, "12.000eV");
    ASSERT_TRUE(first && second && position);
    EXPECT_NEAR(first->y1, y0 - 3 * h, 1e-9);
    EXPECT_NEAR(second->y1, y0 - 4 * h, 1e-9);
    EXPECT_NEAR(position->x1, x0 - 3 * w, 1e-9);
    EXPECT_FALSE(first->bold);
}

}  // namespace
}  // namespace molvera
