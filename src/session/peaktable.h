#pragma once
// The peak table of the region window as data: one row per peak of a region with its
// values, their uncertainties and marks, the tab-separated copy, and edits of its cells.

#include <array>
#include <optional>
#include <string>
#include <vector>

#include "base/status.h"
#include "model/host.h"
#include "model/records.h"

namespace molvera {

/// The columns: the peak, its type, then each value followed by its uncertainty column.
enum PeakColumn : int {
    kPeakColumn,
    kTypeColumn,
    kPositionColumn,
    kPositionSigmaColumn,
    kFWHMColumn,
    kFWHMSigmaColumn,
    kAreaColumn,
    kAreaSigmaColumn,
    kAreaPercentColumn,
    kAreaPercentSigmaColumn,
    kGLColumn,
    kGLSigmaColumn,
    kPeakColumnCount
};

/// The column titles (Latin-1).
const std::array<std::string, kPeakColumnCount>& PeakTableHeader();

/// The parameter a value column shows; nothing for the other columns.
std::optional<PeakParameter> ColumnParameter(int column);

/// One peak's row: Latin-1 texts, numbers in a locale-independent form ("284.8121",
/// "45.20"). An uncertainty column holds the standard uncertainty ("0.0041"), "not
/// determined", "fixed", the relation the value follows ("= peak 0 \xD7 1"), or "" when
/// no fit could vary it (no data or no background).
struct PeakTableRow {
    int slot = -1;
    std::array<std::string, kPeakColumnCount> cells;
    /// Value cells of free parameters: the user may type a new value.
    std::array<bool, kPeakColumnCount> editable{};
    /// Values a fit leaves alone (fixed or following another peak) and their marks: greyed.
    std::array<bool, kPeakColumnCount> constrained{};
    bool operator==(const PeakTableRow&) const = default;
};

/// The slots of the peaks in use that region `r` lists, in its order.
std::vector<int> ListedPeaks(const Project& project, int r);

/// The rows of the peaks region `r` lists, in its order; the uncertainties only when
/// `withSigmas` (they cost a Jacobian of the region).
std::vector<PeakTableRow> PeakTableRows(const Project& project, int r, bool withSigmas = true);

/// The table as tab-separated lines with the header first, each line ended by "\n".
std::string PeakTableText(const std::vector<PeakTableRow>& rows);

/// A value cell typed by the user, as the peak editor takes it: the editor's form opened
/// on peak `slot`, its box typed, Accept. A refusal ("Position: 'abc' is not a number")
/// changes nothing and is returned for the caller to show. The peak being edited in the
/// editor and the one it saved for Cancel stay as they were.
Status EditPeakTableCell(Project& project, Host& host, int slot, PeakParameter which,
                         const std::string& text);

}  // namespace molvera
