// Probing on binary columns: both values are propagated. A value that cannot be fixes the column;
// bounds that both values imply hold for good (Savelsbergh, 1994).
#pragma once

#include "base/solve_control.h"
#include "mip/implications.h"

namespace tarvik {

struct ProbingResult {
  bool infeasible = false;
  int fixed = 0, tightened = 0;
};

// The domain is at level 0 and propagated; so it is left. Ends soon after workLimit. Bounds that
// one value implies are recorded, unless `implications` is null.
ProbingResult probeBinaries(Domain &domain, SolveControl &control, double workLimit,
                            ImplicationTable *implications);

}  // namespace tarvik
