// Columns whose reduced cost has the same strict sign for all feasible duals (dominated columns,
// Andersen and Andersen, 1995), and rows whose dual has: such columns go to a bound, such rows
// are equations. Bounds on the duals come from the rows' sides and, in a few rounds of
// propagation, from columns with an infinite bound, each of which is an inequality on the duals.
//
// A column that has given bounds to duals stays for this round, and a row whose dual's sign has
// been used stays an inequality: the duals of the reduced model must still satisfy these
// conditions, or the restored duals could have wrong signs.

#include "presolve/reductions.h"

namespace tarvik::presolve {

namespace {

constexpr int kRounds = 3;

struct Range {
  double min = 0, max = 0;
  int minInf = 0, maxInf = 0;
};

class DualBounds {
 public:
  explicit DualBounds(Workspace &ws)
      : ws_(ws),
        lower_(static_cast<std::size_t>(ws.model.numRows()), -kInf),
        upper_(static_cast<std::size_t>(ws.model.numRows()), kInf),
        source_(static_cast<std::size_t>(ws.model.numCols()), 0),
        used_(static_cast<std::size_t>(ws.model.numRows()), 0) {
    for (int i = 0; i < ws.model.numRows(); ++i) {
      const Row &row = ws.model.row(i);
      if (isInf(row.upper)) lower_[i] = 0;
      if (isInf(row.lower)) upper_[i] = 0;
    }
  }

  // Tightens by all columns; returns false when nothing changed.
  bool propagate() {
    bool changed = false;
    for (int j = 0; j < ws_.model.numCols(); ++j) {
      const Col &col = ws_.model.col(j);
      if (!col.alive || (col.hasLower() && col.hasUpper())) continue;
      changed |= tightenBy(j);
    }
    ws_.charge(static_cast<double>(4 * ws_.model.entriesLeft()));
    return changed;
  }

  bool isSource(int col) const { return source_[col] != 0; }
  bool isUsed(int row) const { return used_[row] != 0; }
  double lower(int i) const { return lower_[i]; }
  double upper(int i) const { return upper_[i]; }

  // The range of y'a over the dual bounds.
  Range combination(int j) const {
    Range range;
    for (const Entry &entry : ws_.model.colEntries(j)) {
      add(entry.value > 0 ? lower_[entry.row] : upper_[entry.row], entry.value, range.min,
          range.minInf);
      add(entry.value > 0 ? upper_[entry.row] : lower_[entry.row], entry.value, range.max,
          range.maxInf);
    }
    return range;
  }

 private:
  static void add(double bound, double coef, double &sum, int &infinite) {
    if (isInf(bound))
      ++infinite;
    else
      sum += coef * bound;
  }

  bool tightenBy(int j) {
    const Range range = combination(j);
    int count = 0, tightened = -1;
    for (const Entry &entry : ws_.model.colEntries(j)) {
      if (!tightenEntry(entry, range)) continue;
      ++count;
      tightened = entry.row;
    }
    if (count == 0) return false;
    source_[j] = 1;
    for (const Entry &entry : ws_.model.colEntries(j))
      if (count > 1 || entry.row != tightened) used_[entry.row] = 1;
    return true;
  }

  bool tightenEntry(const Entry &entry, const Range &range) {
    const Col &col = ws_.model.col(entry.col);
    const double a = entry.value;
    double &low = lower_[entry.row], &up = upper_[entry.row];
    const double oldLow = low, oldUp = up;
    bool changed = false;
    if (!col.hasUpper()) {  // y'a <= cost
      const double own = a > 0 ? oldLow : oldUp;
      const bool known = range.minInf == (isInf(own) ? 1 : 0);
      const double rest = range.min - (isInf(own) ? 0 : a * own);
      if (known) changed |= tighten(a > 0 ? up : low, (col.cost - rest) / a, a > 0);
    }
    if (!col.hasLower()) {  // y'a >= cost
      const double own = a > 0 ? oldUp : oldLow;
      const bool known = range.maxInf == (isInf(own) ? 1 : 0);
      const double rest = range.max - (isInf(own) ? 0 : a * own);
      if (known) changed |= tighten(a > 0 ? low : up, (col.cost - rest) / a, a < 0);
    }
    return changed;
  }

  static bool tighten(double &bound, double value, bool isUpper) {
    const double margin = isInf(bound) ? 0 : 1e-3 * std::max(1.0, std::fabs(bound));
    if (std::fabs(value) > kHugeValue) return false;
    if (isUpper ? value >= bound - margin : value <= bound + margin) return false;
    bound = value;
    return true;
  }

  Workspace &ws_;
  Vec<double> lower_, upper_;
  Vec<char> source_, used_;
};

double strictness(double size) { return kStrictDual * std::max(1.0, size); }

// Fixes the column when its reduced cost has a strict sign.
bool fixBySign(Workspace &ws, int j, const DualBounds &duals) {
  const Col &col = ws.model.col(j);
  const Range range = duals.combination(j);
  const double margin = strictness(std::fabs(col.cost));
  const bool positive = range.maxInf == 0 && col.cost - range.max > margin;
  const bool negative = range.minInf == 0 && col.cost - range.min < -margin;
  if (!positive && !negative) return false;
  const double bound = positive ? col.lower : col.upper;
  if (isInf(bound)) {
    ws.dualInfeasible();
    return true;
  }
  if (std::fabs(bound) > kHugeValue || !ws.take()) return false;
  fixCol(ws, j, bound, positive ? FixedAt::Lower : FixedAt::Upper);
  return true;
}

bool makeEquation(Workspace &ws, int i, const DualBounds &duals) {
  const Row &row = ws.model.row(i);
  const bool atLower = duals.lower(i) > kStrictDual;
  const bool atUpper = duals.upper(i) < -kStrictDual;
  if (row.isEquation() || duals.isUsed(i) || (!atLower && !atUpper)) return false;
  const double side = atLower ? row.lower : row.upper;
  if (isInf(side) || (atLower && atUpper) || !ws.take()) return false;
  ws.stack.begin(RecordKind::EquationSide);
  ws.stack.put(i);
  ws.stack.put(atLower);
  ws.model.setRowBounds(i, side, side);
  ++ws.stats.sensesChanged;
  return true;
}

}  // namespace

bool fixDominatedCols(Workspace &ws) {
  if (!ws.options.dualReductions) return false;
  DualBounds duals(ws);
  for (int round = 0; round < kRounds && duals.propagate(); ++round) {
  }
  bool found = false;
  for (int j = 0; j < ws.model.numCols() && !ws.finished(); ++j) {
    const Col &col = ws.model.col(j);
    if (!col.alive || col.length == 0 || duals.isSource(j)) continue;
    found |= fixBySign(ws, j, duals);
  }
  for (int i = 0; i < ws.model.numRows() && !ws.finished(); ++i)
    if (ws.model.row(i).alive) found |= makeEquation(ws, i, duals);
  if (found) ws.assumedOptimum = true;
  return found;
}

void undoEquationSide(RecordReader record, PostsolveState &state) {
  const int row = record.get<int>();
  const bool atLower = record.get<bool>();
  if (state.hasBasis && state.rowStatus[row] != VarStatus::Basic)
    state.rowStatus[row] = atLower ? VarStatus::AtLower : VarStatus::AtUpper;
}

}  // namespace tarvik::presolve
