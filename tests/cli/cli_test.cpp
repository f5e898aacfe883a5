// molvera-cli run as a process, as scripts use it: what it prints, its refusals (exit
// code, message, nothing written) and the files it writes.

#include <sys/wait.h>

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <limits>
#include <sstream>
#include <string>
#include <tuple>
#include <utility>

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include "base/version.h"
#include "session/jsondump.h"
#include "support/files.h"

namespace molvera::test {
namespace {

namespace fs = std::filesystem;

struct CliRun {
    int code;
    std::string out, err;
};

// A scratch folder holding the shipped default.opa, where molvera-cli runs.
class Cli : public ::testing::Test {
protected:
    void SetUp() override {
        fs::copy_file(fs::path(MOLVERA_SOURCE_DIR) / "default.opa", dir / "default.opa");
    }
    // Runs molvera-cli in the folder with `args` (already shell-quoted).
    CliRun Cmd(const std::string& args) const {
        const std::string cmd = "cd '" + dir.string() + "' && '" + MOLVERA_CLI_PATH + "' " + args;
        const int status = std::system((cmd + " > out.txt 2> err.txt").c_str());
        return {WEXITSTATUS(status), ReadBytes(dir / "out.txt"), ReadBytes(dir / "err.txt")};
    }
    // p.xps: region 1 holds the real C 1s spectrum with a Shirley background and three peaks.
    void BuildFit() {
        // The file runs from 301.5 down to 266.5 eV in 351 rows after its header line; the
        // dump lists arrays from element 0, allocated and unused.
        ASSERT_EQ(Cmd("import ascii '" + spectrum + "' --region 3 -o a.xps").out,
                  "region 3: \"\", 351 points, 301.5 .. 266.5 eV\n");
        const auto j = Dump("a.xps");
        ASSERT_TRUE(j["Regions"][2]["BindingEnergy"].size() == 352u && j["CurrentRegion"] == 2);
        ASSERT_EQ(Cmd("import ascii '" + spectrum + "' -o p.xps").code, 0);
        ASSERT_EQ(
            Cmd("background p.xps --region 1 --type shirley --low 280 --high 295 -o p.xps").code,
            0);
        for (const std::string pos : {"284.5", "286", "288.5"})
            ASSERT_EQ(
                Cmd("add-peak p.xps --region 1 --position " + pos + " --fwhm 1.2 -o p.xps").code,
                0);
    }
    nlohmann::json Dump(const std::string& file) const {
        return nlohmann::json::parse(Cmd("dump " + file).out);
    }
    const fs::path dir = ScratchDir();
    const std::string spectrum = DataFile("real/lg4x/C1s_sample.csv");
};

// The values typed are the exact ones given (not rounded to the scroll bar, a FWHM below
// 0.5 kept); what is not named stays.
TEST_F(Cli, EditsChangeWhatTheyNameAndKeepUntouchedValuesExactly) {
    BuildFit();
    CliRun r = Cmd(
        "add-peak p.xps --region 1 --position 290.123 --fwhm 0.3 --gl 30 --fix position -o q.xps");
    EXPECT_EQ(r.out, "3\n") << r.err;
    EXPECT_EQ(Dump("q.xps")["Peaks"][3]["FixPosition"], 1);
    ASSERT_EQ(Cmd("edit-peak q.xps --peak 3 --free position --area 500 -o r.xps").code, 0);
    r = Cmd("edit-peak r.xps --peak 3 --position 512 -o s.xps");  // kept, with a warning
    EXPECT_EQ(std::tuple(r.code, r.err), std::tuple(0,
                                                    "warning: region 1: peak 3 at 512.0 eV lies "
                                                    "outside the data (266.5 .. 301.5 eV)\n"));
    ASSERT_EQ(Cmd("constrain r.xps --peak 1 --param fwhm --link 0 --op + --arg 1.5 -o r.xps").code,
              0);
    const auto j = Dump("r.xps");
    const auto& k = j["Peaks"][3];
    EXPECT_EQ(
        std::tuple(k["Position"].get<float>(), k["FWHM"].get<float>(), k["Area"].get<float>()),
        std::tuple(290.123f, 0.3f, 500.0f));
    EXPECT_TRUE(k["FixPosition"] == 0 && k["PercentGL"] == 30);
    EXPECT_EQ(j["Constraints"][1]["FWHM"]["Linked"], -1);
}

// Refused (1) or misused (2): the message on stderr and no file written.
TEST_F(Cli, RefusalsExitNonZeroAndWriteNothing) {
    BuildFit();
    WriteBytes(dir / "junk.xps", "not a project");
    const std::tuple<const char*, int, const char*> cases[] = {
        // Low BE below the data: the message gives the data's own range.
        {"background p.xps --region 1 --type shirley --low 100 --high 295 -o o.xps", 1,
         "(266.5 .. 301.5 eV)"},
        {"dump junk.xps", 1,
         "Wrong file format\njunk.xps: no project header (\"MOLVERA 4.0\", \"MOLVERA 3.0\" or "
         "\"SF\")\n"},
        {"frobnicate", 2, ""},
        {"edit-peak p.xps --peak 0 --label 'abcdefghijklmnopqrstu' -o o.xps", 1, "longer than 20"},
        {"edit-peak p.xps --peak 0 --label 'C \u2603' -o o.xps", 1, "outside Latin-1"},
        {"edit-peak p.xps --peak 0 --rsf 0 -o o.xps", 1, "--rsf: '0' is not above 0"},
        {"quantify p.xps --source 0 -o o.xps", 1, "--source is al, mg or a photon energy"},
        {"quantify p.xps --imfp-exponent 6 -o o.xps", 1, "lie within -5 .. 5"},
        {"save p.xps --bogus 1 -o o.xps", 2, "unknown option --bogus\nusage: molvera-cli save"},
        {"save p.xps o.xps", 2, "expected 1 file argument(s)"},
        {"fit p.xps --all -o", 2, "option -o needs a value"},
    };
    for (const auto& [args, code, err] : cases) {
        const CliRun r = Cmd(args);
        EXPECT_EQ(r.code, code) << args;
        EXPECT_NE(r.err.find(err), std::string::npos) << r.err;
        EXPECT_FALSE(fs::exists(dir / "o.xps")) << args;
    }
}

TEST_F(Cli, EveryNumericOptionRefusesWhatIsNotANumberAndWritesNothing) {
    BuildFit();
    struct Row {
        const char* option;
        std::string command;  // "@" is the value
        const char* good;
    };
    const std::string bg = "background p.xps --type shirley --region 1 --low 280 --high 295 ";
    const std::string peak = "edit-peak p.xps --peak 0 ";
    const std::string tie = "constrain p.xps --peak 1 --param position ";
    const std::string opt = "options --from default.opa ";
    const Row rows[] = {
        {"region", "background p.xps --type shirley --low 280 --high 295 --region @", "1"},
        {"low", bg + "--low @", "281"},
        {"high", bg + "--high @", "294"},
        {"average", bg + "--average @", "3"},
        {"param", bg + "--param @", "0"},
        {"peak", "edit-peak p.xps --peak @", "0"},
        {"position", peak + "--position @", "284.6"},
        {"fwhm", peak + "--fwhm @", "1.3"},
        {"area", peak + "--area @", "5000"},
        {"height", peak + "--height @", "50"},
        {"gl", peak + "--gl @", "50"},
        {"splitting", peak + "--splitting @", "1"},
        {"ts", peak + "--ts @", "0.5"},
        {"tl", peak + "--tl @", "10"},
        {"link", tie + "--op + --arg 1 --link @", "0"},
        {"arg", tie + "--link 0 --op + --arg @", "1"},
        {"limits", tie + "--limits 280:@", "290"},
        {"rsf", peak + "--rsf @", "2.5"},
        {"source", "quantify p.xps --source @", "1253.6"},
        {"transmission-exponent", "quantify p.xps --transmission-exponent @", "-1"},
        {"imfp-exponent", "quantify p.xps --imfp-exponent @", "0.8"},
        {"search-trials", opt + "--search-trials @", "20"},
        {"newton-trials", opt + "--newton-trials @", "5"},
        {"tolerance", opt + "--tolerance @", "0.1"},
        {"pos-search", opt + "--pos-search 1:@:0.1", "2"},
        {"area-search", opt + "--area-search 1:@:5", "20"},
        {"fwhm-search", opt + "--fwhm-search 1:@:0.1", "1"},
        {"pos-newton", opt + "--pos-newton 1:@", "0.01"},
        {"area-newton", opt + "--area-newton 1:@", "1"},
        {"fwhm-newton", opt + "--fwhm-newton 1:@", "0.01"},
        {"jobs", "batch --model p.xps --region 1 '" + spectrum + "' --jobs @", "1"},
    };
    for (const Row& row : rows) {
        for (const char* value : {row.good, "abc", "1e999", "nan", ""}) {
            SCOPED_TRACE(std::string(row.option) + " '" + value + "'");
            std::string command = row.command;
            command.replace(command.find('@'), 1, std::string("'") + value + "'");
            const CliRun r = Cmd(command + " -o out.bin");
            if (value == row.good) {
                EXPECT_EQ(r.code, 0) << r.err;
                fs::remove(dir / "out.bin");
                continue;
            }
            EXPECT_NE(r.code, 0);
            EXPECT_NE(r.err.find(std::string("--") + row.option + ": '"), std::string::npos)
                << r.err;
            EXPECT_FALSE(fs::exists(dir / "out.bin"));
        }
    }
}

// Labels and RSFs given to edit-peak reach quantify's table; the settings saved with -o
// stay with the project; --rsf auto gives back the computed RSF (1 for C 1s).
TEST_F(Cli, LabelsAndRsfsReachTheQuantificationTableAndStayWithTheProject) {
    BuildFit();
    const std::string latin =
        "Fe 2p3/2 \u00e9\u00e9\u00e9\u00e9\u00e9\u00e9\u00e9\u00e9\u00e9\u00e9\u00e9";
    ASSERT_EQ(Cmd("edit-peak p.xps --peak 0 --label 'C 1s' --rsf 2 -o q.xps").code, 0);
    ASSERT_EQ(Cmd("edit-peak q.xps --peak 1 --label '" + latin + "' --rsf 4 -o q.xps").code, 0);
    const CliRun r =
        Cmd("quantify q.xps --transmission-exponent 0 --imfp-exponent 0 --suggest -o r.xps");
    ASSERT_EQ(r.code, 0) << r.err;
    const auto peaks = Dump("q.xps")["Peaks"];
    const double a0 = peaks[0]["Area"].get<float>(), a1 = peaks[1]["Area"].get<float>();
    auto csv = [](const std::string& text) {
        std::vector<std::vector<std::string>> rows;
        std::istringstream lines(text);
        for (std::string line; std::getline(lines, line);) rows.push_back(CsvFields(line));
        return rows;
    };
    const auto rows = csv(r.out);
    ASSERT_EQ(rows.size(), 8u) << r.out;  // 2 headers, 3 peaks, a blank line, 2 labels
    EXPECT_EQ(std::tuple(rows[1][2], rows[2][2], rows[1][5], rows[2][5], rows[3][5], rows[3][6]),
              std::tuple("C 1s", latin, "2", "4", "", ""));
    EXPECT_DOUBLE_EQ(std::stod(rows[1][6]), a0 / 2);
    EXPECT_NE(rows[3][7].find("C 1s"), std::string::npos);  // 288.5 eV, 4.7 eV above C 1s
    EXPECT_EQ(rows[6][0], "C 1s");
    EXPECT_NEAR(std::stod(rows[6][2]), 100 * (a0 / 2) / (a0 / 2 + a1 / 4), 1e-9);
    EXPECT_EQ(Cmd("quantify r.xps --suggest").out, r.out);  // the exponents went into r.xps
    ASSERT_EQ(Cmd("edit-peak r.xps --peak 0 --rsf auto -o r.xps").code, 0);
    EXPECT_EQ(csv(Cmd("quantify r.xps").out)[1][5], "1");
}

TEST_F(Cli, FitLowersChiSquareAndSaveDumpReloadChangesNothing) {
    BuildFit();
    CliRun fit = Cmd("fit p.xps --region 1 -o f.xps");
    ASSERT_EQ(fit.code, 0) << fit.err;
    float before = 0, after = 0;
    ASSERT_EQ(
        std::sscanf(fit.out.c_str(), "chi-square before %f\nchi-square after %f", &before, &after),
        2)
        << fit.out;
    EXPECT_LT(after, before / 10);
    ASSERT_EQ(Cmd("save f.xps -o g.xps").code, 0);
    EXPECT_EQ(ReadBytes(dir / "f.xps"), ReadBytes(dir / "g.xps"));
    ASSERT_EQ(Cmd("export-spectrum f.xps --region 1 -o f.dat").code, 0);
    EXPECT_EQ(ReadBytes(dir / "f.dat").rfind("B.E.(eV)", 0), 0u);
}

// The option flags reach their fields (the checks and conversions are the dialog's, tested there).
TEST_F(Cli, OptionsWriteWhatTheDialogStores) {
    const CliRun r =
        Cmd("options --method newton --search-trials 2.5 --newton-trials 7 "
            "--tolerance 0.01 --pos-newton 2:0.05 --gl-sum -o o.opa");
    ASSERT_EQ(r.code, 0) << r.err;
    const auto j = nlohmann::json::parse(Cmd("dump-options o.opa").out);
    EXPECT_TRUE(j["Method"] == 1.0 && j["SearchTrials"] == 2 && j["GLSum"] == -1);  // 2.5 to even
    EXPECT_EQ(j["PositionNewton"][1]["Delta"].get<float>(), 0.05f);
}

// Every command the overview lists with its usage has a help whose options include
// every option of the usage; the version is the build's.
TEST_F(Cli, EveryCommandHasAHelpNamingItsOptions) {
    EXPECT_EQ(Cmd("--version").out, "molvera-cli " + std::string(ProgramVersion()) + "\n");
    const std::string overview = Cmd("--help").out;
    std::string words;  // the overview with its line breaks and indents as single blanks
    std::istringstream in(overview);
    for (std::string word; in >> word;) words += " " + word;
    std::size_t commands = 0;
    std::istringstream lines(overview.substr(overview.find("\nCommands:\n") + 11));
    for (std::string line; std::getline(lines, line) && !line.empty();) {
        if (line[2] == ' ') continue;
        const std::string command = line.substr(2, line.find(' ', 2) - 2);
        const CliRun r = Cmd(command + " --help");
        const std::string usage = r.out.substr(7, r.out.find('\n') - 7);
        ++commands;
        EXPECT_EQ(r.code, 0) << command;
        EXPECT_EQ(r.out.rfind("usage: molvera-cli " + command + " ", 0), 0u) << r.out;
        EXPECT_NE(words.find(" " + usage + " "), std::string::npos) << usage;
        for (std::size_t dash = usage.find(" -"); dash != std::string::npos;
             dash = usage.find(" -", dash + 1)) {
            const std::string name =
                usage.substr(dash + 1, usage.find_first_of(" ]|)", dash + 1) - dash - 1);
            EXPECT_NE(r.out.find("\n  " + name + " "), std::string::npos) << command << name;
        }
    }
    EXPECT_GE(commands, 18u) << overview;
}

// The script the build writes, sourced in bash: what it offers for the word under the cursor.
TEST_F(Cli, CompletionOffersCommandsOptionsChoicesAndFilesByExtension) {
    fs::create_directory(dir / "sub");
    for (const char* name : {"a.xps", "b.rpa", "c.opa"}) WriteBytes(dir / name, "");
    const std::pair<const char*, const char*> cases[] = {
        {"ba", "background batch"},
        {"fit p.xps --re", "--region"},
        {"background p.xps --type t", "tougaard"},
        {"constrain p.xps --op ", "* + - /"},
        {"apply-params --region 1 a.xps ", "b.rpa sub"},  // the second file is a .rpa
        {"fit p.xps --options ", "c.opa default.opa sub"},
        {"fit --json ", "a.xps sub"},  // a flag takes no value
    };
    for (const auto& [line, offered] : cases) {
        const std::string script =
            "source '" MOLVERA_CLI_COMPLETION "'; COMP_WORDS=(molvera-cli " + std::string(line) +
            (std::string(line).ends_with(' ') ? "''" : "") +
            "); COMP_CWORD=$((${#COMP_WORDS[@]} - 1)); _molvera_cli; "
            "printf '%s\\n' \"${COMPREPLY[@]}\" | LC_ALL=C sort | paste -sd ' '";
        WriteBytes(dir / "complete.sh", script);
        const int status =
            std::system(("cd '" + dir.string() + "' && bash complete.sh > out.txt").c_str());
        EXPECT_EQ(WEXITSTATUS(status), 0);
        EXPECT_EQ(ReadBytes(dir / "out.txt"), std::string(offered) + "\n") << line;
    }
}

TEST(JsonFloat, ReadsBackToTheSameSingle) {
    for (float f : {0.1f, 284.57f, 1.0f / 3.0f, 3.4028235e38f, 1.0e-45f, -2.5f})
        EXPECT_EQ(static_cast<float>(nlohmann::json::parse(FloatJson(f).dump()).get<double>()), f);
    EXPECT_EQ(FloatJson(std::numeric_limits<float>::quiet_NaN()), "NaN");
}

// The picture's pixels and the PDF are the printout's (tested there); here PNG and refusals.
TEST_F(Cli, RenderWritesPngPdfAndSvgAndRefusesWhatItCannotDraw) {
#ifndef MOLVERA_CLI_RENDER
    GTEST_SKIP() << "molvera-cli was built without Qt, so it has no render command";
#endif
    BuildFit();
    ASSERT_EQ(Cmd("render p.xps --region 1 -o plain.png").code, 0);
    ASSERT_EQ(Cmd("render p.xps --region 1 -o table.PNG --with-peaks").code, 0);
    const std::string plain = ReadBytes(dir / "plain.png");
    EXPECT_EQ(plain.substr(0, 8), "\x89PNG\r\n\x1a\n");
    EXPECT_EQ(plain.substr(16, 8), std::string("\0\0\x04\xb0\0\0\x03\x20", 8));  // 1200 x 800
    EXPECT_NE(plain, ReadBytes(dir / "table.PNG"));  // the peak table is drawn only on request
    ASSERT_EQ(Cmd("render p.xps --region 1 -o figure.svg").code, 0);
    const std::string svg = ReadBytes(dir / "figure.svg");  // text as text, not as a picture
    EXPECT_TRUE(svg.find("<svg") != std::string::npos &&
                svg.find("Binding Energy (eV)") != std::string::npos);
    const CliRun r = Cmd("render p.xps --region 2 -o empty.png");
    EXPECT_TRUE(r.code == 1 && r.err.find("region 2 holds no data") != std::string::npos) << r.err;
    EXPECT_NE(Cmd("render p.xps --region 1 -o missing/r.png").err.find("Error in saving file"),
              std::string::npos);
    EXPECT_NE(Cmd("render p.xps --region 1 -o picture.bmp").code, 0);
    EXPECT_FALSE(fs::exists(dir / "empty.png") || fs::exists(dir / "picture.bmp"));
}

}  // namespace
}  // namespace molvera::test
