#include "spectral/curvememo.h"

#include <bit>
#include <cstdint>
#include <cstring>

namespace molvera {

bool SameValues(const float* a, const float* b, int m) {
    return std::memcmp(a + 1, b + 1, static_cast<std::size_t>(m) * sizeof(float)) == 0;
}

CurveInputs::CurveInputs(int r, int count, bool sum, const Region& reg, const Peak& peak)
    : region(r),
      m(count),
      glSum(sum),
      shift(reg.Shift),
      position(peak.Position),
      area(peak.Area),
      fwhm(peak.FWHM),
      splitting(peak.Splitting),
      tailScale(peak.TailScale),
      tailLength(peak.TailLength),
      percentGL(peak.PercentGL),
      type(peak.PeakType) {}

bool CurveInputs::Same(const CurveInputs& o) const {
    auto bits = [](float f) { return std::bit_cast<std::uint32_t>(f); };
    return region == o.region && m == o.m && glSum == o.glSum && percentGL == o.percentGL &&
           type == o.type && bits(shift) == bits(o.shift) && bits(position) == bits(o.position) &&
           bits(area) == bits(o.area) && bits(fwhm) == bits(o.fwhm) &&
           bits(splitting) == bits(o.splitting) && bits(tailScale) == bits(o.tailScale) &&
           bits(tailLength) == bits(o.tailLength);
}

void CurveMemo::SeeRegion(int r, const Region& reg, int m) {
    RegionSnapshot& s = regions_[r];
    if (s.m == m && SameValues(s.E.data(), reg.RangeBE.data(), m) &&
        SameValues(s.B.data(), reg.BackgroundCurve.data(), m))
        return;
    s.m = m;
    s.E.assign(reg.RangeBE.begin(), reg.RangeBE.begin() + m + 1);
    s.B.assign(reg.BackgroundCurve.begin(), reg.BackgroundCurve.begin() + m + 1);
    ++s.generation;
}

bool CurveMemo::Holds(int q, const CurveInputs& in, const SingleArray& curve) const {
    const Entry& e = peaks_[q];
    return e.valid && e.generation == regions_[in.region].generation && e.in.Same(in) &&
           SameValues(e.curve.data(), curve.data(), in.m);
}

void CurveMemo::Record(int q, const CurveInputs& in, const SingleArray& curve, bool exact) {
    Entry& e = peaks_[q];
    e.valid = exact;
    if (!exact) return;
    e.in = in;
    e.generation = regions_[in.region].generation;
    e.curve.assign(curve.begin(), curve.begin() + in.m + 1);
}

CurveMemo& ThreadCurveMemo() {
    thread_local CurveMemo memo;
    return memo;
}

}  // namespace molvera
