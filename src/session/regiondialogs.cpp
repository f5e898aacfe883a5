#include "session/regiondialogs.h"

#include "base/numtext.h"
#include "session/formnumber.h"
#include "spectral/envelope.h"

namespace molvera {

void OpenRegionShift(const Project& project, RegionShiftForm& form) {
    form.shiftText = FormatGeneral(project.Current().Shift);
    form.visible = true;
}

void AcceptRegionShift(Project& project, Host& host, RegionShiftForm& form) {
    Region& region = project.Current();
    region.Shift = BoxSingle(form.shiftText);
    form.visible = false;
    if (IsSet(region.HasBackground) && region.PeakCount > 0) ComputeRegionEnvelope(project, host);
    if (IsSet(region.HasData)) host.CurvesChanged();
}

void OpenRegionCaption(const Project& project, RegionCaptionForm& form) {
    form.captionText = project.Current().Caption.Str();
    form.visible = true;
}

void AcceptRegionCaption(Project& project, Host& host, RegionCaptionForm& form) {
    Region& region = project.Current();
    region.Caption = Text20::From(form.captionText);
    form.visible = false;
    if (IsSet(region.HasData)) host.CurvesChanged();
}

}  // namespace molvera
