#include "opt/retained_solve.h"

#include <algorithm>
#include <cassert>
#include <cmath>
#include <cstring>

#include "base/multiversion.h"
#include "opt/env_log.h"
#include "opt/lp_from_model.h"
#include "opt/options.h"
#include "simplex/condition.h"
#include "simplex/sensitivity.h"

namespace tarvik {

RetainedSolve &RetainedSolve::of(SolutionStore &store) {
  // The model may have been a mixed-integer one before.
  if (!dynamic_cast<RetainedSolve *>(store.solver.get())) store.solver.reset(new RetainedSolve);
  return static_cast<RetainedSolve &>(*store.solver);
}

void RetainedSolve::follow(const ModelData &data, const BoundRules &rules) {
  rules_ = rules;
  if (!filled_ || !sameColumns(data)) {
    engine_.drop();
    filled_ = false;
    coldIterations_ = 0;
    lp_ = lpFromModel(data, rules_);
    matrixEdition_ = data.matrixEdition;
    filled_ = true;
    return;
  }
  if (data.numConstrs() > lp_.numRows) followRows(data);
  assert(lp_.a.start == data.a.start && lp_.a.index == data.a.index && lp_.a.value == data.a.value);
  followVectors(data);
}

// Whether the data has the columns of lp_, or these with entries of appended rows behind; then
// added_ gets those entries. Columns between two with added entries are compared as one block,
// unless nothing but appended rows can have changed them.
bool RetainedSolve::sameColumns(const ModelData &data) {
  const SparseMatrix &now = data.a, &then = lp_.a;
  added_.clear();
  if (now.numMajor != then.numMajor || now.numMinor < then.numMinor) return false;
  const bool sameEdition = data.matrixEdition == matrixEdition_;
  const auto sameEntries = [&](NzIndex inNow, NzIndex inThen, NzIndex count) {
    if (sameEdition) return true;
    // Bit by bit is stricter than it need be, and fast.
    const std::size_t size = static_cast<std::size_t>(count);
    return std::memcmp(now.index.data() + inNow, then.index.data() + inThen, size * sizeof(int)) ==
               0 &&
           std::memcmp(now.value.data() + inNow, then.value.data() + inThen,
                       size * sizeof(double)) == 0;
  };
  NzIndex begin = 0, shift = 0;  // of the block, in then; how much further it stands in now
  for (int j = 0; j < then.numMajor; ++j) {
    const NzIndex end = then.start[j + 1], extra = now.start[j + 1] - end - shift;
    if (extra == 0) continue;
    if (extra < 0 || !sameEntries(begin + shift, begin, end - begin)) return false;
    for (NzIndex k = end + shift; k < now.start[j + 1]; ++k) {
      if (now.index[k] < then.numMinor) return false;
      added_.push_back({now.index[k], j, now.value[k]});
    }
    begin = end;
    shift += extra;
  }
  if (!sameEntries(begin + shift, begin, then.numNz() - begin)) return false;
  matrixEdition_ = data.matrixEdition;
  return true;
}

void RetainedSolve::followRows(const ModelData &data) {
  requireSolvableSize(data.a.numNz());
  const int oldRows = lp_.numRows, added = data.numConstrs() - oldRows;
  SparseMatrix rows;
  rows.numMajor = added;
  rows.numMinor = data.numVars();
  rows.start.assign(static_cast<std::size_t>(added) + 1, 0);
  for (const Entry &entry : added_) ++rows.start[entry.row - oldRows + 1];
  for (int i = 0; i < added; ++i) rows.start[i + 1] += rows.start[i];
  rows.index.resize(added_.size());
  rows.value.resize(added_.size());
  Vec<NzIndex> fill(rows.start.begin(), rows.start.end() - 1);
  for (const Entry &entry : added_) {
    const NzIndex at = fill[entry.row - oldRows]++;
    rows.index[at] = entry.col;
    rows.value[at] = entry.value;
  }
  for (int i = oldRows; i < data.numConstrs(); ++i) {
    const Bounds bounds = rowBounds(data, i);
    lp_.rowLower.push_back(bounds.lower);
    lp_.rowUpper.push_back(bounds.upper);
  }
  Vec<NzIndex> gap(lp_.a.numMajor, 0);
  for (const Entry &entry : added_) ++gap[entry.col];
  openGaps(lp_.a, gap);
  for (const Entry &entry : added_) {
    lp_.a.index[gap[entry.col]] = entry.row;
    lp_.a.value[gap[entry.col]++] = entry.value;
  }
  lp_.numRows = lp_.a.numMinor = data.numConstrs();
  if (Simplex *simplex = engine_.get())
    simplex->addRows(added, rows.start.data(), rows.index.data(), rows.value.data(),
                     lp_.rowLower.data() + oldRows, lp_.rowUpper.data() + oldRows);
}

namespace {

// Whether columns from `begin` on have the bounds and costs that lp has, as far as a pass without
// branches can tell, which vector units do quickly. False may be a false alarm: bounds that
// colBounds() would make one always raise it.
TARVIK_SIMD bool sameVectors(const double *lb, const double *ub, const double *obj,
                             const double *lower, const double *upper, const double *cost,
                             double infinite, double fixTol, int count) {
  int differences = 0;
  for (int j = 0; j < count; ++j) {
    const double lo = clamped(lb[j], infinite), up = clamped(ub[j], infinite);
    const bool meet = (lo != up) & !(up - lo > fixTol);
    differences += meet | (lo != lower[j]) | (up != upper[j]) | (obj[j] != cost[j]);
  }
  return differences == 0;
}

}  // namespace

void RetainedSolve::followVectors(const ModelData &data) {
  constexpr int kBlock = 512;
  for (int begin = 0; begin < lp_.numCols; begin += kBlock) {
    const int end = std::min(begin + kBlock, lp_.numCols);
    if (!sameVectors(data.lb.data() + begin, data.ub.data() + begin, data.obj.data() + begin,
                     lp_.colLower.data() + begin, lp_.colUpper.data() + begin,
                     lp_.cost.data() + begin, rules_.infinite, rules_.fixTol, end - begin))
      followColumns(data, begin, end);
  }
  followRowBounds(data);
  if (lp_.offset == data.objCon) return;
  lp_.offset = data.objCon;
  if (Simplex *simplex = engine_.get()) simplex->setOffset(data.objCon);
}

void RetainedSolve::followColumns(const ModelData &data, int begin, int end) {
  Simplex *simplex = engine_.get();
  for (int j = begin; j < end; ++j) {
    const Bounds bounds = colBounds(data, j, rules_);
    if (bounds.lower != lp_.colLower[j] || bounds.upper != lp_.colUpper[j]) {
      lp_.colLower[j] = bounds.lower;
      lp_.colUpper[j] = bounds.upper;
      if (simplex) simplex->setColBounds(j, bounds.lower, bounds.upper);
    }
    if (data.obj[j] != lp_.cost[j]) {
      lp_.cost[j] = data.obj[j];
      if (simplex) simplex->setCost(j, data.obj[j]);
    }
  }
}

void RetainedSolve::followRowBounds(const ModelData &data) {
  Simplex *simplex = engine_.get();
  for (int i = 0; i < lp_.numRows; ++i) {
    const Bounds bounds = rowBounds(data, i);
    if (bounds.lower == lp_.rowLower[i] && bounds.upper == lp_.rowUpper[i]) continue;
    lp_.rowLower[i] = bounds.lower;
    lp_.rowUpper[i] = bounds.upper;
    if (simplex) simplex->setRowBounds(i, bounds.lower, bounds.upper);
  }
}

RetainedSolve *RetainedSolve::withBasis(Model &model) {
  const SolutionStore &store = model.solution();
  auto *kept = dynamic_cast<RetainedSolve *>(store.solver.get());
  if (!kept || !kept->filled_ || kept->lp_.numRows == 0 || store.status == TVK_LOADED ||
      static_cast<int>(store.vbasis.size()) != kept->lp_.numCols ||
      static_cast<int>(store.cbasis.size()) != kept->lp_.numRows)
    return nullptr;
  return kept;
}

Simplex &RetainedSolve::factoredBasis(Model &model, SolveControl &control, bool &changed) {
  if (model.insideCallback) throw Error(TVK_ERROR_OPTIMIZATION_IN_PROGRESS);
  const SolutionStore &store = model.solution();
  SimplexOptions options = simplexOptions(model.env());
  options.logging = false;
  options.quad = 0;
  Simplex &simplex =
      engine_.open(lp_, options, basisFromCodes(model.data(), store.vbasis, store.cbasis, rules_),
                   store.x.empty() ? nullptr : &store.x);
  changed = !simplex.refresh(control);
  return simplex;
}

namespace {

// Runs an analysis of the final basis; false when there is none to analyse.
template <class Analysis>
bool analyse(Model &model, Analysis &&analysis) {
  RetainedSolve *kept = RetainedSolve::withBasis(model);
  if (!kept) return false;
  EnvLog log(model.env());
  SolveControl control;
  control.log = &log;
  control.limits.start();
  bool changed = false;
  Simplex &simplex = kept->factoredBasis(model, control, changed);
  if (changed) model.env().log("Warning: basis changed during sensitity analysis.\n");
  analysis(simplex, control);
  return true;
}

}  // namespace

void RetainedSolve::computeRanges(Model &model) {
  SolutionStore &store = model.solution();
  if (store.status != TVK_OPTIMAL) return;
  const auto infinite = [](Vec<double> &values) {
    for (double &value : values)
      if (isInf(value)) value = value > 0 ? kUserInf : -kUserInf;
  };
  SensitivityRanges ranges;
  if (lp_.numRows == 0) {
    if (!filled_ || store.x.empty()) return;
    ranges = rangesWithoutRows(lp_, store.x);
  } else if (!analyse(model, [&](Simplex &simplex, SolveControl &control) {
               ranges = sensitivityRanges(simplex.core(), control);
             })) {
    return;
  }
  for (Vec<double> *values : {&ranges.objLow, &ranges.objUp, &ranges.lbLow, &ranges.lbUp,
                              &ranges.ubLow, &ranges.ubUp, &ranges.rhsLow, &ranges.rhsUp})
    infinite(*values);
  store.saObjLow = std::move(ranges.objLow);
  store.saObjUp = std::move(ranges.objUp);
  store.saLbLow = std::move(ranges.lbLow);
  store.saLbUp = std::move(ranges.lbUp);
  store.saUbLow = std::move(ranges.ubLow);
  store.saUbUp = std::move(ranges.ubUp);
  store.saRhsLow = std::move(ranges.rhsLow);
  store.saRhsUp = std::move(ranges.rhsUp);
}

double RetainedSolve::conditionEstimate(Model &model) {
  double kappa = kUndefined;
  analyse(model, [&](Simplex &simplex, SolveControl &control) {
    kappa = tarvik::conditionEstimate(simplex, control.work);
  });
  return kappa;
}

double RetainedSolve::conditionTwoNorm(Model &model) {
  double kappa = kUndefined;
  analyse(model, [&](Simplex &simplex, SolveControl &control) {
    kappa = tarvik::conditionTwoNorm(simplex, control.work);
  });
  return kappa;
}

double RetainedSolve::conditionExact(Model &model) {
  double kappa = kUndefined;
  analyse(model, [&](Simplex &simplex, SolveControl &control) {
    kappa = tarvik::conditionExact(simplex, control.work);
  });
  return kappa;
}

}  // namespace tarvik
