// Leybold and Phi text files: regions from the current slot on, wrapping, refusals.

#include <string>
#include <tuple>
#include <utility>
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
    // An import into a project with a description keeps it.
    project.Description = "typed";
    project.CurrentRegion = 2;
    ASSERT_TRUE(test::ImportText(project, host, "leybold", LeyboldFile(1)).Messages().empty());
    EXPECT_EQ(std::pair(project.Description, IsSet(project.Regions[2].HasData)),
              std::pair(std::string("typed"), true));
}

// From slot 7 on, wrapping; data and peaks that stood there go; ten regions already warn.
TEST_F(Leybold, StartingAtSlot7DeletesWhatStoodThereAndTenRegionsWarn) {
    test::FillSampleRegion(project, 8);  // a fitted spectrum with two peaks in slot 8
    test::GiveSampleBackground(project, 8);
    ASSERT_TRUE(AddPeak(project, QuietHost()) == 0 && AddPeak(project, QuietHost()) == 1);
    project.CurrentRegion = 7;
    const ImportResult result = test::ImportText(project, host, "leybold", LeyboldFile(10));
    EXPECT_EQ(MessageTexts(result.Messages()), std::vector<std::string>{msg::kTooManyRegions});
    for (int i = 0; i < 10; ++i) {
        const Region& r = project.Regions[(7 + i) % 10];
        EXPECT_EQ(r.BindingEnergy[1], 100 + i);
        EXPECT_FALSE(IsSet(r.HasBackground) || r.PeakCount != 0);
    }
    EXPECT_TRUE(!IsSet(project.Peaks[0].InUse) && !IsSet(project.Peaks[1].InUse) &&
                project.CurrentRegion == 7);
    EXPECT_EQ(project.Regions[8].Caption.Str().substr(0, 8), "Region 1");
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
    const Region &a = project.Regions[0], &b = project.Regions[1];  // rising stored falling
    EXPECT_TRUE(a.BindingEnergy == SingleArray({0, 281, 280.5, 280}) &&
                a.RawIntensity == SingleArray({0, 22, 21, 20}));
    EXPECT_TRUE(b.BindingEnergy == SingleArray({0, 535, 534, 533}) &&
                b.RawIntensity == SingleArray({0, 20, 21, 22}));
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

// Damaged files of either format: refused with a detail, and nothing kept (not even the
// first region of a Leybold file ending inside its second). The MultiPak text export is no
// Phi file.
TEST(LeyboldPhi, DamagedFilesAreRefusedAndKeepNothing) {
    const std::string leybold = LeyboldFile(2), phi = PhiRegion("C", 8, 1, 1);
    const std::pair<const char*, std::string> cases[] = {
        {"leybold", ""},
        {"leybold", "desc\nRegions = many\n"},
        {"leybold", "desc\nRegions = 1\n1\nC\nPoints = 1000000000\n1, 2\n"},
        {"leybold", "desc\nRegions = 1\n1\nC\nPoints = 3\n1, 2\n2, x\n3, 4\n"},
        {"leybold", leybold.substr(0, leybold.size() - 8)},
        {"phi", ""},
        {"phi", phi.substr(0, phi.size() - 12)},
        {"phi", test::ReadBytes(test::RealFile("nims-mdac-xps/XPS_PHI_QUANTERA_survey.txt"))},
    };
    for (const auto& [format, text] : cases) {
        SCOPED_TRACE(text.substr(0, 80));
        Project project;
        test::RecordingHost host;
        const Status s = test::ImportText(project, host, format, text).status;
        EXPECT_TRUE(s.message() == msg::kErrorReadingFileImport && !s.detail().empty());
        EXPECT_EQ(project, Project());
    }
}

}  // namespace
}  // namespace molvera
