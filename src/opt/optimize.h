// What TVKoptimize does between its handle check and its return: header, limits, the model's own
// parameter adjustments, the choice of driver, clock and closing steps.
#pragma once

#include "model/model.h"

namespace tarvik {

void optimize(Model &model);

// The solve alone, for a model that is marked as running; results are not written to files.
void solveRunning(Model &model);

// Refuses what this version has no algorithm for, before anything of the model is touched.
void requireSolvable(const ModelData &data);

}  // namespace tarvik
