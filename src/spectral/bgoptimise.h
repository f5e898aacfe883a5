#pragma once
// Pieces of the background searches: the crossing test of the Shirley slope search,
// and the Tougaard background and its misfit over the head of the range.

#include "model/records.h"

namespace molvera {

/// Range points at the high binding-energy end that the Tougaard B1 search fits.
constexpr int kTougaardHeadPoints = 10;

/// True when BackgroundCurve[i] lies above the mean of RangeIntensity[i-4..i+4] for
/// some range point i in 5..m-5; a range of fewer than 10 points never crosses.
bool BackgroundCrosses(const Region& region);

/// The Tougaard background with B1 = `b1` at range points 1..10 only (1..m when the
/// range is shorter); the rest of BackgroundCurve is not touched.
void ComputeTougaardHead(Region& region, float b1);

/// Sum of (RangeIntensity[i] - BackgroundCurve[i])^2 over the same head points.
double HeadMisfit(const Region& region);

}  // namespace molvera
