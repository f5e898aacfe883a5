#include "fileio/vamas.h"

#include <algorithm>
#include <string>
#include <tuple>
#include <vector>

#include <gtest/gtest.h>

#include "base/messages.h"
#include "base/numtext.h"
#include "support/files.h"
#include "support/recording_host.h"

namespace molvera {
namespace {

using test::RecordingHost;
using Vamas = test::ImportTest;

// A block of n values 100, 101, ... on a regular abscissa.
struct SynthBlock {
    int n;
    double start;
    double step;
    std::string abscissa = "Binding Energy";
    std::string technique = "XPS";
    std::string transition = "1s";
};

// A minimal NORM / REGULAR file in the standard's order: no header comment, no
// experimental variable, one corresponding variable, no additional parameter.
std::string MakeVamas(const std::vector<SynthBlock>& blocks, const std::string& year = "2001") {
    const std::string count = std::to_string(blocks.size()) + "\n";
    std::string t =
        "VAMAS Surface Chemical Analysis Standard Data Transfer Format 1988 May 4\n"
        "Lab\nModel\nOperator\nExperiment\n0\nNORM\nREGULAR\n" +
        count + "0\n0\n0\n0\n0\n" + count;
    for (const SynthBlock& b : blocks) {
        t += "block\nSample A\n" + year + "\n1\n2\n3\n4\n5\n0\n0\n" + b.technique +
             "\nAl\n1486.6\n1e37\n1e37\n1e37\n45\n0\nFAT\n20\n1\n4.5\n0\n1e37\n1e37\n0\n0\nC\n" +
             b.transition + "\n-1\n" + b.abscissa + "\neV\n" + FormatTrimmed(b.start) + "\n" +
             FormatTrimmed(b.step) +
             "\n1\nIntensity\nd\npulse counting\n0.1\n1\n1e37\n0\n0\n0\n0\n" + std::to_string(b.n) +
             "\n0\n1\n";
        for (int i = 0; i < b.n; ++i) t += std::to_string(100 + i) + "\n";
    }
    return t + "end of experiment\n";
}

TEST_F(Vamas, OtherTechniquesAreSkippedAfterTheFirstBlockAesFirstIsRefused) {
    const std::string t = MakeVamas({{2, 10, -1},
                                     {2, 20, -1, "Binding Energy", "UPS"},
                                     {2, 100, 1, "Kinetic Energy", "AES dir"},
                                     {2, 30, -1}});
    const ImportResult result = test::ImportText(project, host, "vamas", t);
    ASSERT_TRUE(result.status.ok());
    EXPECT_EQ(result.warnings,
              std::vector<std::string>{"2 blocks not read: technique 'UPS', 'AES dir', not XPS"});
    EXPECT_TRUE(project.Regions[0].BindingEnergy[1] == 10 &&
                project.Regions[1].BindingEnergy[1] == 30);
    EXPECT_FALSE(IsSet(project.Regions[2].HasData));
    // A first block of AES refuses the file and changes nothing.
    const std::string aes = MakeVamas({{2, 100, 1, "Kinetic Energy", "AES dir"}});
    const Project before = project;
    EXPECT_EQ(test::ImportText(project, host, "vamas", aes).status.message(), msg::kNotXps);
    EXPECT_EQ(project, before);
}

// Refusals with the detail that says where; a file ending inside block 2 keeps nothing.
TEST_F(Vamas, RefusalsSayWhere) {
    const std::string full = MakeVamas({{5, 20, -1}, {5, 30, -1}});
    std::string huge = MakeVamas({{3, 20, -1}});
    huge.replace(huge.find("\n3\n0\n1\n"), 3, "\n1000000000\n");  // the block's value count
    struct Case {
        std::string text;
        const char* message;
        const char* detail;
    };
    const Case cases[] = {
        {"", msg::kNotVamas, ""},
        {"\n\nSome other file\n1\n", msg::kNotVamas, ""},
        {full.substr(0, full.size() - 30), msg::kErrorReadingFileImport,
         "the file ends after line "},
        {huge, msg::kErrorReadingFileImport, ": a count was expected"},
    };
    for (const Case& c : cases) {
        Project project;
        const ImportResult r = test::ImportText(project, host, "vamas", c.text);
        EXPECT_EQ(test::MessageTexts(r.Messages()), std::vector<std::string>{c.message});
        EXPECT_NE(r.status.detail().find(c.detail), std::string::npos) << r.status.detail();
        EXPECT_EQ(project, Project());
    }
}

// Kinetic energies are turned into binding energies in double and rounded once; the
// caption is the transition, the description the first block's sample line.
TEST_F(Vamas, KineticEnergiesCaptionAndDescription) {
    const std::string t = MakeVamas({{7, 1190.25, 0.25, "Kinetic Energy", "XPS", "2p3/2"}});
    ASSERT_TRUE(test::ImportText(project, host, "vamas", t).status.ok());
    const Region& r = project.Regions[0];
    ASSERT_EQ(r.PointCount, 7);
    for (std::size_t k = 0; k < 7; ++k) {
        EXPECT_EQ(r.BindingEnergy[k + 1], static_cast<float>(1486.6 - 1190.25 - 0.25 * k)) << k;
        EXPECT_EQ(r.RawIntensity[k + 1], static_cast<float>(100 + k)) << k;
    }
    EXPECT_EQ(r.Caption, Text20::From("2p3/2"));
    EXPECT_EQ(project.Description, "Sample A");
}

// ---- Real files: every block against an independent scan of the file's values.

struct RealVamas {
    const char* file;
    int variables;  // values per point
    int column;     // which of them is the intensity
    // Binding energy of the file's first point and its step (worked by hand from the
    // header for kinetic abscissas), and the point count.
    std::vector<std::tuple<double, double, int>> blocks;
};

void CheckRealVamas(const RealVamas& f) {
    const std::string path = test::RealFile(f.file);
    Project project;
    RecordingHost host;
    const ImportResult result = test::ImportPath(project, host, "vamas", path);
    ASSERT_TRUE(result.status.ok());
    // More than 5000 points in a block is reported.
    const bool big = std::ranges::any_of(f.blocks, [](auto& b) { return std::get<2>(b) > 5000; });
    EXPECT_EQ(test::MessageTexts(result.Messages()).size(), big ? 1u : 0u);
    const std::vector<std::string> lines = test::FileLines(path);
    std::size_t i = 0;
    for (std::size_t k = 0; k < f.blocks.size(); ++k) {
        SCOPED_TRACE(k);
        const auto [start, step, points] = f.blocks[k];
        // The values follow the line that states their count, and a pair of lines per variable.
        while (i < lines.size() &&
               (LeadingNumberLength(lines[i]) != lines[i].find_last_not_of(' ') + 1 ||
                LeadingNumber(lines[i]) != points * f.variables))
            ++i;
        const std::size_t first = i + 1 + 2 * static_cast<std::size_t>(f.variables);
        i = first + static_cast<std::size_t>(points * f.variables);
        const Region& r = project.Regions[k];
        const int n = std::min(points, 5000);
        ASSERT_EQ(r.PointCount, n);
        for (int p : {1, 2, n / 3, n / 2, n - 1, n}) {
            const int j = step > 0 ? n - p : p - 1;  // 0-based index in the file
            EXPECT_NEAR(r.BindingEnergy[static_cast<std::size_t>(p)], start + j * step, 2e-3) << p;
            const auto value = LeadingNumber(
                lines.at(first + static_cast<std::size_t>(j * f.variables + f.column)));
            EXPECT_EQ(r.RawIntensity[static_cast<std::size_t>(p)], static_cast<float>(value)) << p;
        }
    }
    EXPECT_TRUE(f.blocks.size() == 10 || !IsSet(project.Regions[f.blocks.size()].HasData));
}

TEST(VamasReal, EveryBlockAgainstTheFilesOwnValues) {
    // clang-format off
    const RealVamas files[] = {
        {"feranick-xps/2.vms", 1, 0,
         {{1386.6, -0.5, 2794}, {289, -0.1, 81}, {110, -0.1, 151}, {15, -0.1, 171}, {33, -0.1, 71}, {15, -0.1, 171}}},
        {"feranick-xps/3.vms", 1, 0,
         {{92, -0.1, 121}, {405, -0.1, 101}, {295, -0.1, 151}, {175, -0.1, 201}, {410, -0.1, 201}, {10, -0.1, 121},
          {1000, -0.5, 2001}}},
        {"lg4x/Mutlipak_vms.npl", 1, 0,  // MultiPak export
         {{305, -0.05, 601}, {555, -0.05, 601}, {180, -0.05, 501}, {410, -0.05, 401}, {240, -0.05, 401}}},
        // Kratos Supra: kinetic (hv 1486.69), two variables, leading blank lines.
        {"lg4x/0-150W.vms", 2, 0, {{1200, -1, 1206}, {900, -0.1, 601}, {545, -0.1, 251}, {300, -0.1, 301}, {50, -0.1, 251}}},
        // Omicron: kinetic (hv 1486.7), more than 5000 points.
        {"matkrin-vamas/xps_eis.vms", 1, 0, {{-20, 0.1, 8201}, {225, 0.05, 321}, {389, 0.05, 941}, {240, 0.05, 541}}},
        {"minespex/vamas.vms", 1, 0, {{539, -0.1, 111}}},  // Scienta: an experimental variable
        {"pynxtools-xps/regular.vms", 2, 0, {{1350, -1, 1351}}},  // Casa: kinetic (hv 1486.61), two variables
        // IRREGULAR: each point lists its kinetic energy, then intensity and transmission.
        {"pynxtools-xps/irregular.vms", 3, 1, {{1350, -1, 1351}}},
    };
    // clang-format on
    std::string missing;
    for (const RealVamas& f : files) {
        SCOPED_TRACE(f.file);
        if (test::RealFile(f.file).empty())
            missing += std::string(" ") + f.file;
        else
            CheckRealVamas(f);
    }
    if (!missing.empty()) GTEST_SKIP() << "not available:" << missing;
}

}  // namespace
}  // namespace molvera
