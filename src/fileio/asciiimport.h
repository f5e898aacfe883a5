#pragma once
// Plain two-column text import: binding energy and intensity.

#include <string>

#include "model/host.h"
#include "model/records.h"
#include "base/status.h"

namespace molvera {

/// Reads pairs (binding energy, intensity), one per line, into the current region.
/// A comma, blank, tab or semicolon separates items; a line whose first item is not
/// a number, a line with a single item and a line starting with "#" or "//" are
/// skipped. At most 5000 pairs are kept; a second spectrum in the file is not read.
Status ReadAscii(Project& project, Host& host, const std::string& path);

}  // namespace molvera
