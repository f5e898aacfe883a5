#include "base/numtext.h"

#include <cmath>
#include <limits>
#include <string>
#include <tuple>
#include <utility>

#include <gtest/gtest.h>

namespace molvera {
namespace {

// The longest numeric prefix: an exponent without digits is not part of it, a D exponent
// is read as in old Basic files, a decimal comma is not; overflow is infinite.
TEST(LeadingNumber, TakesTheLongestNumericPrefix) {
    // clang-format off
    const std::pair<const char*, double> cases[] = {
        {"  0.35 eV", 0.35}, {"-1.5e2x", -150}, {"1E", 1}, {"3.25D+1", 32.5}, {".5", 0.5}, {"12,5", 12},
        {"abc", 0}, {".", 0}, {"1e-999", 0}, {"1e999", std::numeric_limits<double>::infinity()}};
    // clang-format on
    for (const auto& [text, value] : cases) EXPECT_DOUBLE_EQ(LeadingNumber(text), value) << text;
    EXPECT_TRUE(LeadingNumberLength("  12.5abc") == 6u && LeadingNumberLength("x1") == 0u);
}

TEST(RoundHalfEven, RoundsHalvesToEven) {
    EXPECT_TRUE(RoundHalfEven(2.5) == 2.0 && RoundHalfEven(3.5) == 4.0 &&
                RoundHalfEven(2.4999) == 2.0);
    EXPECT_EQ(ToInt16(32767.4).value(), 32767);
    EXPECT_FALSE(ToInt16(32767.6) || ToInt16(std::numeric_limits<double>::infinity()) ||
                 ToInt16(std::nan("")));
}

// Fixed notation up to seven digit positions, else a power of ten with seven digits.
TEST(FormatGeneral, FixedUpToSevenDigitPositionsThenAPowerOfTen) {
    // clang-format off
    const std::pair<float, const char*> cases[] = {
        {0.0f, "0"}, {1234567.0f, "1234567"}, {0.0000001f, "0.0000001"}, {284.57f, "284.57"},
        {1.0f / 3.0f, "0.3333333"}, {12345678.0f, "1.234568E+07"}, {1.0f / 300.0f, "3.333333E-03"},
        {-2.5e-9f, "-2.5E-09"}, {0.01234567f, "1.234567E-02"}};
    // clang-format on
    for (const auto& [value, text] : cases) EXPECT_EQ(FormatGeneral(value), text);
}

// The exact binary value is rounded, halves away from zero: 0.0625 is exactly half, the
// float 0.0005f lies just above the half, 1.0005 and 2.675 are stored just below it.
TEST(FormatFixed, RoundsTheExactBinaryValueHalvesAwayFromZero) {
    // clang-format off
    const std::tuple<double, int, const char*> cases[] = {
        {0.0625, 3, "0.063"}, {0.0005f, 3, "0.001"}, {1.0005, 3, "1.000"}, {2.675, 2, "2.67"}, {9.9996, 3, "10.000"},
        {-0.0001, 3, "-0.000"}, {12345678.5, 0, "12345679"}, {79.5, 0, "80"}};
    // clang-format on
    for (const auto& [value, digits, text] : cases) EXPECT_EQ(FormatFixed(value, digits), text);
    EXPECT_TRUE(FormatTrimmed(1.0) == "1" && FormatTrimmed(0.01f) == "0.00999999977648");
}

// Items at columns (a line break when past the column) and in 14-character zones (at a
// zone start, the next zone).
TEST(ColumnLine, PadsToColumnsAndZones) {
    ColumnLine line, past, zones, full;
    line.At(1, "B.E.(eV)").At(20, "Raw");
    EXPECT_EQ(line.Text(), "B.E.(eV)           Raw");
    past.At(1, std::string(25, 'x')).At(20, "y");
    EXPECT_EQ(past.Text(), std::string(25, 'x') + "\r\n" + std::string(19, ' ') + "y");
    zones.NextZone("a").NextZone("b");
    EXPECT_EQ(zones.Text(), std::string(14, ' ') + "a" + std::string(13, ' ') + "b");
    full.NextZone(std::string(14, 'z')).NextZone("q");
    EXPECT_EQ(full.Text(),
              std::string(14, ' ') + std::string(14, 'z') + std::string(14, ' ') + "q");
}

TEST(Latin1, ConvertsBothWays) {
    EXPECT_EQ(Utf8ToLatin1("caf\xC3\xA9"), "caf\xE9");
    EXPECT_EQ(Latin1ToUtf8("caf\xE9"), "caf\xC3\xA9");
    EXPECT_EQ(Utf8ToLatin1("\xE2\x82\xAC"), "?");  // the euro sign is not Latin-1
}

}  // namespace
}  // namespace molvera
