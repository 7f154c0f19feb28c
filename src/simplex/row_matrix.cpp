#include "simplex/row_matrix.h"

#include <algorithm>
#include <utility>

namespace tarvik {

namespace {
// Above this density of rho the column-wise product is cheaper.
constexpr double kColumnWiseDensity = 0.35;
// Below this predicted density of the result its index list is kept while it is formed.
constexpr double kListDensity = 0.15;
}  // namespace

template <class Real>
void RowMatrix<Real>::build(const ScaledLp<Real> &lp, const Vec<char> &active) {
  lp_ = &lp;
  active_ = active;
  const int m = lp.m, n = lp.n;
  const NzIndex nz = lp.cols.numNz();
  start_.assign(m + 1, 0);
  activeEnd_.assign(m, 0);
  col_.resize(nz);
  value_.resize(nz);
  place_.resize(nz);
  origin_.resize(nz);
  Vec<NzIndex> back(m);
  for (int j = 0; j < n; ++j)
    for (NzIndex k = lp.cols.start[j]; k < lp.cols.start[j + 1]; ++k)
      ++start_[lp.cols.index[k] + 1];
  for (int i = 0; i < m; ++i) start_[i + 1] += start_[i];
  for (int i = 0; i < m; ++i) {
    activeEnd_[i] = start_[i];
    back[i] = start_[i + 1];
  }
  for (int j = 0; j < n; ++j) {
    for (NzIndex k = lp.cols.start[j]; k < lp.cols.start[j + 1]; ++k) {
      const int i = lp.cols.index[k];
      const NzIndex to = active_[j] ? activeEnd_[i]++ : --back[i];
      col_[to] = j;
      value_[to] = lp.value[k];
      place_[k] = static_cast<std::uint32_t>(to);
      origin_[to] = static_cast<std::uint32_t>(k);
    }
  }
}

template <class Real>
void RowMatrix<Real>::swapEntries(NzIndex a, NzIndex b) {
  if (a == b) return;
  std::swap(col_[a], col_[b]);
  std::swap(value_[a], value_[b]);
  std::swap(origin_[a], origin_[b]);
  place_[origin_[a]] = static_cast<std::uint32_t>(a);
  place_[origin_[b]] = static_cast<std::uint32_t>(b);
}

template <class Real>
void RowMatrix<Real>::moveColumn(ColIndex j, bool active) {
  active_[j] = active;
  for (NzIndex k = lp_->cols.start[j]; k < lp_->cols.start[j + 1]; ++k) {
    const int i = lp_->cols.index[k];
    if (active)
      swapEntries(place_[k], activeEnd_[i]++);
    else
      swapEntries(place_[k], --activeEnd_[i]);
  }
}

template <class Real>
double RowMatrix<Real>::price(const SparseVec<Real> &rho, SparseVec<Real> &row,
                              double expectedDensity, WorkMeter &work) const {
  row.clear();
  if (!rho.valid() || rho.density() > kColumnWiseDensity) return priceByCols(rho, row, work);
  return priceByRows(rho, row, expectedDensity < kListDensity, work);
}

template <class Real>
double RowMatrix<Real>::priceByRows(const SparseVec<Real> &rho, SparseVec<Real> &row, bool keepList,
                                    WorkMeter &work) const {
  double touched = 0;
  int k = 0;
  if (keepList) {
    // A vector that turns out dense is finished without its list.
    const int listLimit = row.size / 4;
    for (; k < rho.count && row.count <= listLimit; ++k) {
      const int i = rho.index[k];
      const Real x = rho.value[i];
      if (x == Real(0)) continue;
      touched += static_cast<double>(activeEnd_[i] - start_[i]);
      for (NzIndex p = start_[i]; p < activeEnd_[i]; ++p) row.add(col_[p], x * value_[p]);
    }
    if (k == rho.count) {
      row.tighten(Real(1e-14));
      work.charge(4 * touched + 2 * rho.count);
      return row.density();
    }
  }
  Real *sum = row.value.data();
  for (; k < rho.count; ++k) {
    const int i = rho.index[k];
    const Real x = rho.value[i];
    if (x == Real(0)) continue;
    const NzIndex end = activeEnd_[i];
    touched += static_cast<double>(end - start_[i]);
    for (NzIndex p = start_[i]; p < end; ++p) sum[col_[p]] += x * value_[p];
  }
  row.count = -1;
  work.charge(3 * touched + row.size);
  return std::min(1.0, touched / std::max(row.size, 1));
}

template <class Real>
double RowMatrix<Real>::priceByCols(const SparseVec<Real> &rho, SparseVec<Real> &row,
                                    WorkMeter &work) const {
  double touched = 0;
  for (int j = 0; j < lp_->n; ++j) {
    if (!active_[j]) continue;
    Real sum = 0;
    const NzIndex end = lp_->cols.start[j + 1];
    for (NzIndex k = lp_->cols.start[j]; k < end; ++k)
      sum += rho.value[lp_->cols.index[k]] * lp_->value[k];
    touched += static_cast<double>(end - lp_->cols.start[j]);
    row.value[j] = sum;
  }
  row.count = -1;
  work.charge(2 * touched + lp_->n);
  return 1.0;
}

template class RowMatrix<double>;
template class RowMatrix<long double>;

}  // namespace tarvik
