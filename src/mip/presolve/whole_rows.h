// Rows of whole numbers: divided by a pivot, the entries and sides of the row are integers but for
// their rounding, which changes the row by next to nothing whatever values its columns take.
#pragma once

#include "lp/lp_model.h"

namespace tarvik {

bool isWhole(double value);
// `rows` is the matrix by rows.
bool isWholeRow(const LpModel &lp, const SparseMatrix &rows, int row, double pivot);

}  // namespace tarvik
