// Minimum relaxation: every row may be violated at a price of one a unit, and the total violation
// is minimised instead of the objective. A total of zero is a solution; a proof that it cannot be
// zero is a proof of infeasibility.
#pragma once

#include "mip/heuristics/heuristic.h"

namespace tarvik {

HeurResult heurMinRel(HeuristicContext &context, int nodes, bool limitWork);

}  // namespace tarvik
