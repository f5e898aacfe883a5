// batch and merge: one model over a series of spectra, whatever the number of workers or
// shards, with the values a single apply-params and fit give.

#include "cli/batch.h"

#include <sys/wait.h>

#include <cstdlib>
#include <filesystem>
#include <set>
#include <string>

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include "fileio/optionfile.h"
#include "support/files.h"

namespace molvera::test {
namespace {

namespace fs = std::filesystem;

class Batch : public ::testing::Test {
protected:
    void SetUp() override {
        fs::copy_file(fs::path(MOLVERA_SOURCE_DIR) / "default.opa", dir / "default.opa");
        // A C 1s model: Shirley background and three peaks over the real spectrum.
        Cmd("import ascii '" + spectrum + "' -o p.xps");
        Cmd("background p.xps --region 1 --type shirley --low 280 --high 295 -o p.xps");
        for (const std::string pos : {"284.5", "286", "288.5"})
            Cmd("add-peak p.xps --region 1 --position " + pos + " --fwhm 1.2 -o p.xps");
        ASSERT_EQ(Cmd("save-params p.xps --region 1 -o m.rpa"), 0);
        WriteBytes(dir / "bad.vms", "not a VAMAS file\n");
        // A real five-block file: a survey, O 1s, C 1s and two other lines.
        files = {spectrum, (dir / "bad.vms").string(), DataFile("real/lg4x/0-150W.vms")};
    }
    int Cmd(const std::string& args) const {
        const std::string cmd = "cd '" + dir.string() + "' && '" + MOLVERA_CLI_PATH + "' " + args;
        return WEXITSTATUS(std::system((cmd + " > out.txt 2> err.txt").c_str()));
    }
    std::string Rows(const std::vector<int>& indices, int jobs) const {
        FitOptions options;
        EXPECT_TRUE(ReadOptionFile(options, (dir / "default.opa").string()));
        return cli::FitSeriesRows(cli::ReadSeries(files, nullptr), indices,
                                  ReadBytes(dir / "m.rpa"), options, jobs);
    }
    const fs::path dir = ScratchDir();
    const std::string spectrum = DataFile("real/lg4x/C1s_sample.csv");
    std::vector<std::string> files;
};

TEST_F(Batch, WorkersAndShardsGiveTheSameBytesAndABadFileOnlyItsRow) {
    const std::string one = Rows({0, 1, 2, 3, 4, 5, 6}, 1);
    EXPECT_EQ(Rows({0, 1, 2, 3, 4, 5, 6}, 2), one);
    std::string merged;
    ASSERT_TRUE(cli::MergeResults(
        {cli::BatchHeader() + Rows({1, 4}, 2), cli::BatchHeader() + Rows({0, 3, 6}, 1),
         cli::BatchHeader() + Rows({2, 5}, 1)},
        merged));
    EXPECT_EQ(merged, cli::BatchHeader() + one);
    EXPECT_FALSE(cli::MergeResults({merged, merged}, merged));  // a spectrum twice

    // The bad file is spectrum 1, one row with its reason; the five blocks follow, each
    // with its experimental variable (the block index the instrument wrote); the survey
    // (block 1) and the C 1s block (4) are fitted, the others refused for the model's range.
    std::set<std::string> fitted, refused;
    std::size_t start = 0;
    for (std::size_t end; (end = one.find('\n', start)) != std::string::npos; start = end + 1) {
        const auto f = CsvFields(one.substr(start, end - start));
        ASSERT_EQ(f.size(), 16u);
        (f[15].empty() ? fitted : refused).insert(f[0] + "/" + f[2] + "/" + f[3]);
    }
    EXPECT_EQ(fitted, (std::set<std::string>{"0/1/", "2/1/1", "5/4/4"}));
    EXPECT_EQ(refused, (std::set<std::string>{"1/0/", "3/2/2", "4/3/3", "6/5/5"}));
}

// A row holds the values and sigmas that apply-params and fit give on that spectrum.
TEST_F(Batch, RowEqualsApplyParamsAndFit) {
    ASSERT_EQ(Cmd("batch --model p.xps --region 1 '" + spectrum + "' --jobs 2 --plots s -o r.csv"),
              0);
#ifdef MOLVERA_CLI_RENDER
    for (const std::string name : {"position", "fwhm", "area", "gl", "chi_square"})
        EXPECT_EQ(ReadBytes(dir / ("s-" + name + ".png")).substr(1, 3), "PNG") << name;
#endif
    ASSERT_EQ(Cmd("import ascii '" + spectrum + "' -o q.xps"), 0);
    ASSERT_EQ(Cmd("apply-params q.xps --region 1 m.rpa -o q.xps"), 0);
    ASSERT_EQ(Cmd("fit q.xps --region 1 --json -o q.xps"), 0);
    const auto fit = nlohmann::json::parse(ReadBytes(dir / "out.txt"));
    const std::vector<std::string> lines = FileLines((dir / "r.csv").string());
    ASSERT_EQ(lines.size(), 4u);
    EXPECT_EQ(lines[0] + "\n", cli::BatchHeader());
    for (std::size_t k = 0; k < 3; ++k) {
        const auto f = CsvFields(lines[k + 1]);
        const auto& p = fit["peaks"][k];
        EXPECT_EQ(std::stoi(f[4]), p["slot"]);
        int column = 6;
        for (const char* name : {"position", "fwhm", "area", "gl"}) {
            EXPECT_EQ(std::stof(f[column]), p[name]["value"].get<float>()) << name;
            if (p[name]["sigma"].is_null())
                EXPECT_EQ(f[column + 1], "") << name;
            else
                EXPECT_EQ(std::stod(f[column + 1]), p[name]["sigma"].get<double>()) << name;
            column += 2;
        }
        EXPECT_EQ(std::stof(f[14]), fit["chi_square"].get<float>());
    }
}

}  // namespace
}  // namespace molvera::test
