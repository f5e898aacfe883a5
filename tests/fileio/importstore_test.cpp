// How an imported spectrum is stored: order, caption, extents.

#include "fileio/importstore.h"

#include <gtest/gtest.h>

namespace molvera {
namespace {

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
