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
        Peak& doublet = project.Peaks[1];
        std::tie(doublet.PeakType, doublet.Splitting, doublet.FixFWHM) =
            std::tuple(Subshell::P, 1.18f, Int16{1});
        doublet.Label = Text20::From("C=O");
        project.Constraints[2].Position = {kTrue, 0, kFalse, 0, 0, 1.1f, kFalse, 0, 0};
        project.Constraints[0].Position = {kFalse, 0, kTrue, 2, 0, 0, kFalse, 0, 0};
        ApplyAllRelations(project);
        for (Peak& p : project.Peaks) p.HeightPercent = AreaToHeightPercent(project, p);
        ComputeRegionEnvelope(project, QuietHost());
    }
    Project project;
    test::RecordingHost host;
};

TEST_F(PeakTableTest, RowsShowValuesSharesUncertaintiesAndMarks) {
    const std::vector<PeakTableRow> rows = PeakTableRows(project, 1);
    ASSERT_EQ(rows.size(), 3u);
    // The shares of 300 + 100 + 200 by hand; the marks of the fixed and the linked value.
    using Cells = std::array<std::string, kPeakColumnCount>;
    auto values = [](const Cells& c) {
        return std::vector{c[kPeakColumn], c[kTypeColumn],        c[kPositionColumn],
                           c[kAreaColumn], c[kAreaPercentColumn], c[kGLColumn]};
    };
    EXPECT_EQ(values(rows[0].cells),
              (std::vector<std::string>{"0", "s", "284.5", "300", "50.00", "80"}));
    EXPECT_EQ(values(rows[1].cells),
              (std::vector<std::string>{"1 C=O", "p 1.18 eV", "286", "100", "16.67", "80"}));
    EXPECT_EQ(values(rows[2].cells)[2], "285.6");
    EXPECT_EQ(rows[1].cells[kFWHMSigmaColumn], "fixed");
    EXPECT_EQ(rows[2].cells[kPositionSigmaColumn], "= peak 0 + 1.1");
    EXPECT_EQ(rows[2].cells[kAreaPercentColumn], "33.33");
    // The uncertainties of the fitting engine, as numbers.
    const Uncertainties u = ComputeUncertainties(project, {1});
    EXPECT_EQ("\xB1 " + rows[0].cells[kPositionSigmaColumn],
              SigmaText(u.peaks[0].parameters[static_cast<int>(PeakParameter::Position)]));
    EXPECT_EQ("\xB1 " + rows[2].cells[kAreaPercentSigmaColumn],
              SigmaText(u.peaks[2].areaPercentSigma));
    EXPECT_GT(std::stod(rows[0].cells[kPositionSigmaColumn]), 0);
    // Editable: the free values only; greyed: the fixed and linked ones.
    for (const auto& [row, column, free] : {std::tuple{0, kPositionColumn, true},
                                            {1, kFWHMColumn, false},
                                            {1, kAreaColumn, true},
                                            {2, kPositionColumn, false},
                                            {2, kTypeColumn, false}}) {
        EXPECT_EQ(rows[row].editable[column], free) << row << " " << column;
        EXPECT_EQ(rows[row].constrained[column], !free && column != kTypeColumn);
    }
    // Without the uncertainties only the marks stay.
    const std::vector<PeakTableRow> plain = PeakTableRows(project, 1, false);
    EXPECT_EQ(plain[0].cells[kPositionSigmaColumn] + plain[1].cells[kFWHMSigmaColumn], "fixed");
}

TEST_F(PeakTableTest, CopyIsTabSeparatedWithAHeader) {
    project.Peaks[0].Position = 1234567.0f;  // no thousands separator, whatever the locale
    std::vector<PeakTableRow> rows = PeakTableRows(project, 1, false);
    rows.resize(1);
    EXPECT_EQ(
        PeakTableText(rows),
        "Peak\tType\tPosition (eV)\t\xB1\tFWHM (eV)\t\xB1\tArea\t\xB1\t% of area\t\xB1\t%GL\t"
        "\xB1\n0\ts\t1234567\t\t1.2\t\t300\t\t50.00\t\t80\tfixed\n");  // %GL fixed by Add Peak
}

// A cell goes through the peak editor's Accept: refused texts change nothing, a value
// reaches the peak and its dependants, and the editor's peak stays the current one.
TEST_F(PeakTableTest, EditsGoThroughTheEditorsAccept) {
    project.CurrentPeak = 1;
    const Project before = project;
    const Status refused = EditPeakTableCell(project, host, 0, PeakParameter::Position, "abc");
    EXPECT_EQ(refused.Text(), "Position: 'abc' is not a number");
    EXPECT_TRUE(project.Peaks == before.Peaks);
    ASSERT_TRUE(EditPeakTableCell(project, host, 0, PeakParameter::Position, "285"));
    EXPECT_EQ(std::tuple(project.Peaks[0].Position, project.Peaks[2].Position, project.CurrentPeak),
              std::tuple(285.0f, 286.1f, Int16{1}));
    EXPECT_TRUE(project.SavedPeaks[0] == before.SavedPeaks[0]);
    ASSERT_TRUE(EditPeakTableCell(project, host, 0, PeakParameter::GL, "30"));
    EXPECT_EQ(project.Peaks[0].PercentGL, 30);
}

}  // namespace
}  // namespace molvera
