#pragma once
// The peak editor's Optimise buttons: one parameter (OptPos, OptFWHM, OptArea, OptGL)
// or the whole peak (Optpeak) of CurrentPeak.

#include "model/host.h"
#include "model/records.h"
#include "session/peakform.h"

namespace molvera {

/// OptPos, OptFWHM, OptArea or OptGL: that one box is read into CurrentPeak, the
/// parameter is fitted (Newton when Method is 1, otherwise Search; %GL always by
/// Search) and the result is written back into the box.
void OptimiseParameterClick(Project& project, Host& host, PeakForm& form, PeakParameter which);

/// Optpeak: the whole editor is applied, all parameters of CurrentPeak are fitted by
/// the chosen method, the four value boxes and ActFWHM are refreshed.
void OptpeakClick(Project& project, Host& host, PeakForm& form);

}  // namespace molvera
