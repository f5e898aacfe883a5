// Fuzz target: the region parameter file reader (current and older layout), loaded
// into a region that holds data; inputs of odd length load into a project whose
// other regions leave only six peak slots free.

#include <cstddef>
#include <cstdint>
#include <string_view>

#include "fileio/regionparams.h"
#include "fuzz_support.h"
#include "model/host.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    using namespace molvera;
    static const Project roomy = fuzz::SampleProject(false);
    static const Project crowded = fuzz::SampleProject(true);
    Project project = size % 2 == 0 ? roomy : crowded;
    const std::string_view bytes(reinterpret_cast<const char*>(data), size);
    const Status st = ApplyRegionParameterBytes(project, QuietHost(), bytes);
    (void)st;  // "Too many peaks" still leaves a loaded region to work on
    fuzz::ExerciseProject(project);
    return 0;
}
