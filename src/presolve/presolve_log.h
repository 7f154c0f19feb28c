// The lines that tell what a presolve achieved.
#pragma once

#include "presolve/presolve.h"

namespace tarvik {

// Nothing when nothing was removed.
void logSparsified(NzIndex removed, NzIndex from, Log &log);
void logPresolve(const Presolve &presolve, PresolveStatus status, const char *name, Log &log);

}  // namespace tarvik
