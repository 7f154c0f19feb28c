#include "mip/cuts/cut.h"

#include <algorithm>
#include <cmath>
#include <numeric>

namespace tarvik {

namespace {
// Coefficients below this share of the largest one leave the cut.
constexpr double kSmallestShare = 1e-7;
// Larger ratios between coefficients, or coefficients beyond this, make a cut unfit.
constexpr double kLargestRange = 1e6;
constexpr double kLargestValue = 1e9;
constexpr double kZero = 1e-12;
}  // namespace

double workEnd(const SeparationPoint &point, int level) {
  const double entries = static_cast<double>(point.problem->rows().numNz());
  const double share = (1e7 + 20.0 * entries) * std::max(1, level);
  return std::min(point.workLimit, point.work->counted() + share);
}

double efficacy(const Cut &cut, const Vec<double> &x) {
  double activity = 0, square = 0;
  for (std::size_t k = 0; k < cut.index.size(); ++k) {
    activity += cut.value[k] * x[cut.index[k]];
    square += cut.value[k] * cut.value[k];
  }
  return square > 0 ? (activity - cut.rhs) / std::sqrt(square) : 0;
}

bool cleanCut(const Domain &global, Cut &cut) {
  const std::size_t count = cut.index.size();
  Vec<int> order(count);
  std::iota(order.begin(), order.end(), 0);
  std::sort(order.begin(), order.end(), [&](int a, int b) { return cut.index[a] < cut.index[b]; });
  Vec<int> index;
  Vec<double> value;
  double largest = 0;
  for (const int k : order) {
    if (!std::isfinite(cut.value[k])) return false;
    if (!index.empty() && index.back() == cut.index[k])
      value.back() += cut.value[k];
    else {
      index.push_back(cut.index[k]);
      value.push_back(cut.value[k]);
    }
  }
  for (const double v : value) largest = std::max(largest, std::fabs(v));
  if (largest <= kZero || largest > kLargestValue || !std::isfinite(cut.rhs)) return false;
  double smallest = largest;
  std::size_t kept = 0;
  CompensatedSum rhs(cut.rhs);
  for (std::size_t k = 0; k < index.size(); ++k) {
    const double v = value[k];
    if (std::fabs(v) <= kSmallestShare * largest || std::fabs(v) <= kZero) {
      // The least that the term contributes goes to the other side.
      const double bound = v > 0 ? global.lower(index[k]) : global.upper(index[k]);
      if (v != 0 && isInf(bound)) return false;
      if (v != 0) rhs.addProduct(-v, bound);
      continue;
    }
    smallest = std::min(smallest, std::fabs(v));
    index[kept] = index[k];
    value[kept++] = v;
  }
  index.resize(kept);
  value.resize(kept);
  if (kept == 0 || largest / smallest > kLargestRange) return false;
  if (static_cast<int>(kept) > 1000 + global.problem().numCols() / 5) return false;
  // Coefficients of moderate size, by an exact scaling.
  int exponent = 0;
  std::frexp(largest, &exponent);
  for (double &v : value) v = std::ldexp(v, -exponent);
  cut.rhs = std::ldexp(rhs.value(), -exponent);
  if (std::fabs(cut.rhs) > kLargestValue) return false;
  cut.index.swap(index);
  cut.value.swap(value);
  return true;
}

}  // namespace tarvik
