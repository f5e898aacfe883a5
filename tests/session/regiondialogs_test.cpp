#include "session/regiondialogs.h"

#include <gtest/gtest.h>

#include "model/project.h"
#include "spectral/envelope.h"
#include "spectral/regionedit.h"
#include "support/recording_host.h"
#include "support/sample_region.h"

namespace molvera {
namespace {

// The shift moves the peaks as soon as it is accepted: the region is redrawn and its
// chi-square is the one a full recompute gives, back to the first when the shift is 0.
TEST(RegionShift, AcceptRecomputesAndRedrawsTheRegionAtOnce) {
    Project project;
    test::RecordingHost host;
    ClearProject(project, QuietHost());
    test::FillSampleRegion(project, 1);
    test::GiveSampleBackground(project, 1);
    ASSERT_EQ(AddPeak(project, QuietHost()), 0);
    const float unshifted = project.Regions[1].ChiSquare;
    RegionShiftForm form;
    for (const char* shift : {"0.5", "0"}) {
        SCOPED_TRACE(shift);
        OpenRegionShift(project, form);
        form.shiftText = shift;
        const int redraws = host.redraws;
        AcceptRegionShift(project, host, form);
        Project fresh = project;
        RecomputeAllRegions(fresh, QuietHost());
        EXPECT_EQ(project.Regions[1].ChiSquare, fresh.Regions[1].ChiSquare);
        EXPECT_EQ(project.TotalChiSquare, fresh.TotalChiSquare);
        EXPECT_EQ(host.redraws, redraws + 1);
    }
    EXPECT_EQ(project.Regions[1].ChiSquare, unshifted);
}

}  // namespace
}  // namespace molvera
