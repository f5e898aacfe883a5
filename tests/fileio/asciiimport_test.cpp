#include "fileio/asciiimport.h"

#include <optional>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "base/messages.h"
#include "base/numtext.h"
#include "support/files.h"
#include "support/recording_host.h"

namespace molvera {
namespace {

class AsciiImport : public test::ImportTest {
protected:
    ImportResult Import(std::string_view text) {
        return test::ImportText(project, host, "ascii", text);
    }
};

TEST_F(AsciiImport, RisingIsStoredFallingAndOnlyTheCurrentRegionIsReplaced) {
    project.CurrentRegion = 4;
    ASSERT_TRUE(Import("280 5\n281 6\n282 7\n").status.ok());
    const Region& r = project.Regions[4];
    EXPECT_TRUE(r.BindingEnergy == SingleArray({0, 282, 281, 280}) &&
                r.RawIntensity == SingleArray({0, 7, 6, 5}));
    EXPECT_EQ(r.Caption.Str(), std::string(20, ' '));
    ASSERT_TRUE(Import("9,7\r\n8,6").status.ok());  // falling: kept as read
    EXPECT_TRUE(r.BindingEnergy == SingleArray({0, 9, 8}) &&
                r.RawIntensity == SingleArray({0, 7, 6}));
    EXPECT_FALSE(IsSet(project.Regions[5].HasData) || IsSet(project.Regions[0].HasData));
    EXPECT_EQ(project.CurrentRegion, 4);
}

TEST_F(AsciiImport, OnePairPerLineFromItsFirstTwoItems) {
    // Headers, comments, a lone number, a "Key: value" line and a third column are not data;
    // the text lines between data lines (7 and 10, not the comment) are reported.
    const std::string text =
        "BE/eV,Intensity\n# measured 2 May, 1 scan\n2\nDate: 2017 6 6\n\n290\t10\n7\n289;11 0.5\n"
        "288 ;\t12\nx\n  287 , 13  \n# a comment between data lines\n286  14\nend\n";
    const ImportResult result = Import(text);
    ASSERT_TRUE(result.status.ok());
    EXPECT_EQ(project.Regions[0].BindingEnergy, (SingleArray{0, 290, 289, 288, 287, 286}));
    EXPECT_EQ(project.Regions[0].RawIntensity, (SingleArray{0, 10, 11, 12, 13, 14}));
    EXPECT_EQ(result.warnings,
              std::vector<std::string>{
                  "2 lines without a pair of numbers left out, the first is line 7"});
    // Kinetic energies read as binding energies are mostly negative; a valence band may
    // cross 0 eV.
    EXPECT_EQ(Import("0 5\n-1500 6\n-3000 7\n").warnings,
              std::vector<std::string>{"the spectrum: 2 of 3 energies are negative, down to "
                                       "-3000.0 eV (kinetic energies read as binding energies?)"});
    EXPECT_TRUE(Import("5 1\n0 2\n-5 3\n").warnings.empty());
}

TEST_F(AsciiImport, SixThousandLinesKeep5000) {
    std::string text;
    for (int i = 0; i < 6000; ++i)
        text += std::to_string(1000 + i) + " " + std::to_string(i) + "\n";
    const ImportResult result = Import(text);
    EXPECT_EQ(test::MessageTexts(result.Messages()),
              std::vector<std::string>{msg::kOnly5000Points});
    const Region& r = project.Regions[0];  // the first 5000 pairs, reversed
    EXPECT_TRUE(r.PointCount == 5000 && r.BindingEnergy[1] == 5999 && r.RawIntensity[5000] == 0);
}

TEST_F(AsciiImport, RefusalsLeaveTheRegionAlone) {
    ASSERT_TRUE(Import("2 1\n1 1\n").status.ok());
    const Region before = project.Regions[0];
    for (const char* text : {"", "only text\n", "3\n4\n", "Energy: 1 2\n"}) {
        SCOPED_TRACE(text);
        const ImportResult result = Import(text);
        EXPECT_EQ(test::MessageTexts(result.Messages()),
                  std::vector<std::string>{msg::kErrorReadingFileImport});
        EXPECT_TRUE(!result.status.detail().empty() && project.Regions[0] == before);
    }
    const Status missing =
        test::ImportPath(project, host, "ascii", (test::ScratchDir() / "missing.txt").string())
            .status;
    EXPECT_TRUE(missing.message() == msg::kErrorReadingFileImport &&
                missing.detail() == "missing.txt: no such file");
}

// The two numbers at the start of a data line, or none.
std::optional<std::pair<float, float>> Pair(const std::string& line) {
    const std::size_t n = LeadingNumberLength(line), rest = line.find_first_not_of(" ,;\t", n);
    if (n == 0 || rest == std::string::npos || rest == n ||
        LeadingNumberLength(line.substr(rest)) == 0)
        return std::nullopt;
    return std::pair{static_cast<float>(LeadingNumber(line)),
                     static_cast<float>(LeadingNumber(line.substr(rest)))};
}

// Real two-column files: points checked against the file's own lines, from the first
// line holding a pair; a rising file is stored reversed. None gives a warning.
TEST(AsciiImportReal, EveryFileAgainstItsOwnLines) {
    const std::pair<const char*, int> files[] = {
        {"lg4x/C1s_sample.csv", 351},                         // VersaProbe, header line
        {"lg4x/111216_0459_O1s.csv", 126},                    // synchrotron, LF
        {"pynxtools-xps/MgFe2O4_small.xy", 1351},             // SPECS: the first spectrum only
        {"nims-mdac-xps/XPS_PHI_QUANTERA_survey.txt", 2801},  // MultiPak text, down to -20 eV
    };
    std::string missing;
    for (const auto& [file, rows] : files) {
        SCOPED_TRACE(file);
        const std::string path = test::RealFile(file);
        if (path.empty()) {
            missing += std::string(" ") + file;
            continue;
        }
        Project project;
        test::RecordingHost host;
        const ImportResult result = test::ImportPath(project, host, "ascii", path);
        ASSERT_TRUE(result.status.ok() && result.warnings.empty());
        const Region& r = project.Regions[0];
        ASSERT_EQ(r.PointCount, rows);
        const std::vector<std::string> lines = test::FileLines(path);
        std::size_t first = 0;
        while (!Pair(lines.at(first))) ++first;
        const bool reversed = Pair(lines[first])->first < Pair(lines[first + 1])->first;
        for (int i : {1, 2, rows / 2, rows}) {
            const auto pair =
                Pair(lines.at(first + static_cast<std::size_t>(reversed ? rows - i : i - 1)));
            ASSERT_TRUE(pair) << i;
            EXPECT_EQ(r.BindingEnergy[static_cast<std::size_t>(i)], pair->first) << i;
            EXPECT_EQ(r.RawIntensity[static_cast<std::size_t>(i)], pair->second) << i;
        }
    }
    if (!missing.empty()) GTEST_SKIP() << "not available:" << missing;
}

}  // namespace
}  // namespace molvera
