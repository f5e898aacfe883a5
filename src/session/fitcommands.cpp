#include "session/fitcommands.h"

#include <algorithm>
#include <cmath>
#include <string_view>

#include "base/numtext.h"

namespace molvera {

FitSummary OptimiseRegionCommand(Project& project, SessionHost& host) {
    const Region& region = project.Current();
    if (!IsSet(region.HasData) || !IsSet(region.HasBackground)) {
        FitSummary nothing;
        nothing.method = FitMethodName(project.Options);
        nothing.note = "nothing to fit: the region has no data or no background";
        return nothing;
    }
    host.HidePeakEditor();
    BeginFit(project, host);
    FitSummary summary = OptimiseRegion(project, host);
    EndFit(project, host);
    return summary;
}

FitSummary OptimiseAllCommand(Project& project, SessionHost& host) {
    BeginFit(project, host);
    host.HidePeakEditor();
    FitSummary summary = OptimiseAllRegions(project, host);
    EndFit(project, host);
    return summary;
}

std::string FitSummaryText(const FitSummary& s) {
    std::string text = s.method;
    if (!s.note.empty()) return text + ": " + s.note;
    const bool lm = s.method == kLevenbergMarquardtName;
    text += ", " + std::to_string(s.iterations) + (lm ? " iterations" : " trials");
    if (s.stopped) text += " (stopped)";
    text += ": chi-square " + FormatGeneral(s.chiSquareBefore) + " -> " +
            FormatGeneral(s.chiSquareAfter);
    if (std::isfinite(s.reducedChiSquare))
        text += ", reduced " + FormatGeneral(static_cast<float>(s.reducedChiSquare));
    return text + ", " + FormatFixed(s.seconds, s.seconds < 10 ? 3 : 1) + " s";
}

std::string FitProgressText(const FitProgress& p) {
    const bool lm = std::string_view(p.method) == kLevenbergMarquardtName;
    return std::string(p.method) + (lm ? "   iteration " : "   trial ") +
           std::to_string(p.iteration) + "   chi-square " + FormatGeneral(p.chiSquare) + "   " +
           FormatFixed(p.seconds, 1) + " s";
}

void FitTrace::Add(float chiSquare) {
    if (hasLast_ && static_cast<int>(last_.x) % stride_ == 0) points_.push_back(last_);
    last_ = {hasLast_ ? last_.x + 1 : 0, static_cast<double>(chiSquare)};
    hasLast_ = true;
    if (points_.size() < kMaxPoints) return;
    for (std::size_t i = 1; 2 * i < points_.size(); ++i) points_[i] = points_[2 * i];
    points_.resize((points_.size() + 1) / 2);
    stride_ *= 2;
}

std::vector<FitTrace::Point> FitTrace::Polyline(double width, double height) const {
    std::vector<Point> line = points_;
    if (hasLast_) line.push_back(last_);
    if (line.empty()) return line;
    auto logOf = [](double chi) { return std::log10(std::max(chi, 1e-30)); };
    double low = logOf(line[0].y), high = low;
    for (const Point& p : line) {
        low = std::min(low, logOf(p.y));
        high = std::max(high, logOf(p.y));
    }
    const double first = line.front().x, span = line.back().x - first;
    for (Point& p : line) {
        p.x = span > 0 ? (p.x - first) / span * width : 0;
        p.y = high > low ? (high - logOf(p.y)) / (high - low) * height : height / 2;
    }
    return line;
}

std::string SigmaText(const Sigma& sigma) {
    switch (sigma.state) {
        case Sigma::State::Fixed:
            return "";
        case Sigma::State::NotDetermined:
            return "\xB1 not determined";  // Latin-1 plus-minus
        case Sigma::State::Value:
            break;
    }
    // Two significant digits: "± 0.012", "± 1.7", "± 400".
    const double v = sigma.value;
    if (!(v > 1e-6) || !std::isfinite(v)) return "\xB1 " + FormatGeneral(static_cast<float>(v));
    const int decimals = std::clamp(1 - static_cast<int>(std::floor(std::log10(v))), 0, 7);
    return "\xB1 " + FormatFixed(v, decimals);
}

std::string PeakSigmaLine(const Project& project, int slot, const Uncertainties& u) {
    const Peak& peak = project.Peaks[static_cast<std::size_t>(slot)];
    const PeakSigmas& s = u.peaks[static_cast<std::size_t>(slot)];
    auto value = [&](const char* name, float v, const Sigma& sigma) {
        const std::string text = SigmaText(sigma);
        return std::string(name) + " " + FormatGeneral(v) +
               (text.empty() ? " (fixed)" : " " + text);
    };
    auto sigma = [&](PeakParameter which) { return s.parameters[static_cast<std::size_t>(which)]; };
    std::string line =
        "peak " + std::to_string(slot) + ", region " + std::to_string(peak.Region + 1) + ": ";
    line += value("position", peak.Position, sigma(PeakParameter::Position)) + ", ";
    line += value("FWHM", peak.FWHM, sigma(PeakParameter::FWHM)) + ", ";
    line += value("area", peak.Area, sigma(PeakParameter::Area)) + ", ";
    line += value("%GL", peak.PercentGL, sigma(PeakParameter::GL));
    if (std::isfinite(s.areaPercent)) {
        line += ", " + FormatFixed(s.areaPercent, 2) + " % of the region's area";
        const std::string text = SigmaText(s.areaPercentSigma);
        if (!text.empty()) line += " " + text;
    }
    return line;
}

}  // namespace molvera
