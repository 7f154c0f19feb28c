#include "mip/heuristics/trivial.h"

#include <algorithm>
#include <cmath>

#include "mip/heuristics/heuristic_tools.h"

namespace tarvik {

namespace {

enum Direction { Down, Up, FewerLocks, Cheaper, Zero, kDirections };

double finiteSide(const Domain &domain, int col, bool up) {
  const double side = up ? domain.upper(col) : domain.lower(col);
  if (!isInf(side)) return side;
  const double other = up ? domain.lower(col) : domain.upper(col);
  return isInf(other) ? 0 : other;
}

double valueAt(const HeuristicContext &context, int col, Direction direction) {
  const Problem &problem = *context.problem;
  const Domain &domain = *context.domain;
  switch (direction) {
    case Down:
      return finiteSide(domain, col, false);
    case Up:
      return finiteSide(domain, col, true);
    case FewerLocks:
      return finiteSide(domain, col, problem.upLocks(col) < problem.downLocks(col));
    case Cheaper:
      return finiteSide(domain, col, problem.lp().cost[col] < 0);
    default:
      return nearestValue(problem, col, domain.lower(col), domain.upper(col), 0);
  }
}

// Columns that matter most to others first.
Vec<int> byDegree(const Problem &problem) {
  Vec<int> order;
  for (int j = 0; j < problem.numCols(); ++j)
    if (problem.isIntegral(j)) order.push_back(j);
  std::stable_sort(order.begin(), order.end(), [&](int a, int b) {
    return problem.cols().length(a) > problem.cols().length(b);
  });
  return order;
}

}  // namespace

bool TrivialPoints::run(HeuristicContext &context) {
  const Problem &problem = *context.problem;
  const Vec<int> order = byDegree(problem);
  Vec<double> x(problem.numCols());
  for (int d = 0; d < kDirections && !isExhausted(context); ++d) {
    for (int j = 0; j < problem.numCols(); ++j)
      x[j] = valueAt(context, j, static_cast<Direction>(d));
    if (!submitChosen(context, x, SolutionSource::Trivial))
      fixAndPropagate(context, order, x, SolutionSource::Trivial);
  }
  return false;
}

}  // namespace tarvik
