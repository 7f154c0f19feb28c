// Magnitudes of a model's coefficients, the block that is printed before a solve, and the
// warnings about values that invite numerical trouble.
#pragma once

#include "model/model.h"

namespace tarvik {

// Computed once until the model changes.
const ModelStatistics &modelStatistics(Model &model);

// Prints the coefficient block with its warnings to the model's log.
void printStatistics(Model &model);

}  // namespace tarvik
