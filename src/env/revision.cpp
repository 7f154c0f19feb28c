#include "env/revision.h"

namespace tarvik {

const char *sourceRevision() { return TARVIK_REVISION; }

}  // namespace tarvik
