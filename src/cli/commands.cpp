#include "cli/commands.h"

#include <cstdio>

namespace molvera::cli {

int Main(int argc, char** argv) {
    (void)argc;
    (void)argv;
    std::fprintf(stderr, "usage: molvera-cli COMMAND ...\n");
    return 2;
}

}  // namespace molvera::cli
