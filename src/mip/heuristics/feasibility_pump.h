// The feasibility pump: a point that satisfies the relaxation and a point that is integral approach
// each other. The relaxation is solved for the least distance from the rounded point, which is
// rounded again, and so on. The objective takes part with a weight that fades, so that the first
// points are good ones; where the two points come to rest, some columns are rounded the other way,
// and where rounded points come back, at random.
//
// Literature: Fischetti, Glover and Lodi (2005); Bertacco, Fischetti and Lodi (2007) for general
// integers; Achterberg and Berthold (2007) for the objective.
#pragma once

#include "mip/heuristics/heuristic.h"

namespace tarvik {

// At most `passes` of them; none when there are sets, which have no rounding.
HeurResult heurFeasPump(HeuristicContext &context, int passes);

}  // namespace tarvik
