#include "mip/domain.h"

#include <algorithm>
#include <cmath>

namespace tarvik {

namespace {

constexpr double kFarFromZero = 1e6;

// Bounds of continuous columns are worth a change when they come nearer by this share of the box,
// or of their own size when there is no box.
constexpr double kWorthwhileShare = 0.1;
// The same for integral columns: those with wide boxes would creep along in single steps.
constexpr double kIntegralShare = 1e-3;
// Bounds beyond this are too inaccurate to be derived.
constexpr double kLargestDerived = 1e8;
// Slack with which an integral bound is rounded.
constexpr double kRoundingSlack = 1e-6;

// Work of a bound change for each entry of its column.
constexpr double kChangeWork = 8;

double relativeTolerance(double tolerance, double value) {
  return tolerance * std::max(1.0, std::fabs(value));
}

}  // namespace

Domain::Domain(const Problem &problem)
    : problem_(&problem),
      lower_(problem.lp().colLower),
      upper_(problem.lp().colUpper),
      lowerPos_(problem.numCols(), -1),
      upperPos_(problem.numCols(), -1),
      queued_(problem.numRows(), 0),
      isChanged_(problem.numCols(), 0) {
  for (int j = 0; j < problem.numCols(); ++j) {
    if (problem.lp().cost[j] != 0) {
      objectiveCols_.push_back(j);
      objectiveCoefs_.push_back(problem.lp().cost[j]);
    }
    if (problem.isIntegral(j) && lower_[j] > upper_[j]) fail({});
  }
  initialiseActivities();
  for (int i = 0; i < problem.numRows(); ++i) {
    queued_[i] = 1;
    queue_.push_back(i);
  }
}

void Domain::initialiseActivities() {
  const SparseMatrix &rows = problem_->rows();
  min_.assign(rows.numMajor, {});
  max_.assign(rows.numMajor, {});
  reach_.assign(rows.numMajor, 0);
  const auto add = [](Activity &activity, double coef, double bound) {
    if (isInf(bound))
      ++activity.infinite;
    else
      activity.sum.add(coef * bound);
  };
  for (int i = 0; i < rows.numMajor; ++i)
    for (NzIndex k = rows.start[i]; k < rows.start[i + 1]; ++k) {
      const int j = rows.index[k];
      const double a = rows.value[k];
      add(min_[i], a, a > 0 ? lower_[j] : upper_[j]);
      add(max_[i], a, a > 0 ? upper_[j] : lower_[j]);
      const bool boxed = !isInf(lower_[j]) && !isInf(upper_[j]);
      reach_[i] = std::max(reach_[i], boxed ? std::fabs(a) * (upper_[j] - lower_[j]) : kInf);
    }
  for (std::size_t k = 0; k < objectiveCols_.size(); ++k) {
    const int j = objectiveCols_[k];
    const double c = objectiveCoefs_[k];
    add(objectiveMin_, c, c > 0 ? lower_[j] : upper_[j]);
    const bool boxed = !isInf(lower_[j]) && !isInf(upper_[j]);
    objectiveReach_ =
        std::max(objectiveReach_, boxed ? std::fabs(c) * (upper_[j] - lower_[j]) : kInf);
  }
}

double Domain::minActivity(int row) const {
  return min_[row].infinite > 0 ? -kInf : min_[row].sum.value();
}
double Domain::maxActivity(int row) const {
  return max_[row].infinite > 0 ? kInf : max_[row].sum.value();
}

void Domain::markChanged(int col) {
  if (isChanged_[col]) return;
  isChanged_[col] = 1;
  changed_.push_back(col);
}

Vec<int> Domain::takeChanged() {
  Vec<int> result;
  result.swap(changed_);
  for (const int j : result) isChanged_[j] = 0;
  return result;
}

void Domain::enqueueIfUseful(int row) {
  if (queued_[row]) return;
  const LpModel &lp = problem_->lp();
  const bool above =
      !isInf(lp.rowUpper[row]) && min_[row].infinite <= 1 &&
      (min_[row].infinite == 1 || min_[row].sum.value() + reach_[row] > lp.rowUpper[row]);
  const bool below =
      !isInf(lp.rowLower[row]) && max_[row].infinite <= 1 &&
      (max_[row].infinite == 1 || max_[row].sum.value() - reach_[row] < lp.rowLower[row]);
  if (!above && !below) return;
  queued_[row] = 1;
  queue_.push_back(row);
}

void Domain::updateActivities(int col, BoundSide side, double from, double to) {
  const SparseMatrix &cols = problem_->cols();
  const auto replace = [&](Activity &activity, double coef) {
    if (isInf(from))
      --activity.infinite;
    else
      activity.sum.add(-(coef * from));
    if (isInf(to))
      ++activity.infinite;
    else
      activity.sum.add(coef * to);
  };
  for (NzIndex k = cols.start[col]; k < cols.start[col + 1]; ++k) {
    const double a = cols.value[k];
    replace((a > 0) == (side == BoundSide::Lower) ? min_[cols.index[k]] : max_[cols.index[k]], a);
  }
  const double cost = problem_->lp().cost[col];
  if (cost != 0 && (cost > 0) == (side == BoundSide::Lower)) replace(objectiveMin_, cost);
}

void Domain::change(int col, BoundSide side, double value) {
  double &bound = side == BoundSide::Lower ? lower_[col] : upper_[col];
  updateActivities(col, side, bound, value);
  bound = value;
  markChanged(col);
}

double Domain::rounded(int col, BoundSide side, double value) const {
  if (!problem_->isIntegral(col) || isInf(value)) return value;
  return side == BoundSide::Lower ? std::ceil(value - kRoundingSlack)
                                  : std::floor(value + kRoundingSlack);
}

// Bounds within the hole of a semi column move to its ends.
double Domain::semiAdjusted(int col, BoundSide side, double value) const {
  if (!problem_->isSemi(col)) return value;
  const double low = problem_->model().holeLower[col], high = problem_->model().holeUpper[col];
  const double tolerance = problem_->tolerances().primal;
  if (side == BoundSide::Lower) return value > low + tolerance && value < high ? high : value;
  return value < high - tolerance && value > low ? low : value;
}

bool Domain::fail(const Failure &failure) {
  empty_ = true;
  failure_ = failure;
  return false;
}

bool Domain::tighten(int col, BoundSide side, double value, Reason reason) {
  if (empty_) return false;
  value = semiAdjusted(col, side, rounded(col, side, value));
  const bool isLower = side == BoundSide::Lower;
  const double old = isLower ? lower_[col] : upper_[col];
  if (isLower ? value <= old : value >= old) return true;
  const double other = isLower ? upper_[col] : lower_[col];
  if (isLower ? value > other : value < other) {
    const double excess = std::fabs(value - other);
    if (problem_->isIntegral(col) ||
        excess > relativeTolerance(problem_->tolerances().primal, other))
      return fail({reason, col, side, value});
    value = other;
    if (value == old) return true;
  }
  int &position = isLower ? lowerPos_[col] : upperPos_[col];
  trail_.push_back({col, side, value, old, reason, position});
  position = static_cast<int>(trail_.size()) - 1;
  change(col, side, value);
  const SparseMatrix &cols = problem_->cols();
  for (NzIndex k = cols.start[col]; k < cols.start[col + 1]; ++k) enqueueIfUseful(cols.index[k]);
  const double cost = problem_->lp().cost[col];
  if (cost != 0 && (cost > 0) == isLower) objectiveQueued_ = true;
  return true;
}

bool Domain::decide(const Vec<BoundChange> &changes) {
  levelStart_.push_back(static_cast<int>(trail_.size()));
  for (const BoundChange &change : changes)
    if (!tighten(change.col, change.side, change.value, {Reason::Decision, -1})) return false;
  return true;
}

void Domain::setCutoff(double cutoff) {
  if (cutoff >= cutoff_) return;
  cutoff_ = cutoff;
  objectiveQueued_ = true;
}

void Domain::backtrackTo(int level) {
  if (level >= this->level()) return;
  const int target = levelStart_[level];
  while (static_cast<int>(trail_.size()) > target) {
    const TrailEntry entry = trail_.back();
    trail_.pop_back();
    (entry.side == BoundSide::Lower ? lowerPos_ : upperPos_)[entry.col] = entry.previous;
    change(entry.col, entry.side, entry.old);
  }
  levelStart_.resize(level);
  for (const int i : queue_) queued_[i] = 0;
  queue_.clear();
  told_ = std::min(told_, target);
  empty_ = false;
  objectiveQueued_ = cutoff_ < kUserInf;
}

bool Domain::worthwhile(int col, BoundSide side, double value) const {
  if (std::fabs(value) > kLargestDerived) return false;
  const double lower = lower_[col], upper = upper_[col];
  const double old = side == BoundSide::Lower ? lower : upper;
  if (isInf(old)) return true;
  const double step = std::fabs(value - old);
  if (problem_->isIntegral(col)) return step >= kIntegralShare * (upper - lower);
  const double box = isInf(lower) || isInf(upper) ? std::max(1.0, std::fabs(old)) : upper - lower;
  return step > kWorthwhileShare * box && step > 1e3 * problem_->tolerances().primal;
}

// sign * value'x <= limit, of which `least` is the smallest (for sign -1: largest) activity.
bool Domain::atMost(const int *index, const double *value, int count, double sign, double limit,
                    const Activity &least, Reason reason) {
  if (least.infinite > 1) return true;
  const double room = limit - sign * least.sum.value();
  const double tolerance = relativeTolerance(problem_->tolerances().primal, limit);
  if (least.infinite == 0 && room < -tolerance) return fail({reason});
  for (int k = 0; k < count; ++k) {
    const int j = index[k];
    const double a = sign * value[k];
    const double resting = a > 0 ? lower_[j] : upper_[j];
    if (least.infinite == 1 && !isInf(resting)) continue;
    if (isInf(resting)) {
      const double bound = room / a;
      const BoundSide side = a > 0 ? BoundSide::Upper : BoundSide::Lower;
      if (worthwhile(j, side, bound) && !tighten(j, side, bound, reason)) return false;
      continue;
    }
    const double other = a > 0 ? upper_[j] : lower_[j];
    if (!isInf(other) && a * (other - resting) <= room) continue;
    double bound = resting + std::max(room, 0.0) / a;
    // Far from zero the column's own term would take the digits of the bound with it.
    if (std::fabs(resting) > kFarFromZero) {
      CompensatedSum rest(least.sum);
      rest.addProduct(-value[k], resting);
      bound = (limit - sign * rest.value()) / a;
      bound = a > 0 ? std::max(bound, resting) : std::min(bound, resting);
    }
    const BoundSide side = a > 0 ? BoundSide::Upper : BoundSide::Lower;
    if (worthwhile(j, side, bound) && !tighten(j, side, bound, reason)) return false;
  }
  return true;
}

bool Domain::propagateRow(int row, WorkMeter &work) {
  const SparseMatrix &rows = problem_->rows();
  const LpModel &lp = problem_->lp();
  const NzIndex start = rows.start[row];
  const int count = rows.length(row);
  work.charge(2.0 * count);
  const Reason reason{Reason::Row, row};
  if (!isInf(lp.rowUpper[row]) && !atMost(rows.index.data() + start, rows.value.data() + start,
                                          count, 1, lp.rowUpper[row], min_[row], reason))
    return false;
  return isInf(lp.rowLower[row]) || atMost(rows.index.data() + start, rows.value.data() + start,
                                           count, -1, -lp.rowLower[row], max_[row], reason);
}

bool Domain::propagateObjective(WorkMeter &work) {
  const double limit = cutoff_ - problem_->lp().offset;
  const bool useful =
      objectiveMin_.infinite == 1 ||
      (objectiveMin_.infinite == 0 && objectiveMin_.sum.value() + objectiveReach_ > limit);
  if (!useful) return true;
  work.charge(2.0 * static_cast<double>(objectiveCols_.size()));
  return atMost(objectiveCols_.data(), objectiveCoefs_.data(),
                static_cast<int>(objectiveCols_.size()), 1, limit, objectiveMin_,
                {Reason::Objective, -1});
}

bool Domain::tellPropagators() {
  if (propagators_.empty()) {
    told_ = static_cast<int>(trail_.size());
    return true;
  }
  for (; told_ < static_cast<int>(trail_.size()); ++told_)
    for (Propagator *propagator : propagators_)
      if (!propagator->onChange(*this, told_)) return false;
  return true;
}

bool Domain::propagate(WorkMeter &work) {
  std::size_t next = 0;
  const std::size_t before = trail_.size();
  while (!empty_) {
    if (!tellPropagators()) break;
    if (next < queue_.size()) {
      const int row = queue_[next++];
      queued_[row] = 0;
      if (!propagateRow(row, work)) break;
    } else if (objectiveQueued_ && cutoff_ < kUserInf) {
      objectiveQueued_ = false;
      if (!propagateObjective(work)) break;
    } else {
      break;
    }
  }
  for (std::size_t k = next; k < queue_.size(); ++k) queued_[queue_[k]] = 0;
  queue_.clear();
  for (std::size_t k = before; k < trail_.size(); ++k)
    work.charge(kChangeWork * (1 + problem_->cols().length(trail_[k].col)));
  return !empty_;
}

}  // namespace tarvik
