#include "mip/heuristics/feasibility_pump.h"

#include <algorithm>
#include <cmath>

#include "mip/heuristics/heuristic_log.h"
#include "mip/heuristics/heuristic_tools.h"
#include "mip/heuristics/lp_scope.h"

namespace tarvik {

namespace {

constexpr int kMaxCols = 1000000000;
constexpr int kSeedOffset = 123;
// Rounded points are compared with those of so many passes.
constexpr std::size_t kRemembered = 71;
constexpr double kViolated = 1e-5;
constexpr double kObjectiveFading = 0.9, kLeastObjective = 1e-3;
constexpr double kIterationsPerPass = 2000;
// Columns that are rounded the other way when the points come to rest.
constexpr int kFlips = 20;
// Passes between attempts to complete the rounded point by propagation.
constexpr int kPassesPerCompletion = 5;

class FeasibilityPump {
 public:
  FeasibilityPump(HeuristicContext &context, HeuristicLog &log)
      : context_(context),
        problem_(*context.problem),
        log_(log),
        random_(static_cast<std::uint64_t>(context.options->seed) + kSeedOffset),
        x_(*context.x),
        rounded_(problem_.numCols(), 0) {
    for (int j = 0; j < problem_.numCols(); ++j) {
      if (problem_.isIntegral(j) && !context.domain->isFixed(j)) integers_.push_back(j);
      costNorm_ += problem_.lp().cost[j] * problem_.lp().cost[j];
    }
    costNorm_ = std::sqrt(costNorm_);
  }

  void run(int passes);

 private:
  double round(Vec<double> &rounded) const;
  double hash() const;
  void flipSome(const Vec<double> &previous);
  void perturb();
  void avoidCycles(const Vec<double> &previous);
  LpStatus project(LpScope &scope);
  bool found(int pass);
  bool complete();

  HeuristicContext &context_;
  const Problem &problem_;
  HeuristicLog &log_;
  Random random_;
  Vec<int> integers_;
  Vec<double> x_, rounded_;
  Vec<double> hashes_;
  double costNorm_ = 0, objectiveWeight_ = 1;
  double least_ = kUserInf;
};

// The integer violation of the point that satisfies the relaxation.
double FeasibilityPump::round(Vec<double> &rounded) const {
  double violation = 0;
  for (const int j : integers_) {
    rounded[j] = std::floor(x_[j] + 0.5);
    const double distance = std::fabs(x_[j] - rounded[j]);
    if (distance > kViolated) violation += distance;
  }
  return violation;
}

double FeasibilityPump::hash() const {
  double sum = 0;
  for (const int j : integers_) sum += (j + 1.0) * (rounded_[j] + 0.5);
  return sum;
}

// The rounded point is the last one again: the columns whose relaxed value is farthest from it go
// to the other side.
void FeasibilityPump::flipSome(const Vec<double> &previous) {
  Vec<int> order(integers_);
  const auto distance = [&](int j) { return std::fabs(x_[j] - previous[j]); };
  std::stable_sort(order.begin(), order.end(),
                   [&](int a, int b) { return distance(a) > distance(b); });
  const std::size_t wanted = kFlips / 2 + random_.below(kFlips);
  for (std::size_t k = 0; k < std::min(wanted, order.size()); ++k) {
    const int j = order[k];
    if (distance(j) <= kViolated) break;
    const double other = previous[j] + (x_[j] > previous[j] ? 1 : -1);
    rounded_[j] = std::min(std::max(other, context_.domain->lower(j)), context_.domain->upper(j));
  }
}

// A longer cycle: every column may go to the other side.
void FeasibilityPump::perturb() {
  for (const int j : integers_) {
    const double lower = context_.domain->lower(j), upper = context_.domain->upper(j);
    const double distance = std::fabs(x_[j] - rounded_[j]);
    if (distance + std::max(random_.uniform(-0.3, 0.7), 0.0) <= 0.5) continue;
    const double other = rounded_[j] + (x_[j] > rounded_[j]   ? 1
                                        : x_[j] < rounded_[j] ? -1
                                        : rounded_[j] < upper ? 1
                                                              : -1);
    rounded_[j] = std::min(std::max(other, lower), upper);
  }
}

void FeasibilityPump::avoidCycles(const Vec<double> &previous) {
  const auto known = [&] {
    return std::find(hashes_.begin(), hashes_.end(), hash()) != hashes_.end();
  };
  if (!hashes_.empty() && hash() == hashes_.back()) flipSome(previous);
  for (int attempt = 0; attempt < 10 && known(); ++attempt) perturb();
  hashes_.push_back(hash());
  if (hashes_.size() > kRemembered) hashes_.erase(hashes_.begin());
}

// The point of the relaxation that is nearest to the rounded one. General integers that were
// rounded to the inside of their range keep to the side on which they are, so that a linear cost
// measures their distance.
LpStatus FeasibilityPump::project(LpScope &scope) {
  Domain &domain = *context_.domain;
  domain.backtrackTo(scope.level());
  Vec<BoundChange> sides;
  Vec<double> cost(problem_.numCols(), 0);
  double size = 0;
  for (const int j : integers_) {
    const double target = rounded_[j];
    if (target <= domain.lower(j)) {
      cost[j] = 1;
    } else if (target >= domain.upper(j)) {
      cost[j] = -1;
    } else {
      const bool above = x_[j] >= target;
      cost[j] = above ? 1 : -1;
      sides.push_back({j, above ? BoundSide::Lower : BoundSide::Upper, target});
    }
    size += 1;
  }
  objectiveWeight_ *= kObjectiveFading;
  if (objectiveWeight_ < kLeastObjective) objectiveWeight_ = 0;
  const double factor =
      costNorm_ > 0 ? objectiveWeight_ / (1 - objectiveWeight_) * std::sqrt(size) / costNorm_ : 0;
  for (int j = 0; j < problem_.numCols(); ++j)
    scope.setCost(j, cost[j] + factor * problem_.lp().cost[j]);
  if (!sides.empty() && !domain.decide(sides)) return LpStatus::Infeasible;
  LpStatus status = scope.solve(kIterationsPerPass);
  if (status == LpStatus::Infeasible && !sides.empty()) {
    domain.backtrackTo(scope.level());
    status = scope.solve(kIterationsPerPass);
  }
  return status;
}

// The relaxed point is integral: continuous columns may still become better.
bool FeasibilityPump::found(int pass) {
  Vec<double> point(x_), better;
  for (const int j : integers_) point[j] = rounded_[j];
  const bool completed = context_.completion->run(point, *context_.control, better) &&
                         context_.sink->submit(better, SolutionSource::FeasibilityPump);
  if (!completed && !context_.sink->submit(point, SolutionSource::FeasibilityPump)) return false;
  log_.lines().print("Feasibility pump: pass %d, found feasible solution\n", pass);
  return true;
}

bool FeasibilityPump::complete() {
  Vec<int> order(integers_);
  const auto distance = [&](int j) { return std::fabs(x_[j] - rounded_[j]); };
  std::stable_sort(order.begin(), order.end(),
                   [&](int a, int b) { return distance(a) < distance(b); });
  Vec<double> target(x_);
  for (const int j : integers_) target[j] = rounded_[j];
  return fixAndPropagate(context_, order, target, SolutionSource::FeasibilityPump);
}

void FeasibilityPump::run(int passes) {
  LpScope scope(context_);
  int done = 0;
  while (done < passes && !isExhausted(context_)) {
    const int pass = ++done;
    const Vec<double> previous(rounded_);
    const double violation = round(rounded_);
    least_ = std::min(least_, violation);
    if (violation == 0 && found(pass)) return;
    if (pass % kPassesPerCompletion == 1) {
      context_.domain->backtrackTo(scope.level());
      if (complete()) {
        log_.lines().print("Feasibility pump: pass %d, found feasible solution\n", pass);
        return;
      }
    }
    if (log_.due())
      log_.lines().print(
          "Feasibility pump: pass %d, min int violation %.3f, total elapsed time %.0fs\n", pass,
          least_, log_.seconds());
    avoidCycles(previous);
    if (project(scope) != LpStatus::Optimal) break;
    x_ = context_.lp->x();
  }
  log_.lines().print("Feasibility pump: no solution found in %d passes\n", done);
}

}  // namespace

HeurResult heurFeasPump(HeuristicContext &context, int passes) {
  const Problem &problem = *context.problem;
  if (passes < 1 || problem.numCols() > kMaxCols || problem.integers().empty()) return {};
  HeuristicLog log(context);
  if (!problem.model().sos.empty()) {
    log.lines().print("Feasibility pump skipped - SOS constraints in model\n");
    return {};
  }
  FeasibilityPump(context, log).run(passes);
  return {};
}

}  // namespace tarvik
