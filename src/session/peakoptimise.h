#pragma once
// The peak editor's Optimise buttons: one parameter (the Optimise button of its frame)
// or the whole peak ("Optimise Peak") of CurrentPeak.

#include "model/host.h"
#include "model/records.h"
#include "session/peakform.h"

namespace molvera {

/// A frame's Optimise button: that one box is read into CurrentPeak, the
/// parameter is fitted (Newton when Method is 1, otherwise Search; %GL always by
/// Search) and the result is written back into the box. A box that holds no number is
/// refused and nothing is done.
Status OptimiseEditedParameter(Project& project, Host& host, PeakForm& form, PeakParameter which);

/// "Optimise Peak": the whole editor is applied, all parameters of CurrentPeak are
/// fitted by the chosen method, the four value boxes and the actual FWHM are refreshed;
/// a refusal of ApplyPeakEditor changes nothing.
Status OptimiseEditedPeak(Project& project, Host& host, PeakForm& form);

}  // namespace molvera
