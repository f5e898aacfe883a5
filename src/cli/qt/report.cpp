// report: every peak of the project as a CSV table, a JSON object or an HTML page with
// each region's picture.

#include "session/report.h"

#include <QGuiApplication>

#include "base/messages.h"
#include "cli/command_list.h"
#include "cli/common.h"
#include "fileio/files.h"
#include "ui/printing.h"

namespace molvera::cli {

namespace {

std::string BaseName(const std::string& path) {
    const std::size_t slash = path.find_last_of("/\\");
    return slash == std::string::npos ? path : path.substr(slash + 1);
}

}  // namespace

int RunReport(const Args& args) {
    if (!args.Has("o")) return Fail("no output file given (-o OUT.csv, OUT.json or OUT.html)");
    if (args.Has("region") && args.Has("all")) return Fail("give --region N or --all, not both");
    const std::string out = *args.Value("o");
    const std::string ext = LowerExtension(out);
    if (ext != "csv" && ext != "json" && ext != "html")
        return Fail("the output file must end in .csv, .json or .html");
    int region = -1;
    if (args.Has("region")) {
        auto r = RegionArg(args);
        if (!r) return Fail("--region takes a region number 1..10");
        region = *r;
    }

    Session s;
    if (Status st = LoadOptions(args, s); !st) return Refused(st);
    const std::string input = args.Positional()[0];
    if (Status st = LoadInput(s, input); !st) return Refused(st);
    const std::vector<int> regions = ReportRegions(s.project, region);
    if (region >= 0 && regions.empty())
        return Fail("region " + std::to_string(region + 1) + " holds no data");

    // The page's pictures need a Qt application; without a display it draws off-screen.
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM")) qputenv("QT_QPA_PLATFORM", "offscreen");
    int qtArgc = 1;
    char name[] = "molvera-cli";
    char* qtArgv[] = {name, nullptr};
    QGuiApplication app(qtArgc, qtArgv);
    const std::string text = *ui::ReportText(s.project, regions, out, BaseName(input));
    if (Status st = WriteFileBytes(out, text, msg::kErrorSavingFile); !st) return Refused(st);
    return 0;
}

}  // namespace molvera::cli
