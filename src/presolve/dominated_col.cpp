// Columns whose reduced cost has the same strict sign for all feasible duals (dominated columns,
// Andersen and Andersen, 1995), and rows whose dual has: such columns go to a bound, such rows
// are equations. That some optimum has these properties holds only if there is one.

#include "presolve/dual_bounds.h"
#include "presolve/reductions.h"

namespace tarvik::presolve {

namespace {

constexpr int kRounds = 3;

// Fixes the column when its reduced cost has a strict sign.
bool fixBySign(Workspace &ws, int j, DualBounds &duals) {
  const Col &col = ws.model.col(j);
  const DualBounds::Range range = duals.combination(j);
  const double margin = kStrictDual * std::max(1.0, std::fabs(col.cost));
  const bool positive = range.maxInf == 0 && col.cost - range.max > margin;
  const bool negative = range.minInf == 0 && col.cost - range.min < -margin;
  if (!positive && !negative) return false;
  if (std::fabs(positive ? col.lower : col.upper) > kHugeValue &&
      !isInf(positive ? col.lower : col.upper))
    return false;
  if (!duals.secureCombination(j, positive)) return false;
  const double bound = positive ? col.lower : col.upper;
  if (isInf(bound)) {
    ws.dualInfeasible();
    return true;
  }
  if (!ws.take()) return false;
  fixCol(ws, j, bound, positive ? FixedAt::Lower : FixedAt::Upper);
  return true;
}

bool makeEquation(Workspace &ws, int i, DualBounds &duals) {
  const Row &row = ws.model.row(i);
  const bool atLower = duals.lower(i) > kStrictDual;
  const bool atUpper = duals.upper(i) < -kStrictDual;
  if (row.isEquation() || atLower == atUpper) return false;
  const double side = atLower ? row.lower : row.upper;
  if (isInf(side) || !duals.secureBound(i, atUpper) || !ws.take()) return false;
  ws.stack.begin(RecordKind::EquationSide);
  ws.stack.put(i);
  ws.stack.put(atLower);
  ws.model.setRowBounds(i, side, side);
  ++ws.stats.sensesChanged;
  return true;
}

}  // namespace

bool fixDominatedCols(Workspace &ws) {
  if (!ws.options.dualReductions) return false;
  DualBounds duals(ws);
  for (int round = 0; round < kRounds && duals.propagate(); ++round) {
  }
  bool found = false;
  for (int j = 0; j < ws.model.numCols() && !ws.finished(); ++j) {
    const Col &col = ws.model.col(j);
    if (col.alive && col.length > 0 && !col.integer && !col.restricted)
      found |= fixBySign(ws, j, duals);
  }
  for (int i = 0; i < ws.model.numRows() && !ws.finished(); ++i)
    if (ws.model.row(i).alive) found |= makeEquation(ws, i, duals);
  if (found) ws.assumedOptimum = true;
  return found;
}

void undoEquationSide(RecordReader record, PostsolveState &state) {
  const int row = record.get<int>();
  const bool atLower = record.get<bool>();
  if (state.hasBasis && state.rowStatus[row] != VarStatus::Basic)
    state.rowStatus[row] = atLower ? VarStatus::AtLower : VarStatus::AtUpper;
}

}  // namespace tarvik::presolve
