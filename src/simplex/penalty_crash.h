// An approximate solution of an LP by a quadratic penalty with multipliers, minimised over one
// variable at a time (the Idiot crash that Galabova and Hall describe, 2020; the multipliers are
// those of Hestenes 1969 and Powell 1969). A pass over all variables costs about as much as one
// product with the matrix, so a point close to an optimum is had for a few hundred or thousand
// products where the simplex would take tens of thousands of degenerate iterations on factors that
// fill up. It is no basis and need not be feasible: the push to a vertex (vertex_push.h) makes one
// of it.
#pragma once

#include "base/solve_control.h"
#include "simplex/scaled_lp.h"

namespace tarvik {

// Whether the structure promises more from the crash than from the slack basis: partitioning and
// covering rows, linearised assignments, with several entries of one size in a column.
bool penaltyCrashPays(const ScaledLp<double> &lp);

// A point within the bounds of the columns, in the engine's scale. False when a limit stopped it or
// values became too large.
bool penaltyCrash(const ScaledLp<double> &lp, SolveControl &control, Vec<double> &point);

}  // namespace tarvik
