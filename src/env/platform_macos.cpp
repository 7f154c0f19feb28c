#ifdef __APPLE__

#include <sys/sysctl.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstring>

#include "env/platform.h"

namespace tarvik {

namespace {

int query(const char *name, void *value, size_t bytes) {
  return sysctlbyname(name, value, &bytes, nullptr, 0) == 0 ? 0 : errno;
}

}  // namespace

const char *platformName() { return "mac64"; }

const char *platformExtension() {
#ifdef __aarch64__
  return "[arm]";
#else
  int translated = 0;
  if (query("sysctl.proc_translated", &translated, sizeof translated) == 0 && translated == 1)
    return "[rosetta2]";
  return "[x86]";
#endif
}

int processorBrand(char *buffer) {
  std::memset(buffer, 0, kPlatformTextBytes);
  const int code = query("machdep.cpu.brand_string", buffer, kPlatformTextBytes - 1);
  if (code != 0) buffer[0] = '\0';
  return code;
}

int systemDescription(char *buffer) {
  static constexpr const char *kPieces[] = {"kern.ostype", "kern.osrelease", "kern.osversion"};
  buffer[0] = '\0';
  size_t used = 0;
  int code = 0;
  for (const char *piece : kPieces) {
    char text[kPlatformTextBytes] = "";
    code = query(piece, text, sizeof text - 1);
    if (used == 0 && text[0] == '\0') return code;
    if (used > 0 && used < kPlatformTextBytes - 1) buffer[used++] = ' ';
    const size_t length = std::min(std::strlen(text), kPlatformTextBytes - 1 - used);
    std::memcpy(buffer + used, text, length);
    used += length;
    buffer[used] = '\0';
  }
  return code;
}

int onlineProcessors() { return static_cast<int>(std::max(1L, sysconf(_SC_NPROCESSORS_ONLN))); }

int physicalCoreCount() {
  const int online = onlineProcessors();
  int cores = online;
  query("hw.physicalcpu", &cores, sizeof cores);
  return std::max(1, std::min(cores, online));
}

bool processorSupported() { return true; }

}  // namespace tarvik

#endif
