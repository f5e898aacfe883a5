#pragma once
// The project and the fitting options as JSON, for molvera-cli's dump commands and reports.

#include <nlohmann/json.hpp>

#include "model/records.h"

namespace molvera {

using Json = nlohmann::ordered_json;

/// A Single written so that it reads back to the same Single ("NaN", "Infinity" and
/// "-Infinity" as strings).
Json FloatJson(float value);

/// Every field of the project record by record, every array in full from element 0.
Json ProjectToJson(const Project& project);

/// Every field of the fitting options; levels as arrays of four.
Json OptionsToJson(const FitOptions& options);

}  // namespace molvera
