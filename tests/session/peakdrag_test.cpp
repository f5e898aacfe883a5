// Dragging a peak's apex and the background's ends: the drawn curve follows the pointer.
#include "session/peakdrag.h"

#include <algorithm>
#include <memory>

#include <gtest/gtest.h>

#include "fileio/projectfile.h"
#include "support/recording_host.h"

namespace molvera {
namespace {

class PeakDrag : public ::testing::Test {
protected:
    void SetUp() override {
        ASSERT_TRUE(LoadProject(
            *project, host,
            std::string(MOLVERA_SOURCE_DIR) + "/fuzz/corpus/project/c1s_three_peaks.xps"));
        slot = project->Current().PeakIndex[0];
    }
    // The highest point of the peak's drawn curve (background included).
    PlotPoint CurveTop() const {
        const Region& r = project->Current();
        const auto& curve = project->Peaks[static_cast<std::size_t>(slot)].Curve;
        const auto top = std::max_element(curve.begin() + 1, curve.begin() + r.RangeCount + 1);
        return {r.RangeBE[static_cast<std::size_t>(top - curve.begin())], *top};
    }
    std::unique_ptr<Project> project = std::make_unique<Project>();
    test::RecordingHost host;
    int slot = 0;
};

TEST_F(PeakDrag, TheApexGoesWhereThePointerIsUnlessHeld) {
    const PlotPoint apex = *PeakApex(*project, slot);
    const PlotPoint top = CurveTop();  // the apex is the drawn curve's top, to a grid step
    EXPECT_NEAR(apex.be, top.be, 0.1);
    EXPECT_NEAR(apex.i, top.i, 0.01 * top.i);

    const PlotPoint to{apex.be - 0.6, apex.i + 500};
    ASSERT_TRUE(DragPeakApex(*project, host, slot, to));
    EXPECT_NEAR(CurveTop().be, to.be, 0.1);
    EXPECT_NEAR(CurveTop().i, to.i, 0.01 * to.i);

    Peak& peak = project->Peaks[static_cast<std::size_t>(slot)];
    peak.FixPosition = 1;  // a fixed position stays; the height still follows
    const float position = peak.Position;
    ASSERT_TRUE(DragPeakApex(*project, host, slot, {to.be + 1, to.i - 200}));
    EXPECT_EQ(peak.Position, position);
    EXPECT_NEAR(PeakApex(*project, slot)->i, to.i - 200, 1.0);

    const std::string before = ProjectFileBytes(*project);  // below the background: refused
    EXPECT_FALSE(DragPeakApex(*project, host, slot, {to.be, 0}));
    EXPECT_FALSE(DragPeakApex(*project, host, 50, to));
    EXPECT_TRUE(ProjectFileBytes(*project) == before);
}

TEST_F(PeakDrag, BackgroundEndsMoveInsideTheDataAndNeverCross) {
    Region& r = project->Current();
    const float high = r.BackgroundHighBE;
    ASSERT_TRUE(DragBackgroundEnd(*project, host, true, r.BackgroundLowBE + 1.0));
    EXPECT_LT(r.RangeBE[static_cast<std::size_t>(r.RangeCount)], high);
    ASSERT_TRUE(DragBackgroundEnd(*project, host, false, r.MaxBE + 50));  // kept in the data
    EXPECT_EQ(r.BackgroundHighBE, r.MaxBE);
    const std::string before = ProjectFileBytes(*project);
    EXPECT_FALSE(DragBackgroundEnd(*project, host, true, r.BackgroundHighBE + 1));
    EXPECT_TRUE(ProjectFileBytes(*project) == before);
}

}  // namespace
}  // namespace molvera
