#pragma once
// "Fitting": the small window shown during a fit, with its "Stop Fitting" button.

#include <QWidget>

#include "model/records.h"

class QPushButton;

namespace molvera::ui {

/// Shown between BeginFit and EndFit; Stop Fitting sets StopRequested.
class FittingWindow : public QWidget {
    Q_OBJECT
public:
    explicit FittingWindow(Project& project, QWidget* parent = nullptr);
    /// The "Stop Fitting" button.
    QPushButton* StopButton() const { return stop_; }

private:
    QPushButton* stop_;
};

}  // namespace molvera::ui
