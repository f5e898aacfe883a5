#pragma once
// The region plot: frame, binding-energy axis falling to the right, ticks, caption,
// spectrum, background, peaks, envelope, the highlighted peak and the cursor read-out.

#include <string>

#include "model/records.h"
#include "plot/canvas.h"

namespace molvera {

/// What the plot keeps between draws: where the cursor read-out is printed.
struct PlotState {
    float ReadoutX = 0;
    double ReadoutY = 0;
};

/// The spans a region is drawn over; an empty or non-finite span becomes 1 eV or
/// 1 count around its value, so dBE and dI are always positive and finite.
struct PlotExtents {
    double maxBE = 0.5, minBE = -0.5, maxI = 0.5, minI = -0.5;
    double dBE = 1, dI = 1;
};

/// A user rectangle (left is the higher binding energy).
struct PlotBox {
    double left = 0, top = 0, right = 0, bottom = 0;
};

/// The extents of a region's data as drawn.
PlotExtents RegionExtents(const Region& region);

/// Tick spacing: the first non-zero floor(dBE * x / 5 + 0.1) / x for x = 1, 10, 100, ...
double TickStep(double dBE);

/// The smallest multiple of step not below minBE (strictly above it when minBE < 0).
double FirstTick(double minBE, double step);

/// The plot box of a draw: 1/40 of dBE beside the data, half a "0000" on the left,
/// one and a half on the right, three "Sample" heights above and below.
PlotBox InnerBox(const PlotExtents& e, double w, double h);

/// Sets the scale to `box` (enlarged by the page margins when `pageMargins`) and
/// measures w ("0000") and h ("Sample") in it.
void SetBoxAndMeasure(Canvas& canvas, const PlotBox& box, bool pageMargins, double& w, double& h);

/// Axis line, axis title, ticks and "#0.0" labels; ticks continue while
/// t / MaxBE < tickRatio and stop beyond `highEdge`, the highest visible energy.
void DrawAxis(Canvas& canvas, const PlotExtents& e, double step, double w, double h,
              double tickRatio, double highEdge);

/// The measured spectrum in blue, width 2; starts with a point when `startWithPoint`.
void DrawSpectrum(Canvas& canvas, const Region& region, bool startWithPoint);

/// Clears the surface and draws frame, axis, ticks, caption and spectrum of the
/// current region; sets the read-out position.
void DrawRegion(const Project& project, Canvas& canvas, PlotState& state);

/// Background, peaks and envelope of the current region over the existing frame.
void DrawFit(const Project& project, Canvas& canvas);

/// The curve of peak `slot` in red, width 2; nothing when the slot is not a drawn
/// peak of the current region.
void DrawSelectedPeak(const Project& project, int slot, Canvas& canvas);

/// The read-out text "X: x / Y: y " for a pointer at (x, y) in plot units.
std::string ReadoutText(double x, double y);

/// Erases the previous read-out (25 blanks, opaque) and prints the new one.
void ShowReadout(Canvas& canvas, const PlotState& state, double x, double y);

/// The redisplay rule: the region when it has data, then its fit when it has a background.
void Redisplay(const Project& project, Canvas& canvas, PlotState& state);

}  // namespace molvera
