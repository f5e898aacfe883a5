#pragma once
// The host on the Qt windows: the reports of the core and the requests of the session
// carried out on the windows, messages through the user sink.

#include <functional>
#include <string>
#include <vector>

#include <QElapsedTimer>

#include "base/status.h"
#include "fitting/driver.h"
#include "model/records.h"
#include "session/sessionhost.h"

namespace molvera::ui {

class UserSink;
class MainWindow;
class RegionWindow;
class FittingWindow;

/// Host for the desktop program.
class QtHost : public SessionHost {
public:
    QtHost(Project& project, UserSink& sink) : project_(project), sink_(sink) {}
    /// The windows the host acts on; any of them may be null.
    void Attach(MainWindow* main, RegionWindow* region, FittingWindow* fitting);

    /// A message box with a status's message and, as a second line, its detail; a refusal
    /// shows as an error.
    void Show(const Status& status);
    /// A message box with a fixed text that reports no error.
    void Show(const std::string& text);
    /// A message box with a fixed text that reports an error.
    void ShowError(const std::string& text);
    /// `done` when `outcome` is ok, otherwise the error `failed`.
    void ShowOutcome(const Status& outcome, const std::string& done, const std::string& failed);

    bool AskYesNo(const std::string& title, const std::string& text) override;
    SaveChangesAnswer AskSaveChanges(const std::string& text) override;
    void Beep() override;
    void Yield() override;
    void ProjectCleared() override;
    void DescriptionChanged(const std::string& latin1) override;
    void CurvesChanged() override;
    void RegionInView() override;
    void RegionListChanged() override;
    void PeakDeleted(int slot) override;
    void RegionDataDeleted() override;
    void FitStarted() override;
    void FitEnded() override;
    void FitProgressed(const FitProgress& progress) override;
    /// The summary of a fit that ended, in the region window's status bar.
    void ShowFitSummary(const FitSummary& summary);
    /// The warnings of the command that just ran, in the region window's status bar until
    /// the next command replaces them; none clears them.
    void ShowWarnings(const std::vector<std::string>& warnings);
    /// The warnings of the current region (RegionWarnings); nothing during a fit.
    void CheckRegion();
    void BeginBusy() override;
    void EndBusy() override;
    void HidePeakEditor() override;
    void HideRegionDialogs() override;

    /// Number of redraws asked for so far (bringing the region into view included).
    int RedrawCount() const { return redraws_; }

    /// Hooks for the peak editor and the region dialogs (background, constraint),
    /// which are windows of their own; empty until those windows exist.
    std::function<void()> hidePeakEditor;
    std::function<void()> hideRegionDialogs;
    /// Extra windows to disable during a fit (peak editor, constraint, background).
    std::function<void(bool enabled)> enableDialogs;
    /// Called at every yield, before events run (a search showing its trials).
    std::function<void()> beforeYield;

protected:
    void ChiSquareTextChanged(int region) override;
    void PeakButtonsChanged(int region) override;

private:
    /// Asks the plot for a repaint; during a fit at most one paint in every 40 ms or ten
    /// paint durations, whichever is longer, so that painting costs the fit little.
    void RequestPlotRedraw();

    Project& project_;
    UserSink& sink_;
    MainWindow* main_ = nullptr;
    RegionWindow* region_ = nullptr;
    FittingWindow* fitting_ = nullptr;
    int redraws_ = 0;
    bool fitRunning_ = false;
    bool redrawPending_ = false;
    QElapsedTimer sincePaint_;
    QElapsedTimer sinceYield_;
    QElapsedTimer sinceProgress_;
    qint64 paintGapMs_ = 0;
};

}  // namespace molvera::ui
