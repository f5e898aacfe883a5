#pragma once
// The peaks of one or more regions as a function of their free parameters: the weighted
// residuals of the program's chi-square and their derivatives, for the least-squares fit
// and for the uncertainties, and the way back into the project.

#include <array>
#include <vector>

#include "model/records.h"

namespace molvera {

/// A peak parameter that the fit varies: neither fixed nor linked to another peak.
struct FreeParameter {
    int slot = 0;
    PeakParameter which = PeakParameter::Position;
    double lower = 0;  ///< bounds: the limits, FWHM and area above 0, %GL within 0..100
    double upper = 0;
};

/// How a peak parameter follows the free parameters: value = scale x free[root] + offset;
/// with root -1 it is the constant `offset`. A link is a chain of +, -, * and / relations,
/// so every parameter is such an affine function of one free parameter or of none.
struct ParameterLink {
    int root = -1;
    double scale = 1;
    double offset = 0;
};

class FitModel {
public:
    /// The peaks of `fitted` vary (their parameters that are neither fixed nor linked are
    /// free); the residuals cover every region of `scored` (which holds `fitted`: the
    /// regions whose peaks follow a fitted peak through a link belong there too). Regions
    /// need data and a background.
    FitModel(const Project& project, const std::vector<int>& fitted,
             const std::vector<int>& scored);

    const std::vector<FreeParameter>& Free() const { return free_; }
    int FreeCount() const { return static_cast<int>(free_.size()); }
    /// Range points of all scored regions.
    int ResidualCount() const { return static_cast<int>(rows_.size()); }
    /// The free parameters' present values, moved inside their bounds.
    std::vector<double> Start() const;

    /// Residual j is (R - model) / sqrt(w m) at one range point, w = |R| (1 where R is 0)
    /// and m the range points of its region: the residuals of a region square and sum to
    /// its chi-square. With `jacobian`, d residual / d free parameter, row-major. False when
    /// a value is not finite.
    bool Evaluate(const double* theta, double* residuals, double* jacobian) const;

    /// sqrt(w m) of residual j: residual x this is the plain difference R - model.
    double RowScale(int j) const { return rows_[static_cast<std::size_t>(j)].scale; }
    /// m, the range points of the region of residual j.
    int RowPoints(int j) const { return rows_[static_cast<std::size_t>(j)].points; }

    /// How parameter `which` of peak `slot` follows the free parameters.
    const ParameterLink& Link(int slot, PeakParameter which) const {
        return links_[static_cast<std::size_t>(slot)][static_cast<std::size_t>(which)];
    }
    /// The peaks of the scored regions, region by region in PeakIndex order.
    const std::vector<int>& Peaks() const { return peaks_; }
    /// The scored regions.
    const std::vector<int>& Regions() const { return scored_; }

    /// Writes the free parameters into their peaks (%GL rounded to a whole number) and lets
    /// the peaks that follow them through links follow, as constraint propagation does.
    void Store(Project& project, const double* theta) const;

private:
    struct Row {
        float x = 0, y = 0, background = 0;
        double scale = 1;  // sqrt(w m)
        int region = 0;    // index into scored_
        int points = 0;    // m
    };
    const Project& project_;
    std::vector<int> scored_;
    std::vector<std::vector<int>> regionPeaks_;  // per scored region
    std::vector<int> peaks_;
    std::vector<FreeParameter> free_;
    std::array<std::array<ParameterLink, 4>, kPeakSlots> links_{};
    std::vector<Row> rows_;
    std::vector<float> shifts_;  // per scored region
};

/// True when the peak's Fix flag of that parameter is set.
bool IsFixed(const Peak& peak, PeakParameter which);

/// The regions whose residuals a fit of `fitted` must score: `fitted` and every region with
/// a peak that follows one of their peaks through a chain of links, in slot order.
std::vector<int> ScoredRegions(const Project& project, const std::vector<int>& fitted);

}  // namespace molvera
