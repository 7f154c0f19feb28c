#include "mip/cuts/row_system.h"

#include <algorithm>
#include <cmath>

namespace tarvik {

namespace {
// Relative deviation from a multiple that rounding of the data explains.
constexpr double kMultipleError = 1e-12;
// The step of a row is sought among these parts of its smallest coefficient.
constexpr int kMostParts = 6;
constexpr double kMostSteps = 1e6;

bool isMultiple(double value, double step) {
  const double steps = value / step;
  return std::fabs(steps) <= kMostSteps &&
         std::fabs(steps - std::round(steps)) <= kMultipleError * std::max(1.0, std::fabs(steps));
}
}  // namespace

RowSystem::RowSystem(const SeparationPoint &point)
    : problem_(point.problem),
      x_(*point.x),
      slack_(point.lp->numRows()),
      norm_(point.lp->numRows(), 0.0) {
  for (int i = 0; i < numRows(); ++i) describeRow(*point.lp, i);
  if (point.lp->numCuts() > 0) lastCutId_ = point.lp->cutId(point.lp->numCuts() - 1);
  point.work->charge(4.0 * static_cast<double>(problem_->rows().numNz()));
}

bool RowSystem::describes(const SeparationPoint &point) const {
  const int cuts = point.lp->numCuts();
  const CutId lastId = cuts > 0 ? point.lp->cutId(cuts - 1) : -1;
  return point.problem == problem_ && point.lp->numRows() == numRows() && lastId == lastCutId_ &&
         *point.x == x_;
}

void RowSystem::describeRow(const Relaxation &lp, int row) {
  const int *index = nullptr;
  const double *value = nullptr;
  int count = 0;
  lp.row(row, index, value, count);
  CompensatedSum activity;
  double square = 0;
  for (int k = 0; k < count; ++k) {
    activity.addProduct(value[k], x_[index[k]]);
    square += value[k] * value[k];
  }
  norm_[row] = std::sqrt(square);
  const double lower = lp.rowLower(row), upper = lp.rowUpper(row);
  if ((isInf(lower) && isInf(upper)) || count == 0) return;
  SlackInfo &slack = slack_[row];
  const double fromUpper = isInf(upper) ? kInf : upper - activity.value();
  const double fromLower = isInf(lower) ? kInf : activity.value() - lower;
  slack.side = fromUpper <= fromLower ? 1 : -1;
  slack.rhs = slack.side > 0 ? upper : lower;
  slack.value = std::max(0.0, std::min(fromUpper, fromLower));
  slack.upper = isInf(lower) || isInf(upper) ? kInf : upper - lower;
  if (slack.upper > 0) slack.step = stepOf(index, value, count, slack.rhs);
}

double RowSystem::stepOf(const int *index, const double *value, int count, double rhs) const {
  double smallest = kInf;
  for (int k = 0; k < count; ++k) {
    if (!problem_->isIntegral(index[k])) return 0;
    smallest = std::min(smallest, std::fabs(value[k]));
  }
  for (int parts = 1; parts <= kMostParts; ++parts) {
    const double step = smallest / parts;
    const bool fits =
        std::all_of(value, value + count, [&](double v) { return isMultiple(v, step); });
    if (fits) return isMultiple(rhs, step) ? step : 0;
  }
  return 0;
}

RowCombiner::RowCombiner(const Relaxation &lp, const RowSystem &rows)
    : lp_(&lp), rows_(&rows), sum_(rows.numCols()), isTouched_(rows.numCols(), 0) {}

void RowCombiner::clear() {
  for (const int j : touched_) {
    sum_[j] = CompensatedSum();
    isTouched_[j] = 0;
  }
  touched_.clear();
  used_.clear();
  weight_.clear();
  rhs_ = CompensatedSum();
}

void RowCombiner::add(int row, double weight) {
  const int *index = nullptr;
  const double *value = nullptr;
  int count = 0;
  lp_->row(row, index, value, count);
  for (int k = 0; k < count; ++k) {
    const int j = index[k];
    if (!isTouched_[j]) {
      isTouched_[j] = 1;
      touched_.push_back(j);
    }
    sum_[j].addProduct(weight, value[k]);
  }
  rhs_.addProduct(weight, rows_->slack(row).rhs);
  used_.push_back(row);
  weight_.push_back(weight);
}

void RowCombiner::get(BaseRow &row) const {
  row.var.clear();
  row.coef.clear();
  row.rank = 0;
  for (const int j : touched_) {
    const double c = sum_[j].value();
    if (c == 0) continue;
    row.var.push_back(j);
    row.coef.push_back(c);
  }
  for (std::size_t k = 0; k < used_.size(); ++k) {
    const SlackInfo &slack = rows_->slack(used_[k]);
    row.rank = std::max(row.rank, lp_->rowRank(used_[k]));
    if (slack.upper <= 0) continue;
    row.var.push_back(rows_->numCols() + used_[k]);
    row.coef.push_back(weight_[k] * slack.side * (slack.step > 0 ? slack.step : 1));
  }
  row.rhs = rhs_.value();
}

}  // namespace tarvik
