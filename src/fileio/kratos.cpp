#include "fileio/kratos.h"

#include <algorithm>
#include <cmath>
#include <optional>
#include <string_view>
#include <vector>

#include "base/binstream.h"
#include "base/messages.h"
#include "base/numtext.h"
#include "model/project.h"
#include "spectral/background.h"
#include "spectral/envelope.h"
#include "spectral/lineshape.h"
#include "spectral/regionedit.h"

namespace molvera {

namespace {

constexpr int kRegionValues = 12;
constexpr int kComponentValues = 27;

// Keyword scanning over the file's text with one cursor.
class Scanner {
public:
    explicit Scanner(std::string_view text) : text_(text) {}

    // Position just after the first `key` at or after `start`; 0 when there is none
    // or when the match ends on the text's last character.
    std::size_t FindText(std::string_view key, std::size_t start) const {
        if (start > text_.size()) return 0;
        const std::size_t at = text_.find(key, start);
        if (at == std::string_view::npos || at + key.size() >= text_.size()) return 0;
        return at + key.size();
    }

    bool Find(std::string_view key) {
        const std::size_t p = FindText(key, cursor_);
        if (p == 0) return false;
        cursor_ = p;
        return true;
    }

    void Require(std::string_view key) {
        if (!Find(key)) Fail("no \"" + std::string(key) + "\" follows");
    }

    // Where the scan stands: the line of the last character read.
    std::string Where() const {
        const std::size_t end = std::min(cursor_ == 0 ? 0 : cursor_ - 1, text_.size());
        const auto lines =
            std::count(text_.begin(), text_.begin() + static_cast<std::ptrdiff_t>(end), '\n');
        return "line " + std::to_string(lines + 1);
    }

    [[noreturn]] void Fail(const std::string& what) const {
        throw ReadError(Where() + ": " + what);
    }

    // Up to, not including, the next line feed; the cursor moves past it.
    std::string_view ReadToLineEnd() {
        std::size_t end = text_.find('\n', cursor_);
        if (end == std::string_view::npos) end = text_.size();
        const std::string_view line = text_.substr(cursor_, end - cursor_);
        cursor_ = end < text_.size() ? end + 1 : end;
        return line;
    }

    std::string_view TextAfterEquals() {
        Require("=");
        return ReadToLineEnd();
    }

    // One data line: kinetic energy up to the next blank, intensity up to the line feed.
    void DataPoint(double& kinetic, double& intensity) {
        while (cursor_ < text_.size() &&
               std::string_view(" \t\r\n").find(text_[cursor_]) != std::string_view::npos)
            ++cursor_;
        const std::size_t start = cursor_;
        while (cursor_ < text_.size() &&
               std::string_view(" \t\r\n").find(text_[cursor_]) == std::string_view::npos)
            ++cursor_;
        kinetic = Number(text_.substr(start, cursor_ - start), "the kinetic energy");
        intensity = Number(ReadToLineEnd(), "the intensity");
    }

    double Number(std::string_view s, const char* what) const {
        if (LeadingNumberLength(s) == 0) Fail(std::string(what) + " is not a number");
        return LeadingNumber(s);
    }

private:
    std::string_view text_;
    std::size_t cursor_ = 0;
};

// A text value without the blanks after "=" and without the CR of a CR LF line end.
std::string TextValue(std::string_view s) {
    while (!s.empty() && (s.front() == ' ' || s.front() == '\t')) s.remove_prefix(1);
    if (!s.empty() && s.back() == '\r') s.remove_suffix(1);
    return std::string(s);
}

// %GL of a component's shape text.
Int16 ShapeGL(std::string_view shape) {
    if (shape.find("Gau") != std::string_view::npos) return 0;
    if (shape.find("Lo") != std::string_view::npos) return 100;
    const std::size_t open = shape.find('(');
    const std::size_t close = shape.find(')');
    if (open != std::string_view::npos && close != std::string_view::npos && close > open)
        shape = shape.substr(open + 1, close - open - 1);
    const double g = LeadingNumber(shape);
    if (!(g >= 0)) return 0;
    return static_cast<Int16>(g > 100 ? 100 : RoundHalfEven(g));
}

struct KratosData {
    float hv = 0;
    std::optional<std::string> comment;
    std::optional<ImportedFit> fit;
    std::vector<float> be;
    std::vector<float> intensity;
    // Background range of the fit.
    Int16 rangeStart = 1;
    Int16 rangeEnd = 1;
    Int16 rangeCount = 0;
};

ImportedFit ReadFit(Scanner& s) {
    ImportedFit fit;
    std::string values[kRegionValues + 1];
    for (int v = 1; v <= kRegionValues; ++v) values[v] = std::string(s.TextAfterEquals());
    fit.regionNumber = ToInt16(LeadingNumber(values[1])).value_or(0);
    fit.caption = TextValue(values[2]);
    fit.low = static_cast<float>(s.Number(values[4], "the low background energy"));
    fit.high = static_cast<float>(s.Number(values[5], "the high background energy"));
    fit.type = values[8].find("SHI") != std::string::npos ? BackgroundKind::Shirley
                                                          : BackgroundKind::Linear;
    const auto count = ToInt16(s.Number(values[12], "the component count"));
    if (!count || *count < 0 || *count > kMaxPeaksPerRegion)
        s.Fail("more components than a region holds");
    if (*count == 0) return fit;
    s.Require("=");
    for (int k = 0; k < *count; ++k) {
        std::string c[kComponentValues + 1];
        for (int v = 1; v <= kComponentValues; ++v) c[v] = std::string(s.TextAfterEquals());
        Peak p;
        p.Label = Text20::From(TextValue(c[1]));
        p.PercentGL = ShapeGL(c[2]);
        p.Position = static_cast<float>(s.Number(c[13], "a component position"));
        p.HeightPercent = static_cast<float>(s.Number(c[19], "a component height"));
        p.FWHM = static_cast<float>(s.Number(c[25], "a component FWHM"));
        fit.peaks.push_back(p);
    }
    return fit;
}

KratosData Parse(std::string_view text) {
    Scanner s(text);
    KratosData d;
    s.Require("Dataset:");
    s.Require("\t");
    s.ReadToLineEnd();
    s.Require("Object name:");
    s.Require("\t");
    s.ReadToLineEnd();
    s.Require("# ord");
    s.Require("=");
    const auto n = ToInt16(s.Number(s.ReadToLineEnd(), "the point count"));
    if (!n || *n < 1 || *n > kMaxPoints) s.Fail("the point count is not 1..5000");
    if (s.Find("Comment")) d.comment = TextValue(s.TextAfterEquals());
    s.Require("energy");
    s.Require("=");
    d.hv = static_cast<float>(s.Number(s.ReadToLineEnd(), "the excitation energy"));
    if (s.Find("Regions")) d.fit = ReadFit(s);
    s.Require("(Counts)");
    s.ReadToLineEnd();
    for (int i = 0; i < *n; ++i) {
        double kinetic = 0;
        double intensity = 0;
        s.DataPoint(kinetic, intensity);
        d.be.push_back(d.hv - static_cast<float>(kinetic));
        d.intensity.push_back(static_cast<float>(intensity));
    }
    return d;
}

// The fit's range over the data (points numbered from 1); false when the data
// cannot carry a background.
bool FindRange(KratosData& d) {
    ImportedFit& fit = *d.fit;
    if (fit.low > fit.high) std::swap(fit.low, fit.high);
    const int n = static_cast<int>(d.be.size());
    double bestLow = 10000;
    double bestHigh = 10000;
    d.rangeStart = 1;
    d.rangeEnd = static_cast<Int16>(n);
    for (int i = 1; i <= n; ++i) {
        const double e = d.be[static_cast<std::size_t>(i - 1)];
        const double dl = (e - fit.low) * (e - fit.low);
        const double dh = (e - fit.high) * (e - fit.high);
        if (dl < bestLow) {
            bestLow = dl;
            d.rangeEnd = static_cast<Int16>(i);
        }
        if (dh < bestHigh) {
            bestHigh = dh;
            d.rangeStart = static_cast<Int16>(i);
        }
    }
    const double span = static_cast<double>(d.be.front()) - d.be.back();
    const double m =
        RoundHalfEven(std::fabs((static_cast<double>(fit.high) - fit.low) * (n - 1) / span) + 1);
    if (!std::isfinite(m) || m < 2) return false;
    // The range cannot hold more points than the region's arrays.
    d.rangeCount = static_cast<Int16>(m > n ? n : m);
    return true;
}

// Range curves, background, net scale, peak areas and envelope of the current region, as
// RecomputeRegion makes them with two differences. The linear background and the net scale
// are worked in Single, not in Double: that gives other last bits for most spectra (and so
// other curves and areas), and an import of a fitted Kratos file must keep giving the values
// it has always given. And every area follows its height, whatever KeepAreas says.
void RebuildFit(Project& project, Host& host, const KratosData& d) {
    Region& region = project.Current();
    const int m = d.rangeCount;
    region.RangeStart = d.rangeStart;
    region.RangeEnd = d.rangeEnd;
    region.RangeCount = d.rangeCount;
    CopyRangeFromSpectrum(region);
    AverageEndPoints(region);
    region.LinearStep = (region.EndAverage - region.StartAverage) / static_cast<float>(m - 1);
    for (int k = 1; k <= m; ++k)
        region.BackgroundWork[static_cast<std::size_t>(k)] =
            region.StartAverage + static_cast<float>(k - 1) * region.LinearStep;
    ComputeBackground(region);  // the fit's type is Shirley or Linear
    MeasureNetRange(region);
    region.NetScale = (region.NetMax - region.NetMin) / 100;
    for (int k = 0; k < region.PeakCount; ++k) {
        const int slot = region.PeakIndex[static_cast<std::size_t>(k)];
        ResizePeakCurve(project, slot, m);
        Peak& peak = project.Peaks[static_cast<std::size_t>(slot)];
        peak.Area = HeightPercentToArea(project, peak);
    }
    ComputeRegionEnvelope(project, host);
}

// Free slots for the fit's peaks once the current region's own peaks are deleted.
int AvailableSlots(const Project& project) {
    int free = 0;
    for (const Peak& p : project.Peaks)
        if (!IsSet(p.InUse) || p.Region == project.CurrentRegion) ++free;
    return free;
}

}  // namespace

ImportedData ReadKratos(std::string_view text) {
    ImportedData data;
    KratosData d;
    try {
        d = Parse(text);
    } catch (const ReadError& e) {
        data.status = Status::Error(msg::kErrorReadingFile, e.what());
        return data;
    }
    ImportedSpectrum spectrum;
    spectrum.energy = std::move(d.be);
    spectrum.intensity = std::move(d.intensity);
    data.spectra.push_back(std::move(spectrum));
    data.description = std::move(d.comment);
    data.fit = std::move(d.fit);
    return data;
}

ImportResult StoreKratos(Project& project, Host& host, const ImportedData& data) {
    ImportResult result;
    if (data.spectra.empty()) {
        result.status = data.status;
        return result;
    }
    KratosData d;
    d.be = data.spectra.front().energy;
    d.intensity = data.spectra.front().intensity;
    d.fit = data.fit;
    const bool withPeaks = d.fit && !d.fit->peaks.empty();
    if (withPeaks && static_cast<int>(d.fit->peaks.size()) > AvailableSlots(project)) {
        result.status = Status::Error(msg::kErrorReadingFile,
                                      "the fit has more components than free peak slots");
        return result;
    }
    if (withPeaks && !FindRange(d)) {
        result.status = Status::Error(msg::kErrorReadingFile,
                                      "the fit's background range holds fewer than two points");
        return result;
    }

    DeleteRegionData(project, host);
    const int r = project.CurrentRegion;
    Region& region = project.Current();
    const int n = static_cast<int>(d.be.size());
    ResizeRegionArrays(region, n);
    region.PointCount = static_cast<Int16>(n);
    for (int i = 1; i <= n; ++i) {
        region.BindingEnergy[static_cast<std::size_t>(i)] = d.be[static_cast<std::size_t>(i - 1)];
        region.RawIntensity[static_cast<std::size_t>(i)] =
            d.intensity[static_cast<std::size_t>(i - 1)];
    }
    if (data.description && project.Description.empty()) {
        project.Description = data.description->substr(0, kDescriptionLength);
        host.DescriptionChanged(project.Description);
    }
    if (d.fit) {
        const ImportedFit& fit = *d.fit;
        region.ImportRegionNumber = fit.regionNumber;
        region.Caption = Text20::From(fit.caption);
        region.BackgroundLowBE = fit.low;
        region.BackgroundHighBE = fit.high;
        region.BackgroundType = fit.type;
        region.PeakCount = static_cast<Int16>(fit.peaks.size());
        region.HasBackground = ToFlag(withPeaks);
        int slot = 0;
        for (std::size_t k = 0; k < fit.peaks.size(); ++k) {
            while (slot < kPeakSlots && IsSet(project.Peaks[static_cast<std::size_t>(slot)].InUse))
                ++slot;
            if (slot >= kPeakSlots) break;  // cannot happen: the slots were counted before
            ClearPeakSlot(project, slot);
            Peak& p = project.Peaks[static_cast<std::size_t>(slot)];
            const Peak& f = fit.peaks[k];
            p.InUse = kTrue;
            p.Label = f.Label;
            p.PercentGL = f.PercentGL;
            p.Position = f.Position;
            p.HeightPercent = f.HeightPercent;
            p.FWHM = f.FWHM;
            SetNewPeakDefaults(p, r);
            region.PeakIndex[k] = static_cast<Int16>(slot);
            ++slot;
        }
        if (!fit.peaks.empty()) host.PeakListChanged(r, PeakList(region), true);
        project.TotalPeakCount = static_cast<Int16>(project.TotalPeakCount + region.PeakCount);
    }
    UpdateDataExtents(region);
    region.HasData = kTrue;
    if (withPeaks) {
        // The fit's file carries no averaging or Shirley slope.
        region.EndPointAverage = 1;
        region.BackgroundParameter = 0;
        RebuildFit(project, host, d);
    }
    host.RegionInView();
    host.RegionListChanged();
    return result;
}

}  // namespace molvera
