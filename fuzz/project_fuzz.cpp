// Fuzz target: the project file reader (4.0, 3.0 and the older "SF" layout).

#include <cstddef>
#include <cstdint>

#include "fileio/projectfile.h"
#include "fuzz_support.h"
#include "model/host.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    using namespace molvera;
    const std::string path = fuzz::InputFile("project", data, size);
    static const Project blank = fuzz::SampleProject(false);
    Project project = blank;  // loading over a project in use
    if (LoadProject(project, QuietHost(), path)) fuzz::ExerciseProject(project);
    return 0;
}
