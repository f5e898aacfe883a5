// Quantification in the windows: the settings' refusals, the tables' texts against a hand
// calculation, and the editor's Label and RSF boxes through Accept, Cancel, save and undo.
#include "session/quantform.h"

#include <memory>
#include <tuple>

#include <gtest/gtest.h>

#include "fileio/projectfile.h"
#include "model/project.h"
#include "session/history.h"
#include "spectral/regionedit.h"
#include "support/recording_host.h"
#include "support/sample_region.h"

namespace molvera {
namespace {

TEST(QuantFormTest, SettingsRefuseBadNumbersAndStoreNothing) {
    Project p;
    QuantForm form;
    FillQuantForm(p, form);
    EXPECT_EQ(std::tuple(form.source, form.energyText, form.transmissionText, form.imfpText),
              std::tuple(int{kSourceAlKa}, "1486.6", "-0.5", "0.7"));
    const struct {
        int source;
        const char *energy, *a, *b, *message, *box;
    } refused[] = {
        {kSourceOther, "abc", "0", "0", "Source energy: 'abc' is not a number", "energyText"},
        {kSourceOther, "-5", "0", "0", "Source energy: '-5' is not positive", "energyText"},
        {kSourceAlKa, "", "0", "", "IMFP exponent: '' is not a number", "imfpText"},
    };
    for (const auto& r : refused) {
        std::tie(form.source, form.energyText, form.transmissionText, form.imfpText) =
            std::tuple(r.source, r.energy, r.a, r.b);
        EXPECT_EQ(std::pair(ApplyQuantForm(p, form).Text(), form.invalidBox),
                  std::pair(std::string(r.message), std::string(r.box)));
        EXPECT_TRUE(p.Quant == QuantSettings{});
    }
    std::tie(form.source, form.transmissionText, form.imfpText) = std::tuple(kSourceMgKa, "0", "0");
    ASSERT_TRUE(ApplyQuantForm(p, form));
    EXPECT_EQ(std::tuple(p.Quant.SourceEnergy, form.energyText), std::tuple(1253.6f, "1253.6"));
    form.source = kSourceOther;  // chosen: the box keeps Mg's energy until one is typed
    ASSERT_TRUE(ApplyQuantForm(p, form));
    EXPECT_EQ(std::tuple(p.Quant.SourceEnergy, form.source),
              std::tuple(1253.6f, int{kSourceOther}));
}

// Both exponents 0, so that normalised area = area / RSF: C 1s 1000 / 1 (xraylib's C 1s is
// 1 by definition) and O 1s 600 / 2 (typed): 1000 / 1300 = 76.92 at.% and 23.08 at.%.
TEST(QuantFormTest, TablesMatchAHandCalculation) {
    Project p;
    auto add = [&](auto... args) { test::AddQuantPeak(p, args...); };
    add(0, 0, "C 1s", 285, 1000);
    add(0, 2, "", 287, 50);
    add(1, 1, "O 1s", 532, 600);
    add(1, 3, "Xx 9z", 540, 70);
    p.Quant.RsfOverride[1] = 2;
    std::tie(p.Quant.TransmissionExponent, p.Quant.ImfpExponent) = std::pair(0.0f, 0.0f);
    EXPECT_EQ(QuantTablesText(QuantTableLines(p)),
              "Region\tPeak\tLabel\tPosition (eV)\tArea\tRSF\tNormalised area\n"
              "1\t0\tC 1s\t285\t1000\t1.000\t1000\n"
              "1\t2\t\t287\t50\t\tnot counted: no label\n"
              "2\t1\tO 1s\t532\t600\t2\t300\n"
              "2\t3\tXx 9z\t540\t70\t\tnot counted: no RSF\n"
              "\n"
              "Label\tNormalised area\tAt. %\n"
              "C 1s\t1000\t76.92\n"
              "O 1s\t300\t23.08\n");
}

// The editor on peak 0 of region 1: refusals store nothing; a typed RSF and label come back
// after save and load, Undo gives the bytes before, Cancel undoes a live edit.
TEST(QuantEditorTest, TypedRsfAndLabelAreStoredSavedAndUndone) {
    auto project = std::make_unique<Project>();
    test::RecordingHost host;
    ClearProject(*project, QuietHost());
    test::FillSampleRegion(*project, 1);
    test::GiveSampleBackground(*project, 1);
    ASSERT_EQ(AddPeak(*project, QuietHost()), 0);
    PeakForm form;
    auto accept = [&](const char* label, const char* rsf) {
        EXPECT_TRUE(OpenPeakEditor(*project, host, form, 10));
        std::tie(form.labelText, form.rsfText) = std::pair(label, rsf);
        return AcceptPeakEditor(*project, host, form);
    };
    for (const auto& [label, rsf, message, box] :
         {std::tuple("C 1s", "abc",
                     "RSF: 'abc' is not a number (an empty box uses the computed RSF)", "rsfText"),
          {"C 1s", "0", "RSF: '0' is not positive (an empty box uses the computed RSF)", "rsfText"},
          {"123456789012345678901", "", "Label: at most 20 characters ('123456789012345678901')",
           "labelText"}}) {
        EXPECT_EQ(accept(label, rsf).Text(), message);
        EXPECT_EQ(
            std::tuple(form.invalidBox, project->Peaks[0].Label, project->Quant.RsfOverride[0]),
            std::tuple(box, Text20(), 0.0f));
    }
    UndoHistory history;
    history.Reset(*project);
    const std::string before = ProjectFileBytes(*project);
    ASSERT_TRUE(accept("C 1s", "2.5"));
    EXPECT_TRUE(history.Record(*project));
    ASSERT_TRUE(history.Undo(*project, host));
    EXPECT_TRUE(ProjectFileBytes(*project) == before);
    ASSERT_TRUE(history.Redo(*project, host));

    ASSERT_TRUE(OpenPeakEditor(*project, host, form, 10));
    EXPECT_EQ(std::tuple(form.labelText, form.rsfText, form.rsfPlaceholder),
              std::tuple("C 1s", "2.5", "1.000 from xraylib"));
    form.rsfText = "3";
    ASSERT_TRUE(LiveApplyPeakEditor(*project, host, form));
    EXPECT_EQ(std::tuple(project->Quant.RsfOverride[0], form.rsfText), std::tuple(3.0f, "3"));
    CancelPeakEditor(*project, host, form);
    EXPECT_EQ(project->Quant.RsfOverride[0], 2.5f);

    auto loaded = std::make_unique<Project>();
    ASSERT_TRUE(LoadProjectBytes(*loaded, host, ProjectFileBytes(*project)));
    EXPECT_EQ(std::tuple(loaded->Peaks[0].Label, loaded->Quant.RsfOverride[0]),
              std::tuple(Text20::From("C 1s"), 2.5f));
}

}  // namespace
}  // namespace molvera
