#include "opt/verify.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace tarvik {

namespace {

// Violations beyond this multiple of their tolerance are no small excess.
constexpr double kNearly = 1e3;
// Rounding in the check itself.
constexpr double kRounding = 1 + 1e-6;
// The part of the objective that may hide in products of duals and distances to bounds.
constexpr double kComplementarityShare = 1e-6;
// A reduced cost cannot be closer to what the duals imply than its own rounding.
constexpr double kDualRounding = 4 * std::numeric_limits<double>::epsilon();

Verdict verifyOptimal(const LpModel &lp, const LpSolution &solution, const Tolerances &tol) {
  Verdict verdict;
  if (static_cast<int>(solution.colValue.size()) != lp.numCols) return verdict;
  const SolutionQuality &quality = verdict.quality.emplace(checkSolution(lp, solution, tol.primal));
  const double primal = std::max(quality.boundViolation, quality.rowViolation) / tol.primal;
  double largest = 0;
  for (const double d : solution.colDual) largest = std::max(largest, std::fabs(d));
  const double residual = quality.dualResidual - kDualRounding * largest;
  const double dual = std::max(quality.dualViolation, residual) / tol.dual;
  const double gap =
      quality.complementaritySum / (kComplementarityShare * (1 + std::fabs(quality.objective)));
  const bool complete = static_cast<int>(solution.rowDual.size()) == lp.numRows &&
                        static_cast<int>(solution.colDual.size()) == lp.numCols;
  verdict.primalFeasible = primal <= kRounding;
  verdict.violation = std::max({primal, dual, gap});
  verdict.proven = complete && verdict.violation <= kRounding;
  verdict.nearlyProven = complete && verdict.violation <= kNearly;
  return verdict;
}

Verdict verifyUnbounded(const LpModel &lp, const LpSolution &solution, const Tolerances &tol) {
  Verdict verdict;
  if (static_cast<int>(solution.ray.size()) != lp.numCols ||
      static_cast<int>(solution.colValue.size()) != lp.numCols)
    return verdict;
  LpSolution point;
  point.colValue = solution.colValue;
  const SolutionQuality quality = checkSolution(lp, point, tol.primal);
  verdict.violation = std::max(quality.boundViolation, quality.rowViolation) / tol.primal;
  verdict.primalFeasible = verdict.violation <= kRounding;
  const bool improves = rayImprovement(lp, solution.ray, tol.primal) < 0;
  verdict.proven = improves && verdict.primalFeasible;
  verdict.nearlyProven = improves && verdict.violation <= kNearly;
  return verdict;
}

Verdict verifyInfeasible(const LpModel &lp, const LpSolution &solution) {
  Verdict verdict;
  if (static_cast<int>(solution.farkas.size()) != lp.numRows) return verdict;
  verdict.proven = verdict.nearlyProven = farkasViolation(lp, solution.farkas) > 0;
  if (verdict.proven) verdict.violation = 0;
  return verdict;
}

}  // namespace

Verdict verify(const LpModel &lp, const LpSolution &solution, const Tolerances &tolerances) {
  switch (solution.status) {
    case LpStatus::Optimal:
      return verifyOptimal(lp, solution, tolerances);
    case LpStatus::Infeasible:
      return verifyInfeasible(lp, solution);
    case LpStatus::Unbounded:
      return verifyUnbounded(lp, solution, tolerances);
    case LpStatus::NotSolved:
    case LpStatus::Numeric:
    case LpStatus::InfeasibleOrUnbounded:
      return {};
    default:
      break;
  }
  Verdict nothingClaimed;
  nothingClaimed.proven = nothingClaimed.nearlyProven = true;
  nothingClaimed.violation = 0;
  return nothingClaimed;
}

}  // namespace tarvik
