#pragma once
// The region window's client area: the plot of the current region, the highlighted
// peak and the cursor read-out, redrawn at most once per screen refresh.

#include <functional>

#include <QElapsedTimer>
#include <QPointF>
#include <QTimer>
#include <QWidget>

#include "model/records.h"
#include "plot/spectrumplot.h"

namespace molvera::ui {

class PlotWidget : public QWidget {
    Q_OBJECT
public:
    explicit PlotWidget(const molvera::Project& project, QWidget* parent = nullptr);

    /// Marks the plot dirty and schedules one paint; requests that arrive before the
    /// next screen refresh share it.
    void RequestRedraw();
    /// Repaints at once (before grab(), for instance).
    void RedrawNow();
    /// The peak drawn in red after the fit; -1 for none.
    void SetSelectedPeak(int slot);
    int SelectedPeak() const { return selectedPeak_; }
    /// Number of paints so far (for tests of the coalescing).
    int PaintCount() const { return paintCount_; }
    /// Forgets the pointer: no read-out until the pointer moves again (another region or
    /// another project is shown).
    void ClearReadout();
    bool HasReadout() const { return hasPointer_; }
    /// The plot-unit point under a widget position, as of the last paint.
    QPointF ToPlotUnits(const QPointF& position) const;
    /// The region of the last paint; -1 before the first.
    int PaintedRegion() const { return paintedRegion_; }
    /// Called when a paint shows another region than the paint before (the window's title
    /// follows it).
    std::function<void(int region)> painted;

protected:
    void paintEvent(QPaintEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;

private:
    const Project& project_;
    PlotState state_;
    int selectedPeak_ = -1;
    bool dirty_ = false;
    bool hasScale_ = false;
    bool hasPointer_ = false;
    QPointF pointer_;      // in plot units
    QPointF userTopLeft_;  // the last paint's scale at the widget's corners
    QPointF userBottomRight_;
    QTimer refreshTimer_;
    QElapsedTimer sinceLastPaint_;
    int paintCount_ = 0;
    int paintedRegion_ = -1;
};

}  // namespace molvera::ui
