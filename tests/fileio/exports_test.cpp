#include "fileio/exports.h"

#include <string>

#include <gtest/gtest.h>

#include "model/project.h"

namespace molvera {
namespace {

std::string Spaces(int n) { return std::string(static_cast<std::size_t>(n), ' '); }

// Five points 5..1 eV; range points 2..4; peaks in slots 3 and 7.
class ExportsTest : public ::testing::Test {
protected:
    void SetUp() override {
        project.CurrentRegion = 2;
        Region& r = project.Regions[2];
        r.HasData = kTrue;
        ResizeRegionArrays(r, 5);
        r.PointCount = 5;
        for (int i = 1; i <= 5; ++i) {
            r.BindingEnergy[i] = static_cast<float>(6 - i);
            r.RawIntensity[i] = static_cast<float>(10 * i);
        }
        r.HasBackground = kTrue;
        r.RangeStart = 2;
        r.RangeEnd = 4;
        r.RangeCount = 3;
        r.PeakSumCurve = {0, 30, 31, 32, 0, 0};
        r.BackgroundCurve = {0, 1.5f, 2.5f, 3.5f, 0, 0};
        r.Residual = {0, -0.25f, 1, 2, 0, 0};
        r.PeakCount = 2;
        r.PeakIndex[0] = 7;
        r.PeakIndex[1] = 3;
        Peak& a = project.Peaks[7];
        a.InUse = kTrue;
        a.Region = 2;
        a.Curve = {0, 21, 22, 23};
        a.Position = 1234.5678f;
        a.Area = 1500.25f;
        a.FWHM = 1.2f;
        a.PercentGL = 80;
        Peak& b = project.Peaks[3];
        b.InUse = kTrue;
        b.Region = 2;
        b.Curve = {0, 11, 12, 13};
        b.Position = -3.25f;
        b.Area = 0.0626f;
        b.FWHM = 0.3f;
        b.PercentGL = 30;
    }
    Project project;
};

TEST_F(ExportsTest, SpectrumColumnsCountedByHand) {
    const std::string twoCols = "\r\n";
    std::string expected;
    expected += "B.E.(eV)" + Spaces(11) + "Raw Intensity" + Spaces(7) + "Peak Sum" + Spaces(12) +
                "Background" + Spaces(10) + "Peak 1 " + Spaces(13) + "Peak 2 " + Spaces(13) +
                "difference\r\n";
    // Point 1 lies before the range: two columns only.
    expected += " 5 " + Spaces(16) + " 10 \r\n";
    // Points 2..4 are range points 1..3; the first peak column is slot 7 (PeakIndex order).
    expected += " 4 " + Spaces(16) + " 20 " + Spaces(16) + " 30 " + Spaces(16) + " 1.5 " +
                Spaces(15) + " 21 " + Spaces(16) + " 11 " + Spaces(16) + "-0.25 \r\n";
    expected += " 3 " + Spaces(16) + " 30 " + Spaces(16) + " 31 " + Spaces(16) + " 2.5 " +
                Spaces(15) + " 22 " + Spaces(16) + " 12 " + Spaces(16) + " 1 \r\n";
    expected += " 2 " + Spaces(16) + " 40 " + Spaces(16) + " 32 " + Spaces(16) + " 3.5 " +
                Spaces(15) + " 23 " + Spaces(16) + " 13 " + Spaces(16) + " 2 \r\n";
    expected += " 1 " + Spaces(16) + " 50 \r\n";
    EXPECT_EQ(SpectrumExportText(project), expected);
}

TEST_F(ExportsTest, RegionWithoutPeaksHasTwoColumnsEvenWithBackground) {
    project.Current().PeakCount = 0;
    const std::string text = SpectrumExportText(project);
    EXPECT_EQ(text.substr(0, text.find('\n') + 1), "B.E.(eV)" + Spaces(11) + "Raw Intensity\r\n");
    EXPECT_NE(text.find(" 3 " + Spaces(16) + " 30 \r\n"), std::string::npos);
    EXPECT_EQ(text.find("1.5"), std::string::npos);

    const std::string par = PeakParameterExportText(project);
    EXPECT_EQ(par, Spaces(14) + "Peak" + Spaces(10) + "Position (eV)" + " " + "Area" + Spaces(10) +
                       "FWHM (eV)" + Spaces(5) + "%GL (%)\r\n");
}

TEST_F(ExportsTest, PeakParameterZonesAndPatterns) {
    project.Current().Shift = 10;  // positions are written without the shift
    std::string expected = Spaces(14) + "Peak" + Spaces(10) + "Position (eV)" + " " + "Area" +
                           Spaces(10) + "FWHM (eV)" + Spaces(5) + "%GL (%)\r\n";
    // Zones start at 15, 29, 43, 57, 71; the slot is a column value " 7 ".
    expected += Spaces(14) + " 7 " + Spaces(11) + "1234.568" + Spaces(6) + "1500.250" + Spaces(6) +
                "1.200" + Spaces(9) + "80\r\n";
    expected += Spaces(14) + " 3 " + Spaces(11) + "-3.250" + Spaces(8) + "0.063" + Spaces(9) +
                "0.300" + Spaces(9) + "30\r\n";
    EXPECT_EQ(PeakParameterExportText(project), expected);
}

// A damaged project: what its arrays do not hold is written as 0, never read past their end.
TEST_F(ExportsTest, DamagedArraysGiveZeros) {
    Region& r = project.Current();
    r.PointCount = 6;      // one point more than the arrays hold
    r.Residual.resize(2);  // shorter than the range
    r.PeakIndex[1] = 77;   // not a slot
    const std::string text = SpectrumExportText(project);
    EXPECT_NE(text.find(" 2 " + Spaces(16) + " 40 " + Spaces(16) + " 32 " + Spaces(16) + " 3.5 " +
                        Spaces(15) + " 23 " + Spaces(16) + " 0 " + Spaces(17) + " 0 \r\n"),
              std::string::npos);
    const std::string last = " 0 " + Spaces(16) + " 0 \r\n";
    EXPECT_EQ(text.substr(text.size() - last.size()), last);
}

}  // namespace
}  // namespace molvera
