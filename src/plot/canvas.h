#pragma once
// An immediate-mode drawing surface in user coordinates: the window, the printer,
// an off-screen picture, or a recording canvas in tests.

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <string>
#include <vector>

namespace molvera {

/// A drawing colour.
struct Rgb {
    std::uint8_t r = 0, g = 0, b = 0;
    bool operator==(const Rgb&) const = default;
};

inline constexpr Rgb kBlack{0, 0, 0};
inline constexpr Rgb kBlue{0, 0, 255};
inline constexpr Rgb kRed{255, 0, 0};

enum class LineStyle { Solid, Dash, Dot };

class Canvas {
public:
    virtual ~Canvas() = default;

    /// Erases the whole surface to its background colour.
    virtual void Clear() = 0;
    /// Maps the user rectangle onto the whole surface; left may exceed right and
    /// top exceeds bottom (intensity grows upwards). A degenerate rectangle is ignored.
    virtual void SetScale(double left, double top, double right, double bottom) = 0;

    /// Width of lines in pixels of the surface (1 on screen is one pixel).
    virtual void SetLineWidth(int width) = 0;
    virtual void SetLineStyle(LineStyle style) = 0;
    /// Drawing stays inside the user rectangle until ClearClip (surfaces that cannot clip
    /// ignore both).
    virtual void SetClip(double /*left*/, double /*top*/, double /*right*/, double /*bottom*/) {}
    virtual void ClearClip() {}
    /// The surface's own drawing colour (used where no colour is given).
    virtual Rgb ForeColour() const = 0;

    /// Moves the current point.
    virtual void MoveTo(double x, double y) = 0;
    /// A line from the current point to (x, y), which becomes the current point.
    virtual void LineTo(double x, double y, Rgb colour) = 0;
    /// A line between two points; (x2, y2) becomes the current point.
    virtual void Line(double x1, double y1, double x2, double y2, Rgb colour) = 0;
    /// Lines joining the points (xs[k], ys[k]) in turn; a non-finite point breaks the line.
    /// The current point is left where it was.
    virtual void Polyline(const std::vector<double>& xs, const std::vector<double>& ys,
                          Rgb colour) {
        const double x0 = CurrentX(), y0 = CurrentY();
        bool previous = false;
        for (std::size_t k = 0; k < std::min(xs.size(), ys.size()); ++k) {
            const bool finite = std::isfinite(xs[k]) && std::isfinite(ys[k]);
            if (finite && previous)
                LineTo(xs[k], ys[k], colour);
            else
                MoveTo(xs[k], ys[k]);
            previous = finite;
        }
        MoveTo(x0, y0);
    }
    /// One point in the line width; it becomes the current point.
    virtual void Point(double x, double y, Rgb colour) = 0;
    virtual double CurrentX() const = 0;
    virtual double CurrentY() const = 0;

    /// Prints Latin-1 text with its top-left corner at the current point; the current
    /// point moves one text line down, back to the x where the text started.
    virtual void Print(const std::string& latin1) = 0;
    /// Opaque text erases its box to the background colour before it is drawn.
    virtual void SetOpaqueText(bool opaque) = 0;
    /// Bold face on or off (the emphasised font).
    virtual void SetBold(bool bold) = 0;
    /// Absolute width and height of the text in user units of the current scale.
    virtual double TextWidth(const std::string& latin1) const = 0;
    virtual double TextHeight(const std::string& latin1) const = 0;
};

}  // namespace molvera
