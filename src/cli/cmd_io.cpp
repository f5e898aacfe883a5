// import, export-spectrum, export-peaks, save-params and apply-params.

#include <array>
#include <cstdio>
#include <filesystem>
#include <string>

#include "base/messages.h"
#include "base/numtext.h"
#include "cli/command_list.h"
#include "cli/common.h"
#include "fileio/exports.h"
#include "fileio/formats.h"
#include "fileio/regionparams.h"
#include "model/project.h"

namespace molvera::cli {

namespace {

// Loads the options, then the project of --into or the positional file `index`.
bool PrepareFrom(const Args& args, Session& s, const std::optional<std::string>& input,
                 int& exitCode) {
    if (Status st = LoadOptions(args, s); !st) {
        exitCode = Refused(st);
        return false;
    }
    if (!input) {
        ClearProject(s.project, s.host);
        return true;
    }
    if (Status st = LoadInput(s, *input); !st) {
        exitCode = Refused(st);
        return false;
    }
    return true;
}

std::string RegionLine(int slot, const Region& r) {
    std::string caption = Latin1ToUtf8(r.Caption.Str());
    while (!caption.empty() && caption.back() == ' ') caption.pop_back();
    return "region " + std::to_string(slot + 1) + ": \"" + caption + "\", " +
           std::to_string(r.PointCount) + " points, " + FormatGeneral(r.MaxBE) + " .. " +
           FormatGeneral(r.MinBE) + " eV";
}

// The region of --region that must hold data (and a background when asked).
int RegionWithData(const Args& args, Session& s, bool needBackground) {
    auto region = RegionArg(args);
    if (!region) return Fail("--region takes a region number 1..10");
    s.project.CurrentRegion = static_cast<Int16>(*region);
    const Region& r = s.project.Current();
    const std::string name = "region " + std::to_string(*region + 1);
    if (!IsSet(r.HasData)) return Fail(name + " holds no data");
    if (needBackground && !IsSet(r.HasBackground)) return Fail(name + " has no background");
    return 0;
}

int ExportCommand(const Args& args, bool needBackground,
                  Status (*write)(const Project&, const std::string&)) {
    if (!args.Has("o")) return Fail("no output file given (-o FILE)");
    Session s;
    int code = 0;
    if (!PrepareFrom(args, s, args.Positional()[0], code)) return code;
    if (int rc = RegionWithData(args, s, needBackground); rc != 0) return rc;
    if (Status st = write(s.project, *args.Value("o")); !st) {
        Print(msg::kErrorSavingFile);
        return kExitRefused;
    }
    Print(msg::kDataFileExported);
    return 0;
}

}  // namespace

int RunImport(const Args& args) {
    const ImportFormat* format = FindImportFormat(args.Positional()[0]);
    if (!format) {
        std::string names;
        for (const ImportFormat& f : ImportFormats())
            names += (names.empty() ? "" : ", ") + std::string(f.name);
        return Fail("unknown format '" + args.Positional()[0] + "' (" + names + ")");
    }
    if (!args.Has("o")) return Fail("no output file given (-o FILE)");
    Session s;
    int code = 0;
    if (!PrepareFrom(args, s, args.Value("into"), code)) return code;
    if (args.Has("region")) {
        auto region = RegionArg(args);
        if (!region) return Fail("--region takes a region number 1..10");
        s.project.CurrentRegion = static_cast<Int16>(*region);
    }
    const std::string file = args.Positional()[1];
    if (!std::filesystem::is_regular_file(file)) return Fail("cannot open " + file);
    const std::array<Region, kRegionCount> before = s.project.Regions;
    const ImportResult imported = ImportFile(s.project, s.host, *format, file);
    for (const Status& notice : imported.notices) Print(notice);
    if (!imported.status) return Refused(imported.status);
    for (const std::string& w : imported.warnings) Warn(w);
    for (int k = 0; k < kRegionCount; ++k) {
        const Region& r = s.project.Regions[k];
        if (IsSet(r.HasData) && !(r == before[k])) std::printf("%s\n", RegionLine(k, r).c_str());
    }
    if (Status st = SaveOutput(s, args); !st) return Refused(st);
    return 0;
}

int RunExportSpectrum(const Args& args) { return ExportCommand(args, false, ExportSpectrum); }

int RunExportPeaks(const Args& args) { return ExportCommand(args, true, ExportPeakParameters); }

int RunSaveParams(const Args& args) {
    if (!args.Has("o")) return Fail("no output file given (-o FILE.rpa)");
    Session s;
    int code = 0;
    if (!PrepareFrom(args, s, args.Positional()[0], code)) return code;
    if (int rc = RegionWithData(args, s, true); rc != 0) return rc;
    if (Status st = SaveRegionParameters(s.project, *args.Value("o")); !st) {
        Print(msg::kErrorSavingFile);
        return kExitRefused;
    }
    Print(msg::kParameterFileSaved);
    return 0;
}

int RunApplyParams(const Args& args) {
    if (!args.Has("o")) return Fail("no output file given (-o FILE)");
    Session s;
    int code = 0;
    if (!PrepareFrom(args, s, args.Positional()[0], code)) return code;
    if (int rc = RegionWithData(args, s, false); rc != 0) return rc;
    const std::string params = args.Positional()[1];
    if (!std::filesystem::is_regular_file(params)) return Fail("cannot open " + params);
    if (Status st = LoadRegionParameters(s.project, s.host, params); !st) return Refused(st);
    if (Status st = SaveOutput(s, args); !st) return Refused(st);
    return 0;
}

}  // namespace molvera::cli
