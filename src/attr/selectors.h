// Which objective, scenario or pool solution an attribute means: the parameter that selects it,
// checked against what the model has.
#pragma once

#include "model/model.h"

namespace tarvik {

// Counts with the changes that wait for the update.
int pendingNumObjectives(const Model &model);
int pendingNumScenarios(const Model &model);
int pendingNumStarts(const Model &model);

// The selected number; throws 10008 when it is at or beyond the count.
int selectedObjective(Model &model);
int selectedScenario(Model &model);

// Refuses a right-hand side that no point satisfies; scenario -1 is the base model.
void checkScenarioRhs(const Model &model, int constr, double rhs, int scenario);

}  // namespace tarvik
