#pragma once
// Numbers typed into the dialogs' text boxes (and given to molvera-cli), as stored in
// Single fields.

#include <cmath>
#include <limits>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "base/numtext.h"
#include "base/status.h"

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

/// The box's text when all of it (blanks around it aside) is one number that a Single
/// holds; nothing for "abc", "x1.2", "1.2x", "1e999", "nan" or an empty box.
inline std::optional<double> BoxNumber(std::string_view text) {
    const std::size_t length = LeadingNumberLength(text);
    if (length == 0 || text.find_first_not_of(" \t", length) != std::string_view::npos)
        return std::nullopt;
    const double v = LeadingNumber(text);
    if (!(std::fabs(v) <= std::numeric_limits<float>::max())) return std::nullopt;
    return v;
}

/// The refusal of a box that holds no number: "Position: 'abc' is not a number".
inline Status NotANumber(std::string_view box, std::string_view text) {
    return Status::Error(std::string(box) + ": '" + std::string(text) + "' is not a number");
}

/// A box that must hold a number: the name the dialog shows it under, the form field
/// that holds its text (the box's name in the window: "positionText",
/// "positionRangeText1"), and the text.
struct NumberBox {
    std::string name;
    std::string field;
    const std::string& text;
};

/// Ok, with `invalid` emptied, when every box holds a number; otherwise the refusal of the
/// first that does not, with its field in `invalid`.
inline Status CheckNumberBoxes(const std::vector<NumberBox>& boxes, std::string& invalid) {
    invalid.clear();
    for (const NumberBox& box : boxes) {
        if (BoxNumber(box.text)) continue;
        invalid = box.field;
        return NotANumber(box.name, box.text);
    }
    return Status::Ok();
}

}  // namespace molvera
