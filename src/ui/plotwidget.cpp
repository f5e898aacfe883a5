#include "ui/plotwidget.h"

#include <algorithm>
#include <cmath>

#include <QContextMenuEvent>
#include <QMenu>
#include <QMouseEvent>
#include <QPainter>
#include <QScreen>
#include <QWheelEvent>

#include "session/peakdrag.h"
#include "ui/qtcanvas.h"

namespace molvera::ui {

namespace {

// Milliseconds between screen refreshes (60 Hz when the screen does not say).
int RefreshInterval(const QWidget& widget) {
    const QScreen* screen = widget.screen();
    const double rate = screen ? screen->refreshRate() : 0;
    return rate >= 20 && rate <= 500 ? static_cast<int>(std::lround(1000.0 / rate)) : 16;
}

// A drag shorter than this many pixels is a click.
constexpr double kDragPixels = 4;
// A handle takes hold of the pointer this many pixels around it.
constexpr double kHandlePixels = 7;

}  // namespace

QPointF ToSurface(const QPointF& position, const QSizeF& size) {
    if (size.width() <= 0 || size.height() <= 0) return {};
    return {position.x() / size.width(), 1 - position.y() / size.height()};
}

QPointF FromSurface(const QPointF& surface, const QSizeF& size) {
    return {surface.x() * size.width(), (1 - surface.y()) * size.height()};
}

PlotWidget::PlotWidget(const Project& project, QWidget* parent)
    : QWidget(parent), project_(project) {
    setMouseTracking(true);
    setAttribute(Qt::WA_OpaquePaintEvent);
    setFocusPolicy(Qt::StrongFocus);
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
    options_.readout.clear();
    RequestRedraw();
}

void PlotWidget::SetView(const PlotView& view) {
    options_.view = view;
    RequestRedraw();
}

void PlotWidget::SetScaledResidual(bool scaled) {
    options_.scaledResidual = scaled;
    RequestRedraw();
}

QPointF PlotWidget::Surface(const QPointF& position) const {
    return ToSurface(position, QSizeF(size()));
}

QPointF PlotWidget::ToPlotUnits(const QPointF& position) const {
    const QPointF s = Surface(position);
    const PlotPoint p = ToPlot(layout_.spectrum, s.x(), s.y());
    return {p.be, p.i};
}

QPointF PlotWidget::ToWidget(const PlotPoint& point) const {
    return FromSurface({SurfaceX(layout_.spectrum, point.be), SurfaceY(layout_.spectrum, point.i)},
                       QSizeF(size()));
}

std::vector<std::pair<PlotWidget::Handle, QPointF>> PlotWidget::Handles() const {
    std::vector<std::pair<Handle, QPointF>> handles;
    const Region& region = project_.Current();
    if (!hasScale_ || !IsSet(region.HasBackground)) return handles;
    for (const bool low : {true, false}) {
        const double be = low ? region.BackgroundLowBE : region.BackgroundHighBE;
        handles.push_back({{low ? Drag::BackgroundLow : Drag::BackgroundHigh, -1, -1},
                           ToWidget({be, BackgroundAt(region, be)})});
    }
    const std::span<const Int16> peaks = PeakList(region);
    for (int k = 0; k < static_cast<int>(peaks.size()); ++k)
        if (const std::optional<PlotPoint> apex = PeakApex(project_, peaks[k]))
            handles.push_back({{Drag::Peak, peaks[k], k}, ToWidget(*apex)});
    return handles;
}

PlotWidget::Handle PlotWidget::HandleAt(const QPointF& position) const {
    Handle nearest;
    double best = kHandlePixels;
    for (const auto& [handle, at] : Handles()) {
        const QPointF d = at - position;
        const double distance = std::hypot(d.x(), d.y());
        if (distance <= best) best = distance, nearest = handle;
    }
    return nearest;
}

void PlotWidget::DrawHandles(QPainter& painter) const {
    const SurfaceRect& a = layout_.spectrum.area;
    const QSizeF s(size());
    painter.save();
    painter.setClipRect(QRectF(FromSurface({a.x0, a.y1}, s), FromSurface({a.x1, a.y0}, s)));
    painter.setRenderHint(QPainter::Antialiasing);
    for (const auto& [handle, at] : Handles()) {
        if (handle.kind == Drag::Peak) {
            const Rgb c = PeakColour(handle.k);
            painter.setPen(QPen(QColor(c.r, c.g, c.b), 1.5));
            painter.setBrush(Qt::white);
            painter.drawRect(QRectF(at - QPointF(3.5, 3.5), QSizeF(7, 7)));
        } else {
            painter.setPen(QPen(Qt::darkGray, 1));
            painter.setBrush(Qt::gray);
            painter.drawPolygon(QPolygonF({at + QPointF(0, -6), at + QPointF(5, 0),
                                           at + QPointF(0, 6), at + QPointF(-5, 0)}));
        }
    }
    painter.restore();
}

void PlotWidget::paintEvent(QPaintEvent*) {
    ++paintCount_;
    dirty_ = false;
    sinceLastPaint_.restart();

    if (paintedRegion_ != project_.CurrentRegion) {
        paintedRegion_ = project_.CurrentRegion;
        options_.view = {};  // another region starts unzoomed
        if (painted) painted(paintedRegion_);
    }
    QPainter painter(this);
    QtCanvas canvas(painter, rect());
    canvas.Clear();
    hasScale_ = IsSet(project_.Current().HasData);
    if (!hasScale_) return;
    options_.selectedPeak = selectedPeak_;
    if (hasPointer_) {  // the view may have changed under a pointer that stood still
        layout_ = LayoutPlot(project_, canvas, options_);
        options_.readout = ReadoutAt(pointerAt_);
        hasPointer_ = !options_.readout.empty();
    }
    layout_ = DrawPlot(project_, canvas, options_);
    canvas.Flush();
    DrawHandles(painter);
    if (drag_ == Drag::Zoom) {
        painter.setPen(QPen(Qt::black, 1, Qt::DashLine));
        painter.setBrush(Qt::NoBrush);
        painter.drawRect(QRectF(dragFrom_, dragTo_).normalized());
    }
}

std::string PlotWidget::ReadoutAt(const QPointF& position) const {
    const QPointF s = Surface(position);
    for (const Axes* axes : {&layout_.spectrum, &layout_.residual}) {
        if (axes == &layout_.residual && !layout_.hasResidual) break;
        if (!axes->area.Contains(s.x(), s.y())) continue;
        const PlotPoint p = ToPlot(*axes, s.x(), s.y());
        return ReadoutText(p.be, p.i);
    }
    return {};
}

void PlotWidget::Point(const QPointF& position) {
    const bool wasShown = hasPointer_;
    pointerAt_ = position;
    options_.readout = hasScale_ ? ReadoutAt(position) : std::string();
    hasPointer_ = !options_.readout.empty();
    if (hasPointer_ || wasShown) update();
}

void PlotWidget::mouseMoveEvent(QMouseEvent* event) {
    const QPointF at = event->position();
    if (drag_ == Drag::Pan) {
        const Axes from{layout_.spectrum.area, dragView_};
        const QPointF s0 = Surface(dragFrom_), s1 = Surface(at);
        const PlotPoint a = ToPlot(from, s0.x(), s0.y()), b = ToPlot(from, s1.x(), s1.y());
        options_.view = Pan(dragView_, b.be - a.be, b.i - a.i);
    } else if (drag_ == Drag::Zoom) {
        dragTo_ = at;
    } else if (drag_ != Drag::None) {
        const QPointF s = Surface(at);
        const PlotPoint to = ToPlot(layout_.spectrum, s.x(), s.y());
        if (drag_ == Drag::Peak && dragPeak) dragPeak(dragSlot_, to);
        if (drag_ != Drag::Peak && dragBackgroundEnd)
            dragBackgroundEnd(drag_ == Drag::BackgroundLow, to.be);
    } else {
        setCursor(HandleAt(at).kind == Drag::None ? Qt::ArrowCursor : Qt::OpenHandCursor);
    }
    Point(at);
    if (drag_ != Drag::None) update();
}

void PlotWidget::mousePressEvent(QMouseEvent* event) {
    const QPointF s = Surface(event->position());
    if (!hasScale_ || !layout_.spectrum.area.Contains(s.x(), s.y())) return;
    const bool pan = event->button() == Qt::MiddleButton ||
                     (event->button() == Qt::LeftButton && event->modifiers() & Qt::ShiftModifier);
    if (const Handle grab = HandleAt(event->position());
        !pan && event->button() == Qt::LeftButton && grab.kind != Drag::None) {
        // The view stands still under the pointer while a handle is dragged.
        drag_ = grab.kind;
        dragSlot_ = grab.slot;
        dragFromAuto_ = options_.view.IsAuto();
        options_.view = layout_.spectrum.view;
        if (grab.kind == Drag::Peak) SetSelectedPeak(grab.slot);
        setCursor(Qt::ClosedHandCursor);
        return;
    }
    if (pan || event->button() == Qt::LeftButton) {
        drag_ = pan ? Drag::Pan : Drag::Zoom;
        dragFrom_ = dragTo_ = event->position();
        dragView_ = layout_.spectrum.view;
    }
}

void PlotWidget::mouseReleaseEvent(QMouseEvent* event) {
    if (drag_ == Drag::Zoom) {
        const QPointF d = event->position() - dragFrom_;
        if (std::abs(d.x()) >= kDragPixels && std::abs(d.y()) >= kDragPixels) {
            const QPointF s0 = Surface(dragFrom_), s1 = Surface(event->position());
            const PlotPoint a = ToPlot(layout_.spectrum, s0.x(), s0.y());
            const PlotPoint b = ToPlot(layout_.spectrum, s1.x(), s1.y());
            options_.view = ZoomTo(layout_.spectrum.view, a.be, a.i, b.be, b.i);
        }
        update();
    } else if (drag_ != Drag::None && drag_ != Drag::Pan) {
        if (dragFromAuto_) options_.view = {};
        setCursor(Qt::OpenHandCursor);
        RequestRedraw();
    }
    drag_ = Drag::None;
}

void PlotWidget::mouseDoubleClickEvent(QMouseEvent*) {
    drag_ = Drag::None;
    SetView({});
}

void PlotWidget::wheelEvent(QWheelEvent* event) {
    if (!hasScale_) return;
    const QPointF s = Surface(event->position());
    const SurfaceRect& a = layout_.spectrum.area;
    const PlotPoint p =
        ToPlot(layout_.spectrum, std::clamp(s.x(), a.x0, a.x1), std::clamp(s.y(), a.y0, a.y1));
    const double factor = std::pow(0.85, event->angleDelta().y() / 120.0);
    SetView(ZoomAbout(layout_.spectrum.view, p.be, p.i, factor));
    event->accept();
}

void PlotWidget::keyPressEvent(QKeyEvent* event) {
    if (event->key() == Qt::Key_Home)
        SetView({});
    else if (event->key() == Qt::Key_R && event->modifiers() == Qt::NoModifier)
        SetScaledResidual(!options_.scaledResidual);
    else
        QWidget::keyPressEvent(event);
}

void PlotWidget::leaveEvent(QEvent*) { ClearReadout(); }

void PlotWidget::contextMenuEvent(QContextMenuEvent* event) {
    QMenu menu(this);
    menu.addAction("Reset Zoom\tHome", this, [this] { SetView({}); });
    QAction* scaled = menu.addAction("Residual / sqrt|Data|\tR", this,
                                     [this](bool on) { SetScaledResidual(on); });
    scaled->setCheckable(true);
    scaled->setChecked(options_.scaledResidual);
    menu.exec(event->globalPos());
}

}  // namespace molvera::ui
