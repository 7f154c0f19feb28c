// Improvement of the incumbent without a relaxation: integral columns move in the direction of
// their cost as far as the rows allow; where a row stops one, a partner in that row moves with it
// if the pair gains. Continuous columns follow by a linear program when something was moved.
#pragma once

#include "mip/heuristics/heuristic.h"
#include "mip/heuristics/moving_point.h"

namespace tarvik {

class OneOpt : public Heuristic {
 public:
  const char *name() const override { return "One-opt"; }
  bool run(HeuristicContext &context) override;

 private:
  bool moveAlone(const HeuristicContext &context, MovingPoint &point, int col) const;
  bool moveInPair(HeuristicContext &context, MovingPoint &point, int col) const;

  double improved_ = kUserInf;  // the incumbent that was worked on last
};

}  // namespace tarvik
