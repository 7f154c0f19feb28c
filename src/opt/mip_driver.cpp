#include "opt/mip_driver.h"

#include <algorithm>
#include <cmath>
#include <optional>

#include "lp/check.h"
#include "mip/gap_rules.h"
#include "opt/kept_search.h"
#include "opt/lp_from_model.h"
#include "opt/mip_callbacks.h"
#include "opt/mip_from_model.h"
#include "opt/mip_log.h"
#include "opt/mip_options.h"
#include "opt/param_scope.h"
#include "opt/previous_solve.h"

namespace tarvik {

namespace {

int statusCode(MipStatus status) {
  switch (status) {
    case MipStatus::Optimal:
      return TVK_OPTIMAL;
    case MipStatus::Infeasible:
      return TVK_INFEASIBLE;
    case MipStatus::InfeasibleOrUnbounded:
      return TVK_INF_OR_UNBD;
    case MipStatus::Unbounded:
      return TVK_UNBOUNDED;
    case MipStatus::IterationLimit:
      return TVK_ITERATION_LIMIT;
    case MipStatus::NodeLimit:
      return TVK_NODE_LIMIT;
    case MipStatus::TimeLimit:
    case MipStatus::SoftLimit:
      return TVK_TIME_LIMIT;
    case MipStatus::SolutionLimit:
      return TVK_SOLUTION_LIMIT;
    case MipStatus::Interrupted:
      return TVK_INTERRUPTED;
    case MipStatus::Suboptimal:
      return TVK_SUBOPTIMAL;
    case MipStatus::UserObjectiveLimit:
      return TVK_USER_OBJ_LIMIT;
    case MipStatus::WorkLimit:
      return TVK_WORK_LIMIT;
    case MipStatus::MemoryLimit:
      return TVK_MEM_LIMIT;
    case MipStatus::Numeric:
    case MipStatus::Running:
    case MipStatus::ImproveStart:
    case MipStatus::Restart:
      break;
  }
  return TVK_NUMERIC;
}

// A later call may go on after these.
bool isLimit(MipStatus status) {
  switch (status) {
    case MipStatus::IterationLimit:
    case MipStatus::NodeLimit:
    case MipStatus::TimeLimit:
    case MipStatus::SolutionLimit:
    case MipStatus::Interrupted:
    case MipStatus::UserObjectiveLimit:
    case MipStatus::WorkLimit:
    case MipStatus::MemoryLimit:
    case MipStatus::SoftLimit:
      return true;
    default:
      return false;
  }
}

class MipRun {
 public:
  // What the search changes about parameters is to be undone by params.
  MipRun(Model &model, SolveControl &control, ParamScope &params)
      : model_(model),
        env_(model.env()),
        store_(model.solution()),
        control_(control),
        params_(params) {}

  void run() {
    store_.clearResults();
    const BadBounds bad = findBadBounds(model_.data(), env_.get(Dbl::FeasibilityTol));
    MipOutcome outcome;
    if (bad.kind == BadBounds::Kind::None)
      outcome = search();
    else
      outcome.status = MipStatus::Infeasible;
    store(outcome);
    MipSummary summary;
    summary.status = store_.status;
    if (control_.progress) summary.errorCode = callbackContext(env_)->abortCode;
    summary.explored = outcome.explored;
    summary.iterations = outcome.iterations;
    summary.seconds = control_.limits.seconds();
    summary.workUnits = control_.work.workUnits();
    summary.objective = store_.hasObjective ? store_.objVal : kUserInf;
    summary.bound = store_.objBound;
    summary.sense = model_.data().objSense;
    for (const MipSolution &solution : outcome.solutions)
      summary.objectives.push_back(summary.sense * solution.objective + 0.0);
    mipCutSummary(env_, outcome.cuts);
    mipSummary(env_, summary);
  }

 private:
  MipOutcome search() {
    MipOptions options = mipOptions(env_, model_.data().objSense);
    // Iterations of all relaxations count together.
    control_.limits.iterationLimit = kUserInf;
    std::unique_ptr<KeptSearch> search = takeKept();
    std::optional<MipCallbacks> callbacks;
    if (control_.progress) callbacks.emplace(*callbackContext(env_), *control_.progress, params_);
    MipObserver *observer = callbacks ? &*callbacks : nullptr;
    MipOutcome outcome;
    if (search && search->solve().canGoOn(options)) {
      search->solve().observer = observer;
      outcome = search->goOn(options, control_);
    } else {
      search = std::make_unique<KeptSearch>(mipModel(), options);
      search->solve().rowName = [&model = model_](int row) {
        return std::string(model.constrName(row));
      };
      search->solve().observer = observer;
      addStarts(search->solve());
      logSettings();
      outcome = search->run(control_);
    }
    search->solve().observer = nullptr;
    if (search->solve().canGoOn(options) && isLimit(outcome.status)) {
      store_.solver = std::move(search);
      model_.derived().searchFits = true;
    }
    return outcome;
  }

  // What an earlier solve of the same data has kept; from now on it is not the model's.
  std::unique_ptr<KeptSearch> takeKept() {
    std::unique_ptr<SolverState> state = std::move(store_.solver);
    if (!model_.derived().searchFits || !dynamic_cast<KeptSearch *>(state.get())) return nullptr;
    return std::unique_ptr<KeptSearch>(static_cast<KeptSearch *>(state.release()));
  }

  MipModel mipModel() const {
    MipModel mip = mipFromModel(model_.data());
    if (env_.get(Int::TARV_PAR_IGNOREPRIORITIES) == 1) mip.branchPriority.clear();
    return mip;
  }

  void addStarts(MipSolve &solve) {
    const Vec<Vec<double>> &starts = model_.data().starts;
    for (std::size_t k = 0; k < starts.size(); ++k)
      solve.addStart({starts.size() == 1 ? kOnlyStart : static_cast<int>(k), starts[k]});
    if (!store_.previousX.empty())
      solve.addStart(
          {kPreviousSolve, store_.previousX, mostlyUnchanged(model_.data(), store_.solvedVars)});
  }

  // Which of the caller's advice the search follows.
  void logSettings() {
    const ModelData &data = model_.data();
    const auto isSet = [](double value) { return value != kUndefined; };
    if (std::any_of(data.hintVal.begin(), data.hintVal.end(), isSet))
      env_.log(env_.get(Int::TARV_PAR_IGNOREHINTS) != 0 ? "Ignoring variable hints.\n"
                                                        : "Using variable hints.\n");
    const auto nonzero = [](int value) { return value != 0; };
    const Vec<int> &priority = data.branchPriority;
    if (!priority.empty()) {
      const bool some = std::any_of(priority.begin(), priority.end(), nonzero);
      env_.log(env_.get(Int::TARV_PAR_IGNOREPRIORITIES) == 1 ? "Ignoring branch priorities.\n"
               : some                                        ? "Using branch priorities.\n"
                      : "Using branch priorities (all 0).\n");
    }
    const auto positive = [](int value) { return value > 0; };
    if (std::any_of(data.partition.begin(), data.partition.end(), positive))
      env_.log(env_.get(Int::PartitionPlace) != 0 ? "Using partitions.\n"
                                                  : "Ignoring partitions.\n");
  }

  void store(MipOutcome &outcome) {
    store_.status = statusCode(outcome.status);
    if (outcome.cutOff) {
      store_.status = TVK_CUTOFF;
      outcome.bound = env_.get(Dbl::Cutoff);
    }
    store_.iterCount = outcome.iterations;
    store_.nodeCount = outcome.explored;
    store_.openNodeCount = outcome.unexplored;
    store_.solCount = static_cast<int>(outcome.solutions.size());
    if (!outcome.solutions.empty()) {
      const MipSolution &best = outcome.solutions.front();
      store_.hasObjective = true;
      store_.objVal = best.objective;
      outcome.bound = std::min(outcome.bound, best.objective);
      storeValues(best);
    }
    if (store_.status != TVK_INFEASIBLE || !outcome.solutions.empty())
      store_.objBound = store_.objBoundC = store_.poolObjBound = outcome.bound;
    else
      store_.objBound = kUserInf;
    store_.mipGap =
        mipRelativeGap(1, store_.objBound, store_.hasObjective ? store_.objVal : kUserInf);
    for (MipSolution &solution : outcome.solutions) {
      store_.poolObj.push_back(solution.objective);
      store_.poolX.push_back(std::move(solution.x));
    }
  }

  void storeValues(const MipSolution &solution) {
    const ModelData &data = model_.data();
    LpSolution values;
    values.colValue = solution.x;
    values.rowActivity.assign(data.numConstrs(), 0);
    for (int j = 0; j < data.numVars(); ++j)
      for (NzIndex k = data.a.start[j]; k < data.a.start[j + 1]; ++k)
        values.rowActivity[data.a.index[k]] += data.a.value[k] * solution.x[j];
    storeSolution(data, std::move(values), store_);
    store_.solvedVars = variableMarks(data);
  }

  Model &model_;
  Env &env_;
  SolutionStore &store_;
  SolveControl &control_;
  ParamScope &params_;
};

}  // namespace

void solveMipModel(Model &model, SolveControl &control) {
  ParamScope params(model.env());
  params.set(Int::TARV_PAR_NLTARGET, -1);
  MipRun(model, control, params).run();
}

}  // namespace tarvik
