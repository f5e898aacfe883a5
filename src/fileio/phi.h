#pragma once
// Phi text export: per region two description items, a caption, the start energy, the
// step and the point count, then the intensities.

#include <string_view>

#include "fileio/importstore.h"

namespace molvera {

/// Every region of a Phi export (at most ten are read).
ImportedData ReadPhi(std::string_view text);

}  // namespace molvera
