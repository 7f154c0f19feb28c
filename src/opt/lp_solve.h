// The user's linear program: which warm start it has, which algorithm it asks for, the driver's
// run, and its results in the solution store with their closing lines in the log.
#pragma once

#include "base/solve_control.h"
#include "model/model.h"

namespace tarvik {

// The model is continuous and linear; results of earlier solves are replaced. Throws only for
// out-of-memory.
void solveLinearModel(Model &model, SolveControl &control);

}  // namespace tarvik
