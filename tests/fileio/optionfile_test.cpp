// Option file: 206 bytes in the stated layout, bit-exact round trip, short files.

#include "fileio/optionfile.h"

#include <cstdlib>
#include <filesystem>
#include <tuple>

#include <gtest/gtest.h>

#include "base/messages.h"
#include "support/files.h"
#include "support/le_bytes.h"
#include "support/paths.h"

namespace molvera {
namespace {

// Every field a different value, so that a swapped or shifted field shows.
FitOptions DistinctOptions() {
    FitOptions o;
    std::tie(o.Method, o.SearchTrials, o.NewtonTrials, o.Tolerance) =
        std::tuple(1, 17, 23, 0.0001f);
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
    // Method, trials, tolerance; level L's block starts at 12 + 48 (L - 1) with its rows at
    // 0, 10, 20, 30, 36, 42: PositionSearch[2] Use, Range, Step; AreaSearch[1].Range;
    // FWHMSearch[3].Step; AreaNewton[4].Use; FWHMNewton[4].Delta; GLSum last.
    // clang-format off
    test::ExpectValuesAt(b, 0, {{0, 'f', 1}, {4, 'h', 17}, {6, 'h', 23}, {8, 'f', 0.0001},
                                {12 + 48, 'h', -1}, {12 + 48 + 2, 'f', 0.5}, {12 + 48 + 6, 'f', 0.1f / 2},
                                {12 + 10 + 2, 'f', 21}, {12 + 96 + 20 + 6, 'f', 0.05f * 3},
                                {12 + 144 + 36, 'h', 3}, {12 + 144 + 42 + 2, 'f', 0.007f * 4}, {204, 'h', -1}});
    // clang-format on
}

// (The bit-exact round trip of every full-size file is the fuzz target's check.)
TEST(OptionFile, ShortLongAndMissingFiles) {
    FitOptions o = DistinctOptions();
    o.GLSum = 0;
    const std::string bytes = OptionFileBytes(o);

    // Ending before GLSum: the previous GLSum stays, the file is good.
    FitOptions back;
    back.GLSum = -1;
    const Status st = ReadOptionBytes(back, bytes.substr(0, 204));
    EXPECT_TRUE(st.ok() && back.GLSum == -1) << st.message();
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

// default.opa: the working directory's first, then the user's configuration folder, then
// the installed one; with none the built-in options stay ("").
TEST(DefaultOptions, WorkingDirectoryThenUserThenInstalled) {
    namespace fs = std::filesystem;
    const fs::path root = test::ScratchDir(), share = root / "share";
    const fs::path user = root / "config" / "molvera", saved = fs::current_path();
    for (const fs::path& dir : {root / "work", user, share}) fs::create_directories(dir);
    fs::current_path(root / "work");
    setenv("XDG_CONFIG_HOME", (root / "config").c_str(), 1);
    const std::string inWork = "default.opa", inUser = user / "default.opa",
                      inShare = share / "default.opa";
    const struct {
        std::vector<std::string> present;
        std::string found;
    } rows[] = {{{inWork, inUser, inShare}, inWork},
                {{inUser, inShare}, inUser},
                {{inShare}, inShare},
                {{}, ""}};
    for (const auto& row : rows) {
        for (const std::string& p : {inWork, inUser, inShare}) fs::remove(p);
        for (const std::string& p : row.present) test::WriteBytes(p, "x");
        EXPECT_EQ(FindDefaultOptions(DefaultOptionsFolders(share.string())), row.found);
    }
    // Without XDG_CONFIG_HOME the user's folder is ~/.config/molvera.
    unsetenv("XDG_CONFIG_HOME");
    const std::string home = std::getenv("HOME") ? std::getenv("HOME") : "";
    setenv("HOME", root.c_str(), 1);
    EXPECT_EQ(DefaultOptionsFolders("/s").at(1), (root / ".config" / "molvera").string());
    setenv("HOME", home.c_str(), 1);
    fs::current_path(saved);
}

}  // namespace
}  // namespace molvera
