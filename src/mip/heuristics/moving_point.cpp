#include "mip/heuristics/moving_point.h"

#include <algorithm>
#include <cmath>

#include "base/compensated_sum.h"

namespace tarvik {

MovingPoint::MovingPoint(const Problem &problem, Vec<double> x)
    : problem_(&problem),
      x_(std::move(x)),
      activity_(problem.numRows(), 0),
      position_(problem.numRows(), -1),
      objective_(problem.objective(x_)) {
  const SparseMatrix &rows = problem.rows();
  for (int i = 0; i < problem.numRows(); ++i) {
    CompensatedSum sum;
    for (NzIndex k = rows.start[i]; k < rows.start[i + 1]; ++k)
      sum.addProduct(rows.value[k], x_[rows.index[k]]);
    activity_[i] = sum.value();
    note(i);
  }
}

double MovingPoint::excessOf(int row, double activity) const {
  const double tolerance = problem_->tolerances().primal;
  const double above = activity - problem_->lp().rowUpper[row];
  if (above > tolerance) return above;
  const double below = activity - problem_->lp().rowLower[row];
  return below < -tolerance ? below : 0;
}

void MovingPoint::note(int row) {
  const bool violates = excess(row) != 0;
  int &position = position_[row];
  if (violates == (position >= 0)) return;
  if (violates) {
    position = static_cast<int>(violated_.size());
    violated_.push_back(row);
    return;
  }
  const int last = violated_.back();
  violated_[position] = last;
  position_[last] = position;
  violated_.pop_back();
  position = -1;
}

void MovingPoint::move(int col, double value) {
  const double step = value - x_[col];
  if (step == 0) return;
  x_[col] = value;
  objective_ += step * problem_->lp().cost[col];
  const SparseMatrix &cols = problem_->cols();
  for (NzIndex k = cols.start[col]; k < cols.start[col + 1]; ++k) {
    activity_[cols.index[k]] += step * cols.value[k];
    note(cols.index[k]);
  }
}

double MovingPoint::room(int col, bool up) const {
  const LpModel &lp = problem_->lp();
  double room = up ? lp.colUpper[col] - x_[col] : x_[col] - lp.colLower[col];
  for (NzIndex k = lp.a.start[col]; k < lp.a.start[col + 1]; ++k) {
    const int i = lp.a.index[k];
    if (isViolated(i)) continue;
    const double a = lp.a.value[k];
    const double limit = (a > 0) == up ? lp.rowUpper[i] : lp.rowLower[i];
    if (!isInf(limit))
      room = std::min(room, std::max(0.0, (limit - activity_[i]) / a * (up ? 1 : -1)));
  }
  return std::max(room, 0.0);
}

}  // namespace tarvik
