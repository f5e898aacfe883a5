#include "spectral/lineshape.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <cstdint>
#include <limits>
#include <numbers>

namespace molvera {

namespace {

constexpr double kFourLn2 = 2.77258872;
constexpr double kSqrtPi = 1.77245385;
constexpr double kGaussAreaFactor = 1.06446702;   // sqrt(pi / (4 ln2))
constexpr double kGLSumAreaPerGL = 0.0050632931;  // g = 100 gives pi/2
constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();

/// The unit GL product curve exp(-(1-m) ln2 z^2) / (1 + m z^2).
double UnitGLProduct(double m, double z) {
    return std::exp(-(1 - m) * kLn2 * z * z) / (1 + m * z * z);
}

/// The half width at half maximum of the unit curve, by bisection on [0, 2]
/// (the curve falls monotonically from 1 and is below 1/2 at z = 2 for every m).
double HalfWidth(double m) {
    double lo = 0, hi = 2;
    for (int i = 0; i < 200 && hi - lo > 1e-15; ++i) {
        const double mid = 0.5 * (lo + hi);
        if (UnitGLProduct(m, mid) > 0.5)
            lo = mid;
        else
            hi = mid;
    }
    return 0.5 * (lo + hi);
}

/// The integral of the unit curve over -25..25 (composite Simpson on 0..25, doubled).
double UnitArea(double m) {
    constexpr int kIntervals = 10000;
    constexpr double kH = 25.0 / kIntervals;
    double sum = UnitGLProduct(m, 0) + UnitGLProduct(m, 25);
    for (int i = 1; i < kIntervals; ++i) sum += (i % 2 ? 4 : 2) * UnitGLProduct(m, i * kH);
    return 2 * sum * kH / 3;
}

LineShapeTables BuildTables() {
    LineShapeTables t{};
    for (int g = 0; g <= 100; ++g) {
        t.GLProductWidthFactor[g] = HalfWidth(g / 100.0);
        t.GLProductAreaFactor[g] = static_cast<float>(UnitArea(g / 100.0));
    }
    return t;
}

bool InTable(int g) { return g >= 0 && g <= 100; }

/// Area of the doublet over the area of its main line; 0 for an unknown type.
double DoubletAreaFactor(Subshell t) {
    switch (t) {
        case Subshell::S:
            return 1;
        case Subshell::P:
            return 1.5;
        case Subshell::D:
            return 5.0 / 3.0;
        case Subshell::F:
            return 1.75;
        default:
            return 0;
    }
}

/// Share of the peak's area in its main line; 0 for an unknown type.
double MainShare(Subshell t) {
    switch (t) {
        case Subshell::S:
            return 1;
        case Subshell::P:
            return 2.0 / 3.0;
        case Subshell::D:
            return 0.6;
        case Subshell::F:
            return 4.0 / 7.0;
        default:
            return 0;
    }
}

/// NetScale of the current region, 0 when CurrentRegion names no slot.
float CurrentNetScale(const Project& project) {
    const int r = project.CurrentRegion;
    return (r >= 0 && r < kRegionCount) ? project.Regions[r].NetScale : 0.0f;
}

}  // namespace

const LineShapeTables& GLTables() {
    static const LineShapeTables tables = BuildTables();
    return tables;
}

double GLSumAreaFactorAt(double g, double TS, double TL) {
    double K = kGLSumAreaPerGL * g + kGaussAreaFactor;
    if (TS != 0) {
        const double a = 27.6 / TL;
        K += TS * (kSqrtPi / std::sqrt(a) - kSqrtPi / std::sqrt(a + kFourLn2));
    }
    return K;
}

double GLSumAreaFactorSlope() { return kGLSumAreaPerGL; }

float GLSumAreaFactor(int g, double TS, double TL) {
    return static_cast<float>(GLSumAreaFactorAt(g, TS, TL));
}

PeakShape::Component PeakShape::MakeComponent(bool glSum, double p, double A, double w, int g,
                                              double TS, double TL) {
    Component c;
    c.glSum = glSum;
    c.p = p;
    c.m = g / 100.0;
    if (glSum) {
        c.w = w;
        c.h = (A / w) / GLSumAreaFactor(g, TS, TL);
        c.tail = TS > 0;
        c.TS = TS;
        c.TL = TL;
        return c;
    }
    if (!InTable(g)) {
        c.w = c.h = kNaN;
        return c;
    }
    const LineShapeTables& t = GLTables();
    c.w = (w / 2) / t.GLProductWidthFactor[g];
    c.h = (A / c.w) / t.GLProductAreaFactor[g];
    c.gaussCoef = -(1 - c.m) * kLn2;
    return c;
}

PeakShape::PeakShape(bool glSum, double p, double A, double w, int g, double S, Subshell t,
                     double TS, double TL) {
    double share2 = 0;
    switch (t) {
        case Subshell::S:
            break;
        case Subshell::P:
            share2 = 1.0 / 3.0;
            break;
        case Subshell::D:
            share2 = 0.4;
            break;
        case Subshell::F:
            share2 = 3.0 / 7.0;
            break;
        default:
            return;
    }
    lines_[0] = MakeComponent(glSum, p, A * MainShare(t), w, g, TS, TL);
    lineCount_ = 1;
    if (share2 != 0) {
        lines_[1] = MakeComponent(glSum, p + S, A * share2, w, g, TS, TL);
        lineCount_ = 2;
    }
}

PeakShape::PeakShape(bool glSum, const Peak& peak, double shift)
    : PeakShape(glSum, static_cast<double>(peak.Position) + shift, peak.Area, peak.FWHM,
                peak.PercentGL, peak.Splitting, peak.PeakType, peak.TailScale, peak.TailLength) {}

namespace {

/// The factors of one line at the N points x[0..N-1]: the steps before and after the
/// exponentials run over all points, the exponentials in a loop of their own.
/// Where the exponent of a GL product line of height h lies below these, the line adds
/// less than an eighth of a unit in the last place to the Single background b there, so
/// float(line + b) is b whatever its value: ln ulp(b) - ln|h| - ln 8 - 1, the 1 a margin for
/// the roundings of exp and of the line. -inf where b is 0, subnormal or not finite.
template <int N>
[[gnu::always_inline]] inline void NegligibleBelow(const float* __restrict background, double h,
                                                   double* __restrict below) {
    constexpr double kMargin = 3 * std::numbers::ln2 + 1;
    const double logH = std::log(std::fabs(h));
    for (int k = 0; k < N; ++k) {
        const auto e = static_cast<int>((std::bit_cast<std::uint32_t>(background[k]) >> 23) & 0xFF);
        below[k] = e == 0 || e == 255
                       ? -std::numeric_limits<double>::infinity()
                       : (e - 150) * std::numbers::ln2 - logH - kMargin;  // ulp = 2^(e-150)
    }
}

/// The factors of one line at the N points x[0..N-1]: the steps before and after the
/// exponentials run over all points, the exponentials in a loop of their own. Where a
/// GL product's exponent is below `below` (when given), the exponential is left out: 0.
template <int N, typename X>
[[gnu::always_inline]] inline void LineFactorsOf(const PeakShape::Component& c,
                                                 const X* __restrict x, double* __restrict num,
                                                 double* __restrict den,
                                                 const double* __restrict below = nullptr) {
    const double p = c.p;
    const double w = c.w;
    const double m = c.m;
    if (c.glSum) {
        for (int k = 0; k < N; ++k) {
            const double d = 2 * (static_cast<double>(x[k]) - p) / w;
            den[k] = d * d;  // u
            num[k] = -kLn2 * den[k];
        }
        for (int k = 0; k < N; ++k) num[k] = std::exp(num[k]);  // G
        if (!c.tail) {
            for (int k = 0; k < N; ++k) num[k] = (1 - m) * num[k] + m / (1 + den[k]);
            return;
        }
        for (int k = 0; k < N; ++k) {
            const double G = num[k];
            const double u = den[k];
            num[k] = (1 - m) * G + m / (1 + u);
            if (static_cast<double>(x[k]) > p)
                num[k] = num[k] + c.TS * (1 - G) * std::exp(-6.9 * u / c.TL);
        }
        return;
    }
    const double gaussCoef = c.gaussCoef;
    for (int k = 0; k < N; ++k) {
        const double d = (static_cast<double>(x[k]) - p) / w;
        const double s = d * d;
        num[k] = gaussCoef * s;
        den[k] = 1 + m * s;
    }
    if (below == nullptr) {
        for (int k = 0; k < N; ++k) num[k] = std::exp(num[k]);
        return;
    }
    for (int k = 0; k < N; ++k) num[k] = num[k] < below[k] ? 0.0 : std::exp(num[k]);
}

/// One line at N points from its factors.
template <int N>
[[gnu::always_inline]] inline void ScaleLine(const PeakShape::Component& c,
                                             const double* __restrict num,
                                             const double* __restrict den, float* __restrict out) {
    const double h = c.h;
    if (c.glSum) {
        for (int k = 0; k < N; ++k) out[k] = static_cast<float>(h * num[k]);
        return;
    }
    for (int k = 0; k < N; ++k) out[k] = static_cast<float>(h * num[k] / den[k]);
}

}  // namespace

template <int N, typename X>
[[gnu::always_inline]] inline void PeakShape::FactorsOf(const X* x, const LineFactorSpans& f,
                                                        int offset, const float* background) const {
    // A single GL product line decays to nothing that a background notices; a doublet's
    // lines are added to each other first.
    if (background != nullptr && lineCount_ == 1 && !lines_[0].glSum) {
        std::array<double, N> below;
        NegligibleBelow<N>(background + offset, lines_[0].h, below.data());
        LineFactorsOf<N>(lines_[0], x + offset, f.num[0] + offset, f.den[0] + offset, below.data());
        return;
    }
    for (int i = 0; i < lineCount_; ++i)
        LineFactorsOf<N>(lines_[i], x + offset, f.num[i] + offset, f.den[i] + offset);
}

template <int N>
[[gnu::always_inline]] inline void PeakShape::FromFactorsOf(const LineFactorSpans& f, int offset,
                                                            float* out) const {
    out += offset;
    if (lineCount_ == 0) {
        for (int k = 0; k < N; ++k) out[k] = 0.0f;
        return;
    }
    ScaleLine<N>(lines_[0], f.num[0] + offset, f.den[0] + offset, out);
    if (lineCount_ == 1) return;
    float second[N];
    ScaleLine<N>(lines_[1], f.num[1] + offset, f.den[1] + offset, second);
    for (int k = 0; k < N; ++k)
        out[k] = static_cast<float>(static_cast<double>(out[k]) + static_cast<double>(second[k]));
}

MOLVERA_BLOCK_CLONES void PeakShape::Factors(const float* x, int n, const LineFactorSpans& f,
                                             const float* background) const {
    if (n == kShapeBlock) return FactorsOf<kShapeBlock>(x, f, 0, background);
    for (int k = 0; k < n; ++k) FactorsOf<1>(x, f, k, background);
}

MOLVERA_BLOCK_CLONES void PeakShape::FromFactors(const LineFactorSpans& f, int n,
                                                 float* out) const {
    if (n == kShapeBlock) return FromFactorsOf<kShapeBlock>(f, 0, out);
    for (int k = 0; k < n; ++k) FromFactorsOf<1>(f, k, out);
}

void PeakShape::Values(const float* x, int n, float* out, const float* background) const {
    std::array<std::array<double, kShapeBlock>, 2> num;
    std::array<std::array<double, kShapeBlock>, 2> den;
    const LineFactorSpans f{{num[0].data(), num[1].data()}, {den[0].data(), den[1].data()}};
    Factors(x, n, f, background);
    FromFactors(f, n, out);
}

float PeakShape::operator()(double x) const {
    std::array<double, 2> num{};
    std::array<double, 2> den{};
    const LineFactorSpans f{{&num[0], &num[1]}, {&den[0], &den[1]}};
    FactorsOf<1>(&x, f, 0, nullptr);
    float v = 0;
    FromFactorsOf<1>(f, 0, &v);
    return v;
}

float PeakShape::Line(const Component& c, double x) {
    double num = 0;
    double den = 0;
    LineFactorsOf<1>(c, &x, &num, &den);
    float v = 0;
    ScaleLine<1>(c, &num, &den, &v);
    return v;
}

float ComponentValue(bool glSum, double x, double p, double A, double w, int g, double TS,
                     double TL) {
    return PeakShape::Line(PeakShape::MakeComponent(glSum, p, A, w, g, TS, TL), x);
}

float PeakValue(bool glSum, double x, double p, double A, double w, int g, double S, Subshell t,
                double TS, double TL) {
    return PeakShape(glSum, p, A, w, g, S, t, TS, TL)(x);
}

float PeakValue(bool glSum, const Peak& peak, double x, double shift) {
    return PeakShape(glSum, peak, shift)(x);
}

float HeightPercentToArea(bool glSum, float netScale, double H, double w, int g, Subshell t,
                          double TS, double TL) {
    double A1;
    if (glSum) {
        A1 = H * netScale * w * GLSumAreaFactor(g, TS, TL);
    } else {
        if (!InTable(g)) return static_cast<float>(kNaN);
        const LineShapeTables& tab = GLTables();
        A1 = tab.GLProductAreaFactor[g] * (H * netScale * w / 2) / tab.GLProductWidthFactor[g];
    }
    return static_cast<float>(A1 * DoubletAreaFactor(t));
}

float AreaToHeightPercent(bool glSum, float netScale, double A, double w, int g, Subshell t,
                          double TS, double TL) {
    const double A1 = A * MainShare(t);
    if (glSum) return static_cast<float>(A1 / (GLSumAreaFactor(g, TS, TL) * w * netScale));
    if (!InTable(g)) return static_cast<float>(kNaN);
    const LineShapeTables& tab = GLTables();
    const double c = (w / 2) / tab.GLProductWidthFactor[g];
    return static_cast<float>(A1 / (c * tab.GLProductAreaFactor[g] * netScale));
}

float HeightPercentToArea(const Project& project, const Peak& peak) {
    return HeightPercentToArea(IsSet(project.Options.GLSum), CurrentNetScale(project),
                               peak.HeightPercent, peak.FWHM, peak.PercentGL, peak.PeakType,
                               peak.TailScale, peak.TailLength);
}

float AreaToHeightPercent(const Project& project, const Peak& peak) {
    return AreaToHeightPercent(IsSet(project.Options.GLSum), CurrentNetScale(project), peak.Area,
                               peak.FWHM, peak.PercentGL, peak.PeakType, peak.TailScale,
                               peak.TailLength);
}

namespace {

// A doublet's width as drawn: between the outermost energies where the curve reaches half
// its highest value, found on a grid of FWHM / 50 over both lines +-5 FWHM and bisected.
// Nothing when the curve does not fall below half its maximum inside that span.
MeasuredWidth DoubletWidth(const PeakShape& shape, double p, double w, double S) {
    const double lo = std::min(p, p + S) - 5 * w;
    const double hi = std::max(p, p + S) + 5 * w;
    const double steps = std::ceil((hi - lo) / (w / 50));
    if (!(steps >= 1 && steps <= 1e6)) return {};  // w <= 0, not finite, or S >> w
    const int n = static_cast<int>(steps);
    const double step = (hi - lo) / n;
    auto at = [&](int i) { return static_cast<double>(shape(lo + i * step)); };
    double top = std::max<double>(shape(p), shape(p + S));
    for (int i = 0; i <= n; ++i) top = std::max(top, at(i));
    const double half = top / 2;
    if (!(half > 0) || !std::isfinite(half)) return {};
    int first = 0;
    while (first <= n && at(first) < half) ++first;
    int last = n;
    while (last >= 0 && at(last) < half) --last;
    if (first == 0 || last == n || first > last) return {};
    auto crossing = [&](double below, double above) {
        for (int k = 0; k < 60; ++k) {
            const double mid = (below + above) / 2;
            (shape(mid) < half ? below : above) = mid;
        }
        return (below + above) / 2;
    };
    const double left = crossing(lo + (first - 1) * step, lo + first * step);
    const double right = crossing(lo + (last + 1) * step, lo + last * step);
    return {true, static_cast<float>(right - left)};
}

}  // namespace

MeasuredWidth ActualFWHM(const Project& project, int slot) {
    if (slot < 0 || slot >= kPeakSlots) return {};
    const Peak& peak = project.Peaks[slot];
    // The region shift is not added: the width does not depend on it.
    const PeakShape shape(IsSet(project.Options.GLSum), peak, 0.0);
    if (peak.PeakType == Subshell::P || peak.PeakType == Subshell::D ||
        peak.PeakType == Subshell::F)
        return DoubletWidth(shape, peak.Position, peak.FWHM, peak.Splitting);
    const float p = peak.Position;
    const float w = peak.FWHM;
    const float S = peak.Splitting;
    const double half = 0.5 * shape(p);

    // Bisection for the right half-maximum point, in Single arithmetic.
    float lower = p + S;
    float upper = p + S + 3 * w;
    float mid = (lower + upper) / 2;
    float prev = lower;
    int steps = 0;
    bool converged = false;
    while (steps < 1000) {
        if (std::fabs(mid - prev) <= 0.0002) {
            converged = true;
            break;
        }
        const float f = shape(mid);
        if (f > half)
            lower = mid;
        else
            upper = mid;
        prev = mid;
        mid = (lower + upper) / 2;
        ++steps;
    }
    MeasuredWidth result;
    result.converged = converged;
    if (converged) result.width = static_cast<float>(static_cast<double>(prev) - p + 0.5 * w + S);
    return result;
}

}  // namespace molvera
