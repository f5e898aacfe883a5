#include "fileio/asciiimport.h"

#include <optional>
#include <utility>
#include <vector>

#include "base/messages.h"
#include "base/numtext.h"
#include "fileio/importstore.h"
#include "fileio/itemreader.h"

namespace molvera {

namespace {

bool IsCommentLine(std::string_view line) {
    const std::size_t i = line.find_first_not_of(" \t");
    if (i == std::string_view::npos) return false;
    return line[i] == '#' || line.substr(i, 2) == "//";
}

// The pair of a data line: its first two items, the first starting with a number.
// Other lines (headers, comments, "Key: value" lines, lone numbers) give nothing.
std::optional<std::pair<float, float>> DataPair(std::string_view line) {
    if (IsCommentLine(line)) return std::nullopt;
    ItemReader reader(line, true);
    std::vector<std::string> items;
    while (items.size() < 2) {
        const auto item = reader.NumberItem();
        if (!item) break;
        if (!item->empty()) items.push_back(*item);  // doubled separators give empty items
    }
    if (items.size() < 2 || LeadingNumberLength(items[0]) == 0) return std::nullopt;
    return std::make_pair(static_cast<float>(LeadingNumber(items[0])),
                          static_cast<float>(LeadingNumber(items[1])));
}

// True when `energy` runs against the direction of the energies read so far: after
// a text line this starts a further spectrum, which is not read.
bool StartsAgain(const std::vector<float>& energies, float energy) {
    if (energies.size() < 2) return false;
    const bool falling = energies[1] < energies[0];
    return falling ? energy >= energies.back() : energy <= energies.back();
}

}  // namespace

ImportedData ReadAscii(std::string_view text) {
    ImportedSpectrum s;
    bool more = false;         // pairs beyond the 5000th
    bool interrupted = false;  // a skipped text line since the last pair
    int pending = 0;           // text lines since the last pair
    int firstPending = 0;
    int lineNumber = 0;
    ImportedData data;
    std::size_t pos = 0;
    while (pos < text.size()) {
        ++lineNumber;
        std::size_t end = text.find_first_of("\r\n", pos);
        if (end == std::string_view::npos) end = text.size();
        const std::string_view line = text.substr(pos, end - pos);
        pos = end;
        if (pos < text.size() && text[pos] == '\r') ++pos;
        if (pos < text.size() && text[pos] == '\n') ++pos;
        const auto pair = DataPair(line);
        if (!pair) {
            if (!s.energy.empty() && line.find_first_not_of(" \t") != std::string_view::npos) {
                interrupted = true;
                if (!IsCommentLine(line) && pending++ == 0) firstPending = lineNumber;
            }
            continue;
        }
        if (interrupted && StartsAgain(s.energy, pair->first)) break;
        interrupted = false;
        if (s.energy.size() == static_cast<std::size_t>(kMaxPoints)) {
            more = true;
            break;
        }
        // Text lines between pairs of one spectrum were left out of it.
        if (pending > 0 && data.skippedLines == 0) data.firstSkippedLine = firstPending;
        data.skippedLines += std::exchange(pending, 0);
        s.energy.push_back(pair->first);
        s.intensity.push_back(pair->second);
    }
    if (s.energy.empty()) {
        data.status =
            Status::Error(msg::kErrorReadingFileImport, "no line holds a pair of numbers");
        return data;
    }
    s.overflow = more;
    data.spectra.push_back(std::move(s));
    return data;
}

}  // namespace molvera
