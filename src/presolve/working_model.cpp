#include "presolve/working_model.h"

#include <algorithm>
#include <cmath>

namespace tarvik::presolve {

namespace {

double finiteOrInf(double bound) {
  if (bound >= kInfBound) return kInf;
  return bound <= -kInfBound ? -kInf : bound;
}

}  // namespace

void WorkingModel::load(const LpModel &lp, const PresolveOptions &options) {
  zeroTol_ = options.zeroTol;
  offset_ = CompensatedSum(lp.offset);
  rows_.assign(static_cast<std::size_t>(lp.numRows), Row{});
  cols_.assign(static_cast<std::size_t>(lp.numCols), Col{});
  changedRows_.reset(lp.numRows);
  changedCols_.reset(lp.numCols);
  for (int i = 0; i < lp.numRows; ++i) {
    rows_[i].lower = finiteOrInf(lp.rowLower[i]);
    rows_[i].upper = finiteOrInf(lp.rowUpper[i]);
  }
  for (int j = 0; j < lp.numCols; ++j) {
    Col &col = cols_[j];
    col.lower = finiteOrInf(lp.colLower[j]);
    col.upper = finiteOrInf(lp.colUpper[j]);
    col.cost = lp.cost[j];
    col.integer = options.integer && (*options.integer)[j];
    col.restricted = options.restricted && (*options.restricted)[j];
    if (!col.integer) continue;
    col.lower = integerLower(col.lower);
    col.upper = integerUpper(col.upper);
  }
  rowsLeft_ = lp.numRows;
  colsLeft_ = lp.numCols;
  entries_.reserve(static_cast<std::size_t>(lp.a.numNz()));
  // Entries are linked at the head of their lists: backwards, so that rows come out sorted.
  for (int j = lp.numCols - 1; j >= 0; --j)
    for (NzIndex k = lp.a.start[j + 1] - 1; k >= lp.a.start[j]; --k)
      if (lp.a.value[k] != 0) addEntry(lp.a.index[k], j, lp.a.value[k]);
}

void WorkingModel::extract(LpModel &lp, Vec<int> &rows, Vec<int> &cols) const {
  lp = LpModel{};
  rows.clear();
  cols.clear();
  Vec<int> colIndex(cols_.size(), -1);
  lp.a.start.reserve(static_cast<std::size_t>(colsLeft_) + 1);
  for (int j = 0; j < numCols(); ++j) {
    const Col &col = cols_[j];
    if (!col.alive) continue;
    colIndex[j] = static_cast<int>(cols.size());
    cols.push_back(j);
    lp.cost.push_back(col.cost);
    lp.colLower.push_back(col.lower);
    lp.colUpper.push_back(col.upper);
    lp.a.start.push_back(lp.a.start.back() + col.length);
  }
  lp.a.index.resize(static_cast<std::size_t>(lp.a.numNz()));
  lp.a.value.resize(static_cast<std::size_t>(lp.a.numNz()));
  Vec<NzIndex> cursor(lp.a.start);
  for (int i = 0; i < numRows(); ++i) {
    if (!rows_[i].alive) continue;
    for (const Entry &entry : rowEntries(i)) {
      const NzIndex to = cursor[colIndex[entry.col]]++;
      lp.a.index[to] = static_cast<int>(rows.size());
      lp.a.value[to] = entry.value;
    }
    rows.push_back(i);
    lp.rowLower.push_back(rows_[i].lower);
    lp.rowUpper.push_back(rows_[i].upper);
  }
  lp.numRows = static_cast<int>(rows.size());
  lp.numCols = static_cast<int>(cols.size());
  lp.a.numMajor = lp.numCols;
  lp.a.numMinor = lp.numRows;
  lp.offset = offset_.value();
}

int WorkingModel::find(int i, int j) const {
  if (rows_[i].length < cols_[j].length) {
    for (int at = rows_[i].first; at >= 0; at = entries_[at].nextInRow)
      if (entries_[at].col == j) return at;
  } else {
    for (int at = cols_[j].first; at >= 0; at = entries_[at].nextInCol)
      if (entries_[at].row == i) return at;
  }
  return -1;
}

double WorkingModel::minActivity(int i) const {
  const ActivityBounds &activity = rows_[i].activity;
  return activity.minInf > 0 ? -kInf : activity.min.value();
}

double WorkingModel::maxActivity(int i) const {
  const ActivityBounds &activity = rows_[i].activity;
  return activity.maxInf > 0 ? kInf : activity.max.value();
}

double WorkingModel::minActivityWithout(const Entry &entry) const {
  const ActivityBounds &activity = rows_[entry.row].activity;
  const Col &col = cols_[entry.col];
  const double bound = entry.value > 0 ? col.lower : col.upper;
  if (isInf(bound)) return activity.minInf > 1 ? -kInf : activity.min.value();
  if (activity.minInf > 0) return -kInf;
  CompensatedSum rest = activity.min;
  rest.add(-entry.value * bound);
  return rest.value();
}

double WorkingModel::maxActivityWithout(const Entry &entry) const {
  const ActivityBounds &activity = rows_[entry.row].activity;
  const Col &col = cols_[entry.col];
  const double bound = entry.value > 0 ? col.upper : col.lower;
  if (isInf(bound)) return activity.maxInf > 1 ? kInf : activity.max.value();
  if (activity.maxInf > 0) return kInf;
  CompensatedSum rest = activity.max;
  rest.add(-entry.value * bound);
  return rest.value();
}

double WorkingModel::impliedLower(const Entry &entry) const {
  const Row &row = rows_[entry.row];
  const bool rising = entry.value > 0;
  const double side = rising ? row.lower : row.upper;
  if (isInf(side)) return -kInf;
  const double rest = rising ? maxActivityWithout(entry) : minActivityWithout(entry);
  return isInf(rest) ? -kInf : (side - rest) / entry.value;
}

double WorkingModel::impliedUpper(const Entry &entry) const {
  const Row &row = rows_[entry.row];
  const bool rising = entry.value > 0;
  const double side = rising ? row.upper : row.lower;
  if (isInf(side)) return kInf;
  const double rest = rising ? minActivityWithout(entry) : maxActivityWithout(entry);
  return isInf(rest) ? kInf : (side - rest) / entry.value;
}

void WorkingModel::touchRow(int i) {
  rows_[i].changedAt = ++clock_;
  changedRows_.push(i);
}

void WorkingModel::touchCol(int j) {
  cols_[j].changedAt = ++clock_;
  changedCols_.push(j);
}

// Adds (sign 1) or takes away (sign -1) what a column bound contributes to a row's activity.
void WorkingModel::addTerm(const Entry &entry, double bound, bool isLower, int sign) {
  ActivityBounds &activity = rows_[entry.row].activity;
  const bool toMin = (entry.value > 0) == isLower;
  if (isInf(bound)) {
    (toMin ? activity.minInf : activity.maxInf) += sign;
  } else {
    (toMin ? activity.min : activity.max).add(sign * (entry.value * bound));
  }
}

void WorkingModel::addTerms(const Entry &entry, int sign) {
  addTerm(entry, cols_[entry.col].lower, true, sign);
  addTerm(entry, cols_[entry.col].upper, false, sign);
}

void WorkingModel::addLocks(const Entry &entry, int count) {
  const Row &row = rows_[entry.row];
  Col &col = cols_[entry.col];
  const bool rising = entry.value > 0;
  if (!isInf(row.lower)) (rising ? col.downLocks : col.upLocks) += count;
  if (!isInf(row.upper)) (rising ? col.upLocks : col.downLocks) += count;
}

void WorkingModel::setColLower(int j, double lower) {
  Col &col = cols_[j];
  lower = finiteOrInf(lower);
  for (const Entry &entry : colEntries(j)) {
    addTerm(entry, col.lower, true, -1);
    addTerm(entry, lower, true, 1);
    touchRow(entry.row);
  }
  col.lower = lower;
  touchCol(j);
}

void WorkingModel::setColUpper(int j, double upper) {
  Col &col = cols_[j];
  upper = finiteOrInf(upper);
  for (const Entry &entry : colEntries(j)) {
    addTerm(entry, col.upper, false, -1);
    addTerm(entry, upper, false, 1);
    touchRow(entry.row);
  }
  col.upper = upper;
  touchCol(j);
}

void WorkingModel::setCost(int j, double cost) {
  cols_[j].cost = cost;
  touchCol(j);
}

void WorkingModel::setRowBounds(int i, double lower, double upper) {
  Row &row = rows_[i];
  lower = finiteOrInf(lower);
  upper = finiteOrInf(upper);
  const bool newLocks = isInf(row.lower) != isInf(lower) || isInf(row.upper) != isInf(upper);
  if (newLocks)
    for (const Entry &entry : rowEntries(i)) addLocks(entry, -1);
  const bool newKind = newLocks || row.isEquation() != (lower == upper);
  row.lower = lower;
  row.upper = upper;
  if (newLocks)
    for (const Entry &entry : rowEntries(i)) addLocks(entry, 1);
  if (newKind)
    for (const Entry &entry : rowEntries(i)) touchCol(entry.col);
  touchRow(i);
}

void WorkingModel::link(int position) {
  Entry &entry = entries_[position];
  Row &row = rows_[entry.row];
  Col &col = cols_[entry.col];
  entry.prevInRow = entry.prevInCol = -1;
  entry.nextInRow = row.first;
  entry.nextInCol = col.first;
  if (row.first >= 0) entries_[row.first].prevInRow = position;
  if (col.first >= 0) entries_[col.first].prevInCol = position;
  row.first = col.first = position;
}

void WorkingModel::unlinkFromRow(const Entry &entry) {
  if (entry.prevInRow >= 0)
    entries_[entry.prevInRow].nextInRow = entry.nextInRow;
  else
    rows_[entry.row].first = entry.nextInRow;
  if (entry.nextInRow >= 0) entries_[entry.nextInRow].prevInRow = entry.prevInRow;
  --rows_[entry.row].length;
}

void WorkingModel::unlinkFromCol(const Entry &entry) {
  if (entry.prevInCol >= 0)
    entries_[entry.prevInCol].nextInCol = entry.nextInCol;
  else
    cols_[entry.col].first = entry.nextInCol;
  if (entry.nextInCol >= 0) entries_[entry.nextInCol].prevInCol = entry.prevInCol;
}

// Bookkeeping of singleton columns around a change of length.
void WorkingModel::lengthened(int j) {
  Col &col = cols_[j];
  if (++col.length == 1) ++rows_[entries_[col.first].row].singletons;
  if (col.length == 2) --rows_[entries_[entries_[col.first].nextInCol].row].singletons;
}

void WorkingModel::shortened(int j) {
  Col &col = cols_[j];
  if (--col.length == 1) ++rows_[entries_[col.first].row].singletons;
}

void WorkingModel::removeRow(int i) {
  Row &row = rows_[i];
  for (int at = row.first; at >= 0; at = entries_[at].nextInRow) {
    const Entry &entry = entries_[at];
    addLocks(entry, -1);
    unlinkFromCol(entry);
    shortened(entry.col);
    touchCol(entry.col);
    freeEntries_.push_back(at);
  }
  entriesLeft_ -= row.length;
  row.first = -1;
  row.length = row.singletons = 0;
  row.alive = false;
  --rowsLeft_;
}

void WorkingModel::removeCol(int j) {
  Col &col = cols_[j];
  for (int at = col.first; at >= 0; at = entries_[at].nextInCol) {
    const Entry &entry = entries_[at];
    addTerms(entry, -1);
    unlinkFromRow(entry);
    if (col.length == 1) --rows_[entry.row].singletons;
    touchRow(entry.row);
    freeEntries_.push_back(at);
  }
  entriesLeft_ -= col.length;
  col.first = -1;
  col.length = 0;
  col.alive = false;
  --colsLeft_;
}

void WorkingModel::fixCol(int j, double value) {
  const Col &col = cols_[j];
  offset_.addProduct(col.cost, value);
  if (value != 0) {
    const auto shifted = [&](double bound, double term) {
      if (isInf(bound)) return bound;
      const double moved = bound - term;
      return std::fabs(moved) <= zeroTol_ * std::fabs(bound) ? 0.0 : moved;
    };
    for (const Entry &entry : colEntries(j)) {
      Row &row = rows_[entry.row];
      const bool equation = row.isEquation();
      row.lower = shifted(row.lower, entry.value * value);
      row.upper = equation ? row.lower : shifted(row.upper, entry.value * value);
    }
  }
  removeCol(j);
}

void WorkingModel::setEntry(int position, double value) {
  Entry &entry = entries_[position];
  addTerms(entry, -1);
  addLocks(entry, -1);
  entry.value = value;
  addLocks(entry, 1);
  addTerms(entry, 1);
  touchRow(entry.row);
  touchCol(entry.col);
}

void WorkingModel::removeEntry(int position) {
  const Entry &entry = entries_[position];
  addTerms(entry, -1);
  addLocks(entry, -1);
  if (cols_[entry.col].length == 1) --rows_[entry.row].singletons;
  unlinkFromRow(entry);
  unlinkFromCol(entry);
  shortened(entry.col);
  touchRow(entry.row);
  touchCol(entry.col);
  freeEntries_.push_back(position);
  --entriesLeft_;
}

void WorkingModel::addEntry(int i, int j, double value) {
  int position = 0;
  if (freeEntries_.empty()) {
    position = static_cast<int>(entries_.size());
    entries_.push_back({});
  } else {
    position = freeEntries_.back();
    freeEntries_.pop_back();
  }
  entries_[position].value = value;
  entries_[position].row = i;
  entries_[position].col = j;
  link(position);
  ++rows_[i].length;
  ++entriesLeft_;
  lengthened(j);
  addTerms(entries_[position], 1);
  addLocks(entries_[position], 1);
  touchRow(i);
  touchCol(j);
}

void WorkingModel::addToEntry(int i, int j, int position, double value) {
  if (position < 0) {
    addEntry(i, j, value);
    return;
  }
  const double old = entries_[position].value;
  const double sum = old + value;
  if (std::fabs(sum) <= 10 * zeroTol_ * std::max(std::fabs(old), std::fabs(value)))
    removeEntry(position);
  else
    setEntry(position, sum);
}

void WorkingModel::refreshActivity(int i) {
  rows_[i].activity = ActivityBounds{};
  for (const Entry &entry : rowEntries(i)) addTerms(entry, 1);
}

}  // namespace tarvik::presolve
