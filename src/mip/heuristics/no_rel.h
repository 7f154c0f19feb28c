// A search without any relaxation, for models whose relaxation takes too long: weighted jumps and
// propagation look for a feasible point (phase 1, which minimises violation), then neighbourhoods
// of the incumbent and local search make it better (phase 2). Neighbourhoods are groups of columns
// that share rows, small enough for their relaxations to be solved fast.
#pragma once

#include "mip/heuristics/heuristic.h"

namespace tarvik {

// Until so many seconds or work units have passed; 0: no limit of that kind.
HeurResult heurNoRel(HeuristicContext &context, double seconds, double workUnits);

}  // namespace tarvik
