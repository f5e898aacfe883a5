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
void DrawPeakTable(const Project& project, Canvas& canvas, double x0, double y0, double w,
                   double h) {
    canvas.SetBold(true);
    const char* headers[] = {"Peak", "Position", "Area", "FWHM", "%GL"};
    const double headerX[] = {0, 3.2, 6.2, 9, 12};
    for (int c = 0; c < 5; ++c) {
        canvas.MoveTo(x0 - headerX[c] * w, y0);
        canvas.Print(headers[c]);
    }
    canvas.SetBold(false);

    const Region& region = project.Current();
    const double cellX[] = {0, 3, 6, 9, 12};
    const int rows = PeakTableRows(region);
    for (int k = 0; k < rows; ++k) {
        const int slot = region.PeakIndex[static_cast<std::size_t>(k)];
        if (slot < 0 || slot >= kPeakSlots) continue;
        const auto cells = PeakTableCells(project, slot);
        for (int c = 0; c < 5; ++c) {
            canvas.MoveTo(x0 - cellX[c] * w, y0 - (k + 1) * h);
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

void DrawPrintout(const Project& project, Canvas& canvas, bool withPeakTable) {
    const Region& region = project.Current();
    canvas.Clear();
    canvas.SetLineStyle(LineStyle::Solid);
    canvas.SetLineWidth(1);

    const PlotExtents e = RegionExtents(region);
    const double step = TickStep(e.dBE);
    double w = 0, h = 0;
    SetBoxAndMeasure(
        canvas,
        {e.maxBE + e.dBE / 20, e.maxI + e.dI / 20, e.minBE - e.dBE / 20, e.minI - e.dI / 20}, true,
        w, h);
    // The peak table goes below the axis title, inside the frame, where it covers no data:
    // the frame grows down by its lines. A line's height depends on the scale the frame
    // sets, so a few more rounds let the two agree.
    const int tableLines = withPeakTable ? PeakTableRows(region) + 2 : 0;
    PlotBox box;
    for (int round = 0; round < (withPeakTable ? 8 : 2); ++round) {
        box = InnerBox(e, w, h);
        box.bottom -= tableLines * h;
        SetBoxAndMeasure(canvas, box, true, w, h);
    }

    const Rgb fore = canvas.ForeColour();
    canvas.Line(box.left, box.top, box.right, box.top, fore);
    canvas.Line(box.right, box.top, box.right, box.bottom, fore);
    canvas.Line(box.right, box.bottom, box.left, box.bottom, fore);
    canvas.Line(box.left, box.bottom, box.left, box.top, fore);

    const double x0 = e.maxBE + e.dBE / 40;
    const double y0 = e.maxI + 3 * h;
    canvas.SetBold(true);
    canvas.MoveTo(x0, y0);
    canvas.Print(OneLine(project.Description));
    canvas.Print(region.Caption.Str());
    canvas.SetBold(false);

    const double pageHighEdge = box.left + (box.left - box.right) / 8;
    DrawAxis(canvas, e, step, w, h, 1.002, pageHighEdge + w);
    DrawSpectrum(canvas, region, true);
    if (IsSet(region.HasBackground)) DrawFit(project, canvas);
    if (withPeakTable) DrawPeakTable(project, canvas, x0, e.minI - 3 * h, w, h);
}

}  // namespace molvera
