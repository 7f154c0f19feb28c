// The closing lines of a mixed-integer solve.
#pragma once

#include "env/env.h"
#include "mip/mip_search.h"

namespace tarvik {

struct MipSummary {
  int status = 0;     // a TVK_ status code
  int errorCode = 0;  // that has ended the solve
  double explored = 0, iterations = 0, seconds = 0, workUnits = 0;
  double objective = kUserInf, bound = -kUserInf;  // minimization sense
  double sense = 1;
  Vec<double> objectives;  // of the solutions, best first, in the caller's sense
};

void mipCutSummary(Env &env, const CutCounters &counters);
void mipSummary(Env &env, const MipSummary &summary);

}  // namespace tarvik
