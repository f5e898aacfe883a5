#include "ui/plotwidget.h"

#include <algorithm>
#include <cmath>

#include <QMouseEvent>
#include <QPainter>
#include <QScreen>

#include "ui/qtcanvas.h"

namespace molvera::ui {

namespace {

// Milliseconds between screen refreshes (60 Hz when the screen does not say).
int RefreshInterval(const QWidget& widget) {
    const QScreen* screen = widget.screen();
    const double rate = screen ? screen->refreshRate() : 0;
    return rate >= 20 && rate <= 500 ? static_cast<int>(std::lround(1000.0 / rate)) : 16;
}

}  // namespace

PlotWidget::PlotWidget(const Project& project, QWidget* parent)
    : QWidget(parent), project_(project) {
    setMouseTracking(true);
    setAttribute(Qt::WA_OpaquePaintEvent);
    setMinimumSize(200, 150);
    refreshTimer_.setSingleShot(true);
    connect(&refreshTimer_, &QTimer::timeout, this, [this] {
        if (dirty_) update();
    });
    sinceLastPaint_.start();
}

void PlotWidget::RequestRedraw() {
    dirty_ = true;
    if (refreshTimer_.isActive()) return;
    const qint64 wait = RefreshInterval(*this) - sinceLastPaint_.elapsed();
    refreshTimer_.start(static_cast<int>(std::clamp<qint64>(wait, 0, 1000)));
}

void PlotWidget::RedrawNow() {
    refreshTimer_.stop();
    dirty_ = true;
    repaint();
}

void PlotWidget::SetSelectedPeak(int slot) {
    if (slot == selectedPeak_) return;
    selectedPeak_ = slot;
    RequestRedraw();
}

void PlotWidget::ClearReadout() {
    if (!hasPointer_) return;
    hasPointer_ = false;
    RequestRedraw();
}

QPointF PlotWidget::ToPlotUnits(const QPointF& position) const {
    if (width() <= 0 || height() <= 0) return userTopLeft_;
    const double fx = position.x() / width();
    const double fy = position.y() / height();
    return {userTopLeft_.x() + fx * (userBottomRight_.x() - userTopLeft_.x()),
            userTopLeft_.y() + fy * (userBottomRight_.y() - userTopLeft_.y())};
}

void PlotWidget::paintEvent(QPaintEvent*) {
    ++paintCount_;
    dirty_ = false;
    sinceLastPaint_.restart();

    if (paintedRegion_ != project_.CurrentRegion) {
        paintedRegion_ = project_.CurrentRegion;
        if (painted) painted(paintedRegion_);
    }
    QPainter painter(this);
    const QRectF area = rect();
    QtCanvas canvas(painter, area);
    canvas.Clear();
    const Region& region = project_.Current();
    hasScale_ = IsSet(region.HasData);
    if (!hasScale_) return;
    Redisplay(project_, canvas, state_);
    if (selectedPeak_ >= 0 && IsSet(region.HasBackground))
        DrawSelectedPeak(project_, selectedPeak_, canvas);
    userTopLeft_ = canvas.ToUser(area.topLeft());
    userBottomRight_ = canvas.ToUser(area.bottomRight());
    if (hasPointer_) ShowReadout(canvas, state_, pointer_.x(), pointer_.y());
}

void PlotWidget::mouseMoveEvent(QMouseEvent* event) {
    if (!hasScale_) return;
    pointer_ = ToPlotUnits(event->position());
    hasPointer_ = true;
    update();
}

}  // namespace molvera::ui
