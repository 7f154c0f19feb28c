#include "mip/cuts/aggregation.h"

#include <algorithm>
#include <cmath>
#include <tuple>

namespace tarvik {

namespace {
// Rows whose slack is beyond this share of their norm are of no use.
constexpr double kLargestSlack = 0.1;
// Cuts made from longer chains of cuts gain little and are numerically poor.
constexpr int kLargestRank = 6;
constexpr double kLargestWeight = 1e4;
constexpr int kMostSums = 50;
constexpr int kLongestSum = 2000;
constexpr double kSmallestCoef = 1e-7;
// Rows of two entries come last: most are variable bounds, which kernels substitute anyway.
constexpr double kPairPenalty = 10;
}  // namespace

AggregationLimits aggregationLimits(const SeparationPoint &point, int level) {
  AggregationLimits limits;
  limits.work = 2e7 + 50.0 * static_cast<double>(point.problem->rows().numNz());
  if (!point.root) {
    limits.rows = 100;
    limits.failures = 40;
    limits.cuts = 50;
    limits.sums = 3;
  } else if (level > 1) {
    limits.rows = 3000;
    limits.failures = 600;
    limits.work *= 3;
  }
  if (point.aggregations >= 0) limits.sums = 1 + std::min(point.aggregations, kMostSums);
  return limits;
}

Aggregation::Aggregation(const SeparationPoint &point, const RowSystem &rows,
                         const MirKernel &kernel)
    : point_(&point), rows_(&rows), kernel_(&kernel), sum_(*point.lp, rows) {}

bool Aggregation::isTight(int row) const {
  const SlackInfo &slack = rows_->slack(row);
  return slack.side != 0 && slack.value <= kLargestSlack * rows_->norm(row);
}

Vec<int> Aggregation::startRows() const {
  const Vec<double> &dual = point_->lp->solution().rowDual;
  Vec<std::tuple<double, int>> order;
  for (int i = 0; i < rows_->numRows(); ++i) {
    if (!isTight(i) || point_->lp->rowRank(i) > kLargestRank) continue;
    const int *index = nullptr;
    const double *value = nullptr;
    int count = 0;
    point_->lp->row(i, index, value, count);
    const double price = i < static_cast<int>(dual.size()) ? std::fabs(dual[i]) : 0;
    const double weight = rows_->slack(i).value / rows_->norm(i) +
                          1e-3 * count / std::max(1, rows_->numCols()) - (price > 1e-9 ? 0.1 : 0) +
                          (count <= 2 ? kPairPenalty : 0);
    order.push_back({weight, i});
  }
  std::sort(order.begin(), order.end());
  Vec<int> rows;
  for (const auto &[weight, i] : order) rows.push_back(i);
  return rows;
}

// The shortest tight row of the problem that has the column and is not in the sum yet.
int Aggregation::bestRowFor(int col, double &coef) const {
  const SparseMatrix &cols = point_->problem->cols();
  int best = -1, bestLength = 0;
  for (NzIndex k = cols.start[col]; k < cols.start[col + 1]; ++k) {
    const int i = cols.index[k];
    const int length = point_->problem->rows().length(i);
    if (!isTight(i) || std::find(used_.begin(), used_.end(), i) != used_.end()) continue;
    if (best >= 0 && length >= bestLength) continue;
    best = i;
    bestLength = length;
    coef = cols.value[k];
  }
  point_->work->charge(static_cast<double>(cols.length(col)));
  return best;
}

// Eliminates the continuous column that is farthest from its bounds.
bool Aggregation::extend() {
  const double slack = point_->problem->tolerances().primal;
  Vec<std::pair<double, int>> order;
  for (const int j : sum_.columns()) {
    if (point_->problem->isIntegral(j) || std::fabs(sum_.coef(j)) < kSmallestCoef) continue;
    const double distance = kernel_->boundDistance(j);
    if (distance > slack) order.push_back({-distance, j});
  }
  point_->work->charge(5.0 * sum_.entries());
  std::sort(order.begin(), order.end());
  for (const auto &[distance, j] : order) {
    double coef = 0;
    const int row = bestRowFor(j, coef);
    if (row < 0) continue;
    const double weight = -sum_.coef(j) / coef;
    if (std::fabs(weight) > kLargestWeight || std::fabs(weight) < 1 / kLargestWeight) continue;
    sum_.add(row, weight);
    used_.push_back(row);
    return sum_.entries() <= kLongestSum;
  }
  return false;
}

void Aggregation::run(const AggregationLimits &limits,
                      const std::function<bool(const BaseRow &)> &attempt) {
  const double workEnd = std::min(point_->workLimit, point_->work->counted() + limits.work);
  int rows = 0, failures = 0, cuts = 0;
  BaseRow base;
  for (const int start : startRows()) {
    if (++rows > limits.rows || failures >= limits.failures || cuts >= limits.cuts) return;
    if (point_->work->counted() > workEnd) return;
    sum_.clear();
    used_.assign(1, start);
    sum_.add(start, 1.0);
    bool found = false;
    do {
      sum_.get(base);
      found = attempt(base);
    } while (!found && static_cast<int>(used_.size()) < limits.sums && extend());
    failures = found ? 0 : failures + 1;
    cuts += found;
  }
}

}  // namespace tarvik
