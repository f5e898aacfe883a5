#pragma once
// Quantification in the windows as data: the peak editor's Label and RSF boxes, and the
// quantification window's settings and its two tables.

#include <array>
#include <string>
#include <vector>

#include "base/status.h"
#include "model/records.h"
#include "session/peakform.h"

namespace molvera {

// ---- The peak editor's Label and RSF boxes (fields of PeakForm) ----

/// Label and RSF of peak `slot` into the form: the label without its padding, the RSF
/// typed for it ("" when the computed one is used) and what the empty RSF box shows
/// ("2.881 from xraylib", or "none" when the label names no core level).
void FillQuantBoxes(const Project& project, PeakForm& form, int slot);
/// What the empty RSF box shows for a label: the computed RSF ("2.931 from xraylib") or
/// "none".
std::string RsfPlaceholder(const Project& project, const std::string& label);

/// The Label and RSF boxes the user changed: a label longer than 20 characters, an RSF
/// that is no number or not positive is refused ("RSF: 'abc' is not a number") with the
/// box in form.invalidBox.
Status CheckQuantBoxes(PeakForm& form);

/// The boxes the user changed into peak `slot`: its Label, and its entry of
/// Quant.RsfOverride (an empty box: 0, the computed RSF). Call after CheckQuantBoxes.
void StoreQuantBoxes(Project& project, const PeakForm& form, int slot);

/// The core levels near the position of peak `slot` that the user may pick as its label,
/// nearest first, at most 15.
std::vector<std::string> LabelChoices(const Project& project, int slot);

// ---- The quantification window ----

/// The X-ray sources the window offers, by QuantForm::source.
enum QuantSource : int { kSourceAlKa, kSourceMgKa, kSourceOther };

/// The settings at the top of the window.
struct QuantForm {
    int source = kSourceAlKa;
    std::string energyText;  ///< the source energy (eV); the user types it for kSourceOther
    std::string transmissionText;
    std::string imfpText;
    std::string invalidBox;  ///< field of the box last refused; "" when none
    bool operator==(const QuantForm&) const = default;
};

/// The form from the project's settings (the source by its energy).
void FillQuantForm(const Project& project, QuantForm& form);

/// The form into Project::Quant, the boxes rewritten as read (the source stays as chosen);
/// a box without a number, or an energy that is not positive, is refused ("Source energy:
/// 'abc' is not a number") and nothing is stored.
Status ApplyQuantForm(Project& project, QuantForm& form);

/// The peak table's columns.
enum QuantPeakColumn : int {
    kQuantRegionColumn,
    kQuantPeakColumn,
    kQuantLabelColumn,
    kQuantPositionColumn,
    kQuantAreaColumn,
    kQuantRsfColumn,
    kQuantNormalisedColumn,
    kQuantPeakColumnCount
};

/// One peak's row (Latin-1, locale-independent numbers). A peak without a label, an RSF or
/// a positive kinetic energy shows "not counted: no label" (no RSF, kinetic energy <= 0)
/// as its normalised area.
struct QuantPeakLine {
    std::array<std::string, kQuantPeakColumnCount> cells;
    bool counted = false;
    bool rsfTyped = false;  ///< the RSF is one the user typed, not xraylib's
    bool operator==(const QuantPeakLine&) const = default;
};

/// Both tables: the peaks, and per label its normalised area and atomic %.
struct QuantLines {
    std::vector<QuantPeakLine> peaks;
    std::vector<std::array<std::string, 3>> elements;
    std::vector<std::string> notes;  ///< Quantify's cautions
    bool operator==(const QuantLines&) const = default;
};

const std::array<std::string, kQuantPeakColumnCount>& QuantPeakHeader();
const std::array<std::string, 3>& QuantElementHeader();

/// The tables of Quantify(project) as text.
QuantLines QuantTableLines(const Project& project);

/// Both tables as tab-separated lines, each with its header, a blank line between them.
std::string QuantTablesText(const QuantLines& lines);

}  // namespace molvera
