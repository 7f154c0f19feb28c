// A starting basis from start vectors. Variables that the vectors put at a bound become nonbasic
// there; those strictly between their bounds (or, for a dual vector, without reduced cost) are
// candidates for the basis and get rows in a greedy triangular assignment (in the spirit of Bixby
// 1992); rows that no candidate takes keep their logicals. Candidates left over go to their
// nearest bound, so the basis may lie off the given point, and it may be singular: the simplex
// repairs it.
#pragma once

#include "lp/lp_model.h"

namespace tarvik {

struct StartBasis {
  Basis basis;
  // Primal: columns strictly between their bounds. Dual only: columns whose reduced cost asks for
  // a bound that they do not have.
  int superbasics = 0;
};

// x by column, y by row; either may be empty, not both.
StartBasis startBasis(const LpModel &lp, const Vec<double> &x, const Vec<double> &y);

}  // namespace tarvik
