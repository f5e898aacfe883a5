// report: the CSV and JSON read back to the project's values and the fitting engine's
// uncertainties; the HTML page holds a picture and the peak table of each region.

#include "session/report.h"

#include <sys/wait.h>

#include <charconv>
#include <cstdlib>
#include <filesystem>
#include <sstream>

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

// Four peaks with E_kin^-1 in all (both exponents -0.5): C 1s (computed RSF, 1) twice at
// 1000 eV kinetic, areas 2 and 1, gives 2000 + 1000; O 1s at 500 eV, area 4, RSF 2 typed,
// 1000. So C 1s 75 %, O 1s 25 %; a peak without a label or with an unknown one has no share.
TEST(ReportQuant, ColumnsAreQuantifysAndMatchTheHandCalculation) {
    const double none = std::nan("");
    const struct {
        const char* label;
        float position, area;
        double rsf, normalised, percent;
    } cases[] = {{"C 1s", 1000, 2, 1, 2000, 50},
                 {"C 1s", 1000, 1, 1, 1000, 25},
                 {"O 1s", 1500, 4, 2, 1000, 25},
                 {"", 1000, 1, none, none, none},
                 {"Xx 1s", 1000, 1, none, none, none}};
    Project project;
    project.Quant = {2000, -0.5f, -0.5f, {0, 0, 2}};
    Region& region = project.Regions[0];
    region.HasData = kTrue;
    for (Int16 k = 0; k < 5; ++k) {
        region.PeakIndex[static_cast<std::size_t>(k)] = k;
        Peak& p = project.Peaks[static_cast<std::size_t>(k)];
        p.InUse = kTrue;
        p.Label = Text20::From(cases[k].label);
        p.Position = cases[k].position;
        p.Area = cases[k].area;
    }
    region.PeakCount = 5;
    const QuantTable quant = Quantify(project);
    std::istringstream csv(ReportCsv(project, {0}));
    std::string line;
    std::getline(csv, line);
    const std::vector<std::string> names = CsvFields(line);
    auto column = [&](const std::string& name) {
        return static_cast<std::size_t>(std::find(names.begin(), names.end(), name) -
                                        names.begin());
    };
    for (std::size_t k = 0; k < 5; ++k) {
        ASSERT_TRUE(std::getline(csv, line));
        const std::vector<std::string> f = CsvFields(line);
        const double expected[] = {cases[k].rsf, cases[k].normalised, cases[k].percent};
        const char* columns[] = {"rsf", "normalised_area", "at_percent"};
        for (std::size_t c = 0; c < 3; ++c) {
            const std::string& text = f[column(columns[c])];
            SCOPED_TRACE(std::to_string(k) + " " + columns[c] + " '" + text + "'");
            if (std::isnan(expected[c])) {
                EXPECT_EQ(text, "");
                continue;
            }
            EXPECT_NEAR(Number(text), expected[c], 1e-9 * expected[c]);
        }
        if (quant.peaks[k].counted) {
            EXPECT_EQ(Number(f[column("normalised_area")]), quant.peaks[k].normalisedArea);
        }
    }
    const auto json = nlohmann::json::parse(ReportJson(project, {0}, "q.xps"));
    const auto& elements = json["quantification"]["elements"];
    ASSERT_EQ(elements.size(), 2u);
    EXPECT_EQ(elements[1]["label"], "O 1s");
    EXPECT_NEAR(elements[1]["at_percent"].get<double>(), 25, 1e-9);
    const std::string html = ReportHtml(project, {0}, "q.xps", {});
    EXPECT_NE(html.find("<td class=\"n\">75.00</td>"), std::string::npos);
}

}  // namespace
}  // namespace molvera::test
