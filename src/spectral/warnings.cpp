#include "spectral/warnings.h"

#include <algorithm>
#include <tuple>
#include <utility>

#include "base/numtext.h"
#include "spectral/background.h"
#include "spectral/envelope.h"

namespace molvera {

namespace {

std::string Energy(double value) { return FormatFixed(value, 1) + " eV"; }

// The background finding of a region with a background, or "".
std::string BackgroundWarning(const Region& region) {
    const int m = UsableRangeCount(region);
    if (m < 2) return {};
    const auto y = region.RangeIntensity.begin() + 1;
    const auto [low, high] = std::minmax_element(y, y + m);
    double excess = 0;  // largest height of the background over the data
    int at = 1;
    for (int j = 1; j <= m; ++j) {
        const double d = static_cast<double>(region.BackgroundCurve[j]) - region.RangeIntensity[j];
        if (d > excess) std::tie(excess, at) = std::pair(d, j);
    }
    const double area = NetArea(region);
    const bool above = excess > 0.1 * (static_cast<double>(*high) - *low);
    if (area >= 0 && !above) return {};
    std::string text =
        "the background runs above the data (net area " + FormatGeneral(static_cast<float>(area));
    if (above)
        text += ", up to " + FormatGeneral(static_cast<float>(excess)) + " above it at " +
                Energy(region.RangeBE[at]);
    return text + ")";
}

}  // namespace

std::vector<std::string> RegionWarnings(const Project& project, int r) {
    std::vector<std::string> found;
    if (r < 0 || r >= kRegionCount || !IsSet(project.Regions[r].HasData)) return found;
    const Region& region = project.Regions[r];
    for (const Int16 slot : PeakList(region)) {
        if (slot < 0 || slot >= kPeakSlots) continue;
        // Where the peak is drawn: its position plus the region's shift.
        const double at = static_cast<double>(project.Peaks[slot].Position) + region.Shift;
        if (at < region.MinBE || at > region.MaxBE)
            found.push_back("peak " + std::to_string(slot) + " at " + Energy(at) +
                            " lies outside the data (" + FormatFixed(region.MinBE, 1) + " .. " +
                            Energy(region.MaxBE) + ")");
    }
    if (IsSet(region.HasBackground))
        if (std::string text = BackgroundWarning(region); !text.empty())
            found.push_back(std::move(text));
    return found;
}

}  // namespace molvera
