// A scientist's whole session on a real C 1s spectrum, through the windows only:
// import, background, three peaks, a constraint, a fit, export, save, and reopening.
// It is the wiring test of the boxes and buttons it uses.
#include <filesystem>
#include <fstream>

#include <QCheckBox>
#include <QComboBox>

#include "base/messages.h"
#include "base/numtext.h"
#include "ui/backgrounddialog.h"
#include "ui/constraintdialog.h"
#include "ui/gui_fixture.h"
#include "ui/peakeditor.h"

namespace molvera::test {
namespace {

TEST_F(GuiTest, WholeWorkflowOnARealSpectrumSurvivesSaveAndOpen) {
    // MultiPak VAMAS export, C 1s first of five blocks, 305 -> 275 eV in 601 points.
    const auto dir = ScratchDir();
    const std::string vms = (dir / "multipak.vms").string();
    std::filesystem::copy_file(DataFile("real/lg4x/Mutlipak_vms.npl"), vms);
    chooser.paths = {vms};
    Menu("importVamasAction");
    ASSERT_TRUE(sink.messages.empty()) << sink.messages.front();
    Region& c1s = project().Regions[0];
    ASSERT_EQ(c1s.PointCount, 601);

    // Background over the data, accepted as the dialog proposes it.
    Menu("backgroundAction");
    Click(gui->backgroundDialog(), "acceptButton");
    ASSERT_TRUE(IsSet(c1s.HasBackground));

    // Three peaks: C-C at the maximum, C-O and O-C=O above it, placed a little off.
    int top = 1;
    for (int i = 1; i <= c1s.PointCount; ++i)
        if (c1s.RawIntensity[i] > c1s.RawIntensity[top]) top = i;
    const double maxBE = c1s.BindingEnergy[top];
    ui::PeakEditor& editor = gui->peakEditor();
    const double offsets[3] = {0.3, 1.8, 4.0};
    int added[3] = {};
    for (int k = 0; k < 3; ++k) {
        Menu("addPeakAction");
        added[k] = project().CurrentPeak;
        Type(editor, "positionText", QString::fromStdString(FormatGeneral(maxBE + offsets[k])));
        Type(editor, "fwhmText", "1.6");
        Type(editor, "glText", "30");
        Type(editor, "areaText", QString::number(k == 0 ? 2000 : 400));
        Click(editor, "acceptButton");
        EXPECT_FALSE(editor.isVisible());
    }
    ASSERT_EQ(c1s.PeakCount, 3);
    EXPECT_EQ(project().Peaks[added[1]].FWHM, 1.6f);

    // The third peak's FWHM follows the second's, within limits.
    main().PeakButton(2)->click();
    ASSERT_EQ(project().CurrentPeak, added[2]);
    Click(editor, "fwhmConstraintsButton");
    ui::ConstraintDialog& cnt = gui->constraintDialog();
    Child<QCheckBox>(cnt, "useRelation")->setChecked(true);
    Type(cnt, "referencePeakText", QString::number(added[1]));
    Child<QComboBox>(cnt, "operation")->setCurrentText(QStringLiteral("*"));
    Type(cnt, "argumentText", "1");
    Child<QCheckBox>(cnt, "useLimits")->setChecked(true);
    Type(cnt, "lowLimitText", "0.5");
    Type(cnt, "highLimitText", "3");
    Click(cnt, "okButton");
    ASSERT_TRUE(sink.messages.empty()) << sink.messages.front();
    EXPECT_EQ(
        project().Constraints[added[2]].FWHM,
        (ParameterConstraint{kTrue, static_cast<Int16>(added[1]), 0, 0, 2, 1, kTrue, 0.5f, 3}));
    Click(editor, "acceptButton");

    const float chiBefore = c1s.ChiSquare;
    Menu("optimiseRegionAction");
    EXPECT_LT(c1s.ChiSquare, 0.5f * chiBefore);
    EXPECT_EQ(project().Peaks[added[2]].FWHM, project().Peaks[added[1]].FWHM);
    // The neighbour at higher energy pulls the sum's maximum by a few tenths of an eV.
    EXPECT_NEAR(project().Peaks[added[0]].Position, maxBE, 0.5) << "C-C found at the maximum";

    // Export (Spectrum): a header naming the three peaks and one line per point (601 + 1).
    chooser.paths = {(dir / "c1s.dat").string()};
    Menu("exportSpectrumAction");
    ASSERT_EQ(sink.messages, std::vector<std::string>{msg::kDataFileExported});
    std::ifstream dat(dir / "c1s.dat");
    std::vector<std::string> lines;
    for (std::string line; std::getline(dat, line);) lines.push_back(line);
    ASSERT_EQ(lines.size(), 602u);
    EXPECT_NE(lines[0].find("Peak 3"), std::string::npos);

    // Save proposes the last file's name with ".xps"; the description goes as Latin-1.
    main().DescriptionBox()->setText(QStringLiteral("C 1s, caf\u00e9"));
    EXPECT_EQ(project().Description, "C 1s, caf\xe9");
    chooser.paths = {(dir / "c1s.xps").string()};
    Click(main(), "saveProjectButton");
    ASSERT_EQ(sink.messages.back(), msg::kFileSaved);
    EXPECT_EQ(chooser.requests.back().name, (dir / "c1s.xps").string());
    Click(main(), "saveProjectButton");  // cancelled: nothing happens
    EXPECT_EQ(sink.messages.size(), 2u);

    // A fresh start opens the file and shows the same fit.
    RecordingSink sink2;
    ScriptedChooser chooser2;
    ui::Gui other(sink2, chooser2);
    other.Start(std::string(MOLVERA_SOURCE_DIR) + "/default.opa");
    chooser2.paths = {(dir / "c1s.xps").string()};
    Click(other.mainWindow(), "openProjectButton");
    EXPECT_TRUE(sink2.messages.empty());
    const Project& back = other.project();
    for (int r = 0; r < 5; ++r) {
        Region expected = project().Regions[r];
        if (expected.EndPointAverage == 0) expected.EndPointAverage = 1;  // a stored 0 loads as 1
        EXPECT_TRUE(back.Regions[r] == expected) << "region " << r;
    }
    for (int s : added) {
        EXPECT_TRUE(back.Peaks[s] == project().Peaks[s]) << s;
        EXPECT_TRUE(back.Constraints[s] == project().Constraints[s]) << s;
    }
    EXPECT_EQ(other.mainWindow().PeakButton(2)->text(), QString::number(added[2]));
    EXPECT_TRUE(other.mainWindow().PeakButton(2)->isEnabled());
    EXPECT_EQ(other.mainWindow().ChiSquareBox(0)->text(), main().ChiSquareBox(0)->text());
}

}  // namespace
}  // namespace molvera::test
