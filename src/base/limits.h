#pragma once
// Fixed capacity of a project.

namespace molvera {

constexpr int kRegionCount = 10;         ///< region slots 0..9
constexpr int kPeakSlots = 51;           ///< peak slots 0..50
constexpr int kMaxPeaksPerRegion = 10;   ///< entries of PeakIndex
constexpr int kMaxPoints = 5000;         ///< data points per region
constexpr int kDescriptionLength = 128;  ///< characters stored in the project file
constexpr int kCaptionLength = 20;
constexpr int kPeakButtonCount = kRegionCount * kMaxPeaksPerRegion;  ///< main-window peak buttons

}  // namespace molvera
