#include "session/mainwindow.h"

#include "model/project.h"

namespace molvera {

RegionButtonColour RegionButtonColourOf(const Project& project, int region) {
    if (region == project.CurrentRegion) return RegionButtonColour::Current;
    if (IsSet(project.Regions[region].HasData)) return RegionButtonColour::HasData;
    return RegionButtonColour::ButtonFace;
}

Rgb RegionButtonRgb(RegionButtonColour colour) {
    switch (colour) {
        case RegionButtonColour::Current:
            return {255, 255, 192};
        case RegionButtonColour::HasData:
            return {192, 255, 192};
        case RegionButtonColour::ButtonFace:
            break;
    }
    return {0, 0, 0};
}

void SelectRegion(Project& project, SessionHost& host, int k) {
    if (k < 0 || k >= kRegionCount) return;
    if (IsSet(project.Current().HasBackground))
        host.PeakListChanged(project.CurrentRegion, PeakList(project.Current()), false);
    project.CurrentRegion = static_cast<Int16>(k);
    host.RegionListChanged();
    const Region& region = project.Current();
    if (IsSet(region.HasData) && IsSet(region.HasBackground))
        host.PeakListChanged(k, PeakList(region), true);
    host.HideRegionDialogs();
    host.RegionInView();
}

std::string ProposeFileName(const std::string& lastFileName, const std::string& extension) {
    const std::size_t slash = lastFileName.find_last_of("/\\");
    const std::size_t nameStart = slash == std::string::npos ? 0 : slash + 1;
    const std::size_t dot = lastFileName.find('.', nameStart);
    if (dot == std::string::npos) return lastFileName;
    return lastFileName.substr(0, dot + 1) + extension;
}

}  // namespace molvera
