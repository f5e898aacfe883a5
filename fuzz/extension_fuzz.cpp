// Fuzz target: the project file's extension block (after the description).

#include <cstddef>
#include <cstdint>
#include <string_view>

#include "fileio/projectfile.h"
#include "fuzz_support.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    using namespace molvera;
    QuantSettings quant;
    const std::string_view bytes(reinterpret_cast<const char*>(data), size);
    if (ReadExtensionBlock(bytes, quant)) {
        for (float rsf : quant.RsfOverride)
            if (!(rsf >= 0)) __builtin_trap();
    }
    return 0;
}
