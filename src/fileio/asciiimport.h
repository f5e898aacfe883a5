#pragma once
// Plain two-column text import: binding energy and intensity.

#include <string>

#include "model/host.h"
#include "model/records.h"
#include "model/status.h"

namespace molvera {

/// Reads pairs (binding energy, intensity) into the current region. Lines that hold
/// no number, and lines starting with "#" or "//", are skipped; a comma, blank, tab
/// or semicolon separates items. At most 5000 pairs are kept.
Status ReadAscii(Project& project, Host& host, const std::string& path);

}  // namespace molvera
