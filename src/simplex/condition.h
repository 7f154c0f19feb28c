// The condition number of the basis matrix in the user's scale: |B| |B^-1|, with the norm of the
// inverse estimated from a few solves or computed from all its columns.
#pragma once

#include "simplex/simplex.h"

namespace tarvik {

// In the 1-norm: a lower bound that is rarely more than a small factor off.
double conditionEstimate(Simplex &simplex, WorkMeter &work);
// In the 1-norm, with one solve a row.
double conditionExact(Simplex &simplex, WorkMeter &work);
// In the 2-norm: a lower bound by power iterations on B'B and on its inverse.
double conditionTwoNorm(Simplex &simplex, WorkMeter &work);

// A vector u with |u| = 1 in the maximum norm for which B u (transposed: B'u) is as small as a few
// steps of inverse iteration get it; empty when it is not small against |B|, the basis being
// regular.
Vec<double> nullVector(Simplex &simplex, bool transposed, WorkMeter &work);

}  // namespace tarvik
