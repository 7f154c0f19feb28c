#include "simplex/scaled_lp.h"

#include <cmath>

#include "base/multiversion.h"

namespace tarvik {

namespace {

template <class Real>
Real scaledBound(double bound, double factor) {
  if (bound >= kInfBound) return kRealInf<Real>;
  if (bound <= -kInfBound) return -kRealInf<Real>;
  return Real(bound) * Real(factor);
}

// Column bounds divided by the columns' factors.
template <class Real>
inline void divideBounds(int count, const double *bound, const double *factor, Real *scaled) {
  for (int j = 0; j < count; ++j) {
    const Real value = Real(bound[j]) / Real(factor[j]);
    scaled[j] = bound[j] >= kInfBound    ? kRealInf<Real>
                : bound[j] <= -kInfBound ? -kRealInf<Real>
                                         : value;
  }
}

TARVIK_SIMD void scaleColBounds(int count, const double *bound, const double *factor,
                                double *scaled) {
  divideBounds(count, bound, factor, scaled);
}

void scaleColBounds(int count, const double *bound, const double *factor, long double *scaled) {
  divideBounds(count, bound, factor, scaled);
}

// A power of two near 1/sqrt(min*max) of the entries of one row, in the columns' scale.
template <class Entries>
double rowFactor(const Entries &entries) {
  double low = 1e300, high = 0;
  entries([&](double a) {
    low = std::fmin(low, a);
    high = std::fmax(high, a);
  });
  if (high == 0) return 1;
  return std::exp2(std::round(-0.5 * std::log2(low * high)));
}

}  // namespace

template <class Real>
void ScaledLp<Real>::load(const LpModel &lp, Scaling scaling) {
  m = lp.numRows;
  n = lp.numCols;
  offset = lp.offset;
  const bool scaled = scaling.active();
  colScale = std::move(scaling.col);
  rowScale = std::move(scaling.row);
  if (colScale.empty()) colScale.assign(n, 1.0);
  if (rowScale.empty()) rowScale.assign(m, 1.0);
  cols.numMajor = n;
  cols.numMinor = m;
  cols.start = lp.a.start;
  cols.index = lp.a.index;
  scaleEntries(lp.a, scaled);
  lower.resize(total());
  upper.resize(total());
  cost.assign(total(), Real(0));
  scaleColBounds(n, lp.colLower.data(), colScale.data(), lower.data());
  scaleColBounds(n, lp.colUpper.data(), colScale.data(), upper.data());
  for (int j = 0; j < n; ++j) setCost(j, lp.cost[j]);
  for (int i = 0; i < m; ++i) setRowBounds(i, lp.rowLower[i], lp.rowUpper[i]);
}

template <class Real>
void ScaledLp<Real>::scaleEntries(const SparseMatrix &a, bool scaled) {
  if (!scaled) {
    value.assign(a.value.begin(), a.value.end());
    return;
  }
  value.resize(a.value.size());
  for (int j = 0; j < n; ++j)
    for (NzIndex k = a.start[j]; k < a.start[j + 1]; ++k)
      value[k] = Real(a.value[k]) * (Real(colScale[j]) * Real(rowScale[a.index[k]]));
}

template <class Real>
void ScaledLp<Real>::setColBounds(ColIndex col, double lo, double up) {
  const double factor = 1.0 / colScale[col];
  lower[col] = scaledBound<Real>(lo, factor);
  upper[col] = scaledBound<Real>(up, factor);
}

template <class Real>
void ScaledLp<Real>::setRowBounds(RowIndex row, double lo, double up) {
  lower[n + row] = -scaledBound<Real>(up, rowScale[row]);
  upper[n + row] = -scaledBound<Real>(lo, rowScale[row]);
}

template <class Real>
void ScaledLp<Real>::addRows(int count, const NzIndex *start, const int *index, const double *val,
                             const double *lo, const double *up) {
  // Column-wise storage: count the new entries of each column, then spread the old ones from the
  // back so that one pass suffices.
  const NzIndex added = start[count] - start[0];
  Vec<int> extra(n, 0);
  for (NzIndex k = start[0]; k < start[count]; ++k) ++extra[index[k]];
  const NzIndex old = cols.start[n];
  cols.index.resize(static_cast<std::size_t>(old + added));
  value.resize(static_cast<std::size_t>(old + added));
  NzIndex shift = added;
  Vec<NzIndex> fill(n);
  for (int j = n - 1; j >= 0; --j) {
    const NzIndex from = cols.start[j], end = cols.start[j + 1];
    shift -= extra[j];
    cols.start[j + 1] = end + shift + extra[j];
    for (NzIndex k = end - 1; k >= from; --k) {
      cols.index[k + shift] = cols.index[k];
      value[k + shift] = value[k];
    }
    fill[j] = end + shift;
  }
  lower.resize(n + m + count);
  upper.resize(n + m + count);
  cost.resize(n + m + count, Real(0));
  rowScale.resize(m + count);
  for (int r = 0; r < count; ++r) {
    const int row = m + r;
    rowScale[row] = rowFactor([&](auto &&f) {
      for (NzIndex k = start[r]; k < start[r + 1]; ++k)
        if (val[k] != 0) f(std::fabs(val[k]) * colScale[index[k]]);
    });
    for (NzIndex k = start[r]; k < start[r + 1]; ++k) {
      const NzIndex to = fill[index[k]]++;
      cols.index[to] = row;
      value[to] = Real(val[k]) * Real(colScale[index[k]]) * Real(rowScale[row]);
    }
  }
  m += count;
  cols.numMinor = m;
  for (int r = 0; r < count; ++r) setRowBounds(m - count + r, lo[r], up[r]);
}

template <class Real>
void ScaledLp<Real>::deleteRows(const Vec<char> &mark) {
  Vec<int> newRow(m);
  int kept = 0;
  for (int i = 0; i < m; ++i) newRow[i] = mark[i] ? -1 : kept++;
  NzIndex to = 0, from = 0;
  for (int j = 0; j < n; ++j) {
    const NzIndex end = cols.start[j + 1];
    for (; from < end; ++from) {
      const int row = newRow[cols.index[from]];
      if (row < 0) continue;
      cols.index[to] = row;
      value[to++] = value[from];
    }
    cols.start[j + 1] = to;
  }
  cols.index.resize(static_cast<std::size_t>(to));
  value.resize(static_cast<std::size_t>(to));
  for (int i = 0; i < m; ++i) {
    if (newRow[i] < 0) continue;
    lower[n + newRow[i]] = lower[n + i];
    upper[n + newRow[i]] = upper[n + i];
    cost[n + newRow[i]] = cost[n + i];
    rowScale[newRow[i]] = rowScale[i];
  }
  m = kept;
  cols.numMinor = m;
  lower.resize(n + m);
  upper.resize(n + m);
  cost.resize(n + m);
  rowScale.resize(m);
}

template class ScaledLp<double>;
template class ScaledLp<long double>;

}  // namespace tarvik
