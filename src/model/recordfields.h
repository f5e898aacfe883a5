#pragma once
// The fields of the Region, Peak and constraint records, listed once in file order with
// what a reader checks. Reading and writing the files, the JSON dump and the reports all
// go through these lists.

#include <concepts>
#include <cstddef>
#include <type_traits>
#include <utility>

#include "base/limits.h"
#include "model/records.h"

namespace molvera {

/// The layouts of the project file, oldest first. A field added in a later layout is
/// absent from the records of an older one.
enum class RecordLayout { Unversioned, V30, V40 };

/// True when `value` lies in lo..hi.
constexpr bool InRange(int value, int lo, int hi) { return value >= lo && value <= hi; }
template <typename E>
requires std::is_enum_v<E>
constexpr bool InRange(E value, E lo, E hi) { return value >= lo && value <= hi; }

/// `R` is `Record` or `const Record`.
template <typename R, typename Record>
concept RecordOf = std::same_as<std::remove_const_t<R>, Record>;

// VisitFields(record, v) hands every field of the record to the visitor `v`, in file
// order, through these calls (`name` is the field's name in the record; a const record
// gives const references):
//   v.Field(name, x)               an Int16 (or an enum over Int16), a Single or a Text20
//   v.Indices(name, slots, count)  an array of Int16 that must each lie in 0..count-1,
//                                  each checked as soon as it is read
//   v.Points(name, a, size)        a Single array of a region, `size` elements long
//                                  (PointCount + 1) where a layout fixes the length
//   v.Curve(name, a, region)       a peak's Single array over the range of region `region`
//   v.Check(name, ok)              a reader refuses the record unless `ok`, which the
//                                  fields read so far decide
//   v.Holds(layout)                false when the record read is older than `layout`:
//                                  the fields that follow are not in it
//   v.Record(name, sub)            a record inside the record, visited with VisitFields

/// The part of a visitor that takes every field as it stands (writers, dumps): no
/// checks, and the fields of every layout.
struct EveryField {
    static void Check(const char*, bool) {}
    static bool Holds(RecordLayout) { return true; }
};

/// The region record: spectrum, background settings, range and curves.
template <RecordOf<Region> R, typename V>
void VisitFields(R& r, V& v) {
    v.Field("HasData", r.HasData);
    v.Field("ImportRegionNumber", r.ImportRegionNumber);
    v.Field("Caption", r.Caption);
    v.Field("PointCount", r.PointCount);
    v.Check("PointCount", InRange(r.PointCount, 1, kMaxPoints));
    const std::size_t points = static_cast<std::size_t>(r.PointCount) + 1;
    v.Points("BindingEnergy", r.BindingEnergy, points);
    v.Points("RawIntensity", r.RawIntensity, points);
    v.Check("BindingEnergy", r.BindingEnergy.size() == points);
    v.Check("RawIntensity", r.RawIntensity.size() == points);
    v.Field("MaxBE", r.MaxBE);
    v.Field("MinBE", r.MinBE);
    v.Field("MaxIntensity", r.MaxIntensity);
    v.Field("MinIntensity", r.MinIntensity);
    v.Field("HasBackground", r.HasBackground);
    v.Field("PeakCount", r.PeakCount);
    v.Check("PeakCount", InRange(r.PeakCount, 0, kMaxPeaksPerRegion));
    v.Indices("PeakIndex", r.PeakIndex, kPeakSlots);
    v.Field("BackgroundType", r.BackgroundType);
    v.Check("BackgroundType",
            InRange(r.BackgroundType, BackgroundKind::Shirley, BackgroundKind::Tougaard));
    v.Field("BackgroundLowBE", r.BackgroundLowBE);
    v.Field("BackgroundHighBE", r.BackgroundHighBE);
    v.Field("LinearStep", r.LinearStep);
    v.Field("RangeStart", r.RangeStart);
    v.Field("RangeEnd", r.RangeEnd);
    v.Field("RangeCount", r.RangeCount);
    // The range is checked once all three of its fields are read.
    v.Check("RangeStart", InRange(r.RangeStart, 0, r.PointCount));
    v.Check("RangeEnd", InRange(r.RangeEnd, 0, r.PointCount));
    v.Check("RangeCount", InRange(r.RangeCount, 0, kMaxPoints));
    v.Field("NetMax", r.NetMax);
    v.Field("NetMin", r.NetMin);
    v.Field("NetScale", r.NetScale);
    v.Field("ChiSquare", r.ChiSquare);
    // The range arrays are as long as the spectrum and cover at least the range.
    const std::size_t range = static_cast<std::size_t>(r.RangeCount) + 1;
    for (auto [name, a] :
         {std::pair{"RangeBE", &r.RangeBE}, std::pair{"RangeIntensity", &r.RangeIntensity},
          std::pair{"BackgroundWork", &r.BackgroundWork},
          std::pair{"BackgroundCurve", &r.BackgroundCurve},
          std::pair{"PeakSumCurve", &r.PeakSumCurve}, std::pair{"Residual", &r.Residual}}) {
        v.Points(name, *a, points);
        v.Check(name, a->size() >= range);
    }
    v.Field("EndAverage", r.EndAverage);
    v.Field("StartAverage", r.StartAverage);
    v.Field("EndPointAverage", r.EndPointAverage);
    v.Check("EndPointAverage", InRange(r.EndPointAverage, 0, 9));
    v.Field("BackgroundParameter", r.BackgroundParameter);
    v.Field("Shift", r.Shift);
}

/// The peak record; the tail (TailScale, TailLength) came with the 4.0 layout.
template <RecordOf<Peak> P, typename V>
void VisitFields(P& p, V& v) {
    v.Field("InUse", p.InUse);
    v.Field("Label", p.Label);
    v.Field("PeakType", p.PeakType);
    v.Check("PeakType", InRange(p.PeakType, Subshell::None, Subshell::F));
    v.Field("Splitting", p.Splitting);
    v.Field("Position", p.Position);
    v.Field("Area", p.Area);
    v.Field("HeightPercent", p.HeightPercent);
    v.Field("FWHM", p.FWHM);
    // Any %GL is kept: a relation or an import can store one outside 0..100, and the
    // line shapes handle it without indexing outside their tables.
    v.Field("PercentGL", p.PercentGL);
    v.Field("FixPosition", p.FixPosition);
    v.Field("FixFWHM", p.FixFWHM);
    v.Field("FixArea", p.FixArea);
    v.Field("FixGL", p.FixGL);
    v.Field("Region", p.Region);
    v.Check("Region", InRange(p.Region, 0, kRegionCount - 1));
    v.Curve("Curve", p.Curve, p.Region);
    if (!v.Holds(RecordLayout::V40)) return;
    v.Field("TailScale", p.TailScale);
    v.Field("TailLength", p.TailLength);
}

/// One constraint group; the limits came with the versioned layouts (the older groups
/// are 14 bytes).
template <RecordOf<ParameterConstraint> C, typename V>
void VisitFields(C& c, V& v) {
    v.Field("Linked", c.Linked);
    v.Field("RefPeak", c.RefPeak);
    v.Field("IsReference", c.IsReference);
    v.Field("DependentPeak", c.DependentPeak);
    v.Field("Operation", c.Operation);
    // Checked once the five Int16 fields are read.
    v.Check("RefPeak", InRange(c.RefPeak, 0, kPeakSlots - 1));
    v.Check("DependentPeak", InRange(c.DependentPeak, 0, kPeakSlots - 1));
    v.Check("Operation", InRange(c.Operation, 0, 3));
    v.Field("Argument", c.Argument);
    if (!v.Holds(RecordLayout::V30)) return;
    v.Field("UseLimits", c.UseLimits);
    v.Field("LowLimit", c.LowLimit);
    v.Field("HighLimit", c.HighLimit);
}

/// The four constraint groups of a peak, named after their parameters.
template <RecordOf<PeakConstraint> C, typename V>
void VisitFields(C& c, V& v) {
    for (PeakParameter parameter : kPeakParameters)
        v.Record(ParameterName(parameter), c[parameter]);
}

}  // namespace molvera
