#pragma once
// VAMAS surface chemical analysis transfer format (ISO 14976), XPS blocks only.

#include <string_view>

#include "fileio/importstore.h"

namespace molvera {

/// Every XPS block of a VAMAS file: the description is the first block's sample
/// identifier, a caption the block's transition label; kinetic energies become binding
/// energies (source energy minus kinetic energy); the intensity is the first
/// corresponding variable that is not an energy. Blocks of other techniques are skipped;
/// a first block of AES is refused with "Not an XPS file".
ImportedData ReadVamas(std::string_view text);

}  // namespace molvera
