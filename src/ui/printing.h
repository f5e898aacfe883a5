#pragma once
// The region on paper, in a PDF file or in a picture for the clipboard, drawn by the
// printout code through a QtCanvas.

#include <optional>
#include <string>
#include <vector>

#include <QImage>
#include <QPainter>
#include <QPrinter>
#include <QSize>

#include "model/records.h"

namespace molvera::ui {

/// The current region drawn as the printout inside `logical` (units of 1/96 inch) of
/// `painter`: the printer, a picture or an SVG file.
void DrawRegionOn(QPainter& painter, const QRectF& logical, const molvera::Project& project,
                  bool withPeakTable);

/// False when the printer is the system printer and none is installed.
bool PrinterAvailable(const QPrinter& printer);

/// Prints the current region as one page (with the peak table when asked); shows the
/// "Printing...." notice meanwhile in a widget program. False when the printer
/// cannot be started; nothing of the project changes either way.
bool PrintRegion(const molvera::Project& project, QPrinter& printer, bool withPeakTable);

/// The current region drawn as the printout on a white picture of `size` pixels.
QImage RegionPicture(const molvera::Project& project, bool withPeakTable, QSize size);

/// The report of `regions` in the format the extension of `path` names (csv, json or
/// html, the page with each region's picture); nothing for another extension.
std::optional<std::string> ReportText(const molvera::Project& project,
                                      const std::vector<int>& regions, const std::string& path,
                                      const std::string& source);

}  // namespace molvera::ui
