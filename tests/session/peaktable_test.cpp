#include "session/peaktable.h"

#include <gtest/gtest.h>

#include "constraints/propagation.h"
#include "fitting/uncertainty.h"
#include "session/fitcommands.h"
#include "spectral/envelope.h"
#include "spectral/lineshape.h"
#include "spectral/regionedit.h"
#include "support/recording_host.h"
#include "support/sample_region.h"

namespace molvera {
namespace {

// Region 1, 41 points 290..280 eV, three peaks: 0 free (area 300), 1 a p doublet labelled
// "C=O" with its FWHM fixed (area 100), 2 with its position at peak 0 + 1.1 eV (area 200).
// Add Peak fixes every %GL.
class PeakTableTest : public ::testing::Test {
protected:
    void SetUp() override {
        ClearProject(project, QuietHost());
        test::FillSampleRegion(project, 1, 41, 290.0f, 0.25f);
        test::GiveSampleBackground(project, 1);
        for (auto [position, area] : {std::pair{284.5f, 300.0f}, {286.0f, 100.0f}, {0, 200.0f}}) {
            Peak& p = project.Peaks[AddPeak(project, QuietHost())];
            std::tie(p.Position, p.FWHM, p.Area) = std::tuple(position, 1.2f, area);
        }
        std::tie(project.Peaks[1].PeakType, project.Peaks[1].Splitting, project.Peaks[1].FixFWHM,
                 project.Peaks[1].Label) = std::tuple(Subshell::P, 1.18f, 1, Text20::From("C=O"));
        project.Constraints[2].Position = {kTrue, 0, kFalse, 0, 0, 1.1f, kFalse, 0, 0};
        project.Constraints[0].Position = {kFalse, 0, kTrue, 2, 0, 0, kFalse, 0, 0};
        ApplyAllRelations(project);
        ComputeRegionEnvelope(project, QuietHost());
    }
    Project project;
    test::RecordingHost host;
};

// Shares of 300 + 100 + 200 by hand; the fit's uncertainties as bare numbers; the marks;
// the copy tab-separated under a header, without thousands separators.
TEST_F(PeakTableTest, RowsAndTheirCopy) {
    const std::vector<PeakTableRow> rows = PeakTableRows(project, 1);
    ASSERT_EQ(rows.size(), 3u);
    const Uncertainties u = ComputeUncertainties(project, {1});
    EXPECT_EQ("\xB1 " + rows[2].cells[kAreaPercentSigmaColumn] + " \xB1 " + rows[0].cells[3],
              SigmaText(u.peaks[2].areaPercentSigma) + " " + SigmaText(u.peaks[0].parameters[0]));
    EXPECT_EQ(std::vector(rows[1].cells.begin(), rows[1].cells.begin() + kAreaPercentColumn + 1),
              (std::vector<std::string>{"1 C=O", "p 1.18 eV", "286", rows[1].cells[3], "1.2",
                                        "fixed", "100", rows[1].cells[7], "16.67"}));
    EXPECT_EQ(rows[2].cells[kPositionSigmaColumn] + " " + rows[2].cells[kAreaPercentColumn],
              "= peak 0 + 1.1 33.33");
    EXPECT_EQ(std::tuple(rows[0].editable[kPositionColumn], rows[1].editable[kFWHMColumn],
                         rows[2].editable[kPositionColumn], rows[1].constrained[kFWHMSigmaColumn],
                         rows[0].constrained[kPositionSigmaColumn]),
              std::tuple(true, false, false, true, false));
    project.Peaks[0].Position = 1234567.0f;
    std::vector<PeakTableRow> plain = PeakTableRows(project, 1, false);
    plain.resize(1);
    EXPECT_EQ(PeakTableText(plain),
              "Peak\tType\tPosition (eV)\t\xB1\tFWHM (eV)\t\xB1\tArea\t\xB1\t% of area\t\xB1\t%GL\t"
              "\xB1\n0\ts\t1234567\t\t1.2\t\t300\t\t50.00\t\t80\tfixed\n");
}

// A cell goes through the peak editor's Accept: a refused text changes nothing, a value
// reaches the peak and its dependants, and the editor's peak stays the current one.
TEST_F(PeakTableTest, EditsGoThroughTheEditorsAccept) {
    project.CurrentPeak = 1;
    const Project before = project;
    EXPECT_EQ(EditPeakTableCell(project, host, 0, PeakParameter::Position, "abc").Text(),
              "Position: 'abc' is not a number");
    EXPECT_TRUE(project.Peaks == before.Peaks);
    ASSERT_TRUE(EditPeakTableCell(project, host, 0, PeakParameter::Position, "285"));
    EXPECT_EQ(std::tuple(project.Peaks[0].Position, project.Peaks[2].Position, project.CurrentPeak),
              std::tuple(285.0f, 286.1f, Int16{1}));
    EXPECT_TRUE(project.SavedPeaks[0] == before.SavedPeaks[0]);
}

}  // namespace
}  // namespace molvera
