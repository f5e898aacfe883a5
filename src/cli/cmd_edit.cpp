// background, add-peak, edit-peak and delete-peak: the dialogs' logic driven by options.

#include <cstdio>
#include <sstream>
#include <string>

#include "base/numtext.h"
#include "cli/command_list.h"
#include "cli/common.h"
#include "model/project.h"
#include "session/backgroundform.h"
#include "session/formnumber.h"
#include "session/peakform.h"
#include "spectral/lineshape.h"
#include "spectral/regionedit.h"

namespace molvera::cli {

namespace {

// Loads the options and the input project of a command with one file argument.
bool Prepare(const Args& args, Session& s, int& exitCode) {
    if (Status st = LoadOptions(args, s); !st) {
        exitCode = Refused(st);
        return false;
    }
    if (Status st = LoadInput(s, args.Positional()[0]); !st) {
        exitCode = Refused(st);
        return false;
    }
    return true;
}

std::string RegionName(int slot) { return "region " + std::to_string(slot + 1); }

// Writes the peak's present values into the editor's boxes exactly, so that only the
// values given on the command line change.
void ExactBoxes(const Peak& p, PeakForm& form) {
    form.positionText = FormatRoundTrip(p.Position);
    form.fwhmText = FormatRoundTrip(p.FWHM);
    form.areaText = FormatRoundTrip(p.Area);
    form.glText = std::to_string(p.PercentGL);
    form.splittingText = FormatRoundTrip(p.Splitting);
    form.tailScaleText = FormatRoundTrip(p.TailScale);
    form.tailLengthText = FormatRoundTrip(p.TailLength);
}

// Parses "position,area,fwhm,gl" lists into the four parameters.
bool ParseParameterList(const std::string& list, std::vector<PeakParameter>& out) {
    std::stringstream ss(list);
    std::string item;
    while (std::getline(ss, item, ',')) {
        const std::optional<PeakParameter> parameter = ParameterArg(item);
        if (!parameter) return false;
        out.push_back(*parameter);
    }
    return true;
}

// Opens the editor on `slot`, types the given values and presses Accept.
int EditWithPeakEditor(Session& s, const Args& args, int slot) {
    Project& project = s.project;
    Peak& peak = project.Peaks[slot];
    project.CurrentRegion = peak.Region;
    const Region& region = project.Current();
    int k = -1;
    for (int i = 0; i < region.PeakCount && i < kMaxPeaksPerRegion; ++i)
        if (region.PeakIndex[i] == slot) k = i;
    if (k < 0) return Fail("peak " + std::to_string(slot) + " is not listed by its region");

    if (args.Has("area") && args.Has("height")) return Fail("give --area or --height, not both");
    if (auto t = args.Value("type"); t && *t != "s" && *t != "p" && *t != "d" && *t != "f")
        return Fail("--type is s, p, d or f");
    std::vector<PeakParameter> fix, freed;
    if (auto v = args.Value("fix"); v && !ParseParameterList(*v, fix))
        return Fail("--fix takes a list of position, area, fwhm, gl");
    if (auto v = args.Value("free"); v && !ParseParameterList(*v, freed))
        return Fail("--free takes a list of position, area, fwhm, gl");
    // --label: Latin-1, at most 20 characters ("" clears it); --rsf: above 0, or auto (0).
    const std::optional<std::string> label = args.Value("label");
    const std::string latin1 = Utf8ToLatin1(label.value_or(""));
    if (label && Latin1ToUtf8(latin1) != *label)
        return Fail("--label: '" + *label + "' holds a character outside Latin-1");
    if (latin1.size() > Text20{}.chars.size())
        return Fail("--label: '" + *label + "' is longer than 20 characters");
    const std::optional<std::string> rsfText = args.Value("rsf");
    float rsf = 0;
    if (rsfText && *rsfText != "auto") {
        rsf = BoxSingle(*rsfText);
        if (!(rsf > 0)) return Fail("--rsf: '" + *rsfText + "' is not above 0 (a number or auto)");
    }

    PeakForm form;
    if (!OpenPeakEditor(project, s.host, form, PeakButtonIndex(project.CurrentRegion, k)))
        return Fail("cannot open peak " + std::to_string(slot));
    ExactBoxes(peak, form);
    if (auto v = args.Value("position")) form.positionText = *v;
    if (auto v = args.Value("fwhm")) form.fwhmText = *v;
    if (auto v = args.Value("area")) form.areaText = *v;
    if (auto v = args.Value("gl")) form.glText = *v;
    if (auto v = args.Value("type")) form.peakType = *v;
    if (auto v = args.Value("splitting")) form.splittingText = *v;
    if (auto v = args.Value("ts")) form.tailScaleText = *v;
    if (auto v = args.Value("tl")) form.tailLengthText = *v;
    if (auto h = args.Value("height")) {
        // The editor holds areas; a height is turned into the area of the edited shape.
        if (Status st = ApplyPeakEditor(project, form); !st) return Refused(st);
        Peak shaped = peak;
        peak = project.SavedPeaks[slot];
        shaped.HeightPercent = static_cast<float>(LeadingNumber(*h));
        form.areaText = FormatRoundTrip(HeightPercentToArea(project, shaped));
    }
    for (PeakParameter p : fix) SetFixCheck(project, form, p, true);
    for (PeakParameter p : freed) SetFixCheck(project, form, p, false);
    if (Status st = AcceptPeakEditor(project, s.host, form); !st) return Refused(st);
    if (label) peak.Label = Text20::From(latin1);
    if (rsfText) project.Quant.RsfOverride[slot] = rsf;
    return 0;
}

int PeakSlotArg(const Args& args, const Project& project, int& slot) {
    auto s = IntArg(args, "peak", 0, kPeakSlots - 1);
    if (!s) return Fail("--peak takes a slot number 0..50");
    if (!IsSet(project.Peaks[*s].InUse))
        return Fail("peak slot " + std::to_string(*s) + " is empty");
    if (project.Peaks[*s].Region < 0 || project.Peaks[*s].Region >= kRegionCount)
        return Fail("peak " + std::to_string(*s) + " names no region");
    slot = *s;
    return 0;
}

}  // namespace

int RunBackground(const Args& args) {
    auto region = RegionArg(args);
    if (!region) return Fail("--region takes a region number 1..10");
    auto type = args.Value("type");
    if (!type || (*type != "shirley" && *type != "linear" && *type != "tougaard"))
        return Fail("--type is shirley, linear or tougaard");
    if (!args.Has("low") || !args.Has("high")) return Fail("--low and --high are needed");
    if (!args.Has("o")) return Fail("no output file given (-o FILE)");
    Session s;
    int code = 0;
    if (!Prepare(args, s, code)) return code;
    s.project.CurrentRegion = static_cast<Int16>(*region);
    if (!IsSet(s.project.Current().HasData)) return Fail(RegionName(*region) + " holds no data");

    BackgroundForm form;
    ShowBackgroundDialog(s.project, form);
    form.lowBEText = *args.Value("low");
    form.highBEText = *args.Value("high");
    const std::string avg = args.Value("average").value_or("1");
    form.averagePoints = avg == "1" ? "None" : avg;
    form.backgroundType = *type == "shirley"  ? "Shirley"
                          : *type == "linear" ? "Linear"
                                              : "Tougaard";
    if (auto p = args.Value("param")) {
        if (*type == "shirley") form.shirleySlopeText = *p;
        if (*type == "tougaard") form.tougaardB1Text = *p;
    }
    const BackgroundForm typed = form;
    if (!AcceptBackground(s.project, s.host, form)) {
        std::string why = "background refused";
        if (form.lowBEText != typed.lowBEText || form.highBEText != typed.highBEText)
            why += ": the range must lie inside the data (" +
                   FormatGeneral(s.project.Current().MinBE) + " .. " +
                   FormatGeneral(s.project.Current().MaxBE) +
                   " eV) with low below high and hold at least 2 points";
        else if (form.averagePoints != typed.averagePoints)
            why += ": --average is 1, 3, 5, 7 or 9";
        return Fail(why);
    }
    std::fprintf(stderr, "Area (I*eV) %s\n", form.areaText.c_str());
    if (Status st = SaveOutput(s, args); !st) return Refused(st);
    return 0;
}

int RunAddPeak(const Args& args) {
    auto region = RegionArg(args);
    if (!region) return Fail("--region takes a region number 1..10");
    if (!args.Has("o")) return Fail("no output file given (-o FILE)");
    Session s;
    int code = 0;
    if (!Prepare(args, s, code)) return code;
    s.project.CurrentRegion = static_cast<Int16>(*region);
    const Region& r = s.project.Current();
    if (!IsSet(r.HasData) || !IsSet(r.HasBackground))
        return Fail("Add Peak needs a region with data and a background; " + RegionName(*region) +
                    (IsSet(r.HasData) ? " has no background" : " holds no data"));
    const int slot = AddPeak(s.project, s.host);
    if (slot < 0)
        return Fail(r.PeakCount >= kMaxPeaksPerRegion
                        ? RegionName(*region) + " already holds 10 peaks"
                        : "all 51 peak slots are in use");
    if (int rc = EditWithPeakEditor(s, args, slot); rc != 0) return rc;
    if (Status st = SaveOutput(s, args); !st) return Refused(st);
    std::printf("%d\n", slot);
    return 0;
}

int RunEditPeak(const Args& args) {
    if (!args.Has("o")) return Fail("no output file given (-o FILE)");
    Session s;
    int code = 0;
    if (!Prepare(args, s, code)) return code;
    int slot = -1;
    if (int rc = PeakSlotArg(args, s.project, slot); rc != 0) return rc;
    if (int rc = EditWithPeakEditor(s, args, slot); rc != 0) return rc;
    if (Status st = SaveOutput(s, args); !st) return Refused(st);
    return 0;
}

int RunDeletePeak(const Args& args) {
    if (!args.Has("o")) return Fail("no output file given (-o FILE)");
    Session s;
    int code = 0;
    if (!Prepare(args, s, code)) return code;
    int slot = -1;
    if (int rc = PeakSlotArg(args, s.project, slot); rc != 0) return rc;
    s.project.CurrentRegion = s.project.Peaks[slot].Region;
    s.project.CurrentPeak = static_cast<Int16>(slot);
    DeletePeak(s.project, s.host);
    if (Status st = SaveOutput(s, args); !st) return Refused(st);
    return 0;
}

}  // namespace molvera::cli
