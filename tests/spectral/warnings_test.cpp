#include "spectral/warnings.h"

#include <cmath>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "spectral/background.h"
#include "spectral/region_builder.h"
#include "support/recording_host.h"

namespace molvera {
namespace {

// Five points 294 .. 290 eV, 1 eV apart, under a flat background: the net area is the plain
// sum of data minus background. The texts are worked out by hand.
TEST(RegionWarnings, PeaksOutsideTheDataAndBackgroundsAboveIt) {
    const std::string outside = " lies outside the data (290.0 .. 294.0 eV)";
    const struct {
        std::vector<float> y;
        float level, peak, shift;
        std::vector<std::string> expected;
    } cases[] = {
        {{10, 20, 50, 20, 10}, 10, 292, 0, {}},
        {{10, 20, 50, 20, 10}, 10, 512, 0, {"peak 0 at 512.0 eV" + outside}},
        {{10, 20, 50, 20, 10}, 10, 293.5, 1, {"peak 0 at 294.5 eV" + outside}},  // drawn shifted
        // A dip: net area 0 - 20 - 40 - 20 + 0.
        {{100, 80, 60, 80, 100},
         100,
         292,
         0,
         {"the background runs above the data (net area -80, up to 40 above it at 292.0 eV)"}},
        // Net area 35, but 5 above the data is more than a tenth of its range of 45 ...
        {{10, 50, 10, 5, 10},
         10,
         292,
         0,
         {"the background runs above the data (net area 35, up to 5 above it at 291.0 eV)"}},
        {{10, 50, 10, 8, 10}, 10, 292, 0, {}},  // ... and 2 is not.
    };
    for (const auto& c : cases) {
        Project p;
        Region& r =
            test::WholeRange(p, 0, {294, 293, 292, 291, 290}, c.y, std::vector<float>(5, c.level));
        UpdateDataExtents(r);
        r.Shift = c.shift;
        test::AddTestPeak(p, 0, c.peak, 10, 1, 0);
        EXPECT_EQ(RegionWarnings(p, 0), c.expected) << c.peak << " " << c.y[3];
    }
    EXPECT_TRUE(RegionWarnings(Project{}, 0).empty());  // no data
}

// A survey: flat at low binding energy, a strong line at 285 eV and the secondary electrons
// rising steeply towards 1000 eV. The Shirley climbs with the line's area and runs far above
// the flat part, with a negative net area.
TEST(RegionWarnings, ShirleyOverASurveyRunsAboveTheData) {
    Project p;
    std::vector<float> be = test::FallingEnergies(1001, 1000, 1), y;
    for (float e : be)
        y.push_back(static_cast<float>(100 + 5000 * std::exp((e - 1000) / 30) +
                                       20000 * std::exp(-std::pow((e - 285) / 1.5, 2))));
    Region& r = test::MakeRegion(p, 0, be, y);
    UpdateDataExtents(r);
    std::tie(r.BackgroundLowBE, r.BackgroundHighBE, r.EndPointAverage) = std::tuple(0.f, 1000.f, 1);
    RecomputeRegion(p, QuietHost());
    r.HasBackground = kTrue;
    const std::vector<std::string> found = RegionWarnings(p, 0);
    ASSERT_EQ(found.size(), 1u);
    EXPECT_TRUE(found[0].starts_with("the background runs above the data (net area -"));
}

}  // namespace
}  // namespace molvera
