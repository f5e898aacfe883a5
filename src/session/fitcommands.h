#pragma once
// The commands that fit whole regions (the region window's Optimise Region and the main
// window's Optimise All), and the texts that tell how a fit goes and went.

#include <string>
#include <vector>

#include "fitting/driver.h"
#include "fitting/uncertainty.h"
#include "model/records.h"
#include "session/sessionhost.h"

namespace molvera {

/// Optimise Region: nothing unless the current region has data and a background (the
/// summary then says so); hides the peak editor and runs OptimiseRegion between BeginFit and
/// EndFit.
FitSummary OptimiseRegionCommand(Project& project, SessionHost& host);

/// Optimise All: OptimiseAllRegions between BeginFit and EndFit, the peak editor hidden.
FitSummary OptimiseAllCommand(Project& project, SessionHost& host);

/// "Levenberg-Marquardt, 14 iterations: chi-square 729.4896 -> 2.506052, reduced 2.583,
/// 0.004 s" (with "stopped" or the note when there is one).
std::string FitSummaryText(const FitSummary& summary);

/// "Levenberg-Marquardt   iteration 12   chi-square 2.506052   1.2 s" ("trial" for the
/// classic methods).
std::string FitProgressText(const FitProgress& progress);

/// The chi-square reported at each step of a fit, for the fitting window's sparkline. A long
/// fit keeps every other point each time kMaxPoints is reached; the latest is always kept.
class FitTrace {
public:
    static constexpr std::size_t kMaxPoints = 256;
    struct Point {
        double x, y;
    };
    void Clear() { *this = FitTrace(); }
    void Add(float chiSquare);
    std::size_t Size() const { return points_.size() + (hasLast_ ? 1 : 0); }
    /// The line in a `width` x `height` box (y down): the first step at the left, the last
    /// at the right; chi-square on a log scale, the highest at the top, the lowest at the
    /// bottom (all equal: a line across the middle).
    std::vector<Point> Polyline(double width, double height) const;

private:
    std::vector<Point> points_;  ///< the step's number from 0, its chi-square
    Point last_{0, 0};
    bool hasLast_ = false;
    int stride_ = 1;
};

/// An uncertainty beside its value: "± 0.01234", "± not determined", or "" for a value no
/// fit varies.
std::string SigmaText(const Sigma& sigma);

/// One fitted peak with its uncertainties: "peak 3, region 1: position 284.8121 ± 0.0041,
/// FWHM 1.2 ± 0.01, area 1520.3 ± 12, %GL 30 (fixed), 45.2 % of the region's area ± 0.3".
std::string PeakSigmaLine(const Project& project, int slot, const Uncertainties& u);

}  // namespace molvera
