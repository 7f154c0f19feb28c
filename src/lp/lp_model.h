// The currency of the kernels: minimise cost'x + offset subject to
//   rowLower <= A x <= rowUpper,  colLower <= x <= colUpper.
// A is stored by columns; a row-wise copy is made by whoever needs one. Infinite bounds are
// +-kInf (anything at or beyond kInfBound counts as infinite). There are no names here.
#pragma once

#include "base/sparse_matrix.h"

namespace tarvik {

struct LpModel {
  int numRows = 0;
  int numCols = 0;
  SparseMatrix a;  // by columns: numMajor == numCols, numMinor == numRows
  Vec<double> cost, colLower, colUpper;
  Vec<double> rowLower, rowUpper;
  double offset = 0;
};

// Status of a variable (column or row logical) with respect to a basis. For a row the bounds
// are those of its activity: a row "at lower" has its activity at rowLower.
enum class VarStatus : std::int8_t { Basic, AtLower, AtUpper, Free, Superbasic };

struct Basis {
  Vec<VarStatus> col, row;
  bool empty() const { return col.empty() && row.empty(); }
};

// By the numbers that logs and callers know.
enum class LpStatus {
  NotSolved = 1,
  Optimal = 2,
  Infeasible = 3,
  InfeasibleOrUnbounded = 4,
  Unbounded = 5,
  Cutoff = 6,  // the dual objective exceeds the cutoff
  IterationLimit = 7,
  TimeLimit = 9,
  Interrupted = 11,
  Numeric = 12,  // numerical trouble that could not be repaired
  WorkLimit = 16,
  MemoryLimit = 17,
  Callback = 100,  // a user callback aborted the solve; without a number of its own
};

// Signs: with y = rowDual and d = colDual, d = cost - A'y. At an optimum of a minimization
// d_j >= 0 for a column at its lower bound and <= 0 at its upper one; y_i >= 0 for a row at its
// lower bound and <= 0 at its upper one.
struct LpSolution {
  LpStatus status = LpStatus::NotSolved;
  Vec<double> colValue, rowActivity, rowDual, colDual;
  Basis basis;
  double objective = 0;
  // The proof of infeasibility: y such that y'A x >= y'b has no solution within the column
  // bounds (empty unless status is Infeasible and one was found), or the unbounded ray.
  Vec<double> farkas;
  Vec<double> ray;
  // The variable (columns first, rows behind) whose row of the simplex tableau shows infeasibility
  // or whose column shows unboundedness; -1 when there is none to name.
  int provingVar = -1;
  double iterations = 0;
};

}  // namespace tarvik
