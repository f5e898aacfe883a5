// The windows side by side, the recent files, the fit's chi-square line.
#include "session/workspace.h"

#include <gtest/gtest.h>

#include "session/fitcommands.h"

namespace molvera {
namespace {

TEST(SideBySide, PlacesTheWindowsWithoutOverlapWithinTheScreen) {
    struct Case {
        ScreenRect available, main, region;
    };
    for (const auto& [available, mainAt, regionAt] :
         {// room to spare: 1920 - 600 - 8 - 820 = 492, half of it on each side
          Case{{0, 0, 1920, 1040}, {246, 0, 600, 450}, {854, 0, 820, 600}},
          // too narrow: the region window gets the 1300 - 708 = 592 pixels left
          Case{{100, 50, 1200, 700}, {100, 50, 600, 450}, {708, 50, 592, 600}},
          // too low as well: both as high as the screen
          Case{{0, 0, 1000, 400}, {0, 0, 600, 400}, {608, 0, 392, 400}}}) {
        const WindowPlaces places = SideBySide(available, {0, 0, 600, 450}, {0, 0, 820, 600});
        EXPECT_TRUE(places.main == mainAt && places.region == regionAt);
    }
    const std::vector<ScreenRect> screens{{0, 0, 1920, 1080}, {1920, 0, 1280, 1024}};
    EXPECT_TRUE(FitsOnAScreen({1920, 24, 1280, 1000}, screens));
    for (const ScreenRect& away : {ScreenRect{1800, 0, 400, 300}, {3000, 0, 400, 300}, {}})
        EXPECT_FALSE(FitsOnAScreen(away, screens));  // across two, on a screen gone, unsaved
}

TEST(RecentFiles, LatestFirstEachOnceAtMostEight) {
    RecentFiles recent({"b.xps", "a.vms", "b.xps", ""});
    for (const char* path : {"a.vms", "c.csv"}) recent.Add(path);
    EXPECT_EQ(recent.Paths(), (std::vector<std::string>{"c.csv", "a.vms", "b.xps"}));
    for (int k = 0; k < 8; ++k) recent.Add(std::to_string(k) + ".xps");
    recent.Remove("3.xps");
    EXPECT_EQ(recent.Paths(), (std::vector<std::string>{"7.xps", "6.xps", "5.xps", "4.xps", "2.xps",
                                                        "1.xps", "0.xps"}));
}

TEST(FitTrace, ChiSquareOnALogScaleAcrossTheBox) {
    FitTrace trace;
    for (float chi : {100.f, 10.f, 1.f}) trace.Add(chi);
    const auto line = trace.Polyline(10, 20);  // log10: 2, 1, 0 from the top to the bottom
    ASSERT_EQ(line.size(), 3u);
    EXPECT_EQ(std::tuple(line[0].x, line[0].y, line[1].x, line[1].y, line[2].x, line[2].y),
              std::tuple(0.0, 0.0, 5.0, 10.0, 10.0, 20.0));
    trace.Clear();  // a long fit: at most kMaxPoints kept, the first and the latest among them
    for (int k = 0; k < 10000; ++k) trace.Add(k == 9999 ? 0.5f : 7.f);
    const auto thinned = trace.Polyline(100, 10);
    EXPECT_LE(thinned.size(), FitTrace::kMaxPoints + 1);
    EXPECT_EQ(std::tuple(thinned.front().y, thinned.back().x, thinned.back().y),
              std::tuple(0.0, 100.0, 10.0));
}

}  // namespace
}  // namespace molvera
