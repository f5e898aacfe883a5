#pragma once
// The project's records written and read field by field as model/recordfields.h lists
// them, shared by the project file and the region parameter file.

#include "base/binstream.h"
#include "model/records.h"

namespace molvera {

/// Largest element count accepted for a SingleArray read from a file (bounds 0..5000).
constexpr std::size_t kMaxArrayElements = 5001;
/// Elements of a fixed array block of the older unversioned project layout.
constexpr std::size_t kOldBlockElements = 2001;

/// A Text20 field: 20 bytes as they stand.
Text20 ReadText20(BinaryReader& in);
void WriteText20(BinaryWriter& out, const Text20& text);

/// A Region record with its eight arrays (current layout).
void WriteRegion(BinaryWriter& out, const Region& region);
/// Reads a Region record; refuses (ReadError) counts and indices that later code
/// could not index with.
void ReadRegion(BinaryReader& in, Region& region);
/// A Region record of the older layout: every array a fixed 2001-Single block.
void ReadRegionOld(BinaryReader& in, Region& region);

/// A Peak record in the current (4.0) form: 64 fixed bytes and the Curve array.
void WritePeak(BinaryWriter& out, const Peak& peak);
/// Reads a Peak record; `v3` reads the 3.0 form (no TailScale/TailLength), which
/// leaves a symmetric peak (TailScale 0, TailLength 1).
void ReadPeak(BinaryReader& in, Peak& peak, bool v3);
/// A Peak of the older layout: fields up to Region, then a 2001-Single block of which
/// elements 0..RangeCount of the peak's region in `project` are kept; TailScale 0,
/// TailLength 1.
void ReadPeakOld(BinaryReader& in, Peak& peak, const Project& project);

/// The four constraint groups, 24 bytes each.
void WritePeakConstraint(BinaryWriter& out, const PeakConstraint& constraint);
void ReadPeakConstraint(BinaryReader& in, PeakConstraint& constraint);
/// The older 14-byte groups: no limits stored; UseLimits becomes false.
void ReadPeakConstraintOld(BinaryReader& in, PeakConstraint& constraint);

}  // namespace molvera
