#include "spectral/bgoptimise.h"

#include <algorithm>

#include "spectral/envelope.h"

namespace molvera {

namespace {

constexpr float kTougaardC = 1643.0f;  // C of the universal loss function, eV^2
constexpr int kSmoothHalfWidth = 4;    // the crossing test smooths over 9 points

int HeadPoints(const Region& region) {
    return std::min(UsableRangeCount(region), kTougaardHeadPoints);
}

}  // namespace

bool BackgroundCrosses(const Region& region) {
    const int m = UsableRangeCount(region);
    const SingleArray& y = region.RangeIntensity;
    for (int i = kSmoothHalfWidth + 1; i <= m - kSmoothHalfWidth - 1; ++i) {
        double sum = 0;
        for (int j = i - kSmoothHalfWidth; j <= i + kSmoothHalfWidth; ++j) sum += y[j];
        if (region.BackgroundCurve[i] > sum / (2 * kSmoothHalfWidth + 1)) return true;
    }
    return false;
}

void ComputeTougaardHead(Region& region, float b1) {
    const int m = UsableRangeCount(region);
    if (m < 2) return;
    const int head = HeadPoints(region);
    const SingleArray& L = region.BackgroundWork;
    SingleArray& curve = region.BackgroundCurve;
    if (L[1] < L[m]) {
        std::copy(L.begin() + 1, L.begin() + head + 1, curve.begin() + 1);
        return;
    }
    const SingleArray& y = region.RangeIntensity;
    const double dE = static_cast<double>(region.RangeBE[1]) - region.RangeBE[2];
    // Same arithmetic as ComputeTougaard, so that a trial equals the full background.
    for (int i = 1; i <= head; ++i) {
        double k = 0;
        for (int j = i + 1; j <= m; ++j) {
            const double T = (j - i) * dE;
            const double D = static_cast<float>(T * T + kTougaardC);
            k += (static_cast<double>(y[j]) - y[m]) * ((T * dE / D) / D);
        }
        curve[i] = static_cast<float>(y[m] + static_cast<double>(b1) * k);
    }
}

double HeadMisfit(const Region& region) {
    const int head = HeadPoints(region);
    double sum = 0;
    for (int i = 1; i <= head; ++i) {
        const double d = static_cast<double>(region.RangeIntensity[i]) - region.BackgroundCurve[i];
        sum += d * d;
    }
    return sum;
}

}  // namespace molvera
