#pragma once
// The Search method: one parameter of one peak over a grid of trial values.

#include "model/host.h"
#include "model/records.h"

namespace molvera {

/// Most trial values of one search level; a wider grid is cut there.
constexpr long kMaxGridTrials = 1000000;

/// Searches the position of peak p over the used PositionSearch levels.
void SearchPosition(Project& project, Host& host, int p);
/// Searches the area of peak p through its height percentage over the AreaSearch levels.
void SearchArea(Project& project, Host& host, int p);
/// Searches the FWHM of peak p over the used FWHMSearch levels.
void SearchFWHM(Project& project, Host& host, int p);
/// Searches %GL of peak p: 0, 10, ..., 100, then 9 values on each side of the best.
void SearchGL(Project& project, Host& host, int p);
/// Position, FWHM, area and %GL of peak p in turn until the region's chi-square
/// improves by less than Tolerance (peak editor "Optimise Peak").
void SearchPeak(Project& project, Host& host, int p);

}  // namespace molvera
