#pragma once
// Phi text export (.asc): per region two description items, a caption, an unused
// integer, start energy, step, point count, the intensities and an unused integer.

#include <string>

#include "model/host.h"
#include "model/records.h"
#include "base/status.h"

namespace molvera {

/// Reads every region of a Phi export into slots from CurrentRegion upward.
Status ReadPhi(Project& project, Host& host, const std::string& path);

}  // namespace molvera
