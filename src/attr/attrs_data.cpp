// Attributes of the model data itself: sizes, bounds, objective, types, rows, names.
#include <climits>

#include "attr/fingerprint.h"
#include "attr/handler_kit.h"
#include "attr/selectors.h"
#include "model/validate.h"

namespace tarvik {

namespace {

template <auto Count>
void intOf(Model &m, const Elements &, int *out) {
  *out = Count(m.data());
}

int clampedInt(double count) { return count > INT_MAX ? INT_MAX : static_cast<int>(count); }

int numNz(const ModelData &d) { return clampedInt(static_cast<double>(d.a.numNz())); }

int numQcNz(const ModelData &d) {
  double count = 0;
  for (const QConstr &qc : d.qconstrs) count += qc.quad.count();
  return clampedInt(count);
}

int numIntVars(const ModelData &d) {
  int count = 0;
  for (const char type : d.vtype) count += type == 'B' || type == 'I' || type == 'N';
  return count;
}

int numTagged(const ModelData &d) { return d.numTagged(); }

// In the stored sense the slopes must not decrease.
bool isConvex(const PwlObjective &pwl) {
  double previous = -kUserInf;
  for (std::size_t k = 1; k < pwl.x.size(); ++k) {
    const double dx = pwl.x[k] - pwl.x[k - 1], dy = pwl.y[k] - pwl.y[k - 1];
    if (dx <= 0 && dy == 0) continue;
    if (dx <= 0) return false;
    const double slope = dy / dx;
    if (slope < previous - 1e-9 * (1 + std::abs(previous))) return false;
    previous = slope;
  }
  return true;
}

bool hasNonconvexPwl(const ModelData &d) {
  for (const PwlObjective &pwl : d.pwl)
    if (!isConvex(pwl)) return true;
  return false;
}

void getPwlConvex(Model &m, const Elements &e, int *out) {
  for (int k = 0; k < e.len; ++k) {
    const PwlObjective *pwl = m.data().pwlOf(e[k]);
    out[k] = pwl && isConvex(*pwl);
  }
}

template <const char *(Model::*Name)(int)>
void getNames(Model &m, const Elements &e, const char **out) {
  for (int k = 0; k < e.len; ++k) out[k] = (m.*Name)(e[k]);
}

template <auto Queue, ElementKind kind>
void setNames(Model &m, const Elements &e, const char *const *names) {
  for (int k = 0; k < e.len; ++k)
    if (names[k]) checkName(names[k]);
  m.edit([&](PendingChanges &p) { queueTexts(p.*Queue, e, names, elementLimit(p, kind)); });
}

void getObj(Model &m, const Elements &e, double *out) { copySigned(m, m.data().obj, e, out); }

void setModelSense(Model &m, const Elements &, const int *value) {
  if (*value != 1 && *value != -1)
    throw Error(TVK_ERROR_INVALID_ARGUMENT, "Invalid objective sense");
  m.edit([&](PendingChanges &p) { p.objSense = *value; });
}

bool hasScenarios(const Model &m) {
  const PendingChanges *p = m.pending();
  return p && p->numScenarios ? *p->numScenarios > 0 : !m.data().scenarios.empty();
}

// With scenarios a base value that no point satisfies is refused.
void setLb(Model &m, const Elements &e, const double *values) {
  for (int k = 0; k < e.len && hasScenarios(m); ++k)
    if (values[k] >= kInfBound)
      throw Error(TVK_ERROR_INVALID_ARGUMENT,
                  "Cannot set lower bound to +infinity in master model");
  queueSet<&PendingChanges::lb, ElementKind::Var>(m, e, values);
}

void setUb(Model &m, const Elements &e, const double *values) {
  for (int k = 0; k < e.len && hasScenarios(m); ++k)
    if (values[k] <= -kInfBound)
      throw Error(TVK_ERROR_INVALID_ARGUMENT,
                  "Cannot set upper bound to -infinity in master model");
  queueSet<&PendingChanges::ub, ElementKind::Var>(m, e, values);
}

void setRhs(Model &m, const Elements &e, const double *values) {
  for (int k = 0; k < e.len && hasScenarios(m); ++k) checkScenarioRhs(m, e[k], values[k], -1);
  queueSet<&PendingChanges::rhs, ElementKind::Constr>(m, e, values);
}

template <class T, auto Field>
void getQConstrField(Model &m, const Elements &e, T *out) {
  for (int k = 0; k < e.len; ++k) out[k] = m.data().qconstrs[e[k]].*Field;
}

void registerNames(AttrTable &t) {
  using K = ElementKind;
  t.handlers<const char *>(Attr::VarName) = {nullptr, getNames<&Model::varName>,
                                             setNames<&PendingChanges::varNames, K::Var>};
  t.handlers<const char *>(Attr::ConstrName) = {nullptr, getNames<&Model::constrName>,
                                                setNames<&PendingChanges::constrNames, K::Constr>};
  t.handlers<const char *>(Attr::QCName) = {nullptr, getNames<&Model::qconstrName>,
                                            setNames<&PendingChanges::qconstrNamesSet, K::QConstr>};
  t.handlers<const char *>(Attr::GenConstrName) = {
      nullptr, getNames<&Model::genConstrName>,
      setNames<&PendingChanges::genConstrNamesSet, K::GenConstr>};
  t.handlers<const char *>(Attr::ModelName) = {
      nullptr, [](Model &m, const Elements &, const char **out) { *out = m.data().name.c_str(); },
      [](Model &m, const Elements &, const char *const *name) {
        m.edit([&](PendingChanges &p) { p.name = *name ? *name : ""; });
      }};
}

}  // namespace

void registerSizeAttrs(AttrTable &t) {
  using D = const ModelData &;
  const auto set = [&](Attr attr, void (*get)(Model &, const Elements &, int *)) {
    t.handlers<int>(attr).get = get;
  };
  set(Attr::NumConstrs, intOf<[](D d) { return d.numConstrs(); }>);
  set(Attr::NumVars, intOf<[](D d) { return d.numVars(); }>);
  set(Attr::NumSOS, intOf<[](D d) { return d.numSos(); }>);
  set(Attr::NumQConstrs, intOf<[](D d) { return d.numQConstrs(); }>);
  set(Attr::NumGenConstrs, intOf<[](D d) { return d.numGenConstrs(); }>);
  set(Attr::NumNZs, intOf<numNz>);
  set(Attr::NumQNZs, intOf<[](D d) { return d.q.count(); }>);
  set(Attr::NumQCNZs, intOf<numQcNz>);
  set(Attr::NumIntVars, intOf<numIntVars>);
  set(Attr::NumBinVars, intOf<[](D d) { return d.numBinary; }>);
  set(Attr::NumPWLObjVars, intOf<[](D d) { return static_cast<int>(d.pwl.size()); }>);
  set(Attr::IsMIP, intOf<[](D d) { return int(d.isMip() || hasNonconvexPwl(d)); }>);
  set(Attr::IsQCP, intOf<[](D d) { return int(!d.qconstrs.empty() || !d.cones.empty()); }>);
  set(Attr::IsQP, intOf<[](D d) { return int(d.q.count() > 0); }>);
  set(Attr::IsMultiObj, intOf<[](D d) { return int(d.objectives.size() > 1); }>);
  set(Attr::NumTagged, intOf<numTagged>);
  t.handlers<double>(Attr::DNumNZs).get = [](Model &m, const Elements &, double *out) {
    *out = static_cast<double>(m.data().a.numNz());
  };
  set(Attr::Fingerprint, [](Model &m, const Elements &, int *out) { *out = fingerprint(m); });
}

void registerDataAttrs(AttrTable &t) {
  using D = ModelData;
  using P = PendingChanges;
  using K = ElementKind;
  registerNames(t);
  t.handlers<int>(Attr::ModelSense) = {nullptr, intOf<[](const D &d) { return d.objSense; }>,
                                       setModelSense};
  t.handlers<double>(Attr::ObjCon) = {nullptr,
                                      [](Model &m, const Elements &, double *out) {
                                        *out = m.data().inCallersSense(m.data().objCon);
                                      },
                                      [](Model &m, const Elements &, const double *value) {
                                        m.edit([&](PendingChanges &p) { p.objCon = *value; });
                                      }};
  t.handlers<double>(Attr::Obj) = {nullptr, getObj, queueSet<&P::obj, K::Var>};
  t.handlers<double>(Attr::LB) = {dataVector<&D::lb>, nullptr, setLb};
  t.handlers<double>(Attr::UB) = {dataVector<&D::ub>, nullptr, setUb};
  t.handlers<char>(Attr::VType) = {dataVector<&D::vtype>, nullptr,
                                   queueLetters<&P::vtype, K::Var, checkedVarType>};
  t.handlers<int>(Attr::PWLObjCvx).get = getPwlConvex;
  t.handlers<double>(Attr::RHS) = {dataVector<&D::rhs>, nullptr, setRhs};
  t.handlers<char>(Attr::Sense) = {dataVector<&D::sense>, nullptr,
                                   queueLetters<&P::sense, K::Constr, checkedSense>};
  t.handlers<double>(Attr::QCRHS) = {nullptr, getQConstrField<double, &QConstr::rhs>,
                                     queueSet<&P::qcRhs, K::QConstr>};
  t.handlers<char>(Attr::QCSense) = {nullptr, getQConstrField<char, &QConstr::sense>,
                                     queueLetters<&P::qcSense, K::QConstr, checkedSense>};
}

}  // namespace tarvik
