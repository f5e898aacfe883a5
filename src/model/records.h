#pragma once
// The project and its records, field for field in the order of the project file.

#include <array>
#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "base/limits.h"
#include "model/options.h"

namespace molvera {

using Int16 = std::int16_t;
using Flag = std::int16_t;  ///< 0 false, -1 written for true, any non-zero reads as true

constexpr Flag kTrue = -1;
constexpr Flag kFalse = 0;

/// A resizable float array with lower bound 0; size() is upper bound + 1.
using SingleArray = std::vector<float>;

/// Fixed text of 20 characters, padded with blanks; longer values are cut.
struct Text20 {
    std::array<char, 20> chars;

    Text20() { chars.fill(' '); }
    /// The first 20 characters of `text`, padded with blanks.
    static Text20 From(std::string_view text);
    /// All 20 characters, trailing blanks included.
    std::string Str() const { return std::string(chars.begin(), chars.end()); }
    bool operator==(const Text20&) const = default;
};

/// The background of a region. A record keeps any value its file holds; a value without
/// a name here computes no new background.
enum class BackgroundKind : Int16 { Shirley = 0, Linear = 1, Tougaard = 2 };

/// The subshell of a peak: s a single line, p, d and f spin-orbit doublets; None in a
/// cleared slot. A record keeps any value its file holds; a value without a name here
/// draws nothing.
enum class Subshell : Int16 { None = 0, S = 1, P = 2, D = 3, F = 4 };

/// One region slot: a measured spectrum, its background settings and curves.
struct Region {
    Flag HasData = 0;
    Int16 ImportRegionNumber = 0;
    Text20 Caption;
    Int16 PointCount = 0;
    SingleArray BindingEnergy;
    SingleArray RawIntensity;
    float MaxBE = 0;
    float MinBE = 0;
    float MaxIntensity = 0;
    float MinIntensity = 0;
    Flag HasBackground = 0;
    Int16 PeakCount = 0;
    std::array<Int16, kMaxPeaksPerRegion> PeakIndex{};
    BackgroundKind BackgroundType = BackgroundKind::Shirley;
    float BackgroundLowBE = 0;
    float BackgroundHighBE = 0;
    float LinearStep = 0;
    Int16 RangeStart = 0;
    Int16 RangeEnd = 0;
    Int16 RangeCount = 0;
    float NetMax = 0;
    float NetMin = 0;
    float NetScale = 0;
    float ChiSquare = 0;
    SingleArray RangeBE;
    SingleArray RangeIntensity;
    SingleArray BackgroundWork;
    SingleArray BackgroundCurve;
    SingleArray PeakSumCurve;
    SingleArray Residual;
    float EndAverage = 0;
    float StartAverage = 0;
    Int16 EndPointAverage = 0;
    float BackgroundParameter = 0;
    float Shift = 0;

    bool operator==(const Region&) const = default;
};

/// One peak slot of the project-wide pool.
struct Peak {
    Flag InUse = 0;
    Text20 Label;
    Subshell PeakType = Subshell::None;
    float Splitting = 0;
    float Position = 0;
    float Area = 0;
    float HeightPercent = 0;
    float FWHM = 0;
    Int16 PercentGL = 0;
    Int16 FixPosition = 0;
    Int16 FixFWHM = 0;
    Int16 FixArea = 0;
    Int16 FixGL = 0;
    Int16 Region = 0;
    SingleArray Curve;
    float TailScale = 0;
    float TailLength = 0;

    bool operator==(const Peak&) const = default;
};

/// Relation and search limits of one parameter of one peak.
struct ParameterConstraint {
    Flag Linked = 0;
    Int16 RefPeak = 0;
    Flag IsReference = 0;
    Int16 DependentPeak = 0;
    Int16 Operation = 0;  ///< 0 "+", 1 "-", 2 "*", 3 "/"
    float Argument = 0;
    Flag UseLimits = 0;
    float LowLimit = 0;
    float HighLimit = 0;

    bool operator==(const ParameterConstraint&) const = default;
};

/// The four parameters of a peak that can be fixed, fitted, linked and limited, in the
/// order of the constraint groups in the file.
enum class PeakParameter { Position, Area, FWHM, GL };

/// Every PeakParameter in file order.
inline constexpr std::array<PeakParameter, 4> kPeakParameters{
    PeakParameter::Position, PeakParameter::Area, PeakParameter::FWHM, PeakParameter::GL};

/// The record name of a parameter: "Position", "Area", "FWHM" or "GL".
const char* ParameterName(PeakParameter parameter);

/// A peak's value of one parameter (%GL as a whole number).
double ParameterValue(const Peak& peak, PeakParameter parameter);

/// The constraint groups of a peak, one per PeakParameter.
struct PeakConstraint {
    ParameterConstraint Position;
    ParameterConstraint Area;
    ParameterConstraint FWHM;
    ParameterConstraint GL;

    ParameterConstraint& operator[](PeakParameter parameter);
    const ParameterConstraint& operator[](PeakParameter parameter) const;
    bool operator==(const PeakConstraint&) const = default;
};

/// The whole working state of the program.
/// Quantification settings: the X-ray source energy (eV), the exponents of the analyser
/// transmission (T ~ E_kin^a) and of the inelastic mean free path (lambda ~ E_kin^b), and
/// per peak slot an RSF that replaces the computed one (0: computed). Stored in the
/// project file's extension block, not in the classic records.
struct QuantSettings {
    float SourceEnergy = 1486.6f;  ///< Al K alpha
    float TransmissionExponent = -0.5f;
    float ImfpExponent = 0.7f;
    std::array<float, kPeakSlots> RsfOverride{};

    bool operator==(const QuantSettings&) const = default;
};

struct Project {
    std::array<Region, kRegionCount> Regions;
    std::array<Peak, kPeakSlots> Peaks;
    std::array<Peak, kPeakSlots> SavedPeaks;
    std::array<PeakConstraint, kPeakSlots> Constraints;
    Int16 CurrentRegion = 0;
    Int16 CurrentPeak = 0;
    Peak EditPeak;
    Int16 TotalPeakCount = 0;
    float TotalChiSquare = 0;
    float AreaScale = 0;
    std::string Description;
    std::string FileName;
    Flag KeepAreas = 0;
    FitOptions Options;
    QuantSettings Quant;
    bool StopRequested = false;
    Flag Idle = kTrue;  ///< cleared while the program is busy (Tougaard B1 search)

    Region& Current() { return Regions[CurrentRegion]; }
    const Region& Current() const { return Regions[CurrentRegion]; }
    bool operator==(const Project&) const = default;
};

/// The peak slots a region lists: PeakIndex[0 .. PeakCount - 1], the count kept in 0..10.
std::span<const Int16> PeakList(const Region& region);

/// True for any non-zero flag value.
inline bool IsSet(Flag f) { return f != 0; }
inline Flag ToFlag(bool b) { return b ? kTrue : kFalse; }

}  // namespace molvera
