#include "plot/plotview.h"

#include <algorithm>
#include <cmath>
#include <limits>

#include "base/limits.h"

namespace molvera {

namespace {

// Lowest and highest finite value seen.
struct Span {
    double lo = std::numeric_limits<double>::infinity();
    double hi = -std::numeric_limits<double>::infinity();
    void Add(double v) {
        if (std::isfinite(v)) lo = std::min(lo, v), hi = std::max(hi, v);
    }
    void Add(const SingleArray& a, int count) {
        const int n = std::min(count, static_cast<int>(a.size()) - 1);
        for (int j = 1; j <= n; ++j) Add(a[j]);
    }
};

// [lo, hi] widened by a twentieth on each side; a flat span gets 1 around its value.
void Widen(Span& s) {
    if (!(s.hi >= s.lo)) s.lo = 0, s.hi = 1;
    if (s.hi - s.lo <= std::abs(s.hi) * 1e-9) s.lo -= 0.5, s.hi += 0.5;
    const double m = (s.hi - s.lo) / 20;
    s.lo -= m, s.hi += m;
}

bool Usable(const PlotView& v) {
    return std::isfinite(v.beLeft - v.beRight) && std::isfinite(v.iHigh - v.iLow) &&
           v.beLeft != v.beRight && v.iHigh > v.iLow;
}

}  // namespace

double NiceStep(double span, int maxTicks) {
    if (!(span > 0) || !std::isfinite(span) || maxTicks < 1) return 1;
    const double raw = span / maxTicks;
    const double decade = std::pow(10.0, std::floor(std::log10(raw)));
    for (double m : {1.0, 2.0, 5.0, 10.0})
        if (m * decade >= raw * (1 - 1e-9)) return m * decade;
    return 10 * decade;
}

std::vector<double> Ticks(double a, double b, int maxTicks) {
    const double lo = std::min(a, b), hi = std::max(a, b);
    const double step = NiceStep(hi - lo, maxTicks);
    std::vector<double> ticks;
    if (!std::isfinite(lo / step) || !std::isfinite(hi / step)) return ticks;
    const double k0 = std::ceil(lo / step - 1e-9);
    for (double k = k0; k * step <= hi + step * 1e-9 && ticks.size() <= 100; k += 1)
        ticks.push_back(std::abs(k) < 1e-9 ? 0.0 : k * step);
    return ticks;
}

PlotView AutoView(const Project& project) {
    const Region& r = project.Current();
    Span be, in;
    be.Add(r.BindingEnergy, r.PointCount);
    in.Add(r.RawIntensity, r.PointCount);
    if (IsSet(r.HasBackground)) {
        in.Add(r.BackgroundCurve, r.RangeCount);
        const int peaks = std::clamp<int>(r.PeakCount, 0, kMaxPeaksPerRegion);
        if (peaks > 0) in.Add(r.PeakSumCurve, r.RangeCount);
        for (int k = 0; k < peaks; ++k) {
            const int slot = r.PeakIndex[static_cast<std::size_t>(k)];
            if (slot >= 0 && slot < kPeakSlots)
                in.Add(project.Peaks[static_cast<std::size_t>(slot)].Curve, r.RangeCount);
        }
    }
    Widen(be);
    Widen(in);
    return {be.hi, be.lo, in.lo, in.hi};
}

PlotView Shown(const Project& project, const PlotView& view) {
    return view.IsAuto() || !Usable(view) ? AutoView(project) : view;
}

PlotView ZoomAbout(const PlotView& v, double be, double i, double factor) {
    if (!(factor > 0) || !std::isfinite(factor)) return v;
    const PlotView z{be + (v.beLeft - be) * factor, be + (v.beRight - be) * factor,
                     i + (v.iLow - i) * factor, i + (v.iHigh - i) * factor};
    return Usable(z) && std::abs(z.beLeft - z.beRight) > 1e-6 ? z : v;
}

PlotView ZoomTo(const PlotView& v, double be1, double i1, double be2, double i2) {
    const PlotView z{std::max(be1, be2), std::min(be1, be2), std::min(i1, i2), std::max(i1, i2)};
    return Usable(z) && std::abs(z.beLeft - z.beRight) > 1e-6 ? z : v;
}

PlotView Pan(const PlotView& v, double dBE, double dI) {
    const PlotView p{v.beLeft - dBE, v.beRight - dBE, v.iLow - dI, v.iHigh - dI};
    return Usable(p) ? p : v;
}

PlotPoint ToPlot(const Axes& a, double x, double y) {
    const double fx = (x - a.area.x0) / (a.area.x1 - a.area.x0);
    const double fy = (y - a.area.y0) / (a.area.y1 - a.area.y0);
    return {a.view.beLeft + fx * (a.view.beRight - a.view.beLeft),
            a.view.iLow + fy * (a.view.iHigh - a.view.iLow)};
}

double SurfaceX(const Axes& a, double be) {
    return a.area.x0 +
           (be - a.view.beLeft) / (a.view.beRight - a.view.beLeft) * (a.area.x1 - a.area.x0);
}

double SurfaceY(const Axes& a, double i) {
    return a.area.y0 + (i - a.view.iLow) / (a.view.iHigh - a.view.iLow) * (a.area.y1 - a.area.y0);
}

std::vector<double> Residuals(const Region& r, bool scaled) {
    std::vector<double> out;
    if (!IsSet(r.HasBackground)) return out;
    const SingleArray& fit = r.PeakCount > 0 ? r.PeakSumCurve : r.BackgroundCurve;
    const int n = std::min({static_cast<int>(r.RangeCount), static_cast<int>(fit.size()) - 1,
                            static_cast<int>(r.RangeIntensity.size()) - 1});
    out.reserve(static_cast<std::size_t>(std::max(n, 0)));
    for (int j = 1; j <= n; ++j) {
        const double y = r.RangeIntensity[j];
        const double d = y - fit[j];
        out.push_back(!scaled  ? d
                      : y != 0 ? d / std::sqrt(std::abs(y))
                               : std::numeric_limits<double>::quiet_NaN());
    }
    return out;
}

}  // namespace molvera
