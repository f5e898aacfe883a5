#include "session/peakoptimise.h"

#include <algorithm>
#include <string>

#include "base/numtext.h"
#include "fitting/driver.h"
#include "session/formnumber.h"
#include "spectral/envelope.h"
#include "spectral/lineshape.h"

namespace molvera {

namespace {

// The peak being edited, or nothing when there is no fit to run for it.
Peak* EditedPeak(Project& project) {
    const int slot = project.CurrentPeak;
    if (slot < 0 || slot >= kPeakSlots) return nullptr;
    Peak& peak = project.Peaks[slot];
    if (!IsSet(peak.InUse) || !IsSet(project.Current().HasBackground)) return nullptr;
    return &peak;
}

// One box the user changed into the peak. %GL is a whole number kept inside 0..100, as in
// ApplyPeakEditor.
void ReadBox(Peak& peak, PeakForm& form, PeakParameter which) {
    switch (which) {
        case PeakParameter::Position:
            peak.Position = BoxSingle(form.positionText);
            break;
        case PeakParameter::FWHM:
            peak.FWHM = BoxSingle(form.fwhmText);
            break;
        case PeakParameter::Area:
            peak.Area = BoxSingle(form.areaText);
            break;
        case PeakParameter::GL:
            peak.PercentGL = static_cast<Int16>(
                std::clamp(RoundHalfEven(LeadingNumber(form.glText)), 0.0, 100.0));
            break;
    }
}

void WriteBox(const Peak& peak, PeakForm& form, PeakParameter which) {
    switch (which) {
        case PeakParameter::Position:
            form.positionText = FormatGeneral(peak.Position);
            break;
        case PeakParameter::FWHM:
            form.fwhmText = FormatGeneral(peak.FWHM);
            break;
        case PeakParameter::Area:
            form.areaText = FormatGeneral(peak.Area);
            break;
        case PeakParameter::GL:
            form.glText = std::to_string(peak.PercentGL);
            break;
    }
    const NumberBox box = PeakBox(form, which);
    form.shownText[box.field] = box.text;  // the fitted value, not a typed one
}

// The optimisers start from the region's chi-square: score the values just typed, so
// that a trial is compared with them and not with the curves drawn before the typing.
void ScoreTypedValues(Project& project, Host& host, Peak& peak) {
    peak.HeightPercent = AreaToHeightPercent(project, peak);
    ComputeRegionEnvelope(project, host);
}

}  // namespace

Status OptimiseEditedParameter(Project& project, Host& host, PeakForm& form, PeakParameter which) {
    Peak* peak = EditedPeak(project);
    if (peak == nullptr) return Status::Ok();
    if (Status st = CheckNumberBoxes({PeakBox(form, which)}, form.invalidBox); !st) return st;
    if (BoxTyped(form, PeakBox(form, which))) ReadBox(*peak, form, which);
    ScoreTypedValues(project, host, *peak);
    OptimisePeakParameter(project, host, project.CurrentPeak, which);
    WriteBox(*peak, form, which);
    return Status::Ok();
}

Status OptimiseEditedPeak(Project& project, Host& host, PeakForm& form) {
    Peak* peak = EditedPeak(project);
    if (peak == nullptr) return Status::Ok();
    if (Status st = ApplyPeakEditor(project, form); !st) return st;
    ScoreTypedValues(project, host, *peak);
    OptimisePeak(project, host, project.CurrentPeak);
    for (const PeakParameter which : kPeakParameters) WriteBox(*peak, form, which);
    form.actualFWHM = ActualFWHMText(ActualFWHM(project, project.CurrentPeak));
    return Status::Ok();
}

}  // namespace molvera
