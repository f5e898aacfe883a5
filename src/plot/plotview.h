#pragma once
// What part of a region the plot shows and where: round tick steps, the autoscaled
// view, zoom and pan as plain functions, the panels' mapping between the surface and
// plot units, and the residual the lower panel shows.

#include <vector>

#include "model/records.h"

namespace molvera {

/// The window onto a region in plot units: binding energy at the left and right edge
/// (left is the higher), intensity at the bottom and top. All zero means "auto": the
/// whole region, autoscaled.
struct PlotView {
    double beLeft = 0, beRight = 0, iLow = 0, iHigh = 0;
    bool IsAuto() const { return beLeft == beRight || iLow == iHigh; }
    bool operator==(const PlotView&) const = default;
};

/// The round step (1, 2 or 5 x 10^n) that cuts `span` into at most `maxTicks` steps and
/// at least a third as many; 1 for a span that is not positive and finite.
double NiceStep(double span, int maxTicks);

/// The multiples of NiceStep(|b - a|, maxTicks) between a and b (either order), ascending.
std::vector<double> Ticks(double a, double b, int maxTicks);

/// The whole region with every curve drawn in it (data, background, peaks, envelope) and
/// a twentieth of each span as margin on every side; a flat or empty span is widened.
PlotView AutoView(const Project& project);

/// `view`, or AutoView when it is auto.
PlotView Shown(const Project& project, const PlotView& view);

/// Zoomed by `factor` (below 1 zooms in) about the point (be, i), which stays put.
PlotView ZoomAbout(const PlotView& view, double be, double i, double factor);

/// The rectangle between two corners; `view` unchanged when the rectangle is flat.
PlotView ZoomTo(const PlotView& view, double be1, double i1, double be2, double i2);

/// Moved so that the point under the pointer follows a drag by (dBE, dI).
PlotView Pan(const PlotView& view, double dBE, double dI);

/// A rectangle of the surface in fractions of its width and height (y upwards).
struct SurfaceRect {
    double x0 = 0, y0 = 0, x1 = 1, y1 = 1;
    bool Contains(double x, double y) const { return x >= x0 && x <= x1 && y >= y0 && y <= y1; }
    bool Intersects(const SurfaceRect& o) const {
        return x0 < o.x1 && o.x0 < x1 && y0 < o.y1 && o.y0 < y1;
    }
};

/// A panel: where it sits on the surface and what it shows.
struct Axes {
    SurfaceRect area;
    PlotView view;
};

/// A point in plot units (binding energy, intensity).
struct PlotPoint {
    double be = 0, i = 0;
};

/// The plot point at surface fractions (x, y), and back.
PlotPoint ToPlot(const Axes& axes, double x, double y);
double SurfaceX(const Axes& axes, double be);
double SurfaceY(const Axes& axes, double i);

/// Data minus envelope (the background alone without peaks) at each point of the
/// background range, 1..RangeCount; divided by sqrt(|data|) when `scaled` (NaN where
/// the data is 0). Empty without a background.
std::vector<double> Residuals(const Region& region, bool scaled);

}  // namespace molvera
