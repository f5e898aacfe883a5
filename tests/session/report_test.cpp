// report: the CSV and JSON read back to the project's values and the fitting engine's
// uncertainties; the HTML page holds a picture and the peak table of each region.

#include "session/report.h"

#include <sys/wait.h>

#include <charconv>
#include <cstdlib>
#include <filesystem>
#include <sstream>
#include <tuple>

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include "fileio/projectfile.h"
#include "fitting/uncertainty.h"
#include "model/project.h"
#include "session/peaktable.h"
#include "support/files.h"
#include "support/recording_host.h"

namespace molvera::test {
namespace {

namespace fs = std::filesystem;

double Number(const std::string& text) {
    double d = std::nan("");
    std::from_chars(text.data(), text.data() + text.size(), d);
    return d;
}

class Report : public ::testing::Test {
protected:
    void SetUp() override {
        fs::copy_file(fs::path(MOLVERA_SOURCE_DIR) / "default.opa", dir / "default.opa");
        // Two C 1s regions; region 1 with three peaks, the FWHM of peak 1 following peak 0
        // and %GL fixed (default.opa), fitted.
        const std::string spectrum = DataFile("real/lg4x/C1s_sample.csv");
        Cmd("import ascii '" + spectrum + "' -o p.xps");
        Cmd("import ascii '" + spectrum + "' --into p.xps --region 2 -o p.xps");
        Cmd("background p.xps --region 1 --type shirley --low 280 --high 295 -o p.xps");
        for (const std::string pos : {"284.5", "286", "288.5"})
            Cmd("add-peak p.xps --region 1 --position " + pos + " --fwhm 1.2 -o p.xps");
        Cmd("constrain p.xps --peak 1 --param fwhm --link 0 --op '*' --arg 1 -o p.xps");
        ASSERT_EQ(Cmd("fit p.xps --region 1 -o p.xps"), 0);
        ASSERT_TRUE(LoadProject(project, host, (dir / "p.xps").string()));
    }
    int Cmd(const std::string& args) const {
        const std::string cmd = "cd '" + dir.string() + "' && '" + MOLVERA_CLI_PATH + "' " + args;
        return WEXITSTATUS(std::system((cmd + " > out.txt 2> err.txt").c_str()));
    }
    const fs::path dir = ScratchDir();
    Project project;
    RecordingHost host;
};

TEST_F(Report, CsvAndJsonHoldTheProjectValuesAndSigmasOnlyWhereAFitDeterminesThem) {
    const Uncertainties u = ComputeUncertainties(project, {0});
    ASSERT_EQ(Cmd("report p.xps -o r.csv"), 0);
    ASSERT_EQ(Cmd("report p.xps --region 1 -o r.json"), 0);
    const std::vector<std::string> lines = FileLines((dir / "r.csv").string());
    const auto json = nlohmann::json::parse(ReadBytes(dir / "r.json"));
    const auto& peaks = json["regions"][0]["peaks"];
    ASSERT_EQ(lines.size(), 4u);
    ASSERT_EQ(peaks.size(), 3u);
    const std::vector<std::string> header = CsvFields(lines[0]);
    for (std::size_t k = 0; k < 3; ++k) {
        const std::vector<std::string> f = CsvFields(lines[k + 1]);
        ASSERT_EQ(f.size(), header.size());
        auto at = [&](const std::string& name) {
            return f[static_cast<std::size_t>(std::find(header.begin(), header.end(), name) -
                                              header.begin())];
        };
        const int slot = std::stoi(at("peak"));
        const Peak& peak = project.Peaks[static_cast<std::size_t>(slot)];
        EXPECT_EQ(at("region"), "1");
        EXPECT_EQ(static_cast<float>(Number(at("position"))), peak.Position);
        EXPECT_EQ(static_cast<float>(Number(at("fwhm"))), peak.FWHM);
        EXPECT_EQ(static_cast<float>(Number(at("area"))), peak.Area);
        EXPECT_EQ(static_cast<float>(peaks[k]["area"].get<double>()), peak.Area);
        EXPECT_EQ(std::stoi(at("gl")), peak.PercentGL);
        const auto& s = u.peaks[static_cast<std::size_t>(slot)].parameters;
        EXPECT_EQ(Number(at("position_sigma")), s[0].value);
        EXPECT_EQ(peaks[k]["position_sigma"].get<double>(), s[0].value);
        EXPECT_EQ(Number(at("area_sigma")), s[1].value);
        // %GL is fixed, the FWHM of peak 1 follows peak 0: no sigma, a mark.
        EXPECT_EQ(at("gl_sigma"), "");
        EXPECT_TRUE(peaks[k]["gl_sigma"].is_null());
        EXPECT_EQ(at("gl_mark"), "fixed");
        EXPECT_EQ(at("fwhm_sigma").empty(), slot == 1) << slot;
        EXPECT_EQ(at("fwhm_mark").empty(), slot != 1) << slot;
        EXPECT_EQ(at("rsf"), "");
    }
    EXPECT_EQ(json["regions"][0]["reduced_chi_square"].get<double>(), u.reducedChiSquare);
    EXPECT_EQ(json["regions"][0]["chi_square"].get<float>(), project.Regions[0].ChiSquare);
    EXPECT_EQ(json["regions"][0]["background"]["type"], "Shirley");
    EXPECT_EQ(json["source"], "p.xps");
    EXPECT_FALSE(json["version"].get<std::string>().empty());
}

#ifdef MOLVERA_CLI_RENDER
TEST_F(Report, HtmlHoldsAPicturePerRegionAndThePeakTable) {
    ASSERT_EQ(Cmd("report p.xps -o r.html"), 0);
    const std::string html = ReadBytes(dir / "r.html");
    std::size_t images = 0;
    for (std::size_t at = 0;
         (at = html.find("data:image/png;base64,iVBOR", at)) != std::string::npos; ++at)
        ++images;
    EXPECT_EQ(images, 2u);
    for (const PeakTableRow& row : PeakTableRows(project, 0))
        for (int c : {kPositionColumn, kAreaColumn, kAreaSigmaColumn})
            EXPECT_NE(html.find(">" + row.cells[static_cast<std::size_t>(c)] + "<"),
                      std::string::npos)
                << row.cells[static_cast<std::size_t>(c)];
    // Refusals: a region without data, an unknown extension, both --region and --all.
    EXPECT_EQ(Cmd("report p.xps --region 3 -o r.csv"), 1);
    EXPECT_EQ(Cmd("report p.xps -o r.txt"), 1);
    EXPECT_EQ(Cmd("report p.xps --region 1 --all -o r.csv"), 1);
}
#endif

// E_kin^-1 in all (both exponents -0.5): C 1s (computed RSF 1) at 1000 eV kinetic, areas 2
// and 1, gives 2000 + 1000; O 1s at 500 eV, area 4, RSF 2 typed, 1000. So C 1s 75 %, O 1s
// 25 %; no label or an unknown one: no share (0 here, an empty field in the CSV).
TEST(ReportQuant, ColumnsAreQuantifysAndMatchAHandCalculation) {
    const std::tuple<const char*, float, float, const char*, double, double> cases[] = {
        {"C 1s", 1000, 2, "1", 2000, 50},
        {"C 1s", 1000, 1, "1", 1000, 25},
        {"O 1s", 1500, 4, "2", 1000, 25},
        {"", 1000, 1, "", 0, 0},
        {"Xx 1s", 1000, 1, "", 0, 0}};
    Project project;
    project.Quant = {2000, -0.5f, -0.5f, {0, 0, 2}};
    project.Regions[0].HasData = kTrue;
    project.Regions[0].PeakCount = 5;
    for (Int16 k = 0; k < 5; ++k) {
        project.Regions[0].PeakIndex[static_cast<std::size_t>(k)] = k;
        Peak& p = project.Peaks[static_cast<std::size_t>(k)];
        const auto& [label, position, area, rsf, normalised, percent] = cases[k];
        std::tie(p.InUse, p.Label, p.Position, p.Area) =
            std::tuple(kTrue, Text20::From(label), position, area);
    }
    const QuantTable quant = Quantify(project);
    std::istringstream csv(ReportCsv(project, {0}));
    std::string line;
    std::getline(csv, line);  // the header; the quantification columns are the last three
    for (std::size_t k = 0; k < 5 && std::getline(csv, line); ++k) {
        const auto& [label, position, area, rsf, normalised, percent] = cases[k];
        const std::vector<std::string> f = CsvFields(line);
        const std::size_t n = f.size();
        EXPECT_EQ(f[n - 3], rsf) << k;
        EXPECT_EQ(f[n - 2].empty() ? 0.0 : Number(f[n - 2]), quant.peaks[k].normalisedArea);
        EXPECT_NEAR(quant.peaks[k].normalisedArea, normalised, 1e-9 * normalised) << k;
        EXPECT_EQ(f[n - 1].empty(), percent == 0) << k;
        EXPECT_NEAR(f[n - 1].empty() ? 0.0 : Number(f[n - 1]), percent, 1e-9) << k;
    }
    const auto json = nlohmann::json::parse(ReportJson(project, {0}, "q.xps"));
    EXPECT_NEAR(json["quantification"]["elements"][1]["at_percent"].get<double>(), 25, 1e-9);
    EXPECT_NE(ReportHtml(project, {0}, "q.xps", {}).find("<td class=\"n\">75.00</td>"),
              std::string::npos);
}

}  // namespace
}  // namespace molvera::test
