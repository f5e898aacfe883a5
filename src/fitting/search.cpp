#include "fitting/search.h"

#include <array>
#include <optional>
#include <span>

#include "base/numtext.h"
#include "fitting/trialscore.h"
#include "spectral/envelope.h"
#include "spectral/lineshape.h"

namespace molvera {

namespace {

void SetValue(Peak& peak, PeakParameter g, double v) {
    if (g == PeakParameter::GL) {
        peak.PercentGL = static_cast<Int16>(v);
    } else {
        ParameterField(peak, g) = static_cast<float>(v);
    }
}

/// The region's chi-square with the mode's view of "the score as it stands".
float StandingScore(const Project& project, ScoreMode mode) {
    return mode == ScoreMode::AllRegions ? project.TotalChiSquare : project.Current().ChiSquare;
}

/// Peak p's Curve from its present values, then PeakSumCurve and Residual from the
/// curves already held by the region's peaks.
void RebuildRegionSums(Project& project, int p) {
    (void)TrialChiSquare(project, p);
    SumPeakCurves(project, project.Current().RangeCount);
}

/// The last step of a search operation: the best value into the peak and the project
/// brought up to date with it.
void FinishSearch(Project& project, Host& host, ScoreMode mode, PeakParameter g, int p,
                  float bestScore) {
    Peak& peak = project.Peaks[p];
    const Peak& best = project.EditPeak;
    if (g == PeakParameter::GL) {
        peak.PercentGL = best.PercentGL;
    } else {
        ParameterField(peak, g) = ParameterField(project.EditPeak, g);
        if (g == PeakParameter::Area) peak.HeightPercent = best.HeightPercent;
    }
    if (mode == ScoreMode::Alone) {
        RebuildRegionSums(project, p);
        host.RegionInView();
        Region& region = project.Current();
        project.TotalChiSquare = static_cast<float>(static_cast<double>(project.TotalChiSquare) -
                                                    region.ChiSquare + bestScore);
        region.ChiSquare = bestScore;
        host.ChiSquareChanged(project.CurrentRegion, bestScore);
        host.TotalChiSquareChanged(project.TotalChiSquare);
    } else {
        SettleProject(project, host, mode, g, p);
        host.RegionInView();
    }
    host.Yield();
}

/// Clamps v to the limits when they are in use.
double Clamp(const ParameterConstraint& c, double v) {
    if (IsSet(c.UseLimits) && v < c.LowLimit) v = c.LowLimit;
    if (IsSet(c.UseLimits) && v > c.HighLimit) v = c.HighLimit;
    return v;
}

// Grid trials between two yields inside one search level.
constexpr long kTrialsPerYield = 1024;

/// One level of position, area or FWHM; returns the best score, the best value is
/// left in EditPeak.
float SearchLevelOnce(Project& project, Host& host, ScoreMode mode, PeakParameter g, int p,
                      const SearchLevel& level, float baseline) {
    const double range = level.Range;
    const double step = level.Step;
    const ParameterConstraint& c = project.Constraints[p][g];
    Peak& peak = project.Peaks[p];
    Peak& edit = project.EditPeak;
    const bool glSum = IsSet(project.Options.GLSum);
    const float netScale = project.Current().NetScale;
    const double x0 = g == PeakParameter::Area ? edit.HeightPercent : ParameterValue(edit, g);
    double best = ParameterValue(edit, g);
    float bestScore = baseline;
    auto consider = [&](float value, float score) {
        if (score < bestScore) {
            best = value;
            bestScore = score;
        }
    };
    // The trials of a peak alone are scored kTrialBatch at a time, in order; the area
    // trials differ only in the peak's height.
    std::optional<AreaTrialCache> areaTrials;
    if (mode == ScoreMode::Alone && g == PeakParameter::Area) areaTrials.emplace(project.Current());
    std::array<float, kTrialBatch> pending{};
    std::array<float, kTrialBatch> scores{};
    std::size_t count = 0;
    auto flush = [&] {
        TrialChiSquares(project, p, ParameterField(peak, g), std::span(pending.data(), count),
                        std::span(scores.data(), count), areaTrials ? &*areaTrials : nullptr);
        for (std::size_t i = 0; i < count; ++i) consider(pending[i], scores[i]);
        count = 0;
    };
    for (long k = 0; k < kMaxGridTrials; ++k) {
        // A fine step over a wide range (an option file is not checked like the dialog)
        // makes a grid of up to a million trials: let Stop Fitting through now and then.
        if (k > 0 && k % kTrialsPerYield == 0) {
            flush();
            host.Yield();
            if (project.StopRequested) break;
        }
        const double d = -range + static_cast<double>(k) * step;
        if (!(d <= range)) break;
        if (d == 0) continue;
        double v = 0;
        if (g == PeakParameter::Area) {
            const double h = x0 + d;
            if (!(h >= 0 && h < 110)) continue;
            v = HeightPercentToArea(glSum, netScale, h, edit.FWHM, edit.PercentGL, edit.PeakType,
                                    edit.TailScale, edit.TailLength);
        } else {
            v = x0 + d;
        }
        const auto value = static_cast<float>(Clamp(c, v));
        if (mode == ScoreMode::Alone) {
            pending[count++] = value;
            if (count == pending.size()) flush();
            continue;
        }
        ParameterField(peak, g) = value;
        consider(value, ScoreTrial(project, host, mode, g, p));
    }
    flush();
    SetValue(edit, g, best);
    if (g == PeakParameter::Area) {
        edit.HeightPercent =
            AreaToHeightPercent(glSum, netScale, edit.Area, edit.FWHM, edit.PercentGL,
                                edit.PeakType, edit.TailScale, edit.TailLength);
    }
    return bestScore;
}

void SearchParameter(Project& project, Host& host, PeakParameter g, int p,
                     const std::array<SearchLevel, kLevels>& levels) {
    if (!IsPeakSlot(p) || IsSet(project.Constraints[p][g].Linked)) return;
    project.EditPeak = project.Peaks[p];
    const ScoreMode mode = ChooseScoreMode(project, g, p);
    float bestScore = project.Current().ChiSquare;
    if (mode == ScoreMode::Alone) ResidualWithoutPeak(project, p);
    for (const SearchLevel& level : levels) {
        if (!IsSet(level.Use) || !(level.Step > 0)) continue;
        const float baseline = mode == ScoreMode::Alone ? bestScore : StandingScore(project, mode);
        bestScore = SearchLevelOnce(project, host, mode, g, p, level, baseline);
    }
    FinishSearch(project, host, mode, g, p, bestScore);
}

}  // namespace

void SearchPosition(Project& project, Host& host, int p) {
    SearchParameter(project, host, PeakParameter::Position, p, project.Options.PositionSearch);
}

void SearchArea(Project& project, Host& host, int p) {
    SearchParameter(project, host, PeakParameter::Area, p, project.Options.AreaSearch);
}

void SearchFWHM(Project& project, Host& host, int p) {
    SearchParameter(project, host, PeakParameter::FWHM, p, project.Options.FWHMSearch);
}

void SearchGL(Project& project, Host& host, int p) {
    if (!IsPeakSlot(p) || IsSet(project.Constraints[p][PeakParameter::GL].Linked)) return;
    project.EditPeak = project.Peaks[p];
    const ScoreMode mode = ChooseScoreMode(project, PeakParameter::GL, p);
    // Other regions follow only at the end: the trials are scored on this region.
    const ScoreMode trialMode = mode == ScoreMode::AllRegions ? ScoreMode::Region : mode;
    const ParameterConstraint& c = project.Constraints[p][PeakParameter::GL];
    const bool limits = IsSet(c.UseLimits);
    Peak& peak = project.Peaks[p];
    Int16 best = project.EditPeak.PercentGL;
    float bestScore = project.Current().ChiSquare;
    if (mode == ScoreMode::Alone) ResidualWithoutPeak(project, p);
    auto tryValue = [&](Int16 g) {
        peak.PercentGL = g;
        const float score = ScoreTrial(project, host, trialMode, PeakParameter::GL, p);
        if (score < bestScore) {
            best = g;
            bestScore = score;
        }
    };
    for (int g = 0; g <= 100; g += 10) {
        const auto value = static_cast<float>(g);  // exact: the grid is 0..100
        if (limits && (value < c.LowLimit || value > c.HighLimit)) continue;
        tryValue(static_cast<Int16>(g));
    }
    project.EditPeak.PercentGL = best;
    const int centre = best;
    for (int d = -9; d <= 9; ++d) {
        if (d == 0) continue;
        double v = centre + d;
        if (v < 0 || v > 100) continue;
        v = Clamp(c, v);
        const auto rounded = ToInt16(v);
        if (!rounded) continue;
        tryValue(*rounded);
    }
    project.EditPeak.PercentGL = best;
    FinishSearch(project, host, mode, PeakParameter::GL, p, bestScore);
}

void SearchPeak(Project& project, Host& host, int p) {
    if (!IsPeakSlot(p)) return;
    float old = project.Current().ChiSquare;
    if (project.Options.SearchTrials < 1) return;
    const Peak& peak = project.Peaks[p];
    for (int trial = 1; trial <= project.Options.SearchTrials; ++trial) {
        if (peak.FixPosition == 0) SearchPosition(project, host, p);
        if (project.StopRequested) return;
        if (peak.FixFWHM == 0) SearchFWHM(project, host, p);
        if (project.StopRequested) return;
        if (peak.FixArea == 0) SearchArea(project, host, p);
        if (project.StopRequested) return;
        if (peak.FixGL == 0) SearchGL(project, host, p);
        if (project.StopRequested) return;
        if (old == 0) return;
        const float r =
            static_cast<float>((static_cast<double>(old) - project.Current().ChiSquare) / old);
        if (!(r >= project.Options.Tolerance)) return;
        old = project.Current().ChiSquare;
    }
}

}  // namespace molvera
