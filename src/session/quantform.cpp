#include "session/quantform.h"

#include <cmath>

#include "base/numtext.h"
#include "session/formnumber.h"
#include "spectral/quantify.h"

namespace molvera {

namespace {

constexpr std::size_t kLabelLength = 20;   // Peak::Label holds 20 characters
constexpr std::size_t kLabelChoices = 15;  // a drop-down that fits on any screen

bool ValidSlot(int slot) { return slot >= 0 && slot < kPeakSlots; }

// The label as the user reads it: without the blanks that pad the record.
std::string LabelText(const Peak& peak) {
    const std::string text = peak.Label.Str();
    const std::size_t begin = text.find_first_not_of(' ');
    return begin == std::string::npos ? ""
                                      : text.substr(begin, text.find_last_not_of(' ') + 1 - begin);
}

bool Typed(const PeakForm& form, const char* field, const std::string& text) {
    return BoxTyped(form, {"", field, text});
}

// Blanks around a typed number are no part of it.
bool Blank(const std::string& text) { return text.find_first_not_of(" \t") == std::string::npos; }

Status Refuse(std::string& invalid, const char* field, const std::string& message) {
    invalid = field;
    return Status::Error(message);
}

// A box that must hold a number (and a positive one when `positive`).
Status CheckBox(std::string& invalid, const char* field, const char* name, const std::string& text,
                bool positive) {
    const std::optional<double> v = BoxNumber(text);
    if (!v) {
        invalid = field;
        return NotANumber(name, text);
    }
    if (positive && !(static_cast<float>(*v) > 0))
        return Refuse(invalid, field, std::string(name) + ": '" + text + "' is not positive");
    return Status::Ok();
}

std::string NotCountedText(const QuantRow& row) {
    if (row.label.empty()) return "not counted: no label";
    if (!(row.rsf > 0)) return "not counted: no RSF";
    return "not counted: kinetic energy <= 0";
}

}  // namespace

std::string RsfPlaceholder(const Project& project, const std::string& label) {
    const std::optional<double> rsf = DefaultRsf(LabelLevel(label), project.Quant.SourceEnergy);
    return rsf ? FormatFixed(*rsf, 3) + " from xraylib" : "none";
}

void FillQuantBoxes(const Project& project, PeakForm& form, int slot) {
    if (!ValidSlot(slot)) return;
    form.labelText = LabelText(project.Peaks[slot]);
    const float typed = project.Quant.RsfOverride[slot];
    form.rsfText = typed > 0 ? FormatRoundTrip(typed) : "";
    form.rsfPlaceholder = RsfPlaceholder(project, form.labelText);
    form.shownText["labelText"] = form.labelText;
    form.shownText["rsfText"] = form.rsfText;
}

Status CheckQuantBoxes(PeakForm& form) {
    if (Typed(form, "labelText", form.labelText) && form.labelText.size() > kLabelLength)
        return Refuse(form.invalidBox, "labelText",
                      "Label: at most 20 characters ('" + form.labelText + "')");
    if (Typed(form, "rsfText", form.rsfText) && !Blank(form.rsfText)) {
        Status st = CheckBox(form.invalidBox, "rsfText", "RSF", form.rsfText, true);
        if (!st) return Status::Error(st.Text() + " (an empty box uses the computed RSF)");
    }
    return Status::Ok();
}

void StoreQuantBoxes(Project& project, const PeakForm& form, int slot) {
    if (!ValidSlot(slot)) return;
    if (Typed(form, "labelText", form.labelText))
        project.Peaks[slot].Label = Text20::From(form.labelText);
    if (Typed(form, "rsfText", form.rsfText))
        project.Quant.RsfOverride[slot] =
            Blank(form.rsfText) ? 0.0f : static_cast<float>(BoxNumber(form.rsfText).value_or(0));
}

std::vector<std::string> LabelChoices(const Project& project, int slot) {
    if (!ValidSlot(slot)) return {};
    std::vector<std::string> labels = SuggestLabels(project.Peaks[slot].Position);
    if (labels.size() > kLabelChoices) labels.resize(kLabelChoices);
    return labels;
}

void FillQuantForm(const Project& project, QuantForm& form) {
    const float energy = project.Quant.SourceEnergy;
    form.source = energy == static_cast<float>(kAlKaEnergy)   ? kSourceAlKa
                  : energy == static_cast<float>(kMgKaEnergy) ? kSourceMgKa
                                                              : kSourceOther;
    form.energyText = FormatRoundTrip(energy);
    form.transmissionText = FormatRoundTrip(project.Quant.TransmissionExponent);
    form.imfpText = FormatRoundTrip(project.Quant.ImfpExponent);
}

Status ApplyQuantForm(Project& project, QuantForm& form) {
    form.invalidBox.clear();
    if (form.source == kSourceOther) {
        if (Status st =
                CheckBox(form.invalidBox, "energyText", "Source energy", form.energyText, true);
            !st)
            return st;
    }
    if (Status st = CheckBox(form.invalidBox, "transmissionText", "Transmission exponent",
                             form.transmissionText, false);
        !st)
        return st;
    if (Status st = CheckBox(form.invalidBox, "imfpText", "IMFP exponent", form.imfpText, false);
        !st)
        return st;
    QuantSettings& q = project.Quant;
    q.SourceEnergy = form.source == kSourceAlKa   ? static_cast<float>(kAlKaEnergy)
                     : form.source == kSourceMgKa ? static_cast<float>(kMgKaEnergy)
                                                  : static_cast<float>(*BoxNumber(form.energyText));
    q.TransmissionExponent = static_cast<float>(*BoxNumber(form.transmissionText));
    q.ImfpExponent = static_cast<float>(*BoxNumber(form.imfpText));
    const int chosen = form.source;  // "Other" stays chosen while its energy is typed
    FillQuantForm(project, form);
    form.source = chosen;
    return Status::Ok();
}

const std::array<std::string, kQuantPeakColumnCount>& QuantPeakHeader() {
    static const std::array<std::string, kQuantPeakColumnCount> header{
        "Region", "Peak", "Label", "Position (eV)", "Area", "RSF", "Normalised area"};
    return header;
}

const std::array<std::string, 3>& QuantElementHeader() {
    static const std::array<std::string, 3> header{"Label", "Normalised area", "At. %"};
    return header;
}

QuantLines QuantTableLines(const Project& project) {
    const QuantTable table = Quantify(project);
    QuantLines lines;
    for (const QuantRow& row : table.peaks) {
        QuantPeakLine line;
        line.counted = row.counted;
        line.rsfTyped = project.Quant.RsfOverride[row.slot] > 0;
        line.cells = {std::to_string(row.region + 1),
                      std::to_string(row.slot),
                      row.label,
                      FormatGeneral(row.position),
                      FormatGeneral(row.area),
                      row.rsf > 0 ? (line.rsfTyped ? FormatGeneral(static_cast<float>(row.rsf))
                                                   : FormatFixed(row.rsf, 3))
                                  : "",
                      line.counted ? FormatGeneral(static_cast<float>(row.normalisedArea))
                                   : NotCountedText(row)};
        lines.peaks.push_back(std::move(line));
    }
    for (const QuantElement& e : table.elements)
        lines.elements.push_back({e.label, FormatGeneral(static_cast<float>(e.normalisedArea)),
                                  FormatFixed(e.atomicPercent, 2)});
    lines.notes = table.notes;
    return lines;
}

std::string QuantTablesText(const QuantLines& lines) {
    auto line = [](const auto& cells) {
        std::string text;
        for (std::size_t i = 0; i < cells.size(); ++i) text += (i ? "\t" : "") + cells[i];
        return text + "\n";
    };
    std::string text = line(QuantPeakHeader());
    for (const QuantPeakLine& peak : lines.peaks) text += line(peak.cells);
    text += "\n" + line(QuantElementHeader());
    for (const auto& element : lines.elements) text += line(element);
    return text;
}

}  // namespace molvera
