#pragma once
// Peak curves, envelope, residual and chi-square of a region.

#include <array>
#include <memory>
#include <span>

#include "model/host.h"
#include "model/records.h"
#include "spectral/lineshape.h"

namespace molvera {

/// RangeCount bounded by the lengths of the region's six range arrays; never negative.
int UsableRangeCount(const Region& region);

/// All curves, envelope, residual and ChiSquare of the current region; updates its
/// share of TotalChiSquare; both chi-squares are reported.
void ComputeRegionEnvelope(Project& project, Host& host);

/// The same curves and ChiSquare (reported); TotalChiSquare is left to the caller.
void ComputeRegionEnvelopeKeepingTotal(Project& project, Host& host);

/// ComputeRegionEnvelope for every region with a background and peaks (as a project is
/// loaded), then the total as their sum; CurrentRegion is restored.
void RecomputeAllRegions(Project& project, Host& host);

/// Curves and ChiSquare of every region with a background, peaks or none, and
/// TotalChiSquare as their sum. Pass QuietHost() when nobody is to hear of it (a trial).
void RecomputeRegionsWithBackground(Project& project, Host& host);

/// PeakSumCurve and Residual of the current region's first m points from the curves its
/// peaks hold (none computed again); ChiSquare unchanged.
void SumPeakCurves(Project& project, int m);

/// Every peak curve of the current region, then PeakSumCurve and Residual without
/// peak q; ChiSquare unchanged.
void ResidualWithoutPeak(Project& project, int q);

/// The line-shape factors (PeakShape::Factors) of one peak at every range point of a
/// region, kept between trials of the peak's area: a trial whose peak differs from the
/// last one only in height rescales them instead of evaluating the exponentials again,
/// with the same bits. Sized when made; trials through it allocate nothing.
class AreaTrialCache {
public:
    explicit AreaTrialCache(const Region& region);
    /// True when the factors held are those of `shape` at E[1..m].
    bool Holds(const PeakShape& shape, const float* E, int m) const;
    /// Takes `shape` at E[1..m] as the one whose factors are being written; false when
    /// m does not fit.
    bool Take(const PeakShape& shape, const float* E, int m);
    /// Where the factors of the lines at points j.. are.
    LineFactorSpans Spans(int j);

private:
    std::size_t size_ = 0;
    std::unique_ptr<double[]> factors_;  ///< num and den of both lines, size_ each
    std::unique_ptr<float[]> energies_;
    std::array<PeakShape::Component, 2> lines_{};
    int lineCount_ = -1;
    int m_ = -1;
};

/// Region chi-square for q's present parameters after ResidualWithoutPeak(q):
/// at most one peak evaluation per range point, no allocation. Overwrites q's Curve only.
/// With a cache, a trial that changed only q's area reuses the line-shape factors.
float TrialChiSquare(Project& project, int q, AreaTrialCache* cache = nullptr);

/// Trials scored side by side by TrialChiSquares.
inline constexpr int kTrialBatch = 4;

/// TrialChiSquare for each of `values` in turn in `field`, a Single field of peak q:
/// scores[i] with the field at values[i]. The same bits, the field and q's Curve left as
/// after those calls one by one, but the trials run kTrialBatch at a time.
void TrialChiSquares(Project& project, int q, float& field, std::span<const float> values,
                     std::span<float> scores, AreaTrialCache* cache = nullptr);

}  // namespace molvera
