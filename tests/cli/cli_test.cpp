// molvera-cli run as a process, as scripts use it: what it prints, its refusals (exit
// code, message, nothing written) and the files it writes.

#include <cstdio>
#include <filesystem>
#include <limits>
#include <string>

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include "cli/jsondump.h"
#include "support/cli_run.h"

namespace molvera::test {
namespace {

namespace fs = std::filesystem;

class Cli : public CliFolder {
protected:
    // p.xps: region 1 holds the real C 1s spectrum with a Shirley background and three peaks.
    void BuildFit() {
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
    std::string spectrum = DataFile("real/lg4x/C1s_sample.csv");
};

TEST_F(Cli, ImportPrintsTheFilledRegionAndDumpListsArraysFromElementZero) {
    CliRun r = Cmd("import ascii '" + spectrum + "' --region 3 -o a.xps");
    ASSERT_EQ(r.code, 0) << r.err;
    // The file runs from 301.5 down to 266.5 eV in 351 rows after its header line.
    EXPECT_EQ(r.out, "region 3: \"\", 351 points, 301.5 .. 266.5 eV\n");
    const auto j = Dump("a.xps");
    EXPECT_EQ(j["Regions"][2]["BindingEnergy"].size(), 352u);  // element 0 is allocated, unused
    EXPECT_EQ(j["Regions"][2]["BindingEnergy"][351], 266.5);
    EXPECT_EQ(j["CurrentRegion"], 2);
}

TEST_F(Cli, EditsChangeWhatTheyNameAndKeepUntouchedValuesExactly) {
    BuildFit();
    CliRun r = Cmd(
        "add-peak p.xps --region 1 --position 290.123 --fwhm 0.3 --gl 30 --fix position -o q.xps");
    ASSERT_EQ(r.code, 0) << r.err;
    EXPECT_EQ(r.out, "3\n");
    auto peak = Dump("q.xps")["Peaks"][3];
    EXPECT_FLOAT_EQ(peak["Position"].get<float>(), 290.123f);  // not rounded to the scroll bar
    EXPECT_FLOAT_EQ(peak["FWHM"].get<float>(), 0.3f);          // not raised to 0.5
    EXPECT_EQ(peak["PercentGL"], 30);
    EXPECT_EQ(peak["FixPosition"], 1);
    ASSERT_EQ(Cmd("edit-peak q.xps --peak 3 --free position --area 500 -o r.xps").code, 0);
    ASSERT_EQ(Cmd("constrain r.xps --peak 1 --param fwhm --link 0 --op + --arg 1.5 -o r.xps").code,
              0);
    const auto j = Dump("r.xps");
    EXPECT_FLOAT_EQ(j["Peaks"][3]["Position"].get<float>(), 290.123f);
    EXPECT_FLOAT_EQ(j["Peaks"][3]["Area"].get<float>(), 500.0f);
    EXPECT_EQ(j["Peaks"][3]["FixPosition"], 0);
    EXPECT_EQ(j["Constraints"][1]["FWHM"]["Linked"], -1);
    EXPECT_EQ(j["Constraints"][0]["FWHM"]["IsReference"], -1);
}

TEST_F(Cli, RefusalsExitNonZeroAndWriteNothing) {
    BuildFit();
    // Low BE below the data: the background dialog refuses.
    CliRun r = Cmd("background p.xps --region 1 --type shirley --low 100 --high 295 -o b.xps");
    EXPECT_NE(r.code, 0);
    EXPECT_NE(r.err.find("(266.5 .. 301.5 eV)"), std::string::npos) << r.err;  // the data's
    EXPECT_FALSE(fs::exists(dir / "b.xps"));
    r = Cmd("constrain p.xps --peak 1 --param position --link 1 --op + --arg 1 -o b.xps");
    EXPECT_NE(r.code, 0);
    EXPECT_EQ(r.err, "Wrong Reference Peak\n");
    EXPECT_FALSE(fs::exists(dir / "b.xps"));
    r = Cmd("options --search-trials 201 --newton-trials 5 -o x.opa");
    EXPECT_NE(r.code, 0);
    EXPECT_EQ(r.err, "No. of trials for Search method must be in the range 1-200\n");
    EXPECT_FALSE(fs::exists(dir / "x.opa"));
    // A file that is not a project: the program's message, then where and why.
    WriteBytes(dir / "junk.xps", "not a project");
    r = Cmd("dump junk.xps");
    EXPECT_NE(r.code, 0);
    EXPECT_EQ(r.err,
              "Wrong file format\njunk.xps: no project header (\"MOLVERA 4.0\", \"MOLVERA 3.0\" or "
              "\"SF\")\n");
    // Usage errors.
    EXPECT_EQ(Cmd("frobnicate").code, 2);
    EXPECT_EQ(Cmd("dump p.xps --bogus 1").code, 2);
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
        {"search-trials", opt + "--search-trials @", "20"},
        {"newton-trials", opt + "--newton-trials @", "5"},
        {"tolerance", opt + "--tolerance @", "0.1"},
        {"pos-search", opt + "--pos-search 1:@:0.1", "2"},
        {"area-search", opt + "--area-search 1:@:5", "20"},
        {"fwhm-search", opt + "--fwhm-search 1:@:0.1", "1"},
        {"pos-newton", opt + "--pos-newton 1:@", "0.01"},
        {"area-newton", opt + "--area-newton 1:@", "1"},
        {"fwhm-newton", opt + "--fwhm-newton 1:@", "0.01"},
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
    EXPECT_EQ(Cmd("dump f.xps").out, Cmd("dump g.xps").out);
    ASSERT_EQ(Cmd("export-spectrum f.xps --region 1 -o f.dat").code, 0);
    ASSERT_EQ(Cmd("export-spectrum g.xps --region 1 -o g.dat").code, 0);
    EXPECT_EQ(ReadBytes(dir / "f.dat"), ReadBytes(dir / "g.dat"));
}

// A model fitted on one real C 1s spectrum, applied to the C 1s block of another
// instrument's VAMAS file: the same peaks, their areas following the other data.
TEST_F(Cli, RegionParametersCarryAFittedModelToAnotherSpectrum) {
    BuildFit();
    ASSERT_EQ(Cmd("save-params p.xps --region 1 -o model.rpa").code, 0);
    ASSERT_EQ(Cmd("import vamas '" + DataFile("real/lg4x/Mutlipak_vms.npl") + "' -o v.xps").code,
              0);
    CliRun r = Cmd("apply-params v.xps --region 1 model.rpa -o w.xps");
    ASSERT_EQ(r.code, 0) << r.err;
    const auto p = Dump("p.xps")["Peaks"], w = Dump("w.xps")["Peaks"];
    for (int k = 0; k < 3; ++k) {
        EXPECT_EQ(p[k]["Position"], w[k]["Position"]) << k;
        EXPECT_NE(p[k]["Area"], w[k]["Area"]) << k;
    }
}

TEST_F(Cli, OptionsWriteWhatTheDialogStores) {
    CliRun r =
        Cmd("options --method newton --search-trials 2.5 --newton-trials 7 --tolerance 0.01 "
            "--pos-newton 2:0.05 --gl-sum -o o.opa");
    ASSERT_EQ(r.code, 0) << r.err;
    EXPECT_EQ(fs::file_size(dir / "o.opa"), 206u);
    auto j = nlohmann::json::parse(Cmd("dump-options o.opa").out);
    EXPECT_EQ(j["Method"], 1.0);
    EXPECT_EQ(j["SearchTrials"], 2);  // 2.5 rounds half to even
    EXPECT_FLOAT_EQ(j["Tolerance"].get<float>(), 0.0001f);
    EXPECT_FLOAT_EQ(j["PositionNewton"][1]["Delta"].get<float>(), 0.05f);
    EXPECT_EQ(j["GLSum"], -1);
}

TEST(JsonFloat, ReadsBackToTheSameSingle) {
    for (float f : {0.1f, 284.57f, 1.0f / 3.0f, 3.4028235e38f, 1.0e-45f, -2.5f})
        EXPECT_EQ(static_cast<float>(nlohmann::json::parse(cli::FloatJson(f).dump()).get<double>()),
                  f);
    EXPECT_EQ(cli::FloatJson(std::numeric_limits<float>::quiet_NaN()), "NaN");
}

// Width and height from a PNG's header chunk (big-endian).
std::pair<int, int> PngSize(const std::string& png) {
    auto be32 = [&](std::size_t at) {
        int v = 0;
        for (std::size_t k = 0; k < 4; ++k) v = v * 256 + static_cast<unsigned char>(png[at + k]);
        return v;
    };
    return {be32(16), be32(20)};
}

TEST_F(Cli, RenderWritesPngAndPdfAndRefusesWhatItCannotDraw) {
#ifndef MOLVERA_CLI_RENDER
    GTEST_SKIP() << "molvera-cli was built without Qt, so it has no render command";
#endif
    BuildFit();
    ASSERT_EQ(Cmd("render p.xps --region 1 -o plain.png").code, 0);
    ASSERT_EQ(Cmd("render p.xps --region 1 -o table.PNG --with-peaks").code, 0);
    ASSERT_EQ(Cmd("render p.xps --region 1 -o page.pdf --with-peaks").code, 0);
    const std::string plain = ReadBytes(dir / "plain.png");
    ASSERT_GT(plain.size(), 24u);
    EXPECT_EQ(plain.substr(0, 8), "\x89PNG\r\n\x1a\n");
    EXPECT_EQ(PngSize(plain), std::make_pair(1200, 800));
    EXPECT_NE(plain, ReadBytes(dir / "table.PNG"));  // the peak table is drawn only on request
    EXPECT_EQ(ReadBytes(dir / "page.pdf").substr(0, 5), "%PDF-");

    CliRun r = Cmd("render p.xps --region 2 -o empty.png");
    EXPECT_EQ(r.code, 1);
    EXPECT_NE(r.err.find("region 2 holds no data"), std::string::npos) << r.err;
    EXPECT_NE(Cmd("render p.xps --region 1 -o picture.bmp").code, 0);
    EXPECT_NE(Cmd("render p.xps --region 11 -o r.png").code, 0);
    EXPECT_NE(Cmd("render p.xps --region 1").code, 0);
    EXPECT_FALSE(fs::exists(dir / "empty.png") || fs::exists(dir / "picture.bmp"));
    r = Cmd("render p.xps --region 1 -o missing/r.png");
    EXPECT_EQ(r.code, 1);
    EXPECT_NE(r.err.find("Error in saving file"), std::string::npos) << r.err;
    EXPECT_EQ(Cmd("render p.xps --region 1 -o missing/r.pdf").code, 1);
}

}  // namespace
}  // namespace molvera::test
