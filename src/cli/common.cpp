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
#include "spectral/warnings.h"

namespace molvera::cli {

std::atomic<bool> gInterrupted{false};

namespace {
void OnInterrupt(int) {
    if (gInterrupted.exchange(true)) _exit(130);
}
}  // namespace

std::optional<std::string> Args::Value(const std::string& name) const {
    const auto it = options.find(name);
    if (it == options.end() || it->second.empty()) return std::nullopt;
    return it->second.back();
}

std::vector<std::string> Args::Values(const std::string& name) const {
    const auto it = options.find(name);
    return it == options.end() ? std::vector<std::string>() : it->second;
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

}  // namespace molvera::cli
