// The problem inside the engine: a scaled copy of an LpModel in computational form
//   min cost'x   subject to   A x + s = 0,   lower <= (x, s) <= upper,
// where s_i = -(row activity) is the logical of row i, variable n + i. With x' = x / colScale and
// A' = rowScale A colScale all of it scales consistently; the logical of row i scales by
// 1 / rowScale_i. Bounds beyond kInfBound become +-infinity of Real.
#pragma once

#include <limits>

#include "lp/lp_model.h"
#include "lp/scaling.h"

namespace tarvik {

template <class Real>
inline constexpr Real kRealInf = std::numeric_limits<Real>::infinity();

template <class Real>
class ScaledLp {
 public:
  int m = 0, n = 0;
  SparseMatrix cols;             // pattern by columns; its value array is unused
  RawVec<Real> value;            // scaled values, parallel to cols.index
  Vec<Real> lower, upper, cost;  // n + m entries
  Vec<double> colScale, rowScale;
  double offset = 0;

  int total() const { return n + m; }

  void load(const LpModel &lp, Scaling scaling);
  template <class Other>
  void convertFrom(const ScaledLp<Other> &other) {
    m = other.m;
    n = other.n;
    cols = other.cols;
    value.assign(other.value.begin(), other.value.end());
    lower.assign(other.lower.begin(), other.lower.end());
    upper.assign(other.upper.begin(), other.upper.end());
    cost.assign(other.cost.begin(), other.cost.end());
    colScale = other.colScale;
    rowScale = other.rowScale;
    offset = other.offset;
  }
  void setColBounds(ColIndex col, double lo, double up);
  void setRowBounds(RowIndex row, double lo, double up);
  void setCost(ColIndex col, double c) { cost[col] = Real(c) * Real(colScale[col]); }
  void addRows(int count, const NzIndex *start, const int *index, const double *val,
               const double *lo, const double *up);
  void deleteRows(const Vec<char> &mark);

  // The factor from a variable's scaled value to its user value: x = scale * x'.
  double varScale(VarIndex j) const { return j < n ? colScale[j] : 1.0 / rowScale[j - n]; }
  // Applies a function to every entry (row, value) of a variable's column.
  template <class F>
  void forColumn(VarIndex j, F &&f) const {
    if (j >= n) {
      f(j - n, Real(1));
      return;
    }
    for (NzIndex k = cols.start[j]; k < cols.start[j + 1]; ++k) f(cols.index[k], value[k]);
  }

 private:
  void scaleEntries(const SparseMatrix &a, bool scaled);
};

extern template class ScaledLp<double>;
extern template class ScaledLp<long double>;

}  // namespace tarvik
