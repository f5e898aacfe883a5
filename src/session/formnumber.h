#pragma once
// Numbers typed into the dialogs' text boxes, as stored in Single fields.

#include <cmath>
#include <limits>
#include <string_view>

#include "base/numtext.h"

namespace molvera {

/// The leading number of a box as a Single; magnitudes beyond the Single range give
/// +-infinity.
inline float BoxSingle(std::string_view text) {
    const double v = LeadingNumber(text);
    if (std::fabs(v) > std::numeric_limits<float>::max())
        return v < 0 ? -std::numeric_limits<float>::infinity()
                     : std::numeric_limits<float>::infinity();
    return static_cast<float>(v);
}

}  // namespace molvera
