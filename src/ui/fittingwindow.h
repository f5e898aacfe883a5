#pragma once
// "Fitting": the small window shown during a fit: how it goes, and its "Stop Fitting" button.

#include <QWidget>

#include "model/records.h"

class QLabel;
class QPushButton;

namespace molvera::ui {

/// Shown between BeginFit and EndFit; Stop Fitting sets StopRequested.
class FittingWindow : public QWidget {
    Q_OBJECT
public:
    explicit FittingWindow(Project& project, QWidget* parent = nullptr);
    /// The "Stop Fitting" button.
    QPushButton* StopButton() const { return stop_; }
    /// The line above the button: method, iteration, chi-square and time.
    void ShowProgress(const QString& text);
    QLabel* ProgressLabel() const { return progress_; }

private:
    QLabel* progress_;
    QPushButton* stop_;
};

}  // namespace molvera::ui
