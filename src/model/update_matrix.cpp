#include "model/update_matrix.h"

#include <algorithm>
#include <cmath>
#include <numeric>

#include "model/growth.h"

namespace tarvik {

void MatrixUpdate::prepare(SparseMatrix &a, const PendingChanges &p, const Vec<int> &rangeRows,
                           double tolerance) {
  tolerance_ = tolerance;
  const int numCols = p.allVars() + static_cast<int>(rangeRows.size());
  const std::size_t numChanges = p.coefs.row.size();
  std::size_t newEntries = p.cols.a.index.size() + p.rows.a.index.size() + rangeRows.size();
  if (numChanges > 0) {
    rowAt_.assign(p.allConstrs(), -1);
    sortChanges(p.coefs, numCols);
    const std::size_t insertions = countInsertions(a);
    inserted_.reserve(insertions);
    newEntries += insertions;
  }
  if (numChanges > 0 || !p.rows.a.index.empty()) gap_.assign(numCols, 0);
  makeRoomFor(a.start, static_cast<std::size_t>(numCols) + 1);
  makeRoom(a.index, newEntries);
  makeRoom(a.value, newEntries);
}

// The changes themselves are sorted, not references to them: what follows reads them in sequence.
void MatrixUpdate::sortChanges(const CoefChanges &changes, int numCols) {
  const int count = static_cast<int>(changes.col.size());
  changes_.resize(count);
  if (static_cast<std::size_t>(count) * 8 < static_cast<std::size_t>(numCols)) {
    for (int k = 0; k < count; ++k) changes_[k] = {changes.row[k], changes.col[k], changes.val[k]};
    std::stable_sort(changes_.begin(), changes_.end(),
                     [](const Change &x, const Change &y) { return x.col < y.col; });
    return;
  }
  Vec<int> next(static_cast<std::size_t>(numCols) + 1, 0);
  for (const int j : changes.col) ++next[j + 1];
  std::partial_sum(next.begin(), next.end(), next.begin());
  for (int k = 0; k < count; ++k)
    changes_[next[changes.col[k]]++] = {changes.row[k], changes.col[k], changes.val[k]};
}

// At most so many changes concern entries that the matrix does not hold.
std::size_t MatrixUpdate::countInsertions(const SparseMatrix &a) {
  std::size_t count = 0;
  for (std::size_t from = 0; from < changes_.size();) {
    const int j = changes_[from].col;
    const bool present = j < a.numMajor;
    for (NzIndex k = present ? a.start[j] : 0; present && k < a.start[j + 1]; ++k)
      rowAt_[a.index[k]] = k;
    for (; from < changes_.size() && changes_[from].col == j; ++from)
      count += rowAt_[changes_[from].row] < 0;
    for (NzIndex k = present ? a.start[j] : 0; present && k < a.start[j + 1]; ++k)
      rowAt_[a.index[k]] = -1;
  }
  return count;
}

void MatrixUpdate::commit(SparseMatrix &a, PendingChanges &p, const Vec<int> &rangeRows) noexcept {
  changedOldEntries_ = p.cols.count() > 0 || !rangeRows.empty() || !changes_.empty();
  appendColumns(a, p.cols, rangeRows);
  a.numMinor = p.allConstrs();
  if (!p.rows.a.index.empty()) insertRows(a, p.rows, p.baseConstrs);
  if (!changes_.empty()) applyChanges(a);
}

void MatrixUpdate::appendColumns(SparseMatrix &a, const PendingColumns &cols,
                                 const Vec<int> &rangeRows) noexcept {
  const NzIndex shift = a.numNz();
  a.index.insert(a.index.end(), cols.a.index.begin(), cols.a.index.end());
  a.value.insert(a.value.end(), cols.a.value.begin(), cols.a.value.end());
  for (int j = 0; j < cols.count(); ++j) a.start.push_back(shift + cols.a.start[j + 1]);
  for (const int row : rangeRows) {
    a.index.push_back(row);
    a.value.push_back(1.0);
    a.start.push_back(static_cast<NzIndex>(a.index.size()));
  }
  a.numMajor += cols.count() + static_cast<int>(rangeRows.size());
  work_ += static_cast<double>(cols.a.index.size());
}

void MatrixUpdate::insertRows(SparseMatrix &a, const PendingRows &rows, int baseRows) noexcept {
  for (const int j : rows.a.index) ++gap_[j];
  work_ += openGaps(a, gap_);
  for (int i = 0; i < rows.count(); ++i) {
    for (NzIndex k = rows.a.start[i]; k < rows.a.start[i + 1]; ++k) {
      const NzIndex at = gap_[rows.a.index[k]]++;
      a.index[at] = baseRows + i;
      a.value[at] = rows.a.value[k];
    }
  }
}

void MatrixUpdate::applyChanges(SparseMatrix &a) noexcept {
  std::fill(gap_.begin(), gap_.end(), 0);
  for (std::size_t from = 0; from < changes_.size();) {
    std::size_t to = from + 1;
    while (to < changes_.size() && changes_[to].col == changes_[from].col) ++to;
    applyColumnChanges(a, from, to);
    from = to;
  }
  if (inserted_.empty()) return;
  work_ += openGaps(a, gap_);
  for (const int k : inserted_) {
    const Change &change = changes_[k];
    if (std::abs(change.val) < tolerance_) continue;
    const NzIndex at = gap_[change.col]++;
    a.index[at] = change.row;
    a.value[at] = change.val;
  }
}

// Overwrites existing entries; the first change of an absent entry becomes its insertion and
// later ones replace its value. Values below the tolerance remove the entry.
void MatrixUpdate::applyColumnChanges(SparseMatrix &a, std::size_t from, std::size_t to) noexcept {
  const int j = changes_[from].col;
  for (NzIndex k = a.start[j]; k < a.start[j + 1]; ++k) rowAt_[a.index[k]] = k;
  const std::size_t firstInserted = inserted_.size();
  for (std::size_t c = from; c < to; ++c) {
    const Change &change = changes_[c];
    NzIndex &at = rowAt_[change.row];
    if (at >= 0) {
      const bool small = std::abs(change.val) < tolerance_;
      a.value[at] = small ? 0 : change.val;
      hasZeros_ = hasZeros_ || small;
    } else if (at == -1) {
      at = -2 - static_cast<NzIndex>(c);
      inserted_.push_back(static_cast<int>(c));
    } else {
      changes_[-2 - at].val = change.val;
    }
  }
  for (std::size_t k = firstInserted; k < inserted_.size(); ++k)
    gap_[j] += std::abs(changes_[inserted_[k]].val) >= tolerance_;
  for (NzIndex k = a.start[j]; k < a.start[j + 1]; ++k) rowAt_[a.index[k]] = -1;
  for (std::size_t c = from; c < to; ++c) rowAt_[changes_[c].row] = -1;
  work_ += a.length(j);
}

void MatrixUpdate::removeMarked(SparseMatrix &a, const Vec<char> &dropCol, const Vec<char> &dropRow,
                                const Vec<int> &newRow, int keptRows) noexcept {
  if (dropCol.empty() && dropRow.empty() && !hasZeros_) return;
  changedOldEntries_ = true;
  const bool keepAllRows = dropRow.empty();
  NzIndex kept = 0, begin = 0;
  int keptCols = 0;
  for (int j = 0; j < a.numMajor; ++j) {
    const NzIndex end = a.start[j + 1];
    if (dropCol.empty() || !dropCol[j]) {
      for (NzIndex k = begin; k < end; ++k) {
        const int row = a.index[k];
        if ((!keepAllRows && dropRow[row]) || a.value[k] == 0) continue;
        a.index[kept] = keepAllRows ? row : newRow[row];
        a.value[kept++] = a.value[k];
      }
      a.start[++keptCols] = kept;
    }
    begin = end;
  }
  work_ += static_cast<double>(a.numMajor) + static_cast<double>(begin);
  a.numMajor = keptCols;
  a.numMinor = keptRows;
  a.start.resize(static_cast<std::size_t>(keptCols) + 1);
  a.index.resize(kept);
  a.value.resize(kept);
}

}  // namespace tarvik
