#pragma once
// The background dialog's two Optimise buttons: the Shirley slope search and the
// Tougaard B1 search, with the busy state that the latter runs in.

#include "model/host.h"
#include "model/records.h"
#include "session/backgroundform.h"
#include "session/sessionhost.h"

namespace molvera {

/// Busy state: Idle cleared, hourglass, the program's windows disabled.
void BeginBusy(Project& project, SessionHost& host);
/// Busy state over: Idle set to -1, arrow, the windows enabled.
void EndBusy(Project& project, SessionHost& host);

/// The "Optimise" button under "Shirley+Linear (0 for Shir.)": the smallest Shirley
/// slope whose background stays below the 9-point smoothed data, doubling from the
/// slope box (0 starts at 1), then 21 bisections; every trial goes into
/// BackgroundParameter and the box, is computed, redrawn and yielded. Nothing changes
/// for a background that does not cross; a range of fewer than 10 points cannot be
/// tested and only beeps.
void OptimiseShirleySlope(Project& project, Host& host, BackgroundForm& form);

/// B1 of a Tougaard background fitted to the first 10 range points: Accept, then three
/// stages of 19 trials (B0 x (1 + k/10, k/100, k/1000), k = -9..9) keeping strictly
/// better values; the best goes into the B1 box and BackgroundParameter, the whole
/// background is recomputed and redrawn. A range shorter than 10 points is fitted
/// over all its points.
void OptimiseTougaardB1(Project& project, Host& host, BackgroundForm& form);

/// The three refinement stages of OptimiseTougaardB1 from the region's present B1 and
/// background: the best trial goes into the B1 box and BackgroundParameter, then the
/// whole background is recomputed and redrawn. A B1 of 0 stays 0.
void RefineTougaardB1(Project& project, Host& host, BackgroundForm& form);

/// The "Optimise" button under "For Tougaard only": with "Tougaard" chosen, checks and
/// stores the range as Accept does, recomputes, searches B1 and recomputes again, all
/// while busy.
void OptimiseTougaardBackground(Project& project, SessionHost& host, BackgroundForm& form);

}  // namespace molvera
