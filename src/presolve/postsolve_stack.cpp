#include "presolve/postsolve_stack.h"

namespace tarvik::presolve {

void PostsolveStack::putCol(const WorkingModel &model, int col, int withoutRow) {
  const std::size_t at = bytes_.size();
  int count = 0;
  put(count);
  for (const Entry &entry : model.colEntries(col)) {
    if (entry.row == withoutRow) continue;
    put(entry.row);
    put(entry.value);
    ++count;
  }
  patchCount(at, count);
}

void PostsolveStack::putRow(const WorkingModel &model, int row, int withoutCol) {
  const std::size_t at = bytes_.size();
  int count = 0;
  put(count);
  for (const Entry &entry : model.rowEntries(row)) {
    if (entry.col == withoutCol) continue;
    put(entry.col);
    put(entry.value);
    ++count;
  }
  patchCount(at, count);
}

double PostsolveState::reducedCost(double columnCost, const StoredEntries &entries) const {
  CompensatedSum sum(cost(columnCost));
  for (int k = 0; k < entries.count(); ++k) sum.addProduct(-entries.value(k), y[entries.index(k)]);
  return sum.value();
}

double PostsolveState::rowValue(const StoredEntries &entries) const {
  CompensatedSum sum;
  for (int k = 0; k < entries.count(); ++k) sum.addProduct(entries.value(k), x[entries.index(k)]);
  return sum.value();
}

void PostsolveState::addToActivity(const StoredEntries &entries, double value) {
  if (value == 0) return;
  for (int k = 0; k < entries.count(); ++k) activity[entries.index(k)] += entries.value(k) * value;
}

int PostsolveState::holdingSide(int col, bool fixed) const {
  if (hasBasis && !fixed) {
    if (colStatus[col] == VarStatus::AtLower) return -1;
    return colStatus[col] == VarStatus::AtUpper ? 1 : 0;
  }
  if (hasBasis && colStatus[col] == VarStatus::Basic) return 0;
  if (d[col] < 0) return 1;
  return d[col] > 0 || hasBasis ? -1 : 0;
}

}  // namespace tarvik::presolve
