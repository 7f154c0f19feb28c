#include "opt/lp_from_model.h"

#include <utility>

#include "base/error.h"
#include "model/growth.h"
#include "tarvik.h"

namespace tarvik {

namespace {

bool rowIsImpossible(char sense, double rhs) {
  if (sense == TVK_LESS_EQUAL) return rhs <= -kInfBound;
  if (sense == TVK_GREATER_EQUAL) return rhs >= kInfBound;
  return isInf(rhs);
}

// Zeros as callers expect to see them printed.
void dropSignsOfZeros(Vec<double> &values) {
  for (double &value : values) value += 0.0;
}

}  // namespace

BadBounds findBadBounds(const ModelData &data, double tol, const BoundRules &rules) {
  for (int j = 0; j < data.numVars(); ++j) {
    const bool lowerInf = data.lb[j] >= rules.infinite;
    const bool upperInf = data.ub[j] <= -rules.infinite;
    if (!lowerInf && !upperInf && data.ub[j] - data.lb[j] >= -tol) continue;
    const bool crossed = !lowerInf && !upperInf;
    const bool pulled = (lowerInf && data.obj[j] < 0) || (upperInf && data.obj[j] > 0);
    return {BadBounds::Kind::Column, j, !crossed && pulled};
  }
  for (int i = 0; i < data.numConstrs(); ++i)
    if (rowIsImpossible(data.sense[i], data.rhs[i])) return {BadBounds::Kind::Row, i, false};
  return {};
}

void requireSolvableSize(NzIndex nonzeros) {
  if (nonzeros > kMaxInt) throw Error(TVK_ERROR_EXCEED_2B_NONZEROS);
}

LpModel lpFromModel(const ModelData &data, const BoundRules &rules) {
  requireSolvableSize(data.a.numNz());
  LpModel lp;
  lp.numRows = data.numConstrs();
  lp.numCols = data.numVars();
  // Room for rows to come, which a re-solve takes over without another block of this size.
  lp.a.index.reserve(withRoom(data.a.index.size()));
  lp.a.value.reserve(withRoom(data.a.value.size()));
  lp.a = data.a;
  lp.cost = data.obj;
  lp.offset = data.objCon;
  lp.colLower.resize(lp.numCols);
  lp.colUpper.resize(lp.numCols);
  for (int j = 0; j < lp.numCols; ++j) {
    const Bounds bounds = colBounds(data, j, rules);
    lp.colLower[j] = bounds.lower;
    lp.colUpper[j] = bounds.upper;
  }
  lp.rowLower.resize(lp.numRows);
  lp.rowUpper.resize(lp.numRows);
  for (int i = 0; i < lp.numRows; ++i) {
    const Bounds bounds = rowBounds(data, i);
    lp.rowLower[i] = bounds.lower;
    lp.rowUpper[i] = bounds.upper;
  }
  return lp;
}

Basis basisFromCodes(const ModelData &data, const Vec<int> &vbasis, const Vec<int> &cbasis,
                     const BoundRules &rules) {
  Basis basis;
  basis.col.resize(data.numVars());
  basis.row.resize(data.numConstrs());
  for (int j = 0; j < data.numVars(); ++j) {
    const bool noLower = data.lb[j] <= -rules.infinite, noUpper = data.ub[j] >= rules.infinite;
    VarStatus status = VarStatus::Basic;
    if (vbasis[j] == TVK_SUPERBASIC)
      status = noLower && noUpper ? VarStatus::Free : VarStatus::Superbasic;
    else if (vbasis[j] < 0 && noLower && noUpper)
      status = VarStatus::Free;
    else if (vbasis[j] == TVK_NONBASIC_UPPER)
      status = noUpper ? VarStatus::AtLower : VarStatus::AtUpper;
    else if (vbasis[j] == TVK_NONBASIC_LOWER)
      status = noLower ? VarStatus::AtUpper : VarStatus::AtLower;
    basis.col[j] = status;
  }
  for (int i = 0; i < data.numConstrs(); ++i)
    basis.row[i] = cbasis[i] == TVK_BASIC            ? VarStatus::Basic
                   : data.sense[i] == TVK_LESS_EQUAL ? VarStatus::AtUpper
                                                     : VarStatus::AtLower;
  return basis;
}

void basisToCodes(const Basis &basis, Vec<int> &vbasis, Vec<int> &cbasis) {
  vbasis.resize(basis.col.size());
  cbasis.resize(basis.row.size());
  for (std::size_t j = 0; j < basis.col.size(); ++j) {
    switch (basis.col[j]) {
      case VarStatus::Basic:
        vbasis[j] = TVK_BASIC;
        break;
      case VarStatus::AtLower:
        vbasis[j] = TVK_NONBASIC_LOWER;
        break;
      case VarStatus::AtUpper:
        vbasis[j] = TVK_NONBASIC_UPPER;
        break;
      case VarStatus::Free:
      case VarStatus::Superbasic:
        vbasis[j] = TVK_SUPERBASIC;
        break;
    }
  }
  for (std::size_t i = 0; i < basis.row.size(); ++i)
    cbasis[i] = basis.row[i] == VarStatus::Basic ? TVK_BASIC : TVK_NONBASIC_LOWER;
}

bool hasNonbasicInfiniteSlack(const ModelData &data, const Vec<int> &cbasis) {
  for (int i = 0; i < data.numConstrs(); ++i)
    if (cbasis[i] != TVK_BASIC && isInf(data.rhs[i])) return true;
  return false;
}

void storeSolution(const ModelData &data, LpSolution &&solution, SolutionStore &store) {
  store.x = std::move(solution.colValue);
  store.solvedVars.clear();
  if (!solution.rowActivity.empty()) {
    store.slack.resize(solution.rowActivity.size());
    for (int i = 0; i < data.numConstrs(); ++i)
      store.slack[i] = data.rhs[i] - solution.rowActivity[i];
  }
  store.pi = std::move(solution.rowDual);
  store.rc = std::move(solution.colDual);
  if (!solution.basis.empty()) basisToCodes(solution.basis, store.vbasis, store.cbasis);
  store.farkasDual = std::move(solution.farkas);
  for (double &value : store.farkasDual) value = 0.0 - value;
  store.unbdRay = std::move(solution.ray);
  dropSignsOfZeros(store.x);
  dropSignsOfZeros(store.unbdRay);
}

}  // namespace tarvik
