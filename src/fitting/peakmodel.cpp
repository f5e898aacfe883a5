#include "fitting/peakmodel.h"

#include <algorithm>
#include <cmath>
#include <limits>

#include "base/numtext.h"
#include "constraints/propagation.h"
#include "spectral/envelope.h"
#include "spectral/lineshape.h"

namespace molvera {

namespace {

constexpr double kInf = std::numeric_limits<double>::infinity();
constexpr double kSmallestArea = 1e-9;  // areas stay positive
constexpr double kSmallestFWHM = 1e-3;  // eV

bool IsSlot(int s) { return s >= 0 && s < kPeakSlots; }

/// The lowest and highest binding energy of a region's range.
std::pair<double, double> RangeEnergies(const Region& region) {
    const int m = UsableRangeCount(region);
    if (m < 1) return {-kInf, kInf};
    double low = region.RangeBE[1], high = low;
    for (int j = 2; j <= m; ++j) {
        low = std::min<double>(low, region.RangeBE[j]);
        high = std::max<double>(high, region.RangeBE[j]);
    }
    return {low, high};
}

/// The link after one relation v op a; false for an operation that is not one.
bool Follow(ParameterLink& link, Int16 operation, double a) {
    switch (operation) {
        case 0:
            link.offset += a;
            return true;
        case 1:
            link.offset -= a;
            return true;
        case 2:
            link.scale *= a;
            link.offset *= a;
            return true;
        case 3:
            link.scale /= a;
            link.offset /= a;
            return true;
        default:
            return false;
    }
}

/// Share of the peak's area in its main line and in its partner (0: no partner); both 0
/// for a type that draws nothing.
std::array<double, 2> Shares(Subshell type) {
    switch (type) {
        case Subshell::S:
            return {1, 0};
        case Subshell::P:
            return {2.0 / 3.0, 1.0 / 3.0};
        case Subshell::D:
            return {0.6, 0.4};
        case Subshell::F:
            return {4.0 / 7.0, 3.0 / 7.0};
        default:
            return {0, 0};
    }
}

/// One line's value and its derivatives by position, area, FWHM and %GL.
struct LineValue {
    double f = 0, dp = 0, dA = 0, dw = 0, dg = 0;
};

/// exp(-t) for t >= 0, 0 where it is below any count (the far wings of a line).
double Decay(double t) { return t > 700 ? 0.0 : std::exp(-t); }

/// A line of area `area` at p, width w, %GL g, with what does not depend on the energy
/// worked out once per evaluation.
/// GL sum: h ((1 - m) G + m / (1 + u) [+ TS (1 - G) E on the high side]),
///   u = (2 (x - p) / w)^2, G = exp(-ln2 u), E = exp(-6.9 u / TL), h = area / (w K(g)).
/// GL product: h exp(-(1 - m) ln2 s) / (1 + m s), s = ((x - p) / c)^2, with the half-width
///   parameter c and the area factor of the tables, between whole %GL values interpolated
///   linearly (so that a whole %GL gives the tables' values).
class Line {
public:
    Line(bool glSum, double p, double area, double w, double g, double TS, double TL)
        : glSum_(glSum), p_(p), w_(w), m_(g / 100) {
        if (glSum) {
            const double K = GLSumAreaFactorAt(g, TS, TL);
            perArea_ = 1 / (w * K);
            h_ = area * perArea_;
            slopeOverK_ = GLSumAreaFactorSlope() / K;
            TS_ = TS;
            tailRate_ = TS > 0 ? 6.9 / TL : 0;
            return;
        }
        const LineShapeTables& t = GLTables();
        const int i = std::clamp(static_cast<int>(std::floor(g)), 0, 99);
        const double frac = g - i;
        const double dWf = t.GLProductWidthFactor[i + 1] - t.GLProductWidthFactor[i];
        const double dAf =
            static_cast<double>(t.GLProductAreaFactor[i + 1]) - t.GLProductAreaFactor[i];
        const double Wf = t.GLProductWidthFactor[i] + frac * dWf;
        const double Af = t.GLProductAreaFactor[i] + frac * dAf;
        const double c = (w / 2) / Wf;
        invC2_ = 1 / (c * c);
        perArea_ = 1 / (c * Af);
        h_ = area * perArea_;
        // c falls and h rises with the width factor; s follows c.
        dhdg_ = h_ * (dWf / Wf - dAf / Af);
        dsdgPerS_ = 2 * dWf / Wf;
    }

    double Value(double x) const {
        const double dx = x - p_;
        if (glSum_) {
            const double u = 4 * dx * dx / (w_ * w_);
            const double G = Decay(kLn2 * u);
            double S = (1 - m_) * G + m_ / (1 + u);
            if (TS_ > 0 && dx > 0) S += TS_ * (1 - G) * Decay(tailRate_ * u);
            return h_ * S;
        }
        const double s = dx * dx * invC2_;
        return h_ * Decay((1 - m_) * kLn2 * s) / (1 + m_ * s);
    }

    LineValue Full(double x) const {
        const double dx = x - p_;
        LineValue v;
        if (glSum_) {
            const double u = 4 * dx * dx / (w_ * w_);
            const double G = Decay(kLn2 * u);
            const double L = 1 / (1 + u);
            double S = (1 - m_) * G + m_ * L;
            double dSdu = -(1 - m_) * kLn2 * G - m_ * L * L;
            const double dSdm = L - G;
            if (TS_ > 0 && dx > 0) {
                const double E = Decay(tailRate_ * u);
                S += TS_ * (1 - G) * E;
                dSdu += TS_ * E * (kLn2 * G - (1 - G) * tailRate_);
            }
            v.f = h_ * S;
            v.dA = S * perArea_;
            v.dp = h_ * dSdu * (-8 * dx / (w_ * w_));
            v.dw = -v.f / w_ + h_ * dSdu * (-2 * u / w_);
            v.dg = h_ * dSdm / 100 - v.f * slopeOverK_;
            return v;
        }
        const double s = dx * dx * invC2_;
        const double Q = Decay((1 - m_) * kLn2 * s) / (1 + m_ * s);
        const double dQds = Q * (-(1 - m_) * kLn2 - m_ / (1 + m_ * s));
        const double dQdm = Q * (kLn2 * s - s / (1 + m_ * s));
        v.f = h_ * Q;
        v.dA = Q * perArea_;
        v.dp = h_ * dQds * (-2 * dx * invC2_);
        v.dw = (-v.f - 2 * h_ * s * dQds) / w_;
        v.dg = dhdg_ * Q + h_ * (dQdm / 100 + dQds * dsdgPerS_ * s);
        return v;
    }

private:
    bool glSum_;
    double p_, w_, m_;
    double h_ = 0, perArea_ = 0;
    double slopeOverK_ = 0, TS_ = 0, tailRate_ = 0;  // GL sum
    double invC2_ = 0, dhdg_ = 0, dsdgPerS_ = 0;     // GL product
};

}  // namespace

bool IsFixed(const Peak& peak, PeakParameter which) {
    switch (which) {
        case PeakParameter::Position:
            return peak.FixPosition != 0;
        case PeakParameter::Area:
            return peak.FixArea != 0;
        case PeakParameter::FWHM:
            return peak.FixFWHM != 0;
        case PeakParameter::GL:
            break;
    }
    return peak.FixGL != 0;
}

std::vector<int> ScoredRegions(const Project& project, const std::vector<int>& fitted) {
    std::array<bool, kRegionCount> scored{};
    for (int r : fitted) scored[static_cast<std::size_t>(r)] = true;
    // A peak follows a fitted peak when its chain of references reaches one.
    auto followsFitted = [&](int slot) {
        for (PeakParameter which : kPeakParameters) {
            int s = slot;
            for (int step = 0; step < kPeakSlots; ++step) {
                const ParameterConstraint& c = project.Constraints[s][which];
                if (!IsSet(c.Linked) || !IsSlot(c.RefPeak)) break;
                s = c.RefPeak;
                const int r = project.Peaks[s].Region;
                if (r >= 0 && r < kRegionCount &&
                    std::find(fitted.begin(), fitted.end(), r) != fitted.end())
                    return true;
            }
        }
        return false;
    };
    for (int r = 0; r < kRegionCount; ++r) {
        const Region& region = project.Regions[r];
        if (scored[r] || !IsSet(region.HasData) || !IsSet(region.HasBackground)) continue;
        for (Int16 slot : PeakList(region))
            if (IsSlot(slot) && followsFitted(slot)) scored[r] = true;
    }
    std::vector<int> regions;
    for (int r = 0; r < kRegionCount; ++r)
        if (scored[r]) regions.push_back(r);
    return regions;
}

FitModel::FitModel(const Project& project, const std::vector<int>& fitted,
                   const std::vector<int>& scored)
    : project_(project), scored_(scored) {
    // The free parameters: those of the fitted regions' peaks, in PeakIndex order.
    std::array<std::array<int, 4>, kPeakSlots> freeIndex{};
    for (auto& row : freeIndex) row.fill(-1);
    for (int r : fitted) {
        for (Int16 slot : PeakList(project.Regions[r])) {
            if (!IsSlot(slot)) continue;
            const Peak& peak = project.Peaks[slot];
            for (PeakParameter which : kPeakParameters) {
                const ParameterConstraint& c = project.Constraints[slot][which];
                if (IsFixed(peak, which) || IsSet(c.Linked)) continue;
                FreeParameter f;
                f.slot = slot;
                f.which = which;
                const bool limits = IsSet(c.UseLimits);
                f.lower = limits ? c.LowLimit : -kInf;
                f.upper = limits ? c.HighLimit : kInf;
                // A peak stays over its region's range, no wider than the range, with an area.
                const Region& region = project.Regions[r];
                const auto [low, high] = RangeEnergies(region);
                if (which == PeakParameter::Position) {
                    f.lower = std::max(f.lower, low - region.Shift);
                    f.upper = std::min(f.upper, high - region.Shift);
                }
                if (which == PeakParameter::Area) f.lower = std::max(f.lower, kSmallestArea);
                if (which == PeakParameter::FWHM) {
                    f.lower = std::max(f.lower, kSmallestFWHM);
                    f.upper = std::min(f.upper, std::max(high - low, kSmallestFWHM));
                }
                if (which == PeakParameter::GL) {
                    f.lower = std::max(f.lower, 0.0);
                    f.upper = std::min(f.upper, 100.0);
                }
                if (f.upper < f.lower) f.upper = f.lower;
                freeIndex[static_cast<std::size_t>(slot)][static_cast<std::size_t>(which)] =
                    FreeCount();
                free_.push_back(f);
            }
        }
    }

    // Every parameter of every peak as a function of the free ones, along its references.
    for (int slot = 0; slot < kPeakSlots; ++slot) {
        for (PeakParameter which : kPeakParameters) {
            ParameterLink link;
            int s = slot;
            std::vector<std::pair<Int16, double>> relations;  // from `slot` towards its root
            for (int step = 0; step <= kPeakSlots; ++step) {
                const ParameterConstraint& c = project.Constraints[s][which];
                const int root =
                    freeIndex[static_cast<std::size_t>(s)][static_cast<std::size_t>(which)];
                if (root >= 0) {
                    link.root = root;
                    break;
                }
                const bool follows = IsSet(c.Linked) && IsSlot(c.RefPeak) && c.RefPeak != s &&
                                     IsSet(project.Peaks[c.RefPeak].InUse) && step < kPeakSlots;
                if (!follows) {
                    link.offset = ParameterValue(project.Peaks[s], which);
                    break;
                }
                relations.emplace_back(c.Operation, c.Argument);
                s = c.RefPeak;
            }
            // Apply the relations from the root back to `slot`; an unknown operation leaves
            // the parameter as it stands.
            bool known = true;
            for (auto it = relations.rbegin(); it != relations.rend() && known; ++it)
                known = Follow(link, it->first, it->second);
            if (!known) link = ParameterLink{-1, 1, ParameterValue(project.Peaks[slot], which)};
            links_[static_cast<std::size_t>(slot)][static_cast<std::size_t>(which)] = link;
        }
    }

    // The range points of the scored regions and their weights.
    for (std::size_t k = 0; k < scored_.size(); ++k) {
        const Region& region = project.Regions[scored_[k]];
        std::vector<int> slots;
        for (Int16 slot : PeakList(region))
            if (IsSlot(slot)) slots.push_back(slot);
        peaks_.insert(peaks_.end(), slots.begin(), slots.end());
        regionPeaks_.push_back(std::move(slots));
        shifts_.push_back(region.Shift);
        const int m = UsableRangeCount(region);
        for (int j = 1; j <= m; ++j) {
            Row row;
            row.x = region.RangeBE[j];
            row.y = region.RangeIntensity[j];
            row.background = region.BackgroundCurve[j];
            const double w = std::fabs(static_cast<double>(row.y));
            row.scale = std::sqrt((w == 0 ? 1.0 : w) * m);
            row.region = static_cast<int>(k);
            row.points = m;
            rows_.push_back(row);
        }
    }
}

std::vector<double> FitModel::Start() const {
    std::vector<double> theta;
    for (const FreeParameter& f : free_)
        theta.push_back(
            std::clamp(ParameterValue(project_.Peaks[f.slot], f.which), f.lower, f.upper));
    return theta;
}

bool FitModel::Evaluate(const double* theta, double* residuals, double* jacobian) const {
    const int n = FreeCount();
    const bool glSum = IsSet(project_.Options.GLSum);
    if (jacobian)
        std::fill(jacobian, jacobian + static_cast<std::size_t>(ResidualCount()) * n, 0.0);
    auto value = [&](int slot, PeakParameter which) {
        const ParameterLink& l = Link(slot, which);
        return l.root < 0 ? l.offset : l.scale * theta[l.root] + l.offset;
    };
    // A line of every peak (and doublet partner), with where its derivatives go: the free
    // parameter each of position, area, FWHM and %GL follows, and by what factor.
    struct Component {
        Line line;
        double share;
        std::array<int, 4> root;
        std::array<double, 4> scale;
    };
    std::vector<Component> components;
    std::size_t row = 0;
    for (std::size_t k = 0; k < scored_.size(); ++k) {
        components.clear();
        for (int slot : regionPeaks_[k]) {
            const Peak& peak = project_.Peaks[slot];
            const std::array<double, 2> share = Shares(peak.PeakType);
            const double p = value(slot, PeakParameter::Position) + shifts_[k];
            const double A = value(slot, PeakParameter::Area);
            const double w = value(slot, PeakParameter::FWHM);
            const double g = value(slot, PeakParameter::GL);
            std::array<int, 4> root{};
            std::array<double, 4> scale{};
            for (PeakParameter which : kPeakParameters) {
                const auto i = static_cast<std::size_t>(which);
                root[i] = Link(slot, which).root;
                scale[i] = Link(slot, which).scale;
            }
            for (int c = 0; c < 2; ++c) {
                if (share[c] == 0) continue;
                const double at = c == 0 ? p : p + peak.Splitting;
                components.push_back(
                    {Line(glSum, at, share[c] * A, w, g, peak.TailScale, peak.TailLength), share[c],
                     root, scale});
            }
        }
        for (; row < rows_.size() && rows_[row].region == static_cast<int>(k); ++row) {
            const Row& r = rows_[row];
            double model = r.background;
            if (!jacobian) {
                for (const Component& c : components) model += c.line.Value(r.x);
            } else {
                double* jrow = jacobian + row * n;
                for (const Component& c : components) {
                    const LineValue v = c.line.Full(r.x);
                    model += v.f;
                    const double byParameter[] = {v.dp, c.share * v.dA, v.dw, v.dg};
                    for (std::size_t i = 0; i < 4; ++i)
                        if (c.root[i] >= 0)
                            jrow[c.root[i]] -= byParameter[i] * c.scale[i] / r.scale;
                }
            }
            residuals[row] = (r.y - model) / r.scale;
            if (!std::isfinite(residuals[row])) return false;
        }
    }
    if (jacobian) {
        for (std::size_t i = 0; i < rows_.size() * static_cast<std::size_t>(n); ++i)
            if (!std::isfinite(jacobian[i])) return false;
    }
    return true;
}

void FitModel::Store(Project& project, const double* theta) const {
    for (int i = 0; i < FreeCount(); ++i) {
        const FreeParameter& f = free_[static_cast<std::size_t>(i)];
        Peak& peak = project.Peaks[f.slot];
        switch (f.which) {
            case PeakParameter::Position:
                peak.Position = static_cast<float>(theta[i]);
                break;
            case PeakParameter::Area:
                peak.Area = static_cast<float>(theta[i]);
                break;
            case PeakParameter::FWHM:
                peak.FWHM = static_cast<float>(theta[i]);
                break;
            case PeakParameter::GL:
                peak.PercentGL =
                    static_cast<Int16>(std::clamp(RoundHalfEven(theta[i]), 0.0, 100.0));
                break;
        }
    }
    for (const FreeParameter& f : free_) Propagate(project, f.which, f.slot);
    // The heights follow the new areas and widths, on their own region's net scale.
    const bool glSum = IsSet(project.Options.GLSum);
    for (int slot : peaks_) {
        Peak& peak = project.Peaks[slot];
        if (peak.Region < 0 || peak.Region >= kRegionCount) continue;
        const float h =
            AreaToHeightPercent(glSum, project.Regions[peak.Region].NetScale, peak.Area, peak.FWHM,
                                peak.PercentGL, peak.PeakType, peak.TailScale, peak.TailLength);
        if (std::isfinite(h)) peak.HeightPercent = h;
    }
}

}  // namespace molvera
