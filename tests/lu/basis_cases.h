// Bases of many shapes and independent checks of solves against the matrix itself.
#pragma once

#include <string>

#include "base/random.h"
#include "simplex/lu/factor.h"

namespace tarvik::test {

// A matrix with more columns than rows, and a basis of some of them and of logicals.
struct BasisCase {
  std::string name;
  int m = 0;
  SparseMatrix a;
  Vec<VarIndex> head;

  explicit BasisCase(int rows = 0) : m(rows) { a.clear(rows); }
  VarIndex logical(RowIndex row) const { return a.numMajor + row; }
  int nextColumn() const { return a.numMajor; }
};

// Shapes that exercise the phases: logicals only, permuted triangular (column singletons first
// or row singletons first), random sparse, dense blocks, staircase, arrow, network trees.
BasisCase logicalBasis(int m, Random &random);
BasisCase triangularBasis(int m, bool byRows, Random &random);
BasisCase randomBasis(int m, int perColumn, double logicalShare, Random &random);
BasisCase denseBlockBasis(int m, int block, Random &random);
BasisCase staircaseBasis(int stages, int stageRows, Random &random);
BasisCase networkBasis(int m, Random &random);
// Adds random columns that a basis can take in by updates.
void addSpareColumns(BasisCase &basis, int count, int perColumn, Random &random);

// Shuffles rows and the heading.
void permute(BasisCase &basis, Random &random);

template <class Real>
struct LoadedBasis {
  BasisCase basis;
  RawVec<Real> values;
  Factor<Real> factor;
  SingularRepair repair;
  WorkMeter work;

  explicit LoadedBasis(BasisCase source);
  void refactor() { factor.factor(basis.head, repair, work); }
  // The column of a variable as a right-hand side.
  void loadColumn(VarIndex var, SparseVec<Real> &x) const;
  // Largest error of B x - b and B'y - c, relative to the largest product that entered.
  double ftranError(const SparseVec<Real> &x, const Vec<Real> &b) const;
  double btranError(const SparseVec<Real> &y, const Vec<Real> &c) const;
};

// A right-hand side with about the given share of nonzeros (at least one).
template <class Real>
void fillRandom(SparseVec<Real> &x, double density, Random &random);

// Solves one FTRAN and one BTRAN with random right-hand sides of the given density.
template <class Real>
double solveError(LoadedBasis<Real> &loaded, double density, double expectedDensity,
                  Random &random);

// True when entries outside of a valid list are zero and no position is listed twice.
template <class Real>
bool listIsRight(const SparseVec<Real> &x);

}  // namespace tarvik::test
