#include "mip/heuristics/heuristics.h"

namespace tarvik {

void makeHeuristics(const MipOptions &options, Vec<std::unique_ptr<Heuristic>> &root,
                    Vec<std::unique_ptr<Heuristic>> &node) {
  root.clear();
  node.clear();
}

}  // namespace tarvik
