#include "session/peakoptimise.h"

#include <cmath>
#include <string>

#include <gtest/gtest.h>

#include "base/numtext.h"
#include "fitting/fit_fixture.h"
#include "spectral/lineshape.h"

namespace molvera {
namespace {

struct FitHost : test::RecordingHost {
    int fitBegins = 0, fitEnds = 0;
    void FitStarted() override { ++fitBegins; }
    void FitEnded() override { ++fitEnds; }
};

// Distance of x from the nearest multiple of `step` counted from `origin`, in steps.
double OffGrid(double x, double origin, double step) {
    const double k = (x - origin) / step;
    return std::fabs(k - std::round(k));
}

// One peak (area 1000, FWHM 1.2 eV, 30 %GL) at 285.037 eV in the data; the editor is
// open on slot 0, which has the same shape but lies at 283 eV.
class PeakOptimiseTest : public ::testing::Test {
protected:
    void SetUp() override {
        ClearProject(project, QuietHost());
        test::MakeSyntheticRegion(project, 0, 400, {{285.037f, 1000, 1.2f, 30}});
        test::AddKnownPeak(project, 0, 0, {283.0f, 1000, 1.2f, 30});
        project.Options = test::TestOptions(0, 3);
        project.CurrentRegion = 0;
        project.CurrentPeak = 0;
        test::Settle(project);
        FillPeakEditor(project, form, 0);
    }
    const Peak& peak() const { return project.Peaks[0]; }
    Project project;
    PeakForm form;
    FitHost host;
};

TEST_F(PeakOptimiseTest, SearchStaysOnTheGridNewtonOnlyWhenMethodIsExactlyOne) {
    // From the stored 283 eV the peak is out of reach (+-1.1 eV): the box is read first.
    for (const float method : {0.0f, 1.0f, 2.0f}) {
        SCOPED_TRACE(method);
        const bool grid = method != 1;
        project.Options.Method = method;
        form.positionText = "284.9";
        form.areaText = "1";  // not read when only the position is optimised
        ASSERT_TRUE(OptimiseEditedParameter(project, host, form, PeakParameter::Position));
        EXPECT_NEAR(peak().Position, 285.037, grid ? 0.0051 : 0.002);
        EXPECT_EQ(OffGrid(peak().Position, 284.9, 0.01) < 1e-3, grid);
        EXPECT_EQ(form.positionText, FormatGeneral(peak().Position));
        EXPECT_EQ(peak().Area, 1000.0f);
    }
    EXPECT_EQ(std::pair(host.fitBegins, host.fitEnds), std::pair(3, 3));
    // %GL is searched even when Newton is chosen.
    project.Options.Method = 1;
    form.glText = "80";
    ASSERT_TRUE(OptimiseEditedParameter(project, host, form, PeakParameter::GL));
    EXPECT_EQ(peak().PercentGL, 30);
    EXPECT_EQ(form.glText, "30");
    // Optimise Peak reads the typed boxes, fits the whole peak and writes every box.
    form.areaText = "700";
    ASSERT_TRUE(OptimiseEditedPeak(project, host, form));
    EXPECT_GT(peak().Area, 700.0f);
    EXPECT_EQ(form.areaText + "|" + form.fwhmText,
              FormatGeneral(peak().Area) + "|" + FormatGeneral(peak().FWHM));
}

}  // namespace
}  // namespace molvera
