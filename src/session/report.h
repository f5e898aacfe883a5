#pragma once
// The project report: every peak of the chosen regions with its values, uncertainties and
// marks, as CSV rows, a JSON object that reproduces the fit, or an HTML page.

#include <string>
#include <vector>

#include "model/records.h"
#include "spectral/quantify.h"

namespace molvera {

/// A CSV field: quoted when it holds a comma or a quote; line ends become blanks.
std::string CsvField(std::string text);

/// The shortest text that reads back to exactly this double, whatever the locale.
std::string ExactText(double value);

/// The quantification table as CSV: a header and a row per peak (region, peak, label,
/// position, area, rsf, normalised_area; with `suggest` a column of the core levels near
/// each unlabelled peak, "; " between them), a blank line, then a header and a row per
/// label (label, normalised_area, at_percent). A number that is not known (no RSF, a peak
/// not counted) is an empty field.
std::string QuantCsv(const QuantTable& table, bool suggest);

/// The regions with data, 0-based: all of them (`region` < 0) or the one asked for.
std::vector<int> ReportRegions(const Project& project, int region);

/// The CSV: a header row, then one row per peak. Numbers read back to the project's
/// values exactly, whatever the locale; a sigma is empty where no fit determines one
/// (the value is fixed or follows another peak). The quantification columns: rsf (the RSF
/// used, typed or computed; empty when none is known), normalised_area (area / (RSF * T *
/// lambda); empty when the peak is not counted) and at_percent (the peak's share: its
/// normalised area over the sum over every counted peak of the project, in %).
std::string ReportCsv(const Project& project, const std::vector<int>& regions);

/// The same as JSON, with each region's background, chi-square and reduced chi-square,
/// the fitting options, the program version, the source file name and the quantification
/// (its settings, the RSFs typed and the labels' normalised areas and atomic %).
std::string ReportJson(const Project& project, const std::vector<int>& regions,
                       const std::string& source);

/// One self-contained HTML page: the quantification table at the top, then per region its
/// picture (`pngs[i]`, the PNG bytes of `regions[i]`, embedded as a data URI) and its table.
std::string ReportHtml(const Project& project, const std::vector<int>& regions,
                       const std::string& source, const std::vector<std::string>& pngs);

}  // namespace molvera
