// The symmetries of a problem that a search uses: matrices of exchangeable places, and generators
// beside them. Immutable once built.
//
// It tells the orbits of the columns under those symmetries that keep a marking. For a matrix these
// are found exactly: places that are marked alike may be exchanged. Of the generators those are
// used that keep the marking. Small groups of several generators that move the same columns are
// also followed decision by decision, as stabilizers of all columns decided so far.
//
// Literature: Margot (2003); Pfetsch and Rehn (2019).
#pragma once

#include "base/solve_control.h"
#include "base/union_find.h"
#include "mip/symmetry/column_marks.h"
#include "mip/symmetry/column_matrices.h"
#include "mip/symmetry/point_stabilizer.h"

namespace tarvik {

// Sets of more than one column: the members of orbit k are at starts[k] up to starts[k + 1].
struct Orbits {
  Vec<int> members, starts{0};

  int count() const { return static_cast<int>(starts.size()) - 1; }
};

class SymmetryGroup {
 public:
  SymmetryGroup(Vec<Permutation> generators, int numCols);

  const Vec<Permutation> &generators() const { return generators_; }  // beside the matrices
  const Vec<ColumnMatrix> &matrices() const { return matrices_; }

  // Generators of the small part that is followed by stabilizers, as permutations of points; which
  // point a column is, -1: none.
  const Vec<DensePermutation> &small() const { return small_; }
  int pointOf(int col) const { return place_[col] < 0 ? -1 : points_[place_[col]]; }

  // Under the symmetries that keep the marks, of which `stabilizer` are some, on the points.
  Orbits orbitsUnder(const ColumnMarks &marks, const Vec<DensePermutation> &stabilizer,
                     WorkMeter &work) const;

 private:
  struct Cell {
    int matrix, place, row;
  };
  struct Move {
    int generator, image;
  };
  void index();
  void findSmallPart(const Vec<Permutation> &all);
  Vec<char> brokenGenerators(const ColumnMarks &marks) const;
  void uniteAlikePlaces(int matrix, const ColumnMarks &marks, const Vec<Cell> &marked,
                        UnionFind &sets) const;
  Orbits collect(UnionFind &sets) const;

  Vec<Permutation> generators_;
  Vec<ColumnMatrix> matrices_;
  Vec<int> moved_;  // all columns that some symmetry moves
  Vec<int> place_;  // of a column in moved_, -1: it stays
  Vec<DensePermutation> small_;
  Vec<int> smallCols_, points_;  // of a point, of a place
  // Where the columns of moved_ occur.
  Vec<NzIndex> cellStarts_, moveStarts_;
  Vec<Cell> cells_;
  Vec<Move> moves_;
};

}  // namespace tarvik
