#pragma once
// The program's version: the one in CMake's project(), compiled in.

namespace molvera {

/// "0.1": the version of Molvera, as project() in CMakeLists.txt gives it.
const char* ProgramVersion();

}  // namespace molvera
