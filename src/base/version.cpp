#include "base/version.h"

namespace molvera {

const char* ProgramVersion() { return MOLVERA_VERSION; }

}  // namespace molvera
