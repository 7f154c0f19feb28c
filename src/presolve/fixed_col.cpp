// Columns whose value is known: fixed by their bounds, or without entries, so that the sign of
// the cost decides. The column moves into row bounds and offset. Its reduced cost is restored
// from its entries, which the record keeps.

#include "presolve/reductions.h"

namespace tarvik::presolve {

void fixCol(Workspace &ws, int col, double value, FixedAt at) {
  ws.stack.begin(RecordKind::FixedCol);
  ws.stack.put(col);
  ws.stack.put(at);
  ws.stack.put(value);
  ws.stack.put(ws.model.col(col).cost);
  ws.stack.putCol(ws.model, col);
  ws.model.fixCol(col, value);
}

namespace {

bool fixEmptyCol(Workspace &ws, int j) {
  const Col &col = ws.model.col(j);
  const bool wantsLower = col.cost > 0 || (col.cost == 0 && col.hasLower());
  const bool wantsUpper = col.cost < 0 || (col.cost == 0 && col.hasUpper());
  if ((wantsLower && !col.hasLower()) || (wantsUpper && !wantsLower && !col.hasUpper())) {
    if (std::fabs(col.cost) <= ws.options.dualTol || !ws.options.dualReductions) return false;
    ws.dualInfeasible();
    return true;
  }
  if (ws.options.keepPoints || !ws.take()) return false;
  if (wantsLower)
    fixCol(ws, j, col.lower, FixedAt::Lower);
  else if (wantsUpper)
    fixCol(ws, j, col.upper, FixedAt::Upper);
  else
    fixCol(ws, j, 0, FixedAt::Nothing);
  return true;
}

}  // namespace

bool tryFixedOrEmptyCol(Workspace &ws, int j) {
  const Col &col = ws.model.col(j);
  if (col.lower > col.upper) {
    if (col.lower - col.upper <= ws.feasibilityTol(col.lower)) {
      ws.model.setColUpper(j, col.lower);
    } else {
      ws.infeasible();
      return true;
    }
  }
  if (col.restricted) return false;
  if (ws.coincide(col.lower, col.upper)) {
    if (!ws.take()) return false;
    fixCol(ws, j, col.lower, FixedAt::Both);
    return true;
  }
  return col.length == 0 && fixEmptyCol(ws, j);
}

bool crushFixedCol(RecordReader record, RowImage &image) {
  const int col = record.get<int>();
  record.get<FixedAt>();
  const double value = record.get<double>();
  const double coefficient = image.take(col);
  if (coefficient != 0) image.addConstant(coefficient * value);
  return true;
}

void undoFixedCol(RecordReader record, PostsolveState &state) {
  const int col = record.get<int>();
  const FixedAt at = record.get<FixedAt>();
  const double value = record.get<double>();
  const double cost = record.get<double>();
  const StoredEntries entries = record.entries();
  if (state.hasPrimal) {
    state.x[col] = value;
    state.addToActivity(entries, value);
  }
  if (state.hasDual) state.d[col] = state.reducedCost(cost, entries);
  if (!state.hasBasis) return;
  const bool upper = at == FixedAt::Upper || (at == FixedAt::Both && state.d[col] < 0);
  state.colStatus[col] = at == FixedAt::Nothing ? VarStatus::Free
                         : upper                ? VarStatus::AtUpper
                                                : VarStatus::AtLower;
}

}  // namespace tarvik::presolve
