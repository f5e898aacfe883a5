#pragma once
// A canvas for tests: records every drawing call in order, on a pretend surface of
// 800 x 600 pixels with 8-pixel wide, 16-pixel high characters.

#include <cmath>
#include <string>
#include <vector>

#include "model/project.h"
#include "plot/canvas.h"
#include "spectral/background.h"

namespace molvera::test {

struct CanvasOp {
    enum Kind { Clear, Scale, Line, Point, Text } kind = Clear;
    double x1 = 0, y1 = 0, x2 = 0, y2 = 0;  ///< Scale: left, top, right, bottom
    Rgb colour;
    int width = 0;
    bool bold = false, opaque = false;
    std::string text;
};

class RecordingCanvas : public Canvas {
public:
    std::vector<CanvasOp> ops;
    double left = 0, top = 1, right = 1, bottom = 0;

    void Clear() override { Add(CanvasOp::Clear, 0, 0, 0, 0, kBlack); }
    void SetScale(double l, double t, double r, double b) override {
        if (!std::isfinite(l + t + r + b) || l == r || t == b) return;
        left = l, top = t, right = r, bottom = b;
        Add(CanvasOp::Scale, l, t, r, b, kBlack);
    }
    void SetLineWidth(int w) override { width_ = w; }
    void SetLineStyle(LineStyle) override {}
    Rgb ForeColour() const override { return kBlack; }
    void MoveTo(double x, double y) override { cx_ = x, cy_ = y; }
    void LineTo(double x, double y, Rgb c) override { Line(cx_, cy_, x, y, c); }
    void Line(double x1, double y1, double x2, double y2, Rgb c) override {
        Add(CanvasOp::Line, x1, y1, x2, y2, c);
        cx_ = x2, cy_ = y2;
    }
    void Point(double x, double y, Rgb c) override {
        Add(CanvasOp::Point, x, y, x, y, c);
        cx_ = x, cy_ = y;
    }
    double CurrentX() const override { return cx_; }
    double CurrentY() const override { return cy_; }
    void Print(const std::string& text) override {
        Add(CanvasOp::Text, cx_, cy_, cx_, cy_, kBlack).text = text;
        cy_ -= TextHeight(text);
    }
    void SetOpaqueText(bool o) override { opaque_ = o; }
    void SetBold(bool b) override { bold_ = b; }
    double TextWidth(const std::string& t) const override {
        return 8.0 * static_cast<double>(t.size()) * std::abs(right - left) / 800;
    }
    double TextHeight(const std::string&) const override {
        return 16 * std::abs(top - bottom) / 600;
    }

    /// The recorded operations of one kind.
    std::vector<CanvasOp> Of(CanvasOp::Kind kind) const {
        std::vector<CanvasOp> out;
        for (const auto& op : ops)
            if (op.kind == kind) out.push_back(op);
        return out;
    }

private:
    CanvasOp& Add(CanvasOp::Kind kind, double x1, double y1, double x2, double y2, Rgb c) {
        return ops.emplace_back(CanvasOp{kind, x1, y1, x2, y2, c, width_, bold_, opaque_, ""});
    }
    double cx_ = 0, cy_ = 0;
    int width_ = 1;
    bool bold_ = false, opaque_ = false;
};

/// Region 0 (current) with n points from highBE down to lowBE, intensities lowI..highI
/// on a ramp, caption "C 1s".
inline void FillRegion(Project& p, int n, double highBE, double lowBE, double lowI, double highI) {
    Region& r = p.Regions[0];
    ResizeRegionArrays(r, n);
    r.PointCount = static_cast<Int16>(n);
    for (int i = 1; i <= n; ++i) {
        const double f = n > 1 ? (i - 1) / static_cast<double>(n - 1) : 0;
        r.BindingEnergy[i] = static_cast<float>(highBE + (lowBE - highBE) * f);
        r.RawIntensity[i] = static_cast<float>(lowI + (highI - lowI) * f);
    }
    r.HasData = kTrue;
    r.Caption = Text20::From("C 1s");
    UpdateDataExtents(r);
    p.CurrentRegion = 0;
}

}  // namespace molvera::test
