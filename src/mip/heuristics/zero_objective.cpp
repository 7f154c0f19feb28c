#include "mip/heuristics/zero_objective.h"

#include <algorithm>

#include "mip/heuristics/heuristic_log.h"
#include "mip/heuristics/sub_mip.h"

namespace tarvik {

namespace {

constexpr int kCutPasses = 2;

void addSlackColumns(MipModel &model, double cost) {
  const int rows = model.lp.numRows;
  for (int i = 0; i < rows; ++i) {
    const double lower = model.lp.rowLower[i], upper = model.lp.rowUpper[i];
    if (lower == upper) continue;
    // What the slack adds moves the activity towards the side that is there.
    addColumn(model, i, isInf(upper) ? -1.0 : 1.0, cost);
  }
}

void setUp(SubMip &sub, const ZeroObjCall &call, int threads) {
  MipModel &model = sub.model();
  std::fill(model.lp.cost.begin(), model.lp.cost.end(), 0.0);
  model.lp.offset = 0;
  if (call.slackCost != 0) addSlackColumns(model, call.slackCost);
  MipOptions &options = sub.options();
  options.cutoff = kUserInf;
  options.bestObjStop = -kUserInf;
  options.solutionLimit = 1;
  options.nodeLimit = call.nodeLimit;
  if (options.nodeMethod > 1) options.nodeMethod = -1;
  options.varBranch = 0;
  options.degenMoves = 0;
  options.cuts.passes = kCutPasses;
  sub.limitWork(call.limitWork);
  if (!call.limitWork) options.threads = threads;
  sub.useOriginalBounds();
}

}  // namespace

HeurResult heurZeroObj(HeuristicContext &context, const ZeroObjCall &call) {
  HeuristicLog log(context);
  log.lines().print("Exploring %d nodes in zero objective heuristic\n",
                    static_cast<int>(std::min(call.nodeLimit, 2e9)));
  SubMip sub(context, SolutionSource::ZeroObjective);
  setUp(sub, call, context.options->threads);
  sub.onNode = [&](const MipProgress &progress) {
    if (log.due())
      log.lines().print("ZeroObj: %.0f nodes explored, total elapsed time %.0fs\n",
                        progress.explored, log.seconds());
  };
  const MipOutcome &outcome = sub.run();
  HeurResult result;
  if (outcome.status == MipStatus::Infeasible) {
    log.lines().print("Model proven infeasible by zero objective heuristic\n");
    result.infeasible = true;
  } else if (outcome.solutions.empty()) {
    log.lines().print("No solution found by zero objective heuristic\n");
  } else if (sub.accepted() == 0) {
    // Else it is only no better than what is known or asked for.
    const Problem &problem = *context.problem;
    if (problem.violation(outcome.solutions.front().x) > problem.tolerances().primal)
      log.lines().print("Solution found by zero-objective heuristic did not satisfy tolerances\n");
  } else {
    result.objective = context.sink->incumbentObjective();
    log.lines().print("Feasible solution found by zero objective heuristic at node %.0f\n",
                      outcome.explored);
  }
  return result;
}

}  // namespace tarvik
