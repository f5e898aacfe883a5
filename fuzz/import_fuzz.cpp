// Fuzz target: one instrument import reader, named at build time by MOLVERA_FUZZ_FORMAT
// ("vamas", "kratos", "leybold", "phi" or "ascii"), and the store step after it.

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string_view>

#include "fileio/formats.h"
#include "fuzz_support.h"
#include "model/host.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    using namespace molvera;
    static const ImportFormat* format = FindImportFormat(MOLVERA_FUZZ_FORMAT);
    if (format == nullptr) std::abort();
    static const Project sample = fuzz::SampleProject(false);
    Project project = sample;
    project.CurrentRegion = static_cast<Int16>(size % 3);  // imports fill from here on
    const std::string_view bytes(reinterpret_cast<const char*>(data), size);
    const ImportResult result =
        StoreImport(project, QuietHost(), format->parse(bytes), format->policy);
    for (const Status& message : result.Messages())
        if (message.message().empty() || message.detail().empty()) std::abort();  // unexplained
    if (result.status.ok()) fuzz::ExerciseProject(project);
    return 0;
}
