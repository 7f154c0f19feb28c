// Rows and sides of rows that no point within the column bounds can violate. A side goes without
// a record: the reduced model's solution serves the full one as it is. A row without sides (or
// entries) goes with its entries kept: its logical is basic and its dual zero. The same holds for
// what the other rows imply together.

#include "presolve/derived_bounds.h"
#include "presolve/reductions.h"

namespace tarvik::presolve {

void dropRow(Workspace &ws, int row) {
  ws.stack.begin(RecordKind::RedundantRow);
  ws.stack.put(row);
  ws.stack.putRow(ws.model, row);
  ws.model.removeRow(row);
}

namespace {

// Takes away sides that nothing can violate, and the row when none is left.
bool openSides(Workspace &ws, int i, bool lowerOpen, bool upperOpen) {
  const Row &row = ws.model.row(i);
  const double lower = lowerOpen ? -kInf : row.lower, upper = upperOpen ? kInf : row.upper;
  if (lowerOpen && upperOpen) {
    if (!ws.take()) return false;
    dropRow(ws, i);
    return true;
  }
  if (row.isEquation() || (lower == row.lower && upper == row.upper) || !ws.take()) return false;
  ws.model.setRowBounds(i, lower, upper);
  return true;
}

}  // namespace

bool tryRedundantRow(Workspace &ws, int i) {
  WorkingModel &model = ws.model;
  const Row &row = model.row(i);
  const double min = model.minActivity(i), max = model.maxActivity(i);
  if (max < row.lower - ws.feasibilityTol(row.lower) ||
      min > row.upper + ws.feasibilityTol(row.upper)) {
    model.refreshActivity(i);
    if (model.maxActivity(i) < row.lower - ws.feasibilityTol(row.lower))
      ws.infeasibleRow(i, 1);
    else if (model.minActivity(i) > row.upper + ws.feasibilityTol(row.upper))
      ws.infeasibleRow(i, -1);
    return ws.finished();
  }
  const bool lowerOpen = isInf(row.lower) || min >= row.lower - ws.roundingTol(row.lower);
  const bool upperOpen = isInf(row.upper) || max <= row.upper + ws.roundingTol(row.upper);
  return openSides(ws, i, lowerOpen, upperOpen);
}

bool dropImpliedRows(Workspace &ws) {
  bool found = false;
  for (int i = 0; i < ws.model.numRows() && !ws.finished(); ++i) {
    const Row &row = ws.model.row(i);
    if (!row.alive) continue;
    const bool lowerOpen = ws.derived->impliesSide(i, false);
    const bool upperOpen = (lowerOpen || !row.isEquation()) && ws.derived->impliesSide(i, true);
    found |= openSides(ws, i, lowerOpen, upperOpen);
  }
  return found;
}

void undoRedundantRow(RecordReader record, PostsolveState &state) {
  const int row = record.get<int>();
  const StoredEntries entries = record.entries();
  if (state.hasPrimal) state.activity[row] = state.rowValue(entries);
  if (state.hasDual) state.y[row] = 0;
  state.setRow(row, VarStatus::Basic);
}

}  // namespace tarvik::presolve
