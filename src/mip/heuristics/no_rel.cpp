#include "mip/heuristics/no_rel.h"

#include <algorithm>
#include <cmath>

#include "mip/heuristics/feasibility_jump.h"
#include "mip/heuristics/heuristic_log.h"
#include "mip/heuristics/heuristic_tools.h"
#include "mip/heuristics/local_search.h"
#include "mip/heuristics/sub_mip.h"

namespace tarvik {

namespace {

constexpr double kIterationLimit = 1000;
// Work of one attempt before the time is looked at again.
constexpr double kSlice = 1e8;
constexpr double kLeastShare = 0.01, kLargestShare = 0.8;
// Phase 1 begins anew at random in this share of the columns.
constexpr double kShaken = 0.2;
constexpr double kImprovement = 1e-4;
// Attempts in a row that find nothing before phase 2 is given up.
constexpr int kMaxFailures = 200;

// Lets so many solutions through.
class LimitedSink : public SolutionSink {
 public:
  LimitedSink(SolutionSink &sink, int limit) : sink_(sink), left_(limit) {}
  bool submit(const Vec<double> &x, SolutionSource source) override {
    if (left_ <= 0 || !sink_.submit(x, source)) return false;
    --left_;
    return true;
  }
  bool hasIncumbent() const override { return sink_.hasIncumbent(); }
  double incumbentObjective() const override { return sink_.incumbentObjective(); }
  const Vec<double> &incumbent() const override { return sink_.incumbent(); }
  double cutoff() const override { return sink_.cutoff(); }
  bool isFull() const { return left_ <= 0; }

 private:
  SolutionSink &sink_;
  int left_;
};

class NoRel {
 public:
  NoRel(const HeuristicContext &context, HeuristicLog &log, double seconds, double workUnits)
      : sink_(*context.sink, context.options->noRelSolutions),
        context_(context),
        problem_(*context.problem),
        log_(log),
        endSeconds_(seconds > 0 ? log.seconds() + seconds : kUserInf),
        endWork_(workUnits > 0 ? context.control->work.counted() + workUnits * 1e9 : kUserInf) {
    context_.sink = &sink_;
  }

  void run() {
    if (!sink_.hasPoint()) findPoint();
    if (!sink_.hasPoint()) return;
    log_.lines().print("Transition to phase 2\n");
    improve();
  }

 private:
  bool goesOn();
  void findPoint();
  void improve();
  Vec<double> startingPoint(int attempt, const Vec<double> &best);
  double totalViolation(const Vec<double> &x) const;
  void chooseNeighbourhood(Vec<char> &isFree);
  bool searchNeighbourhood();

  LimitedSink sink_;
  HeuristicContext context_;
  const Problem &problem_;
  HeuristicLog &log_;
  double endSeconds_, endWork_;
  double share_ = 0.1;  // of the integral columns, free in a neighbourhood
  LocalSearch localSearch_;
};

// Also gives the next attempt its work.
bool NoRel::goesOn() {
  if (log_.due()) {
    if (context_.bound > -kUserInf)
      log_.lines().print("Elapsed time for NoRel heuristic: %.0fs (best bound %g)\n",
                         log_.seconds(), context_.options->objSense * context_.bound);
    else
      log_.lines().print("Elapsed time for NoRel heuristic: %.0fs\n", log_.seconds());
  }
  const double work = context_.control->work.counted();
  context_.workLimit = std::min(endWork_, work + kSlice);
  return log_.seconds() < endSeconds_ && work < endWork_ && !sink_.isFull() &&
         context_.control->limits.pollNow(context_.control->work, 0) == StopReason::None;
}

double NoRel::totalViolation(const Vec<double> &x) const {
  const MovingPoint point(problem_, x);
  double total = 0;
  for (const int i : point.violated()) total += std::fabs(point.excess(i));
  return total;
}

// At first the cheap side of every column, then the best point with some columns anywhere.
Vec<double> NoRel::startingPoint(int attempt, const Vec<double> &best) {
  const Domain &domain = *context_.domain;
  Vec<double> x(best);
  for (int j = 0; j < problem_.numCols(); ++j) {
    const double lower = domain.lower(j), upper = domain.upper(j);
    const bool up = attempt == 0 ? problem_.lp().cost[j] < 0 : context_.random->below(2) == 1;
    if (attempt > 0 && context_.random->uniform() > kShaken) continue;
    const double side = up && !isInf(upper) ? upper : lower;
    x[j] = nearestValue(problem_, j, lower, upper, isInf(side) ? 0 : side);
  }
  return x;
}

void NoRel::findPoint() {
  const SolutionSource source = SolutionSource::NoRel;
  Vec<double> best(problem_.numCols(), 0);
  double least = kUserInf;
  Vec<int> order;
  for (int j = 0; j < problem_.numCols(); ++j)
    if (problem_.isIntegral(j)) order.push_back(j);
  for (int attempt = 0; goesOn(); ++attempt) {
    JumpSearch search(context_, startingPoint(attempt, best));
    const bool feasible = search.run();
    const Vec<double> &point = feasible ? search.point() : search.best();
    const double violation = totalViolation(point);
    if (violation < least) {
      least = violation;
      best = point;
      log_.lines().print("Found phase-1 solution: relaxation %g\n", least);
    }
    if (feasible && submitChosen(context_, point, source)) return;
    if (!goesOn()) return;
    shuffle(order, *context_.random);
    if (fixAndPropagate(context_, order, point, source)) {
      if (least > 0) log_.lines().print("Found phase-1 solution: relaxation %g\n", 0.0);
      return;
    }
  }
}

// Columns that share rows with each other, from a random one on.
void NoRel::chooseNeighbourhood(Vec<char> &isFree) {
  const Vec<int> &integers = problem_.integers();
  const auto wanted = static_cast<std::size_t>(
      std::max(5.0, std::ceil(share_ * static_cast<double>(integers.size()))));
  isFree.assign(problem_.numCols(), 0);
  Vec<char> isSeen(problem_.numRows(), 0);
  Vec<int> chosen;
  const SparseMatrix &rows = problem_.rows(), &cols = problem_.cols();
  std::size_t next = 0;
  while (chosen.size() < std::min(wanted, integers.size())) {
    if (next == chosen.size()) {
      const int j = integers[context_.random->below(static_cast<int>(integers.size()))];
      if (isFree[j]) continue;
      isFree[j] = 1;
      chosen.push_back(j);
    }
    const int col = chosen[next++];
    for (NzIndex k = cols.start[col]; k < cols.start[col + 1]; ++k) {
      const int i = cols.index[k];
      if (isSeen[i]) continue;
      isSeen[i] = 1;
      for (NzIndex p = rows.start[i]; p < rows.start[i + 1] && chosen.size() < wanted; ++p) {
        const int j = rows.index[p];
        if (isFree[j] || problem_.kind(j) != VarKind::Integer) continue;
        isFree[j] = 1;
        chosen.push_back(j);
      }
    }
  }
}

bool NoRel::searchNeighbourhood() {
  Vec<char> isFree;
  chooseNeighbourhood(isFree);
  SubMip sub(context_, SolutionSource::NoRel);
  const LpModel &lp = sub.model().lp;
  for (const int j : problem_.integers()) {
    const double value = std::round(sink_.incumbent()[j]);
    if (!isFree[j] && value >= lp.colLower[j] && value <= lp.colUpper[j]) sub.fix(j, value);
  }
  const double objective = sink_.incumbentObjective();
  sub.options().cutoff =
      std::min(sub.options().cutoff, objective - kImprovement * std::fabs(objective));
  sub.options().iterationLimit = kIterationLimit;
  sub.run();
  const MipStatus status = sub.outcome().status;
  const bool exhausted = status == MipStatus::Infeasible || status == MipStatus::Optimal;
  share_ = std::min(std::max(share_ * (exhausted ? 1.3 : 0.7), kLeastShare), kLargestShare);
  return sub.accepted() > 0;
}

void NoRel::improve() {
  int failures = 0;
  while (failures < kMaxFailures && goesOn()) {
    bool improved = false;
    const double before = sink_.incumbentObjective();
    if (localSearch_.isReady(context_)) {
      localSearch_.run(context_);
      improved = sink_.incumbentObjective() < before;
    }
    if (!goesOn()) break;
    if (!problem_.integers().empty()) improved = searchNeighbourhood() || improved;
    failures = improved ? 0 : failures + 1;
  }
}

}  // namespace

HeurResult heurNoRel(HeuristicContext &context, double seconds, double workUnits) {
  HeurResult result;
  if (seconds <= 0 && workUnits <= 0) return result;
  HeuristicLog log(context);
  log.lines().print("Starting NoRel heuristic\n");
  const double before = context.sink->incumbentObjective();
  NoRel(context, log, seconds, workUnits).run();
  log.lines().print("NoRel heuristic complete\n");
  if (context.sink->incumbentObjective() < before)
    result.objective = context.sink->incumbentObjective();
  return result;
}

}  // namespace tarvik
