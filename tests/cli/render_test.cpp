// molvera-cli render run as a process: PNG and PDF files of a fitted region.

#include <filesystem>
#include <fstream>
#include <string>

#include <gtest/gtest.h>

#include "support/cli_run.h"

namespace molvera::test {
namespace {

namespace fs = std::filesystem;

class Render : public CliFolder {
protected:
    void SetUp() override {
#ifndef MOLVERA_CLI_RENDER
        GTEST_SKIP() << "molvera-cli was built without Qt, so it has no render command";
#endif
        CliFolder::SetUp();
        const std::string spectrum = DataFile("real/lg4x/C1s_sample.csv");
        ASSERT_EQ(Run("import ascii '" + spectrum + "' -o p.xps"), 0) << err;
        ASSERT_EQ(Run("background p.xps --region 1 --type shirley --low 280 --high 295 -o p.xps"),
                  0);
        ASSERT_EQ(Run("add-peak p.xps --region 1 --position 284.5 --fwhm 1.2 -o p.xps"), 0);
    }
    int Run(const std::string& args) {
        const CliRun r = Cmd(args);
        err = r.err;
        return r.code;
    }
    std::string err;
};

// Width and height from a PNG's header chunk (big-endian).
std::pair<int, int> PngSize(const std::string& png) {
    auto be32 = [&](std::size_t at) {
        int v = 0;
        for (std::size_t k = 0; k < 4; ++k) v = v * 256 + static_cast<unsigned char>(png[at + k]);
        return v;
    };
    return {be32(16), be32(20)};
}

TEST_F(Render, PngAndPdfOfARegion) {
    ASSERT_EQ(Run("render p.xps --region 1 -o plain.png"), 0) << err;
    ASSERT_EQ(Run("render p.xps --region 1 -o table.PNG --with-peaks"), 0) << err;
    ASSERT_EQ(Run("render p.xps --region 1 -o page.pdf --with-peaks"), 0) << err;
    const std::string plain = ReadBytes(dir / "plain.png");
    const std::string table = ReadBytes(dir / "table.PNG");
    ASSERT_GT(plain.size(), 24u);
    EXPECT_EQ(plain.substr(0, 8), "\x89PNG\r\n\x1a\n");
    EXPECT_EQ(PngSize(plain), std::make_pair(1200, 800));
    EXPECT_NE(plain, table);  // the peak table is drawn only on request
    EXPECT_EQ(ReadBytes(dir / "page.pdf").substr(0, 5), "%PDF-");
}

TEST_F(Render, RefusesEmptyRegionsBadNamesAndUnwritablePaths) {
    EXPECT_EQ(Run("render p.xps --region 2 -o empty.png"), 1);
    EXPECT_NE(err.find("region 2 holds no data"), std::string::npos) << err;
    EXPECT_FALSE(fs::exists(dir / "empty.png"));

    EXPECT_NE(Run("render p.xps --region 1 -o picture.bmp"), 0);
    EXPECT_FALSE(fs::exists(dir / "picture.bmp"));
    EXPECT_NE(Run("render p.xps --region 11 -o r.png"), 0);
    EXPECT_NE(Run("render p.xps --region 1"), 0);

    EXPECT_EQ(Run("render p.xps --region 1 -o missing/r.png"), 1);
    EXPECT_NE(err.find("Error in saving file"), std::string::npos) << err;
    EXPECT_EQ(Run("render p.xps --region 1 -o missing/r.pdf"), 1);
}

}  // namespace
}  // namespace molvera::test
