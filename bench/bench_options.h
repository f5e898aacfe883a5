#pragma once
// The fitting options of the fitting benchmarks, independent of default.opa.

#include "model/options.h"

namespace molvera {

/// Ten trials and one level per parameter: the Search method's position levels 1 eV in
/// steps of 0.1 and 0.1 in steps of 0.01, area 10 % in steps of 1, FWHM as position;
/// Newton's deltas 0.01; tolerance 0, %GL product.
inline FitOptions BenchOptions(float method) {
    FitOptions o;
    o.Method = method;
    o.SearchTrials = o.NewtonTrials = 10;
    o.Tolerance = 0;
    o.PositionSearch[0] = {-1, 1.0f, 0.1f};
    o.PositionSearch[1] = {-1, 0.1f, 0.01f};
    o.AreaSearch[0] = {-1, 10.0f, 1.0f};
    o.FWHMSearch[0] = {-1, 1.0f, 0.1f};
    o.FWHMSearch[1] = {-1, 0.1f, 0.01f};
    o.PositionNewton[0] = {-1, 0.01f};
    o.AreaNewton[0] = {-1, 0.01f};
    o.FWHMNewton[0] = {-1, 0.01f};
    return o;
}

}  // namespace molvera
