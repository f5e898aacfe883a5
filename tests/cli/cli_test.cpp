// molvera-cli run as a process, as scripts use it.

#include <filesystem>
#include <fstream>
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
    void SetUp() override {
        CliFolder::SetUp();
        spectrum = DataFile("real/lg4x/C1s_sample.csv");
    }
    // A region 1 with a Shirley background and three peaks.
    void BuildFit() {
        ASSERT_EQ(Cmd("import ascii '" + spectrum + "' -o p.xps").code, 0);
        ASSERT_EQ(
            Cmd("background p.xps --region 1 --type shirley --low 280 --high 295 -o p.xps").code,
            0);
        for (const char* pos : {"284.5", "286", "288.5"})
            ASSERT_EQ(Cmd(std::string("add-peak p.xps --region 1 --position ") + pos +
                          " --fwhm 1.2 -o p.xps")
                          .code,
                      0);
    }
    std::string spectrum;
};

TEST_F(Cli, ImportPrintsTheFilledRegion) {
    CliRun r = Cmd("import ascii '" + spectrum + "' --region 3 -o a.xps");
    ASSERT_EQ(r.code, 0) << r.err;
    // The file runs from 301.5 down to 266.5 eV in 351 rows after its header line.
    EXPECT_EQ(r.out, "region 3: \"\", 351 points, 301.5 .. 266.5 eV\n");
    auto j = nlohmann::json::parse(Cmd("dump a.xps").out);
    const auto& region = j["Regions"][2];
    EXPECT_EQ(region["HasData"], -1);
    EXPECT_EQ(region["PointCount"], 351);
    EXPECT_EQ(region["BindingEnergy"].size(), 352u);  // element 0 is allocated, unused
    EXPECT_FLOAT_EQ(region["BindingEnergy"][1].get<float>(), 301.5f);
    EXPECT_FLOAT_EQ(region["BindingEnergy"][351].get<float>(), 266.5f);
    EXPECT_EQ(j["CurrentRegion"], 2);
}

TEST_F(Cli, AddPeakPrintsSlotsAndEditKeepsUntouchedValuesExactly) {
    BuildFit();
    CliRun r = Cmd(
        "add-peak p.xps --region 1 --position 290.123 --fwhm 0.3 --gl 30 --fix position -o q.xps");
    ASSERT_EQ(r.code, 0) << r.err;
    EXPECT_EQ(r.out, "3\n");
    auto j = nlohmann::json::parse(Cmd("dump q.xps").out);
    const auto& peak = j["Peaks"][3];
    EXPECT_FLOAT_EQ(peak["Position"].get<float>(), 290.123f);  // not rounded to the scroll bar
    EXPECT_FLOAT_EQ(peak["FWHM"].get<float>(), 0.3f);          // not raised to 0.5
    EXPECT_EQ(peak["PercentGL"], 30);
    EXPECT_EQ(peak["FixPosition"], 1);
    ASSERT_EQ(Cmd("edit-peak q.xps --peak 3 --free position --area 500 -o r.xps").code, 0);
    auto k = nlohmann::json::parse(Cmd("dump r.xps").out);
    EXPECT_FLOAT_EQ(k["Peaks"][3]["Position"].get<float>(), 290.123f);
    EXPECT_FLOAT_EQ(k["Peaks"][3]["Area"].get<float>(), 500.0f);
    EXPECT_EQ(k["Peaks"][3]["FixPosition"], 0);
}

TEST_F(Cli, RefusalsExitNonZeroAndWriteNothing) {
    ASSERT_EQ(Cmd("import ascii '" + spectrum + "' -o a.xps").code, 0);
    // Low BE below the data: the background dialog refuses.
    CliRun r = Cmd("background a.xps --region 1 --type shirley --low 100 --high 295 -o b.xps");
    EXPECT_NE(r.code, 0);
    EXPECT_FALSE(fs::exists(dir / "b.xps"));
    // An option file check with its exact message.
    r = Cmd("options --search-trials 201 --newton-trials 5 -o x.opa");
    EXPECT_NE(r.code, 0);
    EXPECT_EQ(r.err, "No. of trials for Search method must be in the range 1-200\n");
    EXPECT_FALSE(fs::exists(dir / "x.opa"));
    // A file that is not a project: the program's message, then where and why.
    std::ofstream(dir / "junk.xps") << "not a project";
    r = Cmd("dump junk.xps");
    EXPECT_NE(r.code, 0);
    EXPECT_EQ(r.err,
              "Wrong file format\njunk.xps: no project header (\"MOLVERA 4.0\", \"MOLVERA 3.0\" or "
              "\"SF\")\n");
    // Usage errors.
    EXPECT_EQ(Cmd("frobnicate").code, 2);
    EXPECT_EQ(Cmd("dump a.xps --bogus 1").code, 2);
}

TEST_F(Cli, ConstrainRefusesSelfReference) {
    BuildFit();
    CliRun r = Cmd("constrain p.xps --peak 1 --param position --link 1 --op + --arg 1 -o q.xps");
    EXPECT_NE(r.code, 0);
    EXPECT_EQ(r.err, "Wrong Reference Peak\n");
    r = Cmd("constrain p.xps --peak 1 --param position --link 0 --op + --arg 1.5 -o q.xps");
    ASSERT_EQ(r.code, 0) << r.err;
    auto j = nlohmann::json::parse(Cmd("dump q.xps").out);
    EXPECT_EQ(j["Constraints"][1]["Position"]["Linked"], -1);
    EXPECT_EQ(j["Constraints"][0]["Position"]["IsReference"], -1);
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
}

// The .par text with the area column (the third zone) blanked.
std::string WithoutAreas(std::string par) {
    std::string out;
    std::size_t start = 0;
    while (start < par.size()) {
        std::size_t end = par.find("\r\n", start);
        std::string line = par.substr(start, end - start);
        if (line.size() > 42)
            line.replace(42, std::min<std::size_t>(14, line.size() - 42), 14, ' ');
        out += line + "\n";
        if (end == std::string::npos) break;
        start = end + 2;
    }
    return out;
}

TEST_F(Cli, RegionParametersCarryAFittedModelToAnotherSpectrum) {
    // A model fitted on one real C 1s spectrum, applied to the C 1s block of another
    // instrument's VAMAS file: same background settings and peaks, areas follow the data.
    BuildFit();
    ASSERT_EQ(Cmd("fit p.xps --region 1 -o f.xps").code, 0);
    ASSERT_EQ(Cmd("save-params f.xps --region 1 -o model.rpa").code, 0);
    ASSERT_EQ(Cmd("import vamas '" + DataFile("real/lg4x/Mutlipak_vms.npl") + "' -o v.xps").code,
              0);
    CliRun r = Cmd("apply-params v.xps --region 1 model.rpa -o w.xps");
    ASSERT_EQ(r.code, 0) << r.err;
    ASSERT_EQ(Cmd("export-peaks f.xps --region 1 -o f.par").code, 0);
    ASSERT_EQ(Cmd("export-peaks w.xps --region 1 -o w.par").code, 0);
    const std::string source = ReadBytes(dir / "f.par"), applied = ReadBytes(dir / "w.par");
    EXPECT_EQ(WithoutAreas(source), WithoutAreas(applied));
    EXPECT_NE(source, applied);  // the areas follow the other spectrum's intensities
    auto f = nlohmann::json::parse(Cmd("dump f.xps").out)["Regions"][0];
    auto w = nlohmann::json::parse(Cmd("dump w.xps").out)["Regions"][0];
    for (const char* key :
         {"HasBackground", "BackgroundType", "BackgroundLowBE", "BackgroundHighBE", "PeakCount"})
        EXPECT_EQ(f[key], w[key]) << key;
    // The envelope was rebuilt on the new data: background plus the peaks, point by point.
    const int m = w["RangeCount"];
    ASSERT_GT(m, 10);
    const auto peaks = nlohmann::json::parse(Cmd("dump w.xps").out)["Peaks"];
    double worst = 0;
    for (int j = 1; j <= m; ++j) {
        const double b = w["BackgroundCurve"][j].get<double>();
        double sum = b;
        for (int k = 0; k < w["PeakCount"].get<int>(); ++k)
            sum += peaks[w["PeakIndex"][k].get<int>()]["Curve"][j].get<double>() - b;
        worst = std::max(worst,
                         std::abs(sum - w["PeakSumCurve"][j].get<double>()) / (1 + std::abs(sum)));
    }
    EXPECT_LT(worst, 1e-5);
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
    for (float f : {0.1f, 284.57f, 1.0f / 3.0f, 3.4028235e38f, 1.0e-45f, -2.5f}) {
        nlohmann::json j = cli::FloatJson(f);
        float back = static_cast<float>(nlohmann::json::parse(j.dump()).get<double>());
        EXPECT_EQ(back, f);
    }
    EXPECT_EQ(cli::FloatJson(std::numeric_limits<float>::quiet_NaN()), "NaN");
}

}  // namespace
}  // namespace molvera::test
