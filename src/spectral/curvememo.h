#pragma once
// The last curve computed for each peak, so that a curve whose inputs did not change is
// not computed again.

#include <array>

#include "model/records.h"

namespace molvera {

/// True when a[1..m] and b[1..m] hold the same bits.
bool SameValues(const float* a, const float* b, int m);

/// What a peak's curve over m points of region r is computed from besides the region's
/// energies and background.
struct CurveInputs {
    int region = -1;
    int m = -1;
    bool glSum = false;
    float shift = 0, position = 0, area = 0, fwhm = 0, splitting = 0, tailScale = 0, tailLength = 0;
    Int16 percentGL = 0;
    Subshell type = Subshell::None;

    CurveInputs() = default;
    CurveInputs(int r, int count, bool sum, const Region& reg, const Peak& peak);
    /// Equal bit for bit (a NaN input equals itself, 0 and -0 differ).
    bool Same(const CurveInputs& o) const;
};

/// The last curve computed for each peak slot with what it was computed from. Every
/// input is compared, the region's range energies and background included, and so is
/// the stored curve itself: a curve is reused only where computing it again would store
/// the same bits.
class CurveMemo {
public:
    /// Checks region r's energies and background against the last ones seen; a change
    /// forgets the curves computed over the old ones.
    void SeeRegion(int r, const Region& reg, int m);
    /// True when q's curve holds exactly what computing it from `in` would store.
    bool Holds(int q, const CurveInputs& in, const SingleArray& curve) const;
    /// q's curve was computed from `in`; `exact` is false when a value was skipped.
    void Record(int q, const CurveInputs& in, const SingleArray& curve, bool exact);

private:
    struct RegionSnapshot {
        int m = -1;
        long generation = 0;
        SingleArray E, B;
    };
    struct Entry {
        bool valid = false;
        long generation = 0;
        CurveInputs in;
        SingleArray curve;
    };
    std::array<RegionSnapshot, kRegionCount> regions_{};
    std::array<Entry, kPeakSlots> peaks_{};
};

/// The memo of the calling thread: invisible but for the time it saves.
CurveMemo& ThreadCurveMemo();

}  // namespace molvera
