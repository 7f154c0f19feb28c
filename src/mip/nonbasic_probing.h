// Strong branching on nonbasic integral columns: a column at a bound of the relaxation's optimum is
// moved off it by one unit; where that cannot lead to anything better than the cutoff, the column
// stays at its bound for good. Reduced costs tell the same of single columns by one multiplication;
// the probe sees what rows and a few dual pivots add to them.
#pragma once

#include "mip/branch_probe.h"

namespace tarvik {

struct NonbasicProbing {
  int fixed = 0;
  bool infeasible = false;  // nothing better than the cutoff is left at all
};

// The domain and the relaxation stand at an optimum; afterwards they do again, unless a limit
// stopped the relaxation. At most `candidates` columns are probed, the most promising ones first.
NonbasicProbing nonbasicStrongBranch(Domain &domain, Relaxation &lp, SolutionSink &sink,
                                     int candidates, SolveControl &control);

}  // namespace tarvik
