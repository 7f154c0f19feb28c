// Classical ranging of an optimal basis (Gal 1979): how far one objective coefficient, bound or
// right-hand side may move alone before the basis stops being optimal. At a degenerate vertex
// these ranges belong to the basis, not to the optimal value, and may have no width.
//
// With the pivot row alpha_p = e_p' B^-1 N of every basic position p both families follow from
// one pass over the rows: a cost change t of the basic variable at p moves the reduced cost of a
// nonbasic k by -t alpha_pk, and a move t of the nonbasic k moves the basic value at p by
// -t alpha_pk. So the pass costs one BTRAN and one row product a row, hyper-sparse where the
// model is.
#pragma once

#include "simplex/engine.h"

namespace tarvik {

// In the user's scale; +-kInf where nothing limits a range.
struct SensitivityRanges {
  Vec<double> objLow, objUp, lbLow, lbUp, ubLow, ubUp;  // by column
  Vec<double> rhsLow, rhsUp;                            // by row, of its one finite or tight side
};

// The engine has current values and reduced costs of an optimal basis (Simplex::refresh).
SensitivityRanges sensitivityRanges(Engine<double> &engine, SolveControl &control);

// The same for a model without rows at its solution x.
SensitivityRanges rangesWithoutRows(const LpModel &lp, const Vec<double> &x);

}  // namespace tarvik
