// Strong branching on the continuous relaxation of the user's model, for callers that do their own
// search. It leaves the model's solution, and whatever is kept for its next solve, alone.
#pragma once

#include "model/model.h"

namespace tarvik {

enum class StrongBranchStatus { Done = 0, Unsolved = 1, Maximization = -1 };

// Bounds on the objective for the down and the up branch of each candidate, never below the
// relaxation's; only Done fills them.
StrongBranchStatus strongBranch(Model &model, int count, const int *candidates, double *downBound,
                                double *upBound);

}  // namespace tarvik
