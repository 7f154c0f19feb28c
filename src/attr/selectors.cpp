#include "attr/selectors.h"

namespace tarvik {

int pendingNumObjectives(const Model &model) {
  const PendingChanges *p = model.pending();
  return p && p->numObj ? *p->numObj : static_cast<int>(model.data().objectives.size());
}

int pendingNumScenarios(const Model &model) {
  const PendingChanges *p = model.pending();
  return p && p->numScenarios ? *p->numScenarios : static_cast<int>(model.data().scenarios.size());
}

int pendingNumStarts(const Model &model) {
  const PendingChanges *p = model.pending();
  return p && p->numStart ? *p->numStart : static_cast<int>(model.data().starts.size());
}

int selectedObjective(Model &model) {
  const int number = model.env().get(Int::ObjNumber);
  const int count = pendingNumObjectives(model);
  if (count == 0) throw Error(TVK_ERROR_VALUE_OUT_OF_RANGE, "It isn't a multi-objective model");
  if (number >= count) {
    throw Error(TVK_ERROR_VALUE_OUT_OF_RANGE,
                "Value of parameter ObjNumber is larger than the number of objectives");
  }
  return number;
}

int selectedScenario(Model &model) {
  const int number = model.env().get(Int::ScenarioNumber);
  const int count = pendingNumScenarios(model);
  if (count == 0) throw Error(TVK_ERROR_VALUE_OUT_OF_RANGE, "It isn't a multi-scenario model");
  if (number >= count) {
    throw Error(TVK_ERROR_VALUE_OUT_OF_RANGE,
                "Value of parameter ScenarioNumber is larger than the number of scenarios");
  }
  return number;
}

void checkScenarioRhs(const Model &model, int constr, double rhs, int scenario) {
  const ModelData &data = model.data();
  const char sense = constr < data.numConstrs()
                         ? data.sense[constr]
                         : model.pending()->rows.sense[constr - data.numConstrs()];
  const bool tooLow = rhs <= -kInfBound && sense != '>';
  const bool tooHigh = rhs >= kInfBound && sense != '<';
  if (!tooLow && !tooHigh) return;
  const char sign = tooLow ? '-' : '+';
  if (scenario < 0) {
    throw Error(TVK_ERROR_INVALID_ARGUMENT,
                "Cannot set rhs of %c= constraint to %cinfinity in master model", sense, sign);
  }
  throw Error(TVK_ERROR_INVALID_ARGUMENT,
              "Cannot set rhs of %c= constraint to %cinfinity in scenario %d", sense, sign,
              scenario);
}

}  // namespace tarvik
