#pragma once
// What the instrument imports share: the plain data a reader makes of a file, and the one
// step that stores it into the project.

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

#include "base/status.h"
#include "model/host.h"
#include "model/records.h"

namespace molvera {

/// Largest text import read into memory.
constexpr std::size_t kMaxImportBytes = std::size_t{64} * 1024 * 1024;

/// A spectrum read from a file, before it is stored: energies and intensities of
/// points 1..n in file order (index 0 is point 1), at most 5000 of them.
struct ImportedSpectrum {
    std::string caption;
    std::vector<float> energy;
    std::vector<float> intensity;
    bool overflow = false;  ///< the file held more than 5000 points
    /// The first experimental variable of a VAMAS block (etch time, angle...), when the
    /// file has one and it is a number.
    std::optional<double> variable = std::nullopt;
};

/// The fit a Kratos export may carry with its spectrum.
struct ImportedFit {
    Int16 regionNumber = 0;
    std::string caption;
    float low = 0;  ///< background range, eV
    float high = 0;
    BackgroundKind type = BackgroundKind::Shirley;
    std::vector<Peak> peaks;  ///< label, %GL, position, height percentage and FWHM of each
};

/// What a reader made of a file. Nothing of the project has been touched.
struct ImportedData {
    std::vector<ImportedSpectrum> spectra;   ///< in file order
    std::optional<std::string> description;  ///< the project's description from the file
    std::optional<ImportedFit> fit;          ///< Kratos only
    /// Lines between data lines that hold no pair of numbers (comments and blank lines
    /// aside), and the number of the first (from 1); two-column text only.
    int skippedLines = 0;
    int firstSkippedLine = 0;
    /// The technique of each block left out because it is not XPS (VAMAS).
    std::vector<std::string> otherTechniques;
    /// Ok, or why the file could not be read (wholly or to its end); then nothing is
    /// stored.
    Status status;
};

/// How parsed spectra go into the project.
enum class StoreRule {
    Regions,        ///< consecutive region slots from the current one (VAMAS, Leybold, Phi)
    CurrentRegion,  ///< the current region (two-column text)
    FittedRegion,   ///< the current region in file order, with the fit it carries (Kratos)
};

/// How a multi-region import puts its spectra into descending order.
enum class SortRule {
    ReverseUnlessFalling,  ///< stored as read when X(1) > X(n), otherwise reversed
    ReverseIfRising,       ///< reversed only when BE(1) < BE(n)
};

/// How the data of one format are stored.
struct StorePolicy {
    StoreRule store = StoreRule::Regions;
    SortRule sort = SortRule::ReverseUnlessFalling;
    /// Regions: after the last spectrum, the next slot is still checked, so that ten
    /// spectra stored from slot 0 end with "Too many regions".
    bool checkAfterLast = false;
};

/// What storing did: the notices to show in order ("Too many points...", "Too many
/// regions"), then the import's result.
struct ImportResult {
    std::vector<Status> notices;
    Status status;
    /// What the data stored look like that the user should know (ImportWarnings).
    std::vector<std::string> warnings;
    /// Everything to show, in order: the notices, then the result when it is a refusal.
    std::vector<Status> Messages() const {
        std::vector<Status> all = notices;
        if (!status) all.push_back(status);
        return all;
    }
};

/// The warnings of what a reader made of a file: a spectrum with mostly negative binding
/// energies (a kinetic-energy file read as binding energies?), lines left out of a
/// two-column text, blocks of another technique than XPS.
std::vector<std::string> ImportWarnings(const ImportedData& data);

/// Stores what a reader made of a file into the project, from CurrentRegion, and reports
/// the changes; messages come back in the result, in the order they are to be shown.
ImportResult StoreImport(Project& project, Host& host, const ImportedData& data,
                         const StorePolicy& policy);

/// Makes the current region ready for new data: a region that holds data is
/// deleted, otherwise its peaks and parameters are cleared.
void PrepareRegionForImport(Project& project, Host& host);

/// Stores one spectrum into the current region in descending order; the region
/// ends with data, no background, no peaks, and its extents updated.
void StoreSpectrum(Project& project, const ImportedSpectrum& s, SortRule rule);

}  // namespace molvera
