#include "base/numtext.h"

#include <charconv>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <limits>
#include <vector>

namespace molvera {

namespace {

bool IsDigit(char c) { return c >= '0' && c <= '9'; }
bool IsBlank(char c) { return c == ' ' || c == '\t'; }

// Scans the numeric prefix; returns the end position (0 when there is none) and
// the normalised text that from_chars understands.
std::size_t ScanNumber(std::string_view text, std::string* normalised) {
    std::size_t i = 0;
    while (i < text.size() && IsBlank(text[i])) ++i;
    std::string out;
    if (i < text.size() && (text[i] == '+' || text[i] == '-')) {
        if (text[i] == '-') out += '-';
        ++i;
    }
    std::size_t mantissaDigits = 0;
    while (i < text.size() && IsDigit(text[i])) {
        out += text[i++];
        ++mantissaDigits;
    }
    if (i < text.size() && text[i] == '.') {
        std::size_t j = i + 1;
        std::string frac;
        while (j < text.size() && IsDigit(text[j])) frac += text[j++];
        if (mantissaDigits > 0 || !frac.empty()) {
            out += '.';
            out += frac;
            mantissaDigits += frac.size();
            i = j;
        }
    }
    if (mantissaDigits == 0) return 0;
    // Exponent: E or D, optional sign, at least one digit.
    if (i < text.size() && (text[i] == 'e' || text[i] == 'E' || text[i] == 'd' || text[i] == 'D')) {
        std::size_t j = i + 1;
        std::string exp = "e";
        if (j < text.size() && (text[j] == '+' || text[j] == '-')) {
            if (text[j] == '-') exp += '-';
            ++j;
        }
        std::size_t expDigits = 0;
        while (j < text.size() && IsDigit(text[j])) {
            exp += text[j++];
            ++expDigits;
        }
        if (expDigits > 0) {
            out += exp;
            i = j;
        }
    }
    if (normalised) *normalised = std::move(out);
    return i;
}

// |value| with `decimals` decimals, rounded halves away from zero on the exact
// binary value: only the first dropped digit of the exact expansion decides.
std::string RoundAwayFromZero(double magnitude, int decimals) {
    // 1100 decimals hold the exact expansion of every double.
    std::vector<char> buf(1500);
    auto res = std::to_chars(buf.data(), buf.data() + buf.size(), magnitude,
                             std::chars_format::fixed, 1100);
    std::string exact(buf.data(), res.ptr);
    const std::size_t point = exact.find('.');
    const char dropped = exact[point + 1 + static_cast<std::size_t>(decimals)];
    std::string digits = exact.substr(0, decimals == 0 ? point : point + 1 + decimals);
    if (dropped >= '5') {
        int k = static_cast<int>(digits.size()) - 1;
        while (k >= 0) {
            if (digits[k] == '.') {
                --k;
                continue;
            }
            if (digits[k] == '9') {
                digits[k] = '0';
                --k;
            } else {
                ++digits[k];
                break;
            }
        }
        if (k < 0) digits.insert(digits.begin(), '1');
    }
    return digits;
}

}  // namespace

std::size_t LeadingNumberLength(std::string_view text) { return ScanNumber(text, nullptr); }

double LeadingNumber(std::string_view text) {
    std::string norm;
    if (ScanNumber(text, &norm) == 0) return 0.0;
    double value = 0.0;
    const char* first = norm.data();
    const char* last = norm.data() + norm.size();
    auto res = std::from_chars(first, last, value);
    if (res.ec == std::errc::result_out_of_range) {
        // Overflow gives infinity, underflow zero.
        bool negative = norm[0] == '-';
        auto epos = norm.find('e');
        bool bigExponent = epos != std::string::npos && norm[epos + 1] != '-';
        if (!bigExponent) return negative ? -0.0 : 0.0;
        return negative ? -std::numeric_limits<double>::infinity()
                        : std::numeric_limits<double>::infinity();
    }
    return value;
}

double RoundHalfEven(double value) {
    if (!std::isfinite(value)) return value;
    double r = std::round(value);
    if (std::fabs(value - std::trunc(value)) == 0.5) r = 2.0 * std::round(value / 2.0);
    return r;
}

std::optional<std::int16_t> ToInt16(double value) {
    double r = RoundHalfEven(value);
    if (!(r >= -32768.0 && r <= 32767.0)) return std::nullopt;
    return static_cast<std::int16_t>(r);
}

std::string FormatGeneral(float value) {
    if (std::isnan(value)) return "NaN";
    if (std::isinf(value)) return value < 0 ? "-Infinity" : "Infinity";
    if (value == 0.0f) return "0";
    std::string sign = value < 0 ? "-" : "";
    double mag = std::fabs(static_cast<double>(value));
    char buf[64];
    auto res = std::to_chars(buf, buf + sizeof buf, mag, std::chars_format::scientific, 6);
    std::string s(buf, res.ptr);  // d.dddddde+XX
    auto epos = s.find('e');
    int exp10 = std::atoi(s.c_str() + epos + 1);
    std::string digits;
    for (std::size_t i = 0; i < epos; ++i)
        if (s[i] != '.') digits += s[i];
    while (digits.size() > 1 && digits.back() == '0') digits.pop_back();
    const int k = static_cast<int>(digits.size());

    if (exp10 >= 0 && exp10 + 1 <= 7) {
        std::string out = digits.substr(0, std::min(k, exp10 + 1));
        if (k < exp10 + 1) out.append(exp10 + 1 - k, '0');
        if (k > exp10 + 1) out += "." + digits.substr(exp10 + 1);
        return sign + out;
    }
    if (exp10 < 0 && (-exp10 - 1 + k) <= 7) {
        return sign + "0." + std::string(-exp10 - 1, '0') + digits;
    }
    std::string out = digits.substr(0, 1);
    if (k > 1) out += "." + digits.substr(1);
    char expText[16];
    std::snprintf(expText, sizeof expText, "E%c%02d", exp10 < 0 ? '-' : '+', std::abs(exp10));
    return sign + out + expText;
}

std::string FormatRoundTrip(float value) {
    if (!std::isfinite(value)) return FormatGeneral(value);
    char buf[32];
    auto res = std::to_chars(buf, buf + sizeof buf, value);
    return std::string(buf, res.ptr);
}

std::string FormatFixed(double value, int decimals) {
    if (std::isnan(value)) return "NaN";
    if (std::isinf(value)) return value < 0 ? "-Infinity" : "Infinity";
    std::string digits = RoundAwayFromZero(std::fabs(value), decimals);
    return (std::signbit(value) && value != 0.0 ? "-" : "") + digits;
}

std::string FormatTrimmed(double value, int maxDecimals) {
    std::string s = FormatFixed(value, maxDecimals);
    if (s.find('.') != std::string::npos) {
        while (s.back() == '0') s.pop_back();
        if (s.back() == '.') s.pop_back();
    }
    if (s == "-0") s = "0";
    return s;
}

std::string ColumnValue(float value) {
    std::string g = FormatGeneral(value);
    return (g[0] == '-' ? "" : " ") + g + " ";
}

std::string ColumnValue(std::int16_t value) {
    std::string g = std::to_string(value);
    return (value < 0 ? "" : " ") + g + " ";
}

ColumnLine& ColumnLine::At(int column, std::string_view text) {
    if (Column() > column) {
        text_ += "\r\n";
        lineStart_ = text_.size();
    }
    text_.append(static_cast<std::size_t>(column - Column()), ' ');
    text_ += text;
    return *this;
}

ColumnLine& ColumnLine::NextZone(std::string_view text) {
    const int col = Column();
    const int next = ((col - 1) / 14 + 1) * 14 + 1;
    text_.append(static_cast<std::size_t>(next - col), ' ');
    text_ += text;
    return *this;
}

std::string Utf8ToLatin1(std::string_view utf8) {
    std::string out;
    for (std::size_t i = 0; i < utf8.size();) {
        unsigned char c = static_cast<unsigned char>(utf8[i]);
        if (c < 0x80) {
            out += static_cast<char>(c);
            ++i;
        } else if ((c & 0xE0) == 0xC0 && i + 1 < utf8.size()) {
            unsigned cp = ((c & 0x1Fu) << 6) | (static_cast<unsigned char>(utf8[i + 1]) & 0x3Fu);
            out += cp < 0x100 ? static_cast<char>(cp) : '?';
            i += 2;
        } else {
            int len = (c & 0xF0) == 0xE0 ? 3 : (c & 0xF8) == 0xF0 ? 4 : 1;
            out += '?';
            i += static_cast<std::size_t>(len);
        }
    }
    return out;
}

std::string Latin1ToUtf8(std::string_view latin1) {
    std::string out;
    for (char ch : latin1) {
        unsigned char c = static_cast<unsigned char>(ch);
        if (c < 0x80) {
            out += ch;
        } else {
            out += static_cast<char>(0xC0 | (c >> 6));
            out += static_cast<char>(0x80 | (c & 0x3F));
        }
    }
    return out;
}

}  // namespace molvera
