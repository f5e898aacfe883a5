#pragma once
// What every import shares once a file is parsed: storing spectra into region
// slots in descending order, region sequencing, and the import messages.

#include <cstddef>
#include <string>
#include <vector>

#include "model/host.h"
#include "model/records.h"
#include "base/status.h"

namespace molvera {

/// Largest text import read into memory.
constexpr std::size_t kMaxImportBytes = 64u * 1024u * 1024u;

/// A spectrum read from a file, before it is stored: energies and intensities of
/// points 1..n in file order (index 0 is point 1), at most 5000 of them.
struct ImportedSpectrum {
    std::string caption;
    std::vector<float> energy;
    std::vector<float> intensity;
    bool overflow = false;  ///< the file declared more than 5000 points
};

/// How a multi-region import puts its spectra into descending order.
enum class SortRule {
    ReverseUnlessFalling,  ///< stored as read when X(1) > X(n), otherwise reversed
    ReverseIfRising,       ///< reversed only when BE(1) < BE(n)
};

/// "Too many points.  Only 5000 points have been read."
std::string TooManyPointsMessage();

/// Makes the current region ready for new data: a region that holds data is
/// deleted, otherwise its peaks and parameters are cleared.
void PrepareRegionForImport(Project& project, Host& host);

/// Stores one spectrum into the current region in descending order; the region
/// ends with data, no background, no peaks, and its extents updated.
void StoreSpectrum(Project& project, const ImportedSpectrum& s, SortRule rule);

/// Stores spectra into consecutive slots from CurrentRegion, wrapping from 9 to 0,
/// with the overflow and "Too many regions" messages; `checkAfterLast` also checks
/// after the last spectrum. CurrentRegion is restored. Returns the number stored.
int StoreRegions(Project& project, Host& host, const std::vector<ImportedSpectrum>& spectra,
                 SortRule rule, bool checkAfterLast);

/// Shows `message` and returns it as a failed status.
Status ImportFailure(Host& host, const char* message);

}  // namespace molvera
