#pragma once
// Leybold text export: a description, the number of regions, then per region a
// caption, its point count and the (energy, intensity) pairs.

#include <string_view>

#include "fileio/importstore.h"

namespace molvera {

/// Every region of a Leybold export (at most ten are read).
ImportedData ReadLeybold(std::string_view text);

}  // namespace molvera
