#include "opt/optimize.h"

#include <algorithm>
#include <cmath>

#include "attr/fingerprint.h"
#include "attr/solution_check.h"
#include "attr/statistics.h"
#include "base/locale_scope.h"
#include "callback/callback_run.h"
#include "model/objectives.h"
#include "opt/lp_solve.h"
#include "opt/mip_driver.h"
#include "opt/param_scope.h"
#include "opt/result_file.h"
#include "opt/running_scope.h"
#include "opt/solve_clock.h"
#include "opt/solve_log.h"

namespace tarvik {

namespace {

bool isFinite(double limit) { return std::fabs(limit) < kUserInf; }

// Keeps solutions whose objective equals the cutoff.
double loosenedCutoff(double cutoff, int objSense) {
  if (!isFinite(cutoff)) return cutoff;
  const double margin = (std::fabs(cutoff) + 1) * 1e-10;
  const double loose = cutoff + objSense * margin;
  const double factor = (loose > 0) == (objSense > 0) ? 1.0000000000000002 : 0.9999999999999998;
  return loose * factor;
}

// Every solve minimizes: limits on the objective change sides for a maximization.
void adjustObjectiveLimits(ParamScope &params, const Env &env, int objSense) {
  params.set(Dbl::Cutoff, loosenedCutoff(env.get(Dbl::Cutoff), objSense));
  if (objSense > 0) return;
  // No limit stays no limit; the infinity on the other side changes sides like any number.
  for (const Dbl limit : {Dbl::Cutoff, Dbl::BestBdStop})
    if (env.get(limit) < kUserInf) params.set(limit, -env.get(limit));
  if (env.get(Dbl::BestObjStop) > -kUserInf)
    params.set(Dbl::BestObjStop, -env.get(Dbl::BestObjStop));
}

// Defaults that other settings imply for one solve.
void adjustDefaults(ParamScope &params, const Env &env, const ModelData &data) {
  const bool isMip = data.isMip();
  const auto replace = [&](Int id, int from, int to) {
    if (env.get(id) == from) params.set(id, to);
  };
  const bool lazy =
      std::any_of(data.lazy.begin(), data.lazy.end(), [](int level) { return level; });
  if (env.get(Int::Presolve) == 0 || env.get(Int::PoolSearchMode) > 1 || lazy)
    params.set(Int::DualReductions, 0);
  replace(Int::AggFill, -1, isMip ? 0 : 10);
  replace(Int::DegenMoves, -1, 5);
  const int focus = env.get(Int::NumericFocus);
  if (isMip && focus == 0 && env.get(Dbl::ObjScale) == 0) params.set(Dbl::ObjScale, -3.0);
  if (env.get(Int::Symmetry) == 0)
    replace(Int::TARV_PAR_PRESYMMPASSES, -1, 0);
  else if (isMip)
    replace(Int::TARV_PAR_PRESYMMPASSES, -1, -3);
  params.set(Int::UpdateMode, 0);
  if (focus == 0) return;
  replace(Int::TARV_PAR_SIMPLEXENDFAC, 1, 2);
  params.set(Dbl::MarkowitzTol, std::max(env.get(Dbl::MarkowitzTol), focus == 1 ? 0.5 : 0.9));
  params.set(Dbl::TARV_PAR_AGGMULTLIMIT, focus == 1 ? 1e10 : 1e6);
  if (focus == 1) return;
  replace(Int::CutPasses, -1, focus == 2 ? 3 : 0);
  replace(Int::CutAggPasses, -1, focus == 2 ? 1 : 0);
  if (focus == 3) replace(Int::Quad, -1, 1);
  replace(Int::GomoryPasses, -1, 0);
}

// Data moved by many small updates weighed against what the model holds.
void warnOfUpdates(Env &env, ModelData &data) {
  double terms = static_cast<double>(data.a.numNz()) + data.q.count();
  for (const QConstr &constr : data.qconstrs) terms += constr.quad.count();
  const double elements = static_cast<double>(data.numConstrs()) + data.numVars();
  if (data.updateWork > 1000 * terms + 10 * elements + 1e7)
    env.log(
        "\nWarning: excessive time spent in model updates.\n"
        "Consider calling update less frequently.\n\n");
  data.updateWork = 0;
}

void logFingerprint(Model &model) {
  const Env &env = model.env();
  const int mode = env.get(Int::TARV_PAR_FINGERPRINT);
  const SolutionStore &store = model.solution();
  const bool warm = !store.vbasis.empty() || !store.pstart.empty() || !store.dstart.empty() ||
                    !model.data().starts.empty();
  if (mode == 0 || (mode < 0 && (warm || !env.logReachesAnybody()))) return;
  model.env().log("Model fingerprint: 0x%08x\n", static_cast<unsigned>(fingerprint(model)));
}

void checkSolution(Model &model) {
  const SolutionStore &store = model.solution();
  const bool isSolution = store.status == TVK_OPTIMAL || store.status == TVK_SUBOPTIMAL ||
                          (model.data().isMip() && store.solCount > 0);
  if (isSolution && !store.x.empty()) checkFinalSolution(model, store.x);
}

void solve(Model &model, CallbackRun &callbacks) {
  Env &env = model.env();
  if (!env.account().counting() && isFinite(env.get(Dbl::MemLimit)))
    env.log("Warning: memory counting is disabled - MemLimit parameter ineffective\n");
  SolveClock clock(model);
  const CallbackRun::Attachment attached(callbacks, clock.control());
  warnOfUpdates(env, model.data());
  model.update();
  const ModelData &data = model.data();
  ParamScope params(env);
  adjustObjectiveLimits(params, env, data.objSense);
  logModelSize(env, data);
  logFingerprint(model);
  logModelContents(env, data);
  printStatistics(model);
  checkPwlObjectives(model);
  requireSolvable(data);
  adjustDefaults(params, env, data);
  try {
    if (data.isMip())
      solveMipModel(model, clock.control());
    else
      solveLinearModel(model, clock.control());
    checkSolution(model);
  } catch (const std::bad_alloc &) {
    logOutOfMemory(env);
    throw Error(TVK_ERROR_OUT_OF_MEMORY, "Optimization exhausted available memory");
  }
}

}  // namespace

void requireSolvable(const ModelData &data) {
  const char *feature = nullptr;
  if (data.numGenConstrs() > 0)
    feature = "general constraints";
  else if (data.numQConstrs() > 0 || !data.cones.empty())
    feature = "quadratic constraints";
  else if (data.q.count() > 0)
    feature = "a quadratic objective";
  else if (!data.pwl.empty())
    feature = "piecewise-linear objective terms";
  else if (data.objectives.size() > 1)
    feature = "several objectives";
  else if (!data.scenarios.empty())
    feature = "scenarios";
  if (feature)
    throw Error(TVK_ERROR_NOT_SUPPORTED, "This version cannot solve models with %s", feature);
}

void solveRunning(Model &model) {
  const LocaleScope locale(model.env().get(Int::TARV_PAR_KEEPLOCALE) == 0);
  CallbackRun callbacks(model);
  logHeader(model.env());
  solve(model, callbacks);
  callbacks.finish();
}

void optimize(Model &model) {
  model.requireIdle();
  model.background.reset();
  {
    const RunningScope running(model);
    solveRunning(model);
  }
  writeResultFile(model);
}

}  // namespace tarvik
