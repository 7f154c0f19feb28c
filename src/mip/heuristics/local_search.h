// Local search for a better solution: the weighted jumps that lead to feasible points, from the
// incumbent, with one more row that asks for a better objective. The demand grows when it is met
// and shrinks when it is not.
//
// Literature: Luteberget and Sartor (2023); Lin, Zou and Cai (2024) for the objective row.
#pragma once

#include "mip/heuristics/heuristic.h"

namespace tarvik {

class LocalSearch : public Heuristic {
 public:
  const char *name() const override { return "Local search"; }
  bool isReady(const HeuristicContext &context) const override;
  bool run(HeuristicContext &context) override;

 private:
  bool attempt(HeuristicContext &context, double target);

  double demand_ = 0.02;        // the share of the objective that a better point has to gain
  double failedAt_ = kUserInf;  // the incumbent that the least demand could not improve
};

}  // namespace tarvik
