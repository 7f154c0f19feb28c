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

namespace {

int checkedSelection(int number, int count, const char *none, const char *tooLarge) {
  if (number < count) return number;
  throw Error(TVK_ERROR_VALUE_OUT_OF_RANGE, "%s", count == 0 ? none : tooLarge);
}

}  // namespace

int selectedObjective(Model &model) {
  return checkedSelection(model.env().get(Int::ObjNumber), pendingNumObjectives(model),
                          "It isn't a multi-objective model",
                          "Value of parameter ObjNumber is larger than the number of objectives");
}

int selectedScenario(Model &model) {
  return checkedSelection(
      model.env().get(Int::ScenarioNumber), pendingNumScenarios(model),
      "It isn't a multi-scenario model",
      "Value of parameter ScenarioNumber is larger than the number of scenarios");
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
