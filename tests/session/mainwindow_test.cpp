// The main window's rule for the file name a save dialog proposes.
#include "session/mainwindow.h"

#include <gtest/gtest.h>

namespace molvera {
namespace {

TEST(MainWindowProposeFileName, ReplacesEverythingAfterTheFirstDotOfTheName) {
    EXPECT_EQ(ProposeFileName("/data/c1s.des", "dat"), "/data/c1s.dat");
    EXPECT_EQ(ProposeFileName("sample.fit.rpa", "xps"), "sample.xps");
    EXPECT_EQ(ProposeFileName("/my.folder/c1s", "xps"), "/my.folder/c1s");
    EXPECT_EQ(ProposeFileName("/my.folder/c1s.csv", "par"), "/my.folder/c1s.par");
    EXPECT_EQ(ProposeFileName("trailing.", "opa"), "trailing.opa");
}

}  // namespace
}  // namespace molvera
