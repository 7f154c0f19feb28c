// Finds rows of a sparse matrix that are linear combinations of others (Andersen, 1995, Finding all
// linearly dependent rows in large-scale linear programming).
//
// A row with an entry in a column that no other row has is in no dependence and leaves. Gaussian
// elimination looks for a pivot in the shortest column and takes its shortest row among those whose
// entry is large enough (Markowitz, 1957; threshold pivoting). A row of which nothing remains is
// dependent: its multipliers, kept row by row, lead back to the rows it consists of. All is done on
// copies, scaled by powers of two, and with a limit on the work; what is found is a suggestion to
// be checked with the true rows. Of dependences found one after the other, each uses rows that no
// other declares dependent.
//
// Entries stand in a hash table, so that a pivot costs what its own row is long, however long the
// others have become: on networks, where pivots merge nodes, this is the difference between n log n
// and the square of n.
#pragma once

#include <cstdint>
#include <queue>

#include "base/memory.h"

namespace tarvik::presolve {

// Values by row and column. What has been entered stays, with value 0 when it vanishes.
class EntryTable {
 public:
  EntryTable() { grow(1024); }
  // The value's place, null when there is none; valid until the next insertion.
  double *find(int row, int col);
  void insert(int row, int col, double value);

 private:
  static std::uint64_t keyOf(int row, int col) {
    return (static_cast<std::uint64_t>(row) + 1) << 32 | static_cast<std::uint32_t>(col);
  }
  std::size_t slotOf(std::uint64_t key) const;
  void grow(std::size_t size);

  struct Slot {
    std::uint64_t key = 0;  // 0: empty
    double value = 0;
  };
  Vec<Slot> slots_;
  std::size_t used_ = 0;
};

class RowElimination {
 public:
  struct Term {
    int index;
    double value;
  };

  // Rows are counted in the order of their arrival.
  explicit RowElimination(int numCols);
  void addRow(const Vec<Term> &entries);

  // Looks for dependent rows until all are found or so many entries have been touched.
  void run(double effortLimit);
  const Vec<int> &dependent() const { return dependent_; }
  // The dependent row (first, with multiplier 1) and others: multipliers with which they add up to
  // nothing but rounding errors.
  void combination(int dependentRow, Vec<Term> &rows);
  double effort() const { return effort_; }

 private:
  struct Row {
    double scale = 1;  // the given row times this is worked on
    int count = 0;     // entries that are not 0
    int order = -1;    // of the pivots
    bool active = true;
    Vec<int> cols;    // of its entries
    Vec<Term> steps;  // pivot rows and the multiples of them subtracted
  };
  struct Column {
    int count = 0;  // entries that are not 0 in active rows
    Vec<int> rows;
  };
  // The shortest column comes first; outdated pairs are dropped when they come up.
  struct Candidate {
    int count, col;
    bool operator<(const Candidate &other) const {
      return count != other.count ? count > other.count : col > other.col;
    }
  };

  int nextColumn();
  double valueAt(int row, int col);
  void openColumn(int col);
  int choosePivotRow();
  void pivot(int row, int col);
  void subtract(int row, int pivotRow, double factor);
  void leave(int row);
  void lose(int col);

  EntryTable entries_;
  Vec<Row> rows_;
  Vec<Column> cols_;
  Vec<int> singletons_;  // rows with one entry
  std::priority_queue<Candidate, Vec<Candidate>> candidates_;
  Vec<Term> column_;    // the column in work: active rows and values
  Vec<Term> pivotRow_;  // columns and values
  Vec<int> dependent_;
  Vec<double> weights_;  // by row, for combination()
  int pivots_ = 0;
  double effort_ = 0;
};

}  // namespace tarvik::presolve
