// Equations that are combinations of others (found by RowElimination). With a right-hand side that
// follows from theirs such an equation says nothing new and goes; its logical is basic, its dual
// zero. With one that contradicts theirs by more than all tolerances together, the multipliers of
// the combination prove infeasibility. In between it stays.
//
// Copies of the rows go into the elimination; what it finds counts only if the multipliers, applied
// to the rows as they are and summed in twice the working precision, leave rounding errors.

#include "presolve/reductions.h"
#include "presolve/row_elimination.h"

namespace tarvik::presolve {

namespace {

class DependentRows {
 public:
  explicit DependentRows(Workspace &ws)
      : ws_(ws),
        sums_(static_cast<std::size_t>(ws.model.numCols())),
        sizes_(static_cast<std::size_t>(ws.model.numCols()), 0.0) {}

  // combination: rows of the model, the one to remove first, with their multipliers.
  bool remove(const Vec<RowElimination::Term> &combination) {
    add(combination);
    bool removed = false;
    if (vanishes() && moderate(combination)) {
      const double allowed =
          std::min(Workspace::roundingTol(sideSize_), kShareOfTolerance * ws_.options.primalTol);
      if (std::fabs(side_) <= allowed) {
        removed = ws_.take();
        if (removed) dropRow(ws_, combination[0].index);
      } else {
        contradict(combination);
      }
    }
    for (const int col : cols_) sums_[col] = CompensatedSum(), sizes_[col] = 0;
    cols_.clear();
    return removed;
  }

 private:
  void add(const Vec<RowElimination::Term> &combination) {
    CompensatedSum side;
    sideSize_ = 0;
    for (const RowElimination::Term &term : combination) {
      const Row &row = ws_.model.row(term.index);
      side.addProduct(term.value, row.lower);
      sideSize_ = std::max(sideSize_, std::fabs(term.value * row.lower));
      for (const Entry &entry : ws_.model.rowEntries(term.index)) {
        if (sizes_[entry.col] == 0) cols_.push_back(entry.col);
        sums_[entry.col].addProduct(term.value, entry.value);
        sizes_[entry.col] = std::max(sizes_[entry.col], std::fabs(term.value * entry.value));
      }
      ws_.charge(10.0 * row.length);
    }
    side_ = side.value();
  }

  bool vanishes() const {
    return std::all_of(cols_.begin(), cols_.end(), [&](int col) {
      return std::fabs(sums_[col].value()) <= kParallel * sizes_[col];
    });
  }

  // The removed row may be violated by the violations of the others times their multipliers.
  static bool moderate(const Vec<RowElimination::Term> &combination) {
    return std::all_of(combination.begin(), combination.end(),
                       [](const auto &term) { return std::fabs(term.value) <= kMultiplier; });
  }

  void contradict(const Vec<RowElimination::Term> &combination) {
    double slack = 0;
    for (const RowElimination::Term &term : combination)
      slack += std::fabs(term.value) * ws_.feasibilityTol(ws_.model.row(term.index).lower);
    for (const int col : cols_) {
      const double rest = std::fabs(sums_[col].value());
      const Col &column = ws_.model.col(col);
      const double reach = std::max(std::fabs(column.lower), std::fabs(column.upper));
      if (rest > 0) slack += isInf(reach) ? kInf : rest * (reach + ws_.options.primalTol);
    }
    if (std::fabs(side_) <= kClearly * slack) return;
    ws_.infeasible();
    for (const RowElimination::Term &term : combination) {
      ws_.proofRows.push_back(term.index);
      ws_.proofMultipliers.push_back(side_ > 0 ? term.value : -term.value);
    }
  }

  static constexpr double kShareOfTolerance = 0.1;
  static constexpr double kMultiplier = 1e3;
  static constexpr double kClearly = 2;

  Workspace &ws_;
  Vec<CompensatedSum> sums_;  // by column, of the combined row
  Vec<double> sizes_;         // the largest term of each sum
  Vec<int> cols_;             // with terms
  double side_ = 0, sideSize_ = 0;
};

// The equations left when those with a column that no other equation has are taken out one after
// the other: they are in no dependence. Most often none is left.
Vec<int> nucleus(Workspace &ws) {
  const WorkingModel &model = ws.model;
  Vec<int> count(static_cast<std::size_t>(model.numCols()), 0);
  Vec<int> lastRow(count);  // exclusive or of the equations with an entry
  Vec<int> equations, single;
  for (int i = 0; i < model.numRows(); ++i) {
    if (!model.row(i).alive || !model.row(i).isEquation() || model.row(i).length == 0) continue;
    equations.push_back(i);
    for (const Entry &entry : model.rowEntries(i)) ++count[entry.col], lastRow[entry.col] ^= i;
    ws.charge(2.0 * model.row(i).length);
  }
  Vec<char> out(static_cast<std::size_t>(model.numRows()), 0);
  for (int j = 0; j < model.numCols(); ++j)
    if (count[j] == 1) single.push_back(j);
  while (!single.empty()) {
    const int own = single.back();
    single.pop_back();
    if (count[own] != 1) continue;
    const int row = lastRow[own];
    out[row] = 1;
    for (const Entry &entry : model.rowEntries(row)) {
      lastRow[entry.col] ^= row;
      if (--count[entry.col] == 1) single.push_back(entry.col);
    }
  }
  std::erase_if(equations, [&](int row) { return out[row] != 0; });
  return equations;
}

}  // namespace

bool removeDependentRows(Workspace &ws) {
  // Entries that may be touched for each one of the model.
  constexpr double kAutoEffort = 20, kEffort = 1000;
  const WorkingModel &model = ws.model;
  if (ws.options.depRows == 0 || (ws.options.depRows < 0 && !ws.options.integer)) return false;
  const Vec<int> rows = nucleus(ws);
  if (rows.size() < 2) return false;
  RowElimination elimination(model.numCols());
  Vec<RowElimination::Term> terms;
  for (const int row : rows) {
    terms.clear();
    for (const Entry &entry : model.rowEntries(row)) terms.push_back({entry.col, entry.value});
    elimination.addRow(terms);
  }
  const double effort = ws.options.depRows > 0 ? kEffort : kAutoEffort;
  elimination.run(effort * static_cast<double>(model.entriesLeft()));
  DependentRows dependent(ws);
  bool found = false;
  for (const int row : elimination.dependent()) {
    if (ws.finished()) break;
    elimination.combination(row, terms);
    for (RowElimination::Term &term : terms) term.index = rows[term.index];
    found |= dependent.remove(terms);
  }
  ws.charge(5 * elimination.effort());
  return found;
}

}  // namespace tarvik::presolve
