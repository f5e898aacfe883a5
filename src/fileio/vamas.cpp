#include "fileio/vamas.h"

#include <algorithm>
#include <cstdint>
#include <initializer_list>
#include <vector>

#include "base/binstream.h"
#include "base/messages.h"
#include "base/numtext.h"
#include "fileio/importstore.h"

namespace molvera {

namespace {

// Lines of the file without their line ends; a line that is not what it should be throws
// ReadError naming the line.
class Lines {
public:
    explicit Lines(std::string_view text) : text_(text) {}

    bool AtEnd() const { return pos_ >= text_.size(); }

    [[noreturn]] void Fail(const std::string& what) const {
        throw ReadError("line " + std::to_string(line_) + ": " + what);
    }

    std::string_view Next() {
        if (AtEnd()) throw ReadError("the file ends after line " + std::to_string(line_));
        ++line_;
        std::size_t end = text_.find_first_of("\r\n", pos_);
        if (end == std::string_view::npos) end = text_.size();
        const std::string_view line = text_.substr(pos_, end - pos_);
        pos_ = end;
        if (pos_ < text_.size() && text_[pos_] == '\r') ++pos_;
        if (pos_ < text_.size() && text_[pos_] == '\n') ++pos_;
        return line;
    }

    void Skip(std::int64_t n) {
        for (std::int64_t i = 0; i < n; ++i) Next();
    }

    // A keyword line without surrounding blanks.
    std::string Word() {
        std::string_view line = Next();
        const std::size_t a = line.find_first_not_of(" \t");
        if (a == std::string_view::npos) return {};
        const std::size_t b = line.find_last_not_of(std::string_view(" \t\0", 3));
        if (b == std::string_view::npos || b < a) return {};
        return std::string(line.substr(a, b - a + 1));
    }

    double Real() {
        const std::string_view line = Next();
        if (LeadingNumberLength(line) == 0) Fail("a number was expected");
        return LeadingNumber(line);
    }

    // A count: an integer from 0 up to the number of characters left, so that a
    // damaged count ends at the file's end instead of running on.
    std::int64_t Count() {
        const double v = Real();
        if (!(v >= 0) || v > static_cast<double>(text_.size() - std::min(pos_, text_.size())) + 1 ||
            v != static_cast<double>(static_cast<std::int64_t>(v)))
            Fail("a count was expected");
        return static_cast<std::int64_t>(v);
    }

private:
    std::string_view text_;
    std::size_t pos_ = 0;
    int line_ = 0;  // lines read so far
};

// A text field; some writers end texts with a NUL byte, which ends the text here.
std::string TextField(std::string_view line) {
    return std::string(line.substr(0, line.find('\0')));
}

bool OneOf(const std::string& word, std::initializer_list<const char*> set) {
    return std::any_of(set.begin(), set.end(), [&](const char* s) { return word == s; });
}

std::string Lower(std::string_view s) {
    std::string out(s);
    for (char& c : out)
        if (c >= 'A' && c <= 'Z') c = static_cast<char>(c - 'A' + 'a');
    return out;
}

enum class Abscissa { Kinetic, Binding, Other };

Abscissa KindOf(std::string_view label) {
    const std::string l = Lower(label);
    if (l.find("kinetic") != std::string::npos) return Abscissa::Kinetic;
    if (l.find("binding") != std::string::npos) return Abscissa::Binding;
    return Abscissa::Other;
}

struct Header {
    std::string mode;      // experiment mode
    std::string scanMode;  // REGULAR, IRREGULAR or MAPPING
    std::int64_t experimentalVariables = 0;
    std::int64_t futureBlockEntries = 0;
    std::int64_t blocks = 0;
    bool inclusionList = false;
};

struct Block {
    std::string sample;
    std::string technique;
    bool xps = false;
    bool aes = false;
    bool usable = false;  // an energy spectrum that is stored
    ImportedSpectrum spectrum;
};

bool IsMap(const std::string& m) { return OneOf(m, {"MAP", "MAPDP", "MAPSV", "MAPSVDP", "SEM"}); }
bool IsDepthProfile(const std::string& m) { return OneOf(m, {"MAPDP", "MAPSVDP", "SDP", "SDPSV"}); }

Header ReadHeader(Lines& lines) {
    Header h;
    lines.Skip(4);              // institution, instrument model, operator, experiment
    lines.Skip(lines.Count());  // comment lines
    h.mode = lines.Word();
    h.scanMode = lines.Word();
    if (OneOf(h.mode, {"MAP", "MAPDP", "MAPSV", "MAPSVDP", "NORM", "SDP", "SDPSV"})) lines.Skip(1);
    if (IsMap(h.mode)) lines.Skip(3);
    h.experimentalVariables = lines.Count();
    lines.Skip(2 * h.experimentalVariables);  // label and unit of each
    const double inclusion = lines.Real();
    if (inclusion != 0) {
        // Later blocks then omit parameters; only the first block can be read.
        h.inclusionList = true;
        const double n = inclusion < 0 ? -inclusion : inclusion;
        if (n > 1000) lines.Fail("the parameter inclusion list is too long");
        lines.Skip(static_cast<std::int64_t>(n));
    }
    lines.Skip(lines.Count());  // manually entered items
    const std::int64_t futureExperiment = lines.Count();
    h.futureBlockEntries = lines.Count();
    lines.Skip(futureExperiment);
    h.blocks = lines.Count();
    return h;
}

// One block; the values are kept only when `keep` and the block is a usable XPS
// energy spectrum.
Block ReadBlock(Lines& lines, const Header& h, bool keep) {
    Block b;
    lines.Skip(1);  // block identifier
    b.sample = TextField(lines.Next());
    lines.Skip(7);              // year, month, day, hours, minutes, seconds, hours ahead of GMT
    lines.Skip(lines.Count());  // comment lines
    b.technique = lines.Word();
    b.aes = b.technique.find("AES") != std::string::npos;
    b.xps = !b.aes && b.technique.find("XPS") != std::string::npos;
    if (IsMap(h.mode)) lines.Skip(2);  // x, y coordinates
    for (std::int64_t v = 0; v < h.experimentalVariables; ++v) {
        const std::string_view value = lines.Next();
        const std::size_t length = LeadingNumberLength(value);
        if (v == 0 && length > 0 && value.find_first_not_of(" \t\r", length) == value.npos)
            b.spectrum.variable = LeadingNumber(value);
    }
    lines.Skip(1);  // analysis source label
    // ISS and the mass spectrometries (FABMS, SIMS, SNMS and their energy spectra) name
    // their sputtering ion
    const bool sputtered = b.technique == "ISS" || b.technique.starts_with("FABMS") ||
                           b.technique.starts_with("SIMS") || b.technique.starts_with("SNMS");
    if (IsDepthProfile(h.mode) || sputtered) lines.Skip(3);  // sputtering ion
    const double hv = lines.Real();
    lines.Skip(3);                     // source strength, beam width x and y
    if (IsMap(h.mode)) lines.Skip(2);  // field of view
    if (OneOf(h.mode, {"MAPSV", "MAPSVDP", "SEM"})) lines.Skip(6);  // line scan corners
    lines.Skip(4);  // polar angle, azimuth, analyser mode, pass energy
    if (b.technique == "AES diff") lines.Skip(1);  // differential width
    lines.Skip(7);  // magnification, work function, target bias, analysis width x y, take-off
                    // polar, azimuth
    lines.Skip(1);  // species label
    b.spectrum.caption = TextField(lines.Next());  // transition or charge state label
    lines.Skip(1);                                 // charge of detected particle

    const bool regular = h.scanMode == "REGULAR";
    Abscissa kind = Abscissa::Other;
    double start = 0;
    double step = 0;
    if (regular) {
        kind = KindOf(lines.Next());
        lines.Skip(1);  // units
        start = lines.Real();
        step = lines.Real();
    }
    const std::int64_t variables = lines.Count();
    std::int64_t abscissaVariable = -1;
    std::int64_t intensityVariable = -1;
    for (std::int64_t v = 0; v < variables; ++v) {
        const Abscissa k = KindOf(lines.Next());
        lines.Skip(1);  // units
        if (!regular && k != Abscissa::Other && abscissaVariable < 0) {
            abscissaVariable = v;
            kind = k;
        } else if (k == Abscissa::Other && intensityVariable < 0) {
            intensityVariable = v;
        }
    }
    lines.Skip(4);  // signal mode, collection time, scans, time correction
    if (IsDepthProfile(h.mode) &&
        OneOf(b.technique, {"AES diff", "AES dir", "EDX", "ELS", "UPS", "XPS", "XRF"}))
        lines.Skip(7);              // sputtering source
    lines.Skip(3);                  // sample tilt polar angle, azimuth, rotation
    lines.Skip(3 * lines.Count());  // additional numerical parameters
    lines.Skip(h.futureBlockEntries);
    const std::int64_t values = lines.Count();
    lines.Skip(2 * variables);  // minimum and maximum of each variable

    b.usable = b.xps && kind != Abscissa::Other && intensityVariable >= 0 &&
               (regular || abscissaVariable >= 0) && variables > 0 && values >= variables;
    const std::int64_t points = variables > 0 ? values / variables : 0;
    if (b.usable && keep) {
        b.spectrum.overflow = points > kMaxPoints;
        const auto stored = static_cast<std::size_t>(std::min<std::int64_t>(points, kMaxPoints));
        b.spectrum.energy.resize(stored);
        b.spectrum.intensity.resize(stored);
        // Energies in double from the file's own numbers, rounded once: a kinetic start of
        // 586.69 with hv 1486.69 gives 900, not the 899.9999 of single arithmetic.
        const double first = kind == Abscissa::Kinetic ? hv - start : start;
        const double delta = kind == Abscissa::Kinetic ? -step : step;
        for (std::size_t i = 0; i < stored; ++i)
            b.spectrum.energy[i] = static_cast<float>(first + static_cast<double>(i) * delta);
        for (std::int64_t i = 0; i < values; ++i) {
            const double value = lines.Real();
            const std::int64_t point = i / variables;
            if (point >= static_cast<std::int64_t>(stored)) continue;
            const std::int64_t var = i % variables;
            const auto p = static_cast<std::size_t>(point);
            if (var == intensityVariable) b.spectrum.intensity[p] = static_cast<float>(value);
            if (var == abscissaVariable) {
                b.spectrum.energy[p] =
                    static_cast<float>(kind == Abscissa::Kinetic ? hv - value : value);
            }
        }
    } else {
        lines.Skip(values);
    }
    return b;
}

}  // namespace

ImportedData ReadVamas(std::string_view text) {
    ImportedData data;
    Lines lines(text);

    // The identification is the first line that is not blank.
    std::string first;
    while (!lines.AtEnd() && first.empty()) first = lines.Word();
    if (first.find("VAMAS") == std::string::npos) {
        data.status = Status::Error(msg::kNotVamas, "the first line does not name VAMAS");
        return data;
    }

    // At most 11 spectra: the eleventh only ends the import.
    constexpr std::size_t kKept = kRegionCount + 1;
    bool haveFirst = false;
    std::string failure;
    try {
        const Header header = ReadHeader(lines);
        const std::int64_t blocks =
            header.inclusionList ? std::min<std::int64_t>(header.blocks, 1) : header.blocks;
        for (std::int64_t k = 0; k < blocks; ++k) {
            Block b = ReadBlock(lines, header, data.spectra.size() < kKept);
            if (k == 0) {
                haveFirst = true;
                data.description = b.sample;
                if (b.aes) {
                    data.status = Status::Error(msg::kNotXps, "the first block is AES");
                    return data;
                }
            }
            if (b.usable && data.spectra.size() < kKept)
                data.spectra.push_back(std::move(b.spectrum));
            else if (!b.xps)
                data.otherTechniques.push_back(b.technique);
        }
        if (header.inclusionList && header.blocks > 1)
            failure =
                "blocks after the first leave out parameters (inclusion list): only the first is "
                "read";
    } catch (const ReadError& e) {
        failure = e.what();
    }

    if (!failure.empty())
        data.status = Status::Error(msg::kErrorReadingFileImport, failure);
    else if (data.spectra.empty())
        data.status = haveFirst
                          ? Status::Error(msg::kNotXps, "no block holds an XPS spectrum")
                          : Status::Error(msg::kErrorReadingFileImport, "the file holds no block");
    if (data.spectra.empty()) data.description.reset();
    return data;
}

}  // namespace molvera
