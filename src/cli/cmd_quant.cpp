// quantify: the quantification table of a project as CSV; its settings changed on request.

#include <cstdio>
#include <string>

#include "cli/command_list.h"
#include "cli/common.h"
#include "session/formnumber.h"
#include "session/report.h"
#include "spectral/quantify.h"

namespace molvera::cli {

int RunQuantify(const Args& args) {
    // --source al|mg|EV: the photon energy (the parser checks that EV is a number).
    const std::optional<std::string> sourceText = args.Value("source");
    Session s;
    if (Status st = LoadOptions(args, s); !st) return Refused(st);
    if (Status st = LoadInput(s, args.Positional()[0]); !st) return Refused(st);
    QuantSettings& q = s.project.Quant;
    if (sourceText)
        q.SourceEnergy = *sourceText == "al"   ? static_cast<float>(kAlKaEnergy)
                         : *sourceText == "mg" ? static_cast<float>(kMgKaEnergy)
                                               : BoxSingle(*sourceText);
    if (auto v = args.Value("transmission-exponent")) q.TransmissionExponent = BoxSingle(*v);
    if (auto v = args.Value("imfp-exponent")) q.ImfpExponent = BoxSingle(*v);
    if (!QuantSettingsInRange(q))
        return Fail(
            "--source is al, mg or a photon energy above 0 and up to 100000 eV; "
            "--transmission-exponent and --imfp-exponent lie within -5 .. 5");
    if (args.Has("o")) {
        if (Status st = SaveOutput(s, args); !st) return Refused(st);
    }
    const QuantTable table = Quantify(s.project);
    for (const std::string& note : table.notes) std::fprintf(stderr, "warning: %s\n", note.c_str());
    std::fputs(QuantCsv(table, args.Has("suggest")).c_str(), stdout);
    return 0;
}

}  // namespace molvera::cli
