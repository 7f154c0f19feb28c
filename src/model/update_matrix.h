// The part of an update that touches the coefficient matrix. prepare() makes all room and
// workspace, commit() then works in place: pending columns are appended, pending rows and new
// coefficients are spread into gaps opened from the back, and one pass removes deleted rows and
// columns. Everything before that pass is in the extended numbering of the pending record.
#pragma once

#include "model/pending_changes.h"

namespace tarvik {

class MatrixUpdate {
 public:
  // rangeRows: the rows (extended numbering) that get an auxiliary column with coefficient 1.
  void prepare(SparseMatrix &a, const PendingChanges &p, const Vec<int> &rangeRows,
               double tolerance);
  void commit(SparseMatrix &a, PendingChanges &p, const Vec<int> &rangeRows) noexcept;
  // Removes marked rows and columns; an empty mark vector marks nothing. newRow is workspace of
  // one entry a row when rows are removed.
  void removeMarked(SparseMatrix &a, const Vec<char> &dropCol, const Vec<char> &dropRow,
                    const Vec<int> &newRow, int keptRows) noexcept;

  // Whether more has changed than that rows were appended.
  bool changedOldEntries() const { return changedOldEntries_; }
  // Entries moved, for the account of update work.
  double work() const { return work_; }

 private:
  struct Change {
    int row, col;
    double val;
  };

  void sortChanges(const CoefChanges &changes, int numCols);
  std::size_t countInsertions(const SparseMatrix &a);
  void appendColumns(SparseMatrix &a, const PendingColumns &cols,
                     const Vec<int> &rangeRows) noexcept;
  void insertRows(SparseMatrix &a, const PendingRows &rows, int baseRows) noexcept;
  void applyChanges(SparseMatrix &a) noexcept;
  void applyColumnChanges(SparseMatrix &a, std::size_t from, std::size_t to) noexcept;

  double tolerance_ = 0;
  Vec<NzIndex> gap_;     // per column: first the size of its gap, then the gap's next position
  Vec<Change> changes_;  // by column, in the order given within one
  Vec<NzIndex> rowAt_;   // per row: position in the column at hand, -1 absent
  Vec<int> inserted_;    // positions of the changes that become new entries
  bool hasZeros_ = false;
  bool changedOldEntries_ = false;
  double work_ = 0;
};

}  // namespace tarvik
