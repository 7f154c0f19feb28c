// Exported functions that make a model from another one.
#include <algorithm>
#include <cstdlib>
#include <cstring>

#include "attr/attr_access.h"
#include "base/locale_scope.h"
#include "model/model_call.h"
#include "opt/derived_models.h"
#include "opt/feasrelax.h"

using namespace tarvik;

namespace {

constexpr const char *kDerivedModel = "Derived model does not contain these changes.\n";
constexpr const char *kNewModel = "New model does not contain these changes.\n";

void warnOfPending(const Model &model, const char *consequence) {
  if (!model.hasPending()) return;
  model.env().log("Warning: model has pending changes.\n");
  model.env().log("%s", consequence);
}

// The frame of all of them: derive(model) makes the new handle, or null when there is none.
template <class Derive>
int deriveCall(TVKmodel *model, TVKmodel **modelP, const char *consequence, Derive &&derive) {
  if (!modelP) return TVK_ERROR_INVALID_ARGUMENT;
  *modelP = nullptr;
  return modelCall(model, nullptr, [&](Model &m) {
    const LocaleScope locale(m.env().get(Int::TARV_PAR_KEEPLOCALE) == 0);
    warnOfPending(m, consequence);
    *modelP = derive(m);
  });
}

// A model in the environment of the source, from a copy of its data that change() has changed.
template <class Change>
TVKmodel *changedCopy(const Model &source, Change &&change) {
  ModelData data = source.data();
  change(data);
  return Model::createFromData(source.env(), std::move(data));
}

// What a caller has given for the next solve belongs to the model; results do not.
void copyWarmStart(const SolutionStore &from, SolutionStore &to) {
  to.pstart = from.pstart;
  to.dstart = from.dstart;
  if (!from.userBasis) return;
  to.vbasis = from.vbasis;
  to.cbasis = from.cbasis;
  to.userBasis = true;
}

TVKmodel *exactCopy(const Model &source, Env &env) {
  const AccountScope scope(&env.account());
  TVKmodel *copy = Model::createFromData(env, ModelData(source.data()));
  try {
    copyWarmStart(source.solution(), copy->solution());
  } catch (...) {
    Model::destroy(copy);
    throw;
  }
  return copy;
}

bool isMipClass(Model &model) {
  return !model.data().scenarios.empty() || getAttr<int>(model, "IsMIP") != 0;
}

TVKmodel *relaxedCopy(const Model &source) {
  TVKmodel *relaxed = changedCopy(source, relaxDiscreteParts);
  if (isMipClass(*relaxed)) {
    source.env().log(
        "Warning: model attributes, such as non-convex PWL objective, cannot be relaxed\n");
  }
  return relaxed;
}

// The current solution or else the selected one of the pool.
const Vec<double> &solutionToFix(const Model &model) {
  const SolutionStore &store = model.solution();
  if (!store.x.empty()) return store.x;
  const int number = model.env().get(Int::SolutionNumber);
  if (number < static_cast<int>(store.poolX.size())) return store.poolX[number];
  throw Error(TVK_ERROR_DATA_NOT_AVAILABLE, "Unable to retrieve attribute 'X'");
}

TVKmodel *fixedCopy(Model &source) {
  if (!isMipClass(source)) return nullptr;
  const Vec<double> &x = solutionToFix(source);
  return changedCopy(source, [&](ModelData &data) { fixDiscreteParts(data, x); });
}

TVKmodel *dualCopy(Model &source) {
  const ModelData &data = source.data();
  if (isMipClass(source) || data.q.count() > 0 || !data.qconstrs.empty() || !data.cones.empty() ||
      !data.pwl.empty() || data.objectives.size() > 1) {
    throw Error(TVK_ERROR_NOT_SUPPORTED, "Dual model is only available for linear models");
  }
  return changedCopy(source, [](ModelData &d) { d = dualOf(d); });
}

TVKmodel *scenarioCopy(Model &source, int number) {
  const int count = static_cast<int>(source.data().scenarios.size());
  const char *problem = count == 0        ? "Model is not a multi-scenario model"
                        : number >= count ? "Specified scenario number does not exist"
                                          : nullptr;
  if (problem) {
    source.env().log("%s\n", problem);
    throw Error(TVK_ERROR_INVALID_ARGUMENT, "%s", problem);
  }
  return changedCopy(source, [&](ModelData &data) { applyScenario(data, number); });
}

TVKmodel *allScenarios(Model &source) {
  if (source.data().scenarios.empty()) return scenarioCopy(source, 0);
  return changedCopy(source, [](ModelData &d) { d = extensiveForm(d); });
}

// A copy that starts from a solution of the pool; the last solution when there is no pool.
TVKmodel *copyAtSolution(const Model &source, int number) {
  const SolutionStore &store = source.solution();
  const Vec<double> *x = number < static_cast<int>(store.poolX.size()) ? &store.poolX[number]
                         : number == 0                                 ? &store.x
                                                                       : nullptr;
  if (!x || x->empty()) throw Error(TVK_ERROR_DATA_NOT_AVAILABLE);
  return changedCopy(source, [&](ModelData &data) { data.starts.assign(1, *x); });
}

// A type is a word, for some of them with a number behind it; false when it is another one.
bool splitType(const char *type, const char *word, int &number) {
  number = -1;
  const std::size_t length = std::strlen(word);
  if (!type || std::strncmp(type, word, length) != 0) return false;
  const char *digits = type + length;
  if (*digits == '\0') return true;
  if (*digits < '0' || *digits > '9' || std::strlen(digits) > 10) return false;
  char *end = nullptr;
  const long long value = std::strtoll(digits, &end, 10);
  number = static_cast<int>(std::min<long long>(value, kMaxInt));
  return *end == '\0';
}

}  // namespace

extern "C" {

TVKmodel *TVKcopymodel(TVKmodel *model) {
  TVKmodel *copy = nullptr;
  deriveCall(model, &copy, kNewModel, [](Model &m) { return exactCopy(m, m.env()); });
  return copy;
}

int TVKcopymodeltoenv(TVKmodel *model, TVKenv *targetenv, TVKmodel **copyP) {
  return deriveCall(model, copyP, kNewModel, [&](Model &m) {
    if (const int code = checkEnv(targetenv)) throw Error(code);
    if (!targetenv->started()) throw Error(TVK_ERROR_NOT_STARTED);
    return exactCopy(m, *targetenv);
  });
}

int TVKrelaxmodel(TVKmodel *model, TVKmodel **modelP) {
  return deriveCall(model, modelP, kDerivedModel, relaxedCopy);
}

int TVKfeasibility(TVKmodel *model, TVKmodel **modelP) {
  return deriveCall(model, modelP, kDerivedModel,
                    [](Model &m) { return changedCopy(m, dropObjective); });
}

int TVKlinearizemodel(TVKmodel *model, TVKmodel **modelP) {
  return deriveCall(model, modelP, kDerivedModel,
                    [](Model &m) { return changedCopy(m, linearizeProducts); });
}

int TVKfixmodel(TVKmodel *model, TVKmodel **modelP) {
  return deriveCall(model, modelP, kDerivedModel, fixedCopy);
}

TVKmodel *TVKfixedmodel(TVKmodel *model) {
  TVKmodel *fixed = nullptr;
  TVKfixmodel(model, &fixed);
  return fixed;
}

// Changes the model itself: what waits for an update is applied first, and a solution that does
// not outlive that is none to fix at.
int TVKconverttofixed(TVKmodel *model) {
  return modelCall(model, nullptr, [](Model &m) {
    m.requireIdle();
    m.update();
    if (!isMipClass(m)) return;
    ModelData data = m.data();
    fixDiscreteParts(data, solutionToFix(m));
    m.data() = std::move(data);
    m.solution().clearAll();
    m.dataChanged();
  });
}

int TVKdualmodel(TVKmodel *model, TVKmodel **modelP) {
  return deriveCall(model, modelP, kDerivedModel, dualCopy);
}

int TVKsinglescenariomodel(TVKmodel *model, TVKmodel **modelP) {
  return deriveCall(model, modelP, kDerivedModel,
                    [](Model &m) { return scenarioCopy(m, m.env().get(Int::ScenarioNumber)); });
}

int TVKfeasrelax(TVKmodel *model, int relaxobjtype, int minrelax, const double *lbpen,
                 const double *ubpen, const double *rhspen, double *feasobjP) {
  if (feasobjP) *feasobjP = -1.0;
  return modelCall(model, nullptr, [&](Model &m) {
    m.requireIdle();
    if (relaxobjtype < 0 || relaxobjtype > 2)
      throw Error(TVK_ERROR_INVALID_ARGUMENT, "Relaxation type %d is not 0, 1 or 2", relaxobjtype);
    if (m.hasPending()) {
      m.env().log("Warning: model has pending changes.\n");
      m.env().log("Performing update to include changes in feasrelax model.\n");
      m.update();
    }
    const double price = relaxFeasibility(m, static_cast<RelaxPrice>(relaxobjtype), minrelax != 0,
                                          {lbpen, ubpen, rhspen});
    if (feasobjP) *feasobjP = price;
  });
}

int TVKresultmodel(TVKmodel *model, const char *type, TVKmodel **modelP) {
  const auto is = [&](const char *word) { return type && std::strcmp(type, word) == 0; };
  int number = -1;
  if (is("presolve")) return TVKpresolvemodel(model, modelP);
  if (is("relax")) return TVKrelaxmodel(model, modelP);
  if (is("feasibility")) return TVKfeasibility(model, modelP);
  if (is("linearize")) return TVKlinearizemodel(model, modelP);
  if (is("fixed")) return TVKfixmodel(model, modelP);
  if (is("dual")) return TVKdualmodel(model, modelP);
  if (is("copy") && modelP) return TVKcopymodeltoenv(model, TVKgetenv(model), modelP);
  return deriveCall(model, modelP, kDerivedModel, [&](Model &m) -> TVKmodel * {
    if (is("convertpw")) return changedCopy(m, linearizePwlObjective);
    if (splitType(type, "copy", number)) return copyAtSolution(m, number);
    if (splitType(type, "scenario", number))
      return number < 0 ? allScenarios(m) : scenarioCopy(m, number);
    m.env().log("Error in TVKresultmodel: type isn't correct\n");
    throw Error(TVK_ERROR_INVALID_ARGUMENT, "Error in TVKresultmodel: type isn't correct");
  });
}

}  // extern "C"
