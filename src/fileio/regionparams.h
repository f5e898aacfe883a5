#pragma once
// The region parameter file (.rpa): a region's background settings and peaks
// without its data.

#include <string>
#include <string_view>

#include "base/status.h"
#include "model/host.h"
#include "model/records.h"

namespace molvera {

/// Magic text at the start of a region parameter file of the current layout.
inline constexpr const char* kRegionParamsHeader = "MOLVERA 4.0 Region Parameters";

/// The bytes of the region parameter file of the current region.
std::string RegionParameterBytes(const Project& project);

/// Writes the current region's settings and its peaks (in slot order) to `path`;
/// fails with "Error in writing file".
Status SaveRegionParameters(const Project& project, const std::string& path);

/// Replaces the current region's background settings and peaks by those in `path`
/// (current or older layout) and recomputes the region. Failures, each with the region
/// unchanged: "Error in reading file", "Incompatible region", "Binding energy
/// out-of-range" and "Too many peaks" (after a beep). The caller shows the message.
Status LoadRegionParameters(Project& project, Host& host, const std::string& path);

/// The same on the bytes of a region parameter file.
Status ApplyRegionParameterBytes(Project& project, Host& host, std::string_view bytes);

}  // namespace molvera
