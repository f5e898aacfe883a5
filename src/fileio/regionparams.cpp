#include "fileio/regionparams.h"

#include <cmath>
#include <cstring>
#include <optional>
#include <ostream>
#include <sstream>
#include <string_view>
#include <vector>

#include "base/binstream.h"
#include "base/messages.h"
#include "base/numtext.h"
#include "fileio/files.h"
#include "fileio/records_io.h"
#include "model/project.h"
#include "spectral/background.h"
#include "spectral/regionedit.h"

namespace molvera {

namespace {

constexpr std::size_t kHeaderLength = 29;
// Header, six items and ten peaks with full curves, with room to spare.
constexpr std::size_t kMaxFileBytes = std::size_t{8} * 1024 * 1024;

// The settings of items 2..7.
struct RegionSettings {
    Int16 PeakCount = 0;
    Int16 RangeCount = 0;
    Flag HasBackground = 0;
    BackgroundKind BackgroundType = BackgroundKind::Shirley;
    float BackgroundHighBE = 0;
    float BackgroundLowBE = 0;
};

struct LoadedPeak {
    Peak peak;
    PeakConstraint constraint;
};

// A tagged number of the older layout: Int16 type code, then the value.
double TaggedNumber(BinaryReader& in) {
    switch (in.I16()) {
        case 2:
            return in.I16();
        case 3:
            return in.I32();
        case 4:
            return in.F32();
        case 5:
            return in.F64();
        default:
            throw ReadError("unknown number type");
    }
}

Int16 TaggedInt16(BinaryReader& in) {
    const std::optional<Int16> v = ToInt16(TaggedNumber(in));
    if (!v) throw ReadError("number out of range");
    return *v;
}

float TaggedSingle(BinaryReader& in) {
    const double v = TaggedNumber(in);
    if (!std::isfinite(v) || std::fabs(v) > 3.4e38) throw ReadError("number out of range");
    return static_cast<float>(v);
}

RegionSettings ReadSettings(BinaryReader& in, bool older) {
    RegionSettings s;
    if (older) {
        s.PeakCount = TaggedInt16(in);
        s.RangeCount = TaggedInt16(in);
        s.HasBackground = in.I16();
        s.BackgroundType = static_cast<BackgroundKind>(in.I16());
        s.BackgroundHighBE = in.F32();
        s.BackgroundLowBE = TaggedSingle(in);
    } else {
        s.PeakCount = in.I16();
        s.RangeCount = in.I16();
        s.HasBackground = in.I16();
        s.BackgroundType = static_cast<BackgroundKind>(in.I16());
        s.BackgroundHighBE = in.F32();
        s.BackgroundLowBE = in.F32();
    }
    if (s.PeakCount < 0 || s.PeakCount > kMaxPeaksPerRegion || s.RangeCount < 0 ||
        s.RangeCount > kMaxPoints || s.BackgroundType < BackgroundKind::Shirley ||
        s.BackgroundType > BackgroundKind::Tougaard) {
        throw ReadError("count out of range");
    }
    return s;
}

// Peak slots free once the current region's own peaks are cleared.
int AvailablePeakSlots(const Project& project) {
    int free = 0;
    for (const Peak& p : project.Peaks)
        if (!IsSet(p.InUse) || p.Region == project.CurrentRegion) ++free;
    return free;
}

// Places one loaded peak in the lowest free slot as the region's k-th peak.
void PlacePeak(Project& project, int k, LoadedPeak& loaded) {
    const int r = project.CurrentRegion;
    Region& region = project.Regions[r];
    const int s = FirstFreePeakSlot(project);
    region.PeakIndex[k] = static_cast<Int16>(s);
    project.CurrentPeak = static_cast<Int16>(s);
    ResizePeakCurve(project, s, region.RangeCount);
    project.Peaks[s] = std::move(loaded.peak);
    PeakConstraint& c = project.Constraints[s];
    c = loaded.constraint;
    for (PeakParameter g : kPeakParameters) {
        c[g].Linked = kFalse;
        c[g].IsReference = kFalse;
    }
    project.Peaks[s].Region = static_cast<Int16>(r);
    project.Peaks[s].InUse = kTrue;
    region.PeakCount = static_cast<Int16>(k + 1);
}

}  // namespace

std::string RegionParameterBytes(const Project& project) {
    const Region& region = project.Current();
    std::ostringstream stream;
    BinaryWriter out(stream);
    {
        out.Bytes(kRegionParamsHeader);
        out.I16(region.PeakCount);
        out.I16(region.RangeCount);
        out.I16(region.HasBackground);
        out.I16(static_cast<Int16>(region.BackgroundType));
        out.F32(region.BackgroundHighBE);
        out.F32(region.BackgroundLowBE);
        for (int s = 0; s < kPeakSlots; ++s) {
            const Peak& p = project.Peaks[s];
            if (!IsSet(p.InUse) || p.Region != project.CurrentRegion) continue;
            WritePeak(out, p);
            WritePeakConstraint(out, project.Constraints[s]);
        }
    }
    return std::move(stream).str();
}

Status SaveRegionParameters(const Project& project, const std::string& path) {
    return WriteFileBytes(path, RegionParameterBytes(project), msg::kErrorWritingFile);
}

Status LoadRegionParameters(Project& project, Host& host, const std::string& path) {
    std::string bytes;
    if (Status read = ReadFileBytes(path, kMaxFileBytes, msg::kErrorReadingFile, bytes); !read)
        return read;
    return WithFileName(ApplyRegionParameterBytes(project, host, bytes), path);
}

Status ApplyRegionParameterBytes(Project& project, Host& host, std::string_view bytes) {
    // The whole file is read and checked before the region is touched, so that a refusal
    // leaves the region as it was. Only as many peaks are read as can be placed.
    RegionSettings settings;
    std::vector<LoadedPeak> peaks;
    const int available = AvailablePeakSlots(project);
    BinaryReader in(bytes);
    try {
        const bool older = bytes.size() < kHeaderLength ||
                           std::memcmp(bytes.data(), kRegionParamsHeader, kHeaderLength) != 0;
        if (!older) in.Seek(kHeaderLength);
        settings = ReadSettings(in, older);
        const Region& region = project.Current();
        if (!IsSet(region.HasData))
            return Status::Error(msg::kIncompatibleRegion, "the region holds no data");
        if (settings.RangeCount > region.PointCount)
            return Status::Error(msg::kIncompatibleRegion, "a range of " +
                                                               std::to_string(settings.RangeCount) +
                                                               " points, the region has " +
                                                               std::to_string(region.PointCount));
        if (!(settings.BackgroundHighBE <= region.MaxBE) ||
            !(settings.BackgroundLowBE >= region.MinBE))
            return Status::Error(msg::kBindingEnergyOutOfRange,
                                 "the background range " + FormatGeneral(settings.BackgroundLowBE) +
                                     " .. " + FormatGeneral(settings.BackgroundHighBE) +
                                     " eV lies outside the data's " + FormatGeneral(region.MinBE) +
                                     " .. " + FormatGeneral(region.MaxBE) + " eV");
        const int toRead = settings.PeakCount < available ? settings.PeakCount : available;
        peaks.resize(static_cast<std::size_t>(toRead));
        for (int k = 0; k < toRead; ++k) {
            LoadedPeak& loaded = peaks[static_cast<std::size_t>(k)];
            ReadPeak(in, loaded.peak, older);
            ReadPeakConstraint(in, loaded.constraint);
        }
    } catch (const ReadError& e) {
        return Status::Error(msg::kErrorReadingFile,
                             "byte " + std::to_string(in.Position()) + ": " + e.what());
    }

    if (static_cast<int>(peaks.size()) < settings.PeakCount) {
        host.Beep();
        return Status::Error(msg::kTooManyPeaks,
                             "the file holds " + std::to_string(settings.PeakCount) + " peaks, " +
                                 std::to_string(peaks.size()) + " slots are free");
    }

    ClearRegionParameters(project, host);
    Region& region = project.Current();
    region.RangeCount = settings.RangeCount;
    region.HasBackground = settings.HasBackground;
    region.BackgroundType = settings.BackgroundType;
    region.BackgroundHighBE = settings.BackgroundHighBE;
    region.BackgroundLowBE = settings.BackgroundLowBE;
    region.PeakCount = 0;
    for (std::size_t k = 0; k < peaks.size(); ++k)
        PlacePeak(project, static_cast<int>(k), peaks[k]);
    if (!peaks.empty()) host.PeakListChanged(project.CurrentRegion, PeakList(region), true);

    RecomputeRegion(project, host);
    host.CurvesChanged();
    return Status::Ok();
}

}  // namespace molvera
