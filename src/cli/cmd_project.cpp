// dump, save, dump-options and options.

#include <array>
#include <cstdio>
#include <string>
#include <vector>

#include "cli/command_list.h"
#include "cli/common.h"
#include "fileio/optionfile.h"
#include "session/jsondump.h"
#include "session/optionsform.h"

namespace molvera::cli {

int RunDump(const Args& args) {
    Session s;
    if (Status st = LoadOptions(args, s); !st) return Refused(st);
    if (Status st = LoadInput(s, args.Positional()[0]); !st) return Refused(st);
    std::printf("%s\n", ProjectToJson(s.project).dump(1).c_str());
    return 0;
}

int RunSave(const Args& args) {
    if (!args.Has("o")) return Fail("no output file given (-o FILE)");
    Session s;
    if (Status st = LoadOptions(args, s); !st) return Refused(st);
    if (Status st = LoadInput(s, args.Positional()[0]); !st) return Refused(st);
    if (Status st = SaveOutput(s, args); !st) return Refused(st);
    return 0;
}

int RunDumpOptions(const Args& args) {
    Session s;
    if (Status st = ReadOptionFile(s.project.Options, args.Positional()[0]); !st)
        return Refused(st);
    std::printf("%s\n", OptionsToJson(s.project.Options).dump(1).c_str());
    return 0;
}

}  // namespace molvera::cli

// options: the options dialog's OK logic on values given as options.
namespace molvera::cli {

namespace {

std::vector<std::string> SplitColons(const std::string& s) {
    std::vector<std::string> parts;
    std::size_t start = 0;
    while (true) {
        auto pos = s.find(':', start);
        parts.push_back(s.substr(start, pos - start));
        if (pos == std::string::npos) break;
        start = pos + 1;
    }
    return parts;
}

// "L:RANGE:STEP" / "L:DELTA" ticks level L and types the numbers into its boxes;
// "L:off" unticks it. Returns false when the text is malformed.
bool ApplyLevelSpec(const std::string& levelText, std::size_t numbers,
                    std::array<bool, kLevels>& check, std::array<std::string, kLevels>* box1,
                    std::array<std::string, kLevels>* box2) {
    auto parts = SplitColons(levelText);
    if (parts.size() < 2 || parts[0].size() != 1 || parts[0][0] < '1' || parts[0][0] > '4')
        return false;
    const int level = parts[0][0] - '1';
    if (parts.size() == 2 && parts[1] == "off") {
        check[level] = false;
        return true;
    }
    if (parts.size() != numbers + 1) return false;
    check[level] = true;
    (*box1)[level] = parts[1];
    if (box2) (*box2)[level] = parts[2];
    return true;
}

}  // namespace

int RunOptions(const Args& args) {
    if (!args.Has("o")) return Fail("no output file given (-o FILE.opa)");
    if (args.Has("gl-sum") && args.Has("gl-product"))
        return Fail("--gl-sum and --gl-product exclude each other");
    Session s;
    FitOptions& options = s.project.Options;
    if (auto from = args.Value("from")) {
        if (Status st = ReadOptionFile(options, *from); !st) return Refused(st);
    }
    OptionsForm form;
    FillOptionsDialog(options, form);

    if (auto m = args.Value("method")) {
        if (*m != "search" && *m != "newton" && *m != "lm")
            return Fail("--method is search, newton or lm");
        form.useSearch = *m == "search";
        form.useLevenbergMarquardt = *m == "lm";
        form.useNewton = *m == "newton";
    }
    if (auto v = args.Value("search-trials")) form.searchTrialsText = *v;
    if (auto v = args.Value("newton-trials")) form.newtonTrialsText = *v;
    if (auto v = args.Value("tolerance")) form.toleranceText = *v;
    struct LevelOption {
        const char* name;
        std::size_t numbers;
        std::array<bool, kLevels>* check;
        std::array<std::string, kLevels>* box1;
        std::array<std::string, kLevels>* box2;
    };
    const LevelOption levels[] = {
        {"pos-search", 2, &form.usePositionSearch, &form.positionRangeText, &form.positionStepText},
        {"area-search", 2, &form.useAreaSearch, &form.areaRangeText, &form.areaStepText},
        {"fwhm-search", 2, &form.useFWHMSearch, &form.fwhmRangeText, &form.fwhmStepText},
        {"pos-newton", 1, &form.usePositionNewton, &form.positionDeltaText, nullptr},
        {"area-newton", 1, &form.useAreaNewton, &form.areaDeltaText, nullptr},
        {"fwhm-newton", 1, &form.useFWHMNewton, &form.fwhmDeltaText, nullptr},
    };
    for (const LevelOption& l : levels) {
        for (const std::string& levelText : args.Values(l.name)) {
            if (!ApplyLevelSpec(levelText, l.numbers, *l.check, l.box1, l.box2)) {
                return Fail(std::string("--") + l.name + " takes " +
                            (l.numbers == 2 ? "LEVEL:RANGE:STEP" : "LEVEL:DELTA") +
                            " or LEVEL:off, with LEVEL 1..4");
            }
        }
    }
    if (args.Has("gl-sum")) {
        form.glSum = true;
        form.glProduct = false;
        ApplyGLSumChoice(form, options);
    } else if (args.Has("gl-product")) {
        form.glProduct = true;
        form.glSum = false;
        ApplyGLProductChoice(form, options);
    }
    if (Status st = ApplyOptionsDialog(form, options); !st) return Refused(st);
    if (Status st = WriteOptionFile(options, *args.Value("o")); !st) return Refused(st);
    return 0;
}

}  // namespace molvera::cli
