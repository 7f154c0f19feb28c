// Solves with one triangular factor, in place, in two variants.
//
// The plain one walks the factor's list of nontrivial pivots and passes over zeros; the list of
// the result's entries is then unknown. The symbolic one (Gilbert and Peierls, 1988, Sparse
// partial pivoting in time proportional to arithmetic operations) first finds, by depth-first
// search from the entries of the right-hand side, which positions can become nonzero, in
// topological order, and works on those only: its cost is proportional to the arithmetic
// done, not to the dimension. It pays while right-hand side and result are sparse, what Hall
// and McKinnon (2005) call hyper-sparse. It is tried when both are expected to be, and the
// search is given up when it turns out otherwise, so that at worst a small share of a plain
// solve is lost.
#pragma once

#include "simplex/lu/lu_factors.h"
#include "simplex/sparse_vec.h"

namespace tarvik::lu {

enum class Sweep { Forward, Backward };

template <class Real>
class TriangularSolver {
 public:
  void resize(int m);

  // Solves T x = b for the triangle T stored by columns (or T' x = b stored by rows); sweep says
  // which way the pivot order is to be walked. pivot is the diagonal, null when it is one.
  // Entries not above dropTol become zero. Returns the number of entries touched.
  template <Sweep sweep>
  double solve(const Triangle<Real> &triangle, const Real *pivot, Real dropTol,
               double expectedDensity, SparseVec<Real> &x);

 private:
  // A node of the search whose entries are not all looked at.
  struct OpenNode {
    NzIndex next, end;
    int node;
  };

  bool findPattern(const PackedVectors<Real> &vectors, const SparseVec<Real> &x, double budget);
  bool visit(const PackedVectors<Real> &vectors, int root, double budget);
  void undoMarks();
  double solvePattern(const PackedVectors<Real> &vectors, const Real *pivot, Real dropTol,
                      SparseVec<Real> &x);
  template <Sweep sweep>
  double solvePlain(const Triangle<Real> &triangle, const Real *pivot, Real dropTol,
                    SparseVec<Real> &x);

  Vec<char> mark_;       // positions found by the current search
  RawVec<int> pattern_;  // filled from the end, so that it reads in topological order
  int patternBegin_ = 0;
  Vec<OpenNode> stack_;
  int depth_ = 0;
  double searched_ = 0;  // entries looked at by the current search
};

extern template class TriangularSolver<double>;
extern template class TriangularSolver<long double>;

}  // namespace tarvik::lu
