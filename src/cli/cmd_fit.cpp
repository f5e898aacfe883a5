// fit and constrain.

#include <unistd.h>

#include <cstdio>
#include <string>

#include "base/numtext.h"
#include "cli/command_list.h"
#include "cli/common.h"
#include "session/constraintform.h"
#include "session/fitcommands.h"

namespace molvera::cli {

namespace {

// Shows the progress of a fit on stderr (when it is a terminal) each time the
// driver redraws: the pass, the region and the total chi-square.
class FitHost : public CliHost {
public:
    FitHost(Project& project, bool progress)
        : CliHost(project), project_(project), progress_(progress) {}
    void RegionInView() override {
        ++passes_;
        if (!progress_) return;
        std::fprintf(stderr, "\rpass %d  region %d  total chi-square %s        ", passes_,
                     project_.CurrentRegion + 1, FormatGeneral(project_.TotalChiSquare).c_str());
        std::fflush(stderr);
    }
    void Finish() {
        if (progress_ && passes_ > 0) std::fprintf(stderr, "\n");
    }

private:
    Project& project_;
    bool progress_;
    int passes_ = 0;
};

}  // namespace

int RunFit(int argc, char** argv) {
    Args args(argc, argv, 2, {"all"});
    if (!CheckArgs(args, {"region", "all", "o"}, 1, Usage("fit"))) return kExitUsage;
    if (args.Has("region") == args.Has("all")) return Fail("give --region N or --all");
    if (!args.Has("o")) return Fail("no output file given (-o FILE)");
    Session s;
    if (Status st = LoadOptions(args, s); !st) return Refused(st);
    if (Status st = LoadInput(s, args.Positional()[0]); !st) return Refused(st);
    FitHost host(s.project, isatty(STDERR_FILENO) != 0);
    if (args.Has("region")) {
        auto region = RegionArg(args);
        if (!region) return Fail("--region takes a region number 1..10");
        s.project.CurrentRegion = static_cast<Int16>(*region);
        const Region& r = s.project.Current();
        if (!IsSet(r.HasData) || !IsSet(r.HasBackground))
            return Fail("region " + std::to_string(*region + 1) + " has no data or no background");
    }
    const float before = args.Has("all") ? s.project.TotalChiSquare : s.project.Current().ChiSquare;
    if (args.Has("all")) {
        OptimiseAllCommand(s.project, host);
    } else {
        OptimiseRegionCommand(s.project, host);
    }
    host.Finish();
    const float after = args.Has("all") ? s.project.TotalChiSquare : s.project.Current().ChiSquare;
    std::printf("chi-square before %s\nchi-square after  %s\n", FormatGeneral(before).c_str(),
                FormatGeneral(after).c_str());
    if (gInterrupted.load()) std::fprintf(stderr, "stopped: the best values reached are kept\n");
    if (Status st = SaveOutput(s, args); !st) return Refused(st);
    return 0;
}

int RunConstrain(int argc, char** argv) {
    Args args(argc, argv, 2, {"unlink", "no-limits"});
    if (!CheckArgs(args,
                   {"peak", "param", "link", "op", "arg", "unlink", "limits", "no-limits", "o"}, 1,
                   Usage("constrain")))
        return kExitUsage;
    if (!args.Has("o")) return Fail("no output file given (-o FILE)");
    const std::string param = args.Value("param").value_or("");
    const std::optional<PeakParameter> kind = ParameterArg(param);
    if (!kind) return Fail("--param is position, area, fwhm or gl");
    if (args.Has("link") && args.Has("unlink"))
        return Fail("--link and --unlink exclude each other");
    if (args.Has("limits") && args.Has("no-limits"))
        return Fail("--limits and --no-limits exclude each other");
    Session s;
    if (Status st = LoadOptions(args, s); !st) return Refused(st);
    if (Status st = LoadInput(s, args.Positional()[0]); !st) return Refused(st);
    auto slot = IntArg(args, "peak", 0, kPeakSlots - 1);
    if (!slot) return Fail("--peak takes a slot number 0..50");
    if (!IsSet(s.project.Peaks[*slot].InUse))
        return Fail("peak slot " + std::to_string(*slot) + " is empty");
    s.project.CurrentPeak = static_cast<Int16>(*slot);

    ConstraintForm form;
    OpenConstraint(s.project, form, *kind);
    if (auto ref = args.Value("link")) {
        form.useRelation = true;
        form.referencePeakText = *ref;
        const std::string op = args.Value("op").value_or("+");
        if (op != "+" && op != "-" && op != "*" && op != "/") return Fail("--op is +, -, * or /");
        form.operation = op;
        form.argumentText = args.Value("arg").value_or("0");
    } else if (args.Has("unlink")) {
        form.useRelation = false;
    }
    if (auto limits = args.Value("limits")) {
        auto colon = limits->find(':');
        if (colon == std::string::npos) return Fail("--limits takes LOW:HIGH");
        form.useLimits = true;
        form.lowLimitText = limits->substr(0, colon);
        form.highLimitText = limits->substr(colon + 1);
    } else if (args.Has("no-limits")) {
        form.useLimits = false;
    }
    if (Status st = AcceptConstraint(s.project, form); !st) {
        Print(st);
        return kExitRefused;
    }
    if (Status st = SaveOutput(s, args); !st) return Refused(st);
    return 0;
}

}  // namespace molvera::cli
