#pragma once
// The region window's client area: the plot of the current region with the selected
// peak, the residual panel and the cursor read-out, redrawn at most once per screen
// refresh. The mouse and keys zoom and pan the view; the arithmetic is in plot/plotview.

#include <functional>
#include <utility>
#include <vector>

#include <QElapsedTimer>
#include <QPointF>
#include <QTimer>
#include <QWidget>

#include "model/records.h"
#include "plot/spectrumplot.h"

class QPainter;

namespace molvera::ui {

/// Surface fractions (x right, y up) of a widget position, and back.
QPointF ToSurface(const QPointF& position, const QSizeF& size);
QPointF FromSurface(const QPointF& surface, const QSizeF& size);

class PlotWidget : public QWidget {
    Q_OBJECT
public:
    explicit PlotWidget(const molvera::Project& project, QWidget* parent = nullptr);

    /// Marks the plot dirty and schedules one paint; requests that arrive before the
    /// next screen refresh share it.
    void RequestRedraw();
    /// Repaints at once (before grab(), for instance).
    void RedrawNow();
    /// The peak drawn thicker; -1 for none.
    void SetSelectedPeak(int slot);
    int SelectedPeak() const { return selectedPeak_; }
    /// Number of paints so far (for tests of the coalescing).
    int PaintCount() const { return paintCount_; }
    /// Forgets the pointer: no read-out until the pointer moves again (another region or
    /// another project is shown).
    void ClearReadout();
    bool HasReadout() const { return hasPointer_; }
    /// The read-out as shown; empty when there is none.
    const std::string& Readout() const { return options_.readout; }
    /// The plot-unit point under a widget position in the spectrum panel, as of the last
    /// paint.
    QPointF ToPlotUnits(const QPointF& position) const;
    /// The layout of the last paint.
    const PlotLayout& Layout() const { return layout_; }
    /// The view (auto until zoomed or panned); setting it repaints.
    const PlotView& View() const { return options_.view; }
    void SetView(const PlotView& view);
    /// Residual / sqrt(|data|) in the residual panel instead of the residual (for the
    /// session only).
    void SetScaledResidual(bool scaled);
    bool ScaledResidual() const { return options_.scaledResidual; }
    /// The region of the last paint; -1 before the first.
    int PaintedRegion() const { return paintedRegion_; }
    /// Called when a paint shows another region than the paint before (the window's title
    /// follows it).
    std::function<void(int region)> painted;
    /// Dragging a peak's apex (a small square on it) or an end of the background range (a
    /// diamond): called at each step with the point under the pointer, or the energy.
    std::function<void(int slot, PlotPoint to)> dragPeak;
    std::function<void(bool low, double be)> dragBackgroundEnd;
    /// The widget position of a plot point in the spectrum panel, as of the last paint.
    QPointF ToWidget(const PlotPoint& point) const;

protected:
    void paintEvent(QPaintEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void mouseDoubleClickEvent(QMouseEvent* event) override;
    void wheelEvent(QWheelEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void leaveEvent(QEvent* event) override;
    void contextMenuEvent(QContextMenuEvent* event) override;

private:
    enum class Drag { None, Zoom, Pan, Peak, BackgroundLow, BackgroundHigh };
    struct Handle {
        Drag kind = Drag::None;
        int slot = -1;
        int k = -1;  ///< the peak's place in the region's list (its colour)
    };
    // The peak apexes and background ends of the current region, in widget positions.
    std::vector<std::pair<Handle, QPointF>> Handles() const;
    // The handle within reach of a widget position (Drag::None for none).
    Handle HandleAt(const QPointF& position) const;
    void DrawHandles(QPainter& painter) const;
    // The read-out text for a widget position: of the panel under it; empty outside them.
    std::string ReadoutAt(const QPointF& position) const;
    // The pointer moved to a widget position.
    void Point(const QPointF& position);
    QPointF Surface(const QPointF& position) const;

    const Project& project_;
    PlotOptions options_;
    PlotLayout layout_;
    int selectedPeak_ = -1;
    bool dirty_ = false;
    bool hasScale_ = false;
    bool hasPointer_ = false;
    Drag drag_ = Drag::None;
    QPointF pointerAt_;  // widget positions
    QPointF dragFrom_, dragTo_;
    PlotView dragView_;  // the view when the pan or the handle's drag started
    int dragSlot_ = -1;
    bool dragFromAuto_ = false;  // a handle's drag freezes an auto view, then gives it back
    QTimer refreshTimer_;
    QElapsedTimer sinceLastPaint_;
    int paintCount_ = 0;
    int paintedRegion_ = -1;
};

}  // namespace molvera::ui
