// Permutations that fix a point, from those that generate a group: random elements of the group,
// each followed by the way back from where it takes the point. Some dozen of them generate the
// stabilizer with near certainty; if they do not, what they generate is a part of it.
//
// Literature: Sims (1970); Celler, Leedham-Green, Murray, Niemeyer and O'Brien (1995), product
// replacement.
#pragma once

#include "base/memory.h"
#include "base/solve_control.h"

namespace tarvik {

using DensePermutation = Vec<int>;  // the image of each point

// None when only the identity was found. The generators are not empty and of equal length. The same
// call gives the same result.
Vec<DensePermutation> stabilizerOf(int point, const Vec<DensePermutation> &generators,
                                   WorkMeter &work);

}  // namespace tarvik
