// Fuzz target: one instrument import reader, named at build time by MOLVERA_FUZZ_FORMAT
// ("vamas", "kratos", "leybold", "phi" or "ascii").

#include <cstddef>
#include <cstdint>
#include <cstdlib>

#include "fileio/formats.h"
#include "fuzz_support.h"
#include "model/host.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    using namespace molvera;
    static const ImportFormat* format = FindImportFormat(MOLVERA_FUZZ_FORMAT);
    if (format == nullptr) std::abort();
    const std::string path = fuzz::InputFile(MOLVERA_FUZZ_FORMAT, data, size);
    static const Project sample = fuzz::SampleProject(false);
    Project project = sample;
    project.CurrentRegion = static_cast<Int16>(size % 3);  // imports fill from here on
    if (format->read(project, QuietHost(), path)) fuzz::ExerciseProject(project);
    return 0;
}
