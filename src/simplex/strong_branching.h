// Strong branching on a solved linear program: each candidate column is cut off below and above
// its value, and the dual simplex finds what that costs. The engine stands at an optimum when it
// begins and has the same bounds, basis and edge weights when it ends. It is about bounds on the
// objective that are true whatever happens: a branch that could not be solved to its end gets the
// best bound known for it, at least the objective of the optimum.
//
// Literature: Applegate, Bixby, Chvatal and Cook (1995).
#pragma once

#include "simplex/simplex.h"

namespace tarvik {

struct BranchBounds {
  double down, up;  // kUserInf: the branch is infeasible
};

// The branches of every candidate: at most floor(x), and at least floor(x) + 1. A value within
// `integral` of an integer counts as that integer, so its down branch costs nothing.
Vec<BranchBounds> strongBranchBounds(const LpModel &lp, const Vec<int> &candidates, double integral,
                                     double iterationLimit, Simplex &simplex,
                                     SolveControl &control);

}  // namespace tarvik
