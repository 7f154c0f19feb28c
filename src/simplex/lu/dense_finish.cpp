#include "simplex/lu/dense_finish.h"

#include <algorithm>
#include <cmath>
#include <type_traits>

#include "base/lapack.h"

namespace tarvik::lu {

template <class Real>
void DenseFinish<Real>::allocate() {
  array_.resize(rows_.size() * cols_.size());
}

template <class Real>
bool DenseFinish<Real>::useLapack() const {
  return std::is_same_v<Real, double> && static_cast<int>(cols_.size()) >= kLapackMinDim &&
         rows_.size() >= cols_.size() && lapack::getrf() != nullptr;
}

// False when the matrix is (nearly) singular and the array is spoilt.
template <class Real>
bool DenseFinish<Real>::factorLapack(Real pivotTol) {
  if constexpr (std::is_same_v<Real, double>) {
    const int numRows = static_cast<int>(rows_.size()), numCols = static_cast<int>(cols_.size());
    int info = 0;
    exchange_.resize(static_cast<std::size_t>(numCols));
    lapack::getrf()(&numRows, &numCols, array_.data(), &numRows, exchange_.data(), &info);
    if (info != 0) return false;
    pivotCols_.clear();
    dependent_.clear();
    for (int k = 0; k < numCols; ++k) {
      if (!(std::abs(column(k)[k]) >= pivotTol)) return false;
      pivotCols_.push_back(k);
    }
    for (int k = 0; k < numCols; ++k) std::swap(rows_[k], rows_[exchange_[k] - 1]);
    factored_ = true;
  }
  return factored_;
}

template <class Real>
void DenseFinish<Real>::factorPlain(Real pivotTol) {
  const int numRows = static_cast<int>(rows_.size()), numCols = static_cast<int>(cols_.size());
  pivotCols_.clear();
  dependent_.clear();
  for (int col = 0; col < numCols; ++col) {
    Real *const target = column(col);
    applyPivots(target);
    const int k = static_cast<int>(pivotCols_.size());
    int best = k;
    for (int i = k + 1; i < numRows; ++i)
      if (std::abs(target[i]) > std::abs(target[best])) best = i;
    if (k == numRows || std::abs(target[best]) < pivotTol) {
      dependent_.push_back(col);
      continue;
    }
    if (best != k) exchangeRows(k, best);
    for (int i = k + 1; i < numRows; ++i) target[i] /= target[k];
    pivotCols_.push_back(col);
  }
  factored_ = true;
}

// Eliminates the pivots so far from a column, four at a time: that reads and writes the
// column once for four pivots.
template <class Real>
void DenseFinish<Real>::applyPivots(Real *target) {
  const int numRows = static_cast<int>(rows_.size());
  const int numPivots = static_cast<int>(pivotCols_.size());
  int k = 0;
  for (; k + 4 <= numPivots; k += 4) {
    const Real *const a = column(pivotCols_[k]), *const b = column(pivotCols_[k + 1]);
    const Real *const c = column(pivotCols_[k + 2]), *const d = column(pivotCols_[k + 3]);
    const Real ta = target[k];
    const Real tb = target[k + 1] -= ta * a[k + 1];
    const Real tc = target[k + 2] -= ta * a[k + 2] + tb * b[k + 2];
    const Real td = target[k + 3] -= ta * a[k + 3] + tb * b[k + 3] + tc * c[k + 3];
    for (int i = k + 4; i < numRows; ++i)
      target[i] -= (ta * a[i] + tb * b[i]) + (tc * c[i] + td * d[i]);
  }
  for (; k < numPivots; ++k) {
    const Real *const a = column(pivotCols_[k]);
    const Real ta = target[k];
    for (int i = k + 1; i < numRows; ++i) target[i] -= ta * a[i];
  }
}

template <class Real>
void DenseFinish<Real>::exchangeRows(int a, int b) {
  for (int n = 0; n < static_cast<int>(cols_.size()); ++n) std::swap(column(n)[a], column(n)[b]);
  std::swap(rows_[a], rows_[b]);
}

template <class Real>
void DenseFinish<Real>::handColumn(int k, Real dropTol, LuFactors<Real> &factors) {
  const Real *const values = column(pivotCols_[k]);
  for (int i = 0; i < k; ++i)
    if (std::abs(values[i]) > dropTol) factors.pushU(rows_[i], values[i]);
  for (int i = k + 1; i < static_cast<int>(rows_.size()); ++i)
    if (std::abs(values[i]) > dropTol) factors.pushL(rows_[i], values[i]);
}

template class DenseFinish<double>;
template class DenseFinish<long double>;

}  // namespace tarvik::lu
