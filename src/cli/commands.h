#pragma once
// molvera-cli: batch commands over the core.

namespace molvera::cli {

/// Runs one command line; returns the process exit code.
int Main(int argc, char** argv);

}  // namespace molvera::cli
