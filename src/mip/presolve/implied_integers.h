// Continuous columns that take integral values by themselves, one column at a time: in an equation
// of integral data whose other columns are integral; or where every row that the column is in, and
// its bounds, leave it a range with integral ends, once the others, all of them integral, are
// fixed. Then it may be declared integral: rounding cuts, propagation and heuristics gain from it.
//
// Literature: Achterberg, Bixby, Gu, Rothberg and Weninger (2020), section 4.1.
#pragma once

#include "mip/mip_model.h"

namespace tarvik {

// Declares such columns integral, to be branched on last. Returns their number.
int declareImpliedIntegers(MipModel &model);

}  // namespace tarvik
