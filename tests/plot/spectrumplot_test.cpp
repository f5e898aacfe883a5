#include "plot/spectrumplot.h"

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
using test::FillRegion;
using test::RecordingCanvas;

// Tick label texts (the unemphasised texts other than the axis title), and the
// positions of the ticks (vertical black lines).
std::vector<std::string> TickLabels(const RecordingCanvas& c) {
    std::vector<std::string> out;
    for (const auto& op : c.Of(CanvasOp::Text))
        if (!op.bold && op.text != "Binding Energy (eV)") out.push_back(op.text);
    return out;
}
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

TEST(PlotRegion, TicksAndLabelsFromTheDataWithTheHighEnergyAtTheLeft) {
    struct Case {
        int n;
        double high, low;
        std::vector<std::string> labels;
    };
    // Below zero the data extents start their maximum at 0: ticks every 2 eV from the
    // first above -10 up to the frame's edge.
    const Case cases[] = {
        {41, 300, 280, {"280.0", "284.0", "288.0", "292.0", "296.0", "300.0"}},
        {31, 288, 285, {"285.0", "285.6", "286.2", "286.8", "287.4", "288.0"}},
        {10, -2, -10, {"-8.0", "-6.0", "-4.0", "-2.0", "0.0"}},
    };
    for (const Case& c : cases) {
        Project p;
        FillRegion(p, c.n, c.high, c.low, 100, 1100);
        RecordingCanvas canvas;
        PlotState state;
        DrawRegion(p, canvas, state);
        EXPECT_EQ(canvas.ops.front().kind, CanvasOp::Clear);
        // A provisional scale, then two rescales from the measured text sizes.
        EXPECT_EQ(canvas.Of(CanvasOp::Scale).size(), 3u);
        EXPECT_GT(canvas.Of(CanvasOp::Scale).back().x1, canvas.Of(CanvasOp::Scale).back().x2);
        EXPECT_EQ(TickLabels(canvas), c.labels);
        const std::vector<double> ticks = TickPositions(canvas);
        ASSERT_EQ(ticks.size(), c.labels.size());
        for (std::size_t k = 0; k < ticks.size(); ++k)
            EXPECT_NEAR(ticks[k], std::stod(c.labels[k]), 1e-9) << c.labels[k];
        // The caption first, bold.
        EXPECT_TRUE(canvas.Of(CanvasOp::Text)[0].bold);
        EXPECT_EQ(canvas.Of(CanvasOp::Text)[0].text, Text20::From("C 1s").Str());
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
    for (auto [slot, value] : {std::pair{7, 20.0f}, {3, 30.0f}}) {
        p.Peaks[slot].InUse = kTrue;
        p.Peaks[slot].Curve.assign(6, value);
    }
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

TEST(PlotFit, NothingWithoutDataNoFitWithoutBackgroundNoPeaksNoPeakCurves) {
    Project p = FittedProject();
    p.Regions[0].HasData = kFalse;
    RecordingCanvas empty;
    PlotState state;
    Redisplay(p, empty, state);
    EXPECT_TRUE(empty.ops.empty());
    p.Regions[0].HasData = kTrue;
    p.Regions[0].HasBackground = kFalse;
    RecordingCanvas spectrum, region;
    Redisplay(p, spectrum, state);
    DrawRegion(p, region, state);
    EXPECT_EQ(spectrum.ops.size(), region.ops.size());

    p.Regions[0].PeakCount = 0;
    RecordingCanvas c;
    DrawFit(p, c);
    ASSERT_EQ(c.Of(CanvasOp::Line).size(), 4u);
    for (const auto& op : c.ops) EXPECT_EQ(op.y2, 10);  // the background alone
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
    const std::string shown[] = {std::string(25, ' '), "X: 285.5 / Y: 1234 ", std::string(25, ' '),
                                 "X: 290 / Y:-3 "};
    for (int k = 0; k < 4; ++k) {
        EXPECT_EQ(texts[k].text, shown[k]);
        EXPECT_TRUE(texts[k].opaque);
        EXPECT_EQ(texts[k].x1, 280.25);
        EXPECT_EQ(texts[k].y1, 1500);
    }
}

// Degenerate data: drawing ends, keeps a usable scale and never produces an endless
// tick run; every line drawn is finite.
TEST(PlotDegenerate, FlatOrEmptySpansAndBadValuesDrawAndEnd) {
    Project p;
    auto expectSane = [&](const char* what) -> RecordingCanvas {
        RecordingCanvas c;
        PlotState state;
        Redisplay(p, c, state);
        ShowReadout(c, state, 1, 1);
        EXPECT_LT(c.ops.size(), 5000u) << what;
        const auto scales = c.Of(CanvasOp::Scale);
        if (scales.empty()) ADD_FAILURE() << what;
        const CanvasOp s = scales.empty() ? CanvasOp{} : scales.back();
        EXPECT_TRUE(std::isfinite(s.x1) && std::isfinite(s.x2) && s.x1 > s.x2) << what;
        EXPECT_TRUE(std::isfinite(s.y1) && std::isfinite(s.y2) && s.y1 > s.y2) << what;
        EXPECT_LE(TickLabels(c).size(), 60u) << what;
        for (const auto& op : c.Of(CanvasOp::Line))
            EXPECT_TRUE(std::isfinite(op.x1 + op.y1 + op.x2 + op.y2)) << what;
        return c;
    };
    FillRegion(p, 10, 285, 285, 0, 100);
    expectSane("all energies equal");
    EXPECT_NEAR(RegionExtents(p.Regions[0]).dBE, 1, 1e-12);
    FillRegion(p, 1, 285, 285, 7, 7);
    EXPECT_EQ(expectSane("one point").Of(CanvasOp::Point).size(), 1u);  // still shown
    FillRegion(p, 10, 1e30, 1e30 - 1e24, 0, 1e30);
    expectSane("huge values");
    FillRegion(p, 10, 290, 280, 0, 100);
    p.Regions[0].RawIntensity[4] = std::numeric_limits<float>::quiet_NaN();
    p.Regions[0].BindingEnergy[6] = std::numeric_limits<float>::infinity();
    p.Regions[0].MaxBE = std::numeric_limits<float>::quiet_NaN();
    expectSane("a NaN and an infinity");
    FillRegion(p, 10, 290, 280, 0, 100);
    p.Regions[0].PointCount = 5000;  // more than the arrays hold
    p.Regions[0].HasBackground = kTrue;
    p.Regions[0].RangeCount = 300;
    p.Regions[0].PeakCount = 10;
    p.Regions[0].PeakIndex.fill(-4);
    expectSane("counts beyond the arrays");
}

}  // namespace
}  // namespace molvera
