#pragma once
// "Fitting": the small window shown during a fit: how it goes (method, iteration,
// chi-square, time, and the chi-square so far as a sparkline), its "Stop Fitting" button,
// and after the fit its summary until the window is closed or the next fit starts.

#include <QWidget>

#include "model/host.h"
#include "model/records.h"
#include "session/fitcommands.h"

class QLabel;
class QPushButton;

namespace molvera::ui {

/// Shown from BeginFit until closed; during a fit Stop Fitting sets StopRequested, after
/// it the same button (Close) hides the window.
class FittingWindow : public QWidget {
    Q_OBJECT
public:
    explicit FittingWindow(Project& project, QWidget* parent = nullptr);
    /// "Stop Fitting" during a fit, "Close" after it.
    QPushButton* StopButton() const { return stop_; }
    /// A fit starts: the last one's line, sparkline and summary go; the window shows.
    void BeginFit();
    /// A step of the fit, into the sparkline; the texts and the sparkline are repainted
    /// only when `show` is true (the host spaces the repaints out).
    void Progress(const FitProgress& progress, bool show);
    /// The fit ended: the button becomes Close; the window stays for the summary.
    void EndFit();
    void ShowSummary(const QString& text);
    QLabel* ProgressLabel() const { return progress_; }
    QLabel* SummaryLabel() const { return summary_; }
    const FitTrace& Trace() const { return trace_; }

private:
    Project& project_;
    bool running_ = false;
    FitTrace trace_;
    FitProgress last_;
    QLabel* progress_;
    QWidget* sparkline_;
    QLabel* summary_;
    QPushButton* stop_;
};

}  // namespace molvera::ui
