#include "base/lapack.h"

#include <dlfcn.h>

#include <cstdlib>

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

// Worker threads of the library would compete with the solver's, and results would depend on
// their number. Idle ones that our loading has started are sent away; those of others are theirs.
void keepSingleThreaded(void *library, bool loadedHere) {
  if (std::getenv("TVK_BLAS_WORKAROUND_SKIP")) return;
  if (void *setThreads = dlsym(library, "openblas_set_num_threads"))
    reinterpret_cast<void (*)(int)>(setThreads)(1);
  void *shutDown = loadedHere ? dlsym(library, "blas_thread_shutdown_") : nullptr;
  if (shutDown) reinterpret_cast<int (*)()>(shutDown)();
}

bool isLoaded(const char *name) {
  void *library = dlopen(name, RTLD_LAZY | RTLD_NOLOAD);
  if (library) dlclose(library);
  return library != nullptr;
}

Getrf load() {
  for (const char *name : kNames) {
    bool loadedHere = true;
    for (const char *any : kNames) loadedHere = loadedHere && !isLoaded(any);
    void *library = dlopen(name, RTLD_LAZY | RTLD_LOCAL);
    if (!library) continue;
    if (void *function = dlsym(library, "dgetrf_")) {
      keepSingleThreaded(library, loadedHere);
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
