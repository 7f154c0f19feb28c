// The update of what is set per element: tags, hints, priorities, MIP starts, and the warm-start
// data of the next solve (basis, start vectors, dual norms), which is kept consistent with the
// model under additions and deletions.
#include <algorithm>
#include <cstring>
#include <string_view>

#include "model/growth.h"
#include "model/update.h"
#include "model/validate.h"
#include "model/vector_edit.h"

namespace tarvik {

namespace {

template <class T>
struct Setting {
  ElementKind kind;
  ValueQueue<T> PendingChanges::*queue;
  Vec<T> ModelData::*store;
  T unset;
};

using P = PendingChanges;
using D = ModelData;

constexpr Setting<int> kIntSettings[] = {
    {ElementKind::Var, &P::branchPriority, &D::branchPriority, 0},
    {ElementKind::Var, &P::hintPri, &D::hintPri, 0},
    {ElementKind::Var, &P::partition, &D::partition, 0},
    {ElementKind::Var, &P::poolIgnore, &D::poolIgnore, 0},
    {ElementKind::Var, &P::iisLBForce, &D::iisLBForce, -1},
    {ElementKind::Var, &P::iisUBForce, &D::iisUBForce, -1},
    {ElementKind::Constr, &P::lazy, &D::lazy, 0},
    {ElementKind::Constr, &P::iisConstrForce, &D::iisConstrForce, -1},
    {ElementKind::Sos, &P::iisSosForce, &D::iisSosForce, -1},
    {ElementKind::QConstr, &P::iisQConstrForce, &D::iisQConstrForce, -1},
    {ElementKind::GenConstr, &P::iisGenConstrForce, &D::iisGenConstrForce, -1},
};
constexpr Setting<double> kDoubleSettings[] = {
    {ElementKind::Var, &P::hintVal, &D::hintVal, kUndefined},
};

struct TagSetting {
  ElementKind kind;
  TextQueue PendingChanges::*queue;
  NameList ModelData::*store;
  const char *what;
};
constexpr TagSetting kTagSettings[] = {
    {ElementKind::Constr, &P::constrTags, &D::constrTags, "Linear constraint"},
    {ElementKind::Var, &P::varTags, &D::varTags, "Variable"},
    {ElementKind::QConstr, &P::qconstrTags, &D::qconstrTags, "Quadratic constraint"},
};

template <class T>
void prepareSetting(const Setting<T> &setting, PendingChanges &p, ModelData &data,
                    const Renumbering &elements) {
  if ((p.*setting.queue).empty() && (data.*setting.store).empty()) return;
  makeRoomFor(data.*setting.store, elements.count);
}

template <class T>
void commitSetting(const Setting<T> &setting, PendingChanges &p, ModelData &data,
                   const Renumbering &elements) noexcept {
  Vec<T> &store = data.*setting.store;
  if ((p.*setting.queue).empty() && store.empty()) return;
  store.resize(elements.count, setting.unset);
  storeValues(p.*setting.queue, store);
  if (elements.removes()) removeEntries(store, elements.drop);
  data.updateWork += static_cast<double>((p.*setting.queue).index.size());
}

void prepareTags(NameList &store, const TextQueue &queue, int count) {
  if (queue.empty() && store.empty()) return;
  store.compact();
  store.reserve(count, store.poolBytes() + (count - store.size()) + queue.text.poolBytes());
}

void commitTags(NameList &store, const TextQueue &queue, const Renumbering &elements) noexcept {
  if (queue.empty() && store.empty()) return;
  while (store.size() < elements.count) store.append("");
  for (std::size_t k = 0; k < queue.index.size(); ++k)
    store.replace(queue.index[k], queue.text.get(static_cast<int>(k)));
  if (elements.removes()) store.erase(elements.drop);
}

bool hasRepeatedTag(const NameList &store, const TextQueue &queue, const Renumbering &elements) {
  Vec<const char *> tags(elements.count, nullptr);
  for (int k = 0; k < store.size(); ++k) tags[k] = store.get(k);
  for (std::size_t k = 0; k < queue.index.size(); ++k)
    tags[queue.index[k]] = queue.text.get(static_cast<int>(k));
  Vec<std::string_view> used;
  for (int k = 0; k < elements.count; ++k)
    if (tags[k] && *tags[k] && !elements.isDropped(k)) used.push_back(tags[k]);
  std::sort(used.begin(), used.end());
  return std::adjacent_find(used.begin(), used.end()) != used.end();
}

bool allDefined(const Vec<double> &values) {
  return std::all_of(values.begin(), values.end(), [](double v) { return v < kUserInf; });
}

int nonbasicStatus(double lb, double ub) {
  if (lb > -kInfBound) return TVK_NONBASIC_LOWER;
  return ub < kInfBound ? TVK_NONBASIC_UPPER : TVK_SUPERBASIC;
}

constexpr int kUnsetStatus = -10;

}  // namespace

const Renumbering &Update::renumbering(ElementKind kind) const {
  switch (kind) {
    case ElementKind::Var:
      return vars_;
    case ElementKind::Constr:
      return constrs_;
    case ElementKind::Sos:
      return sos_;
    case ElementKind::QConstr:
      return qconstrs_;
    default:
      return genConstrs_;
  }
}

void Update::prepareSettings() {
  for (const auto &s : kIntSettings) prepareSetting(s, p_, data_, renumbering(s.kind));
  for (const auto &s : kDoubleSettings) prepareSetting(s, p_, data_, renumbering(s.kind));
  for (const TagSetting &s : kTagSettings) {
    const Renumbering &elements = renumbering(s.kind);
    if (!(p_.*s.queue).empty() && hasRepeatedTag(data_.*s.store, p_.*s.queue, elements))
      throw Error(TVK_ERROR_INVALID_ARGUMENT, "%s tags need to be unique.", s.what);
    prepareTags(data_.*s.store, p_.*s.queue, elements.count);
  }
  prepareStarts();
  prepareWarmStart();
}

void Update::prepareStarts() {
  for (Vec<double> &start : data_.starts) makeRoomFor(start, extVars_);
  if (p_.starts.empty() && !p_.numStart) return;
  Vec<Vec<double>> all(p_.numStart.value_or(data_.starts.size()));
  for (int n = 0; n < static_cast<int>(all.size()); ++n) {
    if (n < std::min<int>(static_cast<int>(data_.starts.size()), p_.keptStarts))
      all[n] = data_.starts[n];
    all[n].resize(extVars_, kUndefined);
  }
  for (const PendingStart &pending : p_.starts)
    if (pending.number < static_cast<int>(all.size()))
      storeValues(pending.values, all[pending.number], storedStart);
  newStarts_ = std::move(all);
}

void Update::commitSettings() noexcept {
  for (const auto &s : kIntSettings) commitSetting(s, p_, data_, renumbering(s.kind));
  for (const auto &s : kDoubleSettings) commitSetting(s, p_, data_, renumbering(s.kind));
  for (const TagSetting &s : kTagSettings)
    commitTags(data_.*s.store, p_.*s.queue, renumbering(s.kind));
  if (newStarts_) data_.starts = std::move(*newStarts_);
  for (Vec<double> &start : data_.starts) {
    start.resize(extVars_, kUndefined);
    if (vars_.removes()) removeEntries(start, vars_.drop);
  }
}

void Update::prepareWarmStart() {
  const bool startGiven = !p_.pstart.empty() || !p_.dstart.empty();
  const bool basisGiven = !p_.vbasis.empty() || !p_.cbasis.empty();
  const bool normsGiven = !p_.vDualNorm.empty() || !p_.cDualNorm.empty();
  const int numConstrs = p_.allConstrs();
  if (startGiven || !solution_.pstart.empty()) makeRoomFor(solution_.pstart, extVars_);
  if (startGiven || !solution_.dstart.empty()) makeRoomFor(solution_.dstart, numConstrs);
  if (basisGiven || !solution_.vbasis.empty()) {
    makeRoomFor(solution_.vbasis, extVars_);
    makeRoomFor(solution_.cbasis, numConstrs);
  }
  if (normsGiven) {
    makeRoomFor(solution_.vDualNorm, extVars_);
    makeRoomFor(solution_.cDualNorm, numConstrs);
  }
  for (Vec<double> *x : {&solution_.x, &solution_.previousX})
    if (!x->empty()) makeRoomFor(*x, extVars_);
  if (!solution_.solvedVars.empty()) makeRoomFor(solution_.solvedVars, extVars_);
}

// Runs after the removal of columns and rows: data_ has its final dimensions, the warm-start
// vectors still have those of the last update.
void Update::commitWarmStart() noexcept {
  commitLpStart();
  commitBasis();
  const bool resized =
      p_.cols.count() > 0 || p_.rows.count() > 0 || vars_.removes() || constrs_.removes();
  if (resized) {
    solution_.vDualNorm.clear();
    solution_.cDualNorm.clear();
  }
  if (!p_.vDualNorm.empty() || !p_.cDualNorm.empty()) {
    solution_.vDualNorm.resize(extVars_, 1.0);
    solution_.cDualNorm.resize(constrs_.count, 1.0);
    storeValues(p_.vDualNorm, solution_.vDualNorm);
    storeValues(p_.cDualNorm, solution_.cDualNorm);
    if (vars_.removes()) removeEntries(solution_.vDualNorm, vars_.drop);
    if (constrs_.removes()) removeEntries(solution_.cDualNorm, constrs_.drop);
  }
  if (!solution_.previousX.empty()) {
    solution_.previousX.resize(extVars_, kUndefined);
    if (vars_.removes()) removeEntries(solution_.previousX, vars_.drop);
  }
  if (!solution_.solvedVars.empty()) {
    solution_.solvedVars.resize(extVars_, 0);
    if (vars_.removes()) removeEntries(solution_.solvedVars, vars_.drop);
  }
}

void Update::commitLpStart() noexcept {
  Vec<double> &primal = solution_.pstart, &dual = solution_.dstart;
  const bool given = !p_.pstart.empty() || !p_.dstart.empty();
  // New elements of a vector that was complete before get harmless values.
  const double fillPrimal = primal.empty() || given ? kUndefined : 0;
  const double fillDual = dual.empty() || given ? kUndefined : 0;
  if (given || !primal.empty()) primal.resize(extVars_, fillPrimal);
  if (given || !dual.empty()) dual.resize(constrs_.count, fillDual);
  storeValues(p_.pstart, primal);
  storeValues(p_.dstart, dual, [&](double y) { return y < kUserInf ? sense_ * y : y; });
  if (vars_.removes() && !primal.empty()) removeEntries(primal, vars_.drop);
  if (constrs_.removes() && !dual.empty()) removeEntries(dual, constrs_.drop);
  if (!given) return;
  const bool primalDefined = allDefined(primal), dualDefined = allDefined(dual);
  if (!primalDefined) primal.clear();
  if (!dualDefined) dual.clear();
  badStart_ = !primalDefined && !dualDefined;
}

void Update::commitBasis() noexcept {
  Vec<int> &vbasis = solution_.vbasis, &cbasis = solution_.cbasis;
  const bool given = !p_.vbasis.empty() || !p_.cbasis.empty();
  if (vbasis.empty() && cbasis.empty()) {
    if (!given) return;
    vbasis.resize(extVars_, kUnsetStatus);
    cbasis.resize(constrs_.count, kUnsetStatus);
  }
  const std::size_t known = vbasis.size();
  vbasis.resize(extVars_, kUnsetStatus);
  cbasis.resize(constrs_.count, TVK_BASIC);
  if (known < vbasis.size()) {
    for (std::size_t j = known; j < vbasis.size(); ++j) {
      const int now = vars_.newIndex.empty() ? static_cast<int>(j) : vars_.newIndex[j];
      if (now >= 0) vbasis[j] = nonbasicStatus(data_.lb[now], data_.ub[now]);
    }
  }
  storeValues(p_.vbasis, vbasis);
  storeValues(p_.cbasis, cbasis);
  if (vars_.removes()) removeEntries(vbasis, vars_.drop);
  if (constrs_.removes()) removeEntries(cbasis, constrs_.drop);
  if (!given) {
    balanceBasis();
    return;
  }
  const auto isBasic = [](int status) { return status >= TVK_BASIC; };
  const auto numBasic = std::count_if(vbasis.begin(), vbasis.end(), isBasic) +
                        std::count_if(cbasis.begin(), cbasis.end(), isBasic);
  const bool complete = std::count(vbasis.begin(), vbasis.end(), kUnsetStatus) == 0 &&
                        std::count(cbasis.begin(), cbasis.end(), kUnsetStatus) == 0;
  solution_.userBasis = complete && (numBasic == data_.numConstrs() || data_.q.count() > 0);
  if (!solution_.userBasis) {
    badBasis_ = true;
    vbasis.clear();
    cbasis.clear();
  }
}

// After deletions the number of basic entries may differ from the number of rows, which only a
// quadratic objective allows: slacks fill up a basis that is too small, variables leave one that
// is too large.
void Update::balanceBasis() noexcept {
  Vec<int> &vbasis = solution_.vbasis, &cbasis = solution_.cbasis;
  const bool mayDiffer = vars_.removes() || constrs_.removes() || newQ_;
  if (!mayDiffer || data_.q.count() > 0) return;
  const auto isBasic = [](int status) { return status >= TVK_BASIC; };
  auto numBasic = std::count_if(vbasis.begin(), vbasis.end(), isBasic) +
                  std::count_if(cbasis.begin(), cbasis.end(), isBasic);
  const int numConstrs = data_.numConstrs();
  for (int i = 0; i < numConstrs && numBasic < numConstrs; ++i) {
    if (isBasic(cbasis[i])) continue;
    cbasis[i] = TVK_BASIC;
    ++numBasic;
  }
  for (int j = data_.numVars() - 1; j >= 0 && numBasic > numConstrs; --j) {
    if (!isBasic(vbasis[j])) continue;
    vbasis[j] = nonbasicStatus(data_.lb[j], data_.ub[j]);
    --numBasic;
  }
}

}  // namespace tarvik
