// A row whose activity bounds meet one of its sides forces all its columns to the bounds that
// attain it. Undoing: with a zero dual some restored columns may have reduced costs of the wrong
// sign; the smallest dual that mends them all makes one of them zero, and that column basic.

#include "presolve/reductions.h"

namespace tarvik::presolve {

bool tryForcingRow(Workspace &ws, int i) {
  WorkingModel &model = ws.model;
  const Row &row = model.row(i);
  const auto meets = [&](double activity, double side) {
    return !isInf(side) && !isInf(activity) && std::fabs(activity - side) <= ws.roundingTol(side);
  };
  if (!meets(model.maxActivity(i), row.lower) && !meets(model.minActivity(i), row.upper))
    return false;
  model.refreshActivity(i);
  const bool atLower = meets(model.maxActivity(i), row.lower);
  if (!atLower && !meets(model.minActivity(i), row.upper)) return false;
  if (!ws.take()) return false;

  Vec<Entry> entries;
  for (const Entry &entry : model.rowEntries(i)) entries.push_back(entry);
  ws.stack.begin(RecordKind::ForcingRow);
  ws.stack.put(i);
  ws.stack.put(atLower);
  ws.stack.putRow(model, i);
  model.removeRow(i);
  for (const Entry &entry : entries) {
    const bool upper = (entry.value > 0) == atLower;
    const Col &col = model.col(entry.col);
    if (col.restricted) {
      upper ? model.setColLower(entry.col, col.upper) : model.setColUpper(entry.col, col.lower);
      continue;
    }
    fixCol(ws, entry.col, upper ? col.upper : col.lower, upper ? FixedAt::Upper : FixedAt::Lower);
  }
  return true;
}

void undoForcingRow(RecordReader record, PostsolveState &state) {
  const int row = record.get<int>();
  const bool atLower = record.get<bool>();
  const StoredEntries entries = record.entries();
  if (state.hasPrimal) state.activity[row] = state.rowValue(entries);
  if (!state.hasDual) return;
  double dual = 0;
  int basic = -1;
  for (int k = 0; k < entries.count(); ++k) {
    const double ratio = state.d[entries.index(k)] / entries.value(k);
    if (atLower ? ratio <= dual : ratio >= dual) continue;
    dual = ratio;
    basic = entries.index(k);
  }
  state.y[row] = dual;
  if (basic < 0) {
    state.setRow(row, VarStatus::Basic);
    return;
  }
  for (int k = 0; k < entries.count(); ++k) state.d[entries.index(k)] -= entries.value(k) * dual;
  state.d[basic] = 0;
  state.setCol(basic, VarStatus::Basic);
  state.setRow(row, atLower ? VarStatus::AtLower : VarStatus::AtUpper);
}

}  // namespace tarvik::presolve
