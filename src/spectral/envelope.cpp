#include "spectral/envelope.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cmath>
#include <cstdint>
#include <memory>
#include <optional>
#include <type_traits>

#include "spectral/curvememo.h"
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
/// `guarded`, values that are not finite are skipped. A curve whose inputs did not
/// change since it was computed is left as it is.
void ComputePeakCurves(Project& project, int r, int m, bool guarded) {
    Region& reg = project.Regions[r];
    const bool glSum = IsSet(project.Options.GLSum);
    CurveMemo& memo = ThreadCurveMemo();
    if (m > 0) memo.SeeRegion(r, reg, m);
    for (int k = 0; k < PeakCountOf(reg); ++k) {
        const int q = reg.PeakIndex[k];
        if (!ValidSlot(q)) continue;
        Peak& peak = project.Peaks[q];
        if (peak.Curve.size() < static_cast<std::size_t>(m) + 1) peak.Curve.resize(m + 1, 0.0f);
        const CurveInputs in(r, m, glSum, reg, peak);
        if (m == 0 || memo.Holds(q, in, peak.Curve)) continue;
        const PeakShape shape(glSum, peak, reg.Shift);
        bool exact = true;
        std::array<float, kShapeBlock> values;
        for (int j0 = 1; j0 <= m; j0 += kShapeBlock) {
            const int n = std::min(kShapeBlock, m + 1 - j0);
            shape.Values(&reg.RangeBE[j0], n, values.data(), &reg.BackgroundCurve[j0]);
            for (int i = 0; i < n; ++i) {
                const int j = j0 + i;
                const double v = static_cast<double>(values[i]) + reg.BackgroundCurve[j];
                if (guarded) {
                    const float f = static_cast<float>(v);
                    if (std::isfinite(f))
                        peak.Curve[j] = f;
                    else
                        exact = false;
                } else {
                    peak.Curve[j] = static_cast<float>(v);
                }
            }
        }
        memo.Record(q, in, peak.Curve, exact);
    }
}

/// Measured-count weight of a point: |R|, or 1 where R is 0.
double Weight(float measured) {
    const double w = std::fabs(static_cast<double>(measured));
    return w + static_cast<double>(w == 0);  // w + 0 is w: no branch, so loops vectorise
}

/// Calls block(j, n) over j = 1..m: whole blocks of kShapeBlock points, then single
/// points. n is a std::integral_constant: loops over it have a constant length and
/// vectorise.
template <typename Block>
[[gnu::always_inline]] inline void ForBlocks(int m, Block block) {
    int j = 1;
    for (; j + kShapeBlock - 1 <= m; j += kShapeBlock)
        block(j, std::integral_constant<int, kShapeBlock>{});
    for (; j <= m; ++j) block(j, std::integral_constant<int, 1>{});
}

/// sum + (curve - background) into sum at N points, in double and rounded to a Single;
/// with `guarded`, a sum that is not finite is not stored.
template <int N>
[[gnu::always_inline]] inline void AddToPeakSum(float* __restrict sum,
                                                const float* __restrict curve,
                                                const float* __restrict background, bool guarded) {
    for (int k = 0; k < N; ++k) {
        const auto f = static_cast<float>(
            sum[k] + (static_cast<double>(curve[k]) - static_cast<double>(background[k])));
        sum[k] = !guarded || std::isfinite(f) ? f : sum[k];
    }
}

/// measured - sum into residual at N points; with `guarded`, only where it is finite.
template <int N>
[[gnu::always_inline]] inline void Residuals(const float* __restrict measured,
                                             const float* __restrict sum,
                                             float* __restrict residual, bool guarded) {
    for (int k = 0; k < N; ++k) {
        const auto f = static_cast<float>(static_cast<double>(measured[k]) - sum[k]);
        residual[k] = !guarded || std::isfinite(f) ? f : residual[k];
    }
}

/// PeakSumCurve and Residual of region r from its background and the curves of its
/// peaks but peak `without` (-1: none). Point by point the peaks are added in the order
/// of PeakIndex, as point after point would.
MOLVERA_BLOCK_CLONES void SumPeaks(Project& project, int r, int m, int without, bool guarded) {
    if (m <= 0) return;
    Region& reg = project.Regions[r];
    float* sum = reg.PeakSumCurve.data();
    const float* background = reg.BackgroundCurve.data();
    std::copy(background + 1, background + m + 1, sum + 1);
    for (int k = 0; k < PeakCountOf(reg); ++k) {
        const int q = reg.PeakIndex[k];
        if (q == without || !ValidSlot(q)) continue;
        const float* curve = project.Peaks[q].Curve.data();
        ForBlocks(m, [&](int j, auto n) {
            AddToPeakSum<n>(sum + j, curve + j, background + j, guarded);
        });
    }
    const float* measured = reg.RangeIntensity.data();
    float* residual = reg.Residual.data();
    ForBlocks(m,
              [&](int j, auto n) { Residuals<n>(measured + j, sum + j, residual + j, guarded); });
}

/// Curves, envelope and residual of region r with failing steps skipped; the new
/// chi-square (0 when it cannot be formed, as for m = 0).
float EnvelopeChiSquare(Project& project, int r) {
    Region& reg = project.Regions[r];
    const int m = UsableRangeCount(reg);
    ComputePeakCurves(project, r, m, true);
    SumPeaks(project, r, m, -1, true);
    const float* R = reg.RangeIntensity.data();
    const float* residual = reg.Residual.data();
    float acc = 0;
    std::array<double, kShapeBlock> t;
    ForBlocks(m, [&](int j, auto n) {
        for (int k = 0; k < n; ++k) {
            const double res = residual[j + k];
            t[k] = res * res / Weight(R[j + k]);
        }
        for (int k = 0; k < n; ++k) StoreIfFinite(acc, acc + t[k]);
    });
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

void SumPeakCurves(Project& project, int m) {
    const int r = project.CurrentRegion;
    if (ValidRegion(r)) SumPeaks(project, r, m, -1, false);
}

void ResidualWithoutPeak(Project& project, int q) {
    const int r = project.CurrentRegion;
    if (!ValidRegion(r)) return;
    const int m = UsableRangeCount(project.Regions[r]);
    ComputePeakCurves(project, r, m, false);
    SumPeaks(project, r, m, q, false);
}

namespace {

/// Equal but for the height, bit for bit.
bool SameButHeight(const PeakShape::Component& a, const PeakShape::Component& b) {
    auto bits = [](double v) { return std::bit_cast<std::uint64_t>(v); };
    return a.glSum == b.glSum && a.tail == b.tail && bits(a.p) == bits(b.p) &&
           bits(a.w) == bits(b.w) && bits(a.m) == bits(b.m) &&
           bits(a.gaussCoef) == bits(b.gaussCoef) && bits(a.TS) == bits(b.TS) &&
           bits(a.TL) == bits(b.TL);
}

}  // namespace

AreaTrialCache::AreaTrialCache(const Region& region)
    : size_(static_cast<std::size_t>(UsableRangeCount(region)) + 1),
      factors_(std::make_unique_for_overwrite<double[]>(4 * size_)),
      energies_(std::make_unique_for_overwrite<float[]>(size_)) {}

bool AreaTrialCache::Holds(const PeakShape& shape, const float* E, int m) const {
    if (m != m_ || shape.LineCount() != lineCount_) return false;
    for (int i = 0; i < lineCount_; ++i) {
        if (!SameButHeight(shape.LineAt(i), lines_[i])) return false;
    }
    return SameValues(energies_.get(), E, m);
}

bool AreaTrialCache::Take(const PeakShape& shape, const float* E, int m) {
    lineCount_ = -1;
    if (static_cast<std::size_t>(m) + 1 > size_) return false;
    lineCount_ = shape.LineCount();
    for (int i = 0; i < lineCount_; ++i) lines_[i] = shape.LineAt(i);
    m_ = m;
    std::copy(E + 1, E + m + 1, energies_.get() + 1);
    return true;
}

LineFactorSpans AreaTrialCache::Spans(int j) {
    double* f = factors_.get() + j;
    return {{f, f + size_}, {f + 2 * size_, f + 3 * size_}};
}

namespace {

/// The arrays of a trial besides the energies.
struct TrialArrays {
    const float* B;
    const float* res;
    const float* R;
    float* curve;
    int stored;  ///< the curve is written up to here
};

/// The terms of N points of a trial from the peak's values v there; v becomes the curve.
template <int N>
[[gnu::always_inline]] inline void TrialTerms(const float* __restrict B,
                                              const float* __restrict res,
                                              const float* __restrict R, float* __restrict v,
                                              double* __restrict t) {
    for (int k = 0; k < N; ++k) {
        const float c = static_cast<float>(static_cast<double>(v[k]) + B[k]);
        v[k] = c;
        const double d = static_cast<double>(res[k]) - (static_cast<double>(c) - B[k]);
        t[k] = d * d / Weight(R[k]);
    }
}

/// TrialTerms over a whole block.
MOLVERA_BLOCK_CLONES void TrialTermsOfBlock(const float* B, const float* res, const float* R,
                                            float* v, double* t) {
    TrialTerms<kShapeBlock>(B, res, R, v, t);
}

/// How a trial gets the factors of its lines.
enum class FactorSource { Local, Keep, Reuse };

/// T trials of one peak in order, the shapes given: their chi-squares into scores, the
/// peak's curve as the last one writes it. Each trial's sum is serial as for one trial
/// alone; the T sums run side by side.
template <int T>
void ScoreTrials(const float* E, int m, const TrialArrays& a,
                 const std::array<const PeakShape*, kTrialBatch>& shapes, AreaTrialCache* cache,
                 float* scores) {
    std::array<FactorSource, T> source{};
    for (int i = 0; i < T; ++i) {
        if (cache == nullptr) continue;
        if (cache->Holds(*shapes[i], E, m))
            source[i] = FactorSource::Reuse;
        else if (cache->Take(*shapes[i], E, m))
            source[i] = FactorSource::Keep;
    }
    std::array<std::array<double, kShapeBlock>, 2> num;
    std::array<std::array<double, kShapeBlock>, 2> den;
    const LineFactorSpans local{{num[0].data(), num[1].data()}, {den[0].data(), den[1].data()}};
    std::array<std::array<float, kShapeBlock>, T> v;
    std::array<std::array<double, kShapeBlock>, T> t;
    std::array<float, T> acc{};
    for (int j = 1; j <= m; j += kShapeBlock) {
        const int n = std::min(kShapeBlock, m + 1 - j);
        // Trial by trial over the block, so that factors kept by one are there for the next.
        for (int i = 0; i < T; ++i) {
            const LineFactorSpans f = source[i] == FactorSource::Local ? local : cache->Spans(j);
            // Kept factors serve other heights: they leave nothing out.
            if (source[i] != FactorSource::Reuse)
                shapes[i]->Factors(E + j, n, f,
                                   source[i] == FactorSource::Local ? a.B + j : nullptr);
            shapes[i]->FromFactors(f, n, v[i].data());
            if (n == kShapeBlock) {
                TrialTermsOfBlock(a.B + j, a.res + j, a.R + j, v[i].data(), t[i].data());
            } else {
                for (int k = 0; k < n; ++k)
                    TrialTerms<1>(a.B + j + k, a.res + j + k, a.R + j + k, v[i].data() + k,
                                  t[i].data() + k);
            }
        }
        std::copy_n(v[T - 1].data(), std::clamp(a.stored - j + 1, 0, n), a.curve + j);
        for (int k = 0; k < n; ++k) {
            for (int i = 0; i < T; ++i) acc[i] = static_cast<float>(acc[i] + t[i][k]);
        }
    }
    for (int i = 0; i < T; ++i) scores[i] = static_cast<float>(static_cast<double>(acc[i]) / m);
}

/// The trial arrays of peak q in the current region, m its range count; false when
/// there is nothing to score.
bool TrialSetUp(Project& project, int q, TrialArrays& a, int& m) {
    const int r = project.CurrentRegion;
    if (!ValidRegion(r) || !ValidSlot(q)) return false;
    Region& reg = project.Regions[r];
    m = UsableRangeCount(reg);
    if (m == 0) return false;
    Peak& peak = project.Peaks[q];
    // A curve that ResidualWithoutPeak did not size is only written where it exists.
    a = {reg.BackgroundCurve.data(), reg.Residual.data(), reg.RangeIntensity.data(),
         peak.Curve.data(), std::min<int>(m, static_cast<int>(peak.Curve.size()) - 1)};
    return true;
}

}  // namespace

float TrialChiSquare(Project& project, int q, AreaTrialCache* cache) {
    TrialArrays a{};
    int m = 0;
    if (!TrialSetUp(project, q, a, m)) return 0;
    const Region& reg = project.Current();
    const PeakShape shape(IsSet(project.Options.GLSum), project.Peaks[q], reg.Shift);
    float score = 0;
    ScoreTrials<1>(reg.RangeBE.data(), m, a, {&shape}, cache, &score);
    return score;
}

void TrialChiSquares(Project& project, int q, float& field, std::span<const float> values,
                     std::span<float> scores, AreaTrialCache* cache) {
    TrialArrays a{};
    int m = 0;
    if (!TrialSetUp(project, q, a, m)) {
        if (!values.empty()) field = values.back();
        std::fill(scores.begin(), scores.end(), 0.0f);
        return;
    }
    const Region& reg = project.Current();
    const bool glSum = IsSet(project.Options.GLSum);
    for (std::size_t i0 = 0; i0 < values.size(); i0 += kTrialBatch) {
        const int count = static_cast<int>(std::min<std::size_t>(kTrialBatch, values.size() - i0));
        std::array<std::optional<PeakShape>, kTrialBatch> shapes;
        std::array<const PeakShape*, kTrialBatch> batch{};
        for (int i = 0; i < count; ++i) {
            field = values[i0 + i];
            batch[i] = &shapes[i].emplace(glSum, project.Peaks[q], reg.Shift);
        }
        const float* E = reg.RangeBE.data();
        float* out = scores.data() + i0;
        switch (count) {
            case 1:
                ScoreTrials<1>(E, m, a, batch, cache, out);
                break;
            case 2:
                ScoreTrials<2>(E, m, a, batch, cache, out);
                break;
            case 3:
                ScoreTrials<3>(E, m, a, batch, cache, out);
                break;
            default:
                ScoreTrials<kTrialBatch>(E, m, a, batch, cache, out);
                break;
        }
    }
}

}  // namespace molvera
