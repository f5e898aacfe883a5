#pragma once
// The printed page and the clipboard picture of a region: the plot in a frame with
// page margins, the project description and caption, optionally the peak table.

#include <array>
#include <string>

#include "model/records.h"
#include "plot/canvas.h"

namespace molvera {

/// The five cells of a peak's row in the peak table: slot, "#0.000"+"eV",
/// "#######0.000", "0.000"+"eV", "#0"+"%".
std::array<std::string, 5> PeakTableCells(const Project& project, int slot);

/// Draws the current region as the printout does, with the peak table when asked.
void DrawPrintout(const Project& project, Canvas& canvas, bool withPeakTable);

}  // namespace molvera
