// The dense end of an elimination. The active submatrix, copied into a dense column-major
// array, is factored with partial pivoting: by LAPACK's dgetrf when it is large and in double
// precision, else by a plain left-looking loop. dgetrf does not know dependent columns; when
// it meets a pivot below the tolerance, the array is filled again and the plain loop, which
// passes over such columns, takes over.
#pragma once

#include <utility>

#include "simplex/lu/lu_factors.h"

namespace tarvik::lu {

template <class Real>
class DenseFinish {
 public:
  void begin() {
    rows_.clear();
    cols_.clear();
  }
  void addRow(RowIndex row, int numRows) {
    if (static_cast<int>(place_.size()) < numRows) place_.resize(static_cast<std::size_t>(numRows));
    place_[row] = static_cast<int>(rows_.size());
    rows_.push_back(row);
  }
  void addCol(int col) { cols_.push_back(col); }
  void allocate();
  int place(RowIndex row) const { return place_[row]; }

  // Factors the matrix that fill(col, array) writes column by column into zeroed arrays.
  // Returns the number of multiplications.
  template <class Fill>
  double factor(Real pivotTol, const Fill &fill) {
    fillAll(fill);
    if (useLapack() && !factorLapack(pivotTol)) fillAll(fill);
    if (!factored_) factorPlain(pivotTol);
    return double(cols_.size()) * double(cols_.size()) * double(rows_.size());
  }

  // States the pivots; pushU(col) writes what column col has in U already.
  template <class PushU>
  void hand(Real dropTol, const Vec<VarIndex> &var, const PushU &pushU, LuFactors<Real> &factors) {
    for (const int n : dependent_) factors.dropped.push_back(var[cols_[n]]);
    for (int k = 0; k < static_cast<int>(pivotCols_.size()); ++k) {
      const int col = cols_[pivotCols_[k]];
      factors.openPivot(rows_[k], var[col], column(pivotCols_[k])[k]);
      pushU(col);
      handColumn(k, dropTol, factors);
      factors.closePivot(rows_[k]);
    }
  }

 private:
  Real *column(int n) { return array_.data() + static_cast<std::size_t>(n) * rows_.size(); }
  template <class Fill>
  void fillAll(const Fill &fill) {
    std::fill(array_.begin(), array_.end(), Real(0));
    for (int n = 0; n < static_cast<int>(cols_.size()); ++n) fill(cols_[n], column(n));
    factored_ = false;
  }
  bool useLapack() const;
  bool factorLapack(Real pivotTol);
  void factorPlain(Real pivotTol);
  void applyPivots(Real *target);
  void exchangeRows(int a, int b);
  void handColumn(int k, Real dropTol, LuFactors<Real> &factors);

  Vec<RowIndex> rows_;  // in pivot order once factored
  Vec<int> cols_;
  Vec<int> place_;  // position of a row in rows_
  Vec<Real> array_;
  Vec<int> exchange_;   // dgetrf's row exchanges
  Vec<int> pivotCols_;  // columns by their pivots; the k-th pivot is in row k
  Vec<int> dependent_;
  bool factored_ = false;
};

extern template class DenseFinish<double>;
extern template class DenseFinish<long double>;

}  // namespace tarvik::lu
