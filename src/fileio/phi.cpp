#include "fileio/phi.h"

#include <vector>

#include "base/binstream.h"
#include "fileio/files.h"
#include "fileio/importstore.h"
#include "fileio/itemreader.h"
#include "base/numtext.h"
#include "base/messages.h"
#include "spectral/regionedit.h"

namespace molvera {

namespace {

// One region; `description` receives "A B".
bool ReadRegion(ItemReader& reader, ImportedSpectrum& s, std::string& description) {
    const auto a = reader.Text();
    const auto b = reader.Text();
    const auto caption = reader.Text();
    if (!a || !b || !caption) return false;
    const auto unused = reader.Number();
    const auto start = reader.Number();
    const auto step = reader.Number();
    const auto countValue = reader.Number();
    if (!unused || !start || !step || !countValue) return false;
    const auto count = ToInt16(*countValue);
    if (!count || *count <= 0) return false;
    description = *a + " " + *b;
    s.caption = *caption;
    s.overflow = *count > kMaxPoints;
    const double first = *start;  // energies in double, rounded once
    const double delta = *step;
    for (int i = 0; i < *count; ++i) {
        const auto intensity = reader.Number();
        if (!intensity) return false;
        if (i < kMaxPoints) {
            s.energy.push_back(static_cast<float>(first + i * delta));
            s.intensity.push_back(static_cast<float>(*intensity));
        }
    }
    // The closing integer; a file that simply ends after the values is accepted.
    if (!reader.AtEnd() && !reader.Number()) return false;
    return true;
}

}  // namespace

Status ReadPhi(Project& project, Host& host, const std::string& path) {
    std::string text;
    if (!ReadWholeFile(path, text, kMaxImportBytes)) return ImportFailure(host, msg::kErrorReadingFileImport);
    ItemReader reader(text);
    reader.SkipEmptyLines();

    // More than ten regions cannot be stored: reading stops after the tenth.
    std::vector<ImportedSpectrum> spectra;
    std::string description;
    bool failed = false;
    while (!reader.AtEnd() && spectra.size() < static_cast<std::size_t>(kRegionCount)) {
        ImportedSpectrum s;
        std::string d;
        if (!ReadRegion(reader, s, d)) {
            failed = true;
            break;
        }
        description = d;
        spectra.push_back(std::move(s));
        reader.SkipEmptyLines();
    }
    if (spectra.empty()) return ImportFailure(host, msg::kErrorReadingFileImport);

    project.Description = description;
    host.SetDescriptionText(project.Description);
    StoreRegions(project, host, spectra, SortRule::ReverseIfRising, true);
    host.ShowRegionWindow();
    RefreshMainWindow(project, host);
    if (failed) return ImportFailure(host, msg::kErrorReadingFileImport);
    return Status::Ok();
}

}  // namespace molvera
