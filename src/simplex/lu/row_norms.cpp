#include "simplex/lu/row_norms.h"

namespace tarvik::lu {

template <class Real>
template <bool forward>
double RowNorms<Real>::sweep(const Triangle<Real> &triangle, const Real *pivot) {
  const auto &vectors = triangle.vectors;
  const int *const index = vectors.index();
  const Real *const value = vectors.value();
  const int length = static_cast<int>(triangle.order.size());
  double touched = length;
  for (int n = 0; n < length; ++n) {
    const int p = triangle.order[forward ? n : length - 1 - n];
    if (p < 0 || !mark_[p]) continue;
    if (pivot)
      for (Real &x : value_[p]) x /= pivot[p];
    const Lanes source = value_[p];
    const auto slice = vectors[p];
    const NzIndex end = slice.start + slice.length;
    for (NzIndex k = slice.start; k < end; ++k) {
      reach(index[k]);
      Lanes &target = value_[index[k]];
      for (int lane = 0; lane < kMaxRowNorms; ++lane) target[lane] -= value[k] * source[lane];
    }
    touched += slice.length;
  }
  return touched;
}

template <class Real>
double RowNorms<Real>::compute(const LuFactors<Real> &factors, const ForrestTomlin<Real> &updates,
                               const BasisPos *p, int count, double *norm) {
  const std::size_t m = static_cast<std::size_t>(factors.size());
  if (mark_.size() != m) {
    value_.assign(m, Lanes{});
    mark_.assign(m, 0);
    pattern_.resize(m + 1);
  }
  count_ = 0;
  for (int k = 0; k < count; ++k) {
    reach(p[k]);
    value_[p[k]][k] = Real(1);
  }
  double touched = sweep<true>(factors.uRows, factors.pivot.data());
  updates.forEachBackward([&](RowIndex row, const int *index, const Real *value, int length) {
    if (!mark_[row]) return;
    const Lanes source = value_[row];
    for (int k = 0; k < length; ++k) {
      reach(index[k]);
      Lanes &target = value_[index[k]];
      for (int lane = 0; lane < kMaxRowNorms; ++lane) target[lane] += value[k] * source[lane];
    }
    touched += length;
  });
  touched += sweep<false>(factors.lRows, nullptr);
  Lanes sum{};
  for (int n = 0; n < count_; ++n) {
    Lanes &x = value_[pattern_[n]];
    for (int lane = 0; lane < kMaxRowNorms; ++lane) sum[lane] += x[lane] * x[lane];
    x = Lanes{};
    mark_[pattern_[n]] = 0;
  }
  for (int k = 0; k < count; ++k) norm[k] = static_cast<double>(sum[k]);
  return touched + count_;
}

template class RowNorms<double>;
template class RowNorms<long double>;

}  // namespace tarvik::lu
