#pragma once
// Whole-project operations on the records: clearing and sizing arrays.

#include "model/host.h"
#include "model/records.h"

namespace molvera {

/// Resets the project to its start-up state (regions emptied, peak slots and
/// constraints cleared).
void ClearProject(Project& project, Host& host);

/// Resets one peak slot and its constraint record to the cleared values;
/// TailScale, TailLength and the limits keep their values.
void ClearPeakSlot(Project& project, int slot);

/// The fixed values of a newly added or imported peak: a single line (type s), no
/// splitting, position, width and area free, %GL fixed, symmetric, owned by `region`.
void SetNewPeakDefaults(Peak& peak, int region);

/// Allocates all eight arrays of a region with bounds 0..n, contents cleared.
void ResizeRegionArrays(Region& region, int n);

/// Allocates the Curve of a slot in Peaks and in SavedPeaks with bounds 0..m, cleared.
void ResizePeakCurve(Project& project, int slot, int m);

/// The lowest peak slot that is not in use, or -1.
int FirstFreePeakSlot(const Project& project);

/// IsReference and DependentPeak of peak `ref` in group `g` from the peaks now linked
/// to it: the last of them is the dependent; with none, `ref` is no reference.
void RecountDependents(Project& project, PeakParameter g, int ref);

/// Unties a deleted slot in all four groups: its own link is removed (its reference
/// recounted), the peaks that followed it are unlinked, and its limits are switched off.
void ReleaseTies(Project& project, int slot);

/// Number of the main-window peak button of position `k` in region `r`.
constexpr int PeakButtonIndex(int r, int k) { return 10 * r + k; }

}  // namespace molvera
