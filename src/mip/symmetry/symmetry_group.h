// The symmetries of a problem that a search uses: matrices of exchangeable places, and generators
// beside them. Immutable once built.
//
// It tells the orbits of the columns under those symmetries that keep a marking. For a matrix these
// are found exactly: places that are marked alike may be exchanged. Of the generators those are
// used that keep the marking; what they generate may be less than the whole stabilizer.
//
// Literature: Margot (2003); Pfetsch and Rehn (2019).
#pragma once

#include "base/solve_control.h"
#include "mip/symmetry/column_marks.h"
#include "mip/symmetry/column_matrices.h"
#include "mip/symmetry/union_find.h"

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

  // Under the symmetries that keep the marks.
  Orbits orbitsUnder(const ColumnMarks &marks, WorkMeter &work) const;

 private:
  struct Cell {
    int matrix, place, row;
  };
  struct Move {
    int generator, image;
  };
  void index();
  Vec<char> brokenGenerators(const ColumnMarks &marks) const;
  void uniteAlikePlaces(int matrix, const ColumnMarks &marks, const Vec<Cell> &marked,
                        UnionFind &sets) const;
  Orbits collect(UnionFind &sets) const;

  Vec<Permutation> generators_;
  Vec<ColumnMatrix> matrices_;
  Vec<int> moved_;  // all columns that some symmetry moves
  Vec<int> place_;  // of a column in moved_, -1: it stays
  // Where the columns of moved_ occur.
  Vec<NzIndex> cellStarts_, moveStarts_;
  Vec<Cell> cells_;
  Vec<Move> moves_;
};

}  // namespace tarvik
