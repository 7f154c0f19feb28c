// Attributes of several objectives, addressed through the parameter ObjNumber.
#include "attr/handler_kit.h"
#include "attr/selectors.h"
#include "model/objectives.h"

namespace tarvik {

namespace {

const Objective &objective(Model &m) {
  const int number = selectedObjective(m);
  if (number >= static_cast<int>(m.data().objectives.size())) attrNotAvailable();
  return m.data().objectives[number];
}

void getCoef(Model &m, const Elements &e, double *out) { copySigned(m, objective(m).coef, e, out); }

template <class Change>
void change(Model &m, Change &&apply) {
  const int number = m.env().get(Int::ObjNumber);
  if (number >= pendingNumObjectives(m)) {
    throw Error(TVK_ERROR_VALUE_OUT_OF_RANGE, "Out of range for parameter value of ObjNumber");
  }
  m.edit([&](PendingChanges &p) { apply(p, pendingObjective(p, number)); });
}

template <class T, auto Field>
void getField(Model &m, const Elements &, T *out) {
  *out = objective(m).*Field;
}

template <class T, auto Field>
void setField(Model &m, const Elements &, const T *value) {
  change(m, [&](PendingChanges &, PendingObjective &o) { o.*Field = *value; });
}

// The value of an objective in a pool solution; the last solution when there is no pool.
void getObjNVal(Model &m, const Elements &, double *out) {
  const Objective &o = objective(m);
  const SolutionStore &s = m.solution();
  const int number = m.env().get(Int::SolutionNumber);
  const Vec<double> *x = nullptr;
  if (number < static_cast<int>(s.poolX.size())) x = &s.poolX[number];
  if (!x && number == 0) x = &s.x;
  if (!x || x->size() != o.coef.size() || (x->empty() && !s.hasObjective)) attrNotAvailable();
  double value = o.con;
  for (std::size_t j = 0; j < x->size(); ++j) value += o.coef[j] * (*x)[j];
  *out = m.data().inCallersSense(value);
}

void setNumObj(Model &m, const Elements &, const int *value) {
  if (*value < 0) {
    m.env().log("Setting attribute NumObj to a negative number, ignored\n");
  } else if (*value > kMaxInt) {
    m.env().log("Setting attribute NumObj to a too big number %d, ignore\n", *value);
  } else {
    m.edit([&](PendingChanges &p) {
      p.numObj = *value;
      p.keptObjectives = std::min(p.keptObjectives, *value);
      std::erase_if(p.objectives, [&](const PendingObjective &o) { return o.number >= *value; });
    });
  }
}

}  // namespace

void registerObjectiveAttrs(AttrTable &t) {
  using O = Objective;
  using P = PendingObjective;
  t.handlers<double>(Attr::ObjN) = {nullptr, getCoef,
                                    [](Model &m, const Elements &e, const double *values) {
                                      change(m, [&](PendingChanges &p, PendingObjective &o) {
                                        queueValues(o.coef, e, values, p.allVars());
                                      });
                                    }};
  t.handlers<double>(Attr::ObjNCon) = {nullptr,
                                       [](Model &m, const Elements &, double *out) {
                                         *out = m.data().inCallersSense(objective(m).con);
                                       },
                                       setField<double, &P::con>};
  t.handlers<double>(Attr::ObjNWeight) = {nullptr, getField<double, &O::weight>,
                                          setField<double, &P::weight>};
  t.handlers<int>(Attr::ObjNPriority) = {nullptr, getField<int, &O::priority>,
                                         setField<int, &P::priority>};
  t.handlers<double>(Attr::ObjNRelTol) = {nullptr, getField<double, &O::relTol>,
                                          setField<double, &P::relTol>};
  t.handlers<double>(Attr::ObjNAbsTol) = {nullptr, getField<double, &O::absTol>,
                                          setField<double, &P::absTol>};
  t.handlers<const char *>(Attr::ObjNName) = {
      nullptr,
      [](Model &m, const Elements &, const char **out) { *out = objective(m).name.c_str(); },
      [](Model &m, const Elements &, const char *const *name) {
        change(m, [&](PendingChanges &, PendingObjective &o) { o.name = *name ? *name : ""; });
      }};
  t.handlers<double>(Attr::ObjNVal).get = getObjNVal;
  // A model without objectives of its own has the one of Obj and ObjCon.
  t.handlers<int>(Attr::NumObj) = {nullptr,
                                   [](Model &m, const Elements &, int *out) {
                                     *out = std::max<int>(1, m.data().objectives.size());
                                   },
                                   setNumObj};
}

}  // namespace tarvik
