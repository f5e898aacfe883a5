#include "fitting/driver.h"

#include <algorithm>
#include <chrono>
#include <cmath>
#include <numeric>

#include "fitting/levmar.h"
#include "fitting/newton.h"
#include "fitting/peakmodel.h"
#include "fitting/search.h"
#include "fitting/trialscore.h"
#include "fitting/uncertainty.h"

namespace molvera {

namespace {

bool SearchMethod(const Project& project) { return project.Options.Method == 0; }

/// Seconds since a fit started.
class FitClock {
public:
    double Seconds() const {
        return std::chrono::duration<double>(std::chrono::steady_clock::now() - start_).count();
    }

private:
    std::chrono::steady_clock::time_point start_ = std::chrono::steady_clock::now();
};

int PeakCountOf(const Region& region) {
    return std::clamp<int>(region.PeakCount, 0, kMaxPeaksPerRegion);
}

/// Position, area, FWHM and %GL of peak p by the Search method; false when stopped.
bool SearchPeakParameters(Project& project, Host& host, int p) {
    const Peak& peak = project.Peaks[p];
    if (peak.FixPosition == 0) SearchPosition(project, host, p);
    if (project.StopRequested) return false;
    if (peak.FixArea == 0) SearchArea(project, host, p);
    if (project.StopRequested) return false;
    if (peak.FixFWHM == 0) SearchFWHM(project, host, p);
    if (project.StopRequested) return false;
    if (peak.FixGL == 0) SearchGL(project, host, p);
    return !project.StopRequested;
}

/// Position, area and FWHM of peak p by Newton's method over the used levels, %GL by
/// the Search method; false when stopped.
bool NewtonPeakParameters(Project& project, Host& host, int p) {
    const FitOptions& o = project.Options;
    const Peak& peak = project.Peaks[p];
    bool improved = false;
    if (peak.FixPosition == 0) {
        for (int level = 0; level < kLevels; ++level) {
            if (IsSet(o.PositionNewton[level].Use))
                NewtonPosition(project, host, p, o.PositionNewton[level].Delta, improved);
        }
        host.Yield();
        if (project.StopRequested) return false;
    }
    if (peak.FixArea == 0) {
        for (int level = 0; level < kLevels; ++level) {
            if (project.Peaks[p].Area == 0) project.Peaks[p].Area = 1;
            if (IsSet(o.AreaNewton[level].Use))
                NewtonArea(project, host, p, NewtonAreaDelta(project, p, level), improved);
        }
        host.Yield();
        if (project.StopRequested) return false;
    }
    if (peak.FixFWHM == 0) {
        for (int level = 0; level < kLevels; ++level) {
            if (IsSet(o.FWHMNewton[level].Use))
                NewtonFWHM(project, host, p, o.FWHMNewton[level].Delta, improved);
        }
        host.Yield();
        if (project.StopRequested) return false;
    }
    if (peak.FixGL == 0) {
        SearchGL(project, host, p);
        host.Yield();
        if (project.StopRequested) return false;
    }
    return true;
}

int SearchRegion(Project& project, Host& host, const FitClock& clock) {
    float old = project.TotalChiSquare;
    int trial = 1;
    for (; trial <= project.Options.SearchTrials; ++trial) {
        const Region& region = project.Current();
        for (int k = 0; k < PeakCountOf(region); ++k) {
            const int p = region.PeakIndex[k];
            if (!IsPeakSlot(p)) continue;
            if (!SearchPeakParameters(project, host, p)) break;
            if (old == 0) {
                project.StopRequested = true;
                break;
            }
            const float r =
                static_cast<float>((static_cast<double>(old) - project.TotalChiSquare) / old);
            if (r < project.Options.Tolerance) {
                project.StopRequested = true;
                break;
            }
            old = project.TotalChiSquare;
        }
        host.RegionInView();
        host.FitProgressed({kSearchName, trial, project.Current().ChiSquare, clock.Seconds()});
        host.Yield();
        if (project.StopRequested) break;
    }
    host.RegionInView();
    return std::min(trial, static_cast<int>(project.Options.SearchTrials));
}

int NewtonRegion(Project& project, Host& host, const FitClock& clock) {
    int trial = 1;
    for (; trial <= project.Options.NewtonTrials; ++trial) {
        const Region& region = project.Current();
        for (int k = 0; k < PeakCountOf(region); ++k) {
            const int p = region.PeakIndex[k];
            if (!IsPeakSlot(p)) continue;
            if (!NewtonPeakParameters(project, host, p)) break;
        }
        if (project.StopRequested) break;
        host.RegionInView();
        host.FitProgressed({kNewtonName, trial, project.Current().ChiSquare, clock.Seconds()});
        host.Yield();
    }
    host.RegionInView();
    return std::min(trial, static_cast<int>(project.Options.NewtonTrials));
}

/// The reduced chi-square of the regions `fitted` at the project's present values.
double ReducedChiSquare(const Project& project, const std::vector<int>& fitted) {
    return ComputeUncertainties(project, fitted).reducedChiSquare;
}

/// The end of Optimise All's summary: the total chi-square after, the reduced chi-square of
/// every fitted region together, the time.
void FinishSummary(const Project& project, const std::vector<int>& fitted, const FitClock& clock,
                   FitSummary& summary) {
    summary.chiSquareAfter = project.TotalChiSquare;
    summary.reducedChiSquare = ReducedChiSquare(project, fitted);
    summary.seconds = clock.Seconds();
}

}  // namespace

void BeginFit(Project& project, Host& host) {
    project.StopRequested = false;
    host.FitStarted();
    host.Yield();
}

void EndFit(Project& project, Host& host) {
    project.StopRequested = false;
    host.FitEnded();
}

std::vector<std::vector<int>> LinkedGroups(const Project& project) {
    std::array<int, kRegionCount> group{};
    std::iota(group.begin(), group.end(), 0);
    auto root = [&](int r) {
        while (group[r] != r) r = group[r];
        return r;
    };
    for (int s = 0; s < kPeakSlots; ++s) {
        const Peak& peak = project.Peaks[s];
        if (!IsSet(peak.InUse) || peak.Region < 0 || peak.Region >= kRegionCount) continue;
        for (PeakParameter which : kPeakParameters) {
            const ParameterConstraint& c = project.Constraints[s][which];
            if (!IsSet(c.Linked) || !IsPeakSlot(c.RefPeak)) continue;
            const int other = project.Peaks[c.RefPeak].Region;
            if (other < 0 || other >= kRegionCount) continue;
            const int a = root(peak.Region);
            const int b = root(other);
            group[std::max(a, b)] = std::min(a, b);
        }
    }
    std::vector<std::vector<int>> groups;
    std::array<int, kRegionCount> index{};
    index.fill(-1);
    for (int r = 0; r < kRegionCount; ++r) {
        const Region& region = project.Regions[r];
        if (!IsSet(region.HasData) || !IsSet(region.HasBackground)) continue;
        int& i = index[root(r)];
        if (i < 0) {
            i = static_cast<int>(groups.size());
            groups.emplace_back();
        }
        groups[static_cast<std::size_t>(i)].push_back(r);
    }
    return groups;
}

Uncertainties FitUncertainties(const Project& project, bool all) {
    if (!all) return ComputeUncertainties(project, {project.CurrentRegion});
    Uncertainties merged;
    double weighted = 0;
    for (const std::vector<int>& group : LinkedGroups(project)) {
        const Uncertainties u = ComputeUncertainties(project, group);
        for (int slot : u.peakSlots)
            merged.peaks[static_cast<std::size_t>(slot)] = u.peaks[static_cast<std::size_t>(slot)];
        merged.peakSlots.insert(merged.peakSlots.end(), u.peakSlots.begin(), u.peakSlots.end());
        merged.points += u.points;
        merged.freeParameters += u.freeParameters;
        weighted += u.reducedChiSquare * (u.points - u.freeParameters);
    }
    const int dof = merged.points - merged.freeParameters;
    merged.reducedChiSquare = dof > 0 ? weighted / dof : std::nan("");
    return merged;
}

const char* FitMethodName(const FitOptions& options) {
    if (options.Method == 0) return kSearchName;
    if (options.Method == 2) return kLevenbergMarquardtName;
    return kNewtonName;
}

FitSummary OptimiseRegion(Project& project, Host& host) {
    const FitClock clock;
    FitSummary summary;
    summary.method = FitMethodName(project.Options);
    summary.chiSquareBefore = project.Current().ChiSquare;
    const std::vector<int> region{project.CurrentRegion};
    if (project.Options.Method == 2) {
        const LevenbergMarquardtRun run = FitLevenbergMarquardt(project, host, region);
        summary.iterations = run.iterations;
        summary.stopped = run.stopped;
        summary.note = run.problem;
    } else if (SearchMethod(project)) {
        summary.iterations = SearchRegion(project, host, clock);
    } else {
        summary.iterations = NewtonRegion(project, host, clock);
    }
    summary.chiSquareAfter = project.Current().ChiSquare;
    summary.reducedChiSquare = ReducedChiSquare(project, region);
    summary.seconds = clock.Seconds();
    return summary;
}

FitSummary OptimiseAllRegions(Project& project, Host& host) {
    const FitClock clock;
    FitSummary summary;
    summary.method = FitMethodName(project.Options);
    summary.chiSquareBefore = project.TotalChiSquare;
    const Int16 remembered = project.CurrentRegion;
    std::vector<int> fitted;
    for (const std::vector<int>& group : LinkedGroups(project))
        fitted.insert(fitted.end(), group.begin(), group.end());
    if (project.Options.Method == 2) {
        // Region by region; regions tied by a link across regions together.
        for (const std::vector<int>& group : LinkedGroups(project)) {
            if (project.StopRequested) break;
            project.CurrentRegion = static_cast<Int16>(group.front());
            const LevenbergMarquardtRun run = FitLevenbergMarquardt(project, host, group);
            summary.iterations += run.iterations;
            summary.stopped = summary.stopped || run.stopped;
            if (!run.problem.empty() && summary.note.empty()) summary.note = run.problem;
        }
        project.CurrentRegion = remembered;
        host.RegionInView();
        FinishSummary(project, fitted, clock, summary);
        return summary;
    }
    const bool search = SearchMethod(project);
    const int trials = search ? project.Options.SearchTrials : project.Options.NewtonTrials;
    for (int trial = 1; trial <= trials && !project.StopRequested; ++trial) {
        summary.iterations = trial;
        for (int r = 0; r < kRegionCount; ++r) {
            const Region& region = project.Regions[r];
            if (!IsSet(region.HasData) || !IsSet(region.HasBackground)) continue;
            project.CurrentRegion = static_cast<Int16>(r);
            for (int k = 0; k < PeakCountOf(region); ++k) {
                const int p = region.PeakIndex[k];
                if (!IsPeakSlot(p)) continue;
                const bool going = search ? SearchPeakParameters(project, host, p)
                                          : NewtonPeakParameters(project, host, p);
                if (!going) break;
            }
            host.RegionInView();
            host.FitProgressed(
                {summary.method.c_str(), trial, project.TotalChiSquare, clock.Seconds()});
            host.Yield();
            if (project.StopRequested) break;
        }
    }
    project.CurrentRegion = remembered;
    host.RegionInView();
    FinishSummary(project, fitted, clock, summary);
    return summary;
}

void OptimisePeakParameter(Project& project, Host& host, int p, PeakParameter g) {
    BeginFit(project, host);
    const bool newton = project.Options.Method == 1;
    switch (g) {
        case PeakParameter::Position:
            newton ? NewtonPeakPosition(project, host, p) : SearchPosition(project, host, p);
            break;
        case PeakParameter::Area:
            newton ? NewtonPeakArea(project, host, p) : SearchArea(project, host, p);
            break;
        case PeakParameter::FWHM:
            newton ? NewtonPeakFWHM(project, host, p) : SearchFWHM(project, host, p);
            break;
        case PeakParameter::GL:
            SearchGL(project, host, p);
            break;
    }
    EndFit(project, host);
}

void OptimisePeak(Project& project, Host& host, int p) {
    BeginFit(project, host);
    if (project.Options.Method == 1) {
        NewtonPeak(project, host, p);
    } else {
        SearchPeak(project, host, p);
    }
    EndFit(project, host);
}

}  // namespace molvera
