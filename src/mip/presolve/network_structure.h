// Continuous columns that take integral values by themselves. When, in every row, they have the
// same absolute coefficient, which divides the rest of the row, and when they form a network
// matrix, then every vertex of the relaxation with the integral columns fixed is integral in them:
// they may be declared integral, for the good of cuts, branching and heuristics.
//
// Literature: Schrijver (1986), chapter 19.
#pragma once

#include "mip/mip_model.h"

namespace tarvik {

struct NetworkStructure {
  int continuous = 0;    // columns of the network that are not fixed; 0: no network
  bool changed = false;  // some became integral
};

// Declares the continuous columns of a network integral, to be branched on last; other models stay
// as they are.
NetworkStructure detectNetworkStructure(MipModel &model);

}  // namespace tarvik
