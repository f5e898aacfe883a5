#include "session/regiondialogs.h"

#include "base/numtext.h"
#include "session/formnumber.h"

namespace molvera {

void OpenRegionShift(const Project& project, RegionShiftForm& form) {
    form.shiftText = FormatGeneral(project.Current().Shift);
    form.visible = true;
}

void AcceptRegionShift(Project& project, RegionShiftForm& form) {
    project.Current().Shift = BoxSingle(form.shiftText);
    form.visible = false;
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
