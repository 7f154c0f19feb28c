// Points that cost nothing to try: all columns at one side of their box, in the direction that no
// row objects to, at the cheaper side, or as near to zero as possible; each as it is, then fixed
// column by column with propagation.
#pragma once

#include "mip/heuristics/heuristic.h"

namespace tarvik {

class TrivialPoints : public Heuristic {
 public:
  const char *name() const override { return "Trivial points"; }
  bool run(HeuristicContext &context) override;
};

}  // namespace tarvik
