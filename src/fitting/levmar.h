#pragma once
// The Levenberg-Marquardt method: every free parameter of a region's peaks at once,
// minimising the program's chi-square.

#include <string>
#include <vector>

#include "model/host.h"
#include "model/records.h"

namespace molvera {

/// How a Levenberg-Marquardt fit ended.
struct LevenbergMarquardtRun {
    int iterations = 0;
    bool stopped = false;  ///< Stop Fitting (or Ctrl-C) ended it
    std::string problem;   ///< why nothing was fitted; empty when the fit ran
};

/// Fits the free parameters (neither fixed nor linked) of the peaks of `fitted` jointly,
/// scoring every region whose peaks follow them through links, with at most NewtonTrials
/// iterations and Tolerance as the relative chi-square change that ends it. Limits are
/// bounds, FWHM and area stay above 0 and %GL within 0..100; linked parameters follow their
/// references. The project ends with the best values found, propagated, its curves and
/// chi-squares recomputed; a result whose chi-square is worse than the start's is not kept.
/// Stop Fitting ends it at the next iteration.
LevenbergMarquardtRun FitLevenbergMarquardt(Project& project, Host& host,
                                            const std::vector<int>& fitted);

}  // namespace molvera
