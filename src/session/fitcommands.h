#pragma once
// The commands that fit whole regions: the region window's Optimise Region and the main
// window's Optimise All.

#include "model/records.h"
#include "session/sessionhost.h"

namespace molvera {

/// Optimise Region: nothing unless the current region has data and a background; hides
/// the peak editor and runs OptimiseRegion between BeginFit and EndFit.
void OptimiseRegionCommand(Project& project, SessionHost& host);

/// Optimise All: OptimiseAllRegions between BeginFit and EndFit, the peak editor hidden.
void OptimiseAllCommand(Project& project, SessionHost& host);

}  // namespace molvera
