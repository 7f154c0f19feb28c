#include "presolve/derived_bounds.h"

namespace tarvik::presolve {

namespace {

constexpr int kRounds = 10;
// A bound moves by at least this part of the distance to the other one, or of its size: sequences
// that converge in infinitely many steps end soon.
constexpr double kMinGain = 1e-2;
// Steps that limit a column only at values beyond this are left out.
constexpr double kLargest = 1e7;
// What a bound or a side may be off when each row is off by one.
constexpr double kMaxError = 100;
constexpr std::size_t kMaxNeeded = 200;
// Entries looked at, by those of the model: in rounds, and for conclusions.
constexpr double kRoundEffort = 6, kConclusionEffort = 10, kLeastEffort = 50000;

// Proposals need not be accurate.
class PlainSum {
 public:
  void add(double term) { value_ += term; }
  double value() const { return value_; }

 private:
  double value_ = 0;
};

}  // namespace

DerivedBounds::DerivedBounds(Workspace &ws) : ws_(ws) {
  const WorkingModel &model = ws.model;
  bounds_.reserve(2 * static_cast<std::size_t>(model.numCols()));
  for (int j = 0; j < model.numCols(); ++j) {
    bounds_.push_back({model.col(j).lower, 0});
    bounds_.push_back({model.col(j).upper, 0});
  }
  last_.assign(bounds_.size(), -1);
  shown_ = bounds_;
  isShown_.assign(bounds_.size(), 0);
  pending_.assign(static_cast<std::size_t>(model.numRows()), 1);
  affected_.assign(pending_.size(), 0);
}

DerivedBounds::Bound DerivedBounds::shown(int j, bool isUpper) const {
  if (isShown_[slot(j, isUpper)]) return shown_[slot(j, isUpper)];
  const Col &col = ws_.model.col(j);
  if (j == targetCol_) return {isUpper ? kInf : -kInf, 0};
  return {isUpper ? col.upper : col.lower, 0};
}

template <class Sum, class BoundOf>
DerivedBounds::Extent DerivedBounds::extent(int row, bool largest, int withoutCol,
                                            const BoundOf &boundOf) const {
  Extent result;
  Sum sum;
  for (const Entry &entry : ws_.model.rowEntries(row)) {
    if (entry.col == withoutCol) continue;
    const Bound bound = boundOf(entry.col, (entry.value > 0) == largest);
    if (isInf(bound.value)) {
      ++result.infinite;
      continue;
    }
    sum.add(entry.value * bound.value);
    result.error += std::fabs(entry.value) * bound.error;
  }
  result.sum = sum.value();
  return result;
}

DerivedBounds::Extent DerivedBounds::shownExtent(int row, bool largest, int withoutCol) const {
  return extent<CompensatedSum>(row, largest, withoutCol,
                                [&](int j, bool isUpper) { return shown(j, isUpper); });
}

DerivedBounds::Extent DerivedBounds::proposedExtent(int i, bool largest) const {
  if (affected_[i])
    return extent<PlainSum>(i, largest, -1,
                            [&](int j, bool isUpper) { return bounds_[slot(j, isUpper)]; });
  const ActivityBounds &activity = ws_.model.row(i).activity;
  return largest ? Extent{activity.max.value(), 0, activity.maxInf}
                 : Extent{activity.min.value(), 0, activity.minInf};
}

DerivedBounds::Extent DerivedBounds::without(const Extent &all, const Entry &entry,
                                             bool largest) const {
  const Bound &own = bounds_[slot(entry.col, (entry.value > 0) == largest)];
  if (isInf(own.value)) return {all.sum, all.error, all.infinite - 1};
  return {all.sum - entry.value * own.value, all.error - std::fabs(entry.value) * own.error,
          all.infinite};
}

DerivedBounds::Bound DerivedBounds::limit(const Entry &entry, bool bySideUpper,
                                          const Extent &rest) const {
  const Row &row = ws_.model.row(entry.row);
  const double side = bySideUpper ? row.upper : row.lower;
  const bool isUpper = bySideUpper == (entry.value > 0);
  if (isInf(side) || rest.infinite > 0) return {isUpper ? kInf : -kInf, 0};
  return {(side - rest.sum) / entry.value, (1 + rest.error) / std::fabs(entry.value)};
}

// Propagation.

bool DerivedBounds::propagate() {
  const WorkingModel &model = ws_.model;
  const double total = kLeastEffort + kRoundEffort * static_cast<double>(model.entriesLeft());
  effort_ = total;
  Vec<char> current;
  bool changed = true;
  for (int round = 0; round < kRounds && changed; ++round) {
    changed = false;
    current.assign(pending_.size(), 0);
    current.swap(pending_);
    for (int i = 0; i < model.numRows() && effort_ > 0 && !ws_.finished(); ++i) {
      if (!current[i] || !model.row(i).alive) continue;
      changed |= tightenBy(i, true);
      changed |= tightenBy(i, false);
    }
  }
  ws_.charge(3 * (total - std::max(0.0, effort_)));
  if (log_.empty()) return false;
  extents_.resize(2 * affected_.size());
  for (int i = 0; i < model.numRows(); ++i)
    if (affected_[i] && model.row(i).alive)
      for (const bool largest : {false, true})
        extents_[slot(i, largest)] = proposedExtent(i, largest);
  effort_ = kLeastEffort + kConclusionEffort * static_cast<double>(model.entriesLeft());
  return !ws_.finished();
}

bool DerivedBounds::tightenBy(int i, bool bySideUpper) {
  const Row &row = ws_.model.row(i);
  if (isInf(bySideUpper ? row.upper : row.lower)) return false;
  const Extent all = proposedExtent(i, !bySideUpper);
  effort_ -= affected_[i] ? 2 * row.length : row.length;
  if (all.infinite > 1) return false;
  bool changed = false;
  for (const Entry &entry : ws_.model.rowEntries(i)) {
    const Extent rest = without(all, entry, !bySideUpper);
    if (rest.infinite == 0) changed |= tighten(entry, bySideUpper, rest);
    if (ws_.finished()) return changed;
  }
  return changed;
}

bool DerivedBounds::tighten(const Entry &entry, bool bySideUpper, const Extent &rest) {
  const int j = entry.col;
  const bool isUpper = bySideUpper == (entry.value > 0);
  const Bound bound = limit(entry, bySideUpper, rest);
  const Bound &old = bounds_[slot(j, isUpper)], &other = bounds_[slot(j, !isUpper)];
  const double scale = isInf(old.value)     ? 0
                       : isInf(other.value) ? std::max(1.0, std::fabs(old.value))
                                            : std::fabs(old.value - other.value);
  const double gain = isUpper ? old.value - bound.value : bound.value - old.value;
  if (gain <= kMinGain * scale || gain <= ws_.roundingTol(bound.value)) return false;
  if (bound.error > kMaxError || std::fabs(bound.value) > kLargest) return false;
  log_.push_back({entry.row, j, isUpper, bySideUpper, last_[slot(j, isUpper)]});
  last_[slot(j, isUpper)] = static_cast<int>(log_.size()) - 1;
  bounds_[slot(j, isUpper)] = bound;
  for (const Entry &touched : ws_.model.colEntries(j))
    pending_[touched.row] = affected_[touched.row] = 1;
  effort_ -= ws_.model.col(j).length;
  if (crossed(bounds_[slot(j, false)], bounds_[slot(j, true)])) proveInfeasible(j);
  return true;
}

bool DerivedBounds::crossed(const Bound &lower, const Bound &upper) const {
  return lower.value - upper.value >
         ws_.feasibilityTol(lower.value) * (1 + lower.error + upper.error);
}

void DerivedBounds::proveInfeasible(int j) {
  start(-1, -1);
  const int now = static_cast<int>(log_.size());
  require(j, false, now);
  require(j, true, now);
  const bool proven = replay() && crossed(shown(j, false), shown(j, true));
  if (proven) assembleProof(j);
  finish();
  if (!proven) effort_ = 0;  // whatever follows would rest on bounds that cross
}

// The rows' multipliers: starting from the bounds that cross, each step passes the weight of its
// bound on to its row and to the bounds that it used.
void DerivedBounds::assembleProof(int j) {
  Vec<double> weight(bounds_.size(), 0.0);
  Vec<double> multiplier(pending_.size(), 0.0);
  weight[slot(j, false)] = weight[slot(j, true)] = 1;
  for (auto at = taken_.rbegin(); at != taken_.rend(); ++at) {
    const Step &step = log_[*at];
    const Entry &own = ws_.model.entry(ws_.model.find(step.row, step.col));
    const double share = weight[slot(step.col, step.isUpper)] / std::fabs(own.value);
    weight[slot(step.col, step.isUpper)] = 0;
    multiplier[step.row] += step.bySideUpper ? -share : share;
    for (const Entry &entry : ws_.model.rowEntries(step.row))
      if (entry.col != step.col)
        weight[slot(entry.col, (entry.value > 0) != step.bySideUpper)] +=
            share * std::fabs(entry.value);
  }
  ws_.infeasible();
  for (int i = 0; i < ws_.model.numRows(); ++i) {
    if (multiplier[i] == 0) continue;
    ws_.proofRows.push_back(i);
    ws_.proofMultipliers.push_back(multiplier[i]);
  }
}

// Conclusions.

bool DerivedBounds::impliesSide(int i, bool isUpper) {
  const Row &row = ws_.model.row(i);
  const double side = isUpper ? row.upper : row.lower;
  const auto holds = [&](const Extent &reach) {
    if (reach.infinite > 0 || reach.error > kMaxError) return false;
    const double beyond = isUpper ? reach.sum - side : side - reach.sum;
    return beyond <= ws_.roundingTol(side);
  };
  if (isInf(side)) return true;
  if (!affected_[i] || effort_ <= 0 || !holds(extents_[slot(i, isUpper)])) return false;
  start(i, -1);
  requireRest(i, isUpper, -1, static_cast<int>(log_.size()));
  const bool implied = replay() && holds(shownExtent(i, isUpper, -1));
  finish();
  conclusions_ += implied;
  return implied;
}

bool DerivedBounds::impliesBound(int j, bool isUpper) {
  bool implied = false;
  for (const Entry &entry : ws_.model.colEntries(j)) {
    if (implied || effort_ <= 0) break;
    implied = showsBound(entry, isUpper);
  }
  return implied;
}

bool DerivedBounds::showsBound(const Entry &entry, bool isUpper) {
  const Col &col = ws_.model.col(entry.col);
  const Row &row = ws_.model.row(entry.row);
  const bool bySideUpper = isUpper == (entry.value > 0);
  if (!affected_[entry.row] || isInf(bySideUpper ? row.upper : row.lower)) return false;
  const auto holds = [&](const Extent &rest) {
    const Bound bound = limit(entry, bySideUpper, rest);
    if (isInf(bound.value) || bound.error > kMaxError) return false;
    return isUpper ? bound.value <= col.upper + ws_.roundingTol(col.upper)
                   : bound.value >= col.lower - ws_.roundingTol(col.lower);
  };
  if (!holds(without(extents_[slot(entry.row, !bySideUpper)], entry, !bySideUpper))) return false;
  start(-1, entry.col);
  requireRest(entry.row, !bySideUpper, entry.col, static_cast<int>(log_.size()));
  const bool implied = replay() && holds(shownExtent(entry.row, !bySideUpper, entry.col));
  finish();
  conclusions_ += implied;
  return implied;
}

void DerivedBounds::start(int targetRow, int targetCol) {
  seen_.resize(log_.size(), 0);
  ++query_;
  needed_.clear();
  taken_.clear();
  targetRow_ = targetRow;
  targetCol_ = targetCol;
  effortAtStart_ = effort_;
}

// Collects the latest step of a bound before a point of the log that does not use the target row.
void DerivedBounds::require(int col, bool isUpper, int before) {
  int at = last_[slot(col, isUpper)];
  while (at >= 0 && (at >= before || log_[at].row == targetRow_)) at = log_[at].previous;
  if (at < 0 || seen_[at] == query_) return;
  seen_[at] = query_;
  needed_.push_back(at);
}

void DerivedBounds::requireRest(int row, bool largest, int withoutCol, int before) {
  effort_ -= ws_.model.row(row).length;
  for (const Entry &entry : ws_.model.rowEntries(row))
    if (entry.col != withoutCol) require(entry.col, (entry.value > 0) == largest, before);
}

// Does the steps needed again on the model as it is; false when there are none or too many.
bool DerivedBounds::replay() {
  for (std::size_t k = 0; k < needed_.size(); ++k) {
    if (needed_.size() > kMaxNeeded || effort_ <= 0) return false;
    const Step &step = log_[needed_[k]];
    requireRest(step.row, !step.bySideUpper, step.col, needed_[k]);
  }
  if (needed_.empty()) return false;
  std::sort(needed_.begin(), needed_.end());
  for (const int at : needed_) replayStep(at);
  return true;
}

void DerivedBounds::replayStep(int at) {
  const Step &step = log_[at];
  const int position = ws_.model.row(step.row).alive && ws_.model.col(step.col).alive
                           ? ws_.model.find(step.row, step.col)
                           : -1;
  if (position < 0) return;
  const Entry &entry = ws_.model.entry(position);
  // The entry may have changed its sign since.
  if ((step.bySideUpper == (entry.value > 0)) != step.isUpper) return;
  const Extent rest = shownExtent(step.row, !step.bySideUpper, step.col);
  effort_ -= ws_.model.row(step.row).length;
  const Bound bound = limit(entry, step.bySideUpper, rest);
  const Bound old = shown(step.col, step.isUpper);
  if (isInf(bound.value) || bound.error > kMaxError ||
      (step.isUpper ? bound.value >= old.value : bound.value <= old.value))
    return;
  shown_[slot(step.col, step.isUpper)] = bound;
  isShown_[slot(step.col, step.isUpper)] = 1;
  taken_.push_back(at);
}

void DerivedBounds::finish() {
  for (const int at : taken_) isShown_[slot(log_[at].col, log_[at].isUpper)] = 0;
  taken_.clear();
  targetRow_ = targetCol_ = -1;
  ws_.charge(3 * (effortAtStart_ - effort_));
}

}  // namespace tarvik::presolve
