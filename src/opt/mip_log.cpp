#include "opt/mip_log.h"

#include <cmath>
#include <cstdio>
#include <string>

#include "mip/gap_rules.h"

namespace tarvik {

namespace {

constexpr const char *kFamilyNames[kCutFamilies] = {"User",
                                                    "Learned",
                                                    "Gomory",
                                                    "Lift-and-project",
                                                    "Cover",
                                                    "Implied bound",
                                                    "Projected implied bound",
                                                    "Clique",
                                                    "MIR",
                                                    "Mixing",
                                                    "StrongCG",
                                                    "Flow cover",
                                                    "Flow path",
                                                    "GUB cover",
                                                    "Inf proof",
                                                    "Zero half",
                                                    "Mod-K",
                                                    "Network",
                                                    "RLT",
                                                    "Relax-and-lift",
                                                    "BQP",
                                                    "PSD",
                                                    "Lazy constraints"};

void logStatus(Env &env, int status, int errorCode) {
  switch (status) {
    case TVK_OPTIMAL:
      env.log("Optimal solution found (tolerance %.2e)\n", env.get(Dbl::MIPGap));
      break;
    case TVK_INFEASIBLE:
      env.log("Model is infeasible\n");
      break;
    case TVK_INF_OR_UNBD:
      env.log("Model is infeasible or unbounded\n");
      break;
    case TVK_UNBOUNDED:
      env.log("Model is unbounded\n");
      break;
    case TVK_CUTOFF:
      env.log("Model objective exceeds cutoff\n");
      break;
    case TVK_ITERATION_LIMIT:
      env.log("Iteration limit reached\n");
      break;
    case TVK_NODE_LIMIT:
      env.log("Node limit reached\n");
      break;
    case TVK_TIME_LIMIT:
      env.log("Time limit reached\n");
      break;
    case TVK_SOLUTION_LIMIT:
      env.log("Solution limit reached\n");
      break;
    case TVK_INTERRUPTED:
      if (errorCode != 0)
        env.log("Solve interrupted (error code %d)\n", errorCode);
      else
        env.log("Solve interrupted\n");
      break;
    case TVK_SUBOPTIMAL:
      env.log("Sub-optimal termination (unable to solve some node relaxations)\n");
      break;
    case TVK_USER_OBJ_LIMIT:
      env.log("Optimization achieved user objective limit\n");
      break;
    case TVK_WORK_LIMIT:
      env.log("Work limit reached\n");
      break;
    case TVK_MEM_LIMIT:
      env.log("Memory limit reached\n");
      break;
    default:
      env.log("Numeric error\n");
  }
}

void logSolutionCount(Env &env, const MipSummary &summary) {
  const Vec<double> &all = summary.objectives;
  if (all.empty()) {
    env.log("\nSolution count 0\n");
    return;
  }
  std::string line;
  char text[64];
  const auto add = [&](const char *format, double value) {
    std::snprintf(text, sizeof text, format, value);
    line += text;
  };
  const std::size_t shown = all.size() <= 4 ? all.size() : 3;
  for (std::size_t k = 0; k < shown; ++k) add("%g ", all[k]);
  if (shown < all.size()) add("... %g", all.back());
  env.log("\nSolution count %d: %s\n", static_cast<int>(all.size()), line.c_str());
}

std::string boundText(double value) {
  if (std::fabs(value) >= kUserInf) return "-";
  char text[64];
  std::snprintf(text, sizeof text, "%.12e", value);
  return text;
}

}  // namespace

void mipCutSummary(Env &env, const CutCounters &counters) {
  double total = 0;
  for (const int count : counters) total += count;
  if (total == 0) return;
  env.log("\nCutting planes:\n");
  for (int f = 0; f < kCutFamilies; ++f)
    if (counters[f] != 0) env.log("  %s: %d\n", kFamilyNames[f], counters[f]);
}

void mipSummary(Env &env, const MipSummary &summary) {
  env.log("\nExplored %.0f nodes (%.0f simplex iterations) in %.2f seconds (%.2f work units)\n",
          summary.explored, summary.iterations, summary.seconds, summary.workUnits);
  env.log("Thread count was %d (of %d available processors)\n", env.effectiveThreads(),
          env.logicalProcessors());
  logSolutionCount(env, summary);
  if (!summary.objectives.empty()) {
    const double best = summary.objectives.front(), worst = summary.objectives.back();
    const bool complete =
        env.get(Int::PoolSearchMode) == 2 && summary.status == TVK_OPTIMAL &&
        static_cast<int>(summary.objectives.size()) <= env.get(Int::PoolSolutions);
    if (complete || std::fabs(worst - best) > 1e-10 * std::fabs(best) + 1e-10)
      env.log("No other solutions better than %g\n", worst);
  }
  env.log("\n");
  logStatus(env, summary.status, summary.errorCode);
  const double objective = summary.objective < kUserInf ? summary.sense * summary.objective + 0.0
                                                        : summary.sense * kUserInf;
  const double bound = summary.sense * summary.bound + 0.0;
  const double gap = mipRelativeGap(summary.sense, bound, objective);
  char gapText[32] = "-";
  if (gap < kUserInf) std::snprintf(gapText, sizeof gapText, "%.4f%%", 100 * gap);
  env.log("Best objective %s, best bound %s, gap %s\n", boundText(objective).c_str(),
          boundText(bound).c_str(), gapText);
}

}  // namespace tarvik
