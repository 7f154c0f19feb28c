#include "base/lapack.h"

#include <dlfcn.h>
#ifdef __linux__
#include <link.h>
#endif

#include <cstring>

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
int isLinearAlgebra(dl_phdr_info *library, std::size_t, void *) {
  return std::strstr(library->dlpi_name, "blas") || std::strstr(library->dlpi_name, "lapack");
}

// Whether the process has a library of the kind whose threads may be at work.
bool hostHasOne() { return dl_iterate_phdr(isLinearAlgebra, nullptr) != 0; }
#else
bool hostHasOne() { return true; }
#endif

// Its worker threads would compete with the solver's, and results would depend on their number.
// Those that it has started while it was loaded are sent away.
void keepSingleThreaded(void *library) {
  if (void *setThreads = dlsym(library, "openblas_set_num_threads"))
    reinterpret_cast<void (*)(int)>(setThreads)(1);
  if (void *shutDown = dlsym(library, "blas_thread_shutdown_"))
    reinterpret_cast<int (*)()>(shutDown)();
}

Getrf load() {
  const bool isOurs = !hostHasOne();
  for (const char *name : kNames) {
    void *library = dlopen(name, RTLD_LAZY | RTLD_LOCAL);
    if (!library) continue;
    if (void *function = dlsym(library, "dgetrf_")) {
      if (isOurs) keepSingleThreaded(library);
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
