#pragma once
// Leybold text export (.dat): a description, the region count, then per region a
// caption, a point count and (energy, intensity) pairs.

#include <string>

#include "model/host.h"
#include "model/records.h"
#include "base/status.h"

namespace molvera {

/// Reads every region of a Leybold export into slots from CurrentRegion upward.
Status ReadLeybold(Project& project, Host& host, const std::string& path);

}  // namespace molvera
