// Feasibility relaxation: a model that may be infeasible becomes one whose bounds and rows may be
// violated at a price. Every relaxed bound or row side gets a nonnegative artificial variable
// that measures its violation; the prices make the objective, or, with minrelax, the original
// objective is optimized among the points whose total price is the smallest possible.
#pragma once

#include "model/model.h"

namespace tarvik {

// How a violation v with penalty p is priced.
enum class RelaxPrice : int { Linear = 0, Quadratic = 1, Count = 2 };  // p v, p v^2, p [v > 0]

// One penalty per variable (per linear constraint); null relaxes nothing, 1e30 or more neither.
struct RelaxPenalties {
  const double *lb = nullptr, *ub = nullptr, *rhs = nullptr;
};

// Changes the model, which has no pending changes; on failure it stays as it was. Returns the
// smallest total price when minRelax is set and the first solve found it, else -1.
double relaxFeasibility(Model &model, RelaxPrice price, bool minRelax,
                        const RelaxPenalties &penalties);

}  // namespace tarvik
