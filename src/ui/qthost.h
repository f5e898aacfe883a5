#pragma once
// The core's Host on the Qt windows: messages through the user sink, the main
// window's boxes and buttons, redraws of the region window, the fitting window.

#include <QElapsedTimer>
#include <functional>

#include "model/host.h"
#include "model/records.h"

namespace molvera::ui {

class UserSink;
class MainWindow;
class RegionWindow;
class FittingWindow;

/// Host for the desktop program.
class QtHost : public Host {
public:
    QtHost(Project& project, UserSink& sink) : project_(project), sink_(sink) {}
    /// The windows the host acts on; any of them may be null.
    void Attach(MainWindow* main, RegionWindow* region, FittingWindow* fitting);

    void Message(const std::string& text) override;
    bool AskYesNo(const std::string& title, const std::string& text) override;
    void Beep() override;
    void SetRegionChiText(int region, const std::string& text) override;
    void SetTotalChiText(const std::string& text) override;
    void SetPeakButton(int index, const std::string& caption, bool enabled) override;
    void SetDescriptionText(const std::string& text) override;
    void RedrawRegion() override;
    void ShowRegionWindow() override;
    void RecolourRegionButtons() override;
    void HidePeakEditor() override;
    void HideRegionDialogs() override;
    void Yield() override;
    void BeginFit() override;
    void EndFit() override;
    void BeginBusy() override;
    void EndBusy() override;

    /// Number of redraws asked for so far (ShowRegionWindow included).
    int RedrawCount() const { return redraws_; }

    /// Hooks for the peak editor and the region dialogs (background, constraint),
    /// which are windows of their own; empty until those windows exist.
    std::function<void()> hidePeakEditor;
    std::function<void()> hideRegionDialogs;
    /// Extra windows to disable during a fit (peak editor, constraint, background).
    std::function<void(bool enabled)> enableDialogs;
    /// Called at every yield, before events run (a search showing its trials).
    std::function<void()> beforeYield;

private:
    /// Asks the plot for a repaint; during a fit at most one paint in every stretch of
    /// ten paint durations, so that painting costs the fit no more than about a tenth.
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
    qint64 paintGapMs_ = 0;
};

}  // namespace molvera::ui
