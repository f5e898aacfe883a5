#include "plot/spectrumplot.h"

#include <array>
#include <cmath>
#include <limits>
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

using test::FillRegion;

// Tick label texts: the unemphasised texts other than the axis title.
std::vector<std::string> TickLabels(const RecordingCanvas& c) {
    std::vector<std::string> out;
    for (const auto& op : c.Of(CanvasOp::Text))
        if (!op.bold && op.text != "Binding Energy (eV)") out.push_back(op.text);
    return out;
}

// Vertical black lines: the ticks.
std::vector<double> TickPositions(const RecordingCanvas& c) {
    std::vector<double> out;
    for (const auto& op : c.Of(CanvasOp::Line))
        if (op.x1 == op.x2 && op.colour == kBlack) out.push_back(op.x1);
    return out;
}

TEST(PlotTicks, StepAndFirstTick) {
    // The step is a fifth of the span cut to its first non-zero decimal.
    const std::pair<double, double> steps[] = {{20, 4},     {3, 0.6}, {0.07, 0.01},
                                               {24.4, 4},  // floor(4.98)
                                               {24.6, 5},  // floor(4.92 + 0.1)
                                               {1000, 200}, {0, 1},   {std::nan(""), 1}};
    for (const auto& [span, step] : steps) EXPECT_NEAR(TickStep(span), step, 1e-12) << span;
    EXPECT_GT(TickStep(1e-30), 0);  // beyond every decade: a fifth of the span
    // The first tick is the smallest multiple not below the minimum, strictly above
    // it at or below zero.
    const std::array<double, 3> firsts[] = {{280, 4, 280},       {281, 4, 284}, {285, 0.6, 285},
                                            {285.1, 0.6, 285.6}, {0, 0.6, 0},   {-1, 0.4, -0.8},
                                            {-0.8, 0.4, -0.4},   {-10, 1, -9}};
    for (const auto& [min, step, first] : firsts)
        EXPECT_NEAR(FirstTick(min, step), first, 1e-9) << min << " " << step;
}

TEST(PlotRegion, Region280To300HasTicksEvery4eVWith300AtTheLeft) {
    Project p;
    FillRegion(p, 41, 300, 280, 100, 1100);
    RecordingCanvas c;
    PlotState state;
    DrawRegion(p, c, state);

    ASSERT_FALSE(c.ops.empty());
    EXPECT_EQ(c.ops.front().kind, CanvasOp::Clear);
    const auto scales = c.Of(CanvasOp::Scale);
    ASSERT_EQ(scales.size(), 3u);  // provisional, then two rescales from measured text sizes
    EXPECT_GT(scales[2].x1, scales[2].x2);  // high binding energy on the left
    EXPECT_EQ(TickLabels(c),
              (std::vector<std::string>{"280.0", "284.0", "288.0", "292.0", "296.0", "300.0"}));
    EXPECT_EQ(TickPositions(c), (std::vector<double>{280, 284, 288, 292, 296, 300}));

    // Caption first, bold.
    const auto texts = c.Of(CanvasOp::Text);
    EXPECT_TRUE(texts[0].bold);
    EXPECT_EQ(texts[0].text, Text20::From("C 1s").Str());
}

TEST(PlotRegion, ThreeEvRegionHasTicksEvery06eV) {
    Project p;
    FillRegion(p, 31, 288, 285, 0, 50);
    RecordingCanvas c;
    PlotState state;
    DrawRegion(p, c, state);
    EXPECT_EQ(TickLabels(c),
              (std::vector<std::string>{"285.0", "285.6", "286.2", "286.8", "287.4", "288.0"}));
    const auto ticks = TickPositions(c);
    ASSERT_EQ(ticks.size(), 6u);
    for (std::size_t k = 1; k < ticks.size(); ++k) EXPECT_NEAR(ticks[k] - ticks[k - 1], 0.6, 1e-9);
}

TEST(PlotRedisplay, NothingWithoutDataSpectrumOnlyWithoutBackground) {
    Project p;
    RecordingCanvas empty;
    PlotState state;
    Redisplay(p, empty, state);
    EXPECT_TRUE(empty.ops.empty());

    FillRegion(p, 11, 290, 280, 0, 100);
    p.Regions[0].PeakSumCurve.assign(12, 5.0f);  // present but not to be drawn
    RecordingCanvas c;
    Redisplay(p, c, state);
    for (const auto& op : c.Of(CanvasOp::Line)) {
        if (op.colour == kBlack) {
            EXPECT_TRUE(op.x1 == op.x2 || op.y1 == op.y2) << "only axis and ticks";
        }
    }
}

// Background 10, peaks 20 (slot 7) and 30 (slot 3), envelope 40: each curve identified by its
// value.
Project FittedProject() {
    Project p;
    FillRegion(p, 21, 290, 280, 0, 100);
    Region& r = p.Regions[0];
    r.HasBackground = kTrue;
    r.RangeCount = 5;
    r.RangeBE = {0, 288, 287, 286, 285, 284};
    r.BackgroundCurve.assign(6, 10.0f);
    r.PeakSumCurve.assign(6, 40.0f);
    r.PeakCount = 2;
    r.PeakIndex[0] = 7;
    r.PeakIndex[1] = 3;
    p.Peaks[7].InUse = kTrue;
    p.Peaks[7].Curve.assign(6, 20.0f);
    p.Peaks[3].InUse = kTrue;
    p.Peaks[3].Curve.assign(6, 30.0f);
    return p;
}

TEST(PlotFit, CurvesInOrderSpectrumBackgroundPeaksEnvelopeHighlight) {
    Project p = FittedProject();
    RecordingCanvas c;
    PlotState state;
    Redisplay(p, c, state);
    DrawSelectedPeak(p, 3, c);

    // Collapse the curve segments into (colour, width, y) runs in drawing order.
    struct Run {
        Rgb colour;
        int width;
        double y;
        int segments;
    };
    std::vector<Run> runs;
    for (const auto& op : c.Of(CanvasOp::Line)) {
        if (op.x1 == op.x2 || (op.colour == kBlack && op.y1 == 0)) continue;  // ticks, axis
        const double y = op.colour == kBlue ? -1 : op.y2;
        if (!runs.empty() && runs.back().colour == op.colour && runs.back().y == y &&
            runs.back().width == op.width)
            ++runs.back().segments;
        else
            runs.push_back({op.colour, op.width, y, 1});
    }
    ASSERT_EQ(runs.size(), 6u);
    EXPECT_EQ(runs[0].colour, kBlue);
    EXPECT_EQ(runs[0].segments, 20);
    const double ys[] = {10, 20, 30, 40, 30};
    const int widths[] = {2, 1, 1, 2, 2};
    for (int k = 1; k < 6; ++k) {
        EXPECT_EQ(runs[k].y, ys[k - 1]) << k;
        EXPECT_EQ(runs[k].width, widths[k - 1]) << k;
        EXPECT_EQ(runs[k].segments, 4) << k;  // RangeCount 5 points
        EXPECT_EQ(runs[k].colour, k == 5 ? kRed : kBlack) << k;
    }
}

TEST(PlotFit, NoPeaksMeansBackgroundOnlyAndForeignPeakIsNotHighlighted) {
    Project p = FittedProject();
    p.Regions[0].PeakCount = 0;
    RecordingCanvas c;
    DrawFit(p, c);
    ASSERT_EQ(c.Of(CanvasOp::Line).size(), 4u);
    for (const auto& op : c.ops) EXPECT_EQ(op.y2, 10);

    RecordingCanvas h;
    DrawSelectedPeak(p, 3, h);  // slot 3 is no longer a peak of the region
    DrawSelectedPeak(p, -1, h);
    DrawSelectedPeak(p, 99, h);
    EXPECT_TRUE(h.ops.empty());
}

TEST(PlotReadout, ErasesWith25BlanksThenPrintsInPlace) {
    RecordingCanvas c;
    PlotState state{280.25f, 1500};
    ShowReadout(c, state, 285.5, 1234);
    ShowReadout(c, state, 290, -3);
    const auto texts = c.Of(CanvasOp::Text);
    ASSERT_EQ(texts.size(), 4u);
    for (const auto& t : texts) {
        EXPECT_TRUE(t.opaque);
        EXPECT_EQ(t.x1, 280.25);
        EXPECT_EQ(t.y1, 1500);
    }
    EXPECT_EQ(texts[0].text, std::string(25, ' '));
    EXPECT_EQ(texts[1].text, "X: 285.5 / Y: 1234 ");
    EXPECT_EQ(texts[2].text, std::string(25, ' '));
    EXPECT_EQ(texts[3].text, "X: 290 / Y:-3 ");
}

// Degenerate data: drawing must end, keep a usable scale and never produce an endless tick run.
void ExpectSaneDraw(Project& p, const char* what) {
    UpdateDataExtents(p.Regions[0]);
    RecordingCanvas c;
    PlotState state;
    Redisplay(p, c, state);
    ShowReadout(c, state, 1, 1);
    EXPECT_LT(c.ops.size(), 5000u) << what;
    const auto scales = c.Of(CanvasOp::Scale);
    ASSERT_FALSE(scales.empty()) << what;
    const auto& s = scales.back();
    EXPECT_TRUE(std::isfinite(s.x1) && std::isfinite(s.x2) && s.x1 > s.x2) << what;
    EXPECT_TRUE(std::isfinite(s.y1) && std::isfinite(s.y2) && s.y1 > s.y2) << what;
    EXPECT_LE(TickLabels(c).size(), 60u) << what;
}

TEST(PlotDegenerate, FlatOrEmptySpansAndBadValuesDrawAndEnd) {
    Project p;
    FillRegion(p, 10, 285, 285, 0, 100);
    ExpectSaneDraw(p, "all energies equal");
    EXPECT_NEAR(RegionExtents(p.Regions[0]).dBE, 1, 1e-12);

    FillRegion(p, 1, 285, 285, 7, 7);
    ExpectSaneDraw(p, "one point");
    RecordingCanvas one;
    PlotState s;
    DrawRegion(p, one, s);
    EXPECT_EQ(one.Of(CanvasOp::Point).size(), 1u);  // a lone point is still shown

    // Below zero the data extents start their maximum at 0: ticks every 2 eV from the
    // first above -10 up to the frame's edge.
    FillRegion(p, 10, -2, -10, 0, 100);
    ExpectSaneDraw(p, "energies below zero");
    RecordingCanvas below;
    DrawRegion(p, below, s);
    EXPECT_EQ(TickLabels(below), (std::vector<std::string>{"-8.0", "-6.0", "-4.0", "-2.0", "0.0"}));

    FillRegion(p, 10, 1e30, 1e30 - 1e24, 0, 1e30);
    ExpectSaneDraw(p, "huge values");

    FillRegion(p, 10, 290, 280, 0, 100);
    p.Regions[0].RawIntensity[4] = std::numeric_limits<float>::quiet_NaN();
    p.Regions[0].BindingEnergy[6] = std::numeric_limits<float>::infinity();
    p.Regions[0].MaxBE = std::numeric_limits<float>::quiet_NaN();
    {
        RecordingCanvas c;
        PlotState s;
        Redisplay(p, c, s);
        for (const auto& op : c.Of(CanvasOp::Line))
            EXPECT_TRUE(std::isfinite(op.x1) && std::isfinite(op.y1) && std::isfinite(op.x2) &&
                        std::isfinite(op.y2));
        EXPECT_LE(TickLabels(c).size(), 60u);
    }

    FillRegion(p, 10, 290, 280, 0, 100);
    p.Regions[0].PointCount = 5000;  // more than the arrays hold
    p.Regions[0].HasBackground = kTrue;
    p.Regions[0].RangeCount = 300;
    p.Regions[0].PeakCount = 10;
    p.Regions[0].PeakIndex.fill(-4);
    ExpectSaneDraw(p, "counts beyond the arrays");
}

}  // namespace
}  // namespace molvera
