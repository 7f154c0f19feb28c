#include "simplex/lu/nucleus.h"

#include <algorithm>
#include <cmath>

#include "simplex/lu/find_index.h"

namespace tarvik::lu {

template <class Real>
void Nucleus<Real>::factor(const BasisMatrix<Real> &matrix, const Vec<VarIndex> &vars,
                           const Tolerances &tolerances, LuFactors<Real> &factors) {
  factors_ = &factors;
  tol_ = tolerances;
  var_.assign(vars.begin(), vars.end());
  colsLeft_ = static_cast<int>(var_.size());
  touched_ = 0;
  pairs_ = 0;
  load(matrix);
  while (colsLeft_ > 0) {
    if (worthDense()) {
      finishDense();
      break;
    }
    if (!choosePivot()) {
      dropOpenColumns();
      break;
    }
    eliminate(choice_.row, choice_.col);
  }
  factors.work += kUnitsNucleus * touched_;
}

template <class Real>
void Nucleus<Real>::load(const BasisMatrix<Real> &matrix) {
  const int numCols = colsLeft_;
  maxCount_ = 1;
  activeNz_ = 0;
  used_ = 0;
  column_.resize(static_cast<std::size_t>(numCols));
  largest_.assign(static_cast<std::size_t>(numCols), Real(-1));
  row_.assign(static_cast<std::size_t>(matrix.numRows), Row());
  for (int col = 0; col < numCols; ++col) {
    const NzIndex from = matrix.start[var_[col]], to = matrix.start[var_[col] + 1];
    reserveEntries(to - from);
    Column &column = column_[col];
    column.begin = column.active = used_;
    for (NzIndex k = from; k < to; ++k) {
      const RowIndex row = matrix.index[k];
      const Real value = matrix.value[k];
      if (value == Real(0)) continue;
      index_[used_] = row;
      value_[used_] = value;
      ++used_;
      if (factors_->pivoted(row))
        settleEntry(column, used_ - 1);
      else
        ++row_[row].count;
    }
    column.end = column.limit = used_;
    column.open = true;
    column.count = static_cast<int>(column.end - column.active);
    activeNz_ += column.count;
    touched_ += static_cast<double>(to - from);
  }
  loadRows(matrix.numRows);
}

template <class Real>
void Nucleus<Real>::loadRows(int numRows) {
  const int numCols = colsLeft_;
  rowUsed_ = 0;
  reserveRows(activeNz_);
  for (Row &row : row_) {
    row.begin = rowUsed_;
    row.room = row.count;
    rowUsed_ += row.count;
    row.count = 0;
  }
  for (int col = 0; col < numCols; ++col)
    for (NzIndex k = column_[col].active; k < column_[col].end; ++k) {
      Row &row = row_[index_[k]];
      rowCol_[row.begin + row.count++] = col;
    }
  colLists_.reset(numCols, numRows);
  rowLists_.reset(numRows, numCols);
  maxCount_ = std::max(numCols, numRows);
  for (int col = numCols - 1; col >= 0; --col) colLists_.link(col, column_[col].count);
  for (int row = numRows - 1; row >= 0; --row)
    if (row_[row].count > 0) rowLists_.link(row, row_[row].count);
  multiplier_.assign(static_cast<std::size_t>(numRows), Real(0));
  state_.assign(static_cast<std::size_t>(numRows), kActive);
  touched_ += static_cast<double>(activeNz_) + numRows;
}

// Chooses the pivot with the best merit among the first few shortest columns and rows. False
// when no column has an entry that may be one.
template <class Real>
bool Nucleus<Real>::choosePivot() {
  choice_ = Choice();
  int searched = 0;
  for (int col = colLists_.first(0); col >= 0; col = colLists_.first(0)) colLists_.unlink(col);
  if (pairs_ < tol_.pairLimit && choosePair()) {
    ++pairs_;
    return true;
  }
  for (int count = 1; count <= maxCount_; ++count) {
    const double least = double(count - 1) * (count - 1);
    if (choice_.row >= 0 && choice_.merit <= least) return true;
    int next = -1;
    if (count < static_cast<int>(row_.size()) + 1) {
      for (int col = colLists_.first(count); col >= 0; col = next) {
        next = colLists_.next(col);
        // A column with tiny entries only is set aside until it changes.
        if (!refreshMax(col)) {
          colLists_.unlink(col);
          continue;
        }
        searchColumn(col);
        if (choice_.row >= 0 && (choice_.merit <= least || ++searched >= kSearchLimit)) return true;
      }
    }
    if (count > static_cast<int>(column_.size())) continue;
    for (int row = rowLists_.first(count); row >= 0; row = next) {
      next = rowLists_.next(row);
      // A row without an acceptable entry comes back when it changes.
      if (!searchRow(row)) rowLists_.unlink(row);
      if (choice_.row >= 0 && (choice_.merit <= least + count - 1 || ++searched >= kSearchLimit))
        return true;
    }
  }
  return choice_.row >= 0;
}

// Two columns with nothing but the same two rows are pivoted one after the other without fill: the
// first with its larger entry, the second is a singleton then.
template <class Real>
bool Nucleus<Real>::choosePair() {
  int tried = 0;
  for (int col = colLists_.first(2); col >= 0 && tried < kPairSearch; col = colLists_.next(col)) {
    ++tried;
    if (!refreshMax(col)) continue;
    const Column &column = column_[col];
    if (column.end - column.active != 2) continue;
    const int rows[2] = {index_[column.active], index_[column.active + 1]};
    const Row &r = row_[row_[rows[0]].count <= row_[rows[1]].count ? rows[0] : rows[1]];
    for (int n = 0; n < r.count; ++n) {
      const int other = rowCol_[r.begin + n];
      touched_ += 2;
      if (other == col || !isPair(other, rows)) continue;
      const NzIndex second = column.active + 1;
      const bool swap = std::abs(value_[second]) > std::abs(value_[column.active]);
      choice_ = {0, largest_[col], rows[swap], col};
      return true;
    }
  }
  return false;
}

template <class Real>
bool Nucleus<Real>::isPair(int col, const int *rows) const {
  const Column &column = column_[col];
  if (column.count != 2) return false;
  const NzIndex first = find(column, rows[0]), second = find(column, rows[1]);
  return first < column.end && second < column.end;
}

template <class Real>
void Nucleus<Real>::consider(int row, int col, double merit, Real size) {
  if (merit > choice_.merit || (merit == choice_.merit && size <= choice_.size)) return;
  choice_ = {merit, size, row, col};
}

template <class Real>
void Nucleus<Real>::searchColumn(int col) {
  const Column &column = column_[col];
  const Real least = std::max(tol_.markowitz * largest_[col], tol_.pivot);
  const double others = column.count - 1;
  touched_ += column.count;
  for (NzIndex k = column.active; k < column.end; ++k) {
    const Real size = std::abs(value_[k]);
    if (size >= least) consider(index_[k], col, others * (row_[index_[k]].count - 1), size);
  }
}

// False when the row has no acceptable entry.
template <class Real>
bool Nucleus<Real>::searchRow(int row) {
  const Row &r = row_[row];
  bool acceptable = false;
  for (int n = 0; n < r.count; ++n) {
    const int col = rowCol_[r.begin + n];
    const Column &column = column_[col];
    const double merit = double(r.count - 1) * (column.count - 1);
    if (merit >= choice_.merit) {
      acceptable = true;  // not known, but of no interest now
      continue;
    }
    touched_ += column.count;
    if (!refreshMax(col)) continue;
    const Real size = std::abs(value_[find(column, row)]);
    // The only entry of a row is a substitution: nothing is eliminated, nothing can grow.
    const Real least =
        r.count == 1 ? tol_.pivot : std::max(tol_.markowitz * largest_[col], tol_.pivot);
    if (size < least) continue;
    acceptable = true;
    consider(row, col, merit, size);
  }
  return acceptable;
}

// Makes the largest entry of a column known, and settles entries of pivoted rows on the way;
// false when all are too small for pivots.
template <class Real>
bool Nucleus<Real>::refreshMax(int col) {
  if (largest_[col] < Real(0)) {
    Column &column = column_[col];
    Real largest = 0;
    for (NzIndex k = column.active; k < column.end; ++k) {
      if (state_[index_[k]] == kPivoted)
        settleEntry(column, k);
      else
        largest = std::max(largest, std::abs(value_[k]));
    }
    largest_[col] = largest;
    touched_ += column.count;
  }
  return largest_[col] >= tol_.pivot;
}

template <class Real>
void Nucleus<Real>::dropOpenColumns() {
  for (std::size_t col = 0; col < column_.size(); ++col)
    if (column_[col].open) factors_->dropped.push_back(var_[col]);
  colsLeft_ = 0;
}

// Moves an active entry to the part of its column that belongs to U.
template <class Real>
void Nucleus<Real>::settleEntry(Column &column, NzIndex at) {
  std::swap(index_[at], index_[column.active]);
  std::swap(value_[at], value_[column.active]);
  ++column.active;
}

template <class Real>
NzIndex Nucleus<Real>::find(const Column &column, int row) const {
  return column.active + findIndex(index_.data() + column.active,
                                   static_cast<int>(column.end - column.active), row);
}

template <class Real>
void Nucleus<Real>::eliminate(int row, int col) {
  openPivotColumn(row, col);
  const Row pivotRow = row_[row];
  state_[row] = kPivoted;
  activeNz_ -= pivotRow.count;
  touched_ += kEntriesPerPivot + 2.0 * (pivotRow.count + static_cast<int>(multiplierRow_.size()));
  for (int n = 0; n < pivotRow.count; ++n) {
    const int other = rowCol_[pivotRow.begin + n];
    if (colLists_.linked(other)) colLists_.unlink(other);
    --column_[other].count;
    largest_[other] = Real(-1);
    if (!multiplierRow_.empty()) updateColumn(other, row);
    colLists_.link(other, column_[other].count);
  }
  for (const int i : multiplierRow_) {
    multiplier_[i] = Real(0);
    state_[i] = kActive;
    if (rowLists_.linked(i)) rowLists_.unlink(i);
    if (row_[i].count > 0) rowLists_.link(i, row_[i].count);
  }
  row_[row].count = 0;
}

// States the pivot with its columns of U and L, spreads the multipliers, and takes row and column
// out of the lists.
template <class Real>
void Nucleus<Real>::openPivotColumn(int row, int col) {
  column_[col].open = false;
  const Column column = column_[col];
  if (colLists_.linked(col)) colLists_.unlink(col);
  if (rowLists_.linked(row)) rowLists_.unlink(row);
  removeFromRow(row, col);
  const NzIndex at = find(column, row);
  const Real pivot = value_[at];
  factors_->openPivot(row, var_[col], pivot);
  for (NzIndex k = column.begin; k < column.active; ++k) factors_->pushU(index_[k], value_[k]);
  multiplierRow_.clear();
  for (NzIndex k = column.active; k < column.end; ++k) {
    if (k == at) continue;
    const int i = index_[k];
    const Real multiplier = value_[k] / pivot;
    removeFromRow(i, col);
    multiplier_[i] = multiplier;
    state_[i] = kMultiplier;
    multiplierRow_.push_back(i);
    factors_->pushL(i, multiplier);
  }
  factors_->closePivot(row);
  activeNz_ -= column.count;
  touched_ += static_cast<double>(column.end - column.begin);
  --colsLeft_;
}

// Updates one entry; false when it vanished and another one took its place.
template <class Real>
inline bool Nucleus<Real>::updateEntry(int col, NzIndex k, Real factor) {
  Column &column = column_[col];
  const int row = index_[k];
  value_[k] -= multiplier_[row] * factor;
  if (std::abs(value_[k]) > tol_.drop) return true;
  removeFromRow(row, col);
  --column.end;
  --column.count;
  --activeNz_;
  index_[k] = index_[column.end];
  value_[k] = value_[column.end];
  return false;
}

// Subtracts from a column its entry in the pivot row times the multipliers.
template <class Real>
void Nucleus<Real>::updateColumn(int col, int pivotRow) {
  Column &column = column_[col];
  const NzIndex at = find(column, pivotRow);
  const Real factor = value_[at];
  settleEntry(column, at);
  std::size_t hits = 0;
  if (multiplierRow_.size() <= kFewMultipliers) {
    touched_ += kVectorShare * column.count * static_cast<double>(multiplierRow_.size() + 1);
    for (const int i : multiplierRow_) {
      const NzIndex k = find(column, i);
      if (k == column.end) continue;
      ++hits;
      state_[i] = kHit;
      updateEntry(col, k, factor);
    }
  } else {
    touched_ += column.count;
    for (NzIndex k = column.active; k < column.end;) {
      if (state_[index_[k]] != kMultiplier) {
        ++k;
        continue;
      }
      ++hits;
      state_[index_[k]] = kHit;
      if (updateEntry(col, k, factor)) ++k;
    }
  }
  addFill(col, factor, hits);
}

// Entries of the updated column in rows where it had none, and the marks of the others reset.
template <class Real>
void Nucleus<Real>::addFill(int col, Real factor, std::size_t hits) {
  if (hits < multiplierRow_.size()) makeRoom(col, static_cast<int>(multiplierRow_.size() - hits));
  Column &column = column_[col];
  for (const int i : multiplierRow_) {
    if (state_[i] == kHit) {
      state_[i] = kMultiplier;
      continue;
    }
    const Real value = -multiplier_[i] * factor;
    if (std::abs(value) <= tol_.drop) continue;
    index_[column.end] = i;
    value_[column.end++] = value;
    ++column.count;
    ++activeNz_;
    addToRow(i, col);
  }
  touched_ += static_cast<double>(multiplierRow_.size());
}

template <class Real>
bool Nucleus<Real>::worthDense() const {
  return colsLeft_ >= kDenseMinDim &&
         static_cast<double>(activeNz_) >= kDenseDensity * colsLeft_ * colsLeft_;
}

template <class Real>
void Nucleus<Real>::finishDense() {
  dense_.begin();
  const int numCols = static_cast<int>(column_.size());
  const int numRows = static_cast<int>(row_.size());
  for (int row = 0; row < numRows; ++row)
    if (row_[row].count > 0) dense_.addRow(row, numRows);
  for (int col = 0; col < numCols; ++col)
    if (column_[col].open) {
      refreshMax(col);  // settles all entries of pivoted rows
      dense_.addCol(col);
    }
  dense_.allocate();
  const auto fill = [this](int col, Real *to) {
    for (NzIndex k = column_[col].active; k < column_[col].end; ++k)
      to[dense_.place(index_[k])] = value_[k];
  };
  const auto pushU = [this](int col) {
    const Column &column = column_[col];
    for (NzIndex k = column.begin; k < column.active; ++k) factors_->pushU(index_[k], value_[k]);
  };
  factors_->work += kUnitsDense * dense_.factor(tol_.pivot, fill);
  dense_.hand(tol_.drop, var_, pushU, *factors_);
  colsLeft_ = 0;
}

template <class Real>
void Nucleus<Real>::removeFromRow(int row, int col) {
  Row &r = row_[row];
  int *const first = rowCol_.data() + r.begin;
  const int at = findIndex(first, r.count, col);
  first[at] = first[--r.count];
}

template <class Real>
void Nucleus<Real>::addToRow(int row, int col) {
  Row &r = row_[row];
  if (r.count == r.room) {
    const int room = r.count + r.count / kRoomShare + kRoomExtra;
    reserveRows(room);
    std::copy_n(rowCol_.begin() + r.begin, r.count, rowCol_.begin() + rowUsed_);
    r.begin = rowUsed_;
    r.room = room;
    rowUsed_ += room;
  }
  rowCol_[r.begin + r.count++] = col;
}

template <class Real>
void Nucleus<Real>::makeRoom(int col, int extra) {
  Column &column = column_[col];
  if (column.end + extra <= column.limit) return;
  const NzIndex length = column.end - column.begin;
  const NzIndex room = length + extra + length / kRoomShare + kRoomExtra;
  reserveEntries(room);
  std::copy_n(index_.begin() + column.begin, length, index_.begin() + used_);
  std::copy_n(value_.begin() + column.begin, length, value_.begin() + used_);
  column.active += used_ - column.begin;
  column.begin = used_;
  column.end = used_ + length;
  column.limit = used_ + room;
  used_ += room;
}

template <class Real>
void Nucleus<Real>::reserveEntries(NzIndex extra) {
  const NzIndex size = static_cast<NzIndex>(index_.size());
  if (used_ + extra <= size) return;
  const std::size_t wanted =
      static_cast<std::size_t>(std::max(used_ + extra, size + size / 2 + 64));
  index_.resize(wanted);
  value_.resize(wanted);
}

template <class Real>
void Nucleus<Real>::reserveRows(NzIndex extra) {
  const NzIndex size = static_cast<NzIndex>(rowCol_.size());
  if (rowUsed_ + extra <= size) return;
  rowCol_.resize(static_cast<std::size_t>(std::max(rowUsed_ + extra, size + size / 2 + 64)));
}

template class Nucleus<double>;
template class Nucleus<long double>;

}  // namespace tarvik::lu
