// Updates of the factors when one basis column is replaced (Forrest and Tomlin, 1972, Updated
// triangular factors of the basis to maintain sparsity in the product form simplex method).
//
// The new column, transformed by L and the row transformations so far, is the spike: it takes
// the place of column p of U, and pivot p moves to the end of the pivot order. That leaves row p
// below the diagonal; it is eliminated by the rows after it, which makes one more row
// transformation and the new diagonal. With z the solution of U'z = e_p, the multipliers are the
// entries of z / z_p. As the simplex method computes the row of the leaving variable by BTRAN of
// e_p, z is mostly at hand: every BTRAN of a unit vector leaves it here.
//
// The new diagonal comes out twice, as the transformed spike entry and as the old diagonal
// times the entry of the entering column in the leaving row. Where the two disagree, the update is
// refused before anything has changed.
#pragma once

#include "simplex/lu/triangular_solve.h"

namespace tarvik::lu {

enum class UpdateCheck { Good, Doubtful, Refused };

template <class Real>
class ForrestTomlin {
 public:
  // Forgets all updates; dimension m.
  void reset(int m);
  int count() const { return static_cast<int>(row_.size()); }
  NzIndex numNz() const { return static_cast<NzIndex>(index_.size()); }

  // The row transformations in FTRAN and BTRAN; return the number of entries touched.
  double applyForward(SparseVec<Real> &x) const;
  double applyBackward(SparseVec<Real> &y) const;
  // Calls visit(row, index, value, length) in the order of BTRAN: what multiples of entry row of
  // the vector are to be added to its other entries.
  template <class Visitor>
  void forEachBackward(Visitor &&visit) const {
    for (int k = count() - 1; k >= 0; --k)
      visit(row_[k], index_.data() + start_[k], value_.data() + start_[k],
            static_cast<int>(start_[k + 1] - start_[k]));
  }

  // Keeps a column transformed by L and the row transformations.
  void keepSpike(const SparseVec<Real> &x);
  // Keeps z, the solution of U'z = c e_p for some number c.
  void keepRow(RowIndex p, const SparseVec<Real> &z);

  // Replaces column p by the spike. alpha is the entry at p of the entering column. Returns
  // whether it was accepted; adds the entries touched to work.
  UpdateCheck update(RowIndex p, Real alpha, Real dropTol, LuFactors<Real> &factors,
                     TriangularSolver<Real> &solver, double &work);

 private:
  struct Packed {
    Vec<int> index;
    Vec<Real> value;
    int owner = -1;  // the pivot that a row belongs to, 0 for a spike; -1: nothing kept
    void pack(const SparseVec<Real> &x);
  };

  double solveRow(RowIndex p, Real dropTol, const LuFactors<Real> &factors,
                  TriangularSolver<Real> &solver);
  Real newDiagonal(RowIndex p);
  double replaceColumn(RowIndex p, LuFactors<Real> &factors);
  void addTransformation(RowIndex p, Real dropTol);

  // Transformation k adds the multiples of other entries to entry row_[k].
  Vec<RowIndex> row_;
  Vec<NzIndex> start_;
  Vec<int> index_;
  Vec<Real> value_;

  Packed spike_, kept_;
  SparseVec<Real> work_;  // zero between calls
};

extern template class ForrestTomlin<double>;
extern template class ForrestTomlin<long double>;

}  // namespace tarvik::lu
