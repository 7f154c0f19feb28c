// General integer columns as sums of binary ones: x = lower + sum of 2^k b_k, the last coefficient
// such that the range is met exactly. Branching, cuts and propagation on the digits are of another
// kind than those on the number.
#pragma once

#include "mip/heuristics/heuristic.h"

namespace tarvik {

// True when there is a column to be reformulated.
bool hasGeneralIntegers(const Problem &problem);

HeurResult heurInt2Bin(HeuristicContext &context, int nodes);

}  // namespace tarvik
