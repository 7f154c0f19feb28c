#include "base/lapack.h"

#include <dlfcn.h>
#ifdef __linux__
#include <link.h>
#endif

#include <set>

namespace tarvik::lapack {

namespace {

constexpr const char *kNames[] = {
#ifdef __APPLE__
    "/System/Library/Frameworks/Accelerate.framework/Accelerate",
#else
    "liblapack.so.3",
    "libopenblas.so.0",
#endif
};

#ifdef __linux__
// Where the libraries of the process stand in memory.
using Addresses = std::set<const void *>;

Addresses loadedLibraries() {
  Addresses all;
  const auto add = [](dl_phdr_info *library, std::size_t, void *addresses) {
    static_cast<Addresses *>(addresses)->insert(reinterpret_cast<const void *>(library->dlpi_addr));
    return 0;
  };
  dl_iterate_phdr(add, &all);
  return all;
}

bool isIn(const Addresses &libraries, const void *function) {
  Dl_info info;
  return dladdr(function, &info) == 0 || libraries.count(info.dli_fbase) > 0;
}

// Worker threads of OpenBLAS would compete with the solver's, and results would depend on their
// number. Those that it has started while it was loaded are sent away, unless it was here before.
void keepSingleThreaded(void *library, const Addresses &before) {
  void *setThreads = dlsym(library, "openblas_set_num_threads");
  if (!setThreads || isIn(before, setThreads)) return;
  reinterpret_cast<void (*)(int)>(setThreads)(1);
  if (void *shutDown = dlsym(library, "blas_thread_shutdown_"))
    reinterpret_cast<int (*)()>(shutDown)();
}
#else
struct Addresses {};
Addresses loadedLibraries() { return {}; }
void keepSingleThreaded(void *, const Addresses &) {}
#endif

Getrf load() {
  const Addresses before = loadedLibraries();
  for (const char *name : kNames) {
    void *library = dlopen(name, RTLD_LAZY | RTLD_LOCAL);
    if (!library) continue;
    if (void *function = dlsym(library, "dgetrf_")) {
      keepSingleThreaded(library, before);
      return reinterpret_cast<Getrf>(function);
    }
    dlclose(library);
  }
  return nullptr;
}

}  // namespace

Getrf getrf() {
  static const Getrf function = load();
  return function;
}

}  // namespace tarvik::lapack
