#include "plot/spectrumplot.h"

#include <cmath>
#include <string>
#include <tuple>
#include <vector>

#include <gtest/gtest.h>

#include "model/project.h"
#include "plot/recording_canvas.h"

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
        const auto scales = canvas.Of(CanvasOp::Scale);
        EXPECT_TRUE(scales.size() == 3 && scales.back().x1 > scales.back().x2);
        EXPECT_EQ(TickLabels(canvas), c.labels);
        const std::vector<double> ticks = TickPositions(canvas);
        ASSERT_EQ(ticks.size(), c.labels.size());
        for (std::size_t k = 0; k < ticks.size(); ++k)
            EXPECT_NEAR(ticks[k], std::stod(c.labels[k]), 1e-9) << c.labels[k];
        const CanvasOp caption = canvas.Of(CanvasOp::Text)[0];  // first, bold
        EXPECT_TRUE(caption.bold && caption.text == Text20::From("C 1s").Str());
    }
}

// Spectrum, background 10, peaks 20 (slot 7) and 30 (slot 3), envelope 40, then the
// selected peak in red: each curve known by its value.
TEST(PlotFit, CurvesInOrderSpectrumBackgroundPeaksEnvelopeHighlight) {
    Project p;
    FillRegion(p, 21, 290, 280, 0, 100);
    Region& r = p.Regions[0];
    std::tie(r.HasBackground, r.RangeCount, r.PeakCount) = std::tuple(kTrue, 5, 2);
    r.RangeBE = {0, 288, 287, 286, 285, 284};
    r.BackgroundCurve.assign(6, 10.0f);
    r.PeakSumCurve.assign(6, 40.0f);
    r.PeakIndex = {7, 3};
    for (auto [slot, value] : {std::pair{7, 20.0f}, {3, 30.0f}}) {
        p.Peaks[slot].InUse = kTrue;
        p.Peaks[slot].Curve.assign(6, value);
    }
    RecordingCanvas c;
    PlotState state;
    Redisplay(p, c, state);
    DrawSelectedPeak(p, 3, c);
    // The curve segments as runs of (colour, width, y) in drawing order, with their length.
    using Run = std::pair<std::tuple<Rgb, int, double>, int>;
    std::vector<Run> runs;
    for (const auto& op : c.Of(CanvasOp::Line)) {
        if (op.x1 == op.x2 || (op.colour == kBlack && op.y1 == 0)) continue;  // ticks, axis
        const std::tuple key(op.colour, op.width, op.colour == kBlue ? -1 : op.y2);
        if (!runs.empty() && runs.back().first == key)
            ++runs.back().second;
        else
            runs.emplace_back(key, 1);
    }
    EXPECT_EQ(runs, (std::vector<Run>{{{kBlue, 2, -1}, 20},
                                      {{kBlack, 2, 10}, 4},
                                      {{kBlack, 1, 20}, 4},
                                      {{kBlack, 1, 30}, 4},
                                      {{kBlack, 2, 40}, 4},
                                      {{kRed, 2, 30}, 4}}));
}

}  // namespace
}  // namespace molvera
