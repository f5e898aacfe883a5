#include "fitting/driver.h"

#include <algorithm>

#include "fitting/newton.h"
#include "fitting/search.h"
#include "fitting/trialscore.h"

namespace molvera {

namespace {

bool SearchMethod(const Project& project) { return project.Options.Method == 0; }

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

void SearchRegion(Project& project, Host& host) {
    float old = project.TotalChiSquare;
    for (int trial = 1; trial <= project.Options.SearchTrials; ++trial) {
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
        host.Yield();
        if (project.StopRequested) break;
    }
    host.RegionInView();
}

void NewtonRegion(Project& project, Host& host) {
    for (int trial = 1; trial <= project.Options.NewtonTrials; ++trial) {
        const Region& region = project.Current();
        for (int k = 0; k < PeakCountOf(region); ++k) {
            const int p = region.PeakIndex[k];
            if (!IsPeakSlot(p)) continue;
            if (!NewtonPeakParameters(project, host, p)) break;
        }
        if (project.StopRequested) break;
        host.RegionInView();
        host.Yield();
    }
    host.RegionInView();
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

void OptimiseRegion(Project& project, Host& host) {
    if (SearchMethod(project)) {
        SearchRegion(project, host);
    } else {
        NewtonRegion(project, host);
    }
}

void OptimiseAllRegions(Project& project, Host& host) {
    const Int16 remembered = project.CurrentRegion;
    const bool search = SearchMethod(project);
    const int trials = search ? project.Options.SearchTrials : project.Options.NewtonTrials;
    for (int trial = 1; trial <= trials && !project.StopRequested; ++trial) {
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
            host.Yield();
            if (project.StopRequested) break;
        }
    }
    project.CurrentRegion = remembered;
    host.RegionInView();
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
