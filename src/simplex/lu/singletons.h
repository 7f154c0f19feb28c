// The first phase of a factorization: logicals, column singletons and row singletons.
//
// A column with one entry in the rows that are left is pivoted there without any arithmetic:
// its other entries, in rows pivoted before, are its column of U. This may leave further columns
// with one entry. Then a row with one entry in the columns that are left is pivoted there: the
// other entries of that column, divided by the pivot, are a column of L and, as the row has no
// other entry, nothing else changes. Pivoting a row singleton makes no column singleton and
// vice versa, so that one pass of each is enough, and together they cost time linear in
// the nonzeros of the basis (Orchard-Hays, 1968; Suhl and Suhl, 1990). Neither needs a test of
// relative size: both are substitutions in a triangular matrix. What is left is the nucleus.
#pragma once

#include "simplex/lu/lu_factors.h"

namespace tarvik::lu {

template <class Real>
class Singletons {
 public:
  void run(const BasisMatrix<Real> &matrix, const Vec<VarIndex> &head, Real pivotTol,
           LuFactors<Real> &factors);

  // The structural variables that were neither pivoted nor dropped.
  const Vec<VarIndex> &left() const { return left_; }

 private:
  void pivotLogicals(const Vec<VarIndex> &head);
  void sweep();
  void countEntries();
  void listRows();
  void pivotColumns();
  void pivotRows();
  bool pivotColumn(int slot);
  bool pivotRow(RowIndex row, int slot);

  const BasisMatrix<Real> *matrix_ = nullptr;
  LuFactors<Real> *factors_ = nullptr;
  Real pivotTol_ = 0;
  double touched_ = 0;     // entries looked at
  Vec<VarIndex> left_;     // structural variables by slot; compressed at the end
  Vec<char> done_;         // slots pivoted or dropped
  Vec<int> colCount_;      // entries of a slot's column in unpivoted rows
  Vec<int> rowCount_;      // entries of an unpivoted row in slots not done
  Vec<NzIndex> rowStart_;  // the slots of every unpivoted row
  Vec<int> rowSlot_;
  Vec<int> queue_;
};

extern template class Singletons<double>;
extern template class Singletons<long double>;

}  // namespace tarvik::lu
