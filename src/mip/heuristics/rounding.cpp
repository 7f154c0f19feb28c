#include "mip/heuristics/rounding.h"

#include <algorithm>
#include <cmath>

#include "mip/heuristics/heuristic_tools.h"

namespace tarvik {

Vec<double> roundByLocks(const Problem &problem, const Vec<double> &x) {
  Vec<double> rounded(x);
  const double tolerance = problem.tolerances().integral;
  for (int j = 0; j < problem.numCols(); ++j) {
    if (!problem.isIntegral(j)) continue;
    const double nearest = std::round(x[j]);
    if (std::fabs(x[j] - nearest) <= tolerance) {
      rounded[j] = nearest;
      continue;
    }
    const bool down = problem.downLocks(j) == 0, up = problem.upLocks(j) == 0;
    if (!down && !up) return {};
    const bool goDown = down && (!up || problem.lp().cost[j] >= 0);
    rounded[j] = goDown ? std::floor(x[j]) : std::ceil(x[j]);
  }
  return rounded;
}

bool SimpleRounding::run(HeuristicContext &context) {
  const Problem &problem = *context.problem;
  const Vec<double> rounded = roundByLocks(problem, *context.x);
  context.control->work.charge(2.0 * problem.numCols());
  if (!rounded.empty() && problem.objective(rounded) < context.sink->cutoff())
    submitChosen(context, rounded, SolutionSource::Rounding);
  return false;
}

bool PropagatedRounding::run(HeuristicContext &context) {
  const Problem &problem = *context.problem;
  const Vec<double> &x = *context.x;
  Vec<int> order;
  for (int j = 0; j < problem.numCols(); ++j)
    if (problem.isIntegral(j)) order.push_back(j);
  // Nonzero values first among those equally near to an integer: they decide the rest.
  const auto rank = [&](int j) {
    const double distance = std::fabs(x[j] - std::round(x[j]));
    return distance + (std::round(x[j]) == context.domain->lower(j) ? 1.0 : 0.0);
  };
  std::stable_sort(order.begin(), order.end(), [&](int a, int b) { return rank(a) < rank(b); });
  if (fixAndPropagate(context, order, x, SolutionSource::Rounding) || isExhausted(context))
    return false;
  // Once more at random: up with the probability that the fraction suggests.
  Vec<double> target(x);
  for (const int j : order)
    target[j] = std::floor(x[j]) + (context.random->uniform() < x[j] - std::floor(x[j]) ? 1 : 0);
  fixAndPropagate(context, order, target, SolutionSource::Rounding);
  return false;
}

}  // namespace tarvik
