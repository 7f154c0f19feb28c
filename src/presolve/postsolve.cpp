// The way back from the reduced to the full model: solutions, certificates, bases.

#include <algorithm>
#include <cmath>

#include "presolve/presolve_run.h"

namespace tarvik {

using namespace presolve;

namespace {

using Undo = void (*)(RecordReader, PostsolveState &);

Undo undoOf(RecordKind kind) {
  switch (kind) {
    case RecordKind::FixedCol:
      return undoFixedCol;
    case RecordKind::RedundantRow:
      return undoRedundantRow;
    case RecordKind::SingletonRow:
      return undoSingletonRow;
    case RecordKind::ForcingRow:
      return undoForcingRow;
    case RecordKind::UnconstrainedCol:
      return undoUnconstrainedCol;
    case RecordKind::FreeSingletonCol:
      return undoFreeSingletonCol;
    case RecordKind::SlackCol:
      return undoSlackCol;
    case RecordKind::Doubleton:
      return undoDoubleton;
    case RecordKind::Substitution:
      return undoSubstitution;
    case RecordKind::EquationSide:
      return undoEquationSide;
    case RecordKind::ParallelRows:
      return undoParallelRows;
    case RecordKind::ParallelCols:
      return undoParallelCols;
    case RecordKind::AddedEquation:
      return undoAddedEquation;
  }
  return nullptr;
}

template <class T>
void scatter(const Vec<T> &reduced, const Vec<int> &map, Vec<T> &full) {
  for (std::size_t k = 0; k < map.size(); ++k) full[map[k]] = reduced[k];
}

Vec<double> activities(const LpModel &lp, const Vec<double> &x) {
  Vec<CompensatedSum> sums(static_cast<std::size_t>(lp.numRows));
  for (int j = 0; j < lp.numCols; ++j) {
    if (x[j] == 0) continue;
    for (NzIndex k = lp.a.start[j]; k < lp.a.start[j + 1]; ++k)
      sums[lp.a.index[k]].addProduct(lp.a.value[k], x[j]);
  }
  Vec<double> activity;
  activity.reserve(sums.size());
  for (const CompensatedSum &sum : sums) activity.push_back(sum.value());
  return activity;
}

// Logicals become basic for those that undoing has taken out: the same if it can be, any otherwise.
void completeBasis(PostsolveState &state) {
  std::size_t missing = state.missingBasic.size();
  const auto enter = [&](VarStatus &status) {
    if (missing == 0 || status == VarStatus::Basic) return;
    status = VarStatus::Basic;
    --missing;
  };
  for (const int row : state.missingBasic) enter(state.rowStatus[row]);
  for (VarStatus &status : state.rowStatus) enter(status);
}

}  // namespace

void PresolveRun::undoAll(PostsolveState &state) const {
  for (int record = ws.stack.size() - 1; record >= 0; --record)
    undoOf(ws.stack.kind(record))(ws.stack.read(record), state);
}

bool PresolveRun::postsolve(const LpSolution &reducedSolution, LpSolution &full) const {
  const std::size_t numRows = static_cast<std::size_t>(lp_->numRows);
  const std::size_t numCols = static_cast<std::size_t>(lp_->numCols);
  PostsolveState state;
  state.hasPrimal = reducedSolution.colValue.size() == cols.size();
  // A problem with integral columns has no duals; its solution is not basic.
  state.hasDual = !ws.options.integer && reducedSolution.rowDual.size() == rows.size() &&
                  reducedSolution.colDual.size() == cols.size();
  state.hasBasis = state.hasPrimal && state.hasDual &&
                   reducedSolution.basis.col.size() == cols.size() &&
                   reducedSolution.basis.row.size() == rows.size();
  if (state.hasPrimal) {
    state.x.assign(numCols, 0.0);
    state.activity.assign(numRows, 0.0);
    scatter(reducedSolution.colValue, cols, state.x);
    scatter(activities(reduced, reducedSolution.colValue), rows, state.activity);
  }
  if (state.hasDual) {
    state.y.assign(numRows, 0.0);
    state.d.assign(numCols, 0.0);
    scatter(reducedSolution.rowDual, rows, state.y);
    scatter(reducedSolution.colDual, cols, state.d);
  }
  if (state.hasBasis) {
    state.colStatus.assign(numCols, VarStatus::Basic);
    state.rowStatus.assign(numRows, VarStatus::Basic);
    scatter(reducedSolution.basis.col, cols, state.colStatus);
    scatter(reducedSolution.basis.row, rows, state.rowStatus);
  }
  undoAll(state);
  completeBasis(state);
  full = LpSolution{};
  full.status = reducedSolution.status;
  full.iterations = reducedSolution.iterations;
  completeSolution(state, full);
  return state.basisFits;
}

// Activities, reduced costs and the objective afresh from the full model.
void PresolveRun::completeSolution(const PostsolveState &state, LpSolution &full) const {
  const LpModel &lp = *lp_;
  if (state.hasPrimal) {
    full.colValue = state.x;
    full.rowActivity = activities(lp, state.x);
    CompensatedSum objective(lp.offset);
    for (int j = 0; j < lp.numCols; ++j) objective.addProduct(lp.cost[j], state.x[j]);
    full.objective = objective.value();
  }
  if (state.hasDual) {
    full.rowDual = state.y;
    full.colDual.reserve(static_cast<std::size_t>(lp.numCols));
    for (int j = 0; j < lp.numCols; ++j) {
      CompensatedSum dual(lp.cost[j]);
      for (NzIndex k = lp.a.start[j]; k < lp.a.start[j + 1]; ++k)
        dual.addProduct(-lp.a.value[k], state.y[lp.a.index[k]]);
      full.colDual.push_back(dual.value());
    }
  }
  if (state.hasBasis) {
    full.basis.col = state.colStatus;
    full.basis.row = state.rowStatus;
  }
}

void PresolveRun::postsolveFarkas(const Vec<double> &reducedFarkas, Vec<double> &full) const {
  PostsolveState state;
  state.hasDual = state.ignoreCosts = true;
  state.y.assign(static_cast<std::size_t>(lp_->numRows), 0.0);
  state.d.assign(static_cast<std::size_t>(lp_->numCols), 0.0);
  scatter(reducedFarkas, rows, state.y);
  for (int j = 0; j < reduced.numCols; ++j)
    for (NzIndex k = reduced.a.start[j]; k < reduced.a.start[j + 1]; ++k)
      state.d[cols[j]] -= reduced.a.value[k] * reducedFarkas[reduced.a.index[k]];
  undoAll(state);
  full = state.y;
}

bool PresolveRun::crushBasis(const Basis &full, Basis &reducedBasis) const {
  if (static_cast<int>(full.col.size()) != lp_->numCols ||
      static_cast<int>(full.row.size()) != lp_->numRows)
    return false;
  reducedBasis = Basis{};
  int basic = 0;
  const auto keep = [&](VarStatus status, double lower, double upper) {
    if (status == VarStatus::Basic) {
      ++basic;
      return status;
    }
    if (status == VarStatus::AtUpper && !isInf(upper)) return status;
    if (!isInf(lower)) return VarStatus::AtLower;
    return isInf(upper) ? VarStatus::Free : VarStatus::AtUpper;
  };
  for (int j = 0; j < reduced.numCols; ++j)
    reducedBasis.col.push_back(keep(full.col[cols[j]], reduced.colLower[j], reduced.colUpper[j]));
  for (int i = 0; i < reduced.numRows; ++i)
    reducedBasis.row.push_back(keep(full.row[rows[i]], reduced.rowLower[i], reduced.rowUpper[i]));
  // Exactly one basic variable a row: logicals fill in, or leave first.
  const int wanted = reduced.numRows;
  for (int i = 0; i < wanted && basic != wanted; ++i) {
    VarStatus &status = reducedBasis.row[i];
    if (basic < wanted && status != VarStatus::Basic) {
      status = VarStatus::Basic;
      ++basic;
    } else if (basic > wanted && status == VarStatus::Basic) {
      --basic;
      status = keep(VarStatus::AtLower, reduced.rowLower[i], reduced.rowUpper[i]);
    }
  }
  for (int j = 0; j < reduced.numCols && basic > wanted; ++j) {
    if (reducedBasis.col[j] != VarStatus::Basic) continue;
    reducedBasis.col[j] = keep(VarStatus::AtLower, reduced.colLower[j], reduced.colUpper[j]);
    --basic;
  }
  return true;
}

}  // namespace tarvik
