#include "plot/printout.h"

#include <algorithm>

#include "base/limits.h"
#include "base/numtext.h"
#include "plot/spectrumplot.h"

namespace molvera {

namespace {

// Rows of the peak table below its header.
int PeakTableRows(const Region& region) {
    return std::clamp<int>(region.PeakCount, 0, kMaxPeaksPerRegion);
}

// The peak table with its header's upper-left corner at (x0, y0), rows downwards.
void DrawPeakTable(const Project& project, Canvas& canvas, double x0, double y0, double cw,
                   double h) {
    const double columnX[] = {0, 6, 20, 34, 46};
    canvas.SetBold(true);
    const char* headers[] = {"Peak", "Position", "Area", "FWHM", "%GL"};
    for (int c = 0; c < 5; ++c) {
        canvas.MoveTo(x0 + columnX[c] * cw, y0);
        canvas.Print(headers[c]);
    }
    canvas.SetBold(false);

    const Region& region = project.Current();
    const int rows = PeakTableRows(region);
    for (int k = 0; k < rows; ++k) {
        const int slot = region.PeakIndex[static_cast<std::size_t>(k)];
        if (slot < 0 || slot >= kPeakSlots) continue;
        const auto cells = PeakTableCells(project, slot);
        for (int c = 0; c < 5; ++c) {
            canvas.MoveTo(x0 + columnX[c] * cw, y0 - (k + 1) * h);
            canvas.Print(cells[static_cast<std::size_t>(c)]);
        }
    }
}

// A description may hold line breaks typed into the box; the page shows one line.
std::string OneLine(std::string text) {
    std::replace(text.begin(), text.end(), '\r', ' ');
    std::replace(text.begin(), text.end(), '\n', ' ');
    return text;
}

}  // namespace

std::array<std::string, 5> PeakTableCells(const Project& project, int slot) {
    const Peak& p = project.Peaks[static_cast<std::size_t>(slot)];
    return {std::to_string(slot), FormatFixed(p.Position, 3) + "eV", FormatFixed(p.Area, 3),
            FormatFixed(p.FWHM, 3) + "eV", FormatFixed(p.PercentGL, 0) + "%"};
}

PlotLayout DrawPrintout(const Project& project, Canvas& canvas, bool withPeakTable) {
    const Region& region = project.Current();
    PlotOptions options;
    options.title = OneLine(project.Description);
    // The page margins: a sixteenth of the width beside, a twelfth of the height above
    // and below; the table takes its rows and a blank line under the plot.
    options.frame = {1.0 / 16, 1.0 / 12, 15.0 / 16, 11.0 / 12};
    options.tableLines = withPeakTable ? PeakTableRows(region) + 2 : 0;
    const PlotLayout layout = DrawPlot(project, canvas, options);
    if (withPeakTable && IsSet(region.HasData))
        DrawPeakTable(project, canvas, layout.spectrum.area.x0, layout.table.y1 - layout.lineHeight,
                      layout.charWidth, layout.lineHeight);
    return layout;
}

}  // namespace molvera
