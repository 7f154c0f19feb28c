// Attributes that a caller sets for a solve: tags, starts, hints, priorities, IIS forcing, options
// of function constraints, warm-start bases and vectors.
#include <algorithm>

#include "attr/handler_kit.h"
#include "attr/selectors.h"
#include "model/genconstr.h"
#include "model/validate.h"

namespace tarvik {

namespace {

using D = ModelData;
using P = PendingChanges;
using K = ElementKind;

template <auto Member>
void getTags(Model &m, const Elements &e, const char **out) {
  const NameList &tags = m.data().*Member;
  if (tags.empty()) attrNotAvailable();
  for (int k = 0; k < e.len; ++k) out[k] = tags.get(e[k]);
}

template <auto Queue, ElementKind kind>
void setTags(Model &m, const Elements &e, const char *const *tags) {
  m.edit([&](PendingChanges &p) { queueTexts(p.*Queue, e, tags, elementLimit(p, kind)); });
}

void getStart(Model &m, const Elements &e, double *out) {
  const int number = m.env().get(Int::StartNumber);
  const auto &starts = m.data().starts;
  if (number < 0 || number >= static_cast<int>(starts.size())) attrNotAvailable();
  for (int k = 0; k < e.len; ++k) out[k] = starts[number][e[k]];
}

// StartNumber -1 means a new start; the first start comes into being by setting it.
void setStart(Model &m, const Elements &e, const double *values) {
  const int selected = m.env().get(Int::StartNumber);
  const int count = pendingNumStarts(m);
  const int number = selected < 0 ? count : selected;
  if (number > count || (number == count && selected > 0))
    throw Error(TVK_ERROR_DATA_NOT_AVAILABLE, "StartNumber is larger than NumStart");
  if (number >= kMaxInt) {
    m.env().log("Setting attribute NumStart to a too big number %d, ignore\n", number);
    return;
  }
  m.edit([&](PendingChanges &p) {
    // Starts wait by number, so that setting many of them takes no search through all.
    const auto at = std::lower_bound(
        p.starts.begin(), p.starts.end(), number,
        [](const PendingStart &start, int wanted) { return start.number < wanted; });
    if (at != p.starts.end() && at->number == number) {
      queueValues(at->values, e, values, p.allVars());
    } else {
      PendingStart fresh{number, {}};
      queueValues(fresh.values, e, values, p.allVars());
      p.starts.insert(at, std::move(fresh));
    }
    if (number == count) p.numStart = number + 1;
  });
  if (selected < 0) m.env().setSilently(Int::StartNumber, number);
}

void setNumStart(Model &m, const Elements &, const int *value) {
  if (*value < 0) {
    m.env().log("Setting attribute NumStart to a negative number, ignored\n");
    return;
  }
  if (*value > kMaxInt) {
    m.env().log("Setting attribute NumStart to a too big number %d, ignore\n", *value);
    return;
  }
  m.edit([&](PendingChanges &p) {
    p.numStart = *value;
    p.keptStarts = std::min(p.keptStarts, *value);
    std::erase_if(p.starts, [&](const PendingStart &s) { return s.number >= *value; });
  });
}

// A hint has a value and a priority: when only one of them was given, the other has its default.
template <class T, auto Own, auto Other>
void getHint(Model &m, const Elements &e, T *out, T unset) {
  const auto &own = m.data().*Own;
  if (own.empty() && (m.data().*Other).empty()) attrNotAvailable();
  for (int k = 0; k < e.len; ++k) out[k] = own.empty() ? unset : own[e[k]];
}
void getHintVal(Model &m, const Elements &e, double *out) {
  getHint<double, &D::hintVal, &D::hintPri>(m, e, out, kUndefined);
}
void getHintPri(Model &m, const Elements &e, int *out) {
  getHint<int, &D::hintPri, &D::hintVal>(m, e, out, 0);
}

// In update mode 1 the dimensions of warm-start data must be those of the last update.
bool warmStartIsIgnored(Model &m) {
  const PendingChanges *p = m.pending();
  if (!p || p->mode != 1 || (p->cols.count() == 0 && p->rows.count() == 0)) return false;
  m.env().log(
      "Warning on update mode = 1 after new variables or constraints added:\n"
      "Setting LP warm start basis or start ignored\n");
  return true;
}

template <auto Queue, ElementKind kind>
void setWarmStart(Model &m, const Elements &e, const double *values) {
  if (!warmStartIsIgnored(m)) queueSet<Queue, kind>(m, e, values);
}

template <auto Queue, ElementKind kind>
void setBasis(Model &m, const Elements &e, const int *statuses) {
  for (int k = 0; k < e.len; ++k) {
    if (statuses[k] < TVK_SUPERBASIC)
      throw Error(TVK_ERROR_INVALID_ARGUMENT, "Invalid basis status %d", statuses[k]);
  }
  if (!warmStartIsIgnored(m)) queueSet<Queue, kind>(m, e, statuses);
}

template <auto Member>
const int *visibleBasis(Model &m) {
  return m.solution().basisIsVisible() ? (m.solution().*Member).data() : nullptr;
}

void getDStart(Model &m, const Elements &e, double *out) {
  copySigned(m, m.solution().dstart, e, out);
}

template <class T, auto Field>
void getFuncOption(Model &m, const Elements &e, T *out) {
  for (int k = 0; k < e.len; ++k) out[k] = m.data().genConstrs[e[k]].options.*Field;
}

// A new value passes the checks that a constraint with otherwise valid options passes.
template <class T, auto Queue, void (*Check)(Env &, T &)>
void setFuncOption(Model &m, const Elements &e, const T *values) {
  Vec<T> checked(values, values + e.len);
  const PendingChanges *p = m.pending();
  for (int k = 0; k < e.len; ++k) {
    const int base = m.data().numGenConstrs();
    const GenConstr &g = e[k] < base ? m.data().genConstrs[e[k]] : p->genConstrs[e[k] - base];
    if (!g.isFunction())
      throw Error(TVK_ERROR_INVALID_ARGUMENT, "Not a general function constraint");
    Check(m.env(), checked[k]);
  }
  queueSet<Queue, K::GenConstr>(m, e, static_cast<const T *>(checked.data()));
}

void registerFuncOptions(AttrTable &t) {
  using O = FuncOptions;
  t.handlers<int>(Attr::GenConstrType).get = [](Model &m, const Elements &e, int *out) {
    for (int k = 0; k < e.len; ++k) out[k] = m.data().genConstrs[e[k]].type;
  };
  t.handlers<int>(Attr::FuncPieces) = {nullptr, getFuncOption<int, &O::pieces>,
                                       setFuncOption<int, &P::funcPieces, checkFuncPieces>};
  t.handlers<double>(Attr::FuncPieceError) = {
      nullptr, getFuncOption<double, &O::error>,
      setFuncOption<double, &P::funcPieceError, checkFuncPieceError>};
  t.handlers<double>(Attr::FuncPieceLength) = {
      nullptr, getFuncOption<double, &O::length>,
      setFuncOption<double, &P::funcPieceLength, checkFuncPieceLength>};
  t.handlers<double>(Attr::FuncPieceRatio) = {
      nullptr, getFuncOption<double, &O::ratio>,
      setFuncOption<double, &P::funcPieceRatio, checkFuncPieceRatio>};
  t.handlers<int>(Attr::FuncNonlinear) = {
      nullptr, getFuncOption<int, &O::nonlinear>,
      setFuncOption<int, &P::funcNonlinear, checkFuncNonlinear>};
}

void registerWarmStart(AttrTable &t) {
  using S = SolutionStore;
  t.handlers<double>(Attr::PStart) = {resultVector<&S::pstart>, nullptr,
                                      setWarmStart<&P::pstart, K::Var>};
  t.handlers<double>(Attr::DStart) = {nullptr, getDStart, setWarmStart<&P::dstart, K::Constr>};
  t.handlers<int>(Attr::VBasis) = {visibleBasis<&S::vbasis>, nullptr, setBasis<&P::vbasis, K::Var>};
  t.handlers<int>(Attr::CBasis) = {visibleBasis<&S::cbasis>, nullptr,
                                   setBasis<&P::cbasis, K::Constr>};
  t.handlers<double>(Attr::VDualNorm) = {resultVector<&S::vDualNorm>, nullptr,
                                         queueSet<&P::vDualNorm, K::Var>};
  t.handlers<double>(Attr::CDualNorm) = {resultVector<&S::cDualNorm>, nullptr,
                                         queueSet<&P::cDualNorm, K::Constr>};
  t.handlers<int>(Attr::HasDualNorm).get = [](Model &m, const Elements &, int *out) {
    *out = !m.solution().vDualNorm.empty() || !m.solution().cDualNorm.empty();
  };
}

}  // namespace

void registerSettingAttrs(AttrTable &t) {
  const auto setting = [&]<class T>(Attr attr, const T *(*storage)(Model &),
                                    void (*set)(Model &, const Elements &, const T *)) {
    t.handlers<T>(attr) = {storage, nullptr, set};
  };
  setting(Attr::BranchPriority, dataVector<&D::branchPriority>,
          queueSet<&P::branchPriority, K::Var, int>);
  t.handlers<double>(Attr::VarHintVal) = {nullptr, getHintVal, queueSet<&P::hintVal, K::Var>};
  t.handlers<int>(Attr::VarHintPri) = {nullptr, getHintPri, queueSet<&P::hintPri, K::Var>};
  setting(Attr::Partition, dataVector<&D::partition>, queueSet<&P::partition, K::Var, int>);
  setting(Attr::PoolIgnore, dataVector<&D::poolIgnore>, queueSet<&P::poolIgnore, K::Var, int>);
  setting(Attr::IISLBForce, dataVector<&D::iisLBForce>, queueSet<&P::iisLBForce, K::Var, int>);
  setting(Attr::IISUBForce, dataVector<&D::iisUBForce>, queueSet<&P::iisUBForce, K::Var, int>);
  setting(Attr::Lazy, dataVector<&D::lazy>, queueSet<&P::lazy, K::Constr, int>);
  setting(Attr::IISConstrForce, dataVector<&D::iisConstrForce>,
          queueSet<&P::iisConstrForce, K::Constr, int>);
  setting(Attr::IISSOSForce, dataVector<&D::iisSosForce>, queueSet<&P::iisSosForce, K::Sos, int>);
  setting(Attr::IISQConstrForce, dataVector<&D::iisQConstrForce>,
          queueSet<&P::iisQConstrForce, K::QConstr, int>);
  setting(Attr::IISGenConstrForce, dataVector<&D::iisGenConstrForce>,
          queueSet<&P::iisGenConstrForce, K::GenConstr, int>);
  t.handlers<const char *>(Attr::VTag) = {nullptr, getTags<&D::varTags>,
                                          setTags<&P::varTags, K::Var>};
  t.handlers<const char *>(Attr::CTag) = {nullptr, getTags<&D::constrTags>,
                                          setTags<&P::constrTags, K::Constr>};
  t.handlers<const char *>(Attr::QCTag) = {nullptr, getTags<&D::qconstrTags>,
                                           setTags<&P::qconstrTags, K::QConstr>};
  t.handlers<double>(Attr::Start) = {nullptr, getStart, setStart};
  t.handlers<int>(Attr::NumStart) = {
      nullptr,
      [](Model &m, const Elements &, int *out) { *out = static_cast<int>(m.data().starts.size()); },
      setNumStart};
  registerFuncOptions(t);
  registerWarmStart(t);
}

}  // namespace tarvik
