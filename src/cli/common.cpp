#include "cli/common.h"

#include <unistd.h>

#include <algorithm>
#include <cctype>
#include <csignal>
#include <cstdio>
#include <filesystem>

#include "base/numtext.h"
#include "fileio/optionfile.h"
#include "fileio/projectfile.h"
#include "session/formnumber.h"
#include "spectral/warnings.h"

namespace molvera::cli {

std::atomic<bool> gInterrupted{false};

namespace {
void OnInterrupt(int) {
    if (gInterrupted.exchange(true)) _exit(130);
}

// The options that take a number (and background's --param), and those that take
// numbers between ":" (a level may also be "off").
const std::set<std::string> kNumberOptions = {"region",
                                              "peak",
                                              "low",
                                              "high",
                                              "average",
                                              "position",
                                              "fwhm",
                                              "area",
                                              "gl",
                                              "ts",
                                              "tl",
                                              "height",
                                              "splitting",
                                              "link",
                                              "arg",
                                              "search-trials",
                                              "newton-trials",
                                              "tolerance",
                                              "transmission-exponent",
                                              "imfp-exponent"};
const std::set<std::string> kNumberListOptions = {"limits",      "pos-search", "area-search",
                                                  "fwhm-search", "pos-newton", "area-newton",
                                                  "fwhm-newton"};

// "--gl: 'abc' is not a number" for the first numeric option given something else.
std::string BadNumber(const Args& args) {
    for (const std::string& name : kNumberOptions)
        for (const std::string& value : args.Values(name))
            if (!BoxNumber(value)) return NotANumber("--" + name, value).message();
    for (const std::string& name : kNumberListOptions) {
        for (const std::string& value : args.Values(name)) {
            std::size_t start = 0;
            for (std::size_t colon = 0; colon != std::string::npos; start = colon + 1) {
                colon = value.find(':', start);
                const std::string part = value.substr(start, colon - start);
                if (part != "off" && !BoxNumber(part))
                    return NotANumber("--" + name, part).message();
            }
        }
    }
    return {};
}
}  // namespace

std::optional<int> NotANumberOption(const Args& args, const std::string& name) {
    const std::optional<std::string> value = args.Value(name);
    if (!value || BoxNumber(*value)) return std::nullopt;
    return Fail(NotANumber("--" + name, *value).message());
}

void InstallInterruptHandler() { std::signal(SIGINT, OnInterrupt); }

void CliHost::Yield() {
    if (gInterrupted.load()) project_.StopRequested = true;
}

Status LoadOptions(const Args& args, Session& s) {
    auto path = args.Value("options");
    if (!path) {
        const std::string found = FindDefaultOptions();
        if (found.empty()) return Status::Ok();
        return ReadOptionFile(s.project.Options, found);
    }
    if (!std::filesystem::exists(*path)) return Status::Error("cannot open " + *path);
    return ReadOptionFile(s.project.Options, *path);
}

Status LoadInput(Session& s, const std::string& path) {
    if (!std::filesystem::is_regular_file(path)) return Status::Error("cannot open " + path);
    std::string warning;
    Status st = LoadProject(s.project, s.host, path, &warning);
    if (!warning.empty()) Warn(warning);
    return st;
}

void Warn(const std::string& text) { std::fprintf(stderr, "warning: %s\n", text.c_str()); }

Status SaveOutput(Session& s, const Args& args) {
    auto out = args.Value("o");
    if (!out) return Status::Error("no output file given (-o FILE)");
    for (int r = 0; r < kRegionCount; ++r)
        for (const std::string& w : RegionWarnings(s.project, r))
            Warn("region " + std::to_string(r + 1) + ": " + w);
    return SaveProject(s.project, *out);
}

std::optional<int> IntArg(const Args& args, const std::string& name, int lo, int hi) {
    auto v = args.Value(name);
    if (!v) return std::nullopt;
    const std::size_t len = LeadingNumberLength(*v);
    if (len == 0 || len != v->size()) return std::nullopt;
    const double d = LeadingNumber(*v);
    if (d != RoundHalfEven(d) || d < lo || d > hi) return std::nullopt;
    return static_cast<int>(d);
}

std::optional<PeakParameter> ParameterArg(const std::string& text) {
    if (text == "position") return PeakParameter::Position;
    if (text == "area") return PeakParameter::Area;
    if (text == "fwhm") return PeakParameter::FWHM;
    if (text == "gl") return PeakParameter::GL;
    return std::nullopt;
}

std::optional<int> RegionArg(const Args& args, const std::string& name) {
    auto n = IntArg(args, name, 1, 10);
    if (!n) return std::nullopt;
    return *n - 1;
}

std::string LowerExtension(const std::string& path) {
    const auto dot = path.find_last_of('.');
    if (dot == std::string::npos || path.find_first_of("/\\", dot) != std::string::npos) return "";
    std::string ext = path.substr(dot + 1);
    std::transform(ext.begin(), ext.end(), ext.begin(),
                   [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
    return ext;
}

int Fail(const std::string& text) {
    std::fprintf(stderr, "molvera-cli: %s\n", text.c_str());
    return kExitRefused;
}

void Print(const Status& status) { std::fprintf(stderr, "%s\n", status.Text().c_str()); }

void Print(const std::string& text) { std::fprintf(stderr, "%s\n", text.c_str()); }

int Refused(const Status& status) {
    Print(status);
    return kExitRefused;
}

bool CheckArgs(const Args& args, const std::set<std::string>& known, std::size_t positional,
               const char* usage) {
    std::set<std::string> all = known;
    all.insert("help");
    all.insert("options");
    std::string problem;
    if (!args.MissingValue().empty()) {
        problem = "option --" + args.MissingValue() + " needs a value";
    } else if (auto unknown = args.Unknown(all); !unknown.empty()) {
        problem = "unknown option " + unknown.front();
    } else if (args.Positional().size() != positional) {
        problem = "expected " + std::to_string(positional) + " file argument(s)";
    } else {
        problem = BadNumber(args);
    }
    if (problem.empty()) return true;
    std::fprintf(stderr, "molvera-cli: %s\nusage: %s\n", problem.c_str(), usage);
    return false;
}

}  // namespace molvera::cli
