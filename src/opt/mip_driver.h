// The user's mixed-integer program: its search, the results in the solution store, and the closing
// lines in the log.
#pragma once

#include "base/solve_control.h"
#include "model/model.h"

namespace tarvik {

void solveMipModel(Model &model, SolveControl &control);

}  // namespace tarvik
