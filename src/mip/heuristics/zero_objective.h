// Feasibility alone: the problem without its objective, searched until the first solution. What a
// relaxation without costs leaves undecided is decided by the dives and the tree of the sub-MIP,
// whose nodes are never cut off by a bound.
#pragma once

#include "mip/heuristics/heuristic.h"

namespace tarvik {

// How a zero-objective search is called for: where, and how hard the caller wants it to try.
struct ZeroObjCall {
  double nodeLimit = 500;
  bool limitWork = true;
  // 0: none; otherwise a slack column in every inequality, with this cost: points away from the
  // sides of their rows are preferred.
  double slackCost = 0;
};

HeurResult heurZeroObj(HeuristicContext &context, const ZeroObjCall &call);

}  // namespace tarvik
