#include "fileio/leybold.h"

#include <optional>
#include <string>
#include <vector>

#include "base/messages.h"
#include "fileio/importstore.h"
#include "fileio/itemreader.h"

namespace molvera {

namespace {

// One region: a skipped item, the caption, "...=M", then M pairs. Returns what was wrong,
// or nothing.
std::optional<std::string> ReadRegion(ItemReader& reader, ImportedSpectrum& s) {
    const auto header = reader.Text();
    const auto caption = reader.Text();
    const auto countText = reader.Text();
    if (!header || !caption || !countText) return reader.Where() + ": the region header ends early";
    const auto count = ValueAfterEquals(*countText);
    if (!count || *count <= 0) return reader.Where() + ": a point count \"...=N\" was expected";
    s.caption = *caption;
    s.overflow = *count > kMaxPoints;
    for (int i = 0; i < *count; ++i) {
        const auto energy = reader.Number();
        const auto intensity = reader.Number();
        if (!energy || !intensity)
            return reader.Where() + ": point " + std::to_string(i + 1) + " of " +
                   std::to_string(*count) + " is not a pair of numbers";
        if (i < kMaxPoints) {
            s.energy.push_back(static_cast<float>(*energy));
            s.intensity.push_back(static_cast<float>(*intensity));
        }
    }
    return std::nullopt;
}

}  // namespace

ImportedData ReadLeybold(std::string_view text) {
    ImportedData data;
    ItemReader reader(text);
    reader.SkipEmptyLines();

    const auto description = reader.Text();
    const auto regionText = reader.Text();
    std::optional<Int16> regionCount;
    if (regionText) regionCount = ValueAfterEquals(*regionText);
    if (!description || !regionCount || *regionCount <= 0) {
        data.status = Status::Error(
            msg::kErrorReadingFileImport,
            reader.Where() + ": a description and a region count \"...=N\" were expected");
        return data;
    }

    // More than ten regions cannot be stored: reading stops after the tenth.
    for (int k = 0; k < *regionCount && k < kRegionCount; ++k) {
        ImportedSpectrum s;
        if (const auto problem = ReadRegion(reader, s)) {
            data.status = Status::Error(msg::kErrorReadingFileImport,
                                        "region " + std::to_string(k + 1) + ", " + *problem);
            break;
        }
        data.spectra.push_back(std::move(s));
    }
    if (!data.spectra.empty()) data.description = *description;
    return data;
}

}  // namespace molvera
