#include "mip/heuristics/feasibility_jump.h"

#include <algorithm>
#include <cmath>

#include "mip/heuristics/heuristic_tools.h"

namespace tarvik {

namespace {
constexpr int kSample = 25;
constexpr int kStarts = 2;
// A search ends when it has spent this share of its work without a better point.
constexpr double kPatience = 0.5;
constexpr double kLeastScore = 1e-9;
constexpr double kLargestWeight = 1e20;
// Steps between looks at the limits.
constexpr int kStepsPerPoll = 64;
}  // namespace

JumpSearch::JumpSearch(HeuristicContext &context, Vec<double> start)
    : context_(context),
      problem_(*context.problem),
      domain_(*context.domain),
      point_(problem_, std::move(start)),
      weight_(problem_.numRows(), 1),
      scale_(problem_.numRows(), 1),
      jump_(problem_.numCols(), 0),
      score_(problem_.numCols(), 0),
      stale_(problem_.numCols(), 0),
      binary_(problem_.numCols(), 0),
      goodPosition_(problem_.numCols(), -1),
      best_(point_.x()),
      bestViolated_(static_cast<int>(point_.violated().size())) {
  const SparseMatrix &rows = problem_.rows();
  for (int i = 0; i < problem_.numRows(); ++i) {
    double largest = 0;
    for (NzIndex k = rows.start[i]; k < rows.start[i + 1]; ++k)
      largest = std::max(largest, std::fabs(rows.value[k]));
    if (largest > 0) scale_[i] = 1 / largest;
  }
  for (int j = 0; j < problem_.numCols(); ++j) {
    binary_[j] = domain_.isBinary(j);
    refresh(j);
  }
}

double JumpSearch::rowPenalty(int row, double activity) const {
  return weight_[row] * scale_[row] * std::fabs(point_.excessOf(row, activity));
}

// How much penalty a move of the column to the value takes away.
double JumpSearch::scoreOf(int col, double value) const {
  const double step = value - point_.value(col);
  const SparseMatrix &cols = problem_.cols();
  double score = 0;
  for (NzIndex k = cols.start[col]; k < cols.start[col + 1]; ++k) {
    const int i = cols.index[k];
    const double activity = point_.activity(i);
    score += rowPenalty(i, activity) - rowPenalty(i, activity + step * cols.value[k]);
  }
  return score;
}

// A minimum of the penalty as a function of the column: convex and piecewise linear.
double JumpSearch::leastPenaltyValue(int col) {
  const LpModel &lp = problem_.lp();
  const double x = point_.value(col);
  double slope = 0;
  breaks_.clear();
  for (NzIndex k = lp.a.start[col]; k < lp.a.start[col + 1]; ++k) {
    const int i = lp.a.index[k];
    const double a = lp.a.value[k], rest = point_.activity(i) - a * x;
    const double change = weight_[i] * scale_[i] * std::fabs(a);
    if (!isInf(lp.rowUpper[i])) {
      breaks_.push_back({(lp.rowUpper[i] - rest) / a, change});
      if (a < 0) slope -= change;
    }
    if (!isInf(lp.rowLower[i])) {
      breaks_.push_back({(lp.rowLower[i] - rest) / a, change});
      if (a > 0) slope -= change;
    }
  }
  context_.control->work.charge(4.0 * static_cast<double>(breaks_.size()));
  std::sort(breaks_.begin(), breaks_.end(), [](const Break &a, const Break &b) {
    return a.value < b.value || (a.value == b.value && a.slope < b.slope);
  });
  for (const Break &b : breaks_) {
    slope += b.slope;
    if (slope > kLeastScore) return b.value;
  }
  return x;
}

double JumpSearch::bestJump(int col) {
  const double x = point_.value(col);
  if (binary_[col]) return 1 - x;
  const double lower = domain_.lower(col), upper = domain_.upper(col);
  const double least = leastPenaltyValue(col);
  double best = x, bestScore = -kUserInf;
  const auto consider = [&](double value) {
    value = std::min(std::max(value, lower), upper);
    if (value == x || isInf(value)) return;
    const double score = scoreOf(col, value);
    if (score > bestScore) {
      bestScore = score;
      best = value;
    }
  };
  if (!problem_.isIntegral(col)) {
    consider(least);
    return best;
  }
  consider(std::floor(least));
  consider(std::ceil(least));
  if (best == x) {
    consider(x - 1);
    consider(x + 1);
  }
  return best;
}

void JumpSearch::noteScore(int col) {
  const bool good = score_[col] > kLeastScore;
  int &position = goodPosition_[col];
  if (good == (position >= 0)) return;
  if (good) {
    position = static_cast<int>(good_.size());
    good_.push_back(col);
    return;
  }
  const int last = good_.back();
  good_[position] = last;
  goodPosition_[last] = position;
  good_.pop_back();
  position = -1;
}

void JumpSearch::refresh(int col) {
  stale_[col] = 0;
  if (domain_.isFixed(col)) return;
  jump_[col] = bestJump(col);
  score_[col] = jump_[col] == point_.value(col) ? 0 : scoreOf(col, jump_[col]);
  context_.control->work.charge(3.0 * problem_.cols().length(col));
  noteScore(col);
}

// Makes the jump and corrects the scores of all columns that share a row with it; where the best
// jump is more than a flip it is sought again when the column is looked at.
void JumpSearch::move(int col) {
  const SparseMatrix &cols = problem_.cols(), &rows = problem_.rows();
  const double step = jump_[col] - point_.value(col);
  double touched = 0;
  for (NzIndex k = cols.start[col]; k < cols.start[col + 1]; ++k) {
    const int i = cols.index[k];
    const double before = point_.activity(i), after = before + step * cols.value[k];
    const double here = rowPenalty(i, after) - rowPenalty(i, before);
    for (NzIndex p = rows.start[i]; p < rows.start[i + 1]; ++p) {
      const int j = rows.index[p];
      if (j == col || domain_.isFixed(j)) continue;
      const double other = (jump_[j] - point_.value(j)) * rows.value[p];
      const double change = here - rowPenalty(i, after + other) + rowPenalty(i, before + other);
      if (!binary_[j]) stale_[j] = 1;
      if (change == 0) continue;
      score_[j] += change;
      noteScore(j);
    }
    touched += rows.length(i);
  }
  context_.control->work.charge(4.0 * touched);
  point_.move(col, jump_[col]);
  refresh(col);
}

void JumpSearch::bumpWeights() {
  const SparseMatrix &rows = problem_.rows();
  double touched = 0;
  for (const int i : point_.violated()) {
    const double activity = point_.activity(i);
    weight_[i] += bump_;
    const double unit = bump_ * scale_[i], here = std::fabs(point_.excess(i));
    for (NzIndex p = rows.start[i]; p < rows.start[i + 1]; ++p) {
      const int j = rows.index[p];
      if (domain_.isFixed(j)) continue;
      const double other = (jump_[j] - point_.value(j)) * rows.value[p];
      score_[j] += unit * (here - std::fabs(point_.excessOf(i, activity + other)));
      if (!binary_[j]) stale_[j] = 1;
      noteScore(j);
    }
    touched += rows.length(i);
  }
  context_.control->work.charge(3.0 * touched + 10);
}

int JumpSearch::sample(const Vec<int> &cols, int count) {
  int best = -1;
  const int size = static_cast<int>(cols.size());
  const int first = size > count ? context_.random->below(size) : 0;
  // A stretch of the list that begins anywhere: as good as single draws, and cheaper.
  Vec<int> drawn;
  for (int k = 0; k < std::min(count, size); ++k) drawn.push_back(cols[(first + k) % size]);
  for (const int j : drawn) {
    if (domain_.isFixed(j)) continue;
    if (stale_[j]) refresh(j);
    if (jump_[j] == point_.value(j)) continue;
    if (best < 0 || score_[j] > score_[best]) best = j;
  }
  return best;
}

int JumpSearch::chooseCol() {
  while (!good_.empty()) {
    const int j = sample(good_, kSample);
    if (j >= 0 && score_[j] > kLeastScore) return j;
    if (j < 0) break;
  }
  bumpWeights();
  const Vec<int> &violated = point_.violated();
  const int row = violated[context_.random->below(static_cast<int>(violated.size()))];
  const SparseMatrix &rows = problem_.rows();
  const Vec<int> members(rows.index.begin() + rows.start[row],
                         rows.index.begin() + rows.start[row + 1]);
  return sample(members, kSample);
}

bool JumpSearch::run() {
  const double begin = context_.control->work.counted();
  const double patience = kPatience * (context_.workLimit - begin);
  double lastBetter = begin;
  for (int step = 1; !point_.violated().empty(); ++step) {
    if (step % kStepsPerPoll == 0 && isExhausted(context_)) return false;
    if (context_.control->work.counted() - lastBetter > patience || bump_ > kLargestWeight)
      return false;
    const int col = chooseCol();
    if (col < 0) continue;
    move(col);
    const int violated = static_cast<int>(point_.violated().size());
    if (violated >= bestViolated_) continue;
    bestViolated_ = violated;
    best_ = point_.x();
    lastBetter = context_.control->work.counted();
  }
  return true;
}

bool FeasibilityJump::run(HeuristicContext &context) {
  const Problem &problem = *context.problem;
  if (problem.numRows() == 0) return false;
  const double begin = context.control->work.counted(), whole = context.workLimit - begin;
  const double lastLimit = context.workLimit;
  Vec<double> x(problem.numCols());
  for (int start = 0; start < kStarts; ++start) {
    for (int j = 0; j < problem.numCols(); ++j) {
      const double lower = context.domain->lower(j), upper = context.domain->upper(j);
      const double cost = problem.lp().cost[j];
      const bool wantsUpper = cost < 0 || (start == 1 && cost == 0);
      const double side = wantsUpper && !isInf(upper) ? upper : lower;
      x[j] = nearestValue(problem, j, lower, upper, isInf(side) ? 0 : side);
    }
    context.workLimit = begin + whole * (start + 1) / kStarts;
    JumpSearch search(context, x);
    const bool feasible = search.run();
    context.workLimit = lastLimit;
    const SolutionSource source = SolutionSource::FeasibilityJump;
    if (feasible && submitChosen(context, search.point(), source)) return false;
    Vec<int> order;
    for (int j = 0; j < problem.numCols(); ++j)
      if (problem.isIntegral(j)) order.push_back(j);
    shuffle(order, *context.random);
    if (!isExhausted(context) && fixAndPropagate(context, order, search.best(), source))
      return false;
  }
  return false;
}

}  // namespace tarvik
