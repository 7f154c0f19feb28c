// Presolve that keeps the dimensions of a mixed-integer model, so that nothing has to be undone:
// bounds that propagation implies for integral columns, and coefficients of integral columns in
// inequalities that are reduced as far as the integral points allow (Savelsbergh, 1994).
#pragma once

#include "base/solve_control.h"
#include "mip/problem.h"

namespace tarvik {

struct TighteningResult {
  bool infeasible = false;
  int bounds = 0;        // tightened
  int coefficients = 0;  // changed
};

// Without `coefficients` only bounds are tightened.
TighteningResult tightenMip(MipModel &model, const MipTolerances &tolerances, bool coefficients,
                            WorkMeter &work);

}  // namespace tarvik
