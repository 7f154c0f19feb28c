// Models made from another one. Each function changes a copy of the source's data into the data
// of the derived model; which handles and messages go with it is in derived_api.cpp. Everything
// is in the stored (minimization) sense of the model data.
#pragma once

#include "model/model_data.h"

namespace tarvik {

// Integrality goes, semi-continuous variables may take all values between 0 and their bounds, SOS
// and general constraints are dropped: every solution of the model remains one.
void relaxDiscreteParts(ModelData &data);

// Any feasible point is optimal.
void dropObjective(ModelData &data);

// Integer variables take their values in x. Semi-continuous variables and SOS keep the choice
// that x makes, indicator constraints become rows or disappear; AND and OR relate only fixed
// variables and disappear too. The solution is that of the base model; scenarios disappear.
void fixDiscreteParts(ModelData &data, const Vec<double> &x);

// The values of a scenario take the place of the base model's.
void applyScenario(ModelData &data, int number);

// All scenarios side by side, with the sum of their objectives.
ModelData extensiveForm(const ModelData &data);

// The dual of a linear model: a variable per row and, for bounds other than 0, one per bound.
// Its optimal value is that of the primal, its sense the opposite one.
ModelData dualOf(const ModelData &data);

// Products with a binary variable become auxiliary variables with four rows each; others, and
// those with an unbounded factor, have no exact linear form and stay.
void linearizeProducts(ModelData &data);

// Convex piecewise-linear objective terms become rows over an auxiliary variable, others an SOS
// of type 2 over their points. Terms that are not convex and go on to an infinite bound stay.
void linearizePwlObjective(ModelData &data);

}  // namespace tarvik
