// Nothing a kernel says is believed unchecked: a status is proven by a solution or certificate
// that holds in the model's own scale.
//   optimal     primal and dual feasible, complementary
//   infeasible  a Farkas certificate
//   unbounded   a feasible point and an improving ray
// A stop by a limit claims nothing and is always accepted.
#pragma once

#include <optional>

#include "lp/check.h"

namespace tarvik {

struct Tolerances {
  double primal = 1e-6;
  double dual = 1e-6;
};

struct Verdict {
  // Holds within the tolerances.
  bool proven = false;
  // Holds but for small excesses, such as a scaled model leaves in the unscaled one: acceptable
  // with a warning when nothing better can be had.
  bool nearlyProven = false;
  bool primalFeasible = false;
  // The largest violation of what the claim needs, for choosing between candidates.
  double violation = 1e100;
  // Of an optimal claim, measured with the primal tolerance; empty otherwise.
  std::optional<SolutionQuality> quality;
};

Verdict verify(const LpModel &lp, const LpSolution &solution, const Tolerances &tolerances);

}  // namespace tarvik
