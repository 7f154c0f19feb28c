// When the distance between bound and incumbent ends a search, and from which bound on a node is
// not worth exploring. All values in the minimization sense.
#pragma once

#include "mip/mip_options.h"

namespace tarvik {

// The gap as logs and summaries show it; 1e100 when there is none to show.
double mipRelativeGap(double sense, double bound, double incumbent);

bool mipGapReached(const MipOptions &options, double incumbent, double bound);

// The bound from which on a node cannot improve the incumbent by more than the allowed gap.
double mipPruningBound(const MipOptions &options, double incumbent);

// The cutoff that a solution of objective z implies; `step` is the spacing of achievable
// objectives (0: unknown) from `constant` on.
double mipSolutionCutoff(const MipOptions &options, double z, double step, double constant);

// With a gap for the pool, solutions worse than the incumbent by more are not sought.
double mipPoolCutoff(const MipOptions &options, double incumbent);

}  // namespace tarvik
