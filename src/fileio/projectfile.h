#pragma once
// The project file (.xps): version 4.0 written; 4.0, 3.0 and the older "SF" layout read.

#include <string>

#include "model/host.h"
#include "model/records.h"
#include "base/status.h"

namespace molvera {

/// Writes the whole project in version 4.0. Description is first cut to 128
/// characters (and kept so). The previous file survives any failure
/// ("Error in writing file").
Status SaveProject(Project& project, const std::string& path);

/// Loads a project file into `project`, then recomputes every region and brings the
/// main window and the region window up to date. Failures ("Wrong file format",
/// "Error in reading file") are shown through `host` and returned.
Status LoadProject(Project& project, Host& host, const std::string& path);

}  // namespace molvera
