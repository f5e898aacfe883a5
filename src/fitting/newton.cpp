#include "fitting/newton.h"

#include <array>
#include <cmath>
#include <optional>

#include "fitting/search.h"
#include "fitting/trialscore.h"
#include "spectral/envelope.h"

namespace molvera {

namespace {

/// Sample offsets in the order they are taken.
constexpr std::array<int, 12> kOffsets{6, 5, 4, 3, 2, 1, -1, -2, -3, -4, -5, -6};

void NewtonStep(Project& project, Host& host, PeakParameter g, int p, float delta, bool& improved) {
    if (!IsPeakSlot(p)) return;
    const ParameterConstraint& c = project.Constraints[p][g];
    if (IsSet(c.Linked)) return;
    const ScoreMode mode = ChooseScoreMode(project, g, p);
    Peak& peak = project.Peaks[p];
    float& x = ParameterField(peak, g);
    project.EditPeak = peak;
    const float x0 = x;

    // The area trials of a peak alone differ only in its height.
    std::optional<AreaTrialCache> areaTrials;
    if (mode == ScoreMode::Alone && g == PeakParameter::Area) areaTrials.emplace(project.Current());
    AreaTrialCache* cache = areaTrials ? &*areaTrials : nullptr;
    double f0 = 0;
    if (mode == ScoreMode::Alone) {
        ResidualWithoutPeak(project, p);
        f0 = TrialChiSquare(project, p, cache);
    } else {
        f0 = mode == ScoreMode::Region ? project.Current().ChiSquare : project.TotalChiSquare;
    }

    // f[6 + k] holds the sample at x0 + k*delta, f[6] = f0.
    std::array<double, 13> f{};
    f[6] = f0;
    if (mode == ScoreMode::Alone) {
        std::array<float, kOffsets.size()> values{};
        std::array<float, kOffsets.size()> scores{};
        for (std::size_t i = 0; i < kOffsets.size(); ++i)
            values[i] = static_cast<float>(static_cast<double>(x0) +
                                           kOffsets[i] * static_cast<double>(delta));
        TrialChiSquares(project, p, x, values, scores, cache);
        for (std::size_t i = 0; i < kOffsets.size(); ++i) f[6 + kOffsets[i]] = scores[i];
    } else {
        for (int k : kOffsets) {
            x = static_cast<float>(static_cast<double>(x0) + k * static_cast<double>(delta));
            f[6 + k] = ScoreTrial(project, host, mode, g, p);
        }
    }
    auto at = [&f](int k) { return f[6 + k]; };
    const double dd = delta;
    const double d1 = ((at(3) - at(-3)) - 9 * (at(2) - at(-2)) + 45 * (at(1) - at(-1))) / (60 * dd);
    const float d2 = static_cast<float>(
        ((at(6) + at(-6)) - 18 * (at(5) + at(-5)) + 171 * (at(4) + at(-4)) -
         810 * (at(3) + at(-3)) + 1935 * (at(2) + at(-2)) + 828 * (at(1) + at(-1)) - 4214 * f0) /
        (3600 * dd * dd));

    auto restore = [&] {
        x = x0;
        improved = false;
        SettleProject(project, host, mode, g, p);
    };
    // Samples that are not finite (a FWHM at or below 0, for example) count as D2 = 0.
    if (d2 == 0 || !std::isfinite(d2) || !std::isfinite(d1)) {
        restore();
        return;
    }
    double next = static_cast<double>(x0) + (-d1 / d2);
    if (IsSet(c.UseLimits) && next < c.LowLimit) next = c.LowLimit;
    if (IsSet(c.UseLimits) && next > c.HighLimit) next = c.HighLimit;
    if (g == PeakParameter::Area && next < 0.1) next = 0.1;
    x = static_cast<float>(next);

    double f1 = 0;
    if (mode == ScoreMode::Alone) {
        f1 = TrialChiSquare(project, p, cache);
    } else {
        SettleProject(project, host, mode, g, p);
        f1 = mode == ScoreMode::Region ? project.Current().ChiSquare : project.TotalChiSquare;
    }
    const bool worse = !std::isfinite(f1) || f1 > f0;
    if (worse) {
        x = x0;
        improved = false;
        if (mode != ScoreMode::Alone) SettleProject(project, host, mode, g, p);
    } else {
        improved = true;
    }
    if (mode == ScoreMode::Alone) SettleProject(project, host, mode, g, p);
}

/// Peak editor loop of one parameter: per used level, up to NewtonTrials steps while
/// they improve.
template <typename Step, typename DeltaOf>
void NewtonPeakParameter(Project& project, Host& host, int p,
                         const std::array<NewtonLevel, kLevels>& levels, Step step,
                         DeltaOf deltaOf) {
    for (int level = 0; level < kLevels; ++level) {
        if (!IsSet(levels[level].Use)) continue;
        const float delta = deltaOf(level);
        for (int t = 1; t <= project.Options.NewtonTrials; ++t) {
            bool improved = false;
            step(project, host, p, delta, improved);
            if (!improved) break;
            host.RegionInView();
            host.Yield();
            if (project.StopRequested) return;
        }
    }
}

}  // namespace

void NewtonPosition(Project& project, Host& host, int p, float delta, bool& improved) {
    NewtonStep(project, host, PeakParameter::Position, p, delta, improved);
}

void NewtonArea(Project& project, Host& host, int p, float delta, bool& improved) {
    NewtonStep(project, host, PeakParameter::Area, p, delta, improved);
}

void NewtonFWHM(Project& project, Host& host, int p, float delta, bool& improved) {
    NewtonStep(project, host, PeakParameter::FWHM, p, delta, improved);
}

float NewtonAreaDelta(Project& project, int p, int level) {
    Peak& peak = project.Peaks[p];
    if (peak.Area == 0) peak.Area = 1;
    return static_cast<float>(static_cast<double>(peak.Area) *
                              project.Options.AreaNewton[level].Delta);
}

void NewtonPeakPosition(Project& project, Host& host, int p) {
    if (!IsPeakSlot(p) || project.Peaks[p].FixPosition == 1) return;
    const auto& levels = project.Options.PositionNewton;
    NewtonPeakParameter(project, host, p, levels, NewtonPosition,
                        [&](int level) { return levels[level].Delta; });
}

void NewtonPeakArea(Project& project, Host& host, int p) {
    if (!IsPeakSlot(p) || project.Peaks[p].FixArea == 1) return;
    NewtonPeakParameter(project, host, p, project.Options.AreaNewton, NewtonArea,
                        [&](int level) { return NewtonAreaDelta(project, p, level); });
}

void NewtonPeakFWHM(Project& project, Host& host, int p) {
    if (!IsPeakSlot(p) || project.Peaks[p].FixFWHM == 1) return;
    const auto& levels = project.Options.FWHMNewton;
    NewtonPeakParameter(project, host, p, levels, NewtonFWHM,
                        [&](int level) { return levels[level].Delta; });
}

void NewtonPeak(Project& project, Host& host, int p) {
    if (!IsPeakSlot(p)) return;
    const FitOptions& o = project.Options;
    const Peak& peak = project.Peaks[p];
    bool improved = false;
    for (int trial = 1; trial <= o.NewtonTrials; ++trial) {
        for (int level = 0; level < kLevels; ++level) {
            if (IsSet(o.PositionNewton[level].Use) && peak.FixPosition == 0) {
                NewtonPosition(project, host, p, o.PositionNewton[level].Delta, improved);
            }
            host.Yield();
            if (project.StopRequested) return;
            if (IsSet(o.AreaNewton[level].Use) && peak.FixArea == 0) {
                NewtonArea(project, host, p, NewtonAreaDelta(project, p, level), improved);
            }
            host.Yield();
            if (project.StopRequested) return;
            if (IsSet(o.FWHMNewton[level].Use) && peak.FixFWHM == 0) {
                NewtonFWHM(project, host, p, o.FWHMNewton[level].Delta, improved);
            }
            host.Yield();
            if (project.StopRequested) return;
            if (peak.FixGL == 0) SearchGL(project, host, p);
            host.Yield();
            if (project.StopRequested) return;
        }
        host.RegionInView();
        if (project.StopRequested) return;
    }
}

}  // namespace molvera
