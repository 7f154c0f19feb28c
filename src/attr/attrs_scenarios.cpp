// Attributes of scenarios, addressed through the parameter ScenarioNumber. Values that a
// scenario does not change are those of the base model.
#include "attr/handler_kit.h"
#include "attr/selectors.h"
#include "model/objectives.h"
#include "model/validate.h"

namespace tarvik {

namespace {

const Scenario &scenario(Model &m) {
  const int number = selectedScenario(m);
  if (number >= static_cast<int>(m.data().scenarios.size())) attrNotAvailable();
  return m.data().scenarios[number];
}

template <auto Changes, auto Base>
void getValues(Model &m, const Elements &e, double *out) {
  const SparseChanges &changes = scenario(m).*Changes;
  const Vec<double> &base = m.data().*Base;
  for (int k = 0; k < e.len; ++k) {
    const double *changed = changes.find(e[k]);
    out[k] = changed ? *changed : base[e[k]];
  }
}

void getObj(Model &m, const Elements &e, double *out) {
  getValues<&Scenario::obj, &ModelData::obj>(m, e, out);
  for (int k = 0; k < e.len; ++k) out[k] *= m.data().objSense;
}

// Queues the values as they are stored.
template <auto Queue, double (*Convert)(double)>
void queueScenario(Model &m, const Elements &e, const double *values, ElementKind kind) {
  const int number = selectedScenario(m);
  Vec<double> stored(e.len);
  for (int k = 0; k < e.len; ++k) stored[k] = Convert(values[k]);
  m.edit([&](PendingChanges &p) {
    queueValues(pendingScenario(p, number).*Queue, e, static_cast<const double *>(stored.data()),
                elementLimit(p, kind));
  });
}

void setObj(Model &m, const Elements &e, const double *values) {
  const int number = selectedScenario(m);
  for (int k = 0; k < e.len; ++k) {
    if (!isInf(values[k])) continue;
    throw Error(TVK_ERROR_INVALID_ARGUMENT,
                "Cannot set objective coefficient to %cinfinity in scenario %d",
                values[k] > 0 ? '+' : '-', number);
  }
  queueScenario<&PendingScenario::obj, clampToUserInf>(m, e, values, ElementKind::Var);
}

void setLb(Model &m, const Elements &e, const double *values) {
  const int number = selectedScenario(m);
  for (int k = 0; k < e.len; ++k)
    if (values[k] >= kInfBound)
      throw Error(TVK_ERROR_INVALID_ARGUMENT, "Cannot set lower bound to +infinity in scenario %d",
                  number);
  queueScenario<&PendingScenario::lb, storedBound>(m, e, values, ElementKind::Var);
}

void setUb(Model &m, const Elements &e, const double *values) {
  const int number = selectedScenario(m);
  for (int k = 0; k < e.len; ++k)
    if (values[k] <= -kInfBound)
      throw Error(TVK_ERROR_INVALID_ARGUMENT, "Cannot set upper bound to -infinity in scenario %d",
                  number);
  queueScenario<&PendingScenario::ub, storedBound>(m, e, values, ElementKind::Var);
}

void setRhs(Model &m, const Elements &e, const double *values) {
  const int number = selectedScenario(m);
  for (int k = 0; k < e.len; ++k) checkScenarioRhs(m, e[k], values[k], number);
  queueScenario<&PendingScenario::rhs, clampToUserInf>(m, e, values, ElementKind::Constr);
}

void setName(Model &m, const Elements &, const char *const *name) {
  const int number = selectedScenario(m);
  m.edit([&](PendingChanges &p) { pendingScenario(p, number).name = *name ? *name : ""; });
}

void setNumScenarios(Model &m, const Elements &, const int *value) {
  if (*value < 0) {
    m.env().log("Warning: Setting attribute NumScenarios to a negative number, ignored\n");
  } else if (*value > kMaxInt) {
    m.env().log("Warning: Setting attribute NumScenarios to a too big number %d, ignore\n", *value);
  } else {
    m.edit([&](PendingChanges &p) {
      p.numScenarios = *value;
      p.keptScenarios = std::min(p.keptScenarios, *value);
      std::erase_if(p.scenarios, [&](const PendingScenario &s) { return s.number >= *value; });
    });
  }
}

void getX(Model &m, const Elements &e, double *out) {
  const int number = selectedScenario(m);
  const auto &scenX = m.solution().scenX;
  if (number >= static_cast<int>(scenX.size()) || scenX[number].empty()) attrNotAvailable();
  for (int k = 0; k < e.len; ++k) out[k] = scenX[number][e[k]];
}

template <auto Member>
void getResult(Model &m, const Elements &, double *out) {
  const int number = selectedScenario(m);
  const Vec<double> &values = m.solution().*Member;
  if (number >= static_cast<int>(values.size()) || values[number] == kUndefined) attrNotAvailable();
  *out = m.data().inCallersSense(values[number]);
}

}  // namespace

void registerScenarioAttrs(AttrTable &t) {
  t.handlers<double>(Attr::ScenNLB) = {nullptr, getValues<&Scenario::lb, &ModelData::lb>, setLb};
  t.handlers<double>(Attr::ScenNUB) = {nullptr, getValues<&Scenario::ub, &ModelData::ub>, setUb};
  t.handlers<double>(Attr::ScenNObj) = {nullptr, getObj, setObj};
  t.handlers<double>(Attr::ScenNRHS) = {nullptr, getValues<&Scenario::rhs, &ModelData::rhs>,
                                        setRhs};
  t.handlers<const char *>(Attr::ScenNName) = {
      nullptr,
      [](Model &m, const Elements &, const char **out) { *out = scenario(m).name.c_str(); },
      setName};
  t.handlers<double>(Attr::ScenNX).get = getX;
  t.handlers<double>(Attr::ScenNObjVal).get = getResult<&SolutionStore::scenObjVal>;
  t.handlers<double>(Attr::ScenNObjBound).get = getResult<&SolutionStore::scenObjBound>;
  t.handlers<int>(Attr::NumScenarios) = {nullptr,
                                         [](Model &m, const Elements &, int *out) {
                                           *out = static_cast<int>(m.data().scenarios.size());
                                         },
                                         setNumScenarios};
}

}  // namespace tarvik
