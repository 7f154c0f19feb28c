#include "mip/heuristics/heuristic_tools.h"

#include <algorithm>
#include <cmath>

namespace tarvik {

namespace {
// Decisions that one fix-and-propagate may find wrong before it gives up.
constexpr int kMaxFailures = 40;
}  // namespace

bool isExhausted(const HeuristicContext &context) {
  return context.control->work.counted() >= context.workLimit ||
         context.control->limits.poll(context.control->work, 0) != StopReason::None;
}

double nearestValue(const Problem &problem, int col, double lower, double upper, double value) {
  if (problem.isIntegral(col)) value = std::round(value);
  return std::min(std::max(value, lower), upper);
}

namespace {

bool continuousMayHelp(HeuristicContext &context, const Vec<double> &x) {
  const Problem &problem = *context.problem;
  if (problem.numContinuous() == 0) return false;
  Domain &domain = *context.domain;
  Vec<BoundChange> changes;
  for (int j = 0; j < problem.numCols(); ++j) {
    if (!problem.isIntegral(j)) continue;
    changes.push_back({j, BoundSide::Lower, x[j]});
    changes.push_back({j, BoundSide::Upper, x[j]});
  }
  const int level = domain.level();
  const bool possible = domain.decide(changes) && domain.propagate(context.control->work);
  domain.backtrackTo(level);
  return possible;
}

}  // namespace

bool submitChosen(HeuristicContext &context, const Vec<double> &x, SolutionSource source) {
  const Problem &problem = *context.problem;
  context.control->work.charge(2.0 * static_cast<double>(problem.rows().numNz()));
  if (problem.violation(x) > problem.tolerances().primal && !continuousMayHelp(context, x))
    return false;
  return context.sink->submit(x, source);
}

namespace {

bool tryValue(HeuristicContext &context, int col, double value) {
  Domain &domain = *context.domain;
  const int level = domain.level();
  if (domain.decide({{col, BoundSide::Lower, value}, {col, BoundSide::Upper, value}}) &&
      domain.propagate(context.control->work))
    return true;
  domain.backtrackTo(level);
  return false;
}

// The neighbours of a value that failed, the one on the side of the target first, then the ends.
bool tryOthers(HeuristicContext &context, int col, double failed, double target) {
  const double lower = context.domain->lower(col), upper = context.domain->upper(col);
  const double step = target >= failed ? 1 : -1;
  double tried[2] = {failed, failed};
  for (const double value : {failed + step, failed - step, upper, lower}) {
    if (value < lower || value > upper || value == failed) continue;
    if (value == tried[0] || value == tried[1] || isInf(value)) continue;
    if (tryValue(context, col, value)) return true;
    tried[0] = tried[1];
    tried[1] = value;
  }
  return false;
}

bool fixAll(HeuristicContext &context, const Vec<int> &order, const Vec<double> &target) {
  Domain &domain = *context.domain;
  int failures = 0;
  for (const int j : order) {
    if (domain.isFixed(j)) continue;
    if (isExhausted(context)) return false;
    const double value =
        nearestValue(*context.problem, j, domain.lower(j), domain.upper(j), target[j]);
    if (tryValue(context, j, value)) continue;
    if (++failures > kMaxFailures) return false;
    if (!tryOthers(context, j, value, target[j])) return false;
  }
  return true;
}

}  // namespace

bool fixAndPropagate(HeuristicContext &context, const Vec<int> &order, const Vec<double> &target,
                     SolutionSource source) {
  const Problem &problem = *context.problem;
  Domain &domain = *context.domain;
  const int base = domain.level();
  const bool possible = fixAll(context, order, target);
  Vec<double> x;
  if (possible) {
    x.resize(problem.numCols());
    for (int j = 0; j < problem.numCols(); ++j)
      x[j] = nearestValue(problem, j, domain.lower(j), domain.upper(j), target[j]);
  }
  domain.backtrackTo(base);
  return possible && submitChosen(context, x, source);
}

}  // namespace tarvik
