#include "spectral/background.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <utility>

#include "base/numtext.h"
#include "model/project.h"
#include "spectral/envelope.h"
#include "spectral/lineshape.h"

namespace molvera {

namespace {

constexpr float kTougaardC = 1643.0f;  // C of the universal loss function, eV^2
constexpr int kShirleyPasses = 30;

// Working arrays of the background computations, indexed 0..5000 and reused by
// every call: Shirley net intensity N, remainder R, increment A, tail sum S;
// Tougaard loss sum K, plus the loss weight of each point distance.
std::array<float, kMaxPoints + 1> gN;
std::array<double, kMaxPoints + 1> gR;
std::array<float, kMaxPoints + 1> gA;
std::array<float, kMaxPoints + 1> gS;
std::array<double, kMaxPoints + 1> gK;
std::array<double, kMaxPoints + 1> gLossWeight;
std::array<double, kMaxPoints + 1> gNetY;

/// Points usable by the background computations (at most the working arrays' size).
int BackgroundPoints(const Region& region) {
    return std::min(UsableRangeCount(region), kMaxPoints);
}

/// Number of data points that the spectrum arrays really hold.
int DataPoints(const Region& region) {
    const std::size_t cap = std::min(region.BindingEnergy.size(), region.RawIntensity.size());
    if (cap == 0) return 0;
    return std::clamp<int>(region.PointCount, 0, static_cast<int>(cap - 1));
}

/// The linear background through the two end averages, when it is all there is.
bool UseLinearInstead(Region& region, int m) {
    const SingleArray& L = region.BackgroundWork;
    if (m >= 2 && !(L[1] < L[m])) return false;
    std::copy(L.begin() + 1, L.begin() + m + 1, region.BackgroundCurve.begin() + 1);
    return true;
}

/// Energy step of the range, positive for falling binding energies.
double EnergyStep(const Region& region) {
    return static_cast<double>(region.RangeBE[1]) - region.RangeBE[2];
}

/// Step 2: the data indices nearest to the two boundary energies (strict: the
/// first of equally near points wins; no point within 100 eV keeps the old index).
void FindRangeEnds(Region& reg, int n) {
    double minLow = 10000, minHigh = 10000;
    for (int i = 1; i <= n; ++i) {
        const double dLow = static_cast<double>(reg.BindingEnergy[i]) - reg.BackgroundLowBE;
        const double dHigh = static_cast<double>(reg.BindingEnergy[i]) - reg.BackgroundHighBE;
        if (dLow * dLow < minLow) {
            minLow = dLow * dLow;
            reg.RangeEnd = static_cast<Int16>(i);
        }
        if (dHigh * dHigh < minHigh) {
            minHigh = dHigh * dHigh;
            reg.RangeStart = static_cast<Int16>(i);
        }
    }
}

/// Step 3: m from the mean data step, bounded by what the range arrays can hold.
int RangeCountFor(const Region& reg, int n) {
    const double span = static_cast<double>(reg.BindingEnergy[1]) - reg.BindingEnergy[n];
    const double m =
        RoundHalfEven(std::fabs((static_cast<double>(reg.BackgroundHighBE) - reg.BackgroundLowBE) *
                                (n - 1) / span) +
                      1);
    std::size_t cap = reg.RangeBE.size();
    for (const SingleArray* a : {&reg.RangeIntensity, &reg.BackgroundWork, &reg.BackgroundCurve,
                                 &reg.PeakSumCurve, &reg.Residual})
        cap = std::min(cap, a->size());
    const int limit = static_cast<int>(std::min<std::size_t>(cap == 0 ? 0 : cap - 1, kMaxPoints));
    return m <= limit ? static_cast<int>(m) : limit;  // also for a span of 0 (NaN or inf)
}

}  // namespace

void RecomputeRegion(Project& project, Host& host) {
    const int r = project.CurrentRegion;
    if (r < 0 || r >= kRegionCount) return;
    Region& reg = project.Regions[r];
    const int n = DataPoints(reg);
    if (n < 1) return;

    if (reg.BackgroundLowBE > reg.BackgroundHighBE)
        std::swap(reg.BackgroundLowBE, reg.BackgroundHighBE);
    FindRangeEnds(reg, n);
    const int m = RangeCountFor(reg, n);
    reg.RangeCount = static_cast<Int16>(m);

    const int peakCount = std::clamp<int>(reg.PeakCount, 0, kMaxPeaksPerRegion);
    for (int k = 0; k < peakCount; ++k) {
        const int q = reg.PeakIndex[k];
        if (q >= 0 && q < kPeakSlots) ResizePeakCurve(project, q, m);
    }

    CopyRangeFromSpectrum(reg);
    AverageEndPoints(reg);

    // A single range point has no step: its background is flat at the start average.
    reg.LinearStep =
        m >= 2
            ? static_cast<float>((static_cast<double>(reg.EndAverage) - reg.StartAverage) / (m - 1))
            : 0.0f;
    for (int j = 1; j <= m; ++j)
        reg.BackgroundWork[j] =
            static_cast<float>(reg.StartAverage + (j - 1) * static_cast<double>(reg.LinearStep));

    ComputeBackground(reg);
    MeasureNetRange(reg);
    reg.NetScale = static_cast<float>((static_cast<double>(reg.NetMax) - reg.NetMin) / 100);

    for (int k = 0; k < peakCount; ++k) {
        const int q = reg.PeakIndex[k];
        if (q < 0 || q >= kPeakSlots) continue;
        Peak& peak = project.Peaks[q];
        if (IsSet(project.KeepAreas)) {
            const float h = AreaToHeightPercent(project, peak);
            if (std::isfinite(h)) peak.HeightPercent = h;
        } else {
            const float a = HeightPercentToArea(project, peak);
            if (std::isfinite(a)) peak.Area = a;
        }
    }
    ComputeRegionEnvelope(project, host);
}

void CopyRangeFromSpectrum(Region& region) {
    // Range point j is data point RangeStart + j - 1; reads stay inside 1..n.
    const int n = DataPoints(region);
    const int m = UsableRangeCount(region);
    for (int j = 1; j <= m; ++j) {
        const int i = std::clamp(region.RangeStart + j - 1, 1, n);
        region.RangeBE[j] = region.BindingEnergy[i];
        region.RangeIntensity[j] = region.RawIntensity[i];
    }
}

void ComputeBackground(Region& region) {
    const int m = UsableRangeCount(region);
    switch (region.BackgroundType) {
        case BackgroundKind::Shirley:
            ComputeShirley(region);
            break;
        case BackgroundKind::Linear:
            std::copy(region.BackgroundWork.begin() + 1, region.BackgroundWork.begin() + m + 1,
                      region.BackgroundCurve.begin() + 1);
            break;
        case BackgroundKind::Tougaard:
            ComputeTougaard(region);
            break;
        default:
            break;  // no new background
    }
}

void MeasureNetRange(Region& region) {
    region.NetMax = 0;
    region.NetMin = 10000000;
    const int m = UsableRangeCount(region);
    for (int j = 1; j <= m; ++j) {
        const double d = static_cast<double>(region.RangeIntensity[j]) - region.BackgroundCurve[j];
        if (d > region.NetMax) region.NetMax = static_cast<float>(d);
        if (d < region.NetMin) region.NetMin = static_cast<float>(d);
    }
}

void AverageEndPoints(Region& region) {
    region.EndAverage = 0;
    region.StartAverage = 0;
    if (region.EndPointAverage == 0) region.EndPointAverage = 1;
    const int n = DataPoints(region);
    if (n >= 1) {
        const int h = region.EndPointAverage / 2;
        for (int i = -h; i <= h; ++i) {
            const int e = std::clamp(region.RangeEnd + i, 1, n);
            region.EndAverage =
                static_cast<float>(static_cast<double>(region.EndAverage) + region.RawIntensity[e]);
            const int s = std::clamp(region.RangeStart + i, 1, n);
            region.StartAverage = static_cast<float>(static_cast<double>(region.StartAverage) +
                                                     region.RawIntensity[s]);
        }
        // Divided by the count asked for, not by the distinct points read.
        region.EndAverage =
            static_cast<float>(static_cast<double>(region.EndAverage) / region.EndPointAverage);
        region.StartAverage =
            static_cast<float>(static_cast<double>(region.StartAverage) / region.EndPointAverage);
    }
    const int m = UsableRangeCount(region);
    if (m >= 1) {
        region.RangeIntensity[1] = region.StartAverage;
        region.RangeIntensity[m] = region.EndAverage;
    }
}

void ComputeShirley(Region& region) {
    const int m = BackgroundPoints(region);
    if (m < 1 || UseLinearInstead(region, m)) return;
    const SingleArray& y = region.RangeIntensity;
    const float Lm = region.BackgroundWork[m];
    const double s = region.BackgroundParameter;
    const double dE = EnergyStep(region);

    for (int j = 1; j <= m; ++j) gN[j] = static_cast<float>(static_cast<double>(y[j]) - Lm);
    for (int j = 1; j <= m; ++j) gR[j] = gN[j] - s * (m - j);
    float k = 0;
    for (int pass = 0; pass < kShirleyPasses; ++pass) {
        for (int j = 2; j <= m; ++j) gA[j] = static_cast<float>(gR[j - 1] * dE);
        gS[m] = 0;
        for (int j = m - 1; j >= 1; --j)
            gS[j] = static_cast<float>(static_cast<double>(gS[j + 1]) + gA[j + 1]);
        // A zero tail sum gives an infinite or undefined k; the passes go on with it.
        k = static_cast<float>((gN[1] - m * s) / gS[1]);
        for (int j = 1; j <= m; ++j) gR[j] = (gN[j] - static_cast<double>(k) * gS[j]) - s * (m - j);
    }
    for (int j = 1; j <= m; ++j)
        region.BackgroundCurve[j] = static_cast<float>(Lm + (gN[j] - gR[j]));
}

void ComputeTougaard(Region& region) {
    const int m = BackgroundPoints(region);
    if (m < 1 || UseLinearInstead(region, m)) return;
    const SingleArray& y = region.RangeIntensity;
    const double B = region.BackgroundParameter;
    const double dE = EnergyStep(region);

    // The loss weight T dE / D / D depends only on the distance d = j - i, with
    // T = d dE and D = T^2 + C in Single.
    for (int d = 1; d < m; ++d) {
        const double T = d * dE;
        const double D = static_cast<float>(T * T + kTougaardC);
        gLossWeight[d] = (T * dE / D) / D;
    }
    for (int j = 1; j <= m; ++j) gNetY[j] = static_cast<double>(y[j]) - y[m];
    gK[m] = 0;
    for (int i = 1; i < m; ++i) {
        double sum = 0;
        for (int d = 1; d <= m - i; ++d) sum += gNetY[i + d] * gLossWeight[d];
        gK[i] = sum;
    }
    for (int i = 1; i <= m; ++i) region.BackgroundCurve[i] = static_cast<float>(y[m] + B * gK[i]);
}

double NetArea(const Region& region) {
    const int m = UsableRangeCount(region);
    if (m < 2) return 0;
    double sum = 0;
    for (int j = 1; j <= m; ++j)
        sum += static_cast<double>(region.RangeIntensity[j]) - region.BackgroundCurve[j];
    return EnergyStep(region) * sum;
}

void UpdateDataExtents(Region& region) {
    region.MaxBE = 0;
    region.MaxIntensity = 0;
    region.MinBE = 10000000;
    region.MinIntensity = 10000000;
    const int n = DataPoints(region);
    for (int i = 1; i <= n; ++i) {
        const float be = region.BindingEnergy[i];
        const float y = region.RawIntensity[i];
        if (be > region.MaxBE) region.MaxBE = be;
        if (be < region.MinBE) region.MinBE = be;
        if (y > region.MaxIntensity) region.MaxIntensity = y;
        if (y < region.MinIntensity) region.MinIntensity = y;
    }
}

}  // namespace molvera
