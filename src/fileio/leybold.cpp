#include "fileio/leybold.h"

#include <vector>

#include "base/binstream.h"
#include "fileio/files.h"
#include "fileio/importstore.h"
#include "fileio/itemreader.h"
#include "base/messages.h"
#include "spectral/regionedit.h"

namespace molvera {

namespace {

// One region: a skipped item, the caption, "...=M", then M pairs.
bool ReadRegion(ItemReader& reader, ImportedSpectrum& s) {
    if (!reader.Text()) return false;
    const auto caption = reader.Text();
    const auto countText = reader.Text();
    if (!caption || !countText) return false;
    const auto count = ValueAfterEquals(*countText);
    if (!count || *count <= 0) return false;
    s.caption = *caption;
    s.overflow = *count > kMaxPoints;
    for (int i = 0; i < *count; ++i) {
        const auto energy = reader.Number();
        const auto intensity = reader.Number();
        if (!energy || !intensity) return false;
        if (i < kMaxPoints) {
            s.energy.push_back(static_cast<float>(*energy));
            s.intensity.push_back(static_cast<float>(*intensity));
        }
    }
    return true;
}

}  // namespace

Status ReadLeybold(Project& project, Host& host, const std::string& path) {
    std::string text;
    if (!ReadWholeFile(path, text, kMaxImportBytes)) return ImportFailure(host, msg::kErrorReadingFileImport);
    ItemReader reader(text);
    reader.SkipEmptyLines();

    const auto description = reader.Text();
    const auto regionText = reader.Text();
    std::optional<Int16> regionCount;
    if (regionText) regionCount = ValueAfterEquals(*regionText);
    if (!description || !regionCount || *regionCount <= 0) return ImportFailure(host, msg::kErrorReadingFileImport);

    // More than ten regions cannot be stored: reading stops after the tenth.
    std::vector<ImportedSpectrum> spectra;
    bool failed = false;
    for (int k = 0; k < *regionCount && k < kRegionCount; ++k) {
        ImportedSpectrum s;
        if (!ReadRegion(reader, s)) {
            failed = true;
            break;
        }
        spectra.push_back(std::move(s));
    }
    if (spectra.empty()) return ImportFailure(host, msg::kErrorReadingFileImport);

    project.Description = *description;
    host.SetDescriptionText(project.Description);
    StoreRegions(project, host, spectra, SortRule::ReverseUnlessFalling, true);
    host.ShowRegionWindow();
    RefreshMainWindow(project, host);
    if (failed) return ImportFailure(host, msg::kErrorReadingFileImport);
    return Status::Ok();
}

}  // namespace molvera
