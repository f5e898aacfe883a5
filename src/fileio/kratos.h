#pragma once
// Kratos text export (.des), with the fit (background and components) it may carry.

#include <cstddef>
#include <string_view>

#include "fileio/importstore.h"

namespace molvera {

/// Largest Kratos file: 501 blocks of 1024 characters.
constexpr std::size_t kMaxKratosBytes = std::size_t{501} * 1024;

/// The spectrum of a Kratos export (binding energy = excitation energy minus kinetic
/// energy, in the file's order), its comment as description, and the fit of its
/// "Regions" block when it has one.
ImportedData ReadKratos(std::string_view text);

/// Stores a Kratos spectrum into the current region and rebuilds its fit: background
/// range and curve, peaks in free slots, envelope. A fit that cannot be placed (more
/// components than free slots, a range of fewer than two points) is refused with
/// "Error in reading file" before anything changes.
ImportResult StoreKratos(Project& project, Host& host, const ImportedData& data);

}  // namespace molvera
