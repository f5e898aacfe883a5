#include "session/backgroundoptimise.h"

#include <optional>

#include "base/numtext.h"
#include "session/formnumber.h"
#include "spectral/background.h"
#include "spectral/bgoptimise.h"
#include "spectral/envelope.h"

namespace molvera {

namespace {

constexpr int kMaxDoublings = 20;
constexpr int kBisections = 21;
constexpr int kCrossingTestPoints = 10;  // points 5..m-5 need m >= 10
constexpr int kB1Divisors[] = {10, 100, 1000};

// One trial of the slope search: stored, shown, computed, redrawn; true if it crosses.
bool TrySlope(Region& region, Host& host, BackgroundForm& form, float s) {
    region.BackgroundParameter = s;
    form.shirleySlopeText = FormatGeneral(s);
    ComputeShirley(region);
    host.CurvesChanged();
    host.Yield();
    return BackgroundCrosses(region);
}

}  // namespace

void BeginBusy(Project& project, SessionHost& host) {
    project.Idle = kFalse;
    host.BeginBusy();
}

void EndBusy(Project& project, SessionHost& host) {
    project.Idle = kTrue;
    host.EndBusy();
}

void OptimiseShirleySlope(Project& project, Host& host, BackgroundForm& form) {
    Region& region = project.Current();
    if (region.BackgroundType != BackgroundKind::Shirley) return;
    // The crossing test reads points 1..m-1 around 5..m-5: a shorter range (or one not
    // yet computed) has nothing to test, so the search refuses it with the beep.
    if (UsableRangeCount(region) < kCrossingTestPoints) {
        host.Beep();
        return;
    }
    if (!BackgroundCrosses(region) || !CheckBackgroundNumbers(form)) return;

    float s = BoxSingle(form.shirleySlopeText);
    region.BackgroundParameter = s;
    if (s == 0) s = 1;

    int doublings = 0;
    bool crosses = true;
    while (crosses && doublings < kMaxDoublings) {
        s *= 2;
        ++doublings;
        crosses = TrySlope(region, host, form, s);
    }

    // a: the last crossing slope; b: the first one that does not cross (or the last
    // doubling when the crossing never went away).
    float a = s / 2;
    float b = s;
    for (int i = 0; i < kBisections; ++i) {
        const float c = (a + b) / 2;
        if (TrySlope(region, host, form, c)) {
            a = c;
        } else {
            b = c;
        }
    }
    host.CurvesChanged();
}

void OptimiseTougaardB1(Project& project, Host& host, BackgroundForm& form) {
    if (project.Current().BackgroundType != BackgroundKind::Tougaard) return;
    if (!AcceptBackground(project, host, form)) return;
    RefineTougaardB1(project, host, form);
}

void RefineTougaardB1(Project& project, Host& host, BackgroundForm& form) {
    Region& region = project.Current();

    double bestMisfit = HeadMisfit(region);
    float best = region.BackgroundParameter;
    for (const int divisor : kB1Divisors) {
        const float start = best;
        for (int k = -9; k <= 9; ++k) {
            const float b1 = static_cast<float>((static_cast<double>(k) / divisor + 1) * start);
            form.tougaardB1Text = FormatGeneral(b1);
            host.Yield();
            ComputeTougaardHead(region, BoxSingle(form.tougaardB1Text));
            const double misfit = HeadMisfit(region);
            if (misfit < bestMisfit) {
                bestMisfit = misfit;
                best = b1;
            }
        }
    }

    form.tougaardB1Text = FormatGeneral(best);
    region.BackgroundParameter = best;
    ComputeTougaard(region);
    host.CurvesChanged();
}

void OptimiseTougaardBackground(Project& project, SessionHost& host, BackgroundForm& form) {
    BeginBusy(project, host);
    if (form.backgroundType != "Tougaard") {
        host.Beep();
        EndBusy(project, host);
        return;
    }
    Region& region = project.Current();
    const std::optional<BackgroundBoxes> boxes =
        CheckBackgroundNumbers(form) ? CheckBackgroundBoxes(region, host, form) : std::nullopt;
    if (!boxes) {
        EndBusy(project, host);
        return;
    }
    // The type reads "Tougaard" (checked above); B1 comes later from Accept.
    region.BackgroundType = BackgroundKind::Tougaard;
    region.EndPointAverage = boxes->averagePoints;
    region.BackgroundLowBE = boxes->low;
    region.BackgroundHighBE = boxes->high;
    RecomputeRegion(project, host);

    OptimiseTougaardB1(project, host, form);

    RecomputeRegion(project, host);
    form.areaText = FormatGeneral(static_cast<float>(NetArea(region)));
    host.RegionInView();
    EndBusy(project, host);
}

}  // namespace molvera
