#include "mip/heuristics/min_rel.h"

#include <algorithm>

#include "mip/heuristics/heuristic_log.h"
#include "mip/heuristics/sub_mip.h"

namespace tarvik {

namespace {

// A total violation below this counts as none.
constexpr double kNoViolation = 1e-6;
// The largest number below 1e-4: a total of exactly 1e-4 proves infeasibility.
constexpr double kProvenViolation = 9.999999999999999e-05;
constexpr int kAllSolutions = 2000000000;

void relaxRows(MipModel &model) {
  std::fill(model.lp.cost.begin(), model.lp.cost.end(), 0.0);
  model.lp.offset = 0;
  const int rows = model.lp.numRows;
  for (int i = 0; i < rows; ++i) {
    if (!isInf(model.lp.rowUpper[i])) addColumn(model, i, -1.0, 1.0);
    if (!isInf(model.lp.rowLower[i])) addColumn(model, i, 1.0, 1.0);
  }
}

}  // namespace

HeurResult heurMinRel(HeuristicContext &context, int nodes, bool limitWork) {
  HeuristicLog log(context);
  log.lines().print("Exploring %d nodes in MinRel heuristic\n", nodes);
  SubMip sub(context, SolutionSource::MinRel);
  relaxRows(sub.model());
  MipOptions &options = sub.options();
  options.cutoff = kUserInf;
  // The optimum that counts is zero; a gap would blur the bound that is judged in the end.
  options.bestObjStop = kNoViolation / 2;
  options.nodeLimit = nodes;
  options.solutionLimit = kAllSolutions;
  options.mipGap = 0;
  options.mipGapAbs = 0;
  sub.limitWork(limitWork);
  if (!limitWork) options.threads = context.options->threads;
  sub.useOriginalBounds();
  const auto whenFound = sub.onSolution;
  sub.onSolution = [&](const MipSolution &solution) {
    if (solution.objective < kNoViolation) whenFound(solution);
  };
  sub.onNode = [&](const MipProgress &progress) {
    if (log.due())
      log.lines().print("MinRel: %.0f nodes explored, relaxation %.2e, total elapsed time %.0fs\n",
                        progress.explored, progress.incumbent, log.seconds());
  };
  const MipOutcome &outcome = sub.run();
  HeurResult result;
  const bool found =
      !outcome.solutions.empty() && outcome.solutions.front().objective < kNoViolation;
  if (!found && (outcome.status == MipStatus::Infeasible || outcome.bound > kProvenViolation)) {
    log.lines().print("Model proven infeasible by MinRel heuristic\n");
    result.infeasible = true;
  } else if (!found) {
    log.lines().print("No solution found by MinRel heuristic\n");
  } else if (sub.accepted() == 0) {
    // Else it is only no better than what is known or asked for.
    const Problem &problem = *context.problem;
    if (problem.violation(outcome.solutions.front().x) > problem.tolerances().primal)
      log.lines().print("Solution found by MinRel heuristic did not satisfy tolerances\n");
  } else {
    result.objective = context.sink->incumbentObjective();
    // Lazy constraints may still refuse it.
    log.lines().print(context.options->presolve.keepPoints
                          ? "Solution candidate found by MinRel heuristic at node %.0f\n"
                          : "Feasible solution found by MinRel heuristic at node %.0f\n",
                      outcome.explored);
  }
  return result;
}

}  // namespace tarvik
