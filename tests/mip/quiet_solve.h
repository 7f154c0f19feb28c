// A mixed-integer solve without log and limits of its own.
#pragma once

#include "mip/mip_solve.h"

namespace tarvik::test {

inline MipOutcome solveQuietly(const MipModel &model, MipOptions options = {}) {
  SilentLog log;
  SolveControl control;
  control.log = &log;
  control.limits.start();
  options.simplex.logging = false;
  return MipSolve(model, options, control).run();
}

}  // namespace tarvik::test
