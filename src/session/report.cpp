#include "session/report.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <optional>

#include "base/numtext.h"
#include "fitting/peakmodel.h"
#include "fitting/uncertainty.h"
#include "session/jsondump.h"
#include "session/peakform.h"
#include "session/peaktable.h"

#ifndef MOLVERA_VERSION
#define MOLVERA_VERSION "unknown"
#endif

namespace molvera {

namespace {

// The CSV columns, in the order RegionRows fills them.
constexpr std::array<const char*, 24> kColumns{"region",
                                               "caption",
                                               "peak",
                                               "label",
                                               "type",
                                               "splitting",
                                               "position",
                                               "position_sigma",
                                               "position_mark",
                                               "fwhm",
                                               "fwhm_sigma",
                                               "fwhm_mark",
                                               "area",
                                               "area_sigma",
                                               "area_percent",
                                               "area_percent_sigma",
                                               "height_percent",
                                               "area_mark",
                                               "gl",
                                               "gl_sigma",
                                               "gl_mark",
                                               "rsf",
                                               "normalised_area",
                                               "at_percent"};

// One field of a peak's row: its CSV text and its JSON value (null where the CSV is empty).
struct Cell {
    const char* name;
    std::string text;
    Json json;
};

using Row = std::vector<Cell>;

Cell TextCell(const char* name, const std::string& latin1) {
    const std::string utf8 = Latin1ToUtf8(latin1);
    return {name, utf8, utf8};
}

Cell IntCell(const char* name, int value) { return {name, std::to_string(value), value}; }

Cell FloatCell(const char* name, float value) {
    return {name, FormatRoundTrip(value), FloatJson(value)};
}

Cell DoubleCell(const char* name, std::optional<double> value) {
    if (!value || !std::isfinite(*value)) return {name, "", nullptr};
    return {name, ExactText(*value), *value};
}

std::string Trimmed(std::string text) {
    while (!text.empty() && text.back() == ' ') text.pop_back();
    while (!text.empty() && text.front() == ' ') text.erase(0, 1);
    return text;
}

// The columns of each value: the value, its sigma, its mark ("fixed" or the relation).
struct ValueColumns {
    const char* value;
    const char* sigma;
    const char* mark;
    PeakParameter which;
};

constexpr std::array<ValueColumns, 4> kValues{{
    {"position", "position_sigma", "position_mark", PeakParameter::Position},
    {"fwhm", "fwhm_sigma", "fwhm_mark", PeakParameter::FWHM},
    {"area", "area_sigma", "area_mark", PeakParameter::Area},
    {"gl", "gl_sigma", "gl_mark", PeakParameter::GL},
}};

// The rows of region `r`'s peaks, in its order.
std::vector<Row> RegionRows(const Project& project, int r) {
    const Region& region = project.Regions[r];
    const std::vector<int> slots = ListedPeaks(project, r);
    double total = 0;
    for (int slot : slots) total += project.Peaks[slot].Area;
    const bool fitted = IsSet(region.HasData) && IsSet(region.HasBackground);
    Uncertainties u;
    if (fitted) u = ComputeUncertainties(project, {r});
    const QuantTable quant = Quantify(project);
    double counted = 0;
    for (const QuantElement& e : quant.elements) counted += e.normalisedArea;
    std::vector<Row> rows;
    for (int slot : slots) {
        const Peak& peak = project.Peaks[slot];
        const PeakSigmas& s = u.peaks[static_cast<std::size_t>(slot)];
        const char* type = PeakTypeText(peak.PeakType);
        Row row{IntCell("region", r + 1),
                TextCell("caption", Trimmed(region.Caption.Str())),
                IntCell("peak", slot),
                TextCell("label", Trimmed(peak.Label.Str())),
                TextCell("type", type ? type : "?"),
                FloatCell("splitting", peak.Splitting)};
        for (const ValueColumns& c : kValues) {
            const std::string relation = RelationText(project, slot, c.which);
            const bool fixed = IsFixed(peak, c.which);
            const Sigma& sigma = s.parameters[static_cast<std::size_t>(c.which)];
            std::optional<double> value;
            if (fitted && !fixed && relation.empty() && sigma.state == Sigma::State::Value)
                value = sigma.value;
            row.push_back(
                c.which == PeakParameter::GL
                    ? IntCell(c.value, peak.PercentGL)
                    : FloatCell(c.value, static_cast<float>(ParameterValue(peak, c.which))));
            row.push_back(DoubleCell(c.sigma, value));
            if (c.which == PeakParameter::Area) {
                std::optional<double> percent;
                std::optional<double> percentSigma;
                if (total != 0) percent = 100 * peak.Area / total;
                if (fitted && s.areaPercentSigma.state == Sigma::State::Value)
                    percentSigma = s.areaPercentSigma.value;
                row.push_back(DoubleCell("area_percent", percent));
                row.push_back(DoubleCell("area_percent_sigma", percentSigma));
                row.push_back(FloatCell("height_percent", peak.HeightPercent));
            }
            row.push_back(TextCell(c.mark, !relation.empty() ? relation : fixed ? "fixed" : ""));
        }
        // Quantification: the peak's RSF, normalised area and share of all counted peaks.
        std::optional<double> rsf, normalised, percent;
        for (const QuantRow& q : quant.peaks) {
            if (q.slot != slot) continue;
            if (q.rsf > 0) rsf = q.rsf;
            if (q.counted) normalised = q.normalisedArea;
            if (q.counted && counted > 0) percent = 100 * q.normalisedArea / counted;
        }
        row.push_back(DoubleCell("rsf", rsf));
        row.push_back(DoubleCell("normalised_area", normalised));
        row.push_back(DoubleCell("at_percent", percent));
        rows.push_back(std::move(row));
    }
    return rows;
}

std::string HtmlEscaped(const std::string& text) {
    std::string out;
    for (char c : text) {
        switch (c) {
            case '&':
                out += "&amp;";
                break;
            case '<':
                out += "&lt;";
                break;
            case '>':
                out += "&gt;";
                break;
            case '"':
                out += "&quot;";
                break;
            default:
                out += c;
        }
    }
    return out;
}

std::string Base64(const std::string& bytes) {
    static constexpr char kDigits[] =
        "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
    std::string out;
    for (std::size_t i = 0; i < bytes.size(); i += 3) {
        unsigned n = static_cast<unsigned char>(bytes[i]) << 16;
        if (i + 1 < bytes.size()) n |= static_cast<unsigned char>(bytes[i + 1]) << 8;
        if (i + 2 < bytes.size()) n |= static_cast<unsigned char>(bytes[i + 2]);
        out += kDigits[(n >> 18) & 63];
        out += kDigits[(n >> 12) & 63];
        out += i + 1 < bytes.size() ? kDigits[(n >> 6) & 63] : '=';
        out += i + 2 < bytes.size() ? kDigits[n & 63] : '=';
    }
    return out;
}

// One HTML table: a header row, then rows whose cells after the first `texts` are numbers.
std::string HtmlTable(const std::vector<std::string>& header,
                      const std::vector<std::vector<std::string>>& rows, std::size_t texts) {
    std::string html = "<table>\n<tr>";
    for (const std::string& title : header) html += "<th>" + HtmlEscaped(title) + "</th>";
    html += "</tr>\n";
    for (const std::vector<std::string>& row : rows) {
        html += "<tr>";
        for (std::size_t c = 0; c < row.size(); ++c)
            html += (c < texts ? "<td>" : "<td class=\"n\">") + HtmlEscaped(row[c]) + "</td>";
        html += "</tr>\n";
    }
    return html + "</table>\n";
}

// The quantification at the top of the page: its settings, the atomic percentages of the
// labels and the peaks they sum.
std::string QuantHtml(const Project& project) {
    const QuantSettings& q = project.Quant;
    const QuantTable table = Quantify(project);
    auto general = [](double v) {
        return std::isfinite(v) ? FormatGeneral(static_cast<float>(v)) : std::string();
    };
    std::string html = "<h2>Quantification</h2>\n<p>Source " + FormatGeneral(q.SourceEnergy) +
                       " eV; normalised area = area / (RSF &middot; E<sup>" +
                       FormatGeneral(q.TransmissionExponent) + "</sup> &middot; E<sup>" +
                       FormatGeneral(q.ImfpExponent) + "</sup>), E the kinetic energy.</p>\n";
    if (table.elements.empty())
        return html +
               "<p>No peak is counted: a peak counts once it has a label such as "
               "&ldquo;C 1s&rdquo; with a known or typed RSF.</p>\n";
    double counted = 0;
    std::vector<std::vector<std::string>> rows;
    for (const QuantElement& e : table.elements) {
        counted += e.normalisedArea;
        rows.push_back({Latin1ToUtf8(e.label), general(e.normalisedArea),
                        std::isfinite(e.atomicPercent) ? FormatFixed(e.atomicPercent, 2) : ""});
    }
    html += HtmlTable({"Label", "Normalised area", "At. %"}, rows, 1);
    rows.clear();
    for (const QuantRow& p : table.peaks)
        rows.push_back({std::to_string(p.region + 1), std::to_string(p.slot), Latin1ToUtf8(p.label),
                        FormatGeneral(p.position), FormatGeneral(p.area),
                        p.rsf > 0 ? general(p.rsf) : "", p.counted ? general(p.normalisedArea) : "",
                        p.counted && counted > 0 && std::isfinite(counted)
                            ? FormatFixed(100 * p.normalisedArea / counted, 2)
                            : ""});
    html += HtmlTable(
        {"Region", "Peak", "Label", "Position (eV)", "Area", "RSF", "Normalised area", "At. %"},
        rows, 3);
    for (const std::string& note : table.notes)
        html += "<p class=\"note\">" + HtmlEscaped(Latin1ToUtf8(note)) + "</p>\n";
    return html;
}

const char* BackgroundName(BackgroundKind kind) {
    switch (kind) {
        case BackgroundKind::Shirley:
            return "Shirley";
        case BackgroundKind::Linear:
            return "linear";
        case BackgroundKind::Tougaard:
            return "Tougaard";
    }
    return "?";
}

const char* MethodName(float method) {
    return method == 0 ? "Search method" : method == 2 ? "Levenberg-Marquardt" : "Newton's method";
}

}  // namespace

std::string QuantCsv(const QuantTable& table, bool suggest) {
    auto number = [](double v, bool known) {
        return known && std::isfinite(v) ? ExactText(v) : std::string();
    };
    std::string text = "region,peak,label,position,area,rsf,normalised_area";
    text += suggest ? ",suggestions\n" : "\n";
    for (const QuantRow& p : table.peaks) {
        text += std::to_string(p.region + 1) + "," + std::to_string(p.slot) + "," +
                CsvField(Latin1ToUtf8(p.label)) + "," + FormatRoundTrip(p.position) + "," +
                FormatRoundTrip(p.area) + "," + number(p.rsf, p.rsf > 0) + "," +
                number(p.normalisedArea, p.counted);
        if (suggest) {
            std::string near;
            if (p.label.empty())
                for (const std::string& level : SuggestLabels(p.position))
                    near += (near.empty() ? "" : "; ") + level;
            text += "," + CsvField(near);
        }
        text += "\n";
    }
    text += "\nlabel,normalised_area,at_percent\n";
    for (const QuantElement& e : table.elements)
        text += CsvField(Latin1ToUtf8(e.label)) + "," + number(e.normalisedArea, true) + "," +
                number(e.atomicPercent, true) + "\n";
    return text;
}

std::vector<int> ReportRegions(const Project& project, int region) {
    std::vector<int> regions;
    for (int r = 0; r < kRegionCount; ++r)
        if ((region < 0 || r == region) && IsSet(project.Regions[r].HasData)) regions.push_back(r);
    return regions;
}

std::string ReportCsv(const Project& project, const std::vector<int>& regions) {
    std::string text;
    for (const char* name : kColumns) text += (text.empty() ? "" : ",") + std::string(name);
    text += "\n";
    for (int r : regions) {
        for (const Row& row : RegionRows(project, r)) {
            std::string line;
            for (const Cell& c : row) line += (line.empty() ? "" : ",") + CsvField(c.text);
            text += line + "\n";
        }
    }
    return text;
}

std::string ReportJson(const Project& project, const std::vector<int>& regions,
                       const std::string& source) {
    Json report;
    report["program"] = "Molvera";
    report["version"] = MOLVERA_VERSION;
    report["source"] = source;
    report["method"] = MethodName(project.Options.Method);
    report["options"] = OptionsToJson(project.Options);
    Json list = Json::array();
    for (int r : regions) {
        const Region& region = project.Regions[r];
        Json j;
        j["region"] = r + 1;
        j["caption"] = Latin1ToUtf8(Trimmed(region.Caption.Str()));
        Json background;
        background["present"] = IsSet(region.HasBackground);
        background["type"] = BackgroundName(region.BackgroundType);
        background["low_be"] = FloatJson(region.BackgroundLowBE);
        background["high_be"] = FloatJson(region.BackgroundHighBE);
        background["linear_step"] = FloatJson(region.LinearStep);
        background["parameter"] = FloatJson(region.BackgroundParameter);
        background["start_average"] = FloatJson(region.StartAverage);
        background["end_average"] = FloatJson(region.EndAverage);
        background["end_point_average"] = region.EndPointAverage;
        j["background"] = background;
        j["chi_square"] = FloatJson(region.ChiSquare);
        if (IsSet(region.HasData) && IsSet(region.HasBackground)) {
            const double reduced = ComputeUncertainties(project, {r}).reducedChiSquare;
            j["reduced_chi_square"] = std::isfinite(reduced) ? Json(reduced) : Json(nullptr);
        } else {
            j["reduced_chi_square"] = nullptr;
        }
        Json peaks = Json::array();
        for (const Row& row : RegionRows(project, r)) {
            Json peak;
            for (const Cell& c : row)
                if (std::string(c.name) != "region" && std::string(c.name) != "caption")
                    peak[c.name] = c.json;
            peaks.push_back(peak);
        }
        j["peaks"] = peaks;
        list.push_back(j);
    }
    report["regions"] = list;
    const QuantSettings& q = project.Quant;
    Json quant;
    quant["source_energy"] = FloatJson(q.SourceEnergy);
    quant["transmission_exponent"] = FloatJson(q.TransmissionExponent);
    quant["imfp_exponent"] = FloatJson(q.ImfpExponent);
    Json overrides = Json::array();
    for (int slot = 0; slot < kPeakSlots; ++slot)
        if (q.RsfOverride[slot] != 0)
            overrides.push_back({{"peak", slot}, {"rsf", FloatJson(q.RsfOverride[slot])}});
    quant["rsf_overrides"] = overrides;
    Json elements = Json::array();
    const QuantTable table = Quantify(project);
    for (const QuantElement& e : table.elements)
        elements.push_back({{"label", Latin1ToUtf8(e.label)},
                            {"normalised_area", DoubleCell("", e.normalisedArea).json},
                            {"at_percent", DoubleCell("", e.atomicPercent).json}});
    quant["elements"] = elements;
    Json notes = Json::array();
    for (const std::string& note : table.notes) notes.push_back(Latin1ToUtf8(note));
    quant["notes"] = notes;
    report["quantification"] = quant;
    return report.dump(2) + "\n";
}

std::string ReportHtml(const Project& project, const std::vector<int>& regions,
                       const std::string& source, const std::vector<std::string>& pngs) {
    std::string html =
        "<!DOCTYPE html>\n<html><head><meta charset=\"utf-8\">\n<title>Molvera report: " +
        HtmlEscaped(source) +
        "</title>\n<style>\nbody { font-family: sans-serif; margin: 2em; }\n"
        "table { border-collapse: collapse; margin-bottom: 2em; }\n"
        "th, td { border: 1px solid #888; padding: 2px 6px; }\n"
        "td.n { text-align: right; font-variant-numeric: tabular-nums; }\n"
        "p.note { color: #a0522d; }\n"
        "img { max-width: 100%; }\n</style></head>\n<body>\n<h1>" +
        HtmlEscaped(source) + "</h1>\n<p>Molvera " MOLVERA_VERSION ", " +
        MethodName(project.Options.Method) + "</p>\n" + QuantHtml(project);
    for (std::size_t i = 0; i < regions.size(); ++i) {
        const int r = regions[i];
        html += "<h2>Region " + std::to_string(r + 1) + " " +
                HtmlEscaped(Latin1ToUtf8(Trimmed(project.Regions[r].Caption.Str()))) + "</h2>\n";
        if (i < pngs.size() && !pngs[i].empty())
            html += "<p><img alt=\"region " + std::to_string(r + 1) +
                    "\" src=\"data:image/png;base64," + Base64(pngs[i]) + "\"></p>\n";
        // The peak table of the region window, in its readable form (peak and type as text).
        std::vector<std::vector<std::string>> rows;
        for (const PeakTableRow& row : PeakTableRows(project, r)) {
            rows.emplace_back();
            for (const std::string& cell : row.cells) rows.back().push_back(Latin1ToUtf8(cell));
        }
        std::vector<std::string> header;
        for (const std::string& title : PeakTableHeader()) header.push_back(Latin1ToUtf8(title));
        html += rows.empty() ? "<p>No peaks.</p>\n" : HtmlTable(header, rows, kTypeColumn + 1);
    }
    return html + "</body></html>\n";
}

// A CSV field: quoted when it holds a comma or a quote; line ends become blanks so that
// every row stays one line.
std::string CsvField(std::string text) {
    std::replace(text.begin(), text.end(), '\n', ' ');
    std::replace(text.begin(), text.end(), '\r', ' ');
    if (text.find_first_of(",\"") == std::string::npos) return text;
    std::string quoted = "\"";
    for (char c : text) quoted += c == '"' ? std::string("\"\"") : std::string(1, c);
    return quoted + "\"";
}

// The shortest text that reads back to exactly this double, whatever the locale.
std::string ExactText(double value) {
    std::array<char, 32> buffer{};
    const auto end = std::to_chars(buffer.data(), buffer.data() + buffer.size(), value).ptr;
    return std::string(buffer.data(), end);
}

}  // namespace molvera
