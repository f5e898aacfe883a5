#pragma once
// The fitting drivers: one region, all regions, one peak, and the frame of every fit.

#include <string>
#include <vector>

#include "fitting/uncertainty.h"
#include "model/host.h"
#include "model/records.h"

namespace molvera {

/// StopRequested cleared, the fit reported as started, one yield.
void BeginFit(Project& project, Host& host);
/// StopRequested cleared, the fit reported as ended.
void EndFit(Project& project, Host& host);
/// True when the running fit has been asked to end (Stop Fitting or convergence).
inline bool StopRequested(const Project& project) { return project.StopRequested; }

/// The methods' names.
inline constexpr const char* kSearchName = "Search method";
inline constexpr const char* kNewtonName = "Newton's method";
inline constexpr const char* kLevenbergMarquardtName = "Levenberg-Marquardt";

/// What a fit did, for the summary shown when it ends.
struct FitSummary {
    std::string method;  ///< as FitMethodName names it
    int iterations = 0;  ///< Levenberg-Marquardt iterations, or trials of the classic methods
    float chiSquareBefore = 0;  ///< of the region (Optimise All: the total)
    float chiSquareAfter = 0;
    double reducedChiSquare = 0;  ///< sum(w r^2) / (points - free parameters); may be NaN
    double seconds = 0;
    bool stopped = false;  ///< Stop Fitting ended a Levenberg-Marquardt fit
    std::string note;      ///< why nothing was fitted ("nothing to fit: ..."), or empty
};

/// "Search method" (Method 0), "Levenberg-Marquardt" (Method 2), "Newton's method" (any other).
const char* FitMethodName(const FitOptions& options);

/// Fits the peaks of CurrentRegion by the Search method (Method 0), Levenberg-Marquardt
/// (Method 2) or Newton's method (any other value).
FitSummary OptimiseRegion(Project& project, Host& host);
/// Fits the peaks of every region with data and a background; CurrentRegion is restored.
/// Levenberg-Marquardt fits region by region, regions tied by a link across regions together.
FitSummary OptimiseAllRegions(Project& project, Host& host);

/// The regions with data and a background, grouped so that regions tied by a link across
/// regions share a group; groups in the order of their first region.
std::vector<std::vector<int>> LinkedGroups(const Project& project);

/// The uncertainties after a fit of the current region (`all` false) or of every region
/// (each group of LinkedGroups on its own; the reduced chi-square pooled over them).
Uncertainties FitUncertainties(const Project& project, bool all);

/// Peak editor Optimise buttons: Newton's method when Method is exactly 1, otherwise the
/// Search method (Levenberg-Marquardt, Method 2, included); %GL is always searched. Runs between
/// BeginFit and EndFit.
void OptimisePeakParameter(Project& project, Host& host, int p, PeakParameter g);
/// Peak editor "Optimise Peak": NewtonPeak or SearchPeak between BeginFit and EndFit.
void OptimisePeak(Project& project, Host& host, int p);

}  // namespace molvera
