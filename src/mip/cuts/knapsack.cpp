#include "mip/cuts/knapsack.h"

#include <algorithm>
#include <cmath>

namespace tarvik {

namespace {
constexpr double kTolerance = 1e-9;
constexpr int kLongestRow = 5000;
constexpr double kLargestBound = 1e7;
}  // namespace

void Knapsack::add(int col, double coef) {
  if (weight_[col] == 0) binaries_.push_back(col);
  weight_[col] += coef;
}

bool Knapsack::take(int row, double sign, double rhs) {
  const int *index = nullptr;
  const double *value = nullptr;
  int count = 0;
  point_->lp->row(row, index, value, count);
  point_->work->charge(5.0 * count);
  if (count > kLongestRow) return false;
  for (const int j : binaries_) weight_[j] = 0;
  binaries_.clear();
  capacity_ = rhs;
  for (int k = 0; k < count; ++k) {
    const int j = index[k];
    const double coef = sign * value[k];
    if (point_->global->isBinary(j)) {
      add(j, coef);
      continue;
    }
    const VariableBound *bound =
        coef > 0 ? bounds_->greatestLower(j, rows_->x()) : bounds_->leastUpper(j, rows_->x());
    if (bound && point_->global->isBinary(bound->binary) && isTighter(*bound, j, coef > 0)) {
      add(bound->binary, coef * bound->coef);
      capacity_ -= coef * bound->constant;
    } else if (!relaxOther(j, coef)) {
      return false;
    }
  }
  collectItems();
  double total = 0;
  for (const KnapsackItem &item : items_) total += item.weight;
  return items_.size() > 1 && capacity_ > 0 && total > capacity_;
}

void Knapsack::collectItems() {
  items_.clear();
  std::sort(binaries_.begin(), binaries_.end());
  binaries_.erase(std::unique(binaries_.begin(), binaries_.end()), binaries_.end());
  for (const int j : binaries_) {
    const double w = weight_[j], x = rows_->x()[j];
    if (w == 0) continue;
    if (w < 0) capacity_ -= w;
    items_.push_back({j, w < 0, std::fabs(w), w < 0 ? 1 - x : x});
  }
  capacity_ += point_->problem->tolerances().primal * std::max(1.0, std::fabs(capacity_));
}

// Than the plain bound, at the point.
bool Knapsack::isTighter(const VariableBound &bound, int col, bool below) const {
  const double at = bound.at(rows_->x());
  return below ? at >= point_->global->lower(col) - kTolerance
               : at <= point_->global->upper(col) + kTolerance;
}

bool Knapsack::relaxOther(int col, double coef) {
  const double bound = coef > 0 ? point_->global->lower(col) : point_->global->upper(col);
  if (std::fabs(bound) > kLargestBound) return false;
  capacity_ -= coef * bound;
  return true;
}

}  // namespace tarvik
