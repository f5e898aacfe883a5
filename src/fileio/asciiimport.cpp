#include "fileio/asciiimport.h"

#include <vector>

#include "fileio/binstream.h"
#include "fileio/importstore.h"
#include "fileio/itemreader.h"
#include "fileio/numtext.h"
#include "model/messages.h"

namespace molvera {

namespace {

bool IsCommentLine(std::string_view line) {
    const std::size_t i = line.find_first_not_of(" \t");
    if (i == std::string_view::npos) return false;
    return line[i] == '#' || line.substr(i, 2) == "//";
}

// The items of one line, or nothing when the line holds no number.
std::vector<std::string> DataItems(std::string_view line) {
    std::vector<std::string> items;
    if (IsCommentLine(line)) return items;
    ItemReader reader(line, true);
    bool anyNumber = false;
    while (auto item = reader.NumberItem()) {
        if (item->empty()) continue;  // doubled separators
        if (LeadingNumberLength(*item) > 0) anyNumber = true;
        items.push_back(std::move(*item));
    }
    if (!anyNumber) items.clear();
    return items;
}

// True when `energy` runs against the direction of the energies read so far: after
// a text line this starts a further spectrum, which is not read.
bool StartsAgain(const std::vector<float>& energies, float energy) {
    if (energies.size() < 2) return false;
    const bool falling = energies[1] < energies[0];
    return falling ? energy >= energies.back() : energy <= energies.back();
}

}  // namespace

Status ReadAscii(Project& project, Host& host, const std::string& path) {
    std::string text;
    if (!ReadWholeFile(path, text, kMaxImportBytes)) return ImportFailure(host, msg::kErrorReadingFileImport);

    ImportedSpectrum s;
    bool more = false;         // pairs beyond the 5000th
    bool nextBlock = false;    // a second spectrum begins
    bool interrupted = false;  // a skipped text line since the last pair
    bool havePending = false;
    float pending = 0;
    std::size_t pos = 0;
    while (pos < text.size() && !more && !nextBlock) {
        std::size_t end = text.find_first_of("\r\n", pos);
        if (end == std::string::npos) end = text.size();
        const std::string_view line(text.data() + pos, end - pos);
        pos = end;
        if (pos < text.size() && text[pos] == '\r') ++pos;
        if (pos < text.size() && text[pos] == '\n') ++pos;
        const std::vector<std::string> items = DataItems(line);
        if (items.empty() && !s.energy.empty() && line.find_first_not_of(" \t") != std::string_view::npos)
            interrupted = true;
        for (const std::string& item : items) {
            const auto value = static_cast<float>(LeadingNumber(item));
            if (!havePending) {
                pending = value;
                havePending = true;
                continue;
            }
            havePending = false;
            if (interrupted && StartsAgain(s.energy, pending)) {
                nextBlock = true;
                break;
            }
            interrupted = false;
            if (s.energy.size() == static_cast<std::size_t>(kMaxPoints)) {
                more = true;
                break;
            }
            s.energy.push_back(pending);
            s.intensity.push_back(value);
        }
    }
    // A file without a pair, or ending in the middle of one, is refused.
    if (s.energy.empty() || (havePending && !more && !nextBlock)) return ImportFailure(host, msg::kErrorReadingFileImport);

    PrepareRegionForImport(project, host);
    if (more) host.Message(msg::kOnly5000Points);
    StoreSpectrum(project, s, SortRule::ReverseUnlessFalling);
    host.ShowRegionWindow();
    host.RecolourRegionButtons();
    return Status::Ok();
}

}  // namespace molvera
