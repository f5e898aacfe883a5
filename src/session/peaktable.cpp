#include "session/peaktable.h"

#include <algorithm>
#include <span>

#include "base/numtext.h"
#include "fitting/peakmodel.h"
#include "fitting/uncertainty.h"
#include "session/fitcommands.h"
#include "session/peakform.h"

namespace molvera {

namespace {

// The parameters of the value columns, each followed by its uncertainty column.
constexpr std::array<std::pair<int, PeakParameter>, 4> kValueColumns{
    {{kPositionColumn, PeakParameter::Position},
     {kFWHMColumn, PeakParameter::FWHM},
     {kAreaColumn, PeakParameter::Area},
     {kGLColumn, PeakParameter::GL}}};

// The number of SigmaText without its "± ", or its words.
std::string SigmaCell(const Sigma& sigma) {
    const std::string text = SigmaText(sigma);
    return text.size() > 2 ? text.substr(2) : text;
}

std::string Trimmed(const std::string& text) {
    const std::size_t end = text.find_last_not_of(' ');
    const std::size_t begin = text.find_first_not_of(' ');
    return end == std::string::npos ? "" : text.substr(begin, end - begin + 1);
}

}  // namespace

const std::array<std::string, kPeakColumnCount>& PeakTableHeader() {
    static const std::array<std::string, kPeakColumnCount> header{
        "Peak", "Type", "Position (eV)", "\xB1", "FWHM (eV)", "\xB1",
        "Area", "\xB1", "% of area",     "\xB1", "%GL",       "\xB1"};
    return header;
}

std::optional<PeakParameter> ColumnParameter(int column) {
    for (const auto& [c, which] : kValueColumns)
        if (c == column) return which;
    return std::nullopt;
}

std::vector<int> ListedPeaks(const Project& project, int r) {
    std::vector<int> slots;
    for (Int16 slot : PeakList(project.Regions[r]))
        if (slot >= 0 && slot < kPeakSlots && IsSet(project.Peaks[slot].InUse))
            slots.push_back(slot);
    return slots;
}

std::vector<PeakTableRow> PeakTableRows(const Project& project, int r, bool withSigmas) {
    std::vector<PeakTableRow> rows;
    if (r < 0 || r >= kRegionCount) return rows;
    const Region& region = project.Regions[r];
    const std::vector<int> slots = ListedPeaks(project, r);
    double total = 0;
    for (int slot : slots) total += project.Peaks[slot].Area;
    Uncertainties u;
    const bool sigmas = withSigmas && IsSet(region.HasData) && IsSet(region.HasBackground);
    if (sigmas) u = ComputeUncertainties(project, {r});

    for (int slot : slots) {
        const Peak& peak = project.Peaks[slot];
        const PeakSigmas& s = u.peaks[static_cast<std::size_t>(slot)];
        PeakTableRow row;
        row.slot = slot;
        const std::string label = Trimmed(peak.Label.Str());
        row.cells[kPeakColumn] = std::to_string(slot) + (label.empty() ? "" : " " + label);
        const char* type = PeakTypeText(peak.PeakType);
        row.cells[kTypeColumn] = type ? type : "?";
        if (peak.PeakType != Subshell::S && type)
            row.cells[kTypeColumn] += " " + FormatGeneral(peak.Splitting) + " eV";
        row.cells[kPositionColumn] = FormatGeneral(peak.Position);
        row.cells[kFWHMColumn] = FormatGeneral(peak.FWHM);
        row.cells[kAreaColumn] = FormatGeneral(peak.Area);
        row.cells[kGLColumn] = std::to_string(peak.PercentGL);
        for (const auto& [column, which] : kValueColumns) {
            const std::string relation = RelationText(project, slot, which);
            const bool fixed = IsFixed(peak, which);
            std::string& mark = row.cells[static_cast<std::size_t>(column) + 1];
            if (!relation.empty())
                mark = relation;
            else if (fixed)
                mark = "fixed";
            else if (sigmas)
                mark = SigmaCell(s.parameters[static_cast<std::size_t>(which)]);
            const bool constrained = fixed || !relation.empty();
            row.constrained[static_cast<std::size_t>(column)] = constrained;
            row.constrained[static_cast<std::size_t>(column) + 1] = constrained;
            row.editable[static_cast<std::size_t>(column)] = !constrained;
        }
        if (total != 0) {
            row.cells[kAreaPercentColumn] = FormatFixed(100 * peak.Area / total, 2);
            if (sigmas) row.cells[kAreaPercentSigmaColumn] = SigmaCell(s.areaPercentSigma);
        }
        rows.push_back(std::move(row));
    }
    return rows;
}

std::string PeakTableText(const std::vector<PeakTableRow>& rows) {
    auto line = [](const std::array<std::string, kPeakColumnCount>& cells) {
        std::string text;
        for (const std::string& cell : cells) text += (text.empty() ? "" : "\t") + cell;
        return text + "\n";
    };
    std::string text = line(PeakTableHeader());
    for (const PeakTableRow& row : rows) text += line(row.cells);
    return text;
}

Status EditPeakTableCell(Project& project, Host& host, int slot, PeakParameter which,
                         const std::string& text) {
    return AcceptOnPeak(project, host, slot, [&](PeakForm& form) { BoxText(form, which) = text; });
}

}  // namespace molvera
