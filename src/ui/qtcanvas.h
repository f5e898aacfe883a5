#pragma once
// The Canvas over a QPainter: a widget, a printer or an image, antialiased, with the
// user rectangle mapped onto a target rectangle of the painter's logical coordinates.

#include <QFont>
#include <QPainter>
#include <QPointF>
#include <QPolygonF>
#include <QRectF>

#include "plot/canvas.h"

namespace molvera::ui {

/// The points of a polyline that show at `pixelsPerUnit`: of every run of points in
/// one pixel column, the first, the lowest, the highest and the last, in their order.
/// A 5000-point curve across 600 pixels keeps at most 2400 points and looks the same.
QPolygonF ColumnExtremes(const QPolygonF& line, double pixelsPerUnit);

class QtCanvas : public Canvas {
public:
    /// Draws on `painter` inside `target` (logical units of the painter) with the
    /// painter's current font; `penScale` multiplies line widths.
    QtCanvas(QPainter& painter, const QRectF& target, double penScale = 1.0);
    /// Draws what is still pending.
    ~QtCanvas() override;
    QtCanvas(const QtCanvas&) = delete;
    QtCanvas& operator=(const QtCanvas&) = delete;

    void Clear() override;
    void SetScale(double left, double top, double right, double bottom) override;
    void SetLineWidth(int width) override;
    void SetLineStyle(LineStyle style) override;
    void SetClip(double left, double top, double right, double bottom) override;
    void ClearClip() override;
    Rgb ForeColour() const override { return kBlack; }
    void MoveTo(double x, double y) override;
    void LineTo(double x, double y, Rgb colour) override;
    void Line(double x1, double y1, double x2, double y2, Rgb colour) override;
    void Polyline(const std::vector<double>& xs, const std::vector<double>& ys,
                  Rgb colour) override;
    void Point(double x, double y, Rgb colour) override;
    double CurrentX() const override { return cx_; }
    double CurrentY() const override { return cy_; }
    void Print(const std::string& latin1) override;
    void SetOpaqueText(bool opaque) override { opaque_ = opaque; }
    void SetBold(bool bold) override;
    double TextWidth(const std::string& latin1) const override;
    double TextHeight(const std::string& latin1) const override;

    /// Draws the joined segments collected so far; every other drawing call does this
    /// first, so the picture is the same as with one painter call per segment.
    void Flush();

    /// A point of the target in user units of the current scale.
    QPointF ToUser(const QPointF& logical) const;
    /// A user point in logical units of the painter (clamped to a drawable range).
    QPointF ToLogical(double x, double y) const;

private:
    QPen Pen(Rgb colour) const;

    // Consecutive segments of one colour that continue each other, drawn as one
    // polyline: a 5000-point curve is one painter call instead of 5000.
    QPolygonF pending_;
    Rgb pendingColour_;

    QPainter& painter_;
    QRectF target_;
    double penScale_;
    double left_ = 0, top_ = 1, right_ = 1, bottom_ = 0;
    double cx_ = 0, cy_ = 0;
    int lineWidth_ = 1;
    LineStyle style_ = LineStyle::Solid;
    bool opaque_ = false;
    QFont font_;
};

}  // namespace molvera::ui
