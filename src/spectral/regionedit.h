#pragma once
// Adding and deleting peaks, clearing regions: the records changed, the curves
// recomputed, and the changes reported.

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

/// Reports the chi-square and the peak list of every region with data, and the region
/// list (after a load or an import): the main window's table is brought up to date.
void RefreshMainWindow(Project& project, Host& host);

}  // namespace molvera
