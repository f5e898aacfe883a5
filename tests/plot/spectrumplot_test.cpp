// The plot's arithmetic (ticks, autoscale, zoom and pan, residual) and its layout on a
// recording canvas.
#include "plot/spectrumplot.h"

#include <algorithm>
#include <cmath>
#include <string>
#include <tuple>
#include <vector>

#include <gtest/gtest.h>

#include "model/project.h"
#include "plot/printout.h"
#include "plot/recording_canvas.h"

namespace molvera {
namespace {

using test::CanvasOp;
using test::RecordingCanvas;

TEST(PlotTicks, RoundStepsOverHandWorkedRanges) {
    // span / maxTicks rounded up to 1, 2 or 5 x 10^n.
    const struct {
        double a, b;
        int max;
        std::vector<double> ticks;
    } cases[] = {
        {0, 9300, 8, {0, 2000, 4000, 6000, 8000}},                // 1162.5 -> 2000
        {298.7, 263.2, 10, {265, 270, 275, 280, 285, 290, 295}},  // 3.55 -> 5
        {0.013, 0.057, 5, {0.02, 0.03, 0.04, 0.05}},              // 0.0088 -> 0.01
        {-1.1, 1.1, 4, {-1, 0, 1}},                               // 0.55 -> 1
        {-7, 13, 2, {0, 10}},                                     // 10 -> 10
    };
    for (const auto& c : cases) {
        const std::vector<double> t = Ticks(c.a, c.b, c.max);
        ASSERT_EQ(t.size(), c.ticks.size()) << c.a << ".." << c.b;
        for (std::size_t k = 0; k < t.size(); ++k) EXPECT_NEAR(t[k], c.ticks[k], 1e-12);
    }
    EXPECT_EQ(NiceStep(0, 5), 1);
    EXPECT_EQ(NiceStep(std::nan(""), 5), 1);
    EXPECT_EQ(TickLabel(285, 5), "285");
    EXPECT_EQ(TickLabel(0.25, 0.05), "0.25");
    EXPECT_EQ(TickLabel(-1e-17, 0.1), "0.0");
}

// Region 0: 11 points 290..280 eV, data 100..200, a background over points 3..5 and one
// peak (slot 4) whose curve reaches 500, above the data.
Project FittedRegion() {
    Project p;
    test::FillRegion(p, 11, 290, 280, 100, 200);
    Region& r = p.Regions[0];
    std::tie(r.HasBackground, r.RangeCount, r.PeakCount) = std::tuple(kTrue, 3, 1);
    r.RangeBE = {0, 288, 287, 286};
    r.RangeIntensity = {0, 100, 400, 0};
    r.BackgroundCurve = {0, 50, 60, 70};
    r.PeakSumCurve = {0, 90, 404, 75};
    r.PeakIndex[0] = 4;
    p.Peaks[4].InUse = kTrue;
    p.Peaks[4].Curve = {0, 80, 500, 72};
    p.Peaks[4].Position = 287;
    return p;
}

TEST(PlotView, AutoscaleHoldsEveryCurveWithAMarginZoomAndPanGoBack) {
    const Project p = FittedRegion();
    // Energies 280..290 and intensities 50 (background)..500 (peak), a twentieth beside.
    const PlotView v = AutoView(p);
    EXPECT_DOUBLE_EQ(v.beLeft, 290.5);
    EXPECT_DOUBLE_EQ(v.beRight, 279.5);
    EXPECT_DOUBLE_EQ(v.iLow, 50 - 22.5);
    EXPECT_DOUBLE_EQ(v.iHigh, 500 + 22.5);
    EXPECT_EQ(Shown(p, PlotView{}), v);

    // Zoom about a point keeps it; the inverse factor goes back; so does the opposite pan.
    const PlotView z = ZoomAbout(v, 285, 100, 0.5);
    EXPECT_DOUBLE_EQ(z.beLeft, 287.75);
    EXPECT_DOUBLE_EQ(z.iHigh, 311.25);
    const PlotView back = ZoomAbout(z, 285, 100, 2);
    EXPECT_NEAR(back.beLeft, v.beLeft, 1e-9);
    EXPECT_NEAR(back.iLow, v.iLow, 1e-9);
    const PlotView panned = Pan(Pan(v, 3, -40), -3, 40);
    EXPECT_NEAR(panned.beRight, v.beRight, 1e-9);
    EXPECT_NEAR(panned.iHigh, v.iHigh, 1e-9);
    // A dragged rectangle in any corner order; a flat one changes nothing.
    EXPECT_EQ(ZoomTo(v, 282, 300, 286, 100), (PlotView{286, 282, 100, 300}));
    EXPECT_EQ(ZoomTo(v, 282, 300, 286, 300), v);

    // The surface mapping and its inverse.
    const Axes a{{0.1, 0.2, 0.9, 0.8}, v};
    const PlotPoint q = ToPlot(a, SurfaceX(a, 284), SurfaceY(a, 321));
    EXPECT_NEAR(q.be, 284, 1e-9);
    EXPECT_NEAR(q.i, 321, 1e-9);
    EXPECT_DOUBLE_EQ(SurfaceX(a, 290.5), 0.1);  // higher energy on the left
}

TEST(PlotView, ResidualIsDataMinusEnvelopeOrBackground) {
    Project p = FittedRegion();
    const std::vector<double> r = Residuals(p.Current(), false);
    ASSERT_EQ(r.size(), 3u);
    EXPECT_DOUBLE_EQ(r[0], 10);
    EXPECT_DOUBLE_EQ(r[1], -4);
    const std::vector<double> s = Residuals(p.Current(), true);
    EXPECT_DOUBLE_EQ(s[0], 1);      // 10 / sqrt(100)
    EXPECT_DOUBLE_EQ(s[1], -0.2);   // -4 / sqrt(400)
    EXPECT_TRUE(std::isnan(s[2]));  // no data to scale by
    p.Regions[0].PeakCount = 0;
    EXPECT_DOUBLE_EQ(Residuals(p.Current(), false)[1], 340);  // 400 - 60
    p.Regions[0].HasBackground = kFalse;
    EXPECT_TRUE(Residuals(p.Current(), false).empty());
}

TEST(Printout, TableRowsBelowThePlotLegendNamesEveryCurve) {
    Project p = FittedRegion();
    std::tie(p.Peaks[4].Area, p.Peaks[4].FWHM, p.Peaks[4].PercentGL) =
        std::tuple(12345.6789f, 1.2f, Int16{30});
    EXPECT_EQ(PeakTableCells(p, 4),
              (std::array<std::string, 5>{"4", "287.000eV", "12345.679", "1.200eV", "30%"}));
    RecordingCanvas c;
    const PlotLayout l = DrawPrintout(p, c, true);
    ASSERT_TRUE(l.hasResidual);
    EXPECT_FALSE(l.table.Intersects(l.spectrum.area));
    EXPECT_FALSE(l.table.Intersects(l.residual.area));
    EXPECT_GT(l.spectrum.area.y0, l.residual.area.y1);  // residual under the spectrum
    std::vector<std::string> texts;
    for (const auto& op : c.Of(CanvasOp::Text)) {
        texts.push_back(op.text);
        if (op.text == "12345.679" || op.text == "%GL") {  // a text hangs from its point
            EXPECT_LE(op.y1, l.table.y1) << op.text;
        }
    }
    for (const char* t : {"Data", "Background", "Envelope", "Peak 4", "Residual", "Intensity"})
        EXPECT_NE(std::find(texts.begin(), texts.end(), t), texts.end()) << t;
    // The peak's curve (left of the legend) inside its panel: autoscale clipped nothing.
    for (const auto& op : c.Of(CanvasOp::Line))
        if (op.colour == PeakColour(0) && op.x1 < l.spectrum.area.x1) {
            EXPECT_TRUE(l.spectrum.area.Contains(op.x1, op.y1) &&
                        l.spectrum.area.Contains(op.x2, op.y2));
        }
}

}  // namespace
}  // namespace molvera
