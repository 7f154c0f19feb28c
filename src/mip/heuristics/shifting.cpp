#include "mip/heuristics/shifting.h"

#include <algorithm>
#include <cmath>

#include "mip/heuristics/heuristic_tools.h"

namespace tarvik {

namespace {
constexpr int kMaxWithoutProgress = 50;
constexpr double kFading = 0.9;
}  // namespace

bool Shifting::isFractional(const HeuristicContext &context, const MovingPoint &point,
                            int col) const {
  const double x = point.value(col);
  return std::fabs(x - std::round(x)) > context.problem->tolerances().integral;
}

// Counts the rows that a shift breaks and mends; small scores are good.
void Shifting::consider(const HeuristicContext &context, const MovingPoint &point, int col,
                        double value, Shift &best) const {
  const Problem &problem = *context.problem;
  const double step = value - point.value(col);
  if (std::fabs(step) <= problem.tolerances().primal) return;
  double score = 0;
  const SparseMatrix &cols = problem.cols();
  for (NzIndex k = cols.start[col]; k < cols.start[col + 1]; ++k) {
    const int row = cols.index[k];
    const double before = std::fabs(point.excess(row));
    const double after = std::fabs(point.excessOf(row, point.activity(row) + step * cols.value[k]));
    if (after > before)
      score += before > 0 ? 0.7 : 1;
    else if (after < before)
      score -= after > 0 ? 0.3 : 1;
  }
  if (problem.isIntegral(col)) score += isFractional(context, point, col) ? -0.5 : 0.2;
  score += step > 0 ? downs_[col] : ups_[col];  // going back and forth
  score += 1e-3 * (problem.lp().cost[col] * step > 0);
  context.control->work.charge(3.0 * cols.length(col));
  if (best.col < 0 || score < best.score) best = {col, value, score};
}

Shifting::Shift Shifting::shiftInRow(const HeuristicContext &context, const MovingPoint &point,
                                     int row) const {
  const Problem &problem = *context.problem;
  const Domain &domain = *context.domain;
  const SparseMatrix &rows = problem.rows();
  const double excess = point.excess(row);
  Shift best;
  for (NzIndex k = rows.start[row]; k < rows.start[row + 1]; ++k) {
    const int j = rows.index[k];
    const double wanted = point.value(j) - excess / rows.value[k];
    double value = std::min(std::max(wanted, domain.lower(j)), domain.upper(j));
    if (problem.isIntegral(j)) {
      // Beyond the side rather than short of it, if the box allows.
      const double slack = problem.tolerances().integral;
      value = wanted > point.value(j) ? std::ceil(value - slack) : std::floor(value + slack);
      value = std::min(std::max(value, domain.lower(j)), domain.upper(j));
    }
    consider(context, point, j, value, best);
  }
  return best;
}

Shifting::Shift Shifting::rounding(const HeuristicContext &context,
                                   const MovingPoint &point) const {
  Shift best;
  for (const int j : fractional_) {
    if (!isFractional(context, point, j)) continue;
    consider(context, point, j, std::floor(point.value(j)), best);
    consider(context, point, j, std::ceil(point.value(j)), best);
  }
  return best;
}

bool Shifting::run(HeuristicContext &context) {
  const Problem &problem = *context.problem;
  MovingPoint point(problem, *context.x);
  fractional_.clear();
  for (int j = 0; j < problem.numCols(); ++j)
    if (problem.isIntegral(j) && isFractional(context, point, j)) fractional_.push_back(j);
  ups_.assign(problem.numCols(), 0);
  downs_.assign(problem.numCols(), 0);
  double bump = 1;
  std::size_t bestViolated = point.violated().size(), bestFractional = fractional_.size();
  for (int stalled = 0; stalled < kMaxWithoutProgress && !isExhausted(context);) {
    const Vec<int> &violated = point.violated();
    Shift shift;
    if (!violated.empty())
      shift = shiftInRow(context, point,
                         violated[context.random->below(static_cast<int>(violated.size()))]);
    else
      shift = rounding(context, point);
    if (shift.col < 0) break;
    (shift.value > point.value(shift.col) ? ups_ : downs_)[shift.col] += bump;
    bump /= kFading;
    point.move(shift.col, shift.value);
    fractional_.erase(std::remove_if(fractional_.begin(), fractional_.end(),
                                     [&](int j) { return !isFractional(context, point, j); }),
                      fractional_.end());
    if (violated.empty() && fractional_.empty()) {
      submitChosen(context, point.x(), SolutionSource::Shifting);
      break;
    }
    const bool progress =
        fractional_.size() < bestFractional ||
        (fractional_.size() == bestFractional && point.violated().size() < bestViolated);
    stalled = progress ? 0 : stalled + 1;
    if (progress) {
      bestFractional = fractional_.size();
      bestViolated = point.violated().size();
    }
  }
  return false;
}

}  // namespace tarvik
