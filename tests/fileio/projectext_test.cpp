// The project file's extension block: round trip, classic bytes unchanged, damage ignored.

#include <filesystem>
#include <fstream>
#include <iterator>

#include <gtest/gtest.h>

#include "fileio/projectfile.h"
#include "model/project.h"
#include "session/history.h"

namespace molvera {
namespace {

std::string Slurp(const std::filesystem::path& path) {
    std::ifstream in(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(in), {}};
}

Project WithSettings() {
    Project p;
    p.Description = "two settings";
    p.Quant.SourceEnergy = 1253.6f;
    p.Quant.ImfpExponent = 0.75f;
    p.Quant.RsfOverride[0] = 2.5f;
    p.Quant.RsfOverride[50] = 0.125f;
    return p;
}

// Reads `bytes` over a project with other settings; the warning it gave.
std::string ReadBack(const std::string& bytes, Project& read) {
    read.Quant.TransmissionExponent = 9;
    std::string warning;
    EXPECT_TRUE(ReadProjectBytes(bytes, read, nullptr, &warning));
    return warning;
}

TEST(ProjectExtensionTest, SettingsSurviveSaveAndLoad) {
    Project p = WithSettings();
    Project read;
    ClearProject(read, QuietHost());
    EXPECT_EQ(ReadBack(ProjectFileBytes(p), read), "");
    EXPECT_EQ(read.Quant, p.Quant);
    EXPECT_EQ(read.Description, p.Description);
}

// The files of the fuzz corpus, loaded and saved, end with the tagged description as a
// project file always did, and read back without a warning.
TEST(ProjectExtensionTest, ClassicProjectsEndWithTheDescription) {
    int count = 0;
    for (const auto& e : std::filesystem::directory_iterator(
             std::filesystem::path(MOLVERA_SOURCE_DIR) / "fuzz/corpus/project")) {
        Project p;
        ASSERT_TRUE(LoadProjectBytes(p, QuietHost(), Slurp(e.path()))) << e.path();
        const std::string saved = ProjectFileBytes(p);
        const auto n = static_cast<char>(p.Description.size());
        EXPECT_TRUE(saved.ends_with(std::string{'\x08', '\0', n, '\0'} + p.Description))
            << e.path();
        Project read;
        EXPECT_EQ(ReadBack(saved, read), "");
        ++count;
    }
    EXPECT_EQ(count, 5);
}

TEST(ProjectExtensionTest, DamagedBlocksAreIgnoredWithAWarning) {
    Project p = WithSettings();
    p.Quant.RsfOverride[50] = 0;
    const std::string good = ProjectFileBytes(p);
    const std::size_t block = good.find("MOLVERA-EXT");
    ASSERT_NE(block, std::string::npos);
    auto changed = [&](std::size_t at, char c) {
        std::string b = good;
        b[block + at] = c;
        return b;
    };
    // Tag, version (Int16 at 11), length (Int32 at 13), transmission exponent (Single at 21,
    // -0.5 made -2048), override count (Int16 at 29), slot, RSF.
    for (const std::string& bad :
         {good.substr(0, good.size() - 1), good.substr(0, block + 5), good + "x", changed(0, 'X'),
          changed(11, 2), changed(13, 100), changed(16, '\x80'), changed(24, '\xc5'),
          changed(29, 60), changed(31, 51), changed(36, '\xff'),
          good.substr(0, block) + "garbage"}) {
        Project read;
        ClearProject(read, QuietHost());
        EXPECT_NE(ReadBack(bad, read).find("Extension block ignored"), std::string::npos);
        EXPECT_EQ(read.Quant.TransmissionExponent, 9);
        EXPECT_EQ(read.Description, p.Description);
    }
}

TEST(ProjectExtensionTest, ASettingChangeIsAnUndoStep) {
    Project p;
    UndoHistory history;
    history.Reset(p);
    p.Quant.RsfOverride[3] = 1.5f;
    EXPECT_TRUE(history.Record(p));
    p.Quant.SourceEnergy = 1000;
    EXPECT_TRUE(history.Record(p));
    EXPECT_FALSE(history.Record(p));
}

}  // namespace
}  // namespace molvera
