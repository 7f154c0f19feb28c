#include "env/module_hooks.h"

namespace tarvik {

__attribute__((weak)) void beginRecording(Env &) {
  throw Error(TVK_ERROR_NOT_SUPPORTED, "Recording is not available in this version");
}

}  // namespace tarvik
