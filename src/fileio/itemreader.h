#pragma once
// Free-format item reading shared by the text imports, and the helpers every
// import uses to read its file and store a spectrum into a region slot.

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "model/host.h"
#include "model/records.h"
#include "model/status.h"

namespace molvera {

/// Largest text import read into memory.
constexpr std::size_t kMaxImportBytes = 64u * 1024u * 1024u;

/// Reads items from a text held in memory: items end at a comma or a line end
/// (CR LF, LF or CR), a numeric item also at a blank, a text item may stand in
/// double quotes, and leading blanks are skipped. With `extraSeparators` a tab and
/// a semicolon also end every item.
class ItemReader {
public:
    explicit ItemReader(std::string_view text, bool extraSeparators = false)
        : text_(text), extra_(extraSeparators) {}

    /// True when only blanks and line ends remain.
    bool AtEnd() const;
    /// The next text item; nothing at the end of the text.
    std::optional<std::string> Text();
    /// The next numeric item (empty lines before it are passed over); nothing at the
    /// end of the text or when the item does not start with a number.
    std::optional<double> Number();
    /// The next numeric item as text, without judging it; nothing at the end.
    std::optional<std::string> NumberItem();
    /// Passes over blank and empty lines.
    void SkipEmptyLines();

private:
    bool IsBlank(char c) const { return c == ' ' || (c == '\t' && !extra_); }
    bool IsSeparator(char c) const { return c == ',' || (extra_ && (c == '\t' || c == ';')); }
    bool IsLineEnd(char c) const { return c == '\n' || c == '\r'; }
    void SkipBlanks();
    void ConsumeLineEnd();
    // Consumes the separator or line end that ends an item, after trailing blanks.
    void FinishItem();
    std::string Quoted();

    std::string_view text_;
    bool extra_;
    std::size_t pos_ = 0;
};

/// The integer value of the part of `text` after its first "=" (the whole text
/// without one), as a 16-bit integer; nothing when it does not fit.
std::optional<Int16> ValueAfterEquals(std::string_view text);

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
