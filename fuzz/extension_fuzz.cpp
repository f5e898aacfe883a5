// Fuzz target: the project file's extension block (after the description), and the
// quantification table computed with the settings it holds.

#include <cmath>
#include <cstddef>
#include <cstdint>
#include <string_view>

#include "fileio/projectfile.h"
#include "fuzz_support.h"
#include "spectral/quantify.h"

namespace {

// Two labelled peaks (C 1s with its computed RSF, O 1s with the block's override for slot 1
// when there is one) and an unlabelled one, in region 0.
molvera::Project QuantProject() {
    using namespace molvera;
    Project project;
    Region& region = project.Regions[0];
    region.HasData = kTrue;
    const char* labels[] = {"C 1s", "O 1s", ""};
    const float positions[] = {285, 531, 100};
    for (Int16 k = 0; k < 3; ++k) {
        Peak& p = project.Peaks[static_cast<std::size_t>(k)];
        p.InUse = kTrue;
        p.Label = Text20::From(labels[k]);
        p.Position = positions[k];
        p.Area = 1000;
        region.PeakIndex[static_cast<std::size_t>(k)] = k;
    }
    region.PeakCount = 3;
    return project;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    using namespace molvera;
    QuantSettings quant;
    const std::string_view bytes(reinterpret_cast<const char*>(data), size);
    if (ReadExtensionBlock(bytes, quant)) {
        for (float rsf : quant.RsfOverride)
            if (!(rsf >= 0)) __builtin_trap();
        // Whatever a block that loads holds, the atomic percentages are finite and add up
        // to 100 when anything is counted.
        static const Project kProject = QuantProject();
        Project project = kProject;
        project.Quant = quant;
        double sum = 0;
        const QuantTable table = Quantify(project);
        for (const QuantElement& e : table.elements) {
            if (!std::isfinite(e.atomicPercent)) __builtin_trap();
            sum += e.atomicPercent;
        }
        if (!table.elements.empty() && std::abs(sum - 100) > 1e-6) __builtin_trap();
    }
    return 0;
}
