#pragma once
// The fitting drivers: one region, all regions, one peak, and the frame of every fit.

#include "model/host.h"
#include "model/records.h"

namespace molvera {

/// StopRequested cleared, the fit reported as started, one yield.
void BeginFit(Project& project, Host& host);
/// StopRequested cleared, the fit reported as ended.
void EndFit(Project& project, Host& host);
/// True when the running fit has been asked to end (Stop Fitting or convergence).
inline bool StopRequested(const Project& project) { return project.StopRequested; }

/// Fits the peaks of CurrentRegion by the Search method (Method 0) or Newton's method.
void OptimiseRegion(Project& project, Host& host);
/// Fits the peaks of every region with data and a background; CurrentRegion is restored.
void OptimiseAllRegions(Project& project, Host& host);

/// Peak editor Optimise buttons: Newton's method when Method is exactly 1, otherwise the
/// Search method; %GL is always searched. Runs between BeginFit and EndFit.
void OptimisePeakParameter(Project& project, Host& host, int p, PeakParameter g);
/// Peak editor "Optimise Peak": NewtonPeak or SearchPeak between BeginFit and EndFit.
void OptimisePeak(Project& project, Host& host, int p);

}  // namespace molvera
