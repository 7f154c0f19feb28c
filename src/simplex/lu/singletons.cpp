#include "simplex/lu/singletons.h"

#include <cmath>

namespace tarvik::lu {

template <class Real>
void Singletons<Real>::run(const BasisMatrix<Real> &matrix, const Vec<VarIndex> &head,
                           Real pivotTol, LuFactors<Real> &factors) {
  matrix_ = &matrix;
  factors_ = &factors;
  pivotTol_ = pivotTol;
  touched_ = static_cast<double>(head.size());
  pivotLogicals(head);
  sweep();
  if (!left_.empty()) {
    countEntries();
    listRows();
    pivotColumns();
    pivotRows();
    int kept = 0;
    for (std::size_t slot = 0; slot < left_.size(); ++slot)
      if (!done_[slot]) left_[kept++] = left_[slot];
    left_.resize(kept);
  }
  factors.work += kUnitsGather * touched_;
}

template <class Real>
void Singletons<Real>::pivotLogicals(const Vec<VarIndex> &head) {
  left_.clear();
  for (const VarIndex var : head) {
    const RowIndex row = var - matrix_->numCols;
    if (row < 0)
      left_.push_back(var);
    else if (factors_->pivoted(row))
      factors_->dropped.push_back(var);
    else
      factors_->addLogical(row, var);
  }
}

// Takes the column singletons that one look at each column shows, before anything is set up
// for the others. In many bases few columns are left.
template <class Real>
void Singletons<Real>::sweep() {
  const auto &a = *matrix_;
  int kept = 0;
  for (const VarIndex var : left_) {
    int count = 0;
    NzIndex pivotAt = 0;
    for (NzIndex k = a.start[var]; k < a.start[var + 1]; ++k)
      if (!factors_->pivoted(a.index[k]) && a.value[k] != Real(0)) {
        pivotAt = k;
        if (++count > 1) break;
      }
    touched_ += static_cast<double>(a.start[var + 1] - a.start[var]);
    if (count != 1 || std::abs(a.value[pivotAt]) < pivotTol_) {
      left_[kept++] = var;
      continue;
    }
    const RowIndex row = a.index[pivotAt];
    factors_->openPivot(row, var, a.value[pivotAt]);
    for (NzIndex k = a.start[var]; k < a.start[var + 1]; ++k)
      if (k != pivotAt && a.value[k] != Real(0)) factors_->pushU(a.index[k], a.value[k]);
    factors_->closePivot(row);
  }
  left_.resize(kept);
}

template <class Real>
void Singletons<Real>::countEntries() {
  const auto &a = *matrix_;
  done_.assign(left_.size(), 0);
  colCount_.assign(left_.size(), 0);
  rowCount_.assign(static_cast<std::size_t>(a.numRows), 0);
  queue_.clear();
  for (int slot = 0; slot < static_cast<int>(left_.size()); ++slot) {
    const VarIndex var = left_[slot];
    int count = 0;
    for (NzIndex k = a.start[var]; k < a.start[var + 1]; ++k)
      if (!factors_->pivoted(a.index[k]) && a.value[k] != Real(0)) {
        ++rowCount_[a.index[k]];
        ++count;
      }
    colCount_[slot] = count;
    if (count == 1) queue_.push_back(slot);
    if (count == 0) {
      done_[slot] = 1;
      factors_->dropped.push_back(var);
    }
    touched_ += static_cast<double>(a.start[var + 1] - a.start[var]);
  }
}

template <class Real>
void Singletons<Real>::listRows() {
  const auto &a = *matrix_;
  rowStart_.resize(static_cast<std::size_t>(a.numRows) + 1);
  NzIndex total = 0;
  for (RowIndex row = 0; row < a.numRows; ++row) {
    total += rowCount_[row];
    rowStart_[row] = total;  // the end of the row; filling moves it to the start
  }
  rowStart_[a.numRows] = total;
  if (static_cast<NzIndex>(rowSlot_.size()) < total) rowSlot_.resize(total);
  for (int slot = static_cast<int>(left_.size()) - 1; slot >= 0; --slot) {
    const VarIndex var = left_[slot];
    for (NzIndex k = a.start[var]; k < a.start[var + 1]; ++k)
      if (!factors_->pivoted(a.index[k]) && a.value[k] != Real(0))
        rowSlot_[--rowStart_[a.index[k]]] = slot;
  }
  touched_ += static_cast<double>(total) + a.numRows;
}

template <class Real>
void Singletons<Real>::pivotColumns() {
  for (std::size_t head = 0; head < queue_.size(); ++head) {
    const int slot = queue_[head];
    if (done_[slot]) continue;
    done_[slot] = 1;
    if (!pivotColumn(slot)) factors_->dropped.push_back(left_[slot]);
  }
}

// Pivots a column with (at most) one entry in unpivoted rows; false when it has none that counts.
template <class Real>
bool Singletons<Real>::pivotColumn(int slot) {
  const auto &a = *matrix_;
  const VarIndex var = left_[slot];
  touched_ += static_cast<double>(a.start[var + 1] - a.start[var]);
  NzIndex pivotAt = a.start[var];
  while (pivotAt < a.start[var + 1] &&
         (factors_->pivoted(a.index[pivotAt]) || a.value[pivotAt] == Real(0)))
    ++pivotAt;
  if (pivotAt == a.start[var + 1]) return false;
  const RowIndex row = a.index[pivotAt];
  --rowCount_[row];
  if (std::abs(a.value[pivotAt]) < pivotTol_) return false;

  factors_->openPivot(row, var, a.value[pivotAt]);
  for (NzIndex k = a.start[var]; k < a.start[var + 1]; ++k)
    if (k != pivotAt && a.value[k] != Real(0)) factors_->pushU(a.index[k], a.value[k]);
  factors_->closePivot(row);
  touched_ += static_cast<double>(rowStart_[row + 1] - rowStart_[row]);
  for (NzIndex k = rowStart_[row]; k < rowStart_[row + 1]; ++k)
    if (--colCount_[rowSlot_[k]] == 1) queue_.push_back(rowSlot_[k]);
  return true;
}

template <class Real>
void Singletons<Real>::pivotRows() {
  queue_.clear();
  for (RowIndex row = 0; row < matrix_->numRows; ++row)
    if (!factors_->pivoted(row) && rowCount_[row] == 1) queue_.push_back(row);
  for (std::size_t head = 0; head < queue_.size(); ++head) {
    const RowIndex row = queue_[head];
    if (rowCount_[row] != 1) continue;
    NzIndex k = rowStart_[row];
    while (done_[rowSlot_[k]]) ++k;
    touched_ += static_cast<double>(k - rowStart_[row]) + 1;
    pivotRow(row, rowSlot_[k]);
  }
}

// Pivots a row with one entry, of the given slot; false when the entry is too small.
template <class Real>
bool Singletons<Real>::pivotRow(RowIndex row, int slot) {
  const auto &a = *matrix_;
  const VarIndex var = left_[slot];
  touched_ += static_cast<double>(a.start[var + 1] - a.start[var]);
  NzIndex pivotAt = a.start[var];
  while (a.index[pivotAt] != row || a.value[pivotAt] == Real(0)) ++pivotAt;
  const Real pivot = a.value[pivotAt];
  if (std::abs(pivot) < pivotTol_) return false;

  done_[slot] = 1;
  factors_->openPivot(row, var, pivot);
  for (NzIndex k = a.start[var]; k < a.start[var + 1]; ++k) {
    const RowIndex i = a.index[k];
    if (k == pivotAt || a.value[k] == Real(0)) continue;
    if (factors_->pivoted(i)) {
      factors_->pushU(i, a.value[k]);
    } else {
      factors_->pushL(i, a.value[k] / pivot);
      if (--rowCount_[i] == 1) queue_.push_back(i);
    }
  }
  factors_->closePivot(row);
  return true;
}

template class Singletons<double>;
template class Singletons<long double>;

}  // namespace tarvik::lu
