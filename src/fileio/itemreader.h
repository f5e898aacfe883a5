#pragma once
// Free-format item reading shared by the text imports.

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

#include "model/records.h"

namespace molvera {

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
    /// "line N" of the reading position, for messages.
    std::string Where() const;

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

}  // namespace molvera
