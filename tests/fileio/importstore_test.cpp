// How an imported spectrum is stored: order, caption, extents.

#include "fileio/importstore.h"

#include <gtest/gtest.h>

namespace molvera {
namespace {

// Stored falling (element 0 unused), the caption cut to 20, the extents set; with equal
// end energies the two sort rules differ.
TEST(ImportStore, StoreSpectrumOrdersAndSetsExtents) {
    Project project;
    ImportedSpectrum s{
        .caption = "a caption longer than twenty", .energy = {1, 2, 3}, .intensity = {10, 30, 20}};
    StoreSpectrum(project, s, SortRule::ReverseIfRising);
    const Region& r = project.Regions[0];
    EXPECT_TRUE(r.BindingEnergy == SingleArray({0, 3, 2, 1}) &&
                r.RawIntensity == SingleArray({0, 20, 30, 10}));
    EXPECT_TRUE(r.Caption.Str() == "a caption longer tha" && r.MaxIntensity == 30 &&
                IsSet(r.HasData));
    s.energy = {5, 4, 5};
    StoreSpectrum(project, s, SortRule::ReverseIfRising);
    EXPECT_EQ(r.RawIntensity[1], 10);
    StoreSpectrum(project, s, SortRule::ReverseUnlessFalling);
    EXPECT_EQ(r.RawIntensity[1], 20);
}

}  // namespace
}  // namespace molvera
