// A column that no row keeps from falling and whose cost does not reward rising goes to its
// lower bound, and the other way round. Without a bound to go to, a positive cost means that the
// dual is infeasible; a zero cost lets the column satisfy all its rows by itself, so that they
// go with it and its value is found when all others are known.

#include "presolve/reductions.h"

namespace tarvik::presolve {

namespace {

// direction: -1 the column falls without bound, 1 it rises.
void removeUnconstrained(Workspace &ws, int j, int direction) {
  WorkingModel &model = ws.model;
  const Col &col = model.col(j);
  Vec<Entry> entries;
  for (const Entry &entry : model.colEntries(j)) entries.push_back(entry);
  ws.stack.begin(RecordKind::UnconstrainedCol);
  ws.stack.put(j);
  ws.stack.put(direction);
  ws.stack.put(col.lower);
  ws.stack.put(col.upper);
  ws.stack.put(static_cast<int>(entries.size()));
  for (const Entry &entry : entries) {
    const Row &row = model.row(entry.row);
    ws.stack.put(entry.row);
    ws.stack.put(entry.value);
    ws.stack.put(row.lower);
    ws.stack.put(row.upper);
    ws.stack.putRow(model, entry.row, j);
  }
  for (const Entry &entry : entries) model.removeRow(entry.row);
  model.removeCol(j);
}

}  // namespace

bool tryDualFixing(Workspace &ws, int j) {
  const Col &col = ws.model.col(j);
  if (col.restricted || ws.options.keepPoints) return false;
  const bool falls = col.downLocks == 0 && col.cost >= 0;
  const bool rises = col.upLocks == 0 && col.cost <= 0;
  if (!falls && !rises) return false;
  if (falls && col.hasLower()) {
    if (std::fabs(col.lower) > kHugeValue || !ws.take()) return false;
    fixCol(ws, j, col.lower, FixedAt::Lower);
    return true;
  }
  if (rises && col.hasUpper()) {
    if (std::fabs(col.upper) > kHugeValue || !ws.take()) return false;
    fixCol(ws, j, col.upper, FixedAt::Upper);
    return true;
  }
  if (col.cost != 0) {
    if (std::fabs(col.cost) <= ws.options.dualTol || !ws.options.dualReductions) return false;
    ws.dualInfeasible();
    return true;
  }
  if (col.integer || ws.options.affine || !ws.take()) return false;
  removeUnconstrained(ws, j, falls ? -1 : 1);
  return true;
}

bool crushUnconstrainedCol(RecordReader record, RowImage &image) {
  return image.value(record.get<int>()) == 0;
}

void undoUnconstrainedCol(RecordReader record, PostsolveState &state) {
  const int col = record.get<int>();
  const int direction = record.get<int>();
  const double lower = record.get<double>();
  const double upper = record.get<double>();
  const int count = record.get<int>();
  const RecordReader rows = record;
  // The value furthest against the direction that all rows (and the other bound) allow.
  double value = direction < 0 ? upper : lower;
  int binding = -1;
  bool atRowLower = false;
  for (int k = 0; k < count; ++k) {
    const int row = record.get<int>();
    const double coef = record.get<double>();
    const double rowLower = record.get<double>();
    const double rowUpper = record.get<double>();
    const StoredEntries entries = record.entries();
    if (state.hasDual) state.y[row] = 0;
    state.setRow(row, VarStatus::Basic);
    if (!state.hasPrimal) continue;
    state.activity[row] = state.rowValue(entries);
    const bool useLower = (coef > 0) == (direction > 0);
    const double side = useLower ? rowLower : rowUpper;
    const double limit = (side - state.activity[row]) / coef;
    if (!isInf(side) && (direction < 0 ? limit < value : limit > value)) {
      value = limit;
      binding = row;
      atRowLower = useLower;
    }
  }
  if (state.hasDual) state.d[col] = 0;
  if (!state.hasPrimal) return;
  if (binding >= 0) {
    state.setCol(col, VarStatus::Basic);
    state.setRow(binding, atRowLower ? VarStatus::AtLower : VarStatus::AtUpper);
  } else if (isInf(value)) {
    value = 0;
    state.setCol(col, VarStatus::Free);
  } else {
    state.setCol(col, direction < 0 ? VarStatus::AtUpper : VarStatus::AtLower);
  }
  state.x[col] = value;
  record = rows;
  for (int k = 0; k < count; ++k) {
    const int row = record.get<int>();
    state.activity[row] += record.get<double>() * value;
    record.get<double>();
    record.get<double>();
    record.entries();
  }
}

}  // namespace tarvik::presolve
