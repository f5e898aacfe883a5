// fit and constrain.

#include <unistd.h>

#include <cmath>
#include <cstdio>
#include <string>
#include <utility>

#include "base/numtext.h"
#include "cli/command_list.h"
#include "cli/common.h"
#include "session/constraintform.h"
#include "session/fitcommands.h"
#include "session/jsondump.h"

namespace molvera::cli {

namespace {

// Shows the progress of a fit on stderr (when it is a terminal), a few times a second: the
// method, the iteration or trial, the chi-square and the time.
class FitHost : public CliHost {
public:
    FitHost(Project& project, bool progress) : CliHost(project), progress_(progress) {}
    void FitProgressed(const FitProgress& progress) override {
        if (!progress_ || progress.seconds - shown_ < 0.2) return;
        shown_ = progress.seconds;
        std::fprintf(stderr, "\r%s        ", Latin1ToUtf8(FitProgressText(progress)).c_str());
        std::fflush(stderr);
        wrote_ = true;
    }
    void Finish() {
        if (wrote_) std::fprintf(stderr, "\n");
    }

private:
    bool progress_;
    bool wrote_ = false;
    double shown_ = -1;
};

constexpr std::pair<PeakParameter, const char*> kJsonNames[] = {
    {PeakParameter::Position, "position"},
    {PeakParameter::FWHM, "fwhm"},
    {PeakParameter::Area, "area"},
    {PeakParameter::GL, "gl"}};

Json SigmaJson(Json value, const Sigma& sigma) {
    Json out;
    out["value"] = std::move(value);
    out["sigma"] = sigma.state == Sigma::State::Value ? Json(sigma.value) : Json(nullptr);
    return out;
}

/// The summary and every fitted peak with its uncertainties, as one JSON object.
Json FitJson(const Project& project, const FitSummary& summary, const Uncertainties& u) {
    Json out;
    out["method"] = summary.method;
    out["chi_square_before"] = FloatJson(summary.chiSquareBefore);
    out["chi_square"] = FloatJson(summary.chiSquareAfter);
    out["reduced_chi_square"] =
        std::isfinite(u.reducedChiSquare) ? Json(u.reducedChiSquare) : Json(nullptr);
    out["iterations"] = summary.iterations;
    out["seconds"] = summary.seconds;
    out["stopped"] = summary.stopped;
    if (!summary.note.empty()) out["note"] = summary.note;
    Json peaks = Json::array();
    for (int slot : u.peakSlots) {
        const Peak& peak = project.Peaks[static_cast<std::size_t>(slot)];
        const PeakSigmas& s = u.peaks[static_cast<std::size_t>(slot)];
        Json p;
        p["slot"] = slot;
        p["region"] = peak.Region + 1;
        for (const auto& [which, name] : kJsonNames)
            p[name] = SigmaJson(which == PeakParameter::GL
                                    ? Json(peak.PercentGL)
                                    : FloatJson(static_cast<float>(ParameterValue(peak, which))),
                                s.parameters[static_cast<std::size_t>(which)]);
        p["area_percent"] = SigmaJson(
            std::isfinite(s.areaPercent) ? Json(s.areaPercent) : Json(nullptr), s.areaPercentSigma);
        peaks.push_back(std::move(p));
    }
    out["peaks"] = std::move(peaks);
    return out;
}

}  // namespace

int RunFit(const Args& args) {
    if (args.Has("region") == args.Has("all")) return Fail("give --region N or --all");
    if (!args.Has("o")) return Fail("no output file given (-o FILE)");
    Session s;
    if (Status st = LoadOptions(args, s); !st) return Refused(st);
    if (Status st = LoadInput(s, args.Positional()[0]); !st) return Refused(st);
    FitHost host(s.project, isatty(STDERR_FILENO) != 0);
    const bool all = args.Has("all");
    if (!all) {
        auto region = RegionArg(args);
        if (!region) return Fail("--region takes a region number 1..10");
        s.project.CurrentRegion = static_cast<Int16>(*region);
        const Region& r = s.project.Current();
        if (!IsSet(r.HasData) || !IsSet(r.HasBackground))
            return Fail("region " + std::to_string(*region + 1) + " has no data or no background");
    }
    const FitSummary summary =
        all ? OptimiseAllCommand(s.project, host) : OptimiseRegionCommand(s.project, host);
    host.Finish();
    const Uncertainties u = FitUncertainties(s.project, all);
    if (args.Has("json")) {
        std::printf("%s\n", FitJson(s.project, summary, u).dump(2).c_str());
    } else {
        std::printf("chi-square before %s\nchi-square after  %s\n%s\n",
                    FormatGeneral(summary.chiSquareBefore).c_str(),
                    FormatGeneral(summary.chiSquareAfter).c_str(),
                    Latin1ToUtf8(FitSummaryText(summary)).c_str());
        for (int slot : u.peakSlots)
            std::printf("%s\n", Latin1ToUtf8(PeakSigmaLine(s.project, slot, u)).c_str());
    }
    if (gInterrupted.load()) std::fprintf(stderr, "stopped: the best values reached are kept\n");
    if (Status st = SaveOutput(s, args); !st) return Refused(st);
    return 0;
}

int RunConstrain(const Args& args) {
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
