#include "presolve/row_elimination.h"

#include <algorithm>
#include <cmath>

namespace tarvik::presolve {

namespace {

// Pivots are at least this part of the largest entry of their column: growth against fill.
constexpr double kThreshold = 0.1;
// What is left of two terms below this part of them, or of the largest entry of the given row, is
// taken as nothing. Too large a value costs a check, too small a one a dependence.
constexpr double kVanished = 1e-11;
// Entries that could be read in order in the time that it takes to find one in the table.
constexpr double kLookup = 4;

}  // namespace

std::size_t EntryTable::slotOf(std::uint64_t key) const {
  std::uint64_t hash = key * 0x9e3779b97f4a7c15u;
  hash ^= hash >> 32;
  std::size_t slot = hash & (slots_.size() - 1);
  while (slots_[slot].key != 0 && slots_[slot].key != key) slot = (slot + 1) & (slots_.size() - 1);
  return slot;
}

double *EntryTable::find(int row, int col) {
  Slot &slot = slots_[slotOf(keyOf(row, col))];
  return slot.key != 0 ? &slot.value : nullptr;
}

void EntryTable::insert(int row, int col, double value) {
  if (2 * ++used_ > slots_.size()) grow(2 * slots_.size());
  const std::uint64_t key = keyOf(row, col);
  slots_[slotOf(key)] = {key, value};
}

void EntryTable::grow(std::size_t size) {
  Vec<Slot> old(size);
  old.swap(slots_);
  for (const Slot &slot : old)
    if (slot.key != 0) slots_[slotOf(slot.key)] = slot;
}

RowElimination::RowElimination(int numCols) : cols_(static_cast<std::size_t>(numCols)) {}

void RowElimination::addRow(const Vec<Term> &entries) {
  const int number = static_cast<int>(rows_.size());
  rows_.emplace_back();
  Row &row = rows_.back();
  double largest = 0;
  for (const Term &term : entries) largest = std::max(largest, std::fabs(term.value));
  int exponent = 0;
  std::frexp(largest, &exponent);
  row.scale = std::ldexp(1.0, -exponent);
  row.count = static_cast<int>(entries.size());
  for (const Term &term : entries) {
    entries_.insert(number, term.index, term.value * row.scale);
    row.cols.push_back(term.index);
    cols_[term.index].rows.push_back(number);
    ++cols_[term.index].count;
  }
  effort_ += kLookup * row.count;
}

void RowElimination::run(double effortLimit) {
  weights_.assign(rows_.size(), 0.0);
  for (std::size_t row = 0; row < rows_.size(); ++row)
    if (rows_[row].count == 1) singletons_.push_back(static_cast<int>(row));
  for (std::size_t col = 0; col < cols_.size(); ++col)
    if (cols_[col].count > 0) candidates_.push({cols_[col].count, static_cast<int>(col)});
  while (effort_ < effortLimit) {
    const int col = nextColumn();
    if (col < 0) break;
    openColumn(col);
    pivot(choosePivotRow(), col);
  }
}

double RowElimination::valueAt(int row, int col) {
  effort_ += kLookup;
  return *entries_.find(row, col);
}

// The column to pivot in, -1 when nothing is left. A row with one entry comes first: it makes no
// fill.
int RowElimination::nextColumn() {
  while (!singletons_.empty()) {
    const int row = singletons_.back();
    singletons_.pop_back();
    if (!rows_[row].active || rows_[row].count != 1) continue;
    for (const int col : rows_[row].cols)
      if (valueAt(row, col) != 0) return col;
  }
  while (!candidates_.empty()) {
    const Candidate best = candidates_.top();
    candidates_.pop();
    if (best.count == cols_[best.col].count && best.count > 0) return best.col;
  }
  return -1;
}

void RowElimination::openColumn(int col) {
  column_.clear();
  for (const int row : cols_[col].rows) {
    effort_ += 1;
    if (!rows_[row].active) continue;
    const double value = valueAt(row, col);
    if (value != 0) column_.push_back({row, value});
  }
}

int RowElimination::choosePivotRow() {
  double largest = 0;
  for (const Term &term : column_) largest = std::max(largest, std::fabs(term.value));
  int best = -1;
  for (const Term &term : column_) {
    if (std::fabs(term.value) < kThreshold * largest) continue;
    if (best < 0 || rows_[term.index].count < rows_[best].count) best = term.index;
  }
  return best;
}

// Takes the row out and its column from the others.
void RowElimination::pivot(int row, int col) {
  rows_[row].order = pivots_++;
  leave(row);
  const auto pivotTerm = std::find_if(pivotRow_.begin(), pivotRow_.end(),
                                      [&](const Term &term) { return term.index == col; });
  const double pivotValue = pivotTerm->value;
  *pivotTerm = pivotRow_.back();
  pivotRow_.pop_back();
  for (const Term &term : column_) {
    if (term.index == row) continue;
    *entries_.find(term.index, col) = 0;
    --rows_[term.index].count;
    subtract(term.index, row, term.value / pivotValue);
  }
  cols_[col] = {};
}

// Subtracts this multiple of the pivot row.
void RowElimination::subtract(int number, int pivotRow, double factor) {
  Row &row = rows_[number];
  row.steps.push_back({pivotRow, factor});
  effort_ += kLookup * static_cast<double>(pivotRow_.size() + 1);
  for (const Term &term : pivotRow_) {
    const double change = -factor * term.value;
    double *const value = entries_.find(number, term.index);
    const double old = value ? *value : 0;
    const double sum = old + change;
    const bool vanished =
        std::fabs(sum) <= kVanished * std::max({1.0, std::fabs(old), std::fabs(change)});
    if (!value) {
      if (vanished) continue;
      entries_.insert(number, term.index, sum);
      row.cols.push_back(term.index);
      cols_[term.index].rows.push_back(number);
    } else {
      *value = vanished ? 0 : sum;
    }
    if (old == 0 && !vanished) {
      ++row.count;
      candidates_.push({++cols_[term.index].count, term.index});
    } else if (old != 0 && vanished) {
      --row.count;
      lose(term.index);
    }
  }
  if (row.count == 1) singletons_.push_back(number);
  if (row.count > 0) return;
  row.active = false;
  dependent_.push_back(number);
}

// The row is no longer active; what it consists of stands in pivotRow_.
void RowElimination::leave(int number) {
  Row &row = rows_[number];
  row.active = false;
  pivotRow_.clear();
  for (const int col : row.cols) {
    const double value = valueAt(number, col);
    if (value == 0) continue;
    pivotRow_.push_back({col, value});
    lose(col);
  }
  row.cols = {};
}

void RowElimination::lose(int col) {
  if (--cols_[col].count > 0) candidates_.push({cols_[col].count, col});
}

void RowElimination::combination(int dependentRow, Vec<Term> &rows) {
  // Pivot rows by falling order: a row consists of itself and of pivots before it.
  std::priority_queue<std::pair<int, int>, Vec<std::pair<int, int>>> open;
  const auto spread = [&](int number, double weight) {
    const Row &row = rows_[number];
    rows.push_back({number, weight * row.scale / rows_[dependentRow].scale});
    effort_ += kLookup * static_cast<double>(row.steps.size());
    for (const Term &step : row.steps) {
      if (weights_[step.index] == 0) open.push({rows_[step.index].order, step.index});
      weights_[step.index] -= weight * step.value;
    }
  };
  rows.clear();
  spread(dependentRow, 1);
  while (!open.empty()) {
    const int row = open.top().second;
    open.pop();
    const double weight = weights_[row];
    weights_[row] = 0;
    if (std::fabs(weight) > kVanished) spread(row, weight);
  }
}

}  // namespace tarvik::presolve
