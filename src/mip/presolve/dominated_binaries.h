// Binary columns that another one is always better than. Column k dominates column j when it costs
// no more and, in every row, pushes at least as far in the direction that the row wants. Where j is
// one and k is zero, they can change places; where both are one, j can fall when no row needs it
// beside k, or both are never one. Then j is zero.
//
// Literature: Gamrath, Koch, Martin, Miltenberger and Weninger (2015).
#pragma once

#include "base/solve_control.h"
#include "mip/mip_model.h"

namespace tarvik {

// Returns the number of columns fixed.
int fixDominatedBinaries(MipModel &model, WorkMeter &work);

}  // namespace tarvik
