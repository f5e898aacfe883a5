#pragma once
// Dragging in the plot: a peak's apex (its position and height) and the two ends of the
// background range. Each drag goes through the logic of the peak editor or the background
// dialog, so a drag stores exactly what typing the same numbers would.

#include <optional>

#include "base/status.h"
#include "model/host.h"
#include "model/records.h"
#include "plot/plotview.h"

namespace molvera {

/// The apex of peak `slot` of the current region as drawn: its position plus the region's
/// shift, and its curve there (the background plus the peak's value). None when the slot
/// is not a peak of the current region with a background.
std::optional<PlotPoint> PeakApex(const Project& project, int slot);

/// The background under `be` in the current region: linear between the two range points
/// around it, the end value beyond the range.
double BackgroundAt(const Region& region, double be);

/// Moves the apex of peak `slot` of the current region to `to`: the position becomes
/// to.be minus the shift, and its area scales so that its own height there becomes to.i
/// minus the background (the shape is proportional to the area). A fixed or linked position, or a
/// fixed or linked area, stays as it is; peaks linked to this one follow. Refused (nothing changes)
/// when the slot is no peak of the current region or the height is not above the background.
Status DragPeakApex(Project& project, Host& host, int slot, PlotPoint to);

/// Moves the low (`low` true) or the high end of the current region's background range to
/// `be`, kept inside the data; refused (nothing changes) when the range would hold fewer
/// than 2 points or the ends would cross.
Status DragBackgroundEnd(Project& project, Host& host, bool low, double be);

}  // namespace molvera
