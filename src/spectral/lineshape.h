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
/// The same for any %GL g, in Double: it grows by a fixed amount per %GL.
double GLSumAreaFactorAt(double g, double TS, double TL);
/// d GLSumAreaFactorAt / d g.
double GLSumAreaFactorSlope();

/// One line of area A at p.
float ComponentValue(bool glSum, double x, double p, double A, double w, int g, double TS,
                     double TL);

/// The whole peak (all its doublet components) at x; 0 for a type without a name.
float PeakValue(bool glSum, double x, double p, double A, double w, int g, double S, Subshell t,
                double TS, double TL);

/// The peak of a slot at x, its position moved by `shift`.
float PeakValue(bool glSum, const Peak& peak, double x, double shift);

/// The block loops compiled twice, for AVX2 where the processor has it and for plain
/// x86-64: the same IEEE operations on four doubles at a time instead of two, and no FMA
/// (AVX2 does not bring it), so the same bits.
#if defined(__x86_64__) && defined(__GNUC__) && !defined(__clang__)
#define MOLVERA_BLOCK_CLONES __attribute__((target_clones("avx2", "default")))
#else
#define MOLVERA_BLOCK_CLONES
#endif

/// Points that the block functions of PeakShape evaluate together.
inline constexpr int kShapeBlock = 32;

/// Where PeakShape puts the factors of its lines at a run of points: line i at point k is
/// h * num[i][k] for the GL sum and h * num[i][k] / den[i][k] for the GL product.
struct LineFactorSpans {
    std::array<double*, 2> num{};
    std::array<double*, 2> den{};
};

/// A peak with its per-peak constants worked out once; evaluating it at x gives
/// exactly PeakValue at x. For loops over many points: the block functions run each step
/// over a block of points, so that all but the exponentials vectorise, with the same
/// bits as point by point.
class PeakShape {
public:
    PeakShape(bool glSum, double p, double A, double w, int g, double S, Subshell t, double TS,
              double TL);
    PeakShape(bool glSum, const Peak& peak, double shift);

    /// PeakValue at x.
    float operator()(double x) const;

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
    /// One line at x, as ComponentValue.
    static float Line(const Component& c, double x);

    /// The lines: 0 for a type without a name, 2 for a doublet.
    int LineCount() const { return lineCount_; }
    const Component& LineAt(int i) const { return lines_[i]; }

    /// The factors of every line at x[0..n-1], n at most kShapeBlock. With the Single
    /// background values b[0..n-1] that the peak is to be added to (as float(v + b)), a
    /// single GL product line is left out (factor 0) where it is too small to change b:
    /// float(v + b) is the same, and the exponential is not evaluated.
    void Factors(const float* x, int n, const LineFactorSpans& f,
                 const float* background = nullptr) const;
    /// The peak at n points (at most kShapeBlock) from the factors of its lines.
    void FromFactors(const LineFactorSpans& f, int n, float* out) const;
    /// The peak at x[0..n-1], n at most kShapeBlock: operator() at each point, but with
    /// a background as Factors.
    void Values(const float* x, int n, float* out, const float* background = nullptr) const;

private:
    template <int N, typename X>
    void FactorsOf(const X* x, const LineFactorSpans& f, int offset, const float* background) const;
    template <int N>
    void FromFactorsOf(const LineFactorSpans& f, int offset, float* out) const;

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

/// The measured width of a peak; `converged` is false when it cannot be measured (the
/// search ran 1000 steps, or a doublet's curve stays above half its maximum). A singlet's
/// right half is searched and its left half taken as FWHM / 2; a doublet is measured
/// between its outermost half-maximum points.
struct MeasuredWidth {
    bool converged = false;
    float width = 0;
};
MeasuredWidth ActualFWHM(const Project& project, int slot);

}  // namespace molvera
