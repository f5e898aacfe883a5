// Kratos text export: the data, the fit block (background and components), refusals.

#include "fileio/kratos.h"

#include <cmath>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "base/messages.h"
#include "support/files.h"

namespace molvera {
namespace {

class Kratos : public test::ImportTest {
protected:
    ImportResult Import(std::string_view text) {
        return test::ImportText(project, host, "kratos", text);
    }
};

// Binding energies 290 .. 280 in steps of 1 (hv 1486.6 minus rising kinetic energies).
const int kCounts[] = {50, 52, 60, 80, 120, 100, 70, 55, 45, 42, 40};

struct FitBlock {
    std::vector<std::string> shapes;
    std::string background = "Linear";
    std::string low = "281";
    std::string high = "289";
    int declared = -1;  // component count written; -1: the number of shapes
};

std::string KratosFile(const FitBlock* fit, const std::string& comment = "Test sample",
                       bool risingKinetic = true) {
    std::string t =
        "Dataset:\tsample.des\r\nObject name:\tC 1s\r\n# ord = 11\r\nComment = " + comment +
        "\r\nExcitation energy = 1486.6\r\n";
    if (fit) {
        t += "Regions\r\nRegion number = 3\r\nName = C 1s fit\r\nx = 0\r\nLow = " + fit->low +
             "\r\nHigh = " + fit->high + "\r\nx = 0\r\nx = 0\r\nBackground = " + fit->background +
             "\r\nx = 0\r\nx = 0\r\nx = 0\r\n";
        const int n = fit->declared >= 0 ? fit->declared : static_cast<int>(fit->shapes.size());
        t += "Components = " + std::to_string(n) + "\r\nList =\r\n";
        for (std::size_t c = 0; c < fit->shapes.size(); ++c) {
            // f1 the name, f2 the shape, f13 the position, f19 the height (%), f25 the FWHM.
            std::vector<std::string> f(27, "0");
            f[0] = "C" + std::to_string(c);
            f[1] = fit->shapes[c];
            f[12] = std::to_string(283 + 2 * static_cast<int>(c));
            f[18] = "50";
            f[24] = "1.5";
            for (std::size_t v = 0; v < 27; ++v)
                t += "f" + std::to_string(v + 1) + " = " + f[v] + "\r\n";
        }
    }
    t += "Energy (Counts)\r\n";
    for (int i = 0; i < 11; ++i)
        t += "  " + std::to_string(risingKinetic ? 1196 + i : 1206 - i) + ".6 " +
             std::to_string(kCounts[i]) + "\r\n";
    return t;
}

TEST_F(Kratos, DataOnlyWithoutRegions) {
    ASSERT_TRUE(Import(KratosFile(nullptr)).status.ok());
    const Region& r = project.Regions[0];
    ASSERT_EQ(r.PointCount, 11);
    for (std::size_t i = 1; i <= 11; ++i) {
        EXPECT_NEAR(r.BindingEnergy[i], 291.0 - static_cast<double>(i), 1e-3);
        EXPECT_EQ(r.RawIntensity[i], kCounts[i - 1]);
    }
    EXPECT_EQ(project.Description, "Test sample");  // the description box was empty
    EXPECT_EQ(host.regionWindowShows, 2);           // by the region deletion and at the end

    // Falling kinetic energies keep the file's order (rising binding energies);
    // a description already there stays.
    ASSERT_TRUE(Import(KratosFile(nullptr, "other", false)).status.ok());
    EXPECT_TRUE(std::fabs(r.BindingEnergy[1] - 280) < 1e-3 && project.Description == "Test sample");
    FitBlock none;  // a fit without components sets no background
    ASSERT_TRUE(Import(KratosFile(&none)).status.ok());
    EXPECT_TRUE(!IsSet(r.HasBackground) && r.Caption.Str() == "C 1s fit            ");
}

TEST_F(Kratos, FitWithLinearBackgroundAndThreeShapes) {
    project.CurrentRegion = 2;
    project.Peaks[1] = {
        .InUse = kTrue, .Label = {}, .Region = 5, .Curve = {}};  // another region's: skipped
    const FitBlock fit{{"Gau/Lor mix", "Lorentzian", "GL(30)"}, "Linear", "289", "281"};  // swapped
    ASSERT_TRUE(Import(KratosFile(&fit)).status.ok());
    const Region& r = project.Regions[2];
    EXPECT_TRUE(IsSet(r.HasBackground) && r.BackgroundType == BackgroundKind::Linear);
    EXPECT_TRUE(r.BackgroundLowBE == 281 && r.BackgroundHighBE == 289);
    EXPECT_TRUE(r.PeakCount == 3 && project.TotalPeakCount == 3);
    const int slots[] = {0, 2, 3}, gl[] = {0, 100, 30};
    for (std::size_t k = 0; k < 3; ++k) {
        const Peak& p = project.Peaks[static_cast<std::size_t>(slots[k])];
        EXPECT_TRUE(r.PeakIndex[k] == slots[k] && p.PercentGL == gl[k]);
        EXPECT_EQ(p.Label.Str().substr(0, 3), "C" + std::to_string(k) + " ");
        EXPECT_TRUE(p.Position == 283.0f + 2.0f * static_cast<float>(k) && p.FWHM == 1.5f);
        EXPECT_EQ(host.PeakButton(20 + static_cast<int>(k)).caption, std::to_string(slots[k]));
    }
    // Range: BE 289 is point 2, BE 281 point 10, nine points.
    EXPECT_TRUE(r.RangeStart == 2 && r.RangeEnd == 10 && r.RangeCount == 9);
    // Linear background from 52 down to 42, net maximum 120 - 48.25 at point 4 of the range.
    for (int k = 1; k <= 9; ++k)
        EXPECT_NEAR(r.BackgroundCurve[static_cast<std::size_t>(k)], 52 - 1.25 * (k - 1), 1e-4) << k;
    // A Gaussian (0 % Lorentzian) at 50 % of that: 35.875 counts high and 1.5 eV wide, so
    // its area is h w sqrt(pi / (4 ln 2)).
    EXPECT_NEAR(project.Peaks[0].Area, 35.875 * 1.5 * 1.0644670, 1e-4 * 57.3);
}

TEST_F(Kratos, RefusedFilesLeaveTheProjectAsItWas) {
    FitBlock good{{"Gau", "Lo"}, "SHIRLEY"};
    ASSERT_TRUE(Import(KratosFile(&good)).status.ok());
    const Region& r = project.Regions[0];  // a Shirley background meets both ends
    EXPECT_EQ(r.BackgroundType, BackgroundKind::Shirley);
    EXPECT_NEAR(r.BackgroundCurve[1], 52, 1e-3);
    EXPECT_NEAR(r.BackgroundCurve[9], 42, 1e-3);
    EXPECT_GT(std::fabs(r.BackgroundCurve[5] - 47), 0.1);  // not the straight line
    FitBlock eleven;
    eleven.shapes.assign(11, "Gau");
    FitBlock shortFit{{"Gau"}};
    shortFit.declared = 2;  // the second component block is missing
    const std::string full = KratosFile(nullptr);
    std::vector<std::string> bad = {"", KratosFile(&eleven), KratosFile(&shortFit),
                                    full.substr(0, full.size() - 20),  // ends inside the data
                                    std::string(full).replace(full.find("= 11"), 4, "= 6000")};
    for (const std::string keyword : {"Dataset:", "Object name:", "# ord", "energy", "(Counts)"})
        bad.push_back(std::string(full).replace(full.find(keyword), keyword.size(), "xx"));
    // Longer than the buffer: the limit is on the file, which is refused unread.
    const auto big = test::ScratchDir() / "big.des";
    test::WriteBytes(big, full + std::string(513024, ' '));
    for (std::size_t i = 0; i <= bad.size(); ++i) {
        SCOPED_TRACE(i);
        const Project before = project;
        const ImportResult result = i < bad.size()
                                        ? Import(bad[i])
                                        : test::ImportPath(project, host, "kratos", big.string());
        EXPECT_EQ(test::MessageTexts(result.Messages()),
                  std::vector<std::string>{msg::kErrorReadingFile});
        EXPECT_TRUE(!result.status.detail().empty() && project.Regions == before.Regions &&
                    project.Peaks == before.Peaks);
    }
    EXPECT_EQ(test::ImportPath(project, host, "kratos", big.string()).status.detail(),
              "big.des: larger than the 513024 bytes it may have");
}

TEST_F(Kratos, NoFreePeakSlotRefuses) {
    for (int s = 0; s < kPeakSlots - 1; ++s) {
        project.Peaks[static_cast<std::size_t>(s)].InUse = kTrue;
        project.Peaks[static_cast<std::size_t>(s)].Region = 9;
    }
    FitBlock fit{{"Gau", "Gau"}};
    EXPECT_EQ(Import(KratosFile(&fit)).status.message(), msg::kErrorReadingFile);
    EXPECT_FALSE(IsSet(project.Regions[0].HasData));
    fit.shapes = {"Gau"};
    ASSERT_TRUE(Import(KratosFile(&fit)).status.ok());
    EXPECT_EQ(project.Regions[0].PeakIndex[0], 50);
}

}  // namespace
}  // namespace molvera
