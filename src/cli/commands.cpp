#include "cli/commands.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <cstdio>
#include <cstring>
#include <memory>
#include <sstream>
#include <string>
#include <vector>

#include "base/version.h"
#include "cli/command_list.h"
#include "cli/common.h"
#include "cli/completion.h"
#include "fileio/formats.h"
#include "session/formnumber.h"

namespace molvera::cli {

namespace {

// What the parser checks in a value: nothing, a number, or numbers between ':' (a level
// of the options dialog may also be "off"); a word the value name lists passes too.
enum class Check { None, Number, Numbers };

// An option or a file argument of a command. Its value name is what the help shows after
// it and what completion offers (completion.h): "shirley|linear|tougaard" its words,
// "OUT.png|OUT.pdf" files ending so, "N" nothing. A file argument whose name ends in
// "..." takes any number of files.
struct Opt {
    const char* name;   // "--region", "-o", or a file argument: "IN.xps"
    const char* value;  // "N", "FILE.opa"; nullptr for a flag (or a file argument)
    const char* help;
    Check check = Check::None;
};

struct CommandDef {
    const char* name;
    const char* usage;
    const char* summary;
    int (*run)(const Args&);
    std::vector<Opt> files;
    std::vector<Opt> options;
};

const Opt kIn{"IN.xps", nullptr, "the project"};
const Opt kRegion{"--region", "N", "the region, 1..10", Check::Number};
const Opt kPeak{"--peak", "S", "the peak's slot, 0..50", Check::Number};
Opt Out(const char* value, const char* help = "the file to write") { return {"-o", value, help}; }

// The peak editor's boxes, for add-peak and edit-peak.
std::vector<Opt> PeakOptions(std::vector<Opt> options) {
    const Opt boxes[] = {
        {"--position", "P", "position (binding energy, eV)", Check::Number},
        {"--fwhm", "W", "full width at half maximum (eV)", Check::Number},
        {"--area", "A", "area", Check::Number},
        {"--height", "H", "height of the main line in % of the region's scale, instead of --area",
         Check::Number},
        {"--gl", "G", "Gaussian-Lorentzian mix, % Lorentzian", Check::Number},
        {"--type", "s|p|d|f", "subshell: a single line (s) or a doublet"},
        {"--splitting", "S", "doublet splitting (eV)", Check::Number},
        {"--ts", "T", "tail scale", Check::Number},
        {"--tl", "L", "tail length", Check::Number},
        {"--fix", "LIST", "fix these of position, area, fwhm, gl (comma-separated)"},
        {"--label", "TEXT", "element and level first ('C 1s'), up to 20 Latin-1 characters"},
        {"--rsf", "R|auto", "relative sensitivity factor; auto: the computed one", Check::Number},
    };
    options.insert(options.end(), std::begin(boxes), std::end(boxes));
    options.push_back(Out("OUT.xps"));
    return options;
}

// A level of the options dialog's search or Newton boxes.
Opt Level(const char* name, const char* value, const char* help) {
    return {name, value, help, Check::Numbers};
}

// The import formats' names, "kratos|leybold|phi|vamas|ascii".
const char* FormatNames() {
    static const std::string names = [] {
        std::string out;
        for (const ImportFormat& f : ImportFormats())
            out += (out.empty() ? "" : "|") + std::string(f.name);
        return out;
    }();
    return names.c_str();
}

const std::vector<CommandDef>& Commands() {
    static const std::vector<CommandDef> commands = {
        {"dump",
         "molvera-cli dump FILE.xps",
         "print the whole project as JSON",
         RunDump,
         {{"FILE.xps", nullptr, "the project"}},
         {}},
        {"save",
         "molvera-cli save IN.xps -o OUT.xps",
         "open a project and save it again (older layouts become the current one)",
         RunSave,
         {kIn},
         {Out("OUT.xps")}},
        {"import",
         "molvera-cli import FORMAT FILE [--into IN.xps] [--region N] -o OUT.xps",
         "import spectra into a project",
         RunImport,
         {{"FORMAT", FormatNames(), "the file's format"}, {"FILE", nullptr, "the file to import"}},
         {{"--into", "IN.xps", "the project to import into (default: a new one)"},
          {"--region", "N", "the first region to fill, 1..10", Check::Number},
          Out("OUT.xps")}},
        {"background",
         "molvera-cli background IN.xps --region N --type shirley|linear|tougaard --low L "
         "--high H [--average 1|3|5|7|9] [--param P] -o OUT.xps",
         "set a region's background as the background dialog's Accept does",
         RunBackground,
         {kIn},
         {kRegion,
          {"--type", "shirley|linear|tougaard", "the kind of background"},
          {"--low", "L", "low end of the range (binding energy, eV)", Check::Number},
          {"--high", "H", "high end of the range (binding energy, eV)", Check::Number},
          {"--average", "1|3|5|7|9", "points averaged at each end (default 1)", Check::Number},
          {"--param", "P", "Shirley slope or Tougaard B1", Check::Number},
          Out("OUT.xps")}},
        {"add-peak",
         "molvera-cli add-peak IN.xps --region N [--position P] [--fwhm W] [--area A | "
         "--height H] [--gl G] [--type s|p|d|f] [--splitting S] [--ts T] [--tl L] "
         "[--fix position,area,fwhm,gl] [--label TEXT] [--rsf R|auto] -o OUT.xps",
         "add a peak to a region and print its slot number",
         RunAddPeak,
         {kIn},
         PeakOptions({kRegion})},
        {"edit-peak",
         "molvera-cli edit-peak IN.xps --peak S [--position P] [--fwhm W] [--area A | "
         "--height H] [--gl G] [--type s|p|d|f] [--splitting S] [--ts T] [--tl L] [--fix LIST] "
         "[--free LIST] [--label TEXT] [--rsf R|auto] -o OUT.xps",
         "change a peak as the peak editor's Accept does",
         RunEditPeak,
         {kIn},
         PeakOptions({kPeak, {"--free", "LIST", "free these of position, area, fwhm, gl"}})},
        {"quantify",
         "molvera-cli quantify IN.xps [--source al|mg|EV] [--transmission-exponent A] "
         "[--imfp-exponent B] [--suggest] [-o OUT.xps]",
         "print the quantification table (peaks, then elements with at.%) as CSV; with -o save "
         "the project with the settings given",
         RunQuantify,
         {kIn},
         {{"--source", "al|mg|EV", "X-ray source: Al K-alpha, Mg K-alpha or a photon energy (eV)",
           Check::Number},
          {"--transmission-exponent", "A", "analyser transmission E^A (default -0.5)",
           Check::Number},
          {"--imfp-exponent", "B", "inelastic mean free path E^B (default 0.7)", Check::Number},
          {"--suggest", nullptr, "add the core levels near each unlabelled peak"},
          Out("OUT.xps", "save the project with the settings given")}},
        {"delete-peak",
         "molvera-cli delete-peak IN.xps --peak S -o OUT.xps",
         "delete a peak",
         RunDeletePeak,
         {kIn},
         {kPeak, Out("OUT.xps")}},
        {"export-spectrum",
         "molvera-cli export-spectrum IN.xps --region N -o OUT.dat",
         "write a region's data and fitted curves as text",
         RunExportSpectrum,
         {kIn},
         {kRegion, Out("OUT.dat")}},
        {"export-peaks",
         "molvera-cli export-peaks IN.xps --region N -o OUT.par",
         "write a region's peak parameters as text",
         RunExportPeaks,
         {kIn},
         {kRegion, Out("OUT.par")}},
        {"save-params",
         "molvera-cli save-params IN.xps --region N -o OUT.rpa",
         "save a region's background and peaks as a region parameter file",
         RunSaveParams,
         {kIn},
         {kRegion, Out("OUT.rpa")}},
        {"apply-params",
         "molvera-cli apply-params IN.xps --region N PARAMS.rpa -o OUT.xps",
         "apply a region parameter file to a region",
         RunApplyParams,
         {kIn, {"PARAMS.rpa", nullptr, "the region parameter file"}},
         {kRegion, Out("OUT.xps")}},
        {"fit",
         "molvera-cli fit IN.xps (--region N | --all) [--options FILE.opa] -o OUT.xps",
         "fit one region or all regions; Ctrl-C stops and keeps the best values",
         RunFit,
         {kIn},
         {kRegion,
          {"--all", nullptr, "fit every region"},
          {"--json", nullptr, "print the result as JSON"},
          Out("OUT.xps")}},
        {"constrain",
         "molvera-cli constrain IN.xps --peak S --param position|area|fwhm|gl "
         "[--link REF --op +|-|*|/ --arg A | --unlink] [--limits LOW:HIGH | --no-limits] "
         "-o OUT.xps",
         "tie a peak parameter to another peak or limit its search range",
         RunConstrain,
         {kIn},
         {kPeak,
          {"--param", "position|area|fwhm|gl", "the parameter"},
          {"--link", "REF", "the slot of the peak it follows", Check::Number},
          {"--op", "+|-|*|/", "how it follows: REF's value op A (default +)"},
          {"--arg", "A", "the argument of --op (default 0)", Check::Number},
          {"--unlink", nullptr, "remove the link"},
          {"--limits", "LOW:HIGH", "limit the search range", Check::Numbers},
          {"--no-limits", nullptr, "remove the limits"},
          Out("OUT.xps")}},
        {"options",
         "molvera-cli options [--from IN.opa] [--method search|newton|lm] [--search-trials N] "
         "[--newton-trials N] [--tolerance PERCENT] [--pos-search L:RANGE:STEP|L:off] "
         "[--area-search ...] [--fwhm-search ...] [--pos-newton L:DELTA|L:off] "
         "[--area-newton ...] [--fwhm-newton ...] [--gl-sum | --gl-product] -o OUT.opa",
         "check fitting options as the options dialog's OK does and write them",
         RunOptions,
         {},
         {{"--from", "IN.opa", "the options to start from (default: the built-in ones)"},
          {"--method", "search|newton|lm", "the fitting method"},
          {"--search-trials", "N", "trials of the search method", Check::Number},
          {"--newton-trials", "N", "trials of the Newton method", Check::Number},
          {"--tolerance", "PERCENT", "stop when chi-square improves less", Check::Number},
          Level("--pos-search", "L:RANGE:STEP", "position search at level L 1..4, or L:off"),
          Level("--area-search", "L:RANGE:STEP", "area search at level L, or L:off"),
          Level("--fwhm-search", "L:RANGE:STEP", "FWHM search at level L, or L:off"),
          Level("--pos-newton", "L:DELTA", "position Newton step at level L, or L:off"),
          Level("--area-newton", "L:DELTA", "area Newton step at level L, or L:off"),
          Level("--fwhm-newton", "L:DELTA", "FWHM Newton step at level L, or L:off"),
          {"--gl-sum", nullptr, "Gaussian-Lorentzian sum"},
          {"--gl-product", nullptr, "Gaussian-Lorentzian product"},
          Out("OUT.opa")}},
        {"batch",
         "molvera-cli batch --model (FILE.rpa | PROJECT.xps --region N) FILES... "
         "[--format vamas|ascii|...] [--jobs N] [--shard I/N] [--plots PREFIX] "
         "[--options FILE.opa] -o RESULTS.csv",
         "fit one model to every spectrum of the files and write a CSV row per spectrum and peak",
         RunBatch,
         {{"FILES...", nullptr, "the spectrum files"}},
         {{"--model", "FILE.rpa|PROJECT.xps", "the model: a region parameter file or a project"},
          {"--region", "N", "the model's region when it is a project, 1..10", Check::Number},
          {"--format", FormatNames(), "the files' format (default: from each file's name)"},
          {"--jobs", "N", "fits run at once, 1..256 (default: one per core)", Check::Number},
          {"--shard", "I/N", "fit only every N-th spectrum from the I-th (I from 0)"},
          {"--plots", "PREFIX", "draw each value against the series, PREFIX-position.png ..."},
          Out("RESULTS.csv")}},
        {"merge",
         "molvera-cli merge A.csv B.csv ... -o ALL.csv",
         "join the results of batch --shard runs in spectrum order",
         RunMerge,
         {{"RESULTS.csv...", nullptr, "the results of the shards"}},
         {Out("ALL.csv")}},
        {"dump-options",
         "molvera-cli dump-options FILE.opa",
         "print an option file as JSON",
         RunDumpOptions,
         {{"FILE.opa", nullptr, "the option file"}},
         {}},
#ifdef MOLVERA_CLI_RENDER
        {"render",
         "molvera-cli render IN.xps --region N -o OUT.png|OUT.pdf|OUT.svg [--with-peaks]",
         "draw a region as the printout: a PNG picture or a PDF page, with the peak table on "
         "request",
         RunRender,
         {kIn},
         {kRegion,
          Out("OUT.png|OUT.pdf|OUT.svg", "the picture (PNG or SVG) or page (PDF) to write"),
          {"--with-peaks", nullptr, "draw the peak table too"}}},
        {"report",
         "molvera-cli report IN.xps [--region N | --all] -o OUT.csv|OUT.json|OUT.html",
         "every fitted peak with its uncertainties: a CSV table, a JSON record or an HTML page",
         RunReport,
         {kIn},
         {{"--region", "N", "only this region, 1..10", Check::Number},
          {"--all", nullptr, "every region (the default)"},
          Out("OUT.csv|OUT.json|OUT.html", "the table, record or page to write")}},
#endif
        {"completion",
         "molvera-cli completion bash",
         "print the bash completion script of molvera-cli",
         RunCompletion,
         {{"SHELL", "bash", "the shell"}},
         {}},
    };
    return commands;
}

const CommandDef* FindCommand(const std::string& name) {
    for (const CommandDef& c : Commands())
        if (name == c.name) return &c;
    return nullptr;
}

// "--gl: 'abc' is not a number" when a value (or one between ':') is neither a number nor a
// word its value name lists ("R|auto": a number or auto).
CLI::Validator NumberCheck(const Opt& o) {
    std::vector<std::string> words = ValueWords(o.value);
    if (o.check == Check::Numbers) words.emplace_back("off");  // a level of the options dialog
    return CLI::Validator(
        [numbers = o.check == Check::Numbers, words](const std::string& text) {
            std::size_t start = 0;
            for (std::size_t colon = 0; colon != std::string::npos; start = colon + 1) {
                colon = numbers ? text.find(':', start) : std::string::npos;
                const std::string part = text.substr(start, colon - start);
                if (!BoxNumber(part) && std::find(words.begin(), words.end(), part) == words.end())
                    return "'" + part + "' is not a number";
            }
            return std::string();
        },
        "");
}

// A command's help: its usage line and summary, then its files and options with their
// help texts, as the parser holds them.
class CommandHelp : public CLI::Formatter {
public:
    explicit CommandHelp(const char* usage) : usage_(usage) {
        label("Positionals", "files");
        column_width(26);
    }
    std::string make_help(const CLI::App* app, std::string,
                          CLI::AppFormatMode mode) const override {
        return "usage: " + usage_ + "\n\n" + app->get_description() + "\n" + make_positionals(app) +
               make_groups(app, mode) + "\n";
    }

private:
    std::string usage_;
};

// The parser of one command, made from its definition.
std::unique_ptr<CLI::App> CommandApp(const CommandDef& c) {
    auto app = std::make_unique<CLI::App>(c.summary, c.name);
    app->formatter(std::make_shared<CommandHelp>(c.usage));
    app->allow_extras();  // reported below with today's messages
    app->option_defaults()->group("options");
    for (const Opt& f : c.files) {
        std::string name = f.name;
        const bool many = name.ends_with("...");
        if (many) name.resize(name.size() - 3);  // the help shows "FILES ..."
        CLI::Option* o = app->add_option(name, f.help)->type_name(f.value ? f.value : "");
        if (many) o->expected(0, -1)->allow_extra_args();
    }
    std::vector<Opt> options = c.options;
    if (std::strcmp(c.name, "completion") != 0)
        options.push_back({"--options", "FILE.opa",
                           "the fitting options (default: default.opa here, else in "
                           "~/.config/molvera, else the installed one)"});
    for (const Opt& o : options) {
        CLI::Option* option = o.value ? app->add_option(o.name, o.help) : app->add_flag(o.name);
        option->description(o.help);
        if (o.value) option->type_name(o.value)->take_all();
        if (o.check != Check::None) option->check(NumberCheck(o));
    }
    app->set_help_flag("--help", "print this help and exit");
    return app;
}

// Parses the words after the command name into `args`; prints the problem and the usage
// and returns false when they do not fit.
bool Parse(const CommandDef& c, int argc, char** argv, Args& args) {
    const std::unique_ptr<CLI::App> app = CommandApp(c);
    std::string problem;
    try {
        app->parse(argc, argv);
    } catch (const CLI::ArgumentMismatch& e) {
        const std::string what = e.what();
        problem = "option " + what.substr(0, what.find(':')) + " needs a value";
    } catch (const CLI::ParseError& e) {
        problem = e.what();
    }
    std::size_t fixed = 0;
    bool many = false;
    for (const CLI::Option* o : app->get_options()) {
        std::vector<std::string> values = o->results();
        if (o->get_positional()) {
            args.files.insert(args.files.end(), values.begin(), values.end());
            many = many || o->get_expected_max() > 1;
            ++fixed;
        } else if (o->count() > 0) {
            if (values.empty()) values.emplace_back();
            args.options[o->get_name().substr(o->get_name().find_first_not_of('-'))] = values;
        }
    }
    for (const std::string& extra : app->remaining())
        if (problem.empty() && extra.size() > 1 && extra[0] == '-')
            problem = "unknown option " + extra;
    if (problem.empty() && !many && (args.files.size() != fixed || !app->remaining().empty()))
        problem = "expected " + std::to_string(fixed) + " file argument(s)";
    if (problem.empty()) return true;
    std::fprintf(stderr, "molvera-cli: %s\nusage: %s\n", problem.c_str(), c.usage);
    return false;
}

// Every command as a subcommand of one parser: what completion walks.
std::unique_ptr<CLI::App> WholeApp() {
    auto app = std::make_unique<CLI::App>("", "molvera-cli");
    app->set_help_flag("--help");
    app->add_flag("--version");
    for (const CommandDef& c : Commands()) app->add_subcommand(CommandApp(c));
    return app;
}

// `text` from column 19, broken at blanks before column 80, `lead` before its first line.
void PrintIndented(const char* lead, const std::string& text) {
    std::string line;
    std::istringstream words(text);
    for (std::string word; words >> word; line += (line.empty() ? "" : " ") + word) {
        if (line.empty() || 19 + line.size() + 1 + word.size() <= 79) continue;
        std::printf("  %-16s %s\n", lead, line.c_str());
        lead = "";
        line.clear();
    }
    std::printf("  %-16s %s\n", lead, line.c_str());
}

void PrintOverview() {
    std::printf(
        "Usage: molvera-cli COMMAND FILE... [OPTION...]\n"
        "  or:  molvera-cli COMMAND --help\n"
        "  or:  molvera-cli --version\n"
        "Batch work on Molvera project files (.xps): import spectra, set backgrounds and\n"
        "peaks, fit, and export, draw or report the results, as the desktop program does.\n"
        "\nCommands:\n");
    // Each command with its summary and usage under it (man pages made from this text join
    // the two into one paragraph).
    for (const CommandDef& c : Commands()) {
        PrintIndented(c.name, c.summary + std::string(":"));
        PrintIndented("", c.usage);
    }
    std::printf(
        "\nRegions are numbered 1..10, peaks by their slot 0..50. Every command that loads or\n"
        "computes takes --options FILE.opa (default: default.opa in the working directory,\n"
        "else in ~/.config/molvera, else the installed one).\n"
        "Run 'molvera-cli COMMAND --help' for the options of a command.\n"
        "\nOptions:\n"
        "  --help     print this help and exit\n"
        "  --version  print the version and exit\n");
}

}  // namespace

const char* Usage(const char* name) {
    const CommandDef* c = FindCommand(name);
    return c ? c->usage : "";
}

int RunCompletion(const Args& args) {
    if (args.Positional()[0] != "bash") return Fail("completion: the shell is bash");
    std::printf("%s", BashCompletion(*WholeApp()).c_str());
    return 0;
}

int Main(int argc, char** argv) {
    if (argc == 2 && !std::strcmp(argv[1], "--version")) {
        std::printf("molvera-cli %s\n", ProgramVersion());
        return 0;
    }
    if (argc < 2 || !std::strcmp(argv[1], "--help") || !std::strcmp(argv[1], "help")) {
        PrintOverview();
        return argc < 2 ? kExitUsage : 0;
    }
    const CommandDef* c = FindCommand(argv[1]);
    if (!c) {
        std::fprintf(stderr, "molvera-cli: unknown command '%s'\n", argv[1]);
        PrintOverview();
        return kExitUsage;
    }
    for (int i = 2; i < argc; ++i) {
        if (!std::strcmp(argv[i], "--help")) {
            std::printf("%s", CommandApp(*c)->help().c_str());
            return 0;
        }
    }
    Args args;
    if (!Parse(*c, argc - 1, argv + 1, args)) return kExitUsage;
    InstallInterruptHandler();
    return c->run(args);
}

}  // namespace molvera::cli
