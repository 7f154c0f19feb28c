// Scale factors for the matrix of an LP: a_scaled = row_i * a_ij * col_j. All factors are powers
// of two, so scaling and unscaling are exact. Costs, bounds and the model itself are untouched;
// whoever works on the scaled problem applies the factors.
//
// Geometric scaling (Fulkerson and Wolfe, 1962; Tomlin, 1975) divides rows and columns in turn
// by the geometric mean of their smallest and largest entry until the spread stops shrinking;
// equilibration brings the largest entry of every row and column into (1/2, 1].
#pragma once

#include "lp/lp_model.h"

namespace tarvik {

struct Scaling {
  Vec<double> row, col;  // both empty: no scaling
  bool active() const { return !row.empty() || !col.empty(); }
};

// scaleFlag: 0 none, 1 equilibrate, 2 geometric with columns equilibrated last, 3 geometric with
// rows and columns equilibrated last, -1 automatic (geometric unless the matrix is already well
// scaled). Geometric passes end once no column's largest entry exceeds its smallest by more than
// the square of `enough`; 0 makes them go on while they gain. An inactive Scaling comes back when
// there is nothing to scale.
Scaling computeScaling(const LpModel &lp, int scaleFlag, double enough = 0);

// Fills in the factors that are zero, from those that are not: columns are equilibrated, rows
// get the geometric mean. Vectors shorter than the model end in unknown factors. Two passes, where
// computeScaling() takes many.
Scaling completeScaling(const LpModel &lp, int scaleFlag, Scaling known);

}  // namespace tarvik
