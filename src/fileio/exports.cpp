#include "fileio/exports.h"

#include <algorithm>
#include <ostream>

#include "base/binstream.h"
#include "base/messages.h"
#include "base/numtext.h"
#include "fileio/files.h"

namespace molvera {

namespace {

// Element i of an array, 0 when a damaged project leaves the array too short.
float ValueAt(const SingleArray& a, int i) {
    return i >= 0 && static_cast<std::size_t>(i) < a.size() ? a[static_cast<std::size_t>(i)] : 0.0f;
}

int ValidPeakCount(const Region& region) {
    return std::clamp<int>(region.PeakCount, 0, kMaxPeaksPerRegion);
}

// The peak listed at position k of the region, or nullptr for a damaged entry.
const Peak* ListedPeak(const Project& project, const Region& region, int k) {
    const int slot = region.PeakIndex[static_cast<std::size_t>(k)];
    if (slot < 0 || slot >= kPeakSlots) return nullptr;
    return &project.Peaks[static_cast<std::size_t>(slot)];
}

void EndLine(std::string& out, const ColumnLine& line) {
    out += line.Text();
    out += "\r\n";
}

Status WriteText(const std::string& path, const std::string& text) {
    return WriteFileBytes(path, text, msg::kErrorWritingFile);
}

}  // namespace

std::string SpectrumExportText(const Project& project) {
    const Region& region = project.Current();
    const int peakCount = ValidPeakCount(region);
    std::string out;

    ColumnLine header;
    header.At(1, "B.E.(eV)").At(20, "Raw Intensity");
    if (peakCount > 0) {
        header.At(40, "Peak Sum").At(60, "Background");
        for (int k = 0; k < peakCount; ++k)
            header.At(80 + 20 * k, "Peak" + ColumnValue(static_cast<Int16>(k + 1)));
        header.At(80 + 20 * peakCount, "difference");
    }
    EndLine(out, header);

    const int n = std::max<int>(region.PointCount, 0);
    for (int i = 1; i <= n; ++i) {
        ColumnLine line;
        line.At(1, ColumnValue(ValueAt(region.BindingEnergy, i)))
            .At(20, ColumnValue(ValueAt(region.RawIntensity, i)));
        if (peakCount > 0 && i >= region.RangeStart && i <= region.RangeEnd) {
            const int j = i - region.RangeStart + 1;
            line.At(40, ColumnValue(ValueAt(region.PeakSumCurve, j)))
                .At(60, ColumnValue(ValueAt(region.BackgroundCurve, j)));
            for (int k = 0; k < peakCount; ++k) {
                const Peak* peak = ListedPeak(project, region, k);
                line.At(80 + 20 * k, ColumnValue(peak ? ValueAt(peak->Curve, j) : 0.0f));
            }
            line.At(80 + 20 * peakCount, ColumnValue(ValueAt(region.Residual, j)));
        }
        EndLine(out, line);
    }
    return out;
}

std::string PeakParameterExportText(const Project& project) {
    const Region& region = project.Current();
    std::string out;

    ColumnLine header;
    header.NextZone("Peak")
        .NextZone("Position (eV)")
        .NextZone("Area")
        .NextZone("FWHM (eV)")
        .NextZone("%GL (%)");
    EndLine(out, header);

    const int peakCount = ValidPeakCount(region);
    for (int k = 0; k < peakCount; ++k) {
        const Peak* peak = ListedPeak(project, region, k);
        if (!peak) continue;
        ColumnLine line;
        line.NextZone(ColumnValue(region.PeakIndex[static_cast<std::size_t>(k)]))
            .NextZone(FormatFixed(peak->Position, 3))
            .NextZone(FormatFixed(peak->Area, 3))
            .NextZone(FormatFixed(peak->FWHM, 3))
            .NextZone(FormatFixed(peak->PercentGL, 0));
        EndLine(out, line);
    }
    return out;
}

Status ExportSpectrum(const Project& project, const std::string& path) {
    return WriteText(path, SpectrumExportText(project));
}

Status ExportPeakParameters(const Project& project, const std::string& path) {
    return WriteText(path, PeakParameterExportText(project));
}

}  // namespace molvera
