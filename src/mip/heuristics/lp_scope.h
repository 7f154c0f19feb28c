// A stretch of work on a worker's domain and relaxation that leaves them as they were: when it
// ends, the domain is back at its level and the engine has its bounds, basis, edge weights and
// optimal solution again. Until then the heuristic's work limit holds for every solve.
#pragma once

#include "mip/heuristics/heuristic.h"

namespace tarvik {

class LpScope {
 public:
  explicit LpScope(HeuristicContext &context);
  ~LpScope() { restore(); }
  LpScope(const LpScope &) = delete;
  LpScope &operator=(const LpScope &) = delete;

  int level() const { return level_; }
  // The bounds of the domain, solved below the sink's cutoff; with at most so many iterations.
  LpStatus solve(double iterationLimit = 1e100);
  // From now on without the cutoff; the problem's cost comes back at the end.
  void setCost(int col, double cost);
  void restore();

 private:
  HeuristicContext &context_;
  int level_;
  std::shared_ptr<const NodeBasis> basis_;
  Vec<double> weights_;
  Vec<int> costs_;  // columns with other costs
  double workLimit_;
  bool restored_ = false;
};

}  // namespace tarvik
