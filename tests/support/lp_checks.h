// Assertions on LP solutions, bases and certificates, shared by the kernels' tests.
#pragma once

#include <gtest/gtest.h>

#include <cmath>
#include <vector>

#include "lp/check.h"
#include "lp/lp_model.h"

namespace tarvik::test {

// The optimality conditions, within tol.
inline ::testing::AssertionResult isOptimal(const LpModel &lp, const LpSolution &solution,
                                            double tol) {
  if (static_cast<int>(solution.colValue.size()) != lp.numCols ||
      static_cast<int>(solution.rowDual.size()) != lp.numRows ||
      static_cast<int>(solution.colDual.size()) != lp.numCols ||
      static_cast<int>(solution.rowActivity.size()) != lp.numRows)
    return ::testing::AssertionFailure() << "vectors of wrong length";
  const SolutionQuality q = checkSolution(lp, solution, tol);
  const auto fail = [&](const char *what, double value) {
    return ::testing::AssertionFailure() << what << " " << value;
  };
  if (q.boundViolation > tol) return fail("bound violation", q.boundViolation);
  if (q.rowViolation > tol) return fail("row violation", q.rowViolation);
  if (q.activityResidual > tol) return fail("activity residual", q.activityResidual);
  if (q.dualViolation > tol) return fail("dual violation", q.dualViolation);
  if (q.dualResidual > tol) return fail("dual residual", q.dualResidual);
  if (q.complementarity > 10 * tol) return fail("complementarity", q.complementarity);
  if (std::fabs(q.objective - solution.objective) > tol * std::max(1.0, std::fabs(q.objective)))
    return fail("objective off by", q.objective - solution.objective);
  return ::testing::AssertionSuccess();
}

// On the edge of feasibility tolerances decide: an optimum of a model that is infeasible, strictly
// speaking, is right when its point and its duals hold within tol.
inline bool edgeOfFeasibility(const LpModel &lp, const LpSolution &found,
                              const LpSolution &expected, double tol) {
  return found.status == LpStatus::Optimal && expected.status == LpStatus::Infeasible &&
         isOptimal(lp, found, tol);
}

// True when the basis matrix is regular (elimination with row pivoting).
inline bool isRegular(std::vector<std::vector<double>> mat, double pivotTol = 1e-9) {
  const int m = static_cast<int>(mat.size());
  for (int k = 0; k < m; ++k) {
    int best = k;
    for (int i = k + 1; i < m; ++i)
      if (std::fabs(mat[i][k]) > std::fabs(mat[best][k])) best = i;
    if (std::fabs(mat[best][k]) < pivotTol) return false;
    std::swap(mat[k], mat[best]);
    for (int i = k + 1; i < m; ++i) {
      const double factor = mat[i][k] / mat[k][k];
      for (int j = k; j < m; ++j) mat[i][j] -= factor * mat[k][j];
    }
  }
  return true;
}

// Exactly numRows basic variables, a regular matrix, nonbasic variables at their bounds, and
// basic ones without reduced cost.
inline ::testing::AssertionResult isBasicSolution(const LpModel &lp, const LpSolution &solution,
                                                  double tol) {
  if (static_cast<int>(solution.basis.col.size()) != lp.numCols ||
      static_cast<int>(solution.basis.row.size()) != lp.numRows)
    return ::testing::AssertionFailure() << "basis of wrong length";
  std::vector<std::vector<double>> columns;
  for (int v = 0; v < lp.numCols + lp.numRows; ++v) {
    const bool isCol = v < lp.numCols;
    const int at = isCol ? v : v - lp.numCols;
    const VarStatus status = isCol ? solution.basis.col[at] : solution.basis.row[at];
    const double value = isCol ? solution.colValue[at] : solution.rowActivity[at];
    const double dual = isCol ? solution.colDual[at] : solution.rowDual[at];
    const double low = isCol ? lp.colLower[at] : lp.rowLower[at];
    const double up = isCol ? lp.colUpper[at] : lp.rowUpper[at];
    const char *kind = isCol ? "column " : "row ";
    if (status == VarStatus::Basic) {
      std::vector<double> column(lp.numRows, 0.0);
      if (!isCol) column[at] = -1;
      for (NzIndex k = isCol ? lp.a.start[at] : 0; k < (isCol ? lp.a.start[at + 1] : 0); ++k)
        column[lp.a.index[k]] += lp.a.value[k];
      columns.push_back(column);
      if (std::fabs(dual) > tol)
        return ::testing::AssertionFailure() << kind << at << " basic with dual " << dual;
    } else if (status == VarStatus::AtLower ? std::fabs(value - low) > tol
               : status == VarStatus::AtUpper
                   ? std::fabs(value - up) > tol
                   : status == VarStatus::Superbasic || !isInf(low) || !isInf(up)) {
      return ::testing::AssertionFailure() << kind << at << " is not where its status says";
    }
  }
  if (static_cast<int>(columns.size()) != lp.numRows)
    return ::testing::AssertionFailure() << columns.size() << " basic of " << lp.numRows;
  if (!isRegular(columns)) return ::testing::AssertionFailure() << "singular basis";
  return ::testing::AssertionSuccess();
}

}  // namespace tarvik::test
