#pragma once
// Peak line shapes: GL product and GL sum, the tail, spin-orbit doublets,
// area/height conversions and the measured width.

#include <array>
#include <string>

#include "model/records.h"

namespace molvera {

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

/// The whole peak (all its doublet components) at x; 0 for a type outside 1..4.
float PeakValue(bool glSum, double x, double p, double A, double w, int g, double S, int t,
                double TS, double TL);

/// The peak of a slot at x, its position moved by `shift`.
float PeakValue(bool glSum, const Peak& peak, double x, double shift);

/// Area of a peak whose main line is H per cent of `netScale` high.
float HeightPercentToArea(bool glSum, float netScale, double H, double w, int g, int t, double TS,
                          double TL);
/// The inverse of HeightPercentToArea.
float AreaToHeightPercent(bool glSum, float netScale, double A, double w, int g, int t, double TS,
                          double TL);

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
/// The text of the peak editor's `ActFWHM` label for a measured width.
std::string ActualFWHMText(const MeasuredWidth& w);

}  // namespace molvera
