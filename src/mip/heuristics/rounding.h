// Roundings of the relaxation's optimum. Simple rounding moves each fractional column in a
// direction that no row objects to. Propagated rounding fixes the columns one after the other,
// those nearest to an integer first, and lets propagation correct the rest.
//
// Literature: Achterberg (2007), chapter 9; Achterberg, Berthold and Hendel (2012).
#pragma once

#include "mip/heuristics/heuristic.h"

namespace tarvik {

class SimpleRounding : public Heuristic {
 public:
  const char *name() const override { return "Rounding"; }
  bool run(HeuristicContext &context) override;
};

class PropagatedRounding : public Heuristic {
 public:
  const char *name() const override { return "Propagated rounding"; }
  bool run(HeuristicContext &context) override;
};

// Simple rounding of any point that satisfies the rows; empty when some column has locks on both
// sides.
Vec<double> roundByLocks(const Problem &problem, const Vec<double> &x);

}  // namespace tarvik
