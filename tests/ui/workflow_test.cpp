// A scientist's whole session on a real C 1s spectrum, through the windows only:
// import, background, three peaks, a constraint, a fit, export, save, and reopening.
#include <algorithm>
#include <filesystem>
#include <fstream>
#include <sstream>

#include <QCheckBox>
#include <QComboBox>
#include <QLineEdit>
#include <QPushButton>

#include "base/messages.h"
#include "base/numtext.h"
#include "ui/backgrounddialog.h"
#include "ui/constraintdialog.h"
#include "ui/gui_fixture.h"
#include "ui/peakeditor.h"

namespace molvera::test {
namespace {

void SetText(QWidget& window, const char* box, const QString& text) {
    auto* edit = window.findChild<QLineEdit*>(box);
    ASSERT_NE(edit, nullptr) << box;
    edit->setText(text);
}

void Click(QWidget& window, const char* button) {
    auto* b = window.findChild<QPushButton*>(button);
    ASSERT_NE(b, nullptr) << button;
    b->click();
}

std::vector<std::string> Lines(const std::string& path) {
    std::ifstream in(path);
    std::vector<std::string> lines;
    for (std::string line; std::getline(in, line);) lines.push_back(line);
    return lines;
}

TEST_F(GuiTest, WholeWorkflowOnARealSpectrumSurvivesSaveAndOpen) {
    // MultiPak VAMAS export, C 1s first of five blocks, 305 -> 275 eV in 601 points.
    const std::string source = SharedRealFile("lg4x/Mutlipak_vms.npl");
    if (source.empty()) GTEST_SKIP() << "shared test data not present";
    const auto dir = ScratchDir();
    const std::string vms = (dir / "multipak.vms").string();
    std::filesystem::copy_file(source, vms);

    main().RegionButton(0)->click();
    chooser.paths.push_back(vms);
    Menu("importVamasAction");
    ASSERT_TRUE(sink.messages.empty()) << sink.messages.front();
    Region& c1s = project().Regions[0];
    ASSERT_TRUE(IsSet(c1s.HasData));
    ASSERT_EQ(c1s.PointCount, 601);
    EXPECT_NEAR(c1s.MaxBE, 305.0, 1e-3);
    EXPECT_NEAR(c1s.MinBE, 275.0, 1e-3);
    EXPECT_TRUE(IsSet(project().Regions[4].HasData)) << "Mo 3d, the fifth block";

    // Background over the data, accepted as the dialog proposes it.
    Menu("backgroundAction");
    Click(gui->backgroundDialog(), "acceptButton");
    ASSERT_TRUE(IsSet(c1s.HasBackground));
    EXPECT_EQ(sink.beeps, 0);

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
        ASSERT_TRUE(editor.isVisible());
        SetText(editor, "positionText", QString::fromStdString(FormatGeneral(maxBE + offsets[k])));
        SetText(editor, "fwhmText", QStringLiteral("1.6"));
        SetText(editor, "glText", QStringLiteral("30"));
        SetText(editor, "areaText", QString::number(k == 0 ? 2000 : 400));
        Click(editor, "acceptButton");
        EXPECT_FALSE(editor.isVisible());
    }
    ASSERT_EQ(c1s.PeakCount, 3);

    // The third peak's FWHM follows the second's.
    main().PeakButton(2)->click();
    ASSERT_EQ(project().CurrentPeak, added[2]);
    Click(editor, "fwhmConstraintsButton");
    ui::ConstraintDialog& cnt = gui->constraintDialog();
    cnt.findChild<QCheckBox*>("useRelation")->setChecked(true);
    SetText(cnt, "referencePeakText", QString::number(added[1]));
    cnt.findChild<QComboBox*>("operation")->setCurrentText(QStringLiteral("*"));
    SetText(cnt, "argumentText", QStringLiteral("1"));
    Click(cnt, "okButton");
    ASSERT_TRUE(sink.messages.empty()) << sink.messages.front();
    Click(editor, "acceptButton");

    const float chiBefore = c1s.ChiSquare;
    Menu("optimiseRegionAction");
    EXPECT_LT(c1s.ChiSquare, 0.5f * chiBefore);
    EXPECT_EQ(project().Peaks[added[2]].FWHM, project().Peaks[added[1]].FWHM);
    EXPECT_NEAR(project().Peaks[added[0]].Position, maxBE, 0.3) << "C-C found at the maximum";

    // Export (Spectrum): a header naming the three peaks and one line per point.
    const std::string dat = (dir / "c1s.dat").string();
    chooser.paths.push_back(dat);
    Menu("exportSpectrumAction");
    ASSERT_EQ(sink.messages, std::vector<std::string>{msg::kDataFileExported});
    const std::vector<std::string> lines = Lines(dat);
    ASSERT_EQ(lines.size(), 602u);
    EXPECT_NE(lines[0].find("Peak 3"), std::string::npos);
    EXPECT_NE(lines[0].find("difference"), std::string::npos);
    std::istringstream first(lines[1]);
    double be = 0, raw = 0;
    first >> be >> raw;
    EXPECT_NEAR(be, c1s.BindingEnergy[1], 1e-3);
    EXPECT_NEAR(raw, c1s.RawIntensity[1], 1e-3 * std::abs(c1s.RawIntensity[1]));

    const std::string xps = (dir / "c1s.xps").string();
    chooser.paths.push_back(xps);
    Click(main(), "saveProjectButton");
    ASSERT_EQ(sink.messages.back(), msg::kFileSaved);

    // A fresh start opens the file and shows the same fit.
    RecordingSink sink2;
    ScriptedChooser chooser2;
    ui::Gui other(sink2, chooser2);
    other.Start(std::string(MOLVERA_SOURCE_DIR) + "/default.opa");
    chooser2.paths.push_back(xps);
    Click(other.mainWindow(), "openProjectButton");
    EXPECT_TRUE(sink2.messages.empty());
    const Project& back = other.project();
    for (int r = 0; r < 5; ++r) {
        Region expected = project().Regions[r];
        if (expected.EndPointAverage == 0) expected.EndPointAverage = 1;  // a stored 0 loads as 1
        EXPECT_TRUE(back.Regions[r] == expected) << "region " << r;
    }
    for (int s : added) {
        SCOPED_TRACE(s);
        EXPECT_TRUE(back.Peaks[s] == project().Peaks[s]);
        EXPECT_TRUE(back.Constraints[s] == project().Constraints[s]);
    }
    EXPECT_EQ(other.mainWindow().PeakButton(2)->text(), QString::number(added[2]));
    EXPECT_TRUE(other.mainWindow().PeakButton(2)->isEnabled());
}

}  // namespace
}  // namespace molvera::test
