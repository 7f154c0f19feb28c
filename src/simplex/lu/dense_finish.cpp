#include "simplex/lu/dense_finish.h"

#include <algorithm>
#include <cmath>
#include <type_traits>

extern "C" void dgetrf_(const int *m, const int *n, double *a, const int *lda, int *ipiv,
                        int *info);

namespace tarvik::lu {

template <class Real>
void DenseFinish<Real>::allocate() {
  array_.resize(rows_.size() * cols_.size());
}

template <class Real>
bool DenseFinish<Real>::useLapack() const {
  return std::is_same_v<Real, double> && static_cast<int>(cols_.size()) >= kLapackMinDim &&
         rows_.size() >= cols_.size();
}

// False when the matrix is (nearly) singular and the array is spoilt.
template <class Real>
bool DenseFinish<Real>::factorLapack(Real pivotTol) {
  if constexpr (std::is_same_v<Real, double>) {
    const int numRows = static_cast<int>(rows_.size()), numCols = static_cast<int>(cols_.size());
    int info = 0;
    exchange_.resize(static_cast<std::size_t>(numCols));
    dgetrf_(&numRows, &numCols, array_.data(), &numRows, exchange_.data(), &info);
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
    const int k = static_cast<int>(pivotCols_.size());
    Real *const pivotCol = column(col);
    int best = k;
    for (int i = k + 1; i < numRows; ++i)
      if (std::abs(pivotCol[i]) > std::abs(pivotCol[best])) best = i;
    if (k == numRows || std::abs(pivotCol[best]) < pivotTol) {
      dependent_.push_back(col);
      continue;
    }
    if (best != k) exchangeRows(k, best);
    const Real pivot = pivotCol[k];
    for (int i = k + 1; i < numRows; ++i) pivotCol[i] /= pivot;
    for (int next = col + 1; next < numCols; ++next) {
      Real *const target = column(next);
      const Real factor = target[k];
      if (factor == Real(0)) continue;
      for (int i = k + 1; i < numRows; ++i) target[i] -= factor * pivotCol[i];
    }
    pivotCols_.push_back(col);
  }
  factored_ = true;
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
