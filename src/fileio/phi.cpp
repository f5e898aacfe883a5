#include "fileio/phi.h"

#include <optional>
#include <string>
#include <vector>

#include "base/messages.h"
#include "base/numtext.h"
#include "fileio/importstore.h"
#include "fileio/itemreader.h"

namespace molvera {

namespace {

// One region; `description` receives "A B". Returns what was wrong, or nothing.
std::optional<std::string> ReadRegion(ItemReader& reader, ImportedSpectrum& s,
                                      std::string& description) {
    const auto a = reader.Text();
    const auto b = reader.Text();
    const auto caption = reader.Text();
    if (!a || !b || !caption) return reader.Where() + ": the region header ends early";
    const auto unused = reader.Number();
    const auto start = reader.Number();
    const auto step = reader.Number();
    const auto countValue = reader.Number();
    if (!unused || !start || !step || !countValue)
        return reader.Where() + ": the start energy, step and point count were expected";
    const auto count = ToInt16(*countValue);
    if (!count || *count <= 0) return reader.Where() + ": the point count is not a count";
    description = *a + " " + *b;
    s.caption = *caption;
    s.overflow = *count > kMaxPoints;
    const double first = *start;  // energies in double, rounded once
    const double delta = *step;
    for (int i = 0; i < *count; ++i) {
        const auto intensity = reader.Number();
        if (!intensity)
            return reader.Where() + ": intensity " + std::to_string(i + 1) + " of " +
                   std::to_string(*count) + " is not a number";
        if (i < kMaxPoints) {
            s.energy.push_back(static_cast<float>(first + i * delta));
            s.intensity.push_back(static_cast<float>(*intensity));
        }
    }
    // The closing integer; a file that simply ends after the values is accepted.
    if (!reader.AtEnd() && !reader.Number())
        return reader.Where() + ": the closing number was expected";
    return std::nullopt;
}

}  // namespace

ImportedData ReadPhi(std::string_view text) {
    ImportedData data;
    ItemReader reader(text);
    reader.SkipEmptyLines();

    // More than ten regions cannot be stored: reading stops after the tenth.
    std::string description;
    while (!reader.AtEnd() && data.spectra.size() < static_cast<std::size_t>(kRegionCount)) {
        ImportedSpectrum s;
        std::string d;
        if (const auto problem = ReadRegion(reader, s, d)) {
            data.status = Status::Error(
                msg::kErrorReadingFileImport,
                "region " + std::to_string(data.spectra.size() + 1) + ", " + *problem);
            break;
        }
        description = d;
        data.spectra.push_back(std::move(s));
        reader.SkipEmptyLines();
    }
    if (!data.spectra.empty())
        data.description = description;
    else if (data.status.ok())
        data.status = Status::Error(msg::kErrorReadingFileImport, "the file holds no region");
    return data;
}

}  // namespace molvera
