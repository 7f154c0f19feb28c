// The heuristics that a search uses: at the root, in this order, and in turn at nodes.
#pragma once

#include <memory>

#include "mip/heuristics/heuristic.h"

namespace tarvik {

void makeHeuristics(const MipOptions &options, Vec<std::unique_ptr<Heuristic>> &root,
                    Vec<std::unique_ptr<Heuristic>> &node);

}  // namespace tarvik
