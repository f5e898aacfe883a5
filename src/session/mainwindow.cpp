#include "session/mainwindow.h"

#include <fstream>

#include "base/messages.h"
#include "fileio/files.h"
#include "fileio/projectfile.h"
#include "model/project.h"

namespace molvera {

RegionButtonColour RegionButtonColourOf(const Project& project, int region) {
    if (region == project.CurrentRegion) return RegionButtonColour::Current;
    if (IsSet(project.Regions[region].HasData)) return RegionButtonColour::HasData;
    return RegionButtonColour::ButtonFace;
}

Rgb RegionButtonRgb(RegionButtonColour colour) {
    switch (colour) {
        case RegionButtonColour::Current:
            return {255, 255, 192};
        case RegionButtonColour::HasData:
            return {192, 255, 192};
        case RegionButtonColour::ButtonFace:
            break;
    }
    return {0, 0, 0};
}

void SelectRegion(Project& project, SessionHost& host, int k) {
    if (k < 0 || k >= kRegionCount) return;
    if (IsSet(project.Current().HasBackground))
        host.PeakListChanged(project.CurrentRegion, PeakList(project.Current()), false);
    project.CurrentRegion = static_cast<Int16>(k);
    host.RegionListChanged();
    const Region& region = project.Current();
    if (IsSet(region.HasData) && IsSet(region.HasBackground))
        host.PeakListChanged(k, PeakList(region), true);
    host.HideRegionDialogs();
    host.RegionInView();
}

std::string ProposeFileName(const std::string& lastFileName, const std::string& extension) {
    const std::size_t slash = lastFileName.find_last_of("/\\");
    const std::size_t nameStart = slash == std::string::npos ? 0 : slash + 1;
    const std::size_t dot = lastFileName.find('.', nameStart);
    if (dot == std::string::npos) return lastFileName;
    return lastFileName.substr(0, dot + 1) + extension;
}

NamedFile ClassifyNamedFile(const std::string& path) {
    NamedFile kind;
    std::string head(16, '\0');
    std::ifstream in(path, std::ios::binary);
    in.read(head.data(), static_cast<std::streamsize>(head.size()));
    head.resize(static_cast<std::size_t>(in.gcount()));
    kind.project = HasProjectHeader(head) || path.ends_with(".xps") || path.ends_with(".XPS");
    if (!kind.project) kind.format = FindImportFormatOfFile(path);
    if (kind.project || kind.format) return kind;
    std::string known = "neither a project (xps) nor an instrument file (";
    for (const ImportFormat& f : ImportFormats()) known += std::string(f.extensions) + " ";
    known.back() = ')';
    kind.refusal = WithFileName(Status::Error(msg::kWrongFileFormat, known), path);
    return kind;
}

ImportResult ImportIntoEmptyRegion(Project& project, SessionHost& host, const ImportFormat& format,
                                   const std::string& path) {
    int empty = 0;
    while (empty < kRegionCount && IsSet(project.Regions[empty].HasData)) ++empty;
    if (empty == kRegionCount) {
        ImportResult refused;
        refused.status =
            WithFileName(Status::Error(msg::kTooManyRegions, "every region holds data"), path);
        return refused;
    }
    const int before = project.CurrentRegion;
    SelectRegion(project, host, empty);
    ImportResult result = ImportFile(project, host, format, path);
    if (result.status)
        project.FileName = path;
    else
        SelectRegion(project, host, before);
    return result;
}

std::string ProjectBytesUncut(Project& project) {
    const std::string description = project.Description;
    std::string bytes = ProjectFileBytes(project);
    project.Description = description;
    return bytes;
}

void SavedProject::Mark(Project& project, const std::string& path) {
    bytes_ = ProjectBytesUncut(project);
    path_ = path;
}

bool SavedProject::Changed(Project& project) const { return ProjectBytesUncut(project) != bytes_; }

std::string SavedProject::Name() const {
    return path_.empty() ? "Untitled" : path_.substr(path_.find_last_of("/\\") + 1);
}

std::string SavedProject::Title(Project& project) const {
    return Name() + (Changed(project) ? "*" : "") + " - Molvera";
}

bool SavedProject::MayDrop(Project& project, SessionHost& host,
                           const std::function<bool()>& save) const {
    if (!Changed(project)) return true;
    switch (host.AskSaveChanges("Save changes to " + Name() + "?")) {
        case SaveChangesAnswer::Save:
            return save();
        case SaveChangesAnswer::Discard:
            return true;
        case SaveChangesAnswer::Cancel:
            break;
    }
    return false;
}

}  // namespace molvera
