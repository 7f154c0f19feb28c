// The check of a final solution against the user's own model, with its warnings.
#pragma once

#include "attr/violations.h"
#include "model/model.h"

namespace tarvik {

// Logs a warning for each kind of violation beyond its tolerance, with a likely cause. Returns
// the violations.
ViolationMaxima checkFinalSolution(Model &model, const Vec<double> &x);

// Logs the summary line of violations.
void printViolations(Model &model, const ViolationMaxima &v);

}  // namespace tarvik
