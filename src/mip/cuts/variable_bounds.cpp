#include "mip/cuts/variable_bounds.h"

#include <cmath>

namespace tarvik {

namespace {
// Larger numbers make a substitution inaccurate.
constexpr double kLargest = 1e7;
constexpr double kSmallest = 1e-6;
}  // namespace

VariableBounds::VariableBounds(const Problem &problem, const Domain &global)
    : upper_(problem.numCols()), lower_(problem.numCols()) {
  const SparseMatrix &rows = problem.rows();
  for (int i = 0; i < problem.numRows(); ++i) {
    if (rows.length(i) != 2) continue;
    for (int first = 0; first < 2; ++first) {
      const NzIndex kx = rows.start[i] + first, ky = rows.start[i] + 1 - first;
      const int x = rows.index[kx], y = rows.index[ky];
      if (!global.isBinary(y) || global.isBinary(x)) continue;
      const double a = rows.value[kx], c = rows.value[ky];
      const double low = problem.lp().rowLower[i], up = problem.lp().rowUpper[i];
      if (!isInf(up)) addFrom(x, a, y, c, up);
      if (!isInf(low)) addFrom(x, -a, y, -c, -low);
    }
  }
}

// a x + c y <= rhs.
void VariableBounds::addFrom(int x, double a, int y, double c, double rhs) {
  const VariableBound bound{y, -c / a, rhs / a};
  if (std::fabs(bound.coef) > kLargest || std::fabs(bound.constant) > kLargest ||
      std::fabs(bound.coef) < kSmallest)
    return;
  (a > 0 ? upper_ : lower_)[x].push_back(bound);
  ++count_;
}

const VariableBound *VariableBounds::leastUpper(int col, const Vec<double> &x) const {
  const VariableBound *best = nullptr;
  for (const VariableBound &bound : upper_[col])
    if (!best || bound.at(x) < best->at(x)) best = &bound;
  return best;
}

const VariableBound *VariableBounds::greatestLower(int col, const Vec<double> &x) const {
  const VariableBound *best = nullptr;
  for (const VariableBound &bound : lower_[col])
    if (!best || bound.at(x) > best->at(x)) best = &bound;
  return best;
}

}  // namespace tarvik
