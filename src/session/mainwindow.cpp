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
        case RegionButtonColour::Current: return {255, 255, 192};
        case RegionButtonColour::HasData: return {192, 255, 192};
        case RegionButtonColour::ButtonFace: break;
    }
    return {0, 0, 0};
}

static void SetRegionPeakButtons(const Project& project, Host& host, int r, bool enabled) {
    const Region& region = project.Regions[r];
    for (int i = 0; i < region.PeakCount && i < kMaxPeaksPerRegion; ++i)
        host.SetPeakButton(PeakButtonIndex(r, i), std::to_string(region.PeakIndex[i]), enabled);
}

void SelectRegion(Project& project, Host& host, int k) {
    if (k < 0 || k >= kRegionCount) return;
    if (IsSet(project.Current().HasBackground))
        SetRegionPeakButtons(project, host, project.CurrentRegion, false);
    project.CurrentRegion = static_cast<Int16>(k);
    host.RecolourRegionButtons();
    const Region& region = project.Current();
    if (IsSet(region.HasData) && IsSet(region.HasBackground))
        SetRegionPeakButtons(project, host, k, true);
    host.HideRegionDialogs();
    host.ShowRegionWindow();
}

std::string ProposeFileName(const std::string& lastFileName, const std::string& extension) {
    const std::size_t slash = lastFileName.find_last_of("/\\");
    const std::size_t nameStart = slash == std::string::npos ? 0 : slash + 1;
    const std::size_t dot = lastFileName.find('.', nameStart);
    if (dot == std::string::npos) return lastFileName;
    return lastFileName.substr(0, dot + 1) + extension;
}

}  // namespace molvera
