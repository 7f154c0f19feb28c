#include "model/update.h"

#include <algorithm>
#include <cstdio>
#include <string>

#include "model/data_edit.h"
#include "model/growth.h"
#include "model/validate.h"
#include "model/vector_edit.h"

namespace tarvik {

void Renumbering::prepare(const Vec<char> &marks, int numElements, bool keepMap) {
  count = kept = numElements;
  if (std::find(marks.begin(), marks.end(), char{1}) == marks.end()) return;
  drop = marks;
  drop.resize(numElements, 0);
  kept = static_cast<int>(std::count(drop.begin(), drop.end(), char{0}));
  if (!keepMap) return;
  newIndex.resize(numElements);
  int next = 0;
  for (int k = 0; k < numElements; ++k) newIndex[k] = drop[k] ? -1 : next++;
}

void NamesUpdate::prepare(NameList &stored, bool store, int base, int firstNumber,
                          const NameList &given, int added, const TextQueue &set,
                          const char *prefix) {
  active_ = store;
  if (!store) return;
  added_ = added;
  firstNumber_ = firstNumber;
  prefix_ = prefix;
  if (stored.size() < base) {
    completeNames(fresh_, base, prefix, 0);
    replaces_ = true;
  } else if (added > 0 || !set.empty()) {
    stored.compact();
  }
  std::size_t blanks = 0;
  for (int k = 0; k < added; ++k) blanks += given.empty() || given.isBlank(k);
  reserveMore(stored, added, given.poolBytes() + blanks * 16 + set.text.poolBytes());
}

void NamesUpdate::reserveMore(NameList &stored, int count, std::size_t bytes) {
  if (!active_) return;
  NameList &target = replaces_ ? fresh_ : stored;
  target.reserve(static_cast<std::size_t>(target.size()) + count + added_,
                 target.poolBytes() + bytes);
}

void NamesUpdate::extend(NameList &stored, const NameList &given) noexcept {
  if (!active_) return;
  if (replaces_) stored = std::move(fresh_);
  char text[32];
  for (int k = 0; k < added_; ++k) {
    if (!given.empty() && !given.isBlank(k)) {
      stored.append(given.get(k));
    } else {
      const int length = std::snprintf(text, sizeof text, "%s%d", prefix_, firstNumber_ + k);
      stored.append({text, static_cast<std::size_t>(length)});
    }
  }
}

void NamesUpdate::appendLast(NameList &stored, std::string_view name) noexcept {
  if (active_) stored.append(name);
}

void NamesUpdate::commit(NameList &stored, const TextQueue &set,
                         const Renumbering &elements) noexcept {
  if (!active_) return;
  for (std::size_t k = 0; k < set.index.size(); ++k)
    stored.replace(set.index[k], set.text.get(static_cast<int>(k)));
  if (elements.removes()) stored.erase(elements.drop);
}

Update::Update(Model &model, PendingChanges &pending)
    : model_(model),
      data_(model.data()),
      p_(pending),
      solution_(model.solution()),
      sense_(pending.objSense.value_or(model.data().objSense)),
      toNew_(sense_ == model.data().objSense ? 1 : -1) {}

void Update::prepare() {
  for (int i = 0; i < p_.rows.count(); ++i) {
    const int row = p_.baseConstrs + i;
    const bool dropped = row < static_cast<int>(p_.dropConstr.size()) && p_.dropConstr[row] != 0;
    if (p_.rows.lower[i] > -kUserInf && !dropped) rangeRows_.push_back(row);
  }
  extVars_ = p_.allVars() + static_cast<int>(rangeRows_.size());
  vars_.prepare(p_.dropVar, extVars_, true);
  constrs_.prepare(p_.dropConstr, p_.allConstrs(), true);
  sos_.prepare(p_.dropSos, p_.allSos(), false);
  qconstrs_.prepare(p_.dropQConstr, p_.allQConstrs(), false);
  genConstrs_.prepare(p_.dropGenConstr, p_.allGenConstrs(), false);

  prepareParts();
  prepareSettings();
  prepareNames();
  prepareColumns();
  prepareRows();
  matrix_.prepare(data_.a, p_, rangeRows_, model_.env().get(Dbl::TARV_PAR_ZERO));
}

void Update::commit() noexcept {
  if (affectsSolution()) solution_.clearResults();
  flipSense();
  matrix_.commit(data_.a, p_, rangeRows_);
  commitColumns();
  commitRows();
  commitNames();
  applyColumnValues();
  applyRowValues();
  commitParts();
  commitSettings();

  if (p_.objCon) data_.objCon = sense_ * clampToUserInf(*p_.objCon);
  if (p_.name) data_.name = std::move(*p_.name);
  matrix_.removeMarked(data_.a, vars_.drop, constrs_.drop, constrs_.newIndex, constrs_.kept);
  removeColumns();
  removeRows();
  removeParts();
  data_.matrixEdition += matrix_.changedOldEntries();
  commitWarmStart();
  countTypes();
  data_.updateWork += matrix_.work();
}

bool Update::affectsSolution() const {
  return p_.cols.count() > 0 || p_.rows.count() > 0 || !p_.coefs.row.empty() || p_.deleteQ ||
         p_.q.count() > 0 || !p_.qconstrs.empty() || !p_.cones.empty() || !p_.sos.empty() ||
         !p_.genConstrs.empty() || !p_.pwl.empty() || vars_.removes() || constrs_.removes() ||
         sos_.removes() || qconstrs_.removes() || genConstrs_.removes() || !p_.obj.empty() ||
         !p_.lb.empty() || !p_.ub.empty() || !p_.rhs.empty() || !p_.qcRhs.empty() ||
         !p_.vtype.empty() || !p_.sense.empty() || !p_.qcSense.empty() || p_.objSense ||
         p_.objCon || p_.numObj || p_.numScenarios || !p_.objectives.empty() ||
         !p_.scenarios.empty() || !p_.funcPieces.empty() || !p_.funcPieceError.empty() ||
         !p_.funcPieceLength.empty() || !p_.funcPieceRatio.empty() || !p_.funcNonlinear.empty();
}

void Update::prepareColumns() {
  for (Vec<double> *v : {&data_.obj, &data_.lb, &data_.ub}) makeRoomFor(*v, extVars_);
  makeRoomFor(data_.vtype, extVars_);
}

void Update::prepareRows() {
  makeRoomFor(data_.rhs, p_.allConstrs());
  makeRoomFor(data_.sense, p_.allConstrs());
}

void Update::prepareNames() {
  const bool store = data_.storesNames() || !p_.cols.names.empty() || !p_.rows.names.empty() ||
                     !p_.varNames.empty() || !p_.constrNames.empty();
  varNames_.prepare(data_.varNames, store, p_.baseVars, std::max(p_.baseVars, data_.varNamesIssued),
                    p_.cols.names, p_.cols.count(), p_.varNames, "C");
  constrNames_.prepare(data_.constrNames, store, p_.baseConstrs,
                       std::max(p_.baseConstrs, data_.constrNamesIssued), p_.rows.names,
                       p_.rows.count(), p_.constrNames, "R");
  std::size_t rangeBytes = 0;
  for (const int row : rangeRows_) {
    const int i = row - p_.baseConstrs;
    const bool given = !p_.rows.names.empty() && !p_.rows.names.isBlank(i);
    rangeBytes += (given ? std::string_view(p_.rows.names.get(i)).size() : 12) + 4;
  }
  if (!rangeRows_.empty()) {
    varNames_.reserveMore(data_.varNames, static_cast<int>(rangeRows_.size()),
                          p_.cols.names.poolBytes() +
                              16 * static_cast<std::size_t>(p_.cols.count()) +
                              p_.varNames.text.poolBytes() + rangeBytes);
  }
  qconstrNames_.prepare(data_.qconstrNames,
                        store || !data_.qconstrNames.empty() || !p_.qconstrNames.empty() ||
                            !p_.qconstrNamesSet.empty(),
                        p_.baseQConstrs, p_.baseQConstrs, p_.qconstrNames,
                        static_cast<int>(p_.qconstrs.size()), p_.qconstrNamesSet, "QC");
  genConstrNames_.prepare(data_.genConstrNames,
                          store || !data_.genConstrNames.empty() || !p_.genConstrNames.empty() ||
                              !p_.genConstrNamesSet.empty(),
                          p_.baseGenConstrs, p_.baseGenConstrs, p_.genConstrNames,
                          static_cast<int>(p_.genConstrs.size()), p_.genConstrNamesSet, "GC");
}

void Update::flipSense() noexcept {
  if (toNew_ > 0) return;
  data_.objSense = sense_;
  data_.objCon = -data_.objCon;
  for (double &c : data_.obj) c = -c;
  for (double &v : data_.q.val) v = -v;
  for (PwlObjective &pwl : data_.pwl)
    for (double &y : pwl.y) y = -y;
  for (Objective &objective : data_.objectives) {
    objective.con = -objective.con;
    for (double &c : objective.coef) c = -c;
  }
  for (Scenario &scenario : data_.scenarios) scenario.obj.scale(-1);
  for (double &y : solution_.dstart)
    if (y < kUserInf) y = -y;
}

void Update::commitColumns() noexcept {
  for (const double c : p_.cols.obj) data_.obj.push_back(sense_ * c);
  data_.lb.insert(data_.lb.end(), p_.cols.lb.begin(), p_.cols.lb.end());
  data_.ub.insert(data_.ub.end(), p_.cols.ub.begin(), p_.cols.ub.end());
  data_.vtype.insert(data_.vtype.end(), p_.cols.vtype.begin(), p_.cols.vtype.end());
  for (const int row : rangeRows_) {
    const int i = row - p_.baseConstrs;
    const double width = p_.rows.rhs[i] - p_.rows.lower[i];
    data_.obj.push_back(0);
    data_.lb.push_back(0);
    data_.ub.push_back(storedBound(width));
    data_.vtype.push_back('C');
  }
}

void Update::commitRows() noexcept {
  data_.rhs.insert(data_.rhs.end(), p_.rows.rhs.begin(), p_.rows.rhs.end());
  data_.sense.insert(data_.sense.end(), p_.rows.sense.begin(), p_.rows.sense.end());
}

void Update::commitNames() noexcept {
  constrNames_.extend(data_.constrNames, p_.rows.names);
  varNames_.extend(data_.varNames, p_.cols.names);
  char text[kMaxNameLength + 1];
  for (const int row : rangeRows_) {
    if (!varNames_.active()) break;
    std::snprintf(text, sizeof text, "Rg%s", data_.constrNames.get(row));
    varNames_.appendLast(data_.varNames, text);
  }
  if (varNames_.active()) {
    data_.varNamesIssued = std::max(data_.varNamesIssued, p_.baseVars) + extVars_ - p_.baseVars;
    data_.constrNamesIssued = std::max(data_.constrNamesIssued, p_.baseConstrs) + p_.rows.count();
  }
  varNames_.commit(data_.varNames, p_.varNames, vars_);
  constrNames_.commit(data_.constrNames, p_.constrNames, constrs_);
  qconstrNames_.extend(data_.qconstrNames, p_.qconstrNames);
  qconstrNames_.commit(data_.qconstrNames, p_.qconstrNamesSet, qconstrs_);
  genConstrNames_.extend(data_.genConstrNames, p_.genConstrNames);
  genConstrNames_.commit(data_.genConstrNames, p_.genConstrNamesSet, genConstrs_);
}

void Update::applyColumnValues() noexcept {
  storeValues(p_.obj, data_.obj, [&](double c) { return sense_ * clampToUserInf(c); });
  storeValues(p_.lb, data_.lb, storedBound);
  storeValues(p_.ub, data_.ub, storedBound);
  storeValues(p_.vtype, data_.vtype);
  const auto clipBinaries = [&](const Vec<int> &touched) {
    for (const int j : touched)
      if (data_.vtype[j] == 'B') roundIntegerBounds('B', data_.lb[j], data_.ub[j]);
  };
  clipBinaries(p_.vtype.index);
  clipBinaries(p_.lb.index);
  clipBinaries(p_.ub.index);
}

void Update::applyRowValues() noexcept {
  storeValues(p_.rhs, data_.rhs, clampToUserInf);
  storeValues(p_.sense, data_.sense);
}

void Update::removeColumns() noexcept {
  if (!vars_.removes()) return;
  for (Vec<double> *v : {&data_.obj, &data_.lb, &data_.ub}) removeEntries(*v, vars_.drop);
  removeEntries(data_.vtype, vars_.drop);
}

void Update::removeRows() noexcept {
  if (!constrs_.removes()) return;
  removeEntries(data_.rhs, constrs_.drop);
  removeEntries(data_.sense, constrs_.drop);
}

void Update::countTypes() noexcept {
  if (p_.cols.count() == 0 && p_.vtype.empty() && !vars_.removes()) return;
  tarvik::countTypes(data_);
}

void Update::logWarnings() {
  Env &env = model_.env();
  if (duplicateSosWeights_) {
    env.log("Warning: model has duplicate SOS weights (could lead to inconsistent results)\n");
  }
  if (conesLost_ > 0) {
    env.log("Warning: %d cones removed together with their head variables\n", conesLost_);
  }
  if (badStart_) env.log("Warning, invalid warm-start solution discarded\n");
  if (badBasis_) env.log("Warning, invalid warm-start basis discarded\n");
}

}  // namespace tarvik
