// Fuzz target: the project file reader (4.0, 3.0 and the older "SF" layout).

#include <cstddef>
#include <cstdint>
#include <string_view>

#include "fileio/projectfile.h"
#include "fuzz_support.h"
#include "model/host.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    using namespace molvera;
    static const Project blank = fuzz::SampleProject(false);
    Project project = blank;  // loading over a project in use
    const std::string_view bytes(reinterpret_cast<const char*>(data), size);
    if (LoadProjectBytes(project, QuietHost(), bytes)) fuzz::ExerciseProject(project);
    return 0;
}
