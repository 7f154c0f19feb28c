#include "opt/env_log.h"

#include <cstdarg>

namespace tarvik {

void EnvLog::print(const char *format, ...) {
  va_list args;
  va_start(args, format);
  env_.vlog(format, args);
  va_end(args);
}

}  // namespace tarvik
