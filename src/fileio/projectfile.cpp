#include "fileio/projectfile.h"

#include <algorithm>
#include <cmath>
#include <sstream>
#include <string_view>
#include <utility>

#include "base/binstream.h"
#include "base/messages.h"
#include "base/numtext.h"
#include "fileio/files.h"
#include "fileio/records_io.h"
#include "model/project.h"
#include "spectral/envelope.h"
#include "spectral/quantify.h"
#include "spectral/regionedit.h"

namespace molvera {

namespace {

constexpr std::string_view kHeader40 = "MOLVERA 4.0";
constexpr std::string_view kHeader30 = "MOLVERA 3.0";
constexpr std::string_view kOldHeader = "SF";
constexpr std::string_view kTagUsed = "DP";
constexpr std::string_view kTagEmpty = "DA";
constexpr Int16 kTextTypeCode = 8;
constexpr int kOldPeakSlots = 21;
constexpr std::size_t kMaxProjectFileBytes = std::size_t{64} << 20;
// The extension block after the description: tag, Int16 version, Int32 length of the
// fields that follow. Version 1: Single source energy, transmission and mean free path
// exponents; Int16 count of RSF overrides, each an Int16 slot and a Single.
constexpr std::string_view kExtensionTag = "MOLVERA-EXT";
constexpr Int16 kExtensionVersion = 1;

enum class Layout { V40, V30, Old };

// Thrown when the header names no layout that this reader knows.
struct WrongFormat {};

int RangeCountOfPeakRegion(const Project& project, const Peak& peak) {
    if (peak.Region < 0 || peak.Region >= kRegionCount) return 0;
    return project.Regions[peak.Region].RangeCount;
}

void WriteProjectBytes(BinaryWriter& out, const Project& project) {
    out.Bytes(kHeader40);
    for (const Region& r : project.Regions) {
        if (IsSet(r.HasData)) {
            out.Bytes(kTagUsed);
            out.I16(r.PointCount);
            WriteRegion(out, r);
        } else {
            out.Bytes(kTagEmpty);
        }
    }
    for (int s = 0; s < kPeakSlots; ++s) {
        const Peak& p = project.Peaks[s];
        if (IsSet(p.InUse)) {
            out.Bytes(kTagUsed);
            out.I16(static_cast<Int16>(RangeCountOfPeakRegion(project, p)));
            WritePeak(out, p);
            WritePeakConstraint(out, project.Constraints[s]);
        } else {
            out.Bytes(kTagEmpty);
        }
    }
    out.I16(project.CurrentPeak);
    WritePeak(out, project.EditPeak);
    out.I16(project.TotalPeakCount);
    out.F32(project.TotalChiSquare);
    out.F32(project.AreaScale);
    out.I16(project.CurrentRegion);
    out.I16(kTextTypeCode);
    out.I16(static_cast<Int16>(project.Description.size()));
    out.Bytes(project.Description);
}

// Nothing when the settings are the defaults: a classic project keeps its bytes.
void WriteExtensionBlock(BinaryWriter& out, const Project& project) {
    const QuantSettings& q = project.Quant;
    if (q == QuantSettings{}) return;
    std::ostringstream fields;
    BinaryWriter f(fields);
    f.F32(q.SourceEnergy);
    f.F32(q.TransmissionExponent);
    f.F32(q.ImfpExponent);
    const auto overrides =
        std::count_if(q.RsfOverride.begin(), q.RsfOverride.end(), [](float v) { return v != 0; });
    f.I16(static_cast<Int16>(overrides));
    for (int s = 0; s < kPeakSlots; ++s) {
        if (q.RsfOverride[s] == 0) continue;
        f.I16(static_cast<Int16>(s));
        f.F32(q.RsfOverride[s]);
    }
    const std::string bytes = std::move(fields).str();
    out.Bytes(kExtensionTag);
    out.I16(kExtensionVersion);
    out.I32(static_cast<std::int32_t>(bytes.size()));
    out.Bytes(bytes);
}

Layout ReadHeader(BinaryReader& in) {
    const std::string first = in.Bytes(2);
    if (first == kOldHeader) return Layout::Old;
    const std::string header = first + in.Bytes(kHeader40.size() - 2);
    if (header == kHeader40) return Layout::V40;
    if (header == kHeader30) return Layout::V30;
    throw WrongFormat{};
}

void CheckCount(int count) {
    if (count < 0 || count > kMaxPoints) throw ReadError("count out of range");
}

void ReadRegionTable(BinaryReader& in, Project& project, Layout layout) {
    for (Region& r : project.Regions) {
        if (in.Bytes(2) == kTagUsed) {
            if (layout == Layout::Old) {
                ReadRegionOld(in, r);
            } else {
                const int n = in.I16();
                CheckCount(n);
                ResizeRegionArrays(r, n);
                ReadRegion(in, r);
            }
            r.HasData = kTrue;
        }
        if (r.EndPointAverage == 0) r.EndPointAverage = 1;
    }
}

void ReadPeakTable(BinaryReader& in, Project& project, Layout layout) {
    const int slots = layout == Layout::Old ? kOldPeakSlots : kPeakSlots;
    for (int s = 0; s < slots; ++s) {
        if (in.Bytes(2) != kTagUsed) continue;
        if (layout == Layout::Old) {
            ReadPeakOld(in, project.Peaks[s], project);
            ReadPeakConstraintOld(in, project.Constraints[s]);
        } else {
            const int m = in.I16();
            CheckCount(m);
            ResizePeakCurve(project, s, m);
            ReadPeak(in, project.Peaks[s], layout == Layout::V30);
            ReadPeakConstraint(in, project.Constraints[s]);
        }
    }
}

void ReadTail(BinaryReader& in, Project& project, Layout layout) {
    project.CurrentPeak = in.I16();
    if (project.CurrentPeak < 0 || project.CurrentPeak >= kPeakSlots)
        throw ReadError("CurrentPeak");
    Peak& edit = project.EditPeak;
    if (layout == Layout::Old) {
        ReadPeakOld(in, edit, project);
    } else {
        edit.Curve.assign(
            static_cast<std::size_t>(std::max(RangeCountOfPeakRegion(project, edit), 0)) + 1, 0.0f);
        ReadPeak(in, edit, layout == Layout::V30);
    }
    project.TotalPeakCount = in.I16();
    project.TotalChiSquare = in.F32();
    project.AreaScale = in.F32();
    project.CurrentRegion = in.I16();
    if (project.CurrentRegion < 0 || project.CurrentRegion >= kRegionCount)
        throw ReadError("CurrentRegion");
}

// Every peak listed by a region with data must be an in-use peak of that region whose
// curve covers the region's range, or the recomputation would index outside it.
void CheckPeakLists(const Project& project) {
    for (int r = 0; r < kRegionCount; ++r) {
        const Region& region = project.Regions[r];
        if (!IsSet(region.HasData)) continue;
        for (int i = 0; i < region.PeakCount; ++i) {
            const Peak& p = project.Peaks[region.PeakIndex[i]];
            if (!IsSet(p.InUse) || p.Region != r ||
                p.Curve.size() < static_cast<std::size_t>(region.RangeCount) + 1) {
                throw ReadError("inconsistent peak list");
            }
        }
    }
}

// The tagged description text; false when it is missing or not a text.
bool ReadDescription(BinaryReader& in, std::string& text) {
    try {
        if (in.I16() != kTextTypeCode) return false;
        const int length = in.I16();
        if (length < 0) return false;
        text = in.Bytes(static_cast<std::size_t>(length));
        if (text.size() > static_cast<std::size_t>(kDescriptionLength))
            text.resize(kDescriptionLength);
        return true;
    } catch (const ReadError&) {
        return false;
    }
}

bool Finite(float v) { return std::isfinite(v); }

}  // namespace

Status ReadExtensionBlock(std::string_view bytes, QuantSettings& quant) {
    BinaryReader in(bytes);
    try {
        if (in.Bytes(kExtensionTag.size()) != kExtensionTag) throw ReadError("no tag");
        if (const int version = in.I16(); version != kExtensionVersion)
            throw ReadError("unknown version " + std::to_string(version));
        const std::int32_t length = in.I32();
        if (length < 0 || static_cast<std::size_t>(length) != in.Remaining())
            throw ReadError("length " + std::to_string(length));
        QuantSettings q;
        q.SourceEnergy = in.F32();
        q.TransmissionExponent = in.F32();
        q.ImfpExponent = in.F32();
        if (!QuantSettingsInRange(q)) throw ReadError("settings out of range");
        const int count = in.I16();
        if (count < 0 || count > kPeakSlots) throw ReadError("count out of range");
        for (int i = 0; i < count; ++i) {
            const int slot = in.I16();
            const float rsf = in.F32();
            if (slot < 0 || slot >= kPeakSlots || !Finite(rsf) || rsf < 0)
                throw ReadError("RSF override out of range");
            q.RsfOverride[slot] = rsf;
        }
        if (in.Remaining() != 0) throw ReadError("bytes after the fields");
        quant = q;
        return Status::Ok();
    } catch (const ReadError& e) {
        return Status::Error("Extension block ignored",
                             "byte " + std::to_string(in.Position()) + ": " + e.what());
    }
}

std::string ProjectFileBytes(Project& project) {
    if (project.Description.size() > static_cast<std::size_t>(kDescriptionLength))
        project.Description.resize(kDescriptionLength);
    std::ostringstream bytes;
    BinaryWriter out(bytes);
    WriteProjectBytes(out, project);
    WriteExtensionBlock(out, project);
    return std::move(bytes).str();
}

Status SaveProject(Project& project, const std::string& path) {
    return WriteFileBytes(path, ProjectFileBytes(project), msg::kErrorWritingFile);
}

bool HasProjectHeader(std::string_view bytes) {
    return bytes.starts_with(kHeader40) || bytes.starts_with(kHeader30) ||
           bytes.starts_with(kOldHeader);
}

Status ReadProjectBytes(std::string_view bytes, Project& project, bool* descriptionRead,
                        std::string* warning) {
    BinaryReader in(bytes);
    try {
        const Layout layout = ReadHeader(in);
        ReadRegionTable(in, project, layout);
        ReadPeakTable(in, project, layout);
        ReadTail(in, project, layout);
        CheckPeakLists(project);
    } catch (const ReadError& e) {
        return Status::Error(msg::kErrorReadingFile,
                             "byte " + std::to_string(in.Position()) + ": " + e.what());
    } catch (const WrongFormat&) {
        return Status::Error(msg::kWrongFileFormat,
                             "no project header (\"MOLVERA 4.0\", \"MOLVERA 3.0\" or \"SF\")");
    }
    std::string description;
    const bool read = ReadDescription(in, description);
    if (read) project.Description = description;
    if (descriptionRead) *descriptionRead = read;
    if (read && in.Remaining() > 0) {
        const Status ext = ReadExtensionBlock(bytes.substr(in.Position()), project.Quant);
        if (!ext && warning) *warning = ext.Text();
    }
    return Status::Ok();
}

Status LoadProject(Project& project, Host& host, const std::string& path, std::string* warning) {
    std::string bytes;
    if (Status read = ReadFileBytes(path, kMaxProjectFileBytes, msg::kErrorReadingFile, bytes);
        !read)
        return read;
    return WithFileName(LoadProjectBytes(project, host, bytes, warning), path);
}

Status LoadProjectBytes(Project& project, Host& host, std::string_view bytes,
                        std::string* warning) {
    // Read into a copy: a file that cannot be read leaves the open project as it was.
    Project read = project;
    ClearProject(read, QuietHost());
    bool descriptionRead = false;
    if (Status st = ReadProjectBytes(bytes, read, &descriptionRead, warning); !st) return st;
    ClearProject(project, host);
    project = std::move(read);
    if (descriptionRead) host.DescriptionChanged(project.Description);

    RecomputeAllRegions(project, host);
    RefreshMainWindow(project, host);
    host.TotalChiSquareChanged(project.TotalChiSquare);
    host.RegionInView();
    return Status::Ok();
}

}  // namespace molvera
