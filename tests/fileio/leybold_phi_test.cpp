// Leybold and Phi text files: regions from the current slot on, wrapping, refusals.

#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "base/messages.h"
#include "fileio/leybold.h"
#include "fileio/phi.h"
#include "spectral/regionedit.h"
#include "support/files.h"
#include "support/sample_region.h"

namespace molvera {
namespace {

using test::MessageTexts;
using Leybold = test::ImportTest;
using Phi = test::ImportTest;

// One Leybold region: a skipped item, the caption, "Points = n", then the pairs.
std::string LeyboldRegion(const std::string& caption, int n, double first, double step) {
    std::string t = "1\n" + caption + "\nPoints = " + std::to_string(n) + "\n";
    for (int i = 0; i < n; ++i)
        t += std::to_string(first + i * step) + ", " + std::to_string(10 + i) + "\n";
    return t;
}

std::string LeyboldFile(int regions) {
    std::string t = "\"Sample, annealed\"\nRegions = " + std::to_string(regions) + "\n";
    for (int k = 0; k < regions; ++k)
        t += LeyboldRegion("Region " + std::to_string(k), 3, 100 + k, -1);
    return t;
}

TEST_F(Leybold, ReadsRegionsDescriptionAndCaptions) {
    std::string t = "\"Sample, annealed\"\nRegions = 2\n" + LeyboldRegion("C 1s", 3, 280, 1) +
                    LeyboldRegion("O 1s", 2, 531, -1);
    t.replace(t.rfind("Points = 2"), 10, "Points = 1.5");  // a count rounds half to even
    ASSERT_TRUE(test::ImportText(project, host, "leybold", t).Messages().empty());
    EXPECT_EQ(project.Description, "Sample, annealed");
    const Region& a = project.Regions[0];
    EXPECT_EQ(a.Caption.Str(), "C 1s                ");
    EXPECT_EQ(a.BindingEnergy, (SingleArray{0, 282, 281, 280}));  // rising file, stored falling
    EXPECT_EQ(a.RawIntensity, (SingleArray{0, 12, 11, 10}));
    EXPECT_EQ(project.Regions[1].BindingEnergy, (SingleArray{0, 531, 530}));
    EXPECT_EQ(project.CurrentRegion, 0);
}

TEST_F(Leybold, ElevenRegionsFillTenSlotsAndTenAlreadyWarn) {
    for (int regions : {10, 11}) {
        SCOPED_TRACE(regions);
        Project project;
        const ImportResult result =
            test::ImportText(project, host, "leybold", LeyboldFile(regions));
        EXPECT_EQ(MessageTexts(result.Messages()), std::vector<std::string>{msg::kTooManyRegions});
        for (int k = 0; k < 10; ++k) EXPECT_EQ(project.Regions[k].BindingEnergy[1], 100 + k);
        EXPECT_EQ(project.CurrentRegion, 0);
    }
}

TEST_F(Leybold, StartingAtSlot7DeletesDataAndPeaksThatStoodThere) {
    test::FillSampleRegion(project, 8);  // a fitted spectrum with two peaks in slot 8
    test::GiveSampleBackground(project, 8);
    ASSERT_EQ(AddPeak(project, QuietHost()), 0);
    ASSERT_EQ(AddPeak(project, QuietHost()), 1);
    project.CurrentRegion = 7;
    ASSERT_TRUE(test::ImportText(project, host, "leybold", LeyboldFile(5)).status.ok());
    const int slots[] = {7, 8, 9, 0, 1};
    for (int i = 0; i < 5; ++i) {
        const Region& r = project.Regions[slots[i]];
        EXPECT_EQ(r.BindingEnergy[1], 100 + i);
        EXPECT_FALSE(IsSet(r.HasBackground));
        EXPECT_EQ(r.PeakCount, 0);
    }
    EXPECT_FALSE(IsSet(project.Peaks[0].InUse));
    EXPECT_FALSE(IsSet(project.Peaks[1].InUse));
    EXPECT_EQ(project.CurrentRegion, 7);
    EXPECT_EQ(project.Regions[8].Caption.Str().substr(0, 8), "Region 1");
}

TEST_F(Leybold, DamagedFiles) {
    const std::string good = LeyboldFile(2);
    // The last ends inside the second region: the first, read already, is not kept either.
    for (const std::string& text :
         {std::string(), std::string("desc\nRegions = many\n"),
          std::string("desc\nRegions = 1\n1\nC\nPoints = 1000000000\n1, 2\n"),
          std::string("desc\nRegions = 1\n1\nC\nPoints = 3\n1, 2\n2, x\n3, 4\n"),
          good.substr(0, good.size() - 8)}) {
        SCOPED_TRACE(text);
        Project project;
        const Status s = test::ImportText(project, host, "leybold", text).status;
        EXPECT_EQ(s.message(), msg::kErrorReadingFileImport);
        EXPECT_FALSE(s.detail().empty());
        EXPECT_EQ(project, Project());
    }
}

// One Phi region: description items, caption, unused, start, step, count, values, unused.
std::string PhiRegion(const std::string& caption, int n, double start, double step) {
    std::string t = "Phi 5600, \"Sample 7\"\n" + caption + "\n1 " + std::to_string(start) + " " +
                    std::to_string(step) + " " + std::to_string(n) + "\n";
    for (int i = 0; i < n; ++i) t += std::to_string(20 + i) + (i % 4 == 3 ? "\n" : " ");
    return t + "\n0\n";
}

TEST_F(Phi, RegionsWithRisingAndFallingEnergies) {
    const std::string t = PhiRegion("C 1s", 3, 280, 0.5) + PhiRegion("O 1s", 3, 535, -1);
    ASSERT_TRUE(test::ImportText(project, host, "phi", t).Messages().empty());
    EXPECT_EQ(project.Description, "Phi 5600 Sample 7");
    EXPECT_EQ(project.Regions[0].BindingEnergy, (SingleArray{0, 281, 280.5, 280}));
    EXPECT_EQ(project.Regions[0].RawIntensity, (SingleArray{0, 22, 21, 20}));
    EXPECT_EQ(project.Regions[1].BindingEnergy, (SingleArray{0, 535, 534, 533}));
    EXPECT_EQ(project.Regions[1].RawIntensity, (SingleArray{0, 20, 21, 22}));
    EXPECT_FALSE(IsSet(project.Regions[2].HasData));
}

TEST_F(Phi, OverflowAndTooManyRegions) {
    std::string t = PhiRegion("big", 6000, 0, 1);
    for (int k = 0; k < 10; ++k) t += PhiRegion("r" + std::to_string(k), 2, 10 + k, -1);
    project.CurrentRegion = 3;
    const ImportResult result = test::ImportText(project, host, "phi", t);
    EXPECT_EQ(MessageTexts(result.Messages()),
              (std::vector<std::string>{"Too many points.  Only 5000 points have been read.",
                                        msg::kTooManyRegions}));
    EXPECT_EQ(project.Regions[3].PointCount, 5000);
    EXPECT_EQ(project.Regions[3].BindingEnergy[1], 4999);
    EXPECT_EQ(project.Regions[4].BindingEnergy[1], 10);  // read correctly after the overflow
    EXPECT_EQ(project.Regions[2].BindingEnergy[1], 18);  // wrapped: the ninth small region
    EXPECT_EQ(project.CurrentRegion, 3);
}

TEST_F(Phi, DamagedFilesAndTheMultiPakTextExport) {
    const std::string full = PhiRegion("C", 8, 1, 1);
    for (const std::string& text : {std::string(), full.substr(0, full.size() - 12)}) {
        const Status s = test::ImportText(project, host, "phi", text).status;
        EXPECT_EQ(s.message(), msg::kErrorReadingFileImport);
        EXPECT_FALSE(s.detail().empty());
        EXPECT_FALSE(IsSet(project.Regions[0].HasData));
    }
    const std::string multipak = test::RealFile("nims-mdac-xps/XPS_PHI_QUANTERA_survey.txt");
    if (multipak.empty()) GTEST_SKIP() << "the MultiPak text export is not available";
    const Status s = test::ImportPath(project, host, "phi", multipak).status;
    EXPECT_EQ(s.message(), msg::kErrorReadingFileImport);
    EXPECT_FALSE(IsSet(project.Regions[0].HasData));
}

}  // namespace
}  // namespace molvera
