#include "mip/degenerate_moves.h"

#include <cmath>

#include "mip/branch_probe.h"

namespace tarvik {

namespace {

// Iterations of a move: so many, and this share of those that the relaxation took.
constexpr double kIterations = 20, kIterationShare = 0.1;
// A move that settles less than this share of the fractional columns was the last one.
constexpr double kLeastShare = 0.1;

// Fractional columns are drawn to the nearest integer, the others to where they are.
Vec<double> drawToIntegers(const Domain &domain, const Vec<double> &x) {
  const Problem &problem = domain.problem();
  Vec<double> cost(problem.numCols(), 0);
  for (const int j : problem.integers()) {
    const double off = x[j] - std::round(x[j]);
    if (std::fabs(off) > problem.tolerances().integral)
      cost[j] = off > 0 ? 1 : -1;
    else if (x[j] <= domain.lower(j) + problem.tolerances().primal)
      cost[j] = 1;
    else if (x[j] >= domain.upper(j) - problem.tolerances().primal)
      cost[j] = -1;
  }
  return cost;
}

}  // namespace

int degenerateMoves(Domain &domain, Relaxation &lp, int passes, SolveControl &control,
                    const std::function<void()> &tell) {
  Vec<int> fractional;
  fractionalColumns(domain, lp.x(), fractional);
  const std::size_t first = fractional.size();
  const double limit = kIterations + kIterationShare * lp.iterations();
  for (int pass = 0; pass < passes && !fractional.empty(); ++pass) {
    tell();
    const std::size_t before = fractional.size();
    const std::shared_ptr<const NodeBasis> basis = lp.basis();
    const Vec<double> weights = lp.simplex().edgeWeights();
    if (lp.moveOnOptimalFace(drawToIntegers(domain, lp.x()), limit, control))
      fractionalColumns(domain, lp.x(), fractional);
    const double settled = static_cast<double>(before) - static_cast<double>(fractional.size());
    if (lp.status() == LpStatus::Optimal && settled > 0) {
      if (settled < kLeastShare * static_cast<double>(before)) break;
      continue;
    }
    lp.setBasis(*basis);
    if (!weights.empty()) lp.simplex().setEdgeWeights(weights);
    lp.solve(control);
    return static_cast<int>(first - before);
  }
  return static_cast<int>(first - fractional.size());
}

}  // namespace tarvik
