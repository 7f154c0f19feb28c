// Larger coefficients of binary columns in inequalities. When a literal is true, those that it
// conflicts with are false, and of each clique among the others one is true at most. Where the row
// has room left even then, the literal's coefficient grows by it: the row cuts off more of the
// relaxation, and no integral point. A knapsack whose items exclude each other becomes a packing
// row, for instance.
//
// Literature: Savelsbergh (1994); Atamturk, Nemhauser and Savelsbergh (2000).
#pragma once

#include "mip/mip_model.h"
#include "mip/problem.h"

namespace tarvik {

// Rows with more entries than maxLength stay as they are; negative: automatic. Returns the number
// of coefficients that grew.
int liftKnapsacks(MipModel &model, const MipTolerances &tolerances, int maxLength, WorkMeter &work);

}  // namespace tarvik
