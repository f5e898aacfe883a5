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

TEST_F(Vamas, OtherFilesAreNotVamas) {
    const ImportResult r = test::ImportText(project, host, "vamas", "\n\nSome other file\n1\n");
    EXPECT_EQ(test::MessageTexts(r.Messages()), std::vector<std::string>{msg::kNotVamas});
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

TEST_F(Vamas, FileEndingInsideABlockKeepsTheCompleteBlocks) {
    const std::string full = MakeVamas({Ramp(5, 20, -1), Ramp(5, 30, -1)});
    const std::string cut = full.substr(0, full.size() - 30);  // inside block 2's values
    const ImportResult r = test::ImportText(project, host, "vamas", cut);
    EXPECT_EQ(test::MessageTexts(r.Messages()),
              std::vector<std::string>{msg::kErrorReadingFileImport});
    EXPECT_EQ(r.status.detail().rfind("the file ends after line ", 0), 0u) << r.status.detail();
    EXPECT_EQ(project.Regions[0].BindingEnergy[1], 20);
    EXPECT_FALSE(IsSet(project.Regions[1].HasData));
}

TEST_F(Vamas, HugeDeclaredCountsDoNotRunAway) {
    std::string t = MakeVamas({Ramp(3, 20, -1)});
    const std::size_t at = t.find("\n3\n0\n1\n");  // the value count of the block
    ASSERT_NE(at, std::string::npos);
    t.replace(at, 3, "\n1000000000\n");
    const Status st = test::ImportText(project, host, "vamas", t).status;
    EXPECT_EQ(st.message(), msg::kErrorReadingFileImport);
    EXPECT_NE(st.detail().find(": a count was expected"), std::string::npos) << st.detail();
    EXPECT_FALSE(IsSet(project.Regions[0].HasData));
}

// ---- The line-counting rules: on files laid out as they expect (dated 1980-2009,
// no experimental variable, one corresponding variable, no additional parameter)
// the structured reader must give exactly what they give.

struct LineRuleResult {
    std::string description;
    std::vector<std::string> captions;
    std::vector<std::vector<float>> energies;  // file order
    std::vector<std::vector<float>> counts;
};

LineRuleResult ReadByLineRules(const std::vector<std::string>& lines) {
    LineRuleResult out;
    std::size_t i = 0;
    auto next = [&]() -> const std::string& { return lines.at(i++); };
    next();  // identification
    std::string previous;
    for (;;) {
        const std::string& l = next();
        if (l.size() >= 4 &&
            (l.rfind("199", 0) == 0 || l.rfind("198", 0) == 0 || l.rfind("200", 0) == 0) &&
            l[3] >= '0' && l[3] <= '9')
            break;
        previous = l;
    }
    out.description = previous;
    while (next().find("XPS") == std::string::npos) {
    }
    next();
    // Energies are formed in double from the file's numbers and rounded once.
    double hv = LeadingNumber(next());
    for (;;) {
        std::string back2, back1;
        for (;;) {
            const std::string& l = next();
            if (l.size() > 1 &&
                (l.compare(1, 6, "inetic") == 0 || l.compare(1, 6, "inding") == 0)) {
                const bool kinetic = l.compare(1, 6, "inetic") == 0;
                out.captions.push_back(back2);
                next();  // units
                double start = LeadingNumber(next());
                double step = LeadingNumber(next());
                if (kinetic) {
                    start = hv - start;
                    step = -step;
                }
                for (int k = 0; k < 11; ++k) next();
                const int m = static_cast<int>(LeadingNumber(next()));
                next();
                next();
                out.energies.emplace_back();
                out.counts.emplace_back();
                for (int k = 0; k < m; ++k) {
                    out.energies.back().push_back(static_cast<float>(start + k * step));
                    out.counts.back().push_back(static_cast<float>(LeadingNumber(next())));
                }
                break;
            }
            back2 = back1;
            back1 = l;
        }
        bool found = false;
        while (i < lines.size() && !found) found = next().find("XPS") != std::string::npos;
        if (!found) return out;
        next();
        hv = LeadingNumber(next());
    }
}

void CompareWithLineRules(const std::string& path) {
    Project project;
    RecordingHost host;
    ASSERT_TRUE(test::ImportPath(project, host, "vamas", path).status.ok());
    const LineRuleResult rules = ReadByLineRules(test::FileLines(path));
    EXPECT_EQ(project.Description, rules.description);
    ASSERT_LE(rules.captions.size(), 10u);
    for (std::size_t k = 0; k < rules.captions.size(); ++k) {
        const Region& r = project.Regions[k];
        EXPECT_EQ(r.Caption, Text20::From(rules.captions[k]));
        const std::vector<float>& e = rules.energies[k];
        const std::size_t n = e.size();
        ASSERT_EQ(static_cast<std::size_t>(r.PointCount), n);
        const bool reverse = e.front() < e.back();
        for (std::size_t i = 1; i <= n; ++i) {
            const std::size_t j = reverse ? n - i : i - 1;
            ASSERT_EQ(r.BindingEnergy[i], e[j]) << path << " block " << k << " point " << i;
            ASSERT_EQ(r.RawIntensity[i], rules.counts[k][j])
                << path << " block " << k << " point " << i;
        }
    }
}

TEST(VamasLineRules, SameResultOnTheLayoutTheyWereWrittenFor) {
    SynthBlock kinetic = Ramp(7, 1190.25, 0.25, "Kinetic Energy");
    kinetic.transition = "2p3/2";
    CompareWithLineRules(
        test::WriteScratch("l.vms", MakeVamas({Ramp(5, 290, -0.1), kinetic}, "1999")));
    for (const char* rel : {"feranick-xps/2.vms", "feranick-xps/3.vms"}) {
        const std::string path = test::RealFile(rel);
        if (path.empty()) GTEST_SKIP() << rel << " is not available";
        CompareWithLineRules(path);
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
    int variables;  // corresponding variables; the intensity is the first
    std::vector<RealBlock> blocks;
};

// Finds each block's value count (points x variables) by scanning forward for the
// line that states it, and returns the index of the first value line of each block.
std::vector<std::size_t> ValueStarts(const std::vector<std::string>& lines, const RealVamas& f) {
    auto trimmed = [](const std::string& l) {
        const std::size_t a = l.find_first_not_of(' ');
        if (a == std::string::npos) return std::string();
        return l.substr(a, l.find_last_not_of(' ') - a + 1);
    };
    std::vector<std::size_t> starts;
    std::size_t i = 0;
    for (const RealBlock& b : f.blocks) {
        const std::string count = std::to_string(b.points * f.variables);
        while (i < lines.size() && trimmed(lines[i]) != count) ++i;
        const std::size_t first = i + 1 + 2 * static_cast<std::size_t>(f.variables);
        starts.push_back(first);
        i = first + static_cast<std::size_t>(b.points * f.variables);
    }
    return starts;
}

void CheckRealVamas(const RealVamas& f) {
    const std::string path = test::RealFile(f.file);
    Project project;
    RecordingHost host;
    ASSERT_TRUE(test::ImportPath(project, host, "vamas", path).status.ok()) << f.file;
    const std::vector<std::string> lines = test::FileLines(path);
    const std::vector<std::size_t> starts = ValueStarts(lines, f);
    for (std::size_t k = 0; k < f.blocks.size(); ++k) {
        const RealBlock& b = f.blocks[k];
        const Region& r = project.Regions[k];
        const int n = std::min(b.points, 5000);
        ASSERT_EQ(r.PointCount, n) << f.file << " block " << k;
        auto fileBE = [&](int j) {
            const double x = b.start + j * b.step;
            return f.kinetic ? f.hv - x : x;
        };
        const bool reversed = fileBE(0) < fileBE(n - 1);
        for (int i : {1, 2, n / 3, n / 2, n - 1, n}) {
            const int j = reversed ? n - i : i - 1;  // 0-based index in the file
            EXPECT_NEAR(r.BindingEnergy[static_cast<std::size_t>(i)], fileBE(j), 2e-3)
                << f.file << " block " << k << " point " << i;
            const std::string& value =
                lines.at(starts[k] + static_cast<std::size_t>(j * f.variables));
            EXPECT_EQ(r.RawIntensity[static_cast<std::size_t>(i)],
                      static_cast<float>(LeadingNumber(value)))
                << f.file << " block " << k << " point " << i;
        }
    }
    EXPECT_FALSE(IsSet(project.Regions[f.blocks.size() % 10].HasData) && f.blocks.size() < 10);
}

TEST(VamasReal, EveryBlockAgainstTheFilesOwnValues) {
    // clang-format off
    const RealVamas files[] = {
        {"feranick-xps/2.vms", false, 1486.6, 1,
         {{1386.6, -0.5, 2794}, {289, -0.1, 81}, {110, -0.1, 151}, {15, -0.1, 171}, {33, -0.1, 71}, {15, -0.1, 171}}},
        {"feranick-xps/3.vms", false, 1486.6, 1,
         {{92, -0.1, 121}, {405, -0.1, 101}, {295, -0.1, 151}, {175, -0.1, 201}, {410, -0.1, 201}, {10, -0.1, 121},
          {1000, -0.5, 2001}}},
        {"lg4x/Mutlipak_vms.npl", false, 1486.6, 1,  // MultiPak export
         {{305, -0.05, 601}, {555, -0.05, 601}, {180, -0.05, 501}, {410, -0.05, 401}, {240, -0.05, 401}}},
        {"lg4x/0-150W.vms", true, 1486.69, 2,  // Kratos Supra: two variables, leading blank lines
         {{286.69, 1, 1206}, {586.69, 0.1, 601}, {941.69, 0.1, 251}, {1186.69, 0.1, 301}, {1436.69, 0.1, 251}}},
        {"matkrin-vamas/xps_eis.vms", true, 1486.7, 1,  // Omicron: kinetic, more than 5000 points
         {{1506.7, -0.1, 8201}, {1261.7, -0.05, 321}, {1097.7, -0.05, 941}, {1246.7, -0.05, 541}}},
        {"minespex/vamas.vms", false, 1486.7, 1, {{539, -0.1, 111}}},  // Scienta: experimental variable
        {"pynxtools-xps/regular.vms", true, 1486.61, 2, {{136.61, 1, 1351}}},  // Casa: two variables
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

TEST(VamasReal, IrregularListsEnergiesPointByPoint) {
    const std::string path = test::RealFile("pynxtools-xps/irregular.vms");
    const std::string regular = test::RealFile("pynxtools-xps/regular.vms");
    if (path.empty() || regular.empty()) GTEST_SKIP() << "pynxtools-xps files not available";
    Project a;
    Project b;
    RecordingHost host;
    ASSERT_TRUE(test::ImportPath(a, host, "vamas", path).status.ok());
    ASSERT_TRUE(test::ImportPath(b, host, "vamas", regular).status.ok());
    const Region& r = a.Regions[0];
    ASSERT_EQ(r.PointCount, 1351);
    // Independent scan: triples (KE, intensity, transmission) after the count line.
    const std::vector<std::string> lines = test::FileLines(path);
    std::size_t at = 0;
    while (at < lines.size() && lines[at] != "4053") ++at;
    ASSERT_LT(at, lines.size());
    const std::size_t first = at + 1 + 6;
    for (int i : {1, 2, 700, 1350, 1351}) {
        const int j = i - 1;  // kinetic energies rise in the file: binding energies fall
        const double ke = LeadingNumber(lines.at(first + static_cast<std::size_t>(3 * j)));
        EXPECT_NEAR(r.BindingEnergy[static_cast<std::size_t>(i)], 1486.61 - ke, 1e-3);
        EXPECT_EQ(r.RawIntensity[static_cast<std::size_t>(i)],
                  static_cast<float>(
                      LeadingNumber(lines.at(first + static_cast<std::size_t>(3 * j + 1)))));
    }
    EXPECT_NEAR(r.BindingEnergy[1], b.Regions[0].BindingEnergy[1], 1e-3);
    EXPECT_NEAR(r.BindingEnergy[1351], b.Regions[0].BindingEnergy[1351], 1e-3);
}

}  // namespace
}  // namespace molvera
