#include "fileio/importstore.h"

#include <algorithm>
#include <string>

#include "base/messages.h"
#include "model/project.h"
#include "spectral/regionedit.h"
#include "spectral/background.h"

namespace molvera {

std::string TooManyPointsMessage() {
    return std::string(msg::kTooManyPointsPrefix) + std::to_string(kMaxPoints) +
           msg::kTooManyPointsSuffix;
}

void PrepareRegionForImport(Project& project, Host& host) {
    const Region& region = project.Current();
    if (IsSet(region.HasData))
        DeleteRegionData(project, host);
    else if (IsSet(region.HasBackground) || region.PeakCount != 0)
        ClearRegionParameters(project, host);
}

void StoreSpectrum(Project& project, const ImportedSpectrum& s, SortRule rule) {
    Region& region = project.Current();
    const int n = static_cast<int>(std::min<std::size_t>(s.energy.size(), kMaxPoints));
    ResizeRegionArrays(region, n);
    region.PointCount = static_cast<Int16>(n);
    bool reverse = false;
    if (n > 0) {
        const float first = s.energy[0];
        const float last = s.energy[static_cast<std::size_t>(n - 1)];
        reverse = rule == SortRule::ReverseUnlessFalling ? !(first > last) : first < last;
    }
    for (int i = 1; i <= n; ++i) {
        const std::size_t from = static_cast<std::size_t>(reverse ? n - i : i - 1);
        region.BindingEnergy[static_cast<std::size_t>(i)] = s.energy[from];
        region.RawIntensity[static_cast<std::size_t>(i)] = s.intensity[from];
    }
    region.Caption = Text20::From(s.caption);
    region.HasData = kTrue;
    region.HasBackground = kFalse;
    region.PeakCount = 0;
    UpdateDataExtents(region);
}

int StoreRegions(Project& project, Host& host, const std::vector<ImportedSpectrum>& spectra,
                 SortRule rule, bool checkAfterLast) {
    const Int16 start = project.CurrentRegion;
    int stored = 0;
    for (std::size_t k = 0; k < spectra.size(); ++k) {
        PrepareRegionForImport(project, host);
        if (spectra[k].overflow) host.Message(TooManyPointsMessage());
        StoreSpectrum(project, spectra[k], rule);
        ++stored;
        if (k + 1 == spectra.size() && !checkAfterLast) break;
        project.CurrentRegion = static_cast<Int16>((project.CurrentRegion + 1) % kRegionCount);
        if (project.CurrentRegion == start) {
            host.Message(msg::kTooManyRegions);
            break;
        }
    }
    project.CurrentRegion = start;
    return stored;
}

Status ImportFailure(Host& host, const char* message) {
    host.Message(message);
    return Status::Error(message);
}

}  // namespace molvera
