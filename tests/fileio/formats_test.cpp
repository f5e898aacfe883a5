// The table of import formats, and how an imported spectrum is stored.

#include "fileio/formats.h"

#include <string>

#include <gtest/gtest.h>

#include "fileio/importstore.h"
#include "support/files.h"

namespace molvera {
namespace {

// Every format of the table is found by its name, and a file that holds nothing is
// refused with the fixed message and a detail, the project left as it was.
TEST(ImportFormats, EveryFormatIsFoundAndRefusesAnEmptyFile) {
    for (const ImportFormat& format : ImportFormats()) {
        SCOPED_TRACE(std::string(format.name));
        EXPECT_EQ(FindImportFormat(format.name), &format);
        EXPECT_FALSE(format.menuCaption.empty() || format.title.empty() || format.filter.empty() ||
                     format.extensions.empty());
        Project project;
        test::RecordingHost host;
        const ImportResult result = test::ImportText(project, host, std::string(format.name), "");
        EXPECT_TRUE(result.notices.empty());
        EXPECT_FALSE(result.status.ok());
        EXPECT_FALSE(result.status.detail().empty());
        EXPECT_EQ(project.Regions, Project().Regions);
        EXPECT_EQ(project.Description, "");
    }
    EXPECT_EQ(FindImportFormat("VAMAS"), nullptr);
}

TEST(ImportStore, StoreSpectrumOrdersAndSetsExtents) {
    Project project;
    ImportedSpectrum s;
    s.caption = "a caption longer than twenty";
    s.energy = {1, 2, 3};
    s.intensity = {10, 30, 20};
    StoreSpectrum(project, s, SortRule::ReverseIfRising);
    const Region& r = project.Regions[0];
    EXPECT_EQ(r.BindingEnergy, (SingleArray{0, 3, 2, 1}));
    EXPECT_EQ(r.RawIntensity, (SingleArray{0, 20, 30, 10}));
    EXPECT_EQ(r.Caption.Str(), "a caption longer tha");
    EXPECT_EQ(r.MaxIntensity, 30);
    EXPECT_TRUE(IsSet(r.HasData));
    // Equal end energies: the two rules differ.
    s.energy = {5, 4, 5};
    StoreSpectrum(project, s, SortRule::ReverseIfRising);
    EXPECT_EQ(r.RawIntensity[1], 10);
    StoreSpectrum(project, s, SortRule::ReverseUnlessFalling);
    EXPECT_EQ(r.RawIntensity[1], 20);
}

}  // namespace
}  // namespace molvera
