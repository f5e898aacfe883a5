#include "session/peakdrag.h"

#include <algorithm>
#include <cmath>

#include "base/numtext.h"
#include "session/backgroundform.h"
#include "session/peakform.h"
#include "spectral/lineshape.h"

namespace molvera {
namespace {

// The position of `slot` in the current region's list, or -1.
int ListedAt(const Project& project, int slot) {
    const Region& region = project.Current();
    if (!IsSet(region.HasData) || !IsSet(region.HasBackground)) return -1;
    for (int k = 0; k < region.PeakCount && k < kMaxPeaksPerRegion; ++k)
        if (region.PeakIndex[static_cast<std::size_t>(k)] == slot) return k;
    return -1;
}

bool Held(const Project& project, int slot, PeakParameter p, Int16 fixed) {
    return fixed != 0 || IsSet(project.Constraints[static_cast<std::size_t>(slot)][p].Linked);
}

}  // namespace

double BackgroundAt(const Region& region, double be) {
    const int m = region.RangeCount;
    if (m < 1 || static_cast<int>(region.BackgroundCurve.size()) <= m) return 0;
    const auto at = [&](int j) { return static_cast<double>(region.RangeBE[j]); };
    const auto bg = [&](int j) { return static_cast<double>(region.BackgroundCurve[j]); };
    // Range energies fall with the index.
    if (be >= at(1)) return bg(1);
    if (be <= at(m)) return bg(m);
    int j = 1;
    while (j < m && at(j + 1) > be) ++j;
    const double span = at(j) - at(j + 1);
    const double t = span > 0 ? (at(j) - be) / span : 0;
    return bg(j) + t * (bg(j + 1) - bg(j));
}

namespace {

// The peak's own height at its position (the drawn curve there less the background).
double OwnHeight(const Project& project, const Peak& peak, double shift) {
    return PeakValue(IsSet(project.Options.GLSum), peak, static_cast<double>(peak.Position) + shift,
                     shift);
}

}  // namespace

std::optional<PlotPoint> PeakApex(const Project& project, int slot) {
    if (ListedAt(project, slot) < 0) return std::nullopt;
    const Region& region = project.Current();
    const Peak& peak = project.Peaks[static_cast<std::size_t>(slot)];
    const double be = static_cast<double>(peak.Position) + region.Shift;
    return PlotPoint{be, BackgroundAt(region, be) + OwnHeight(project, peak, region.Shift)};
}

Status DragPeakApex(Project& project, Host& host, int slot, PlotPoint to) {
    if (ListedAt(project, slot) < 0)
        return Status::Error("no peak of this region", std::to_string(slot));
    const Region& region = project.Current();
    const Peak& peak = project.Peaks[static_cast<std::size_t>(slot)];
    const bool movePosition = !Held(project, slot, PeakParameter::Position, peak.FixPosition);
    const bool moveHeight = !Held(project, slot, PeakParameter::Area, peak.FixArea);
    // The apex stays at its energy when the position is held: the height is measured there.
    const double be = movePosition ? to.be : static_cast<double>(peak.Position) + region.Shift;
    const double height = to.i - BackgroundAt(region, be);
    // The shape scales with the area: the new area is the old one times the height ratio.
    const double now = OwnHeight(project, peak, region.Shift);
    const double area = static_cast<double>(peak.Area) * height / now;
    if (moveHeight && !(height > 0 && now > 0 && std::isfinite(area)))
        return Status::Error("the apex must lie above the background", "");
    const double shift = region.Shift;
    return AcceptOnPeak(project, host, slot, [&](PeakForm& form) {
        if (movePosition) form.positionText = FormatRoundTrip(static_cast<float>(be - shift));
        if (moveHeight) form.areaText = FormatRoundTrip(static_cast<float>(area));
    });
}

Status DragBackgroundEnd(Project& project, Host& host, bool low, double be) {
    const Region& region = project.Current();
    if (!IsSet(region.HasData) || !IsSet(region.HasBackground))
        return Status::Error("no background to move", "");
    const double clamped =
        std::clamp(be, static_cast<double>(region.MinBE), static_cast<double>(region.MaxBE));
    BackgroundForm form;
    ShowBackgroundDialog(project, form);
    (low ? form.lowBEText : form.highBEText) = FormatRoundTrip(static_cast<float>(clamped));
    const float other = low ? region.BackgroundHighBE : region.BackgroundLowBE;
    if (low ? clamped >= other : clamped <= other)
        return Status::Error("the background's ends would cross", "");
    return AcceptBackground(project, host, form);
}

}  // namespace molvera
