#include "cli/commands.h"

#include <cstdio>
#include <cstring>
#include <string>

#include "base/version.h"
#include "cli/command_list.h"
#include "cli/common.h"

namespace molvera::cli {

namespace {

const Command kCommands[] = {
    {"dump", "molvera-cli dump FILE.xps", "print the whole project as JSON", RunDump},
    {"save", "molvera-cli save IN.xps -o OUT.xps",
     "open a project and save it again (older layouts become the current one)", RunSave},
    {"import", "molvera-cli import FORMAT FILE [--into IN.xps] [--region N] -o OUT.xps",
     "import spectra into a project", RunImport},
    {"background",
     "molvera-cli background IN.xps --region N --type shirley|linear|tougaard --low L --high H "
     "[--average 1|3|5|7|9] [--param P] -o OUT.xps",
     "set a region's background as the background dialog's Accept does", RunBackground},
    {"add-peak",
     "molvera-cli add-peak IN.xps --region N [--position P] [--fwhm W] [--area A | --height H] "
     "[--gl G] [--type s|p|d|f] [--splitting S] [--ts T] [--tl L] [--fix position,area,fwhm,gl] "
     "[--label TEXT] [--rsf R|auto] -o OUT.xps",
     "add a peak to a region and print its slot number", RunAddPeak},
    {"edit-peak",
     "molvera-cli edit-peak IN.xps --peak S [--position P] [--fwhm W] [--area A | --height H] "
     "[--gl G] [--type s|p|d|f] [--splitting S] [--ts T] [--tl L] [--fix LIST] [--free LIST] "
     "[--label TEXT] [--rsf R|auto] -o OUT.xps",
     "change a peak as the peak editor's Accept does", RunEditPeak},
    {"quantify",
     "molvera-cli quantify IN.xps [--source al|mg|EV] [--transmission-exponent A] "
     "[--imfp-exponent B] [--suggest] [-o OUT.xps]",
     "print the quantification table (peaks, then elements with at.%) as CSV; with -o save the "
     "project with the settings given",
     RunQuantify},
    {"delete-peak", "molvera-cli delete-peak IN.xps --peak S -o OUT.xps", "delete a peak",
     RunDeletePeak},
    {"export-spectrum", "molvera-cli export-spectrum IN.xps --region N -o OUT.dat",
     "write a region's data and fitted curves as text", RunExportSpectrum},
    {"export-peaks", "molvera-cli export-peaks IN.xps --region N -o OUT.par",
     "write a region's peak parameters as text", RunExportPeaks},
    {"save-params", "molvera-cli save-params IN.xps --region N -o OUT.rpa",
     "save a region's background and peaks as a region parameter file", RunSaveParams},
    {"apply-params", "molvera-cli apply-params IN.xps --region N PARAMS.rpa -o OUT.xps",
     "apply a region parameter file to a region", RunApplyParams},
    {"fit", "molvera-cli fit IN.xps (--region N | --all) [--options FILE.opa] -o OUT.xps",
     "fit one region or all regions; Ctrl-C stops and keeps the best values", RunFit},
    {"constrain",
     "molvera-cli constrain IN.xps --peak S --param position|area|fwhm|gl "
     "[--link REF --op +|-|*|/ --arg A | --unlink] [--limits LOW:HIGH | --no-limits] -o OUT.xps",
     "tie a peak parameter to another peak or limit its search range", RunConstrain},
    {"options",
     "molvera-cli options [--from IN.opa] [--method search|newton|lm] [--search-trials N] "
     "[--newton-trials N] [--tolerance PERCENT] [--pos-search L:RANGE:STEP|L:off] "
     "[--area-search ...] [--fwhm-search ...] [--pos-newton L:DELTA|L:off] [--area-newton ...] "
     "[--fwhm-newton ...] [--gl-sum | --gl-product] -o OUT.opa",
     "check fitting options as the options dialog's OK does and write them", RunOptions},
    {"batch",
     "molvera-cli batch --model (FILE.rpa | PROJECT.xps --region N) FILES... "
     "[--format vamas|ascii|...] [--jobs N] [--shard I/N] [--plots PREFIX] [--options FILE.opa] "
     "-o RESULTS.csv",
     "fit one model to every spectrum of the files and write a CSV row per spectrum and peak",
     RunBatch},
    {"merge", "molvera-cli merge A.csv B.csv ... -o ALL.csv",
     "join the results of batch --shard runs in spectrum order", RunMerge},
    {"dump-options", "molvera-cli dump-options FILE.opa", "print an option file as JSON",
     RunDumpOptions},
#ifdef MOLVERA_CLI_RENDER
    {"render", "molvera-cli render IN.xps --region N -o OUT.png|OUT.pdf|OUT.svg [--with-peaks]",
     "draw a region as the printout: a PNG picture or a PDF page, with the peak table on request",
     RunRender},
    {"report", "molvera-cli report IN.xps [--region N | --all] -o OUT.csv|OUT.json|OUT.html",
     "every fitted peak with its uncertainties: a CSV table, a JSON record or an HTML page",
     RunReport},
#endif
};

void PrintOverview() {
    std::printf("molvera-cli: batch work on Molvera project files (.xps)\n\ncommands:\n");
    for (const Command& c : kCommands) std::printf("  %-16s %s\n", c.name, c.summary);
    std::printf(
        "\nRegions are numbered 1..10, peaks by their slot 0..50. Every command that loads or\n"
        "computes takes --options FILE.opa (default: default.opa in the working directory,\n"
        "else in ~/.config/molvera, else the installed one).\n"
        "Run 'molvera-cli COMMAND --help' for the options of a command, 'molvera-cli --version'\n"
        "for the version.\n");
}

}  // namespace

const Command* FindCommand(const std::string& name) {
    for (const Command& c : kCommands)
        if (name == c.name) return &c;
    return nullptr;
}

const char* Usage(const char* name) {
    const Command* c = FindCommand(name);
    return c ? c->usage : "";
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
    const Command* c = FindCommand(argv[1]);
    if (!c) {
        std::fprintf(stderr, "molvera-cli: unknown command '%s'\n", argv[1]);
        PrintOverview();
        return kExitUsage;
    }
    for (int i = 2; i < argc; ++i) {
        if (!std::strcmp(argv[i], "--help")) {
            std::printf("usage: %s\n\n%s\n", c->usage, c->summary);
            return 0;
        }
    }
    InstallInterruptHandler();
    return c->run(argc, argv);
}

}  // namespace molvera::cli
