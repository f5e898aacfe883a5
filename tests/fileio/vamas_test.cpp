#include "fileio/vamas.h"

#include <cmath>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "base/messages.h"
#include "base/numtext.h"
#include "fileio/importstore.h"
#include "support/files.h"
#include "support/recording_host.h"

namespace molvera {
namespace {

using test::RecordingHost;
using Vamas = test::ImportTest;

struct SynthBlock {
    std::string technique = "XPS";
    std::string abscissa = "Binding Energy";
    std::string transition = "1s";
    double hv = 1486.6;
    double start = 290;
    double step = -1;
    std::vector<double> values;
};

// A minimal NORM / REGULAR file in the standard's order: no header comment, no
// experimental variable, one corresponding variable, no additional parameter.
std::string MakeVamas(const std::vector<SynthBlock>& blocks, const std::string& year = "2001") {
    std::string t = "VAMAS Surface Chemical Analysis Standard Data Transfer Format 1988 May 4\n";
    t += "Lab\nModel\nOperator\nExperiment\n0\nNORM\nREGULAR\n" + std::to_string(blocks.size()) +
         "\n";
    t += "0\n0\n0\n0\n0\n" + std::to_string(blocks.size()) + "\n";
    for (const SynthBlock& b : blocks) {
        t += "block\nSample A\n" + year + "\n1\n2\n3\n4\n5\n0\n0\n" + b.technique + "\n";
        t += "Al\n" + FormatTrimmed(b.hv) + "\n1e37\n1e37\n1e37\n45\n0\nFAT\n20\n";
        if (b.technique == "AES diff") t += "2\n";
        t += "1\n4.5\n0\n1e37\n1e37\n0\n0\nC\n" + b.transition + "\n-1\n";
        t += b.abscissa + "\neV\n" + FormatTrimmed(b.start) + "\n" + FormatTrimmed(b.step) + "\n";
        t += "1\nIntensity\nd\npulse counting\n0.1\n1\n1e37\n0\n0\n0\n0\n";
        t += std::to_string(b.values.size()) + "\n0\n1\n";
        for (double v : b.values) t += FormatTrimmed(v) + "\n";
    }
    t += "end of experiment\n";
    return t;
}

SynthBlock Ramp(int n, double first, double step, const std::string& abscissa = "Binding Energy") {
    SynthBlock b;
    b.abscissa = abscissa;
    b.start = first;
    b.step = step;
    for (int i = 0; i < n; ++i) b.values.push_back(100 + i);
    return b;
}

TEST_F(Vamas, OtherTechniquesAreSkippedAfterTheFirstBlock) {
    SynthBlock ups = Ramp(2, 20, -1);
    ups.technique = "UPS";
    SynthBlock aes = Ramp(2, 100, 1, "Kinetic Energy");
    aes.technique = "AES dir";
    ASSERT_TRUE(test::ImportText(project, host, "vamas",
                                 MakeVamas({Ramp(2, 10, -1), ups, aes, Ramp(2, 30, -1)}))
                    .status.ok());
    EXPECT_EQ(project.Regions[0].BindingEnergy[1], 10);
    EXPECT_EQ(project.Regions[1].BindingEnergy[1], 30);
    EXPECT_FALSE(IsSet(project.Regions[2].HasData));
}

// Refusals with the detail that says where; a file ending inside block 2 keeps block 1.
TEST_F(Vamas, RefusalsSayWhere) {
    const std::string full = MakeVamas({Ramp(5, 20, -1), Ramp(5, 30, -1)});
    std::string huge = MakeVamas({Ramp(3, 20, -1)});
    huge.replace(huge.find("\n3\n0\n1\n"), 3, "\n1000000000\n");  // the block's value count
    struct Case {
        std::string text;
        const char* message;
        const char* detail;
        bool keepsFirst;
    };
    const Case cases[] = {
        {"\n\nSome other file\n1\n", msg::kNotVamas, "", false},
        {full.substr(0, full.size() - 30), msg::kErrorReadingFileImport,
         "the file ends after line ", true},
        {huge, msg::kErrorReadingFileImport, ": a count was expected", false},
    };
    for (const Case& c : cases) {
        Project project;
        const ImportResult r = test::ImportText(project, host, "vamas", c.text);
        EXPECT_EQ(test::MessageTexts(r.Messages()), std::vector<std::string>{c.message});
        EXPECT_NE(r.status.detail().find(c.detail), std::string::npos) << r.status.detail();
        EXPECT_EQ(IsSet(project.Regions[0].HasData), c.keepsFirst);
        EXPECT_FALSE(IsSet(project.Regions[1].HasData));
    }
}

// ---- The line-counting rules: on files laid out as they expect (dated 1980-2009,
// no experimental variable, one corresponding variable, no additional parameter)
// the structured reader must give exactly what they give.

void CompareWithLineRules(const std::vector<std::string>& lines, const Project& project) {
    std::size_t i = 0;
    auto next = [&]() -> const std::string& { return lines.at(i++); };
    auto dated = [](const std::string& l) {
        return l.size() >= 4 &&
               (l.starts_with("199") || l.starts_with("198") || l.starts_with("200")) &&
               l[3] >= '0' && l[3] <= '9';
    };
    next();  // identification
    std::string previous;
    for (std::string l = next(); !dated(l); l = next()) previous = l;
    EXPECT_EQ(project.Description, previous);
    while (next().find("XPS") == std::string::npos) {
    }
    next();
    for (int block = 0; i < lines.size(); ++block) {
        SCOPED_TRACE(block);
        // Energies are formed in double from the file's numbers and rounded once.
        const double hv = LeadingNumber(next());
        std::string back2, back1;
        for (std::string l = next();
             !(l.size() > 1 && (l.compare(1, 6, "inetic") == 0 || l.compare(1, 6, "inding") == 0));
             l = next()) {
            back2 = back1;
            back1 = l;
        }
        const bool kinetic = lines[i - 1].compare(1, 6, "inetic") == 0;
        const Region& r = project.Regions.at(static_cast<std::size_t>(block));
        EXPECT_EQ(r.Caption, Text20::From(back2));
        next();  // units
        double start = LeadingNumber(next());
        double step = LeadingNumber(next());
        if (kinetic) {
            start = hv - start;
            step = -step;
        }
        i += 11;
        const int m = static_cast<int>(LeadingNumber(next()));
        i += 2;
        ASSERT_EQ(r.PointCount, m);
        const bool reverse = step > 0;
        for (int k = 0; k < m; ++k) {
            const auto at = static_cast<std::size_t>(reverse ? m - k : k + 1);
            ASSERT_EQ(r.BindingEnergy[at], static_cast<float>(start + k * step)) << k;
            ASSERT_EQ(r.RawIntensity[at], static_cast<float>(LeadingNumber(next()))) << k;
        }
        while (i < lines.size() && next().find("XPS") == std::string::npos) {
        }
        if (i < lines.size()) next();
    }
}

TEST(VamasLineRules, SameResultOnTheLayoutTheyWereWrittenFor) {
    SynthBlock kinetic = Ramp(7, 1190.25, 0.25, "Kinetic Energy");
    kinetic.transition = "2p3/2";
    const std::string synthetic = MakeVamas({Ramp(5, 290, -0.1), kinetic}, "1999");
    Project project;
    RecordingHost host;
    ASSERT_TRUE(test::ImportText(project, host, "vamas", synthetic).status.ok());
    CompareWithLineRules(test::TextLines(synthetic), project);
    for (const char* rel : {"feranick-xps/2.vms", "feranick-xps/3.vms"}) {
        const std::string path = test::RealFile(rel);
        if (path.empty()) GTEST_SKIP() << rel << " is not available";
        ASSERT_TRUE(test::ImportPath(project, host, "vamas", path).status.ok());
        CompareWithLineRules(test::FileLines(path), project);
    }
}

// ---- Real files: every block against an independent scan of the file's values.

struct RealBlock {
    double start;
    double step;
    int points;
};

struct RealVamas {
    const char* file;
    bool kinetic;
    double hv;
    int variables;  // values per point
    int column;     // which of them is the intensity
    std::vector<RealBlock> blocks;
};

void CheckRealVamas(const RealVamas& f) {
    const std::string path = test::RealFile(f.file);
    Project project;
    RecordingHost host;
    ASSERT_TRUE(test::ImportPath(project, host, "vamas", path).status.ok());
    const std::vector<std::string> lines = test::FileLines(path);
    auto trimmed = [](std::string l) {
        l.erase(0, l.find_first_not_of(' '));
        return l.erase(l.find_last_not_of(' ') + 1);
    };
    std::size_t i = 0;
    for (std::size_t k = 0; k < f.blocks.size(); ++k) {
        SCOPED_TRACE(k);
        const RealBlock& b = f.blocks[k];
        // The block's values follow the line that states their count, and one pair of
        // lines per variable.
        const std::string count = std::to_string(b.points * f.variables);
        while (i < lines.size() && trimmed(lines[i]) != count) ++i;
        const std::size_t first = i + 1 + 2 * static_cast<std::size_t>(f.variables);
        i = first + static_cast<std::size_t>(b.points * f.variables);
        const Region& r = project.Regions[k];
        const int n = std::min(b.points, 5000);
        ASSERT_EQ(r.PointCount, n);
        auto fileBE = [&](int j) {
            return f.kinetic ? f.hv - b.start - j * b.step : b.start + j * b.step;
        };
        const bool reversed = fileBE(0) < fileBE(n - 1);
        for (int p : {1, 2, n / 3, n / 2, n - 1, n}) {
            const int j = reversed ? n - p : p - 1;  // 0-based index in the file
            EXPECT_NEAR(r.BindingEnergy[static_cast<std::size_t>(p)], fileBE(j), 2e-3) << p;
            const std::string& value =
                lines.at(first + static_cast<std::size_t>(j * f.variables + f.column));
            EXPECT_EQ(r.RawIntensity[static_cast<std::size_t>(p)],
                      static_cast<float>(LeadingNumber(value)))
                << p;
        }
    }
    if (f.blocks.size() < 10) {
        EXPECT_FALSE(IsSet(project.Regions[f.blocks.size()].HasData));
    }
}

TEST(VamasReal, EveryBlockAgainstTheFilesOwnValues) {
    // clang-format off
    const RealVamas files[] = {
        {"feranick-xps/2.vms", false, 1486.6, 1, 0,
         {{1386.6, -0.5, 2794}, {289, -0.1, 81}, {110, -0.1, 151}, {15, -0.1, 171}, {33, -0.1, 71}, {15, -0.1, 171}}},
        {"feranick-xps/3.vms", false, 1486.6, 1, 0,
         {{92, -0.1, 121}, {405, -0.1, 101}, {295, -0.1, 151}, {175, -0.1, 201}, {410, -0.1, 201}, {10, -0.1, 121},
          {1000, -0.5, 2001}}},
        {"lg4x/Mutlipak_vms.npl", false, 1486.6, 1, 0,  // MultiPak export
         {{305, -0.05, 601}, {555, -0.05, 601}, {180, -0.05, 501}, {410, -0.05, 401}, {240, -0.05, 401}}},
        {"lg4x/0-150W.vms", true, 1486.69, 2, 0,  // Kratos Supra: two variables, leading blank lines
         {{286.69, 1, 1206}, {586.69, 0.1, 601}, {941.69, 0.1, 251}, {1186.69, 0.1, 301}, {1436.69, 0.1, 251}}},
        {"matkrin-vamas/xps_eis.vms", true, 1486.7, 1, 0,  // Omicron: kinetic, more than 5000 points
         {{1506.7, -0.1, 8201}, {1261.7, -0.05, 321}, {1097.7, -0.05, 941}, {1246.7, -0.05, 541}}},
        {"minespex/vamas.vms", false, 1486.7, 1, 0, {{539, -0.1, 111}}},  // Scienta: experimental variable
        {"pynxtools-xps/regular.vms", true, 1486.61, 2, 0, {{136.61, 1, 1351}}},  // Casa: two variables
        // IRREGULAR: each point lists its kinetic energy, then intensity and transmission.
        {"pynxtools-xps/irregular.vms", true, 1486.61, 3, 1, {{136.61, 1, 1351}}},
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

TEST(VamasReal, FieldsAndMessages) {
    const std::string multipak = test::RealFile("lg4x/Mutlipak_vms.npl");
    const std::string eis = test::RealFile("matkrin-vamas/xps_eis.vms");
    const std::string scienta = test::RealFile("minespex/vamas.vms");
    const std::string aes = test::RealFile("matkrin-vamas/aes_staib.vms");
    if (multipak.empty() || eis.empty() || scienta.empty() || aes.empty())
        GTEST_SKIP() << "real VAMAS files not available";
    Project project;
    RecordingHost host;
    ASSERT_TRUE(test::ImportPath(project, host, "vamas", multipak).status.ok());
    EXPECT_EQ(project.Description, "Sample ID : 1");
    EXPECT_EQ(project.Regions[0].Caption.Str(), "1s                  ");
    ASSERT_TRUE(test::ImportPath(project, host, "vamas", scienta).Messages().empty());
    EXPECT_EQ(project.Description, "EMS04-035-11A");
    const ImportResult big = test::ImportPath(project, host, "vamas", eis);
    ASSERT_TRUE(big.status.ok());
    EXPECT_EQ(test::MessageTexts(big.Messages()),
              std::vector<std::string>{"Too many points.  Only 5000 points have been read."});
    EXPECT_EQ(test::ImportPath(project, host, "vamas", aes).status.message(), msg::kNotXps);
    EXPECT_FALSE(IsSet(project.Regions[0].HasData));
}

}  // namespace
}  // namespace molvera
