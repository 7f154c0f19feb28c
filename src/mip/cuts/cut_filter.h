// Which of many violated cuts enter the relaxation: the most efficacious ones, none of them nearly
// parallel to a better one (Andreello, Caprara and Fischetti, 2007; Achterberg, 2007).
#pragma once

#include "mip/cuts/cut.h"

namespace tarvik {

struct CutFilter {
  double leastEfficacy = 1e-4;
  double largestParallelism = 0.5;
  int limit = 1000;
};

// Indices of the chosen cuts, best first.
Vec<int> chooseCuts(const Vec<Cut> &cuts, const Problem &problem, const Vec<double> &x,
                    const CutFilter &filter);

}  // namespace tarvik
