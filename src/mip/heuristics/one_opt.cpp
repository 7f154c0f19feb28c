#include "mip/heuristics/one_opt.h"

#include <algorithm>
#include <cmath>

#include "mip/heuristics/heuristic_tools.h"

namespace tarvik {

namespace {
constexpr int kMaxRounds = 10;
// Entries of a row in which partners are sought.
constexpr int kLongestRow = 2000;
}  // namespace

bool OneOpt::moveAlone(const HeuristicContext &context, MovingPoint &point, int col) const {
  const double cost = context.problem->lp().cost[col];
  const bool up = cost < 0;
  const double slack = context.problem->tolerances().primal;
  double step = std::floor(point.room(col, up) + slack);
  context.control->work.charge(2.0 * context.problem->cols().length(col));
  if (step < 1 || isInf(step)) return false;
  // Where the tolerance made the step, the last unit may be too much.
  const double value = point.value(col);
  for (int attempt = 0; attempt < 2 && step >= 1; ++attempt, --step) {
    point.move(col, up ? value + step : value - step);
    if (point.violated().empty()) return true;
  }
  point.move(col, value);
  return false;
}

bool OneOpt::moveInPair(HeuristicContext &context, MovingPoint &point, int col) const {
  const Problem &problem = *context.problem;
  const LpModel &lp = problem.lp();
  const double step = lp.cost[col] < 0 ? 1 : -1;
  const double from = point.value(col), to = from + step;
  if (to < lp.colLower[col] || to > lp.colUpper[col]) return false;
  point.move(col, to);
  const Vec<int> violated(point.violated());
  context.control->work.charge(4.0 * problem.cols().length(col));
  const SparseMatrix &rows = problem.rows();
  int row = -1;
  for (const int i : violated)
    if (row < 0 || rows.length(i) < rows.length(row)) row = i;
  if (row >= 0 && rows.length(row) <= kLongestRow && violated.size() <= 5) {
    const double excess = point.excess(row);
    for (NzIndex k = rows.start[row]; k < rows.start[row + 1]; ++k) {
      const int partner = rows.index[k];
      if (partner == col || problem.kind(partner) != VarKind::Integer) continue;
      const double unit = excess * rows.value[k] > 0 ? -1 : 1;
      const double value = point.value(partner);
      const double gain = lp.cost[col] * step + lp.cost[partner] * unit;
      if (gain >= 0 || value + unit < lp.colLower[partner] || value + unit > lp.colUpper[partner])
        continue;
      context.control->work.charge(8.0 * problem.cols().length(partner));
      point.move(partner, value + unit);
      if (point.violated().empty()) return true;
      point.move(partner, value);
    }
  }
  point.move(col, from);
  return false;
}

bool OneOpt::run(HeuristicContext &context) {
  const Problem &problem = *context.problem;
  if (!context.sink->hasPoint() || context.sink->incumbentObjective() >= improved_) return false;
  MovingPoint point(problem, context.sink->incumbent());
  if (!point.violated().empty()) return false;
  Vec<int> order;
  for (const int j : problem.integers())
    if (problem.lp().cost[j] != 0) order.push_back(j);
  std::stable_sort(order.begin(), order.end(), [&](int a, int b) {
    return std::fabs(problem.lp().cost[a]) > std::fabs(problem.lp().cost[b]);
  });
  const double before = point.objective();
  bool moved = !order.empty();
  for (int round = 0; round < kMaxRounds && moved; ++round) {
    moved = false;
    for (const int j : order) {
      if (isExhausted(context)) break;
      if (moveAlone(context, point, j) || moveInPair(context, point, j)) moved = true;
    }
  }
  if (point.objective() < before) submitChosen(context, point.x(), SolutionSource::OneOpt);
  improved_ = context.sink->incumbentObjective();
  return false;
}

}  // namespace tarvik
