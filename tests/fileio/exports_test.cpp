// The text exports: columns and zones counted by hand.

#include "fileio/exports.h"

#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "model/project.h"

namespace molvera {
namespace {

// A line whose items start at columns 1, 20, 40, 60, ... (the .dat layout), ended by CR LF.
std::string Columns(const std::vector<std::string>& items) {
    std::string line;
    for (std::size_t k = 0; k < items.size(); ++k) {
        if (k > 0) line.resize(k == 1 ? 19 : 20 * k - 1, ' ');
        line += items[k];
    }
    return line + "\r\n";
}

// Fourteen blanks, then items in zones of 14 characters (the .par layout), ended by CR LF.
std::string Zones(const std::vector<std::string>& items) {
    std::string line;
    for (const std::string& item : items) line += std::string(14 - line.size() % 14, ' ') + item;
    return line + "\r\n";
}

// Five points 5..1 eV; range points 2..4; peaks in slots 3 and 7, listed 7 first.
class ExportsTest : public ::testing::Test {
protected:
    void SetUp() override {
        project.CurrentRegion = 2;
        // clang-format off
        project.Regions[2] = {.HasData = kTrue, .Caption = {}, .PointCount = 5, .BindingEnergy = {0, 5, 4, 3, 2, 1},
                              .RawIntensity = {0, 10, 20, 30, 40, 50}, .HasBackground = kTrue, .PeakCount = 2,
                              .PeakIndex = {7, 3}, .RangeStart = 2, .RangeEnd = 4, .RangeCount = 3, .RangeBE = {},
                              .RangeIntensity = {}, .BackgroundWork = {}, .BackgroundCurve = {0, 1.5f, 2.5f, 3.5f},
                              .PeakSumCurve = {0, 30, 31, 32}, .Residual = {0, -0.25f, 1, 2}};
        project.Peaks[7] = {.InUse = kTrue, .Label = {}, .Position = 1234.5678f, .Area = 1500.25f, .FWHM = 1.2f,
                            .PercentGL = 80, .Region = 2, .Curve = {0, 21, 22, 23}};
        project.Peaks[3] = {.InUse = kTrue, .Label = {}, .Position = -3.25f, .Area = 0.0626f, .FWHM = 0.3f,
                            .PercentGL = 30, .Region = 2, .Curve = {0, 11, 12, 13}};
        // clang-format on
    }
    Project project;
    const std::string parHeader = Zones({"Peak", "Position (eV)", "Area", "FWHM (eV)", "%GL (%)"});
};

TEST_F(ExportsTest, SpectrumColumnsCountedByHand) {
    // Points 1 and 5 lie outside the range: two columns only. Points 2..4 are range
    // points 1..3; the first peak column is slot 7 (PeakIndex order).
    EXPECT_EQ(SpectrumExportText(project),
              Columns({"B.E.(eV)", "Raw Intensity", "Peak Sum", "Background", "Peak 1 ", "Peak 2 ",
                       "difference"}) +
                  Columns({" 5 ", " 10 "}) +
                  Columns({" 4 ", " 20 ", " 30 ", " 1.5 ", " 21 ", " 11 ", "-0.25 "}) +
                  Columns({" 3 ", " 30 ", " 31 ", " 2.5 ", " 22 ", " 12 ", " 1 "}) +
                  Columns({" 2 ", " 40 ", " 32 ", " 3.5 ", " 23 ", " 13 ", " 2 "}) +
                  Columns({" 1 ", " 50 "}));
}

TEST_F(ExportsTest, RegionWithoutPeaksHasTwoColumnsEvenWithBackground) {
    project.Current().PeakCount = 0;
    const std::string text = SpectrumExportText(project);
    EXPECT_EQ(text.substr(0, text.find('\n') + 1), Columns({"B.E.(eV)", "Raw Intensity"}));
    EXPECT_NE(text.find(Columns({" 3 ", " 30 "})), std::string::npos);
    EXPECT_EQ(PeakParameterExportText(project), parHeader);
}

TEST_F(ExportsTest, PeakParameterZonesAndPatterns) {
    project.Current().Shift = 10;  // positions are written without the shift
    // The slot is a column value (" 7 "), the rest "0.000" patterns and %GL as "#0".
    EXPECT_EQ(PeakParameterExportText(project),
              parHeader + Zones({" 7 ", "1234.568", "1500.250", "1.200", "80"}) +
                  Zones({" 3 ", "-3.250", "0.063", "0.300", "30"}));
}

}  // namespace
}  // namespace molvera
