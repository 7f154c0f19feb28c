// The lines that tell what a presolve achieved.
#pragma once

#include "presolve/presolve.h"

namespace tarvik {

void logPresolve(const Presolve &presolve, PresolveStatus status, const char *name, Log &log);

}  // namespace tarvik
