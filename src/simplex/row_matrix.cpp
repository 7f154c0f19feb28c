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

// Room for the copy; activeEnd_ says where the first entry of each row goes.
template <class Real>
void RowMatrix<Real>::countRows(const ScaledLp<Real> &lp, const Vec<char> &active) {
  lp_ = &lp;
  active_ = active;
  const NzIndex nz = lp.cols.numNz();
  start_.assign(lp.m + 1, 0);
  col_.resize(nz);
  value_.resize(nz);
  for (NzIndex k = 0; k < nz; ++k) ++start_[lp.cols.index[k] + 1];
  for (int i = 0; i < lp.m; ++i) start_[i + 1] += start_[i];
  activeEnd_.assign(start_.begin(), start_.end() - 1);
}

template <class Real>
void RowMatrix<Real>::buildLoose(const ScaledLp<Real> &lp, const Vec<char> &active) {
  countRows(lp, active);
  loose_ = true;
  for (int j = 0; j < lp.n; ++j) {
    for (NzIndex k = lp.cols.start[j]; k < lp.cols.start[j + 1]; ++k) {
      const NzIndex to = activeEnd_[lp.cols.index[k]]++;
      col_[to] = j;
      value_[to] = lp.value[k];
    }
  }
}

template <class Real>
void RowMatrix<Real>::build(const ScaledLp<Real> &lp, const Vec<char> &active) {
  countRows(lp, active);
  loose_ = false;
  const int n = lp.n;
  place_.resize(lp.cols.numNz());
  origin_.resize(lp.cols.numNz());
  Vec<NzIndex> back(start_.begin() + 1, start_.end());
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
  for (NzIndex k = lp_->cols.start[j]; k < lp_->cols.start[j + 1]; ++k) {
    const int i = lp_->cols.index[k];
    if (active)
      swapEntries(place_[k], activeEnd_[i]++);
    else
      swapEntries(place_[k], --activeEnd_[i]);
  }
}

template <class Real>
void RowMatrix<Real>::dropInactive(SparseVec<Real> &row) const {
  if (row.valid()) {
    for (int k = 0; k < row.count; ++k)
      if (!active_[row.index[k]]) row.value[row.index[k]] = Real(0);
  } else {
    for (int j = 0; j < row.size; ++j)
      if (!active_[j]) row.value[j] = Real(0);
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
      if (loose_) dropInactive(row);
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
  if (loose_) dropInactive(row);
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
