#include "presolve/dual_bounds.h"

#include "presolve/reductions.h"

namespace tarvik::presolve {

namespace {

// A bound is tightened only when it moves by this part: propagation ends soon.
constexpr double kMinGain = 1e-3;
// Conclusions that rest on more derivations than this are left alone.
constexpr std::size_t kMaxNeeded = 200;

void add(double bound, double coef, double &sum, int &infinite) {
  if (isInf(bound))
    ++infinite;
  else
    sum += coef * bound;
}

}  // namespace

DualBounds::DualBounds(Workspace &ws) : ws_(ws) {
  const WorkingModel &model = ws.model;
  initial_.reserve(2 * static_cast<std::size_t>(model.numRows()));
  for (int i = 0; i < model.numRows(); ++i) {
    initial_.push_back(isInf(model.row(i).upper) ? 0 : -kInf);
    initial_.push_back(isInf(model.row(i).lower) ? 0 : kInf);
  }
  last_.assign(initial_.size(), -1);
  openAbove_.assign(static_cast<std::size_t>(model.numCols()), 0);
  openBelow_.assign(static_cast<std::size_t>(model.numCols()), 0);
  for (int j = 0; j < model.numCols(); ++j) {
    if (!model.col(j).alive || model.col(j).integer || model.col(j).restricted) continue;
    openAbove_[j] = canOpenAbove(ws, j);
    openBelow_[j] = canOpenBelow(ws, j);
  }
  ws.charge(static_cast<double>(10 * model.entriesLeft()));
}

bool DualBounds::propagate() {
  bool changed = false;
  for (int j = 0; j < ws_.model.numCols(); ++j)
    if (ws_.model.col(j).alive && (openAbove_[j] || openBelow_[j])) changed |= tightenBy(j);
  ws_.charge(static_cast<double>(10 * ws_.model.entriesLeft()));
  return changed;
}

DualBounds::Range DualBounds::combination(int j) const {
  Range range;
  for (const Entry &entry : ws_.model.colEntries(j)) {
    const bool rising = entry.value > 0;
    add(bound(entry.row, !rising), entry.value, range.min, range.minInf);
    add(bound(entry.row, rising), entry.value, range.max, range.maxInf);
  }
  return range;
}

bool DualBounds::tightenBy(int j) {
  const Range range = combination(j);
  const double cost = ws_.model.col(j).cost;
  bool changed = false;
  if (openAbove_[j] && range.minInf <= 1)
    for (const Entry &entry : ws_.model.colEntries(j)) changed |= tighten(entry, true, range, cost);
  if (openBelow_[j] && range.maxInf <= 1)
    for (const Entry &entry : ws_.model.colEntries(j))
      changed |= tighten(entry, false, range, cost);
  return changed;
}

// y'a <= cost (from above) or y'a >= cost, with all but one of the duals at their bounds.
bool DualBounds::tighten(const Entry &entry, bool fromAbove, const Range &range, double cost) {
  const double a = entry.value;
  const double own = bound(entry.row, fromAbove ? a < 0 : a > 0);
  const int infinite = fromAbove ? range.minInf : range.maxInf;
  if (infinite != (isInf(own) ? 1 : 0)) return false;
  const double rest = (fromAbove ? range.min : range.max) - (isInf(own) ? 0 : a * own);
  const double value = (cost - rest) / a;
  const bool isUpper = fromAbove == (a > 0);
  const double old = bound(entry.row, isUpper);
  const double margin = isInf(old) ? 0 : kMinGain * std::max(1.0, std::fabs(old));
  if (std::fabs(value) > kHugeValue || (isUpper ? value >= old - margin : value <= old + margin))
    return false;
  int &last = last_[2 * entry.row + (isUpper ? 1 : 0)];
  log_.push_back({entry.row, entry.col, isUpper, fromAbove, last, value});
  last = static_cast<int>(log_.size()) - 1;
  return true;
}

// Collects the derivation of a bound as it was before a point of the log.
void DualBounds::require(int row, bool isUpper, int before) {
  int at = last_[2 * row + (isUpper ? 1 : 0)];
  while (at >= before) at = log_[at].previous;
  if (at < 0) {  // the row's sign itself
    const Row &r = ws_.model.row(row);
    if (row == targetRow_ || !isInf(isUpper ? r.lower : r.upper)) broken_ = true;
    return;
  }
  if (seen_[at] == query_) return;
  seen_[at] = query_;
  needed_.push_back(at);
}

void DualBounds::requireInputs(int col, bool upperEnd, int before, int exceptRow) {
  for (const Entry &entry : ws_.model.colEntries(col))
    if (entry.row != exceptRow) require(entry.row, (entry.value > 0) == upperEnd, before);
}

void DualBounds::startQuery(int targetRow, int targetCol) {
  seen_.resize(log_.size(), 0);
  ++query_;
  needed_.clear();
  broken_ = false;
  targetRow_ = targetRow;
  targetCol_ = targetCol;
}

bool DualBounds::secureCombination(int col, bool upperEnd) {
  startQuery(-1, col);
  requireInputs(col, upperEnd, static_cast<int>(log_.size()), -1);
  return secure();
}

bool DualBounds::secureBound(int row, bool isUpper) {
  startQuery(row, -1);
  require(row, isUpper, static_cast<int>(log_.size()));
  return secure();
}

bool DualBounds::secure() {
  for (std::size_t k = 0; k < needed_.size() && !broken_; ++k) {
    const Derivation &step = log_[needed_[k]];
    if (step.col == targetCol_ || !ws_.model.col(step.col).alive || needed_.size() > kMaxNeeded)
      return false;
    requireInputs(step.col, !step.fromAbove, needed_[k], step.row);
  }
  if (broken_) return false;
  // Removing one implied bound may leave another without support: check each afresh.
  for (const int at : needed_) {
    const Derivation &step = log_[at];
    if (!(step.fromAbove ? openAbove(ws_, step.col) : openBelow(ws_, step.col))) return false;
  }
  return true;
}

}  // namespace tarvik::presolve
