#include "ui/qtcanvas.h"

#include <algorithm>
#include <cmath>

#include <QFontMetricsF>

#include "ui/widgets.h"

namespace molvera::ui {

namespace {

// Far outside any surface, small enough for QPainter's fixed-point paths.
constexpr double kLogicalLimit = 1e6;

}  // namespace

QPolygonF ColumnExtremes(const QPolygonF& line, double pixelsPerUnit) {
    const qsizetype n = line.size();
    if (n < 5 || !(std::abs(pixelsPerUnit) > 0)) return line;
    QPolygonF kept;
    kept.reserve(std::min<qsizetype>(n, 4 * 4096));
    qsizetype i = 0;
    while (i < n) {
        const double column = std::floor(line[i].x() * pixelsPerUnit);
        qsizetype end = i + 1, low = i, high = i;
        for (; end < n && std::floor(line[end].x() * pixelsPerUnit) == column; ++end) {
            if (line[end].y() < line[low].y()) low = end;
            if (line[end].y() > line[high].y()) high = end;
        }
        // First, lowest, highest and last point of the column, in the order drawn.
        qsizetype picks[4] = {i, std::min(low, high), std::max(low, high), end - 1};
        for (int k = 0; k < 4; ++k)
            if (k == 0 || picks[k] != picks[k - 1]) kept.append(line[picks[k]]);
        i = end;
    }
    return kept;
}

QtCanvas::QtCanvas(QPainter& painter, const QRectF& target, double penScale)
    : painter_(painter), target_(target), penScale_(penScale), font_(painter.font()) {
    painter_.setRenderHint(QPainter::Antialiasing, true);
    painter_.setRenderHint(QPainter::TextAntialiasing, true);
    left_ = target.left();
    right_ = target.right();
    top_ = target.top();
    bottom_ = target.bottom();
}

QtCanvas::~QtCanvas() { Flush(); }

void QtCanvas::Flush() {
    if (pending_.size() >= 2) {
        painter_.setPen(Pen(pendingColour_));
        const QPolygonF line = ColumnExtremes(pending_, painter_.deviceTransform().m11());
        painter_.drawPolyline(line);
    }
    pending_.clear();
}

void QtCanvas::SetLineWidth(int width) {
    if (width != lineWidth_) Flush();
    lineWidth_ = width;
}

void QtCanvas::SetLineStyle(LineStyle style) {
    if (style != style_) Flush();
    style_ = style;
}

void QtCanvas::SetClip(double left, double top, double right, double bottom) {
    Flush();
    painter_.setClipRect(QRectF(ToLogical(left, top), ToLogical(right, bottom)).normalized());
}

void QtCanvas::ClearClip() {
    Flush();
    painter_.setClipping(false);
}

void QtCanvas::Clear() {
    pending_.clear();
    painter_.fillRect(target_, Qt::white);
}

void QtCanvas::SetScale(double left, double top, double right, double bottom) {
    const bool finite = std::isfinite(left) && std::isfinite(top) && std::isfinite(right) &&
                        std::isfinite(bottom) && std::isfinite(right - left) &&
                        std::isfinite(top - bottom);
    if (!finite || left == right || top == bottom) return;
    left_ = left;
    top_ = top;
    right_ = right;
    bottom_ = bottom;
}

QPointF QtCanvas::ToLogical(double x, double y) const {
    double lx = target_.left() + (x - left_) / (right_ - left_) * target_.width();
    double ly = target_.top() + (y - top_) / (bottom_ - top_) * target_.height();
    if (!std::isfinite(lx)) lx = std::isnan(lx) ? 0 : std::copysign(kLogicalLimit, lx);
    if (!std::isfinite(ly)) ly = std::isnan(ly) ? 0 : std::copysign(kLogicalLimit, ly);
    return {std::clamp(lx, -kLogicalLimit, kLogicalLimit),
            std::clamp(ly, -kLogicalLimit, kLogicalLimit)};
}

QPointF QtCanvas::ToUser(const QPointF& logical) const {
    if (target_.width() <= 0 || target_.height() <= 0) return {left_, top_};
    return {left_ + (logical.x() - target_.left()) / target_.width() * (right_ - left_),
            top_ + (logical.y() - target_.top()) / target_.height() * (bottom_ - top_)};
}

QPen QtCanvas::Pen(Rgb colour) const {
    QPen pen(QColor(colour.r, colour.g, colour.b));
    pen.setWidthF(std::max(1, lineWidth_) * penScale_);
    pen.setCapStyle(Qt::RoundCap);
    pen.setJoinStyle(
        Qt::BevelJoin);  // round joins cost trigonometry per vertex and do not show at 1-2 px
    switch (style_) {
        case LineStyle::Solid:
            pen.setStyle(Qt::SolidLine);
            break;
        case LineStyle::Dash:
            pen.setStyle(Qt::DashLine);
            break;
        case LineStyle::Dot:
            pen.setStyle(Qt::DotLine);
            break;
    }
    return pen;
}

void QtCanvas::MoveTo(double x, double y) {
    cx_ = x;
    cy_ = y;
}

void QtCanvas::LineTo(double x, double y, Rgb colour) { Line(cx_, cy_, x, y, colour); }

void QtCanvas::Line(double x1, double y1, double x2, double y2, Rgb colour) {
    if (std::isfinite(x1) && std::isfinite(y1) && std::isfinite(x2) && std::isfinite(y2)) {
        const QPointF from = ToLogical(x1, y1);
        if (pending_.isEmpty() || !(colour == pendingColour_) || pending_.constLast() != from) {
            Flush();
            pending_.append(from);
            pendingColour_ = colour;
        }
        pending_.append(ToLogical(x2, y2));
    }
    MoveTo(x2, y2);
}

void QtCanvas::Polyline(const std::vector<double>& xs, const std::vector<double>& ys, Rgb colour) {
    Flush();
    // One transform per point; each finite run is one decimated painter call.
    const double kx = target_.width() / (right_ - left_), ky = target_.height() / (bottom_ - top_);
    const double ppu = painter_.deviceTransform().m11();
    painter_.setPen(Pen(colour));
    QPolygonF run;
    run.reserve(static_cast<qsizetype>(xs.size()));
    auto draw = [&] {
        if (run.size() >= 2) painter_.drawPolyline(ColumnExtremes(run, ppu));
        run.clear();
    };
    for (std::size_t k = 0; k < std::min(xs.size(), ys.size()); ++k) {
        const double lx = target_.left() + (xs[k] - left_) * kx;
        const double ly = target_.top() + (ys[k] - top_) * ky;
        if (std::isfinite(lx) && std::isfinite(ly))
            run.append(QPointF(std::clamp(lx, -kLogicalLimit, kLogicalLimit),
                               std::clamp(ly, -kLogicalLimit, kLogicalLimit)));
        else
            draw();
    }
    draw();
}

void QtCanvas::Point(double x, double y, Rgb colour) {
    Flush();
    if (std::isfinite(x) && std::isfinite(y)) {
        painter_.setPen(Pen(colour));
        painter_.drawPoint(ToLogical(x, y));
    }
    MoveTo(x, y);
}

void QtCanvas::Print(const std::string& latin1) {
    Flush();
    const QString text = FromLatin1(latin1);
    painter_.setFont(font_);
    const QFontMetricsF metrics(font_, painter_.device());
    const QPointF corner = ToLogical(cx_, cy_);
    if (opaque_) {
        painter_.fillRect(QRectF(corner, QSizeF(metrics.horizontalAdvance(text), metrics.height())),
                          Qt::white);
    }
    painter_.setPen(Qt::black);
    painter_.drawText(QPointF(corner.x(), corner.y() + metrics.ascent()), text);
    // The next line starts below this one, at the same x.
    cy_ -= TextHeight(latin1);
}

void QtCanvas::SetBold(bool bold) { font_.setBold(bold); }

double QtCanvas::TextWidth(const std::string& latin1) const {
    const QFontMetricsF metrics(font_, painter_.device());
    if (target_.width() <= 0) return 0;
    return metrics.horizontalAdvance(FromLatin1(latin1)) * std::abs(right_ - left_) /
           target_.width();
}

double QtCanvas::TextHeight(const std::string&) const {
    const QFontMetricsF metrics(font_, painter_.device());
    if (target_.height() <= 0) return 0;
    return metrics.height() * std::abs(top_ - bottom_) / target_.height();
}

}  // namespace molvera::ui
