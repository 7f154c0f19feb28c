#include "mip/heuristics/local_search.h"

#include <algorithm>
#include <cmath>

#include "mip/heuristics/feasibility_jump.h"
#include "mip/heuristics/heuristic_tools.h"

namespace tarvik {

namespace {

constexpr double kLeastDemand = 1e-4, kLargestDemand = 0.2;
// One attempt may take this share of the work that is left.
constexpr double kShareOfAttempt = 0.3;

// The problem below an objective value, with the bounds that the domain has.
Problem withObjectiveRow(const HeuristicContext &context, double target) {
  MipModel model = context.problem->model();
  LpModel &lp = model.lp;
  SparseMatrix byRow = transpose(lp.a);
  Vec<int> index;
  Vec<double> value;
  for (int j = 0; j < lp.numCols; ++j) {
    if (lp.cost[j] == 0) continue;
    index.push_back(j);
    value.push_back(lp.cost[j]);
  }
  byRow.append(static_cast<int>(index.size()), index.data(), value.data());
  lp.a = transpose(byRow);
  ++lp.numRows;
  lp.rowLower.push_back(-kInf);
  lp.rowUpper.push_back(target - lp.offset);
  lp.colLower = context.domain->lower();
  lp.colUpper = context.domain->upper();
  return Problem(std::move(model), context.problem->tolerances());
}

}  // namespace

bool LocalSearch::isReady(const HeuristicContext &context) const {
  return context.sink->hasPoint() && context.sink->incumbentObjective() < failedAt_ &&
         context.problem->model().sos.empty() && context.problem->semis().empty() &&
         context.problem->numRows() > 0;
}

bool LocalSearch::attempt(HeuristicContext &context, double target) {
  const Problem problem = withObjectiveRow(context, target);
  Domain domain(problem);
  context.control->work.charge(6.0 * static_cast<double>(problem.rows().numNz()));
  Vec<double> start(context.sink->incumbent());
  for (int j = 0; j < problem.numCols(); ++j)
    start[j] = nearestValue(problem, j, domain.lower(j), domain.upper(j), start[j]);
  HeuristicContext inner(context);
  inner.problem = &problem;
  inner.domain = &domain;
  const double before = context.control->work.counted();
  inner.workLimit = before + kShareOfAttempt * (context.workLimit - before);
  JumpSearch search(inner, std::move(start));
  return search.run() && submitChosen(context, search.point(), SolutionSource::LocalSearch);
}

bool LocalSearch::run(HeuristicContext &context) {
  while (!isExhausted(context)) {
    const double objective = context.sink->incumbentObjective();
    const double scale = std::max(std::fabs(objective), 1.0);
    const double target = std::min(objective - demand_ * scale, context.sink->cutoff());
    if (attempt(context, target)) {
      demand_ = std::min(2 * demand_, kLargestDemand);
    } else if (demand_ > kLeastDemand) {
      demand_ = std::max(demand_ / 4, kLeastDemand);
    } else {
      failedAt_ = objective;
      break;
    }
  }
  return false;
}

}  // namespace tarvik
