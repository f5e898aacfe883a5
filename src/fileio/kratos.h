#pragma once
// Kratos text export (.des), with the fit (background and components) it may carry.

#include <string>

#include "model/host.h"
#include "model/records.h"
#include "base/status.h"

namespace molvera {

/// Largest Kratos file: 501 blocks of 1024 characters.
constexpr std::size_t kMaxKratosBytes = 501u * 1024u;

/// Reads a Kratos export into the current region (binding energy = excitation
/// energy minus kinetic energy, in the file's order) and rebuilds the fit of its
/// "Regions" block: background range and curve, peaks in free slots, envelope.
Status ReadKratos(Project& project, Host& host, const std::string& path);

}  // namespace molvera
