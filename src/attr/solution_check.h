// The check of a final solution against the user's own model, with its warnings.
#pragma once

#include "model/model.h"

namespace tarvik {

// Logs a warning for each kind of violation beyond its tolerance, with a likely cause, and then a
// line with all of them.
void checkFinalSolution(Model &model, const Vec<double> &x);

}  // namespace tarvik
