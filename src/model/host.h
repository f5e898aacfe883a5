#pragma once
// Where the core meets whoever shows the project (the windows, the CLI, a test): the core
// reports what changed and asks only what it must ask. It never formats a text for a window
// and never shows a message: operations that fail return a Status, and their callers show it.
// Every method has a quiet default.

#include <cstdint>
#include <span>
#include <string>

namespace molvera {

/// Where a running fit stands.
struct FitProgress {
    const char* method = "";  ///< "Search method", "Newton's method", "Levenberg-Marquardt"
    int iteration = 0;        ///< the iteration, or the trial of the classic methods
    float chiSquare = 0;      ///< of the region (or the regions) being fitted
    double seconds = 0;       ///< since the fit started
};

class Host {
public:
    virtual ~Host() = default;

    // What the core asks.

    /// A Yes/No question; true for Yes.
    virtual bool AskYesNo(const std::string& title, const std::string& text) {
        (void)title;
        (void)text;
        return false;
    }
    /// The system beep: an entry refused without a message.
    virtual void Beep() {}
    /// Lets pending interface events run during a long computation; Stop Fitting sets the
    /// project's StopRequested meanwhile.
    virtual void Yield() {}

    // What the core reports.

    /// The chi-square of `region` now is `value`.
    virtual void ChiSquareChanged(int region, float value) {
        (void)region;
        (void)value;
    }
    /// The total chi-square of the project now is `value`.
    virtual void TotalChiSquareChanged(float value) { (void)value; }
    /// `region` now lists the peak slots `peaks`; `editable`: whether they take input now.
    virtual void PeakListChanged(int region, std::span<const std::int16_t> peaks, bool editable) {
        (void)region;
        (void)peaks;
        (void)editable;
    }
    /// The project was emptied: no region shows a chi-square or a peak.
    virtual void ProjectCleared() {}
    /// The project's description now is `latin1`.
    virtual void DescriptionChanged(const std::string& latin1) { (void)latin1; }
    /// The curves of the current region (data, background, peaks, envelope) changed.
    virtual void CurvesChanged() {}
    /// The current region is the one being worked on: it is brought into view and drawn.
    virtual void RegionInView() {}
    /// Which regions hold data, or which one is current, changed.
    virtual void RegionListChanged() {}
    /// Peak `slot` was deleted.
    virtual void PeakDeleted(int slot) { (void)slot; }
    /// The current region's data were deleted.
    virtual void RegionDataDeleted() {}
    /// A fit starts (the other windows take no input until it ends), or has ended.
    virtual void FitStarted() {}
    virtual void FitEnded() {}
    /// A running fit has made a step.
    virtual void FitProgressed(const FitProgress& progress) { (void)progress; }
};

/// A host that does nothing: for computations nobody watches.
Host& QuietHost();

}  // namespace molvera
