// The builder: a model from plain data, with the storage rules of the model data applied.
#include <cmath>
#include <string>

#include "model/data_edit.h"
#include "model/growth.h"
#include "model/model.h"
#include "model/validate.h"

namespace tarvik {

namespace {

void fillDefaults(ModelInput &input) {
  if (input.obj.empty()) input.obj.assign(input.numVars, 0.0);
  if (input.lb.empty()) input.lb.assign(input.numVars, 0.0);
  if (input.ub.empty()) input.ub.assign(input.numVars, kInf);
  if (input.vtype.empty()) input.vtype.assign(input.numVars, 'C');
  if (input.a.numMajor < input.numVars) input.a.start.resize(input.numVars + 1, input.a.numNz());
  input.a.numMajor = input.numVars;
  input.a.numMinor = input.numConstrs;
}

void normaliseColumns(ModelInput &input) {
  for (double &c : input.obj) c = clampToUserInf(c);
  for (int j = 0; j < input.numVars; ++j) {
    input.lb[j] = storedBound(input.lb[j]);
    input.ub[j] = storedBound(input.ub[j]);
    input.vtype[j] = checkedVarType(input.vtype[j]);
    roundIntegerBounds(input.vtype[j], input.lb[j], input.ub[j]);
  }
}

void normaliseRows(ModelInput &input) {
  for (double &b : input.rhs) b = clampToUserInf(b);
  for (char &s : input.sense) s = checkedSense(s);
}

// Drops coefficients below the tolerance; true when there were any.
bool dropSmallEntries(SparseMatrix &a, double tolerance) {
  NzIndex kept = 0, begin = 0;
  for (int j = 0; j < a.numMajor; ++j) {
    const NzIndex end = a.start[j + 1];
    for (NzIndex k = begin; k < end; ++k) {
      if (std::abs(a.value[k]) < tolerance) continue;
      a.index[kept] = a.index[k];
      a.value[kept++] = a.value[k];
    }
    begin = end;
    a.start[j + 1] = kept;
  }
  const bool dropped = kept < static_cast<NzIndex>(a.index.size());
  a.index.resize(kept);
  a.value.resize(kept);
  return dropped;
}

void completeInputNames(ModelInput &input, ModelData &data) {
  const auto hasText = [](const NameList &names) {
    for (int k = 0; k < names.size(); ++k)
      if (!names.isBlank(k)) return true;
    return false;
  };
  for (int k = 0; k < input.varNames.size(); ++k) checkName(input.varNames.get(k));
  for (int k = 0; k < input.constrNames.size(); ++k) checkName(input.constrNames.get(k));
  if (!hasText(input.varNames) && !hasText(input.constrNames)) return;
  completeNames(input.varNames, input.numVars, "C", 0);
  completeNames(input.constrNames, input.numConstrs, "R", 0);
  data.varNames = std::move(input.varNames);
  data.constrNames = std::move(input.constrNames);
  data.varNamesIssued = input.numVars;
  data.constrNamesIssued = input.numConstrs;
}

// A range row reads expression + r = upper with an own variable r in [0, upper - lower].
void addRangeVariable(ModelData &data, int row, double lower) {
  const double upper = data.rhs[row];
  double lb = 0, ub = upper - lower;
  if (lower <= -kInfBound && upper >= kInfBound) {
    lb = -kInf;
    ub = kInf;
    data.rhs[row] = 0;
  } else if (lower <= -kInfBound || upper >= kInfBound || ub >= kInfBound) {
    ub = kInf;
  }
  const double one = 1;
  data.a.append(1, &row, &one);
  data.obj.push_back(0);
  data.lb.push_back(lb);
  data.ub.push_back(ub);
  data.vtype.push_back('C');
  data.sense[row] = '=';
  if (data.storesNames()) {
    const std::string name = std::string("Rg") + data.constrNames.get(row);
    data.varNames.append(name.substr(0, kMaxNameLength));
    ++data.varNamesIssued;
  }
}

void addRanges(const Vec<double> &rangeLower, ModelData &data) {
  for (int i = 0; i < static_cast<int>(rangeLower.size()); ++i) {
    const double lower = rangeLower[i];
    if (lower <= -kUserInf) continue;
    addRangeVariable(data, i, lower);
  }
}

void negateObjective(ModelData &data) {
  data.objCon = -data.objCon;
  for (double &c : data.obj) c = -c;
}

ModelData buildData(Env &env, ModelInput &input, bool warn) {
  ModelData data;
  fillDefaults(input);
  normaliseColumns(input);
  normaliseRows(input);
  if (dropSmallEntries(input.a, env.get(Dbl::TARV_PAR_ZERO)) && warn) {
    env.log("Warning: loading a model with small (< 1e-13) coefficients, ignored\n");
  }
  if (!env.get(Int::IgnoreNames)) completeInputNames(input, data);
  data.objSense = input.objSense < 0 ? -1 : 1;
  data.objCon = input.objCon;
  data.name = std::move(input.name);
  data.a = std::move(input.a);
  // Readers do not know the size beforehand.
  trim(data.a.index);
  trim(data.a.value);
  data.obj = std::move(input.obj);
  data.lb = std::move(input.lb);
  data.ub = std::move(input.ub);
  data.vtype = std::move(input.vtype);
  data.rhs = std::move(input.rhs);
  data.sense = std::move(input.sense);
  addRanges(input.rangeLower, data);
  countTypes(data);
  if (data.objSense < 0) negateObjective(data);
  return data;
}

}  // namespace

TVKmodel *Model::create(Env &env, ModelInput &&input, bool warn) {
  return createFromData(env, buildData(env, input, warn));
}

}  // namespace tarvik
