#pragma once
// Peak line shapes: GL product and GL sum, the tail, spin-orbit doublets,
// area/height conversions and the measured width.

#include <array>
#include <cmath>

#include "model/records.h"

namespace molvera {

/// ln 2 as the line shapes use it.
inline constexpr double kLn2 = 0.6931471806;

/// The two factor tables of the GL product form, indexed by %GL 0..100.
struct LineShapeTables {
    std::array<double, 101> GLProductWidthFactor;  ///< HWHM of the unit GL product curve
    std::array<float, 101> GLProductAreaFactor;    ///< its integral over -25..25
};

/// The tables, built once on first use.
const LineShapeTables& GLTables();

/// Area factor K of a GL sum line of unit height and unit FWHM.
float GLSumAreaFactor(int g, double TS, double TL);

/// One line of area A at p.
float ComponentValue(bool glSum, double x, double p, double A, double w, int g, double TS,
                     double TL);

/// The whole peak (all its doublet components) at x; 0 for a type without a name.
float PeakValue(bool glSum, double x, double p, double A, double w, int g, double S, Subshell t,
                double TS, double TL);

/// The peak of a slot at x, its position moved by `shift`.
float PeakValue(bool glSum, const Peak& peak, double x, double shift);

/// A peak with its per-peak constants worked out once; evaluating it at x gives
/// exactly PeakValue at x. For loops over many points.
class PeakShape {
public:
    PeakShape(bool glSum, double p, double A, double w, int g, double S, Subshell t, double TS,
              double TL);
    PeakShape(bool glSum, const Peak& peak, double shift);

    /// PeakValue at x.
    float operator()(double x) const {
        if (lineCount_ == 1) return Line(lines_[0], x);
        if (lineCount_ == 0) return 0.0f;
        return static_cast<float>(static_cast<double>(Line(lines_[0], x)) +
                                  static_cast<double>(Line(lines_[1], x)));
    }

    /// One line of a peak: position and the constants of its form.
    struct Component {
        bool glSum = false;
        bool tail = false;  ///< GL sum tail on the high binding-energy side (TS > 0)
        double p = 0;
        double w = 0;          ///< GL sum: FWHM; GL product: half-width parameter c
        double h = 0;          ///< height
        double m = 0;          ///< g / 100
        double gaussCoef = 0;  ///< GL product: -(1 - m) * ln2
        double TS = 0;
        double TL = 0;
    };
    /// The constants of one line of area A at p.
    static Component MakeComponent(bool glSum, double p, double A, double w, int g, double TS,
                                   double TL);
    /// One line at x as a height and two factors: GL sum h * num, GL product
    /// h * num / den. A search over a peak's area keeps the factors and rescales them.
    struct Factors {
        double num;
        double den;
    };
    static Factors LineFactors(const Component& c, double x) {
        if (c.glSum) {
            const double d = 2 * (x - c.p) / c.w;
            const double u = d * d;
            const double G = std::exp(-kLn2 * u);
            const double L = c.m / (1 + u);
            if (c.tail && x > c.p)
                return {(1 - c.m) * G + L + c.TS * (1 - G) * std::exp(-6.9 * u / c.TL), 0};
            return {(1 - c.m) * G + L, 0};
        }
        const double d = (x - c.p) / c.w;
        const double s = d * d;
        return {std::exp(c.gaussCoef * s), 1 + c.m * s};
    }
    /// The line from its factors.
    static float Scale(const Component& c, Factors f) {
        if (c.glSum) return static_cast<float>(c.h * f.num);
        return static_cast<float>(c.h * f.num / f.den);
    }
    /// One line at x, as ComponentValue.
    static float Line(const Component& c, double x) { return Scale(c, LineFactors(c, x)); }

    /// The lines: 0 for a type without a name, 2 for a doublet.
    int LineCount() const { return lineCount_; }
    const Component& LineAt(int i) const { return lines_[i]; }
    /// The peak from the factors of its lines, as operator().
    float FromFactors(Factors f0, Factors f1) const {
        if (lineCount_ == 1) return Scale(lines_[0], f0);
        if (lineCount_ == 0) return 0.0f;
        return static_cast<float>(static_cast<double>(Scale(lines_[0], f0)) +
                                  static_cast<double>(Scale(lines_[1], f1)));
    }

private:
    std::array<Component, 2> lines_{};
    int lineCount_ = 0;
};

/// Area of a peak whose main line is H per cent of `netScale` high.
float HeightPercentToArea(bool glSum, float netScale, double H, double w, int g, Subshell t,
                          double TS, double TL);
/// The inverse of HeightPercentToArea.
float AreaToHeightPercent(bool glSum, float netScale, double A, double w, int g, Subshell t,
                          double TS, double TL);

/// Both conversions for a peak, with the NetScale of the current region and the
/// project's line-shape choice.
float HeightPercentToArea(const Project& project, const Peak& peak);
float AreaToHeightPercent(const Project& project, const Peak& peak);

/// The measured width of a peak; `converged` is false when the search ran 1000 steps.
struct MeasuredWidth {
    bool converged = false;
    float width = 0;
};
MeasuredWidth ActualFWHM(const Project& project, int slot);

}  // namespace molvera
