// Option file: 206 bytes in the stated layout, bit-exact round trip, short files.

#include "fileio/optionfile.h"

#include <gtest/gtest.h>

#include "base/messages.h"
#include "support/le_bytes.h"
#include "support/paths.h"

namespace molvera {
namespace {

// Every field a different value, so that a swapped or shifted field shows.
FitOptions DistinctOptions() {
    FitOptions o;
    o.Method = 1;
    o.SearchTrials = 17;
    o.NewtonTrials = 23;
    o.Tolerance = 0.0001f;
    for (int i = 0; i < kLevels; ++i) {
        const float f = static_cast<float>(i + 1);
        o.PositionSearch[i] = {static_cast<std::int16_t>(i % 2 ? -1 : 0), 1.0f / f, 0.1f / f};
        o.AreaSearch[i] = {-1, 20.0f + f, 2.0f + f};
        o.FWHMSearch[i] = {0, 0.5f * f, 0.05f * f};
        o.PositionNewton[i] = {-1, 0.01f * f};
        o.AreaNewton[i] = {static_cast<std::int16_t>(i), 0.003f * f};
        o.FWHMNewton[i] = {-1, 0.007f * f};
    }
    o.GLSum = -1;
    return o;
}

TEST(OptionFile, WrittenBytesAtTheirOffsets) {
    const std::string b = OptionFileBytes(DistinctOptions());
    ASSERT_EQ(b.size(), 206u);
    // Method, trials, tolerance; level L's block starts at 12 + 48 (L - 1) with its
    // rows at 0, 10, 20, 30, 36, 42; GLSum last.
    test::ExpectValuesAt(b, 0,
                         {{0, 'f', 1},
                          {4, 'h', 17},
                          {6, 'h', 23},
                          {8, 'f', 0.0001},
                          {12 + 48, 'h', -1},                    // PositionSearch[2].Use
                          {12 + 48 + 2, 'f', 0.5},               // PositionSearch[2].Range
                          {12 + 48 + 6, 'f', 0.1f / 2},          // PositionSearch[2].Step
                          {12 + 10 + 2, 'f', 21},                // AreaSearch[1].Range
                          {12 + 96 + 20 + 6, 'f', 0.05f * 3},    // FWHMSearch[3].Step
                          {12 + 144 + 36, 'h', 3},               // AreaNewton[4].Use
                          {12 + 144 + 42 + 2, 'f', 0.007f * 4},  // FWHMNewton[4].Delta
                          {204, 'h', -1}});
}

TEST(OptionFile, RoundTripIsBitExact) {
    FitOptions o = DistinctOptions();
    o.AreaNewton[2].Delta = -0.0f;  // a sign bit that == would not notice
    const std::string b = OptionFileBytes(o);
    FitOptions back;
    ASSERT_TRUE(ReadOptionBytes(back, b).ok());
    EXPECT_EQ(back, o);
    EXPECT_EQ(OptionFileBytes(back), b);
}

TEST(OptionFile, ShortLongAndMissingFiles) {
    FitOptions o = DistinctOptions();
    o.GLSum = 0;
    const std::string bytes = OptionFileBytes(o);

    // Ending before GLSum: the previous GLSum stays, the file is good.
    FitOptions back;
    back.GLSum = -1;
    const Status st = ReadOptionBytes(back, bytes.substr(0, 204));
    EXPECT_TRUE(st.ok()) << st.message();
    EXPECT_EQ(back.GLSum, -1);
    back.GLSum = 0;
    EXPECT_EQ(back, o);

    // 63 bytes: level 2's PositionSearch.Use (60..61) is complete, its Range (62..65)
    // is not; nothing is kept.
    FitOptions part;
    part.PositionSearch[1].Range = 42;
    const FitOptions before = part;
    EXPECT_EQ(ReadOptionBytes(part, bytes.substr(0, 63)).message(), msg::kErrorReadingFile);
    EXPECT_EQ(part, before);

    // A longer file is read for its first 206 bytes.
    FitOptions longer;
    ASSERT_TRUE(ReadOptionBytes(longer, bytes + std::string(1000, '\x7f')).ok());
    EXPECT_EQ(longer, o);
    EXPECT_EQ(ReadOptionFile(longer, (test::ScratchDir() / "none.opa").string()).message(),
              msg::kErrorReadingFile);
}

}  // namespace
}  // namespace molvera
