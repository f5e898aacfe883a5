#include "plot/spectrumplot.h"

#include <algorithm>
#include <cmath>

#include "base/limits.h"
#include "base/numtext.h"

namespace molvera {

namespace {

// No sensible plot has more ticks than this; it bounds the loop whatever the data.
constexpr int kMaxTicks = 1000;

bool Finite(double a, double b) { return std::isfinite(a) && std::isfinite(b); }

// A span [lo, hi]; an empty, inverted or non-finite one becomes a small span around
// its value (1 wide for ordinary values).
void SafeSpan(double hi, double lo, double& outHi, double& outLo, double& span) {
    if (Finite(hi, lo) && hi > lo && std::isfinite(hi - lo)) {
        outHi = hi;
        outLo = lo;
        span = hi - lo;
        return;
    }
    double centre = Finite(hi, lo)      ? (hi + lo) / 2
                    : std::isfinite(hi) ? hi
                    : std::isfinite(lo) ? lo
                                        : 0;
    if (!std::isfinite(centre)) centre = 0;
    const double half = std::max(0.5, std::abs(centre) * 1e-6);
    outHi = centre + half;
    outLo = centre - half;
    span = outHi - outLo;
}

// Index k of the first tick k * step (see FirstTick).
double FirstTickIndex(double minBE, double step) {
    if (!(step > 0) || !std::isfinite(minBE) || !std::isfinite(minBE / step)) return 0;
    double k;
    if (minBE > 0) {
        k = std::ceil(minBE / step);
        if (k * step < minBE) k += 1;
        if (k > 0 && (k - 1) * step >= minBE) k -= 1;
    } else {
        // Stepping down from 0 while t - step > MinBE stops at the first multiple above MinBE.
        k = std::min(0.0, std::floor(minBE / step) + 1);
        if (k < 0 && k * step <= minBE) k += 1;
        if ((k - 1) * step > minBE) k -= 1;
    }
    return k;
}

// A curve against its energies: x(1..n), y(1..n) joined by lines; non-finite points
// break the line.
void Polyline(Canvas& canvas, const SingleArray& xs, const SingleArray& ys, int count, Rgb colour,
              bool startWithPoint) {
    const int stored = static_cast<int>(std::min(xs.size(), ys.size())) - 1;
    const int n = std::min(count, stored);
    if (n < 1) return;
    bool previousFinite = Finite(xs[1], ys[1]);
    canvas.MoveTo(xs[1], ys[1]);
    if (previousFinite && (startWithPoint || n == 1)) canvas.Point(xs[1], ys[1], colour);
    for (int i = 2; i <= n; ++i) {
        const bool finite = Finite(xs[i], ys[i]);
        if (finite && previousFinite)
            canvas.LineTo(xs[i], ys[i], colour);
        else
            canvas.MoveTo(xs[i], ys[i]);
        previousFinite = finite;
    }
}

// The slot at position k of the region's peak list, or -1 when it is out of range.
int PeakSlotAt(const Region& region, int k) {
    const int slot = region.PeakIndex[static_cast<std::size_t>(k)];
    return slot >= 0 && slot < kPeakSlots ? slot : -1;
}

int DrawnPeakCount(const Region& region) {
    return std::clamp<int>(region.PeakCount, 0, kMaxPeaksPerRegion);
}

}  // namespace

PlotExtents RegionExtents(const Region& region) {
    PlotExtents e;
    SafeSpan(region.MaxBE, region.MinBE, e.maxBE, e.minBE, e.dBE);
    SafeSpan(region.MaxIntensity, region.MinIntensity, e.maxI, e.minI, e.dI);
    return e;
}

double TickStep(double dBE) {
    if (!(dBE > 0) || !std::isfinite(dBE)) return 1;
    double x = 1;
    for (int i = 0; i < 40; ++i, x *= 10) {
        const double step = std::floor(dBE * x / 5 + 0.1) / x;
        if (step != 0 && std::isfinite(step)) return step;
    }
    return dBE / 5;
}

double FirstTick(double minBE, double step) { return FirstTickIndex(minBE, step) * step; }

PlotBox InnerBox(const PlotExtents& e, double w, double h) {
    return {e.maxBE + e.dBE / 40 + w / 2, e.maxI + 3 * h, e.minBE - e.dBE / 40 - 1.5 * w,
            e.minI - 3 * h};
}

void SetBoxAndMeasure(Canvas& canvas, const PlotBox& box, bool pageMargins, double& w, double& h) {
    if (pageMargins) {
        // The printout's page margins: an eighth of the width beside, a seventh of the height above
        // and below.
        const double mx = (box.left - box.right) / 8;
        const double my = (box.top - box.bottom) / 7;
        canvas.SetScale(box.left + mx, box.top + my, box.right - mx, box.bottom - my);
    } else {
        canvas.SetScale(box.left, box.top, box.right, box.bottom);
    }
    w = canvas.TextWidth("0000");
    h = canvas.TextHeight("Sample");
    if (!std::isfinite(w)) w = 0;
    if (!std::isfinite(h)) h = 0;
}

void DrawAxis(Canvas& canvas, const PlotExtents& e, double step, double w, double h,
              double tickRatio, double highEdge) {
    canvas.Line(e.minBE, e.minI, e.maxBE, e.minI, kBlack);
    canvas.MoveTo(e.minBE + e.dBE / 2 - e.dBE / 40 + w, e.minI - 1.5 * h);
    canvas.Print("Binding Energy (eV)");

    const double k0 = FirstTickIndex(e.minBE, step);
    for (int i = 0; i < kMaxTicks; ++i) {
        const double t = (k0 + i) * step;
        if (e.maxBE > 0 && !(t / e.maxBE < tickRatio)) break;
        if (!(t <= highEdge)) break;  // beyond the surface: nothing of it would show
        canvas.Line(t, e.minI - e.dI / 100, t, e.minI + e.dI / 100, kBlack);
        canvas.MoveTo(t + w / 2, e.minI - 0.5 * h);
        canvas.Print(FormatFixed(t, 1));
    }
}

void DrawSpectrum(Canvas& canvas, const Region& region, bool startWithPoint) {
    canvas.SetLineWidth(2);
    Polyline(canvas, region.BindingEnergy, region.RawIntensity, region.PointCount, kBlue,
             startWithPoint);
}

void DrawRegion(const Project& project, Canvas& canvas, PlotState& state) {
    const Region& region = project.Current();
    canvas.Clear();
    canvas.SetLineStyle(LineStyle::Solid);
    canvas.SetLineWidth(1);

    const PlotExtents e = RegionExtents(region);
    double w = 0, h = 0;
    SetBoxAndMeasure(
        canvas,
        {e.maxBE + e.dBE / 20, e.maxI + e.dI / 20, e.minBE - e.dBE / 20, e.minI - e.dI / 20}, false,
        w, h);
    const double step = TickStep(e.dBE);
    PlotBox box;
    for (int round = 0; round < 2; ++round) {
        box = InnerBox(e, w, h);
        SetBoxAndMeasure(canvas, box, false, w, h);
    }

    canvas.SetBold(true);
    canvas.MoveTo(e.maxBE + e.dBE / 40, e.maxI + 3 * h);
    canvas.Print(region.Caption.Str());
    canvas.SetBold(false);

    DrawAxis(canvas, e, step, w, h, 1.01, box.left + w);
    DrawSpectrum(canvas, region, false);

    state.ReadoutX = static_cast<float>(e.maxBE + e.dBE / 40 - 10 * w);
    state.ReadoutY = e.maxI + 3 * h;
    canvas.MoveTo(state.ReadoutX, state.ReadoutY);
}

void DrawFit(const Project& project, Canvas& canvas) {
    const Region& region = project.Current();
    const Rgb fore = canvas.ForeColour();
    canvas.SetLineWidth(2);
    Polyline(canvas, region.RangeBE, region.BackgroundCurve, region.RangeCount, fore, false);
    if (region.PeakCount < 1) return;
    canvas.SetLineWidth(1);
    for (int k = 0; k < DrawnPeakCount(region); ++k) {
        const int slot = PeakSlotAt(region, k);
        if (slot < 0) continue;
        Polyline(canvas, region.RangeBE, project.Peaks[slot].Curve, region.RangeCount, fore, false);
    }
    canvas.SetLineWidth(2);
    Polyline(canvas, region.RangeBE, region.PeakSumCurve, region.RangeCount, fore, false);
}

void DrawSelectedPeak(const Project& project, int slot, Canvas& canvas) {
    const Region& region = project.Current();
    bool inRegion = false;
    for (int k = 0; k < DrawnPeakCount(region); ++k)
        inRegion = inRegion || PeakSlotAt(region, k) == slot;
    if (!inRegion) return;
    canvas.SetLineWidth(2);
    Polyline(canvas, region.RangeBE, project.Peaks[slot].Curve, region.RangeCount, kRed, false);
    canvas.SetLineWidth(1);
}

std::string ReadoutText(double x, double y) {
    return "X:" + ColumnValue(static_cast<float>(x)) + "/ Y:" + ColumnValue(static_cast<float>(y));
}

void ShowReadout(Canvas& canvas, const PlotState& state, double x, double y) {
    canvas.SetOpaqueText(true);
    canvas.MoveTo(state.ReadoutX, state.ReadoutY);
    canvas.Print(std::string(25, ' '));
    canvas.MoveTo(state.ReadoutX, state.ReadoutY);
    canvas.Print(ReadoutText(x, y));
    canvas.SetOpaqueText(false);
}

void Redisplay(const Project& project, Canvas& canvas, PlotState& state) {
    const Region& region = project.Current();
    if (!IsSet(region.HasData)) return;
    DrawRegion(project, canvas, state);
    if (IsSet(region.HasBackground)) DrawFit(project, canvas);
}

}  // namespace molvera
