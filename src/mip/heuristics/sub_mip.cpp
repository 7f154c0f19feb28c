#include "mip/heuristics/sub_mip.h"

#include <algorithm>

namespace tarvik {

namespace {
constexpr int kCutPasses = 10;
}

SubMip::SubMip(HeuristicContext &context, SolutionSource source)
    : context_(context), model_(context.problem->model()), options_(*context.options) {
  options_.subMip = true;
  options_.simplex.logging = false;
  options_.presolve.logging = false;
  options_.nodeLimit = options_.subMipNodes;
  options_.solutionLimit = kMaxInt;
  options_.cutoff = context.sink->cutoff();
  options_.bestBdStop = kUserInf;
  options_.improveStartGap = 0;
  options_.improveStartTime = options_.improveStartNodes = kUserInf;
  options_.poolSearchMode = 0;
  options_.poolSolutions = 1;
  options_.threads = 1;
  if (options_.cuts.passes < 0 || options_.cuts.passes > kCutPasses)
    options_.cuts.passes = kCutPasses;
  onSolution = [this, source](const MipSolution &solution) {
    Vec<double> x(solution.x.begin(), solution.x.begin() + context_.problem->numCols());
    accepted_ += context_.sink->submit(x, source);
  };
}

void SubMip::fix(int col, double value) {
  model_.lp.colLower[col] = model_.lp.colUpper[col] = value;
}

const MipOutcome &SubMip::run() {
  Limits &limits = context_.control->limits;
  const double workLimit = limits.workLimit;
  limits.workLimit = std::min(workLimit, context_.workLimit * 1e-9);
  MipSolve solve(model_, options_, *context_.control);
  solve.onSolution = onSolution;
  outcome_ = solve.run();
  limits.workLimit = workLimit;
  return outcome_;
}

}  // namespace tarvik
