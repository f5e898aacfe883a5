#pragma once
// Quantification: relative sensitivity factors from xraylib's subshell photoionisation
// cross-sections, core-level suggestions from its edge energies, and atomic percentages.

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "model/records.h"

namespace molvera {

constexpr double kAlKaEnergy = 1486.6;  ///< eV
constexpr double kMgKaEnergy = 1253.6;  ///< eV

/// The RSF of a core level ("C 1s", "Fe 2p3/2", "Fe 2p" for both spin-orbit parts) at the
/// photon energy `sourceEV`: its photoionisation cross-section divided by that of C 1s at
/// the same energy (so C 1s is 1). Nothing for a label that names no element and level, or
/// a level the photon cannot ionise.
std::optional<double> DefaultRsf(std::string_view label, double sourceEV);

/// The element and core level a peak label names: its first two words ("C 1s" of
/// "C 1s C-O"); the words after them name the chemical state and do not count.
std::string LabelLevel(std::string_view label);

/// The core levels whose binding energy lies within `windowEV` of `bindingEV`, nearest
/// first, as labels ("C 1s", "Fe 2p3/2").
std::vector<std::string> SuggestLabels(double bindingEV, double windowEV = 5.0);

/// Whether Quantify takes these settings: a source energy above 0 and at most 100 keV,
/// both exponents within +-5, so that every factor stays far inside the double range. The
/// project reader ignores an extension block whose settings lie outside.
bool QuantSettingsInRange(const QuantSettings& settings);

/// One row of the quantification table.
struct QuantRow {
    int slot = 0;
    int region = 0;
    std::string label;  ///< trimmed; empty: listed, not counted
    std::string level;  ///< LabelLevel(label): what the RSF and the grouping go by
    float position = 0;
    float area = 0;
    double rsf = 0;             ///< override or default; 0 when none is known
    double normalisedArea = 0;  ///< area / (RSF * T * lambda), 0 when not counted
    bool counted = false;       ///< in the elements' sums
};

/// The totals per element and level, in the order they first appear.
struct QuantElement {
    std::string label;  ///< the level ("C 1s")
    double normalisedArea = 0;
    double atomicPercent = 0;
};

struct QuantTable {
    std::vector<QuantRow> peaks;
    std::vector<QuantElement> elements;
    /// Cautions on the numbers, one per level: a computed RSF of a p, d or f level, where
    /// xraylib's subshell cross-sections lie 1.5 to 4 times below Scofield's calculated ones.
    std::vector<std::string> notes;
};

/// The table over every in-use peak of the regions with data: normalised area =
/// area / (RSF * E_kin^a * E_kin^b) with E_kin = source energy - position; peaks of the
/// same level (LabelLevel) summed; atomic % of each level over all levels. Peaks without a
/// label, an RSF or a positive kinetic energy are listed and not counted.
QuantTable Quantify(const Project& project);

}  // namespace molvera
