#include "model/data_edit.h"

#include <algorithm>
#include <utility>

#include "model/validate.h"
#include "model/vector_edit.h"

namespace tarvik {

std::string nameInData(const NameList &names, int k, const char *prefix) {
  if (k < names.size() && !names.isBlank(k)) return names.get(k);
  return prefix + std::to_string(k);
}

Reach reachOf(const ModelData &data, int var) {
  Reach reach{data.lb[var], data.ub[var]};
  for (const Scenario &scenario : data.scenarios) {
    if (const double *lb = scenario.lb.find(var)) reach.least = std::min(reach.least, *lb);
    if (const double *ub = scenario.ub.find(var)) reach.greatest = std::max(reach.greatest, *ub);
  }
  if (data.vtype[var] == 'S' || data.vtype[var] == 'N') {
    reach.least = std::min(reach.least, 0.0);
    reach.greatest = std::max(reach.greatest, 0.0);
  }
  return reach;
}

namespace {

std::string_view shortened(const std::string &name) {
  return std::string_view(name).substr(0, kMaxNameLength);
}

template <class T>
void extend(Vec<T> &settings, T unset) {
  if (!settings.empty()) settings.push_back(unset);
}

template <class T>
void removeSettings(Vec<T> &settings, const Vec<char> &drop) {
  if (!settings.empty()) removeEntries(settings, drop);
}

void removeNames(NameList &names, const Vec<char> &drop) {
  if (!names.empty()) names.erase(drop);
}

}  // namespace

int appendColumn(ModelData &data, const NewColumn &column, const std::string &name) {
  if (data.storesNames()) {
    completeNames(data.varNames, data.numVars(), "C", 0);
    data.varNames.append(shortened(name));
    ++data.varNamesIssued;
  }
  data.a.append(column.numNz, column.ind, column.val);
  ++data.matrixEdition;
  data.obj.push_back(column.obj);
  data.lb.push_back(column.lb);
  data.ub.push_back(column.ub);
  data.vtype.push_back(column.type);
  data.numNonContinuous += column.type != 'C';
  data.numBinary += column.type == 'B';
  for (Objective &objective : data.objectives) objective.coef.push_back(0);
  for (Vec<double> &start : data.starts) start.push_back(kUndefined);
  extend(data.hintVal, kUndefined);
  for (Vec<int> *settings :
       {&data.hintPri, &data.branchPriority, &data.partition, &data.poolIgnore})
    extend(*settings, 0);
  for (Vec<int> *settings : {&data.iisLBForce, &data.iisUBForce}) extend(*settings, -1);
  if (!data.varTags.empty()) data.varTags.append("");
  return data.numVars() - 1;
}

void NewRows::add(int numNz, const int *ind, const double *val, char sense, double rhs,
                  const std::string &name) {
  Vec<std::pair<int, double>> entries(numNz);
  for (int k = 0; k < numNz; ++k) entries[k] = {ind[k], val[k]};
  std::stable_sort(entries.begin(), entries.end(),
                   [](const auto &a, const auto &b) { return a.first < b.first; });
  Vec<int> index;
  Vec<double> value;
  for (std::size_t k = 0; k < entries.size();) {
    const int var = entries[k].first;
    double sum = 0;
    for (; k < entries.size() && entries[k].first == var; ++k) sum += entries[k].second;
    if (sum == 0) continue;
    index.push_back(var);
    value.push_back(sum);
  }
  rows_.append(static_cast<int>(index.size()), index.data(), value.data());
  sense_.push_back(sense);
  rhs_.push_back(rhs);
  names_.append(shortened(name));
}

void NewRows::appendTo(ModelData &data) const {
  if (count() == 0) return;
  const int numVars = data.numVars();
  if (data.storesNames()) {
    completeNames(data.constrNames, data.numConstrs(), "R", 0);
    for (int k = 0; k < count(); ++k) data.constrNames.append(names_.get(k));
    data.constrNamesIssued += count();
  }
  SparseMatrix rows = transpose(data.a);
  for (int k = 0; k < count(); ++k) {
    const NzIndex begin = rows_.start[k];
    rows.append(rows_.length(k), rows_.index.data() + begin, rows_.value.data() + begin);
    extend(data.lazy, 0);
    extend(data.iisConstrForce, -1);
    if (!data.constrTags.empty()) data.constrTags.append("");
  }
  rows.numMinor = numVars;
  data.a = transpose(rows);
  ++data.matrixEdition;
  data.sense.insert(data.sense.end(), sense_.begin(), sense_.end());
  data.rhs.insert(data.rhs.end(), rhs_.begin(), rhs_.end());
}

void removeQConstrs(ModelData &data, const Vec<char> &drop) {
  removeEntries(data.qconstrs, drop);
  removeNames(data.qconstrNames, drop);
  removeNames(data.qconstrTags, drop);
  removeSettings(data.iisQConstrForce, drop);
}

void removeGenConstrs(ModelData &data, const Vec<char> &drop) {
  removeEntries(data.genConstrs, drop);
  removeNames(data.genConstrNames, drop);
  removeSettings(data.iisGenConstrForce, drop);
}

void removeAllSos(ModelData &data) {
  data.sos.clear();
  data.iisSosForce.clear();
}

void countTypes(ModelData &data) {
  data.numNonContinuous = 0;
  data.numBinary = 0;
  for (const char type : data.vtype) {
    data.numNonContinuous += type != 'C';
    data.numBinary += type == 'B';
  }
}

}  // namespace tarvik
