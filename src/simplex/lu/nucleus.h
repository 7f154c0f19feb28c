// The nucleus of a basis, what is left without singletons, by Gaussian elimination with
// Markowitz's criterion (1957) and threshold partial pivoting, after Suhl and Suhl (1990),
// Computing sparse LU factorizations for large-scale linear programming bases.
//
// The active submatrix is kept by columns with values, and by rows with the pattern only. Both
// are linked in lists by their count. The search looks at a few of the shortest columns and
// rows for the entry with the smallest (row count - 1)(column count - 1) among those that are not
// smaller than the threshold times the largest of their column. In a column's storage its
// entries in pivoted rows, which belong to U, come first, then the active ones: an entry
// goes over to U by one exchange. A pivot without multipliers changes no value, so that the columns
// in its row are not even looked at: their entries go over when the column is scanned next.
// When the active submatrix has become dense, it is finished as
// a dense matrix.
//
// A column whose active entries are all below the pivot tolerance has no pivot now, but
// elimination in its rows may give it one: it is set aside, and dropped as dependent only if it
// is still without one at the end.
#pragma once

#include "simplex/lu/count_lists.h"
#include "simplex/lu/dense_finish.h"
#include "simplex/lu/lu_factors.h"

namespace tarvik::lu {

template <class Real>
class Nucleus {
 public:
  struct Tolerances {
    Real markowitz, pivot, drop;
    int pairLimit;  // of columns that share their only two rows, pivoted before all others
  };
  // Pivots the given structural variables on rows without pivot, as far as they go.
  void factor(const BasisMatrix<Real> &matrix, const Vec<VarIndex> &vars,
              const Tolerances &tolerances, LuFactors<Real> &factors);

 private:
  struct Column {
    NzIndex begin = 0;   // entries that belong to U
    NzIndex active = 0;  // active entries
    NzIndex end = 0;
    NzIndex limit = 0;  // end of the room
    int count = 0;      // active entries of rows without pivot
    bool open = false;  // neither pivoted nor dropped
  };
  struct Row {
    NzIndex begin = 0;
    int count = 0;
    int room = 0;
  };
  // A row without pivot, one with a multiplier of the current pivot, such a row that the column
  // in work has too, and a pivoted row.
  enum RowState : char { kActive, kMultiplier, kHit, kPivoted };
  struct Choice {
    double merit = 1e300;
    Real size = 0;
    int row = -1, col = -1;
  };

  void load(const BasisMatrix<Real> &matrix);
  void loadRows(int numRows);
  bool choosePivot();
  bool choosePair();
  bool isPair(int col, const int *rows) const;
  void searchColumn(int col);
  bool searchRow(int row);
  void consider(int row, int col, double merit, Real size);
  bool refreshMax(int col);
  void dropOpenColumns();
  void eliminate(int row, int col);
  void openPivotColumn(int row, int col);
  void updateColumn(int col, int pivotRow);
  bool updateEntry(int col, NzIndex k, Real factor);
  void addFill(int col, Real factor, std::size_t hits);
  void settleEntry(Column &column, NzIndex at);
  NzIndex find(const Column &column, int row) const;
  bool worthDense() const;
  void finishDense();
  void removeFromRow(int row, int col);
  void addToRow(int row, int col);
  void makeRoom(int col, int extra);
  void reserveEntries(NzIndex extra);
  void reserveRows(NzIndex extra);

  LuFactors<Real> *factors_ = nullptr;
  Tolerances tol_{};
  Vec<VarIndex> var_;  // variable of a column
  Vec<Column> column_;
  Vec<Real> largest_;  // largest active entry of a column, -1 when not known
  Vec<int> index_;     // the columns' pool
  Vec<Real> value_;
  NzIndex used_ = 0;
  Vec<Row> row_;
  Vec<int> rowCol_;  // the rows' pool
  NzIndex rowUsed_ = 0;
  CountLists colLists_, rowLists_;
  int colsLeft_ = 0;
  int maxCount_ = 0;
  int pairs_ = 0;  // chosen so far
  NzIndex activeNz_ = 0;
  double touched_ = 0;  // entries looked at

  Choice choice_;
  Vec<Real> multiplier_;  // of the rows of the pivot column, else 0
  Vec<int> multiplierRow_;
  Vec<RowState> state_;
  DenseFinish<Real> dense_;
};

extern template class Nucleus<double>;
extern template class Nucleus<long double>;

}  // namespace tarvik::lu
