#include "opt/strong_branch.h"

#include "base/locale_scope.h"
#include "opt/derived_models.h"
#include "opt/lp_driver.h"
#include "opt/lp_from_model.h"
#include "opt/optimize.h"
#include "opt/options.h"
#include "opt/param_scope.h"
#include "opt/running_scope.h"
#include "opt/solve_clock.h"
#include "simplex/strong_branching.h"

namespace tarvik {

namespace {

// Solves of the relaxation until its basis can be worked with.
constexpr int kAttempts = 6;
constexpr double kIterationLimit = 2e9;  // of a branch

void checkArguments(const Model &model, int count, const int *candidates, const double *down,
                    const double *up) {
  if (count < 0) throw Error(TVK_ERROR_INVALID_ARGUMENT, "Negative number of candidates %d", count);
  if (count > 0 && (!candidates || !down || !up))
    throw Error(TVK_ERROR_NULL_ARGUMENT, "NULL array supplied for strong branching");
  for (int k = 0; k < count; ++k)
    if (candidates[k] < 0 || candidates[k] >= model.data().numVars())
      throw Error(TVK_ERROR_INDEX_OUT_OF_RANGE, "Variable index %d out of range", candidates[k]);
}

// The relaxation, and the engine that has its optimal basis.
class SolvedRelaxation {
 public:
  SolvedRelaxation(Model &model, ModelData &&data, SolveControl &control)
      : env_(model.env()), data_(std::move(data)), control_(control) {
    const SolutionStore &store = model.solution();
    if (store.vbasis.size() == data_.obj.size() && store.cbasis.size() == data_.rhs.size())
      start_ = basisFromCodes(data_, store.vbasis, store.cbasis, boundRules(env_));
  }

  const LpModel &lp() const { return lp_; }

  // The engine, at the optimum; null when that was not to be had, after a warning that says why.
  Simplex *solve() {
    const BadBounds bad = findBadBounds(data_, env_.get(Dbl::FeasibilityTol), boundRules(env_));
    if (bad.kind != BadBounds::Kind::None) {
      warn(bad.unbounded ? LpStatus::Unbounded : LpStatus::Infeasible);
      return nullptr;
    }
    lp_ = lpFromModel(data_, boundRules(env_));
    for (int attempt = 0; attempt < kAttempts; ++attempt) {
      const LpSolution solution = solveOnce();
      if (solution.status != LpStatus::Optimal) {
        warn(solution.status);
        return nullptr;
      }
      if (Simplex *simplex = engineAt(solution.basis)) return simplex;
    }
    return nullptr;
  }

 private:
  LpSolution solveOnce() {
    const LpOutcome outcome = LpDriver(lp_, lpDriverOptions(env_, false), control_, warm_)
                                  .run(start_.empty() ? nullptr : &start_, nullptr);
    LpSolution solution = outcome.solution;
    if (outcome.suboptimal) solution.status = LpStatus::NotSolved;
    const double value = outcome.quality ? outcome.quality->objective : solution.objective;
    if (solution.status == LpStatus::Optimal && value > env_.get(Dbl::Cutoff))
      solution.status = LpStatus::Cutoff;
    start_ = solution.basis;
    return solution;
  }

  // Null: the basis is of no use.
  Simplex *engineAt(const Basis &basis) {
    if (basis.empty()) return nullptr;
    SimplexOptions options = simplexOptions(env_);
    options.logging = false;
    options.cutoff = kUserInf;
    Simplex &simplex = warm_.open(lp_, options, basis, nullptr);
    return simplex.solve(SimplexMethod::Dual, control_) == LpStatus::Optimal ? &simplex : nullptr;
  }

  void warn(LpStatus status) {
    if (status == LpStatus::Infeasible || status == LpStatus::Cutoff)
      env_.log("Warning: relaxation becomes infeasible in strong branch.\n");
    else if (status == LpStatus::Unbounded || status == LpStatus::Numeric)
      env_.log("Warning: numeric error in strong branch.\n");
  }

  Env &env_;
  ModelData data_;
  SolveControl &control_;
  LpModel lp_;
  WarmEngine warm_;
  Basis start_;
};

}  // namespace

StrongBranchStatus strongBranch(Model &model, int count, const int *candidates, double *downBound,
                                double *upBound) {
  model.requireIdle();
  model.update();
  checkArguments(model, count, candidates, downBound, upBound);
  const RunningScope running(model);
  const LocaleScope locale(model.env().get(Int::TARV_PAR_KEEPLOCALE) == 0);
  SolveClock clock(model);
  if (model.data().objSense < 0) return StrongBranchStatus::Maximization;
  ModelData data = model.data();
  relaxDiscreteParts(data);
  requireSolvable(data);
  SolvedRelaxation relaxation(model, std::move(data), clock.control());
  Simplex *simplex = nullptr;
  {
    ParamScope params(model.env());
    params.set(Int::TARV_PAR_SIMPLEXENDFAC, 1);
    simplex = relaxation.solve();
  }
  if (!simplex) return StrongBranchStatus::Unsolved;
  const Vec<BranchBounds> bounds = strongBranchBounds(
      relaxation.lp(), Vec<int>(candidates, candidates + count), model.env().get(Dbl::IntFeasTol),
      kIterationLimit, *simplex, clock.control());
  for (int k = 0; k < count; ++k) {
    downBound[k] = bounds[k].down;
    upBound[k] = bounds[k].up;
  }
  return StrongBranchStatus::Done;
}

}  // namespace tarvik
