// A row with one entry is a pair of bounds for its column. Undoing: when the column rests on a
// bound that only the row implies, the row takes over the reduced cost and the column becomes
// basic; otherwise the row's logical is basic.

#include "presolve/reductions.h"

namespace tarvik::presolve {

bool trySingletonRow(Workspace &ws, int i) {
  WorkingModel &model = ws.model;
  const Row &row = model.row(i);
  if (row.length != 1) return false;
  const Entry entry = model.entry(row.first);
  const int j = entry.col;
  const Col &col = model.col(j);
  double lower = model.impliedLower(entry), upper = model.impliedUpper(entry);
  if (col.integer) {
    lower = integerLower(lower);
    upper = integerUpper(upper);
  }
  const bool lowerFromRow = lower > col.lower, upperFromRow = upper < col.upper;
  double newLower = std::max(lower, col.lower), newUpper = std::min(upper, col.upper);
  if (newLower > newUpper) {
    if ((newLower - newUpper) * std::max(1.0, std::fabs(entry.value)) > ws.options.primalTol) {
      if (row.lower > row.upper)
        ws.infeasible();
      else
        ws.infeasibleRow(i, lowerFromRow == (entry.value > 0) ? 1 : -1);
      return true;
    }
  }
  const bool fixed = ws.coincide(newLower, newUpper);
  if (fixed) (lowerFromRow ? newLower : newUpper) = lowerFromRow ? newUpper : newLower;
  if (!ws.take()) return false;
  ws.stack.begin(RecordKind::SingletonRow);
  ws.stack.put(i);
  ws.stack.put(j);
  ws.stack.put(entry.value);
  ws.stack.put(lowerFromRow);
  ws.stack.put(upperFromRow);
  ws.stack.put(fixed);
  model.removeRow(i);
  if (newLower != col.lower) model.setColLower(j, newLower), ++ws.stats.boundsChanged;
  if (newUpper != col.upper) model.setColUpper(j, newUpper), ++ws.stats.boundsChanged;
  return true;
}

void undoSingletonRow(RecordReader record, PostsolveState &state) {
  const int row = record.get<int>();
  const int col = record.get<int>();
  const double coef = record.get<double>();
  const bool lowerFromRow = record.get<bool>();
  const bool upperFromRow = record.get<bool>();
  const bool fixed = record.get<bool>();
  if (state.hasPrimal) state.activity[row] = coef * state.x[col];
  if (!state.hasDual) return;
  const int side = state.holdingSide(col, fixed);
  if ((side < 0 && lowerFromRow) || (side > 0 && upperFromRow)) {
    state.y[row] = state.d[col] / coef;
    state.d[col] = 0;
    state.setCol(col, VarStatus::Basic);
    state.setRow(row, (side < 0) == (coef > 0) ? VarStatus::AtLower : VarStatus::AtUpper);
    return;
  }
  state.y[row] = 0;
  state.setRow(row, VarStatus::Basic);
  if (fixed && side != 0) state.setCol(col, side < 0 ? VarStatus::AtLower : VarStatus::AtUpper);
}

}  // namespace tarvik::presolve
