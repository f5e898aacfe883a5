#pragma once
// Every rule that turns text into numbers and numbers into text.

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace molvera {

/// The longest leading numeric prefix of `text` (leading blanks and tabs skipped);
/// 0 when there is none. Never uses the locale. Out-of-range values give +-infinity.
double LeadingNumber(std::string_view text);

/// Length of the numeric prefix that LeadingNumber reads, counting the skipped blanks;
/// 0 when the text does not start with a number.
std::size_t LeadingNumberLength(std::string_view text);

/// Rounds to the nearest integer, halves to even.
double RoundHalfEven(double value);

/// The value rounded halves to even as a 16-bit integer; nothing when it does not fit.
std::optional<std::int16_t> ToInt16(double value);

/// Shortest general form of a Single: up to 7 significant digits, correctly rounded;
/// fixed notation while it needs at most 7 digit positions, otherwise "1.234568E+07".
std::string FormatGeneral(float value);

/// The shortest text that reads back to exactly this Single (up to 9 significant digits).
std::string FormatRoundTrip(float value);

/// Fixed form with `decimals` decimals ("0.000", "#0.000", "#######0.000" are 3,
/// "#0.0" is 1, "#0" is 0): rounds the exact binary value, halves away from zero;
/// a negative value that rounds to zero keeps its "-".
std::string FormatFixed(double value, int decimals);

/// "##0.##############": at least one integer digit, at most 14 decimals, trailing
/// zeros (and a bare point) dropped.
std::string FormatTrimmed(double value, int maxDecimals = 14);

/// A column value of the exports: the general form preceded by a blank when not
/// negative and followed by one blank.
std::string ColumnValue(float value);
std::string ColumnValue(std::int16_t value);

/// A text line built with the "at column n" and "next zone" rules of the exports.
class ColumnLine {
public:
    /// Pads with blanks up to column n (1-based); when the line is already past it,
    /// continues on a new line at column n.
    ColumnLine& At(int column, std::string_view text);
    /// Continues at the start of the next 14-column zone after the current position.
    ColumnLine& NextZone(std::string_view text);
    /// Everything written, lines separated by CR LF, without a final line end.
    const std::string& Text() const { return text_; }

private:
    int Column() const { return static_cast<int>(text_.size() - lineStart_) + 1; }
    std::string text_;
    std::size_t lineStart_ = 0;
};

/// Text of a single-byte code page (Latin-1) from UTF-8 and back; characters
/// outside Latin-1 become "?".
std::string Utf8ToLatin1(std::string_view utf8);
std::string Latin1ToUtf8(std::string_view latin1);

}  // namespace molvera
