#pragma once
// The region plot: the spectrum panel with its intensity axis, the residual panel under
// it sharing the binding-energy axis (falling to the right), round ticks, the caption,
// the read-out and a legend; data, background, peaks and envelope in distinct colours.

#include <string>

#include "model/records.h"
#include "plot/canvas.h"
#include "plot/plotview.h"

namespace molvera {

/// Okabe-Ito colours (distinguishable with the common colour-vision deficiencies).
inline constexpr Rgb kDataColour{0, 114, 178};
inline constexpr Rgb kBackgroundColour{90, 90, 90};
inline constexpr Rgb kEnvelopeColour{0, 0, 0};
/// The colour of the k-th peak of a region (cycling through six).
Rgb PeakColour(int k);

/// What to draw besides the region.
struct PlotOptions {
    PlotView view;                ///< auto when not zoomed
    int selectedPeak = -1;        ///< drawn thicker; -1 for none
    bool scaledResidual = false;  ///< residual / sqrt(|data|) instead of the residual
    std::string title;            ///< a bold line above the caption (the printout's description)
    std::string readout;          ///< the cursor read-out, top right; empty for none
    int tableLines = 0;           ///< text lines kept free below the axis title for a table
    SurfaceRect frame;            ///< the part of the surface the plot uses
};

/// Where the parts of a drawn plot are, in fractions of the surface (y upwards).
struct PlotLayout {
    Axes spectrum;
    Axes residual;
    bool hasResidual = false;
    SurfaceRect table;  ///< the free area below the axis title
    double lineHeight = 0, charWidth = 0;
};

/// Sets the canvas scale to the unit square and places the panels, ticks and legend.
PlotLayout LayoutPlot(const Project& project, Canvas& canvas, const PlotOptions& options);

/// Clears the surface and draws the current region (nothing but the caption without
/// data); returns the layout used.
PlotLayout DrawPlot(const Project& project, Canvas& canvas, const PlotOptions& options);

/// The read-out text for a pointer at (be, i).
std::string ReadoutText(double be, double i);

/// A tick label: as many decimals as the step needs.
std::string TickLabel(double value, double step);

}  // namespace molvera
