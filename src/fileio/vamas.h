#pragma once
// VAMAS surface chemical analysis transfer format (ISO 14976), XPS blocks only.

#include <string>

#include "model/host.h"
#include "model/records.h"
#include "base/status.h"

namespace molvera {

/// Reads every XPS block of a VAMAS file into slots from CurrentRegion upward:
/// Description is the first block's sample identifier, Caption the block's
/// transition label, kinetic energies become binding energies (source energy
/// minus kinetic energy), the intensity is the first corresponding variable that
/// is not an energy. Blocks of other techniques are skipped; a first block of AES
/// is refused with "Not an XPS file".
Status ReadVamas(Project& project, Host& host, const std::string& path);

}  // namespace molvera
