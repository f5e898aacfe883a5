#pragma once
// What looks wrong in a region although nothing refused it: the texts the region window's
// status line and molvera-cli show as warnings.

#include <string>
#include <vector>

#include "model/records.h"

namespace molvera {

/// The warnings of region `r`, one text each: a peak drawn outside the data ("peak 3 at
/// 512.0 eV lies outside the data (275.0 .. 292.0 eV)"), a background whose net area is
/// negative or that runs above the data by more than a tenth of the data's height range.
/// Empty for a region without data or without findings.
std::vector<std::string> RegionWarnings(const Project& project, int r);

}  // namespace molvera
