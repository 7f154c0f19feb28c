#include "mip/heuristics/lp_scope.h"

#include <algorithm>

namespace tarvik {

LpScope::LpScope(HeuristicContext &context)
    : context_(context),
      level_(context.domain->level()),
      basis_(context.lp->basis()),
      weights_(context.lp->simplex().edgeWeights()),
      workLimit_(context.control->limits.workLimit) {
  context.control->limits.workLimit = std::min(workLimit_, context.workLimit * 1e-9);
}

LpStatus LpScope::solve(double iterationLimit) {
  context_.lp->follow(*context_.domain);
  context_.lp->setCutoff(costs_.empty() ? context_.sink->cutoff() : kUserInf);
  return context_.lp->solve(*context_.control, iterationLimit);
}

void LpScope::setCost(int col, double cost) {
  context_.lp->simplex().setCost(col, cost);
  costs_.push_back(col);
}

void LpScope::restore() {
  if (restored_) return;
  restored_ = true;
  context_.control->limits.workLimit = workLimit_;
  Relaxation &lp = *context_.lp;
  context_.domain->backtrackTo(level_);
  lp.follow(*context_.domain);
  for (const int j : costs_) lp.simplex().setCost(j, context_.problem->lp().cost[j]);
  lp.setBasis(*basis_);
  if (!weights_.empty()) lp.simplex().setEdgeWeights(weights_);
  // The basis is optimal: this only brings its solution back.
  lp.setCutoff(kUserInf);
  lp.solve(*context_.control);
  lp.setCutoff(context_.sink->cutoff());
}

}  // namespace tarvik
