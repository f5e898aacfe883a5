#pragma once
// Standard uncertainties of the fitted peak parameters, from the covariance at the
// project's present values: sigma^2 = diag((J' W J)^-1) x sum(w r^2) / (m - n).

#include <array>
#include <vector>

#include "model/records.h"

namespace molvera {

/// The standard uncertainty of one value.
struct Sigma {
    enum class State {
        Fixed,          ///< not varied by a fit (fixed, or following a fixed value)
        NotDetermined,  ///< on a bound, or the data cannot tell it apart from another value
        Value,
    };
    State state = State::Fixed;
    double value = 0;
};

/// The uncertainties of one peak.
struct PeakSigmas {
    std::array<Sigma, 4> parameters;  ///< by PeakParameter
    double areaPercent = 0;           ///< the peak's share of its region's peak area, %
    Sigma areaPercentSigma;
};

/// The uncertainties of every peak of the regions a fit of `fitted` scores.
struct Uncertainties {
    std::array<PeakSigmas, kPeakSlots> peaks{};
    std::vector<int> peakSlots;  ///< the peaks covered, region by region in PeakIndex order
    int points = 0;              ///< range points of the scored regions
    int freeParameters = 0;      ///< varied parameters
    /// sum(w r^2) / (points - free parameters); not finite when there are too few points.
    double reducedChiSquare = 0;
};

/// The uncertainties of the parameters a fit of the regions `fitted` varies (neither fixed
/// nor linked), of the parameters linked to them, and of each peak's area share, at the
/// project's present values.
Uncertainties ComputeUncertainties(const Project& project, const std::vector<int>& fitted);

}  // namespace molvera
