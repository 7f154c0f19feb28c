// Degenerate moves: where a relaxation has several optima, pivots that leave its objective alone
// look for one with fewer fractional integral columns, before cuts and heuristics see it.
#pragma once

#include <functional>

#include "mip/relaxation.h"

namespace tarvik {

// The relaxation stands at an optimum, and does so afterwards, unless a limit stopped it. At most
// `passes` moves; each ends with fewer fractional columns or is undone and the last one. Returns by
// how many columns it has come down. tell() is called before each.
int degenerateMoves(Domain &domain, Relaxation &lp, int passes, SolveControl &control,
                    const std::function<void()> &tell);

}  // namespace tarvik
