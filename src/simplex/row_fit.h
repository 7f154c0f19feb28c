// Moves a point onto the equality rows: bounded least squares by conjugate gradients on the normal
// equations (CGLS, Hestenes and Stiefel 1952) over the variables that are free to move, cut off at
// the bounds and repeated. A point that the penalty method leaves some thousandths off its rows
// costs the simplex thousands of iterations once the rows are put back in place.
#pragma once

#include "base/solve_control.h"
#include "simplex/scaled_lp.h"

namespace tarvik {

// Point and activities change together; both stay as they are when nothing gets better.
void fitRows(const ScaledLp<double> &lp, SolveControl &control, Vec<double> &x,
             Vec<double> &activity);

}  // namespace tarvik
