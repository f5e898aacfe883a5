#include "base/numtext.h"

#include <cmath>
#include <limits>

#include <gtest/gtest.h>

namespace molvera {
namespace {

TEST(LeadingNumber, TakesTheLongestNumericPrefix) {
    EXPECT_DOUBLE_EQ(LeadingNumber("  0.35 eV"), 0.35);
    EXPECT_DOUBLE_EQ(LeadingNumber("-1.5e2x"), -150.0);
    EXPECT_DOUBLE_EQ(LeadingNumber("1E"), 1.0);        // exponent without digits is not part
    EXPECT_DOUBLE_EQ(LeadingNumber("3.25D+1"), 32.5);  // D exponent as in old Basic files
    EXPECT_DOUBLE_EQ(LeadingNumber(".5"), 0.5);
    EXPECT_DOUBLE_EQ(LeadingNumber("12,5"), 12.0);  // a decimal comma is not read
    EXPECT_EQ(LeadingNumber("abc"), 0.0);
    EXPECT_EQ(LeadingNumber("."), 0.0);
    EXPECT_TRUE(std::isinf(LeadingNumber("1e999")));
    EXPECT_EQ(LeadingNumber("1e-999"), 0.0);
    EXPECT_EQ(LeadingNumberLength("  12.5abc"), 6u);
    EXPECT_EQ(LeadingNumberLength("x1"), 0u);
}

TEST(RoundHalfEven, RoundsHalvesToEven) {
    EXPECT_EQ(RoundHalfEven(2.5), 2.0);
    EXPECT_EQ(RoundHalfEven(3.5), 4.0);
    EXPECT_EQ(RoundHalfEven(2.4999), 2.0);
    EXPECT_EQ(ToInt16(32767.4).value(), 32767);
    EXPECT_FALSE(ToInt16(32767.6).has_value());
    EXPECT_FALSE(ToInt16(std::numeric_limits<double>::infinity()).has_value());
    EXPECT_FALSE(ToInt16(std::nan("")).has_value());
}

TEST(FormatGeneral, UsesFixedNotationUpToSevenDigitPositions) {
    EXPECT_EQ(FormatGeneral(0.0f), "0");
    EXPECT_EQ(FormatGeneral(1234567.0f), "1234567");
    EXPECT_EQ(FormatGeneral(0.0000001f), "0.0000001");
    EXPECT_EQ(FormatGeneral(284.57f), "284.57");
    EXPECT_EQ(FormatGeneral(1.0f / 3.0f), "0.3333333");
}

TEST(FormatGeneral, SwitchesToAPowerOfTenBeyondSevenPositions) {
    EXPECT_EQ(FormatGeneral(12345678.0f), "1.234568E+07");
    EXPECT_EQ(FormatGeneral(1.0f / 300.0f), "3.333333E-03");
    EXPECT_EQ(FormatGeneral(-2.5e-9f), "-2.5E-09");
    EXPECT_EQ(FormatGeneral(0.01234567f), "1.234567E-02");
}

TEST(FormatFixed, RoundsTheExactBinaryValueHalvesAwayFromZero) {
    EXPECT_EQ(FormatFixed(0.0625, 3), "0.063");   // exactly half: away from zero
    EXPECT_EQ(FormatFixed(0.0005f, 3), "0.001");  // the float lies just above the half
    EXPECT_EQ(FormatFixed(1.0005, 3), "1.000");   // 1.0005 is stored just below the half
    EXPECT_EQ(FormatFixed(2.675, 2), "2.67");     // stored as 2.67499999...
    EXPECT_EQ(FormatFixed(9.9996, 3), "10.000");
    EXPECT_EQ(FormatFixed(-0.0001, 3), "-0.000");  // keeps its sign
    EXPECT_EQ(FormatFixed(12345678.5, 0), "12345679");
    EXPECT_EQ(FormatFixed(79.5, 0), "80");
}

TEST(FormatTrimmed, DropsTrailingZeros) {
    EXPECT_EQ(FormatTrimmed(1.0), "1");
    EXPECT_EQ(FormatTrimmed(static_cast<double>(0.01f)), "0.00999999977648");
}

TEST(ColumnLine, PadsToColumnsAndZones) {
    ColumnLine line;
    line.At(1, "B.E.(eV)").At(20, "Raw");
    EXPECT_EQ(line.Text(), "B.E.(eV)           Raw");
    ColumnLine past;
    past.At(1, std::string(25, 'x')).At(20, "y");
    EXPECT_EQ(past.Text(), std::string(25, 'x') + "\r\n" + std::string(19, ' ') + "y");
    ColumnLine zones;
    zones.NextZone("a").NextZone("b");
    EXPECT_EQ(zones.Text(), std::string(14, ' ') + "a" + std::string(13, ' ') + "b");
    ColumnLine full;
    full.NextZone(std::string(14, 'z')).NextZone("q");  // at a zone start: go to the next one
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
