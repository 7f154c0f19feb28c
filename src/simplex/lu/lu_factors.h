// The factors B = L R U that the factorization makes, solves read and updates change.
//
// Rows, columns and pivots all carry the same labels: pivot p is the one on row p, and column p
// of U belongs to the variable pivoted there. L is unit lower triangular and U upper triangular
// with respect to the pivot order, both without their diagonals in the stores; the diagonal of
// U is `pivot`. Each of the two is kept by columns (for FTRAN) and by rows (for BTRAN). R, the
// row transformations of updates, belongs to forrest_tomlin.h.
//
// Most pivots of a basis are trivial: an empty vector and a diagonal of one, with nothing to
// do in a solve. A Triangle therefore lists only the others, in pivot order. A vector which is
// in no list may get its first entry from an update; it is then appended just before the
// pivot that the update moves to the end, which is a valid place because no vector after it
// depended on it before. So the lists of two Triangles of the same matrix may order the pivots
// differently, but each orders those it has validly.
#pragma once

#include "base/memory.h"
#include "base/types.h"
#include "simplex/lu/packed_vectors.h"

namespace tarvik::lu {

template <class Real>
struct Triangle {
  PackedVectors<Real> vectors;
  Vec<int> order;  // labels of the nontrivial vectors in pivot order; -1: moved to the end
  Vec<int> place;  // position of a label in order, or -1

  void reset(int m) {
    vectors.reset(m);
    order.clear();
    place.assign(static_cast<std::size_t>(m), -1);
  }
  void enlist(int p) {
    place[p] = static_cast<int>(order.size());
    order.push_back(p);
  }
  void moveToEnd(int p) {
    if (place[p] >= 0) order[place[p]] = -1;
    enlist(p);
  }
};

template <class Real>
class LuFactors {
 public:
  Triangle<Real> lCols, lRows, uCols, uRows;
  Vec<Real> pivot;
  Vec<VarIndex> basicVar;    // variable pivoted on a row, -1 while there is none
  Vec<RowIndex> pivotOrder;  // of the last factorization
  Vec<VarIndex> dropped;     // dependent variables met
  double work = 0;           // counted units of the factorization

  void reset(int m);
  int size() const { return static_cast<int>(pivot.size()); }

  // The factorization states its pivots in order. A logical's is trivial. For others the
  // columns of U and L are open between openPivot and closePivot for pushU and pushL.
  void addLogical(RowIndex row, VarIndex var);
  void openPivot(RowIndex row, VarIndex var, Real value);
  void pushU(RowIndex row, Real value) { uCols.vectors.push(row, value); }
  void pushL(RowIndex row, Real value) { lCols.vectors.push(row, value); }
  void closePivot(RowIndex row);
  bool pivoted(RowIndex row) const { return basicVar[row] >= 0; }

  // Once all pivots are known: makes the row-wise copies and the lists.
  void finish();

 private:
  void makeRows(const Triangle<Real> &cols, Triangle<Real> &rows, int spare);

  Vec<int> rowLength_;
};

extern template class LuFactors<double>;
extern template class LuFactors<long double>;

// The matrix that bases are made of: structural columns and unit columns of logicals.
template <class Real>
struct BasisMatrix {
  const NzIndex *start = nullptr;
  const int *index = nullptr;
  const Real *value = nullptr;
  int numCols = 0;
  int numRows = 0;
};

}  // namespace tarvik::lu
