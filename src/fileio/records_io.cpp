#include "fileio/records_io.h"

#include <algorithm>
#include <array>
#include <string>
#include <type_traits>

#include "model/recordfields.h"

namespace molvera {

Text20 ReadText20(BinaryReader& in) { return Text20::From(in.Bytes(20)); }

void WriteText20(BinaryWriter& out, const Text20& text) {
    out.Bytes(std::string_view(text.chars.data(), text.chars.size()));
}

namespace {

// Reads the fields of a record of `layout` as VisitFields lists them; a failed check
// refuses the record (ReadError naming the field).
class FieldReader {
public:
    /// `project` holds the regions read so far: a peak of the older layout keeps as much
    /// of its curve as the range of its region.
    FieldReader(BinaryReader& in, RecordLayout layout, const Project* project = nullptr)
        : in_(in), layout_(layout), project_(project) {}

    template <typename T>
    void Field(const char*, T& x) {
        if constexpr (std::is_same_v<T, float>) {
            x = in_.F32();
        } else if constexpr (std::is_same_v<T, Text20>) {
            x = ReadText20(in_);
        } else {
            static_assert(sizeof(T) == sizeof(Int16), "an Int16 field");
            x = static_cast<T>(in_.I16());
        }
    }

    template <std::size_t N>
    void Indices(const char* name, std::array<Int16, N>& slots, int count) {
        for (Int16& slot : slots) {
            slot = in_.I16();
            Check(name, InRange(slot, 0, count - 1));
        }
    }

    void Points(const char* name, SingleArray& a, std::size_t size) {
        if (layout_ != RecordLayout::Unversioned) {
            a = in_.ReadSingleArray(kMaxArrayElements);
            return;
        }
        // Every array of the older layout is a fixed block of 2001 Singles.
        Check(name, size <= kOldBlockElements);
        a = in_.ReadFixedSingles(kOldBlockElements, size);
    }

    void Curve(const char*, SingleArray& a, Int16 region) {
        if (layout_ != RecordLayout::Unversioned) {
            a = in_.ReadSingleArray(kMaxArrayElements);
            return;
        }
        // A 2001-Single block of which the elements 0..RangeCount of the region are kept.
        const int rangeCount = std::max<int>(project_->Regions[region].RangeCount, 0);
        a = in_.ReadFixedSingles(kOldBlockElements, static_cast<std::size_t>(rangeCount) + 1);
    }

    static void Check(const char* name, bool ok) {
        if (!ok) throw ReadError(std::string(name) + " out of range");
    }

    bool Holds(RecordLayout layout) const { return layout_ >= layout; }

    template <typename R>
    void Record(const char*, R& sub) {
        VisitFields(sub, *this);
    }

private:
    BinaryReader& in_;
    RecordLayout layout_;
    const Project* project_;
};

// Writes every field of a record in the current layout.
class FieldWriter : public EveryField {
public:
    explicit FieldWriter(BinaryWriter& out) : out_(out) {}

    template <typename T>
    void Field(const char*, const T& x) {
        if constexpr (std::is_same_v<T, float>) {
            out_.F32(x);
        } else if constexpr (std::is_same_v<T, Text20>) {
            WriteText20(out_, x);
        } else {
            static_assert(sizeof(T) == sizeof(Int16), "an Int16 field");
            out_.I16(static_cast<Int16>(x));
        }
    }

    template <std::size_t N>
    void Indices(const char*, const std::array<Int16, N>& slots, int) {
        for (Int16 slot : slots) out_.I16(slot);
    }

    void Points(const char*, const SingleArray& a, std::size_t) { out_.WriteSingleArray(a); }
    void Curve(const char*, const SingleArray& a, Int16) { out_.WriteSingleArray(a); }

    template <typename R>
    void Record(const char*, const R& sub) {
        VisitFields(sub, *this);
    }

private:
    BinaryWriter& out_;
};

template <typename R>
void WriteRecord(BinaryWriter& out, const R& record) {
    FieldWriter writer(out);
    VisitFields(record, writer);
}

template <typename R>
void ReadRecord(BinaryReader& in, R& record, RecordLayout layout,
                const Project* project = nullptr) {
    FieldReader reader(in, layout, project);
    VisitFields(record, reader);
}

// The layouts before 4.0 hold no tail: the peak is symmetric.
void MakeSymmetric(Peak& peak) {
    peak.TailScale = 0;
    peak.TailLength = 1;
}

}  // namespace

void WriteRegion(BinaryWriter& out, const Region& region) { WriteRecord(out, region); }

void ReadRegion(BinaryReader& in, Region& region) { ReadRecord(in, region, RecordLayout::V40); }

void ReadRegionOld(BinaryReader& in, Region& region) {
    ReadRecord(in, region, RecordLayout::Unversioned);
}

void WritePeak(BinaryWriter& out, const Peak& peak) { WriteRecord(out, peak); }

void ReadPeak(BinaryReader& in, Peak& peak, bool v3) {
    if (!v3) {
        ReadRecord(in, peak, RecordLayout::V40);
        return;
    }
    // A 3.0 record is read whole, then copied into the peak.
    Peak old = peak;
    ReadRecord(in, old, RecordLayout::V30);
    MakeSymmetric(old);
    peak = std::move(old);
}

void ReadPeakOld(BinaryReader& in, Peak& peak, const Project& project) {
    ReadRecord(in, peak, RecordLayout::Unversioned, &project);
    MakeSymmetric(peak);
}

void WritePeakConstraint(BinaryWriter& out, const PeakConstraint& constraint) {
    WriteRecord(out, constraint);
}

void ReadPeakConstraint(BinaryReader& in, PeakConstraint& constraint) {
    ReadRecord(in, constraint, RecordLayout::V40);
}

void ReadPeakConstraintOld(BinaryReader& in, PeakConstraint& constraint) {
    for (PeakParameter parameter : kPeakParameters) {
        ParameterConstraint& c = constraint[parameter];
        ReadRecord(in, c, RecordLayout::Unversioned);
        // The older groups hold no limits, and any non-zero flag.
        c.Linked = ToFlag(IsSet(c.Linked));
        c.IsReference = ToFlag(IsSet(c.IsReference));
        c.UseLimits = kFalse;
    }
}

}  // namespace molvera
