// Set-partitioning rows whose members stand in an order that other rows tell: exactly one of the
// binaries is one, and short rows link each to its neighbours, as in formulations of
// piecewise-linear functions. Such a chain can be branched on like an ordered set of type 1, which
// decides more at once than a single member does.
#pragma once

#include "mip/problem.h"

namespace tarvik {

struct BranchSetList {
  Vec<int> start{0}, member;

  int count() const { return static_cast<int>(start.size()) - 1; }
  // The set as branching on ordered sets takes it.
  SosSet set(int k) const;
};

BranchSetList detectBranchSets(const Problem &problem);

}  // namespace tarvik
