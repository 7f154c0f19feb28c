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
  }
  return nullptr;
}

template <class T>
void scatter(const Vec<T> &reduced, const Vec<int> &map, Vec<T> &full) {
  for (std::size_t k = 0; k < map.size(); ++k) full[map[k]] = reduced[k];
}

}  // namespace

void PresolveRun::undoAll(PostsolveState &state) const {
  for (int record = ws.stack.size() - 1; record >= 0; --record)
    undoOf(ws.stack.kind(record))(ws.stack.read(record), state);
}

void PresolveRun::postsolve(const LpSolution &reducedSolution, LpSolution &full) const {
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
    for (const int i : rows) {
      CompensatedSum sum;
      for (const Entry &entry : ws.model.rowEntries(i))
        sum.addProduct(entry.value, state.x[entry.col]);
      state.activity[i] = sum.value();
    }
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
  full = LpSolution{};
  full.status = reducedSolution.status;
  full.iterations = reducedSolution.iterations;
  completeSolution(state, full);
}

// Activities, reduced costs and the objective afresh from the full model.
void PresolveRun::completeSolution(const PostsolveState &state, LpSolution &full) const {
  const LpModel &lp = *lp_;
  if (state.hasPrimal) {
    full.colValue = state.x;
    Vec<CompensatedSum> activity(static_cast<std::size_t>(lp.numRows));
    CompensatedSum objective(lp.offset);
    for (int j = 0; j < lp.numCols; ++j) {
      objective.addProduct(lp.cost[j], state.x[j]);
      if (state.x[j] == 0) continue;
      for (NzIndex k = lp.a.start[j]; k < lp.a.start[j + 1]; ++k)
        activity[lp.a.index[k]].addProduct(lp.a.value[k], state.x[j]);
    }
    full.objective = objective.value();
    full.rowActivity.reserve(activity.size());
    for (const CompensatedSum &sum : activity) full.rowActivity.push_back(sum.value());
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
  for (std::size_t k = 0; k < rows.size(); ++k) {
    const double y = reducedFarkas[k];
    if (y == 0) continue;
    for (const Entry &entry : ws.model.rowEntries(rows[k])) state.d[entry.col] -= entry.value * y;
  }
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
  for (const int j : cols) {
    const Col &col = ws.model.col(j);
    reducedBasis.col.push_back(keep(full.col[j], col.lower, col.upper));
  }
  for (const int i : rows) {
    const Row &row = ws.model.row(i);
    reducedBasis.row.push_back(keep(full.row[i], row.lower, row.upper));
  }
  // Exactly one basic variable a row: logicals fill in, or leave first.
  const int wanted = static_cast<int>(rows.size());
  for (std::size_t k = 0; k < rows.size() && basic != wanted; ++k) {
    VarStatus &status = reducedBasis.row[k];
    const Row &row = ws.model.row(rows[k]);
    if (basic < wanted && status != VarStatus::Basic) {
      status = VarStatus::Basic;
      ++basic;
    } else if (basic > wanted && status == VarStatus::Basic) {
      --basic;
      status = keep(VarStatus::AtLower, row.lower, row.upper);
    }
  }
  for (std::size_t k = 0; k < cols.size() && basic > wanted; ++k) {
    if (reducedBasis.col[k] != VarStatus::Basic) continue;
    const Col &col = ws.model.col(cols[k]);
    reducedBasis.col[k] = keep(VarStatus::AtLower, col.lower, col.upper);
    --basic;
  }
  return true;
}

}  // namespace tarvik
