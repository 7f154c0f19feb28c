#include "mip/heuristics/partition.h"

#include <algorithm>
#include <cmath>

#include "mip/heuristics/heuristic_log.h"
#include "mip/heuristics/heuristic_tools.h"
#include "mip/heuristics/sub_mip.h"

namespace tarvik {

namespace {

// A better solution has to be better by this share.
constexpr double kImprovement = 1e-4;
constexpr int kMaxRounds = 10;

// The numbers that are in use, ascending.
Vec<int> numbersInUse(const Problem &problem) {
  Vec<int> numbers;
  if (problem.model().partition.empty()) return numbers;
  for (const int j : problem.integers()) {
    const int number = problem.model().partition[j];
    if (number > 0) numbers.push_back(number);
  }
  std::sort(numbers.begin(), numbers.end());
  numbers.erase(std::unique(numbers.begin(), numbers.end()), numbers.end());
  return numbers;
}

// True when the partition was improved.
bool improve(HeuristicContext &context, HeuristicLog &log, int number) {
  const Problem &problem = *context.problem;
  const Vec<double> &incumbent = context.sink->incumbent();
  SubMip sub(context, SolutionSource::Partition);
  for (const int j : problem.integers()) {
    const int own = problem.model().partition[j];
    const double value = std::round(incumbent[j]);
    const LpModel &lp = sub.model().lp;
    if (own != 0 && own != number && value >= lp.colLower[j] && value <= lp.colUpper[j])
      sub.fix(j, value);
  }
  MipOptions &options = sub.options();
  const double objective = context.sink->incumbentObjective();
  options.cutoff = std::min(options.cutoff, objective - kImprovement * std::fabs(objective));
  // Bounds beyond the cutoff are of no use.
  options.bestBdStop = options.cutoff;
  sub.onNode = [&](const MipProgress &) {
    if (log.due())
      log.lines().print("Elapsed time for partition heuristic: %.0fs\n", log.seconds());
  };
  sub.run();
  return sub.accepted() > 0;
}

class RelaxAndFix {
 public:
  RelaxAndFix(HeuristicContext &context, HeuristicLog &log)
      : context_(context),
        problem_(*context.problem),
        log_(log),
        numbers_(numbersInUse(problem_)),
        value_(problem_.numCols(), kUndefined) {}

  void run();

 private:
  bool step(std::size_t k, int nodes);
  void restrict(SubMip &sub, std::size_t k);
  void reportFailure(int number, const MipOutcome &outcome);
  bool isLast(std::size_t k) const { return k + 1 == numbers_.size(); }

  HeuristicContext &context_;
  const Problem &problem_;
  HeuristicLog &log_;
  Vec<int> numbers_;
  Vec<double> value_;  // of the columns whose step is done
};

// Columns of all partitions are decided in the first step, those of none in the last.
void RelaxAndFix::restrict(SubMip &sub, std::size_t k) {
  int integral = 0, fixed = 0, relaxed = 0;
  for (const int j : problem_.integers()) {
    const int number = problem_.model().partition[j];
    if (value_[j] < kUndefined) {
      sub.fix(j, value_[j]);
      ++fixed;
    } else if (number == 0 || number == numbers_[k] || isLast(k)) {
      ++integral;
    } else {
      sub.model().kind[j] = VarKind::Continuous;
      ++relaxed;
    }
  }
  log_.lines().print("Relax-and-fix partition %d: intvars %d, fixedvars %d, relaxedvars %d\n",
                     numbers_[k], integral, fixed, relaxed);
}

void RelaxAndFix::reportFailure(int number, const MipOutcome &outcome) {
  Log &lines = log_.lines();
  if (outcome.status == MipStatus::Infeasible && context_.sink->cutoff() < kUserInf)
    lines.print("Relax-and-fix partition %d: extended solution objective would exceed cutoff\n",
                number);
  else if (outcome.status == MipStatus::Infeasible)
    lines.print("Relax-and-fix partition %d: extended solution infeasible\n", number);
  else if (outcome.status == MipStatus::NodeLimit)
    lines.print("Relax-and-fix partition %d: no extended solution found in %.0f nodes\n", number,
                outcome.explored);
  else
    lines.print("Relax-and-fix partition %d: unable to extend solution\n", number);
}

bool RelaxAndFix::step(std::size_t k, int nodes) {
  SubMip sub(context_, SolutionSource::RelaxAndFix);
  restrict(sub, k);
  sub.options().nodeLimit = nodes;
  if (!isLast(k)) sub.onSolution = nullptr;
  const MipOutcome &outcome = sub.run();
  if (outcome.solutions.empty()) {
    reportFailure(numbers_[k], outcome);
    return false;
  }
  const MipSolution &best = outcome.solutions.front();
  const double sense = context_.options->objSense;
  if (isLast(k)) {
    log_.lines().print("Relax-and-fix partition %d: found solution at objective %g\n", numbers_[k],
                       sense * best.objective);
    return true;
  }
  log_.lines().print("Relax-and-fix partition %d: obj %g, bound %g\n", numbers_[k],
                     sense * best.objective, sense * outcome.bound);
  for (const int j : problem_.integers()) {
    const int number = problem_.model().partition[j];
    if (number == 0 || number == numbers_[k]) value_[j] = std::round(best.x[j]);
  }
  return true;
}

void RelaxAndFix::run() {
  if (numbers_.empty()) return;
  const MipOptions &options = *context_.options;
  const int nodes = static_cast<int>(std::min<double>(options.subMipNodes, options.nodeLimit));
  log_.lines().print("Relax-and-fix started: explore %d nodes per partition (%d partitions)...\n",
                     nodes, static_cast<int>(numbers_.size()));
  for (std::size_t k = 0; k < numbers_.size(); ++k)
    if (isExhausted(context_) || !step(k, nodes)) return;
}

}  // namespace

HeurResult heurPartition(HeuristicContext &context) {
  const Vec<int> numbers = numbersInUse(*context.problem);
  const double before = context.sink->incumbentObjective();
  HeurResult result;
  if (numbers.empty() || !context.sink->hasPoint()) return result;
  HeuristicLog log(context);
  log.lines().print("Starting partition heuristic: %d partitions, %d threads\n",
                    static_cast<int>(numbers.size()), 1);
  bool improved = true;
  for (int round = 0; improved && round < kMaxRounds; ++round) {
    improved = false;
    for (const int number : numbers) {
      if (isExhausted(context)) break;
      improved = improve(context, log, number) || improved;
    }
  }
  log.lines().print("Completed partition heuristic\n");
  if (context.sink->incumbentObjective() < before)
    result.objective = context.sink->incumbentObjective();
  return result;
}

HeurResult heurRelaxAndFix(HeuristicContext &context) {
  HeuristicLog log(context);
  const double before = context.sink->incumbentObjective();
  RelaxAndFix(context, log).run();
  HeurResult result;
  if (context.sink->incumbentObjective() < before)
    result.objective = context.sink->incumbentObjective();
  return result;
}

}  // namespace tarvik
