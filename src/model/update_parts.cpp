// The update of quadratic terms, quadratic constraints, cones, SOS, general constraints,
// piecewise-linear and further objectives, and scenarios.
#include <algorithm>
#include <numeric>

#include "model/growth.h"
#include "model/update.h"
#include "model/validate.h"
#include "model/vector_edit.h"

namespace tarvik {

namespace {

// One term a pair, at the place of the pair's first occurrence; pairs that cancel disappear.
QuadTerms mergePairs(const QuadTerms &terms, double tolerance) {
  const int count = terms.count();
  const auto pairOf = [&](int k) { return std::minmax(terms.row[k], terms.col[k]); };
  Vec<int> order(count), owner(count);
  std::iota(order.begin(), order.end(), 0);
  std::sort(order.begin(), order.end(), [&](int x, int y) {
    const std::pair<int, int> a = pairOf(x), b = pairOf(y);
    return a != b ? a < b : x < y;
  });
  Vec<double> sum = terms.val;
  for (int k = 0; k < count; ++k) {
    const int term = order[k];
    const bool repeats =
        k > 0 && std::pair<int, int>(pairOf(term)) == std::pair<int, int>(pairOf(order[k - 1]));
    owner[term] = repeats ? owner[order[k - 1]] : term;
    if (repeats) sum[owner[term]] += terms.val[term];
  }
  QuadTerms merged;
  for (int k = 0; k < count; ++k)
    if (owner[k] == k && std::abs(sum[k]) >= tolerance)
      merged.append(terms.row[k], terms.col[k], sum[k]);
  return merged;
}

void renumberTerms(QuadTerms &terms, const Vec<int> &newVar) noexcept {
  int kept = 0;
  for (int k = 0; k < terms.count(); ++k) {
    const int i = newVar[terms.row[k]], j = newVar[terms.col[k]];
    if (i < 0 || j < 0) continue;
    terms.row[kept] = i;
    terms.col[kept] = j;
    terms.val[kept++] = terms.val[k];
  }
  terms.row.resize(kept);
  terms.col.resize(kept);
  terms.val.resize(kept);
}

// Indices with values that belong to them; an empty value vector has none.
void renumberList(Vec<int> &index, Vec<double> &value, const Vec<int> &newVar) noexcept {
  const bool withValues = value.size() == index.size();
  std::size_t kept = 0;
  for (std::size_t k = 0; k < index.size(); ++k) {
    if (newVar[index[k]] < 0) continue;
    index[kept] = newVar[index[k]];
    if (withValues) value[kept] = value[k];
    ++kept;
  }
  if (withValues) value.resize(kept);
  index.resize(kept);
}

// Whether the constraint still makes sense without the removed variables.
bool survives(const GenConstr &g, const Renumbering &vars) {
  if (vars.isDropped(g.resVar)) return false;
  const auto isKept = [&](int j) { return !vars.isDropped(j); };
  switch (g.type) {
    case TVK_GENCONSTR_INDICATOR:
      return true;
    case TVK_GENCONSTR_MAX:
    case TVK_GENCONSTR_MIN:
      if (std::abs(g.constant) < kUserInf) return true;
      [[fallthrough]];
    case TVK_GENCONSTR_AND:
    case TVK_GENCONSTR_OR:
    case TVK_GENCONSTR_NORM:
      return g.vars.empty() || std::any_of(g.vars.begin(), g.vars.end(), isKept);
    default:
      return isKept(g.vars[0]);
  }
}

void renumberGenConstr(GenConstr &g, const Vec<int> &newVar) noexcept {
  g.resVar = newVar[g.resVar];
  Vec<double> noValues;
  renumberList(g.vars, g.type == TVK_GENCONSTR_INDICATOR ? g.coef : noValues, newVar);
}

template <class T>
void appendAll(Vec<T> &target, Vec<T> &added) noexcept {
  for (T &part : added) target.push_back(std::move(part));
}

}  // namespace

void Update::prepareParts() {
  prepareQuadObjective();
  prepareQConstrs();
  checkGenConstrs();
  makeRoom(data_.cones, p_.cones.size());
  makeRoom(data_.sos, p_.sos.size());
  makeRoom(data_.genConstrs, p_.genConstrs.size());
  for (Sos &sos : p_.sos) sortByWeight(sos);
  preparePwl();
  prepareObjectives();
  prepareScenarios();
}

void Update::prepareQuadObjective() {
  if (!p_.deleteQ && p_.q.count() == 0) return;
  QuadTerms all;
  if (!p_.deleteQ) {
    all = data_.q;
    for (double &v : all.val) v *= toNew_;
  }
  for (int k = 0; k < p_.q.count(); ++k)
    all.append(p_.q.row[k], p_.q.col[k], 2 * sense_ * p_.q.val[k]);
  newQ_ = mergePairs(all, model_.env().get(Dbl::TARV_PAR_ZERO));
}

void Update::prepareQConstrs() { makeRoom(data_.qconstrs, p_.qconstrs.size()); }

void Update::checkGenConstrs() {
  if (!vars_.removes()) return;
  for (int k = 0; k < p_.allGenConstrs(); ++k) {
    const GenConstr &g =
        k < p_.baseGenConstrs ? data_.genConstrs[k] : p_.genConstrs[k - p_.baseGenConstrs];
    if (genConstrs_.isDropped(k) || survives(g, vars_)) continue;
    throw Error(TVK_ERROR_MODEL_MODIFICATION,
                "General constraint %d became invalid after removal of variable", k);
  }
}

// Sorts by weight and notes repeated weights.
void Update::sortByWeight(Sos &sos) {
  const int count = static_cast<int>(sos.ind.size());
  if (!std::is_sorted(sos.weight.begin(), sos.weight.end())) {
    Vec<int> order(count);
    std::iota(order.begin(), order.end(), 0);
    std::stable_sort(order.begin(), order.end(),
                     [&](int x, int y) { return sos.weight[x] < sos.weight[y]; });
    Sos sorted;
    sorted.type = sos.type;
    for (const int k : order) {
      sorted.ind.push_back(sos.ind[k]);
      sorted.weight.push_back(sos.weight[k]);
    }
    sos = std::move(sorted);
  }
  if (std::adjacent_find(sos.weight.begin(), sos.weight.end()) != sos.weight.end())
    duplicateSosWeights_ = true;
}

void Update::preparePwl() {
  if (p_.pwl.empty()) return;
  Vec<PwlObjective> merged = data_.pwl;
  for (PwlObjective &pwl : merged)
    for (double &y : pwl.y) y *= toNew_;
  for (const PwlObjective &pending : p_.pwl) {
    merged.push_back(pending);
    for (double &y : merged.back().y) y *= sense_;
  }
  std::stable_sort(merged.begin(), merged.end(),
                   [](const PwlObjective &a, const PwlObjective &b) { return a.var < b.var; });
  Vec<PwlObjective> last;
  for (std::size_t k = 0; k < merged.size(); ++k) {
    const bool replaced = k + 1 < merged.size() && merged[k + 1].var == merged[k].var;
    if (!replaced && !merged[k].x.empty()) last.push_back(std::move(merged[k]));
  }
  newPwl_ = std::move(last);
}

void Update::prepareObjectives() {
  for (Objective &objective : data_.objectives) makeRoomFor(objective.coef, extVars_);
  if (p_.objectives.empty() && !p_.numObj) return;
  Vec<Objective> all(p_.numObj.value_or(data_.objectives.size()));
  for (int n = 0; n < static_cast<int>(all.size()); ++n) {
    if (n < std::min<int>(static_cast<int>(data_.objectives.size()), p_.keptObjectives)) {
      all[n] = data_.objectives[n];
      all[n].con *= toNew_;
      for (double &c : all[n].coef) c *= toNew_;
    }
    all[n].coef.resize(extVars_, 0.0);
  }
  for (const PendingObjective &pending : p_.objectives) {
    if (pending.number >= static_cast<int>(all.size())) continue;
    Objective &objective = all[pending.number];
    if (pending.replaceCoef) std::fill(objective.coef.begin(), objective.coef.end(), 0.0);
    storeValues(pending.coef, objective.coef, [&](double c) { return sense_ * clampToUserInf(c); });
    if (pending.con) objective.con = sense_ * clampToUserInf(*pending.con);
    objective.priority = pending.priority.value_or(objective.priority);
    objective.weight = pending.weight.value_or(objective.weight);
    objective.absTol = pending.absTol.value_or(objective.absTol);
    objective.relTol = pending.relTol.value_or(objective.relTol);
    if (pending.name) objective.name = *pending.name;
  }
  newObjectives_ = std::move(all);
}

void Update::prepareScenarios() {
  if (p_.scenarios.empty() && !p_.numScenarios) return;
  Vec<Scenario> all(p_.numScenarios.value_or(data_.scenarios.size()));
  for (int n = 0; n < static_cast<int>(all.size()); ++n) {
    if (n >= std::min<int>(static_cast<int>(data_.scenarios.size()), p_.keptScenarios)) break;
    all[n] = data_.scenarios[n];
    all[n].obj.scale(toNew_);
  }
  for (const PendingScenario &pending : p_.scenarios) {
    if (pending.number >= static_cast<int>(all.size())) continue;
    Scenario &scenario = all[pending.number];
    scenario.obj.merge(pending.obj.index, pending.obj.value, sense_);
    scenario.lb.merge(pending.lb.index, pending.lb.value, 1);
    scenario.ub.merge(pending.ub.index, pending.ub.value, 1);
    scenario.rhs.merge(pending.rhs.index, pending.rhs.value, 1);
    if (pending.name) scenario.name = *pending.name;
  }
  newScenarios_ = std::move(all);
}

void Update::commitParts() noexcept {
  if (newQ_) data_.q = std::move(*newQ_);
  if (newPwl_) data_.pwl = std::move(*newPwl_);
  if (newScenarios_) data_.scenarios = std::move(*newScenarios_);
  if (newObjectives_) data_.objectives = std::move(*newObjectives_);
  for (Objective &objective : data_.objectives) objective.coef.resize(extVars_, 0.0);
  appendAll(data_.cones, p_.cones);
  appendAll(data_.sos, p_.sos);
  appendAll(data_.qconstrs, p_.qconstrs);
  appendAll(data_.genConstrs, p_.genConstrs);
  commitConstrValues();
  if (vars_.removes()) renumberVarsInParts();
  if (constrs_.removes())
    for (Scenario &scenario : data_.scenarios) scenario.rhs.renumber(constrs_.newIndex);
}

void Update::commitConstrValues() noexcept {
  for (std::size_t k = 0; k < p_.qcRhs.index.size(); ++k)
    data_.qconstrs[p_.qcRhs.index[k]].rhs = clampToUserInf(p_.qcRhs.value[k]);
  for (std::size_t k = 0; k < p_.qcSense.index.size(); ++k)
    data_.qconstrs[p_.qcSense.index[k]].sense = p_.qcSense.value[k];
  const auto setOption = [&](const auto &queue, auto FuncOptions::*field) {
    for (std::size_t k = 0; k < queue.index.size(); ++k)
      data_.genConstrs[queue.index[k]].options.*field = queue.value[k];
  };
  setOption(p_.funcPieces, &FuncOptions::pieces);
  setOption(p_.funcPieceError, &FuncOptions::error);
  setOption(p_.funcPieceLength, &FuncOptions::length);
  setOption(p_.funcPieceRatio, &FuncOptions::ratio);
  setOption(p_.funcNonlinear, &FuncOptions::nonlinear);
}

// A deleted variable leaves sums, products and sets as if it were zero; a cone without its head
// says nothing that a cone can express and goes with it.
void Update::renumberVarsInParts() noexcept {
  const Vec<int> &newVar = vars_.newIndex;
  renumberTerms(data_.q, newVar);
  for (QConstr &qc : data_.qconstrs) {
    renumberList(qc.lind, qc.lval, newVar);
    renumberTerms(qc.quad, newVar);
  }
  Vec<double> noValues;
  const std::size_t conesBefore = data_.cones.size();
  std::erase_if(data_.cones, [&](const Cone &cone) { return newVar[cone.members[0]] < 0; });
  conesLost_ = static_cast<int>(conesBefore - data_.cones.size());
  for (Cone &cone : data_.cones) renumberList(cone.members, noValues, newVar);
  for (Sos &sos : data_.sos) renumberList(sos.ind, sos.weight, newVar);
  for (int k = 0; k < data_.numGenConstrs(); ++k)
    if (!genConstrs_.isDropped(k)) renumberGenConstr(data_.genConstrs[k], newVar);
  std::erase_if(data_.pwl, [&](const PwlObjective &pwl) { return newVar[pwl.var] < 0; });
  for (PwlObjective &pwl : data_.pwl) pwl.var = newVar[pwl.var];
  for (Objective &objective : data_.objectives) removeEntries(objective.coef, vars_.drop);
  for (Scenario &scenario : data_.scenarios)
    for (SparseChanges *changes : {&scenario.obj, &scenario.lb, &scenario.ub})
      changes->renumber(newVar);
}

void Update::removeParts() noexcept {
  if (qconstrs_.removes()) removeEntries(data_.qconstrs, qconstrs_.drop);
  if (sos_.removes()) removeEntries(data_.sos, sos_.drop);
  if (genConstrs_.removes()) removeEntries(data_.genConstrs, genConstrs_.drop);
}

}  // namespace tarvik
