#include "simplex/lu/lu_factors.h"

namespace tarvik::lu {

template <class Real>
void LuFactors<Real>::reset(int m) {
  lCols.reset(m);
  lRows.reset(m);
  uCols.reset(m);
  uRows.reset(m);
  pivot.assign(static_cast<std::size_t>(m), Real(1));
  basicVar.assign(static_cast<std::size_t>(m), -1);
  pivotOrder.clear();
  dropped.clear();
  work = 0;
}

template <class Real>
void LuFactors<Real>::addLogical(RowIndex row, VarIndex var) {
  basicVar[row] = var;
  pivotOrder.push_back(row);
}

template <class Real>
void LuFactors<Real>::openPivot(RowIndex row, VarIndex var, Real value) {
  basicVar[row] = var;
  pivotOrder.push_back(row);
  pivot[row] = value;
  lCols.vectors.open(row);
  uCols.vectors.open(row);
}

template <class Real>
void LuFactors<Real>::closePivot(RowIndex row) {
  lCols.vectors.close(row);
  uCols.vectors.close(row);
}

template <class Real>
void LuFactors<Real>::finish() {
  for (const RowIndex p : pivotOrder) {
    if (lCols.vectors[p].length > 0) lCols.enlist(p);
    if (uCols.vectors[p].length > 0 || pivot[p] != Real(1)) uCols.enlist(p);
  }
  makeRows(lCols, lRows, 0);
  makeRows(uCols, uRows, kRoomExtra);
  for (const RowIndex p : pivotOrder) {
    if (lRows.vectors[p].length > 0) lRows.enlist(p);
    if (uRows.vectors[p].length > 0 || pivot[p] != Real(1)) uRows.enlist(p);
  }
  work += kUnitsGather *
          (static_cast<double>(lCols.vectors.numNz() + uCols.vectors.numNz()) + pivotOrder.size());
}

// Transposes; the rows come to lie in pivot order, and their entries too.
template <class Real>
void LuFactors<Real>::makeRows(const Triangle<Real> &cols, Triangle<Real> &rows, int spare) {
  const int *const index = cols.vectors.index();
  const Real *const value = cols.vectors.value();
  rowLength_.assign(pivot.size(), 0);
  for (const int p : cols.order) {
    const auto slice = cols.vectors[p];
    for (NzIndex k = slice.start; k < slice.start + slice.length; ++k) ++rowLength_[index[k]];
  }
  for (const RowIndex p : pivotOrder)
    if (rowLength_[p] > 0) rows.vectors.allot(p, rowLength_[p] + spare);
  for (const int p : cols.order) {
    const auto slice = cols.vectors[p];
    for (NzIndex k = slice.start; k < slice.start + slice.length; ++k)
      rows.vectors.put(index[k], p, value[k]);
  }
}

template class LuFactors<double>;
template class LuFactors<long double>;

}  // namespace tarvik::lu
