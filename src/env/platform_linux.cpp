#ifdef __linux__

#include <sys/utsname.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstring>

#include "env/platform.h"

namespace tarvik {

namespace {

constexpr int kMaxProcessors = 1024;

bool readInt(const char *path, int &value) {
  FILE *file = std::fopen(path, "r");
  if (!file) return false;
  const bool ok = std::fscanf(file, "%d", &value) == 1;
  std::fclose(file);
  return ok;
}

// Distinct (package, core) pairs of the online processors; 0 when the system does not tell.
int topologyCoreCount() {
  long long seen[kMaxProcessors];
  int count = 0;
  const int configured =
      std::min(kMaxProcessors, static_cast<int>(std::max(1L, sysconf(_SC_NPROCESSORS_CONF))));
  for (int cpu = 0; cpu < configured; ++cpu) {
    char path[128];
    int core, package = 0;
    std::snprintf(path, sizeof path, "/sys/devices/system/cpu/cpu%d/topology/core_id", cpu);
    if (!readInt(path, core)) continue;
    std::snprintf(path, sizeof path, "/sys/devices/system/cpu/cpu%d/topology/physical_package_id",
                  cpu);
    readInt(path, package);
    const long long key = (static_cast<long long>(package) << 32) + core;
    if (std::find(seen, seen + count, key) == seen + count) seen[count++] = key;
  }
  return count;
}

// The text after the colon of the first line of /proc/cpuinfo that begins with the key.
bool cpuInfoText(const char *key, char *buffer) {
  FILE *file = std::fopen("/proc/cpuinfo", "r");
  if (!file) return false;
  char line[1024];
  bool found = false;
  while (!found && std::fgets(line, sizeof line, file)) {
    if (std::strncmp(line, key, std::strlen(key)) != 0) continue;
    const char *text = std::strchr(line, ':');
    if (!text) continue;
    text += 1 + std::strspn(text + 1, " \t");
    std::snprintf(buffer, kPlatformTextBytes, "%.*s", static_cast<int>(std::strcspn(text, "\n")),
                  text);
    found = true;
  }
  std::fclose(file);
  return found;
}

}  // namespace

const char *platformName() { return "linux64"; }

const char *platformExtension() {
#ifdef __aarch64__
  return "[arm]";
#else
  return "[x86]";
#endif
}

int processorBrand(char *buffer) {
  buffer[0] = '\0';
  if (cpuInfoText("model name", buffer) || cpuInfoText("Model", buffer)) return 0;
  return ENOENT;
}

int systemDescription(char *buffer) {
  buffer[0] = '\0';
  utsname name;
  if (uname(&name) != 0) return errno;
  std::snprintf(buffer, kPlatformTextBytes, "%s %s %s", name.sysname, name.release, name.version);
  return 0;
}

int onlineProcessors() { return static_cast<int>(std::max(1L, sysconf(_SC_NPROCESSORS_ONLN))); }

int physicalCoreCount() {
  const int online = onlineProcessors();
  const int cores = topologyCoreCount();
  return std::max(1, cores > 0 ? std::min(cores, online) : online);
}

bool processorSupported() {
#ifdef __x86_64__
  return __builtin_cpu_supports("sse2");
#else
  return true;
#endif
}

}  // namespace tarvik

#endif
