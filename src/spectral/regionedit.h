#pragma once
// Adding and deleting peaks and regions, and the main window's table.

#include "model/host.h"
#include "model/records.h"

namespace molvera {

/// Add Peak on the current region (needs data and a background): the lowest free slot
/// with the default values; returns the slot, or -1 after a beep when the region has
/// 10 peaks or no slot is free. Does not open the peak editor.
int AddPeak(Project& project, Host& host);

/// Removes CurrentPeak from the project, releasing its constraint ties, and
/// recomputes its region.
void DeletePeak(Project& project, Host& host);

/// Deletes the current region's peaks and clears its background, shift and caption.
void ClearRegionParameters(Project& project, Host& host);

/// ClearRegionParameters, then the region no longer holds data.
void DeleteRegionData(Project& project, Host& host);

/// Chi-square boxes and peak buttons of every region from the project (after a load).
void RefreshMainWindow(Project& project, Host& host);

}  // namespace molvera
