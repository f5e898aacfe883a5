#pragma once
// Plain two-column text import: binding energy and intensity.

#include <string_view>

#include "fileio/importstore.h"

namespace molvera {

/// Pairs (binding energy, intensity), one per line. A comma, blank, tab or semicolon
/// separates items; a line whose first item is not a number, a line with a single item
/// and a line starting with "#" or "//" are skipped. At most 5000 pairs are kept (more
/// mark the spectrum as overflowing); a second spectrum in the file is not read. Text lines
/// other than comments between two pairs are counted as skipped.
ImportedData ReadAscii(std::string_view text);

}  // namespace molvera
