#include "fileio/records_io.h"

#include <algorithm>

namespace molvera {

Text20 ReadText20(BinaryReader& in) { return Text20::From(in.Bytes(20)); }

void WriteText20(BinaryWriter& out, const Text20& text) {
    out.Bytes(std::string_view(text.chars.data(), text.chars.size()));
}

namespace {

void Require(bool condition) {
    if (!condition) throw ReadError("value out of range");
}

void CheckRange(int value, int lo, int hi) { Require(value >= lo && value <= hi); }

// The region fields in record order; `readArray` supplies each of the eight arrays
// (a headed array or a fixed block, depending on the layout).
template <typename ReadArray>
void ReadRegionFields(BinaryReader& in, Region& r, ReadArray readArray) {
    r.HasData = in.I16();
    r.ImportRegionNumber = in.I16();
    r.Caption = ReadText20(in);
    r.PointCount = in.I16();
    CheckRange(r.PointCount, 1, kMaxPoints);
    r.BindingEnergy = readArray(r.PointCount);
    r.RawIntensity = readArray(r.PointCount);
    const std::size_t points = static_cast<std::size_t>(r.PointCount) + 1;
    Require(r.BindingEnergy.size() == points && r.RawIntensity.size() == points);
    r.MaxBE = in.F32();
    r.MinBE = in.F32();
    r.MaxIntensity = in.F32();
    r.MinIntensity = in.F32();
    r.HasBackground = in.I16();
    r.PeakCount = in.I16();
    CheckRange(r.PeakCount, 0, kMaxPeaksPerRegion);
    for (Int16& slot : r.PeakIndex) {
        slot = in.I16();
        CheckRange(slot, 0, kPeakSlots - 1);
    }
    r.BackgroundType = static_cast<BackgroundKind>(in.I16());
    CheckRange(static_cast<int>(r.BackgroundType), 0, 2);
    r.BackgroundLowBE = in.F32();
    r.BackgroundHighBE = in.F32();
    r.LinearStep = in.F32();
    r.RangeStart = in.I16();
    r.RangeEnd = in.I16();
    r.RangeCount = in.I16();
    CheckRange(r.RangeStart, 0, r.PointCount);
    CheckRange(r.RangeEnd, 0, r.PointCount);
    CheckRange(r.RangeCount, 0, kMaxPoints);
    r.NetMax = in.F32();
    r.NetMin = in.F32();
    r.NetScale = in.F32();
    r.ChiSquare = in.F32();
    for (SingleArray* a : {&r.RangeBE, &r.RangeIntensity, &r.BackgroundWork, &r.BackgroundCurve,
                           &r.PeakSumCurve, &r.Residual}) {
        *a = readArray(r.PointCount);
        Require(a->size() >= static_cast<std::size_t>(r.RangeCount) + 1);
    }
    r.EndAverage = in.F32();
    r.StartAverage = in.F32();
    r.EndPointAverage = in.I16();
    CheckRange(r.EndPointAverage, 0, 9);
    r.BackgroundParameter = in.F32();
    r.Shift = in.F32();
}

// The peak fields from InUse to Region.
void ReadPeakHead(BinaryReader& in, Peak& p) {
    p.InUse = in.I16();
    p.Label = ReadText20(in);
    p.PeakType = static_cast<Subshell>(in.I16());
    CheckRange(static_cast<int>(p.PeakType), 0, 4);
    p.Splitting = in.F32();
    p.Position = in.F32();
    p.Area = in.F32();
    p.HeightPercent = in.F32();
    p.FWHM = in.F32();
    // Any %GL is kept: a relation or an import can store one outside 0..100, and the
    // line shapes handle it without indexing outside their tables.
    p.PercentGL = in.I16();
    p.FixPosition = in.I16();
    p.FixFWHM = in.I16();
    p.FixArea = in.I16();
    p.FixGL = in.I16();
    p.Region = in.I16();
    CheckRange(p.Region, 0, kRegionCount - 1);
}

// Reads the relation part common to both group layouts.
void ReadRelation(BinaryReader& in, ParameterConstraint& c) {
    c.Linked = in.I16();
    c.RefPeak = in.I16();
    c.IsReference = in.I16();
    c.DependentPeak = in.I16();
    c.Operation = in.I16();
    CheckRange(c.RefPeak, 0, kPeakSlots - 1);
    CheckRange(c.DependentPeak, 0, kPeakSlots - 1);
    CheckRange(c.Operation, 0, 3);
    c.Argument = in.F32();
}

}  // namespace

void WriteRegion(BinaryWriter& out, const Region& r) {
    out.I16(r.HasData);
    out.I16(r.ImportRegionNumber);
    WriteText20(out, r.Caption);
    out.I16(r.PointCount);
    out.WriteSingleArray(r.BindingEnergy);
    out.WriteSingleArray(r.RawIntensity);
    out.F32(r.MaxBE);
    out.F32(r.MinBE);
    out.F32(r.MaxIntensity);
    out.F32(r.MinIntensity);
    out.I16(r.HasBackground);
    out.I16(r.PeakCount);
    for (Int16 slot : r.PeakIndex) out.I16(slot);
    out.I16(static_cast<Int16>(r.BackgroundType));
    out.F32(r.BackgroundLowBE);
    out.F32(r.BackgroundHighBE);
    out.F32(r.LinearStep);
    out.I16(r.RangeStart);
    out.I16(r.RangeEnd);
    out.I16(r.RangeCount);
    out.F32(r.NetMax);
    out.F32(r.NetMin);
    out.F32(r.NetScale);
    out.F32(r.ChiSquare);
    for (const SingleArray* a : {&r.RangeBE, &r.RangeIntensity, &r.BackgroundWork,
                                 &r.BackgroundCurve, &r.PeakSumCurve, &r.Residual}) {
        out.WriteSingleArray(*a);
    }
    out.F32(r.EndAverage);
    out.F32(r.StartAverage);
    out.I16(r.EndPointAverage);
    out.F32(r.BackgroundParameter);
    out.F32(r.Shift);
}

void ReadRegion(BinaryReader& in, Region& region) {
    ReadRegionFields(in, region, [&in](int) { return in.ReadSingleArray(kMaxArrayElements); });
}

void ReadRegionOld(BinaryReader& in, Region& region) {
    // Every array is a 2001-Single block; all eight are sized 0..PointCount.
    ReadRegionFields(in, region, [&in](int pointCount) {
        Require(static_cast<std::size_t>(pointCount) < kOldBlockElements);
        return in.ReadFixedSingles(kOldBlockElements, static_cast<std::size_t>(pointCount) + 1);
    });
}

void WritePeak(BinaryWriter& out, const Peak& p) {
    out.I16(p.InUse);
    WriteText20(out, p.Label);
    out.I16(static_cast<Int16>(p.PeakType));
    out.F32(p.Splitting);
    out.F32(p.Position);
    out.F32(p.Area);
    out.F32(p.HeightPercent);
    out.F32(p.FWHM);
    out.I16(p.PercentGL);
    out.I16(p.FixPosition);
    out.I16(p.FixFWHM);
    out.I16(p.FixArea);
    out.I16(p.FixGL);
    out.I16(p.Region);
    out.WriteSingleArray(p.Curve);
    out.F32(p.TailScale);
    out.F32(p.TailLength);
}

void ReadPeak(BinaryReader& in, Peak& peak, bool v3) {
    if (!v3) {
        ReadPeakHead(in, peak);
        peak.Curve = in.ReadSingleArray(kMaxArrayElements);
        peak.TailScale = in.F32();
        peak.TailLength = in.F32();
        return;
    }
    // A 3.0 record is read whole, then copied field by field into the peak.
    Peak old = peak;
    ReadPeakHead(in, old);
    old.Curve = in.ReadSingleArray(kMaxArrayElements);
    old.TailScale = 0;
    old.TailLength = 1;
    peak = std::move(old);
}

void ReadPeakOld(BinaryReader& in, Peak& peak, const Project& project) {
    ReadPeakHead(in, peak);
    const int rangeCount = std::max<int>(project.Regions[peak.Region].RangeCount, 0);
    peak.Curve = in.ReadFixedSingles(kOldBlockElements, static_cast<std::size_t>(rangeCount) + 1);
    peak.TailScale = 0;
    peak.TailLength = 1;
}

void WritePeakConstraint(BinaryWriter& out, const PeakConstraint& constraint) {
    for (PeakParameter g : kPeakParameters) {
        const ParameterConstraint& c = constraint[g];
        out.I16(c.Linked);
        out.I16(c.RefPeak);
        out.I16(c.IsReference);
        out.I16(c.DependentPeak);
        out.I16(c.Operation);
        out.F32(c.Argument);
        out.I16(c.UseLimits);
        out.F32(c.LowLimit);
        out.F32(c.HighLimit);
    }
}

void ReadPeakConstraint(BinaryReader& in, PeakConstraint& constraint) {
    for (PeakParameter g : kPeakParameters) {
        ParameterConstraint& c = constraint[g];
        ReadRelation(in, c);
        c.UseLimits = in.I16();
        c.LowLimit = in.F32();
        c.HighLimit = in.F32();
    }
}

void ReadPeakConstraintOld(BinaryReader& in, PeakConstraint& constraint) {
    for (PeakParameter g : kPeakParameters) {
        ParameterConstraint& c = constraint[g];
        ReadRelation(in, c);
        c.Linked = ToFlag(IsSet(c.Linked));
        c.IsReference = ToFlag(IsSet(c.IsReference));
        c.UseLimits = kFalse;
    }
}

}  // namespace molvera
