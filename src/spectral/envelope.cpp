#include "spectral/envelope.h"

#include <algorithm>
#include <cmath>

#include "spectral/lineshape.h"

namespace molvera {

namespace {

bool ValidRegion(int r) { return r >= 0 && r < kRegionCount; }
bool ValidSlot(int q) { return q >= 0 && q < kPeakSlots; }
int PeakCountOf(const Region& reg) { return std::clamp<int>(reg.PeakCount, 0, kMaxPeaksPerRegion); }

/// An arithmetic failure skips the assignment: a value that is not finite as a
/// Single is not stored and the old value stays.
void StoreIfFinite(float& target, double value) {
    const float f = static_cast<float>(value);
    if (std::isfinite(f)) target = f;
}

/// Curve of every peak of region r: the peak on top of the background. With
/// `guarded`, values that are not finite are skipped.
void ComputePeakCurves(Project& project, int r, int m, bool guarded) {
    Region& reg = project.Regions[r];
    const bool glSum = IsSet(project.Options.GLSum);
    for (int k = 0; k < PeakCountOf(reg); ++k) {
        const int q = reg.PeakIndex[k];
        if (!ValidSlot(q)) continue;
        Peak& peak = project.Peaks[q];
        if (peak.Curve.size() < static_cast<std::size_t>(m) + 1) peak.Curve.resize(m + 1, 0.0f);
        const PeakShape shape(glSum, peak, reg.Shift);
        for (int j = 1; j <= m; ++j) {
            const double v = static_cast<double>(shape(reg.RangeBE[j])) + reg.BackgroundCurve[j];
            if (guarded)
                StoreIfFinite(peak.Curve[j], v);
            else
                peak.Curve[j] = static_cast<float>(v);
        }
    }
}

/// Measured-count weight of a point: |R|, or 1 where R is 0.
double Weight(float measured) {
    const double w = std::fabs(static_cast<double>(measured));
    return w == 0 ? 1.0 : w;
}

/// Curves, envelope and residual of region r with failing steps skipped; the new
/// chi-square (0 when it cannot be formed, as for m = 0).
float EnvelopeChiSquare(Project& project, int r) {
    Region& reg = project.Regions[r];
    const int m = UsableRangeCount(reg);
    ComputePeakCurves(project, r, m, true);
    const int count = PeakCountOf(reg);
    float acc = 0;
    for (int j = 1; j <= m; ++j) {
        const double B = reg.BackgroundCurve[j];
        reg.PeakSumCurve[j] = reg.BackgroundCurve[j];
        for (int k = 0; k < count; ++k) {
            const int q = reg.PeakIndex[k];
            if (!ValidSlot(q)) continue;
            StoreIfFinite(
                reg.PeakSumCurve[j],
                reg.PeakSumCurve[j] + (static_cast<double>(project.Peaks[q].Curve[j]) - B));
        }
        StoreIfFinite(reg.Residual[j],
                      static_cast<double>(reg.RangeIntensity[j]) - reg.PeakSumCurve[j]);
        const double res = reg.Residual[j];
        StoreIfFinite(acc, acc + res * res / Weight(reg.RangeIntensity[j]));
    }
    float chi = 0;
    StoreIfFinite(chi, static_cast<double>(acc) / m);
    return chi;
}

}  // namespace

int UsableRangeCount(const Region& region) {
    std::size_t cap = region.RangeBE.size();
    for (const SingleArray* a : {&region.RangeIntensity, &region.BackgroundWork,
                                 &region.BackgroundCurve, &region.PeakSumCurve, &region.Residual})
        cap = std::min(cap, a->size());
    if (cap == 0) return 0;
    return std::clamp<int>(region.RangeCount, 0, static_cast<int>(cap - 1));
}

void ComputeRegionEnvelope(Project& project, Host& host) {
    const int r = project.CurrentRegion;
    if (!ValidRegion(r)) return;
    Region& reg = project.Regions[r];
    const float chi = EnvelopeChiSquare(project, r);
    const double old = IsSet(reg.HasData) ? reg.ChiSquare : 0.0f;
    StoreIfFinite(project.TotalChiSquare, static_cast<double>(project.TotalChiSquare) - old + chi);
    reg.ChiSquare = chi;
    host.ChiSquareChanged(r, chi);
    host.TotalChiSquareChanged(project.TotalChiSquare);
}

void ComputeRegionEnvelopeKeepingTotal(Project& project, Host& host) {
    const int r = project.CurrentRegion;
    if (!ValidRegion(r)) return;
    Region& reg = project.Regions[r];
    reg.ChiSquare = EnvelopeChiSquare(project, r);
    host.ChiSquareChanged(r, reg.ChiSquare);
}

void RecomputeAllRegions(Project& project, Host& host) {
    const Int16 saved = project.CurrentRegion;
    float total = 0;
    for (int r = 0; r < kRegionCount; ++r) {
        const Region& reg = project.Regions[r];
        if (!IsSet(reg.HasBackground) || reg.PeakCount < 1) continue;
        project.CurrentRegion = static_cast<Int16>(r);
        ComputeRegionEnvelope(project, host);
        StoreIfFinite(total, static_cast<double>(total) + reg.ChiSquare);
    }
    project.CurrentRegion = saved;
    project.TotalChiSquare = total;
    host.TotalChiSquareChanged(total);
}

void RecomputeRegionsWithBackground(Project& project, Host& host) {
    float total = 0;
    for (int r = 0; r < kRegionCount; ++r) {
        Region& reg = project.Regions[r];
        if (!IsSet(reg.HasBackground)) continue;
        reg.ChiSquare = EnvelopeChiSquare(project, r);
        host.ChiSquareChanged(r, reg.ChiSquare);
        StoreIfFinite(total, static_cast<double>(total) + reg.ChiSquare);
    }
    project.TotalChiSquare = total;
    host.TotalChiSquareChanged(total);
}

void ResidualWithoutPeak(Project& project, int q) {
    const int r = project.CurrentRegion;
    if (!ValidRegion(r)) return;
    Region& reg = project.Regions[r];
    const int m = UsableRangeCount(reg);
    ComputePeakCurves(project, r, m, false);
    const int count = PeakCountOf(reg);
    for (int j = 1; j <= m; ++j) {
        const double B = reg.BackgroundCurve[j];
        reg.PeakSumCurve[j] = reg.BackgroundCurve[j];
        for (int k = 0; k < count; ++k) {
            const int other = reg.PeakIndex[k];
            if (other == q || !ValidSlot(other)) continue;
            reg.PeakSumCurve[j] = static_cast<float>(
                reg.PeakSumCurve[j] + (static_cast<double>(project.Peaks[other].Curve[j]) - B));
        }
        reg.Residual[j] =
            static_cast<float>(static_cast<double>(reg.RangeIntensity[j]) - reg.PeakSumCurve[j]);
    }
}

float TrialChiSquare(Project& project, int q) {
    const int r = project.CurrentRegion;
    if (!ValidRegion(r) || !ValidSlot(q)) return 0;
    Region& reg = project.Regions[r];
    const int m = UsableRangeCount(reg);
    if (m == 0) return 0;
    Peak& peak = project.Peaks[q];
    // A curve that ResidualWithoutPeak did not size is only written where it exists.
    const int stored = std::min<int>(m, static_cast<int>(peak.Curve.size()) - 1);
    const PeakShape shape(IsSet(project.Options.GLSum), peak, reg.Shift);
    const float* E = reg.RangeBE.data();
    const float* R = reg.RangeIntensity.data();
    const float* B = reg.BackgroundCurve.data();
    const float* res = reg.Residual.data();
    float* curve = peak.Curve.data();
    float acc = 0;
    for (int j = 1; j <= m; ++j) {
        const float c = static_cast<float>(static_cast<double>(shape(E[j])) + B[j]);
        if (j <= stored) curve[j] = c;
        const double d = static_cast<double>(res[j]) - (static_cast<double>(c) - B[j]);
        acc = static_cast<float>(acc + d * d / Weight(R[j]));
    }
    return static_cast<float>(static_cast<double>(acc) / m);
}

}  // namespace molvera
