#include "plot/spectrumplot.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <vector>

#include "base/limits.h"
#include "base/numtext.h"

namespace molvera {

namespace {

// Orange, sky blue, bluish green, vermillion, reddish purple, yellow (darkened to show
// on white).
constexpr Rgb kPeakPalette[] = {{230, 159, 0}, {86, 180, 233},  {0, 158, 115},
                                {213, 94, 0},  {204, 121, 167}, {170, 150, 0}};

int DrawnPeakCount(const Region& region) {
    return std::clamp<int>(region.PeakCount, 0, kMaxPeaksPerRegion);
}

// The slot at position k of the region's peak list, or -1 when it is out of range.
int PeakSlotAt(const Region& region, int k) {
    const int slot = region.PeakIndex[static_cast<std::size_t>(k)];
    return slot >= 0 && slot < kPeakSlots ? slot : -1;
}

bool HasResidual(const Region& region) {
    return IsSet(region.HasData) && IsSet(region.HasBackground) && region.RangeCount > 1;
}

// The residual panel's view: the spectrum's energies, intensity symmetric about 0 and
// holding every residual in those energies.
PlotView ResidualView(const Region& region, const PlotView& shown, const std::vector<double>& res) {
    const double lo = std::min(shown.beLeft, shown.beRight);
    const double hi = std::max(shown.beLeft, shown.beRight);
    double m = 0;
    for (std::size_t j = 0; j < res.size(); ++j) {
        const double be = region.RangeBE[static_cast<int>(j) + 1];
        if (be >= lo && be <= hi && std::isfinite(res[j])) m = std::max(m, std::abs(res[j]));
    }
    if (!(m > 0) || !std::isfinite(m)) m = 1;
    return {shown.beLeft, shown.beRight, -1.1 * m, 1.1 * m};
}

// Ticks that fit in `length` (a fraction of the surface) with `room` per label.
int TickCount(double length, double room) {
    return std::clamp(static_cast<int>(length / std::max(room, 1e-9)), 2, 10);
}

struct Layout {
    PlotLayout out;
    std::vector<double> xTicks, yTicks, rTicks;
    double xStep = 1, yStep = 1, rStep = 1;
    double legendX = 0;
    std::vector<double> residual;  // the residual panel's values
    SurfaceRect frame;             // the options' frame less a character's margin
};

double WidestLabel(Canvas& canvas, const std::vector<double>& ticks, double step) {
    double w = 0;
    for (double t : ticks) w = std::max(w, canvas.TextWidth(TickLabel(t, step)));
    return w;
}

// A fixed-width text without its trailing blanks.
std::string Trimmed(const Text20& text) {
    std::string s = text.Str();
    s.erase(s.find_last_not_of(' ') + 1);
    return s;
}

std::string PeakName(const Project& project, int slot) {
    const std::string label = Trimmed(project.Peaks[static_cast<std::size_t>(slot)].Label);
    return "Peak " + std::to_string(slot) + (label.empty() ? "" : " " + label);
}

// The legend's entries: text, colour, dashed.
struct LegendEntry {
    std::string text;
    Rgb colour;
    bool dashed = false;
    int slot = -1;
};

std::vector<LegendEntry> Legend(const Project& project) {
    const Region& r = project.Current();
    std::vector<LegendEntry> entries{{"Data", kDataColour}};
    if (!IsSet(r.HasBackground)) return entries;
    entries.push_back({"Background", kBackgroundColour, true});
    if (DrawnPeakCount(r) > 0) entries.push_back({"Envelope", kEnvelopeColour});
    for (int k = 0; k < DrawnPeakCount(r); ++k)
        if (const int slot = PeakSlotAt(r, k); slot >= 0)
            entries.push_back({PeakName(project, slot), PeakColour(k), false, slot});
    return entries;
}

Layout Place(const Project& project, Canvas& canvas, const PlotOptions& o) {
    canvas.SetScale(0, 1, 1, 0);
    Layout l;
    PlotLayout& p = l.out;
    const double h = canvas.TextHeight("Sample"), cw = canvas.TextWidth("0");
    l.frame = {o.frame.x0 + cw, o.frame.y0 + h / 3, o.frame.x1 - cw, o.frame.y1 - h / 3};
    const SurfaceRect& f = l.frame;
    p.lineHeight = h;
    p.charWidth = cw;
    const Region& region = project.Current();
    const PlotView shown = Shown(project, o.view);
    p.hasResidual = HasResidual(region);

    // Right: the legend; top: title, caption and read-out, the intensity axis title.
    double legendW = 0;
    for (const auto& e : Legend(project)) legendW = std::max(legendW, canvas.TextWidth(e.text));
    const double x1 = f.x1 - legendW - 5 * cw;
    l.legendX = x1 + 1.5 * cw;
    const double y1 = f.y1 - ((o.title.empty() ? 0 : 1) + 2.3) * h;
    // Bottom: the table, the axis title, the tick labels and the ticks.
    p.table = {f.x0, f.y0, f.x1, f.y0 + o.tableLines * h};
    const double yb = p.table.y1 + 2.5 * h;
    const double total = std::max(y1 - yb, 1e-6);
    const double rh = p.hasResidual ? 0.22 * total : 0;
    const double gap = p.hasResidual ? 0.6 * h : 0;

    p.spectrum.view = shown;
    l.residual = Residuals(region, o.scaledResidual);
    p.residual.view = ResidualView(region, shown, l.residual);
    const double ys0 = yb + rh + gap;
    l.yTicks = Ticks(shown.iLow, shown.iHigh, TickCount(y1 - ys0, 2.5 * h));
    l.yStep = NiceStep(shown.iHigh - shown.iLow, TickCount(y1 - ys0, 2.5 * h));
    // The residual's ticks: 0 and one round step each way, inside the panel.
    PlotView& rv = p.residual.view;
    l.rStep = NiceStep(rv.iHigh - rv.iLow, 4);
    rv.iHigh = std::max(rv.iHigh, 1.05 * l.rStep);
    rv.iLow = -rv.iHigh;
    l.rTicks = {-l.rStep, 0, l.rStep};
    double labelW = WidestLabel(canvas, l.yTicks, l.yStep);
    if (p.hasResidual) labelW = std::max(labelW, WidestLabel(canvas, l.rTicks, l.rStep));
    const double x0 = f.x0 + labelW + 1.5 * cw;

    p.spectrum.area = {x0, ys0, std::max(x1, x0 + 1e-6), std::max(y1, ys0 + 1e-6)};
    p.residual.area = {x0, yb, p.spectrum.area.x1, yb + rh};
    const double span = std::abs(shown.beLeft - shown.beRight);
    const int xCount = TickCount(p.spectrum.area.x1 - x0, canvas.TextWidth("0000.0") + 2 * cw);
    l.xTicks = Ticks(shown.beRight, shown.beLeft, xCount);
    l.xStep = NiceStep(span, xCount);
    return l;
}

// A curve over the energies `xs`, mapped into `axes`; non-finite points break the line.
template <typename Values>
void Curve(Canvas& canvas, const Axes& axes, const SingleArray& xs, const Values& ys, int first,
           int count, Rgb colour) {
    const int n =
        std::min({count, static_cast<int>(xs.size()) - 1, static_cast<int>(ys.size()) - 1 + first});
    if (n < 2) return;
    const double sx = (axes.area.x1 - axes.area.x0) / (axes.view.beRight - axes.view.beLeft);
    const double sy = (axes.area.y1 - axes.area.y0) / (axes.view.iHigh - axes.view.iLow);
    std::vector<double> px(static_cast<std::size_t>(n)), py(static_cast<std::size_t>(n));
    for (int j = 1; j <= n; ++j) {
        px[static_cast<std::size_t>(j - 1)] = axes.area.x0 + (xs[j] - axes.view.beLeft) * sx;
        py[static_cast<std::size_t>(j - 1)] =
            axes.area.y0 + (static_cast<double>(ys[j - first]) - axes.view.iLow) * sy;
    }
    canvas.Polyline(px, py, colour);
}

void Box(Canvas& canvas, const SurfaceRect& a) {
    canvas.Line(a.x0, a.y0, a.x1, a.y0, kBlack);
    canvas.LineTo(a.x1, a.y1, kBlack);
    canvas.LineTo(a.x0, a.y1, kBlack);
    canvas.LineTo(a.x0, a.y0, kBlack);
}

// The y ticks of a panel with their labels right-aligned left of it.
void YTicks(Canvas& canvas, const Axes& a, const std::vector<double>& ticks, double step, double h,
            double cw) {
    for (double t : ticks) {
        const double y = SurfaceY(a, t);
        canvas.Line(a.area.x0, y, a.area.x0 + 0.6 * cw, y, kBlack);
        const std::string label = TickLabel(t, step);
        canvas.MoveTo(a.area.x0 - 0.5 * cw - canvas.TextWidth(label), y + h / 2);
        canvas.Print(label);
    }
}

void DrawCurves(const Project& project, Canvas& canvas, const Axes& a, int selected) {
    const Region& r = project.Current();
    canvas.SetLineWidth(1);
    Curve(canvas, a, r.BindingEnergy, r.RawIntensity, 0, r.PointCount, kDataColour);
    if (!IsSet(r.HasBackground)) return;
    // The envelope under the peaks, so that a peak that is the whole envelope still shows;
    // the background over the peaks, whose tails run along it.
    canvas.SetLineWidth(2);
    if (DrawnPeakCount(r) > 0)
        Curve(canvas, a, r.RangeBE, r.PeakSumCurve, 0, r.RangeCount, kEnvelopeColour);
    for (int k = 0; k < DrawnPeakCount(r); ++k) {
        const int slot = PeakSlotAt(r, k);
        if (slot < 0) continue;
        canvas.SetLineWidth(slot == selected ? 3 : 1);
        Curve(canvas, a, r.RangeBE, project.Peaks[static_cast<std::size_t>(slot)].Curve, 0,
              r.RangeCount, PeakColour(k));
    }
    // One pixel wide: a wider dashed line costs as much as all the other curves together.
    canvas.SetLineWidth(1);
    canvas.SetLineStyle(LineStyle::Dash);
    Curve(canvas, a, r.RangeBE, r.BackgroundCurve, 0, r.RangeCount, kBackgroundColour);
    canvas.SetLineStyle(LineStyle::Solid);
}

void DrawLegend(const Project& project, Canvas& canvas, const Layout& l, int selected) {
    const double h = l.out.lineHeight, cw = l.out.charWidth;
    double y = l.out.spectrum.area.y1;
    for (const auto& e : Legend(project)) {
        canvas.SetLineWidth(e.slot >= 0 && e.slot == selected ? 3 : e.dashed ? 1 : 2);
        canvas.SetLineStyle(e.dashed ? LineStyle::Dash : LineStyle::Solid);
        canvas.Line(l.legendX, y - h / 2, l.legendX + 2.5 * cw, y - h / 2, e.colour);
        canvas.SetLineStyle(LineStyle::Solid);
        canvas.MoveTo(l.legendX + 3.2 * cw, y);
        canvas.SetBold(e.slot >= 0 && e.slot == selected);
        canvas.Print(e.text);
        canvas.SetBold(false);
        y -= h;
    }
    canvas.SetLineWidth(1);
}

}  // namespace

Rgb PeakColour(int k) { return kPeakPalette[static_cast<std::size_t>(std::abs(k) % 6)]; }

std::string TickLabel(double value, double step) {
    const int decimals =
        step > 0 && step < 1 ? static_cast<int>(std::ceil(-std::log10(step) - 1e-9)) : 0;
    char text[64];
    std::snprintf(text, sizeof text, "%.*f", std::clamp(decimals, 0, 12),
                  std::abs(value) < step * 1e-9 ? 0.0 : value);
    return text;
}

std::string ReadoutText(double be, double i) {
    return "BE " + FormatFixed(be, 2) + " eV   I " + FormatFixed(i, 1);
}

PlotLayout LayoutPlot(const Project& project, Canvas& canvas, const PlotOptions& options) {
    return Place(project, canvas, options).out;
}

PlotLayout DrawPlot(const Project& project, Canvas& canvas, const PlotOptions& o) {
    const Region& region = project.Current();
    canvas.Clear();
    canvas.SetLineStyle(LineStyle::Solid);
    canvas.SetLineWidth(1);
    const Layout l = Place(project, canvas, o);
    const PlotLayout& p = l.out;
    const double h = p.lineHeight, cw = p.charWidth;
    const Axes& s = p.spectrum;

    double y = l.frame.y1;
    canvas.SetBold(true);
    if (!o.title.empty()) {
        canvas.MoveTo(l.frame.x0, y);
        canvas.Print(o.title);
        y -= h;
    }
    canvas.MoveTo(s.area.x0, y);
    canvas.Print(Trimmed(region.Caption));
    canvas.SetBold(false);
    if (!o.readout.empty()) {
        canvas.MoveTo(s.area.x1 - canvas.TextWidth(o.readout), y);
        canvas.Print(o.readout);
    }
    if (!IsSet(region.HasData)) return p;
    canvas.MoveTo(l.frame.x0, y - h);
    canvas.Print("Intensity");

    Box(canvas, s.area);
    YTicks(canvas, s, l.yTicks, l.yStep, h, cw);
    const SurfaceRect& bottom = p.hasResidual ? p.residual.area : s.area;
    for (double t : l.xTicks) {
        const double x = SurfaceX(s, t);
        canvas.Line(x, s.area.y0, x, s.area.y0 + 0.3 * h, kBlack);
        if (p.hasResidual) canvas.Line(x, bottom.y0, x, bottom.y0 + 0.3 * h, kBlack);
        const std::string label = TickLabel(t, l.xStep);
        canvas.MoveTo(x - canvas.TextWidth(label) / 2, bottom.y0 - 0.2 * h);
        canvas.Print(label);
    }
    const std::string title = "Binding Energy (eV)";
    canvas.MoveTo((s.area.x0 + s.area.x1 - canvas.TextWidth(title)) / 2, bottom.y0 - 1.3 * h);
    canvas.Print(title);

    canvas.SetClip(s.area.x0, s.area.y1, s.area.x1, s.area.y0);
    DrawCurves(project, canvas, s, o.selectedPeak);
    canvas.ClearClip();
    canvas.SetLineWidth(1);

    if (p.hasResidual) {
        const Axes& r = p.residual;
        Box(canvas, r.area);
        YTicks(canvas, r, l.rTicks, l.rStep, h, cw);
        canvas.SetClip(r.area.x0, r.area.y1, r.area.x1, r.area.y0);
        canvas.SetLineStyle(LineStyle::Dot);
        canvas.Line(r.area.x0, SurfaceY(r, 0), r.area.x1, SurfaceY(r, 0), kBackgroundColour);
        canvas.SetLineStyle(LineStyle::Solid);
        Curve(canvas, r, region.RangeBE, l.residual, 1, static_cast<int>(l.residual.size()),
              kDataColour);
        canvas.ClearClip();
        canvas.MoveTo(l.legendX, r.area.y1);
        canvas.Print(o.scaledResidual ? "Residual/sqrt|I|" : "Residual");
    }
    DrawLegend(project, canvas, l, o.selectedPeak);
    return p;
}

}  // namespace molvera
