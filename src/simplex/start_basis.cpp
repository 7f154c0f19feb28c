#include "simplex/start_basis.h"

#include <algorithm>
#include <cmath>

namespace tarvik {

namespace {

// What counts as being at a bound, and as no reduced cost.
constexpr double kAtBound = 1e-9;
constexpr double kNoCost = 1e-9;
// Entries below this share of a column's largest are no pivots.
constexpr double kPivotShare = 0.1;

VarStatus nearestBound(double value, double lower, double upper) {
  if (isInf(lower)) return isInf(upper) ? VarStatus::Free : VarStatus::AtUpper;
  if (isInf(upper)) return VarStatus::AtLower;
  return value - lower <= upper - value ? VarStatus::AtLower : VarStatus::AtUpper;
}

bool isInside(double value, double lower, double upper) {
  const double tol = kAtBound * (1 + std::fabs(value));
  return value > lower + tol && value < upper - tol;
}

class Crash {
 public:
  Crash(const LpModel &lp, const Vec<double> &x, const Vec<double> &y) : lp_(lp), x_(x), y_(y) {}

  StartBasis run() {
    result_.basis.col.resize(lp_.numCols);
    result_.basis.row.assign(lp_.numRows, VarStatus::Basic);
    findTightRows();
    for (int j = 0; j < lp_.numCols; ++j) placeColumn(j);
    // Short columns leave the others more rows to choose from.
    std::stable_sort(candidates_.begin(), candidates_.end(),
                     [&](int a, int b) { return lp_.a.length(a) < lp_.a.length(b); });
    taken_.assign(lp_.numRows, 0);
    for (const int j : candidates_) takeRow(j);
    return std::move(result_);
  }

 private:
  // Rows at a bound, or with a multiplier: their logicals are the first to leave the basis.
  void findTightRows() {
    rowValue_.assign(lp_.numRows, 0.0);
    tight_.assign(lp_.numRows, 0);
    for (int j = 0; j < lp_.numCols && !x_.empty(); ++j)
      for (NzIndex k = lp_.a.start[j]; k < lp_.a.start[j + 1]; ++k)
        rowValue_[lp_.a.index[k]] += lp_.a.value[k] * x_[j];
    for (int i = 0; i < lp_.numRows; ++i)
      tight_[i] = y_.empty() ? !isInside(rowValue_[i], lp_.rowLower[i], lp_.rowUpper[i])
                             : std::fabs(y_[i]) > kNoCost;
  }

  double reducedCost(int col) const {
    double d = lp_.cost[col];
    for (NzIndex k = lp_.a.start[col]; k < lp_.a.start[col + 1]; ++k)
      d -= lp_.a.value[k] * y_[lp_.a.index[k]];
    return d;
  }

  void placeColumn(int j) {
    const double lower = lp_.colLower[j], upper = lp_.colUpper[j];
    const double x = x_.empty() ? 0 : x_[j], d = y_.empty() ? 0 : reducedCost(j);
    VarStatus &status = result_.basis.col[j];
    status = nearestBound(x, lower, upper);
    if (!x_.empty()) {
      if (!isInside(x, lower, upper)) return;
      ++result_.superbasics;
      candidates_.push_back(j);
      return;
    }
    if (std::fabs(d) <= kNoCost * (1 + std::fabs(lp_.cost[j]))) {
      if (lower < upper) candidates_.push_back(j);
      return;
    }
    if (isInf(d > 0 ? lower : upper)) {
      ++result_.superbasics;
      candidates_.push_back(j);
    } else {
      status = d > 0 ? VarStatus::AtLower : VarStatus::AtUpper;
    }
  }

  // The largest entry in a free row, one whose logical should leave if there is any.
  void takeRow(int j) {
    double largest = 0, best = 0;
    for (NzIndex k = lp_.a.start[j]; k < lp_.a.start[j + 1]; ++k)
      largest = std::max(largest, std::fabs(lp_.a.value[k]));
    int row = -1;
    for (NzIndex k = lp_.a.start[j]; k < lp_.a.start[j + 1]; ++k) {
      const int i = lp_.a.index[k];
      const double size = std::fabs(lp_.a.value[k]);
      if (taken_[i] || !tight_[i] || size < kPivotShare * largest || size <= best) continue;
      best = size;
      row = i;
    }
    if (row < 0) return;
    taken_[row] = 1;
    result_.basis.col[j] = VarStatus::Basic;
    const double lower = lp_.rowLower[row], upper = lp_.rowUpper[row];
    result_.basis.row[row] = y_.empty() || isInf(lower) || isInf(upper)
                                 ? nearestBound(rowValue_[row], lower, upper)
                             : y_[row] >= 0 ? VarStatus::AtLower
                                            : VarStatus::AtUpper;
  }

  const LpModel &lp_;
  const Vec<double> &x_, &y_;
  StartBasis result_;
  Vec<int> candidates_;
  Vec<double> rowValue_;
  Vec<char> tight_, taken_;
};

}  // namespace

StartBasis startBasis(const LpModel &lp, const Vec<double> &x, const Vec<double> &y) {
  return Crash(lp, x, y).run();
}

}  // namespace tarvik
