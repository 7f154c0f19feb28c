#include "opt/solve_log.h"

#include <string>

namespace tarvik {

namespace {

std::string instructionSets() {
  std::string list;
#if defined(__x86_64__)
  const auto add = [&](bool has, const char *name) {
    if (!has) return;
    if (!list.empty()) list += '|';
    list += name;
  };
  add(__builtin_cpu_supports("sse2"), "SSE2");
  add(__builtin_cpu_supports("avx"), "AVX");
  add(__builtin_cpu_supports("avx2"), "AVX2");
  add(__builtin_cpu_supports("avx512f"), "AVX512");
#endif
  return list;
}

// The closing line of a status that has one of its own; null for the others.
const char *statusLine(int status) {
  switch (status) {
    case TVK_INFEASIBLE:
      return "Infeasible model";
    case TVK_INF_OR_UNBD:
      return "Infeasible or unbounded model";
    case TVK_UNBOUNDED:
      return "Unbounded model";
    case TVK_CUTOFF:
      return "Model objective exceeds cutoff";
    case TVK_ITERATION_LIMIT:
      return "Iteration limit reached";
    case TVK_TIME_LIMIT:
      return "Time limit reached";
    case TVK_INTERRUPTED:
      return "Solve interrupted";
    case TVK_NUMERIC:
      return "Numeric error";
    case TVK_WORK_LIMIT:
      return "Work limit reached";
    case TVK_MEM_LIMIT:
      return "Memory limit reached";
    default:
      return nullptr;
  }
}

}  // namespace

void logHeader(Env &env) {
  int major, minor, technical;
  TVKversion(&major, &minor, &technical);
  char distribution[512] = "", cpu[512] = "";
  TVKgetdistro(distribution);
  TVKgetcpu(cpu);
  env.log("Tarvik Optimizer version %d.%d.%d build %s (%s%s%s%s)\n", major, minor, technical,
          TVKgitrevision(), TVKplatform(), TVKplatformext(), distribution[0] ? " - " : "",
          distribution);
  const std::string sets = instructionSets();
  const char *model = cpu[0] ? cpu : "unknown";
  if (sets.empty())
    env.log("\nCPU model: %s\n", model);
  else
    env.log("\nCPU model: %s, instruction set [%s]\n", model, sets.c_str());
  const int threads = env.effectiveThreads(), processors = env.logicalProcessors();
  env.log("Thread count: %d physical cores, %d logical processors, using up to %d threads\n",
          env.physicalCores(), processors, threads);
  if (threads > processors)
    env.log(
        "\nWarning: Thread count (%d) is larger than processor count (%d)\n"
        "         Reduce the value of the Threads parameter to improve performance\n\n",
        threads, processors);
  env.log("\n");
}

void logModelSize(Env &env, const ModelData &data) {
  env.log("Optimize a model with %d rows, %d columns and %lu nonzeros\n", data.numConstrs(),
          data.numVars(), static_cast<unsigned long>(data.a.numNz()));
}

void logModelContents(Env &env, const ModelData &data) {
  const auto count = [&](int number, const char *what) {
    if (number > 0) env.log("Model has %d %s%s\n", number, what, number > 1 ? "s" : "");
  };
  count(data.q.count(), "quadratic objective term");
  count(data.numQConstrs(), "quadratic constraint");
  count(data.numSos(), "SOS constraint");
  count(static_cast<int>(data.pwl.size()), "piecewise-linear objective term");
  count(data.numGenConstrs(), "general constraint");
  if (!data.isMip()) return;
  int continuous = 0, integer = 0, semiContinuous = 0, semiInteger = 0;
  for (const char type : data.vtype) {
    if (type == TVK_CONTINUOUS)
      ++continuous;
    else if (type == TVK_BINARY || type == TVK_INTEGER)
      ++integer;
    else if (type == TVK_SEMICONT)
      ++semiContinuous;
    else
      ++semiInteger;
  }
  env.log("Variable types: %d continuous, %d integer (%d binary)\n", continuous, integer,
          data.numBinary);
  if (semiContinuous + semiInteger > 0)
    env.log("Semi-Variable types: %d continuous, %d integer\n", semiContinuous, semiInteger);
}

void logLpSummary(Env &env, const LpSummary &summary) {
  const bool solved = summary.status >= TVK_OPTIMAL && summary.status <= TVK_UNBOUNDED;
  env.log("\n%s in %.0f iterations and %.2f seconds (%.2f work units)\n",
          solved ? "Solved" : "Stopped", summary.iterations, summary.seconds, summary.workUnits);
  if (const char *line = statusLine(summary.status)) env.log("%s\n", line);
  if (summary.status != TVK_OPTIMAL && summary.status != TVK_SUBOPTIMAL) return;
  env.log("%s objective %16.9e\n", summary.status == TVK_OPTIMAL ? "Optimal" : "Sub-optimal",
          summary.objective);
  if (env.get(Int::TARV_PAR_UNSCALEDVIO) == 0) return;
  if (summary.primalViolation > env.get(Dbl::FeasibilityTol))
    env.log("Warning: unscaled primal violation = %g and residual = %g\n", summary.primalViolation,
            summary.primalResidual);
  if (summary.dualViolation > env.get(Dbl::OptimalityTol))
    env.log("Warning: unscaled dual violation = %g and residual = %g\n", summary.dualViolation,
            summary.dualResidual);
}

void logOutOfMemory(Env &env) { env.log("\nOut of memory\n"); }

}  // namespace tarvik
