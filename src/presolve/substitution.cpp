// Substitution of a column by an equation: rows that contain the column get a multiple of the
// equation added, column and equation go. The column must be free, or its bounds implied by its
// rows (then they are dropped first, which needs no undoing). Undoing: the column is basic, the
// equation's dual follows from its zero reduced cost.

#include "presolve/reductions.h"

namespace tarvik::presolve {

namespace {

// Adds `factor` times the equation to a row that has lost the eliminated column.
void addEquation(Workspace &ws, int i, const Vec<Entry> &equation, double factor, double side,
                 Vec<int> &positionOf) {
  WorkingModel &model = ws.model;
  const bool mark = equation.size() > 2;
  if (mark) {
    for (auto it = model.rowEntries(i).begin(); it.position() >= 0; ++it)
      positionOf[(*it).col] = it.position();
  }
  for (const Entry &entry : equation) {
    const int position = mark ? positionOf[entry.col] : model.find(i, entry.col);
    model.addToEntry(i, entry.col, position, factor * entry.value);
    if (mark) positionOf[entry.col] = -1;
    ++ws.stats.coefsChanged;
  }
  if (mark)
    for (const Entry &entry : model.rowEntries(i)) positionOf[entry.col] = -1;
  const Row &row = model.row(i);
  if (side != 0 && !(isInf(row.lower) && isInf(row.upper))) {
    const auto moved = [&](double bound) {
      if (isInf(bound)) return bound;
      const double sum = bound + factor * side;
      return std::fabs(sum) <= 10 * ws.options.zeroTol * std::fabs(bound) ? 0.0 : sum;
    };
    const double lower = moved(row.lower);
    model.setRowBounds(i, lower, row.isEquation() ? lower : moved(row.upper));
  }
}

}  // namespace

void eliminate(Workspace &ws, int position) {
  WorkingModel &model = ws.model;
  const Entry pivot = model.entry(position);
  const double side = model.row(pivot.row).lower;
  const double cost = model.col(pivot.col).cost;
  Vec<Entry> equation, column;
  for (const Entry &entry : model.rowEntries(pivot.row))
    if (entry.col != pivot.col) equation.push_back(entry);
  for (const Entry &entry : model.colEntries(pivot.col))
    if (entry.row != pivot.row) column.push_back(entry);
  model.removeRow(pivot.row);
  model.removeCol(pivot.col);
  ws.charge(static_cast<double>(20 * (equation.size() + 1) * (column.size() + 1)));

  ws.preparePositions();
  for (const Entry &entry : column)
    addEquation(ws, entry.row, equation, -entry.value / pivot.value, side, ws.positionOf);
  if (cost == 0) return;
  for (const Entry &entry : equation) {
    const double old = model.col(entry.col).cost;
    const double moved = old - cost / pivot.value * entry.value;
    const bool vanishes = std::fabs(moved) <= 10 * ws.options.zeroTol * std::fabs(old);
    model.setCost(entry.col, vanishes ? 0 : moved);
  }
  model.addOffset(cost / pivot.value * side);
}

namespace {

double largestInRow(const WorkingModel &model, int row) {
  double largest = 0;
  for (const Entry &entry : model.rowEntries(row))
    largest = std::max(largest, std::fabs(entry.value));
  return largest;
}

// The entries that substitution by an equation adds, net of those that go with it.
double expectedFill(const Row &row, const Col &col) {
  return static_cast<double>(row.length - 1) * (col.length - 1) - (row.length + col.length - 1);
}

bool hasShortEquation(const Workspace &ws, int j) {
  const Col &col = ws.model.col(j);
  for (const Entry &entry : ws.model.colEntries(j)) {
    const Row &row = ws.model.row(entry.row);
    if (row.isEquation() && row.length >= 2 && expectedFill(row, col) <= ws.options.aggFill)
      return true;
  }
  return false;
}

// The equation to substitute by: the shortest whose pivot is large enough, -1 if there is none.
int choosePivot(const Workspace &ws, int j) {
  const WorkingModel &model = ws.model;
  const Col &col = model.col(j);
  double largestInCol = 0;
  for (const Entry &entry : model.colEntries(j))
    largestInCol = std::max(largestInCol, std::fabs(entry.value));
  int best = -1, bestLength = kMaxInt;
  const double smallest = ws.relativePivot(kSubstitutionPivot);
  for (auto it = model.colEntries(j).begin(); it.position() >= 0; ++it) {
    const Row &row = model.row((*it).row);
    if (!row.isEquation() || row.length >= bestLength || row.length < 2) continue;
    const double pivot = std::fabs((*it).value);
    if (pivot < smallest * largestInCol) continue;
    if (expectedFill(row, col) > ws.options.aggFill) continue;
    if (pivot < smallest * largestInRow(model, (*it).row)) continue;
    best = it.position();
    bestLength = row.length;
  }
  return best;
}

void substitute(Workspace &ws, int position) {
  const Entry pivot = ws.model.entry(position);
  ws.stack.begin(RecordKind::Substitution);
  ws.stack.put(pivot.row);
  ws.stack.put(pivot.col);
  ws.stack.put(pivot.value);
  ws.stack.put(ws.model.row(pivot.row).lower);
  ws.stack.put(ws.model.col(pivot.col).cost);
  ws.stack.putCol(ws.model, pivot.col, pivot.row);
  ws.stack.putRow(ws.model, pivot.row, pivot.col);
  eliminate(ws, position);
}

}  // namespace

bool isImpliedFree(const Workspace &ws, int j) {
  return lowerImplied(ws, j) && upperImplied(ws, j);
}

bool substituteImpliedFree(Workspace &ws) {
  constexpr int kMaxLength = 8;
  WorkingModel &model = ws.model;
  // Columns that were looked at before are looked at again when one of their rows has changed.
  const int lastVisit = ws.substitutionVisit;
  Vec<int> candidates[kMaxLength + 1];
  for (int j = 0; j < model.numCols(); ++j) {
    const Col &col = model.col(j);
    if (!col.alive || col.length < 2 || col.length > kMaxLength) continue;
    if (col.integer || col.restricted) continue;
    bool changed = col.changedAt > lastVisit;
    for (auto it = model.colEntries(j).begin(); !changed && it.position() >= 0; ++it)
      changed = model.row((*it).row).changedAt > lastVisit;
    if (changed) candidates[col.length].push_back(j);
  }
  ws.charge(static_cast<double>(5 * model.entriesLeft()));
  ws.substitutionVisit = model.clock();
  bool found = false;
  for (const Vec<int> &columns : candidates) {
    for (const int j : columns) {
      const int length = model.col(j).length;
      if (ws.finished()) return found;
      if (!model.col(j).alive || length < 2 || length > kMaxLength) continue;
      if (!hasShortEquation(ws, j) || !lowerImplied(ws, j) || !upperImplied(ws, j)) continue;
      const int position = choosePivot(ws, j);
      if (position < 0 || !ws.take()) continue;
      substitute(ws, position);
      found = true;
    }
  }
  return found;
}

bool crushSubstitution(RecordReader record, RowImage &image) {
  record.get<int>();  // the row
  const int col = record.get<int>();
  const double coef = record.get<double>();
  const double side = record.get<double>();
  record.get<double>();  // the cost
  record.entries();      // of the column
  image.substitute(col, coef, side, record.entries());
  return true;
}

void undoSubstitution(RecordReader record, PostsolveState &state) {
  const int row = record.get<int>();
  const int col = record.get<int>();
  const double coef = record.get<double>();
  const double side = record.get<double>();
  const double cost = record.get<double>();
  const StoredEntries column = record.entries();
  const StoredEntries equation = record.entries();
  if (state.hasPrimal) {
    state.x[col] = (side - state.rowValue(equation)) / coef;
    state.addToActivity(column, side / coef);
    state.activity[row] = side;
  }
  if (state.hasDual) {
    state.y[row] = state.reducedCost(cost, column) / coef;
    state.d[col] = 0;
  }
  state.setCol(col, VarStatus::Basic);
  state.setRow(row, VarStatus::AtLower);
}

}  // namespace tarvik::presolve
