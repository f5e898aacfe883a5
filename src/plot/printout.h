#pragma once
// The printed page and the clipboard picture of a region: the plot with page margins,
// the project description and caption, optionally the peak table below the plot.

#include <array>
#include <string>

#include "model/records.h"
#include "plot/canvas.h"
#include "plot/spectrumplot.h"

namespace molvera {

/// The five cells of a peak's row in the peak table: slot, "#0.000"+"eV",
/// "#######0.000", "0.000"+"eV", "#0"+"%".
std::array<std::string, 5> PeakTableCells(const Project& project, int slot);

/// Draws the current region as the printout does (the plot of the window with the
/// description above it), with the peak table below the plot when asked.
PlotLayout DrawPrintout(const Project& project, Canvas& canvas, bool withPeakTable);

}  // namespace molvera
