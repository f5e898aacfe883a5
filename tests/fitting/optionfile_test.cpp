// Option file: 206 bytes in the stated layout, bit-exact round trip, short files.

#include "fitting/optionfile.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>

#include "model/messages.h"
#include "support/le_bytes.h"
#include "support/paths.h"

namespace molvera {
namespace {

using test::F32At;
using test::I16At;

std::string ReadBytes(const std::filesystem::path& p) {
    std::ifstream in(p, std::ios::binary);
    return std::string(std::istreambuf_iterator<char>(in), {});
}

void WriteBytes(const std::filesystem::path& p, const std::string& bytes) {
    std::ofstream out(p, std::ios::binary | std::ios::trunc);
    out.write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
}

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

TEST(OptionFile, TableFollowsTheStatedLayout) {
    FitOptions o;
    const std::vector<OptionField> fields = OptionFileFields(o);
    ASSERT_EQ(fields.size(), 4u + 4u * (3u * 3u + 3u * 2u) + 1u);
    EXPECT_EQ(fields.front().name, "Method");
    EXPECT_EQ(fields.back().name, "GLSum");
    EXPECT_EQ(fields.back().offset, 204u);
    std::size_t expectedNext = 0;
    for (const OptionField& f : fields) {
        EXPECT_EQ(f.offset, expectedNext) << f.name;  // no gaps, no padding
        expectedNext = f.offset + (std::holds_alternative<float*>(f.value) ? 4 : 2);
    }
    EXPECT_EQ(expectedNext, kOptionFileSize);
    // Level L's block starts at 12 + 48 (L - 1); its rows at 0, 10, 20, 30, 36, 42.
    auto offsetOf = [&](const std::string& name) {
        for (const OptionField& f : fields)
            if (f.name == name) return f.offset;
        ADD_FAILURE() << name;
        return std::size_t{0};
    };
    EXPECT_EQ(offsetOf("Tolerance"), 8u);
    EXPECT_EQ(offsetOf("PositionSearch[1].Use"), 12u);
    EXPECT_EQ(offsetOf("AreaSearch[2].Range"), 12u + 48u + 10u + 2u);
    EXPECT_EQ(offsetOf("FWHMSearch[3].Step"), 12u + 96u + 20u + 6u);
    EXPECT_EQ(offsetOf("PositionNewton[4].Delta"), 12u + 144u + 30u + 2u);
    EXPECT_EQ(offsetOf("FWHMNewton[4].Delta"), 12u + 144u + 42u + 2u);
}

TEST(OptionFile, WrittenBytesAtTheirOffsets) {
    const auto dir = test::ScratchDir();
    const FitOptions o = DistinctOptions();
    ASSERT_TRUE(WriteOptionFile(o, (dir / "a.opa").string()).ok());
    const std::string b = ReadBytes(dir / "a.opa");
    ASSERT_EQ(b.size(), 206u);
    EXPECT_EQ(F32At(b, 0), 1.0f);
    EXPECT_EQ(I16At(b, 4), 17);
    EXPECT_EQ(I16At(b, 6), 23);
    EXPECT_EQ(F32At(b, 8), 0.0001f);
    EXPECT_EQ(I16At(b, 12 + 48), -1);             // PositionSearch[2].Use
    EXPECT_EQ(F32At(b, 12 + 48 + 2), 0.5f);       // PositionSearch[2].Range
    EXPECT_EQ(F32At(b, 12 + 48 + 6), 0.1f / 2);     // PositionSearch[2].Step
    EXPECT_EQ(F32At(b, 12 + 10 + 2), 21.0f);      // AreaSearch[1].Range
    EXPECT_EQ(F32At(b, 12 + 96 + 20 + 6), 0.05f * 3);  // FWHMSearch[3].Step
    EXPECT_EQ(I16At(b, 12 + 144 + 36), 3);        // AreaNewton[4].Use
    EXPECT_EQ(F32At(b, 12 + 144 + 42 + 2), 0.007f * 4);  // FWHMNewton[4].Delta
    EXPECT_EQ(I16At(b, 204), -1);
}

TEST(OptionFile, RoundTripIsBitExact) {
    const auto dir = test::ScratchDir();
    FitOptions o = DistinctOptions();
    o.AreaNewton[2].Delta = -0.0f;  // a sign bit that == would not notice
    ASSERT_TRUE(WriteOptionFile(o, (dir / "a.opa").string()).ok());
    FitOptions back;
    ASSERT_TRUE(ReadOptionFile(back, (dir / "a.opa").string()).ok());
    EXPECT_EQ(back, o);
    ASSERT_TRUE(WriteOptionFile(back, (dir / "b.opa").string()).ok());
    EXPECT_EQ(ReadBytes(dir / "a.opa"), ReadBytes(dir / "b.opa"));
}

TEST(OptionFile, FileEndingBeforeGLSumKeepsThePreviousGLSum) {
    const auto dir = test::ScratchDir();
    FitOptions o = DistinctOptions();
    o.GLSum = 0;
    ASSERT_TRUE(WriteOptionFile(o, (dir / "a.opa").string()).ok());
    WriteBytes(dir / "short.opa", ReadBytes(dir / "a.opa").substr(0, 204));
    FitOptions back;
    back.GLSum = -1;
    const Status st = ReadOptionFile(back, (dir / "short.opa").string());
    EXPECT_TRUE(st.ok()) << st.message();
    EXPECT_EQ(back.GLSum, -1);
    back.GLSum = 0;
    EXPECT_EQ(back, o);
}

TEST(OptionFile, ShorterFileKeepsTheFieldsReadBeforeTheEnd) {
    const auto dir = test::ScratchDir();
    const FitOptions o = DistinctOptions();
    ASSERT_TRUE(WriteOptionFile(o, (dir / "a.opa").string()).ok());
    // 63 bytes: level 2's PositionSearch.Use (60..61) is complete, its Range (62..65) is not.
    WriteBytes(dir / "short.opa", ReadBytes(dir / "a.opa").substr(0, 63));
    FitOptions back;
    back.PositionSearch[1].Range = 42;
    back.FWHMNewton[3].Delta = 43;
    EXPECT_EQ(ReadOptionFile(back, (dir / "short.opa").string()).message(), msg::kErrorReadingFile);
    EXPECT_EQ(back.NewtonTrials, 23);
    EXPECT_EQ(back.FWHMNewton[0], o.FWHMNewton[0]);
    EXPECT_EQ(back.PositionSearch[1].Use, o.PositionSearch[1].Use);
    EXPECT_EQ(back.PositionSearch[1].Range, 42.0f);
    EXPECT_EQ(back.FWHMNewton[3].Delta, 43.0f);
}

TEST(OptionFile, LongerFileReadsItsFirst206Bytes) {
    const auto dir = test::ScratchDir();
    const FitOptions o = DistinctOptions();
    ASSERT_TRUE(WriteOptionFile(o, (dir / "a.opa").string()).ok());
    WriteBytes(dir / "long.opa", ReadBytes(dir / "a.opa") + std::string(1000, '\x7f'));
    FitOptions back;
    ASSERT_TRUE(ReadOptionFile(back, (dir / "long.opa").string()).ok());
    EXPECT_EQ(back, o);
}

TEST(OptionFile, FailuresToOpenOrWrite) {
    const auto dir = test::ScratchDir();
    FitOptions o = DistinctOptions();
    EXPECT_EQ(ReadOptionFile(o, (dir / "missing.opa").string()).message(), msg::kErrorReadingFile);
    EXPECT_EQ(o, DistinctOptions());
    EXPECT_EQ(WriteOptionFile(o, (dir / "no" / "x.opa").string()).message(), msg::kErrorWritingFile);
    EXPECT_EQ(WriteOptionFile(o, dir.string()).message(), msg::kErrorWritingFile);
}

}  // namespace
}  // namespace molvera
