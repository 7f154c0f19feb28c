#include "opt/lp_solve.h"

#include <algorithm>
#include <cmath>
#include <utility>

#include "lp/check.h"
#include "opt/env_log.h"
#include "opt/lp_driver.h"
#include "opt/lp_from_model.h"
#include "opt/options.h"
#include "opt/retained_solve.h"
#include "opt/solve_log.h"
#include "opt/warm_start.h"

namespace tarvik {

namespace {

constexpr int statusCode(LpStatus status) {
  return status == LpStatus::Callback ? TVK_INTERRUPTED : static_cast<int>(status);
}
static_assert(statusCode(LpStatus::NotSolved) == TVK_LOADED);
static_assert(statusCode(LpStatus::Optimal) == TVK_OPTIMAL);
static_assert(statusCode(LpStatus::Infeasible) == TVK_INFEASIBLE);
static_assert(statusCode(LpStatus::InfeasibleOrUnbounded) == TVK_INF_OR_UNBD);
static_assert(statusCode(LpStatus::Unbounded) == TVK_UNBOUNDED);
static_assert(statusCode(LpStatus::Cutoff) == TVK_CUTOFF);
static_assert(statusCode(LpStatus::IterationLimit) == TVK_ITERATION_LIMIT);
static_assert(statusCode(LpStatus::TimeLimit) == TVK_TIME_LIMIT);
static_assert(statusCode(LpStatus::Interrupted) == TVK_INTERRUPTED);
static_assert(statusCode(LpStatus::Numeric) == TVK_NUMERIC);
static_assert(statusCode(LpStatus::WorkLimit) == TVK_WORK_LIMIT);
static_assert(statusCode(LpStatus::MemoryLimit) == TVK_MEM_LIMIT);

enum Method { kPrimal = 0, kDual = 1, kBarrier = 2 };

// The simplex variant that Method asks for. What this version lacks is replaced by the dual
// simplex, and the log says so.
SimplexMethod chooseMethod(Env &env) {
  const int method = env.get(Int::Method);
  if (method == kPrimal) return SimplexMethod::Primal;
  if (method > kDual)
    env.log("Warning: %s is not available in this version - using dual simplex\n",
            method == kBarrier ? "barrier" : "the concurrent optimizer");
  if (env.get(Int::NetworkAlg) == 1)
    env.log("Warning: network simplex is not available in this version - using dual simplex\n");
  return SimplexMethod::Dual;
}

// What multipliers below this share of the largest one, and the coefficients they leave, say is
// noise.
constexpr double kFarkasNoise = 1e-9;
// A warm start is given up after so many times the iterations of the solve from scratch, and one a
// row: rows may have been added since.
constexpr double kWarmPatience = 2;

// By how much the largest value of y'(Ax) within the variable bounds misses what the row bounds
// ask of it; minus infinity when a bound that y needs does not exist.
double farkasAmount(const LpModel &lp, const Vec<double> &y) {
  double largest = 0;
  for (const double value : y) largest = std::max(largest, std::fabs(value));
  const double noise = kFarkasNoise * largest;
  double amount = 0;
  for (int i = 0; i < lp.numRows; ++i) {
    if (std::fabs(y[i]) <= noise) continue;
    const double bound = y[i] > 0 ? lp.rowLower[i] : lp.rowUpper[i];
    if (isInf(bound)) return -kUserInf;
    amount += y[i] * bound;
  }
  for (int j = 0; j < lp.numCols; ++j) {
    double combined = 0, size = 1;
    for (NzIndex k = lp.a.start[j]; k < lp.a.start[j + 1]; ++k) {
      if (std::fabs(y[lp.a.index[k]]) <= noise) continue;
      combined += y[lp.a.index[k]] * lp.a.value[k];
      size = std::max(size, std::fabs(lp.a.value[k]));
    }
    if (std::fabs(combined) <= noise * size) continue;
    const double bound = combined > 0 ? lp.colUpper[j] : lp.colLower[j];
    if (isInf(bound)) return -kUserInf;
    amount -= combined * bound;
  }
  return amount;
}

// Turns a certificate, which may come with either sign, into one with the signs of row duals;
// returns the amount that it proves.
double orientFarkas(const LpModel &lp, Vec<double> &y) {
  const double amount = farkasAmount(lp, y);
  Vec<double> negated(y);
  for (double &value : negated) value = -value;
  const double amountOfNegated = farkasAmount(lp, negated);
  if (amountOfNegated > amount) y.swap(negated);
  return std::max(amount, amountOfNegated);
}

// A verdict of presolve names no variable: then it is the row that weighs most in the proof.
int provingVar(const LpModel &lp, const LpSolution &solution) {
  if (solution.provingVar >= 0 || solution.farkas.empty()) return solution.provingVar;
  int row = 0;
  for (int i = 1; i < lp.numRows; ++i)
    if (std::fabs(solution.farkas[i]) > std::fabs(solution.farkas[row])) row = i;
  return lp.numCols + row;
}

class LinearSolve {
 public:
  LinearSolve(Model &model, SolveControl &control)
      : model_(model), env_(model.env()), store_(model.solution()), control_(control) {}

  void run() {
    const SimplexMethod method = chooseMethod(env_);
    WarmStart start = takeWarmStart(model_, method == SimplexMethod::Primal ? kPrimal : kDual);
    store_.clearResults();
    summary_.status = TVK_NUMERIC;
    if (!stoppedByBadBounds()) solve(method, start);
    store_.status = summary_.status;
    summary_.iterations = store_.iterCount;
    summary_.seconds = control_.limits.seconds();
    summary_.workUnits = control_.work.workUnits();
    logLpSummary(env_, summary_);
  }

 private:
  bool stoppedByBadBounds() {
    const ModelData &data = model_.data();
    const BadBounds bad = findBadBounds(data, env_.get(Dbl::FeasibilityTol), boundRules(env_));
    if (bad.kind == BadBounds::Kind::None) return false;
    if (bad.kind == BadBounds::Kind::Column)
      env_.log("Warning: variable %s has bad bounds, lower = %g and upper = %g\n",
               model_.varName(bad.index), data.lb[bad.index], data.ub[bad.index]);
    else if (data.sense[bad.index] == TVK_EQUAL)
      env_.log("Warning: equalities with rhs larger than 1e+20\n");
    else
      env_.log("Warning: constraint %s cannot hold, rhs = %g\n", model_.constrName(bad.index),
               data.rhs[bad.index]);
    summary_.status = bad.unbounded ? TVK_UNBOUNDED : TVK_INFEASIBLE;
    const bool isCol = bad.kind == BadBounds::Kind::Column;
    storeProvingVar(isCol ? bad.index : data.numVars() + bad.index);
    return true;
  }

  void solve(SimplexMethod method, WarmStart &start) {
    const ModelData &data = model_.data();
    LpDriverOptions options = lpDriverOptions(env_, true);
    options.simplex.logSign = data.objSense;
    options.method = method;
    options.presolveWarmStart = env_.get(Int::LPWarmStart) == 2;
    options.mayChangeMethod = options.mayChangeMethod && env_.get(Int::Method) < 0;
    options.wantCertificates = env_.get(Int::InfUnbdInfo) != 0;
    RetainedSolve &kept = RetainedSolve::of(store_);
    kept.follow(data, boundRules(env_));
    const LpModel &lp = kept.lp();
    if (start.hasVectors())
      makeBasisFromVectors(lp, env_, start);
    else
      logSuperbasics(start.basis);
    if (kept.coldIterations() > 0)
      options.warmIterationLimit = kWarmPatience * kept.coldIterations() + lp.numRows;
    const auto given = [](const auto &part) { return part.empty() ? nullptr : &part; };
    if (options.simplex.quad == 0 && store_.extendedPrecision)
      env_.log("Switch to double precision\n");
    LpDriver driver(lp, options, control_, kept.engine());
    LpOutcome outcome =
        driver.run(given(start.basis), given(start.values), given(start.edgeWeights));
    keepEdgeWeights(kept, outcome.solution.basis);
    store_.extendedPrecision = outcome.extended;
    summary_.status = outcome.suboptimal ? TVK_SUBOPTIMAL : statusCode(outcome.solution.status);
    if (start.basis.empty())
      kept.noteColdSolve(summary_.status == TVK_OPTIMAL ? outcome.solution.iterations : 0);
    store_.iterCount = store_.iterCount0 = outcome.solution.iterations;
    if (summary_.status >= TVK_OPTIMAL && summary_.status <= TVK_CUTOFF)
      store_.concurrentWinMethod = options.method == SimplexMethod::Primal ? kPrimal : kDual;
    takeResults(lp, std::move(outcome), options.wantCertificates);
  }

  void logSuperbasics(const Basis &basis) {
    const auto count = std::count(basis.col.begin(), basis.col.end(), VarStatus::Superbasic);
    if (count > 0) env_.log("Superbasic variables: %d.\n", static_cast<int>(count));
  }

  // Available when the final basis is the one that the warm engine worked on.
  void keepEdgeWeights(RetainedSolve &kept, const Basis &basis) {
    store_.vDualNorm.clear();
    store_.cDualNorm.clear();
    Simplex *simplex = kept.engine().get();
    if (!simplex || basis.empty() || !simplex->hasBasics(basis)) return;
    if (!simplex->knowsEdgeWeights()) return;
    const int n = kept.lp().numCols;
    store_.vDualNorm.assign(n, 1.0);
    store_.cDualNorm.assign(kept.lp().numRows, 1.0);
    for (const BasicWeight &w : simplex->basicWeights())
      (w.var < n ? store_.vDualNorm[w.var] : store_.cDualNorm[w.var - n]) = w.weight;
  }

  void storeProvingVar(int var) {
    if (summary_.status == TVK_INFEASIBLE) store_.infeasVar = var;
    if (summary_.status == TVK_UNBOUNDED) store_.unbdVar = var;
  }

  void takeResults(const LpModel &lp, LpOutcome &&outcome, bool wantCertificates) {
    LpSolution &solution = outcome.solution;
    storeProvingVar(provingVar(lp, solution));
    if (summary_.status == TVK_INFEASIBLE && wantCertificates && !solution.farkas.empty())
      store_.farkasProof = orientFarkas(lp, solution.farkas);
    if (!wantCertificates) {
      solution.farkas.clear();
      solution.ray.clear();
    }
    const bool complete = static_cast<int>(solution.colValue.size()) == lp.numCols;
    const bool hasPoint = complete && summary_.status != TVK_INFEASIBLE &&
                          summary_.status != TVK_INF_OR_UNBD && summary_.status != TVK_NUMERIC;
    if (!hasPoint) {
      solution.colValue.clear();
      solution.rowActivity.clear();
    }
    if (summary_.status != TVK_OPTIMAL && summary_.status != TVK_SUBOPTIMAL) {
      solution.rowDual.clear();
      solution.colDual.clear();
    }
    if (hasPoint)
      assess(outcome.quality ? *outcome.quality
                             : checkSolution(lp, solution, env_.get(Dbl::FeasibilityTol)));
    storeSolution(model_.data(), std::move(solution), store_);
  }

  // Objective, violations and what follows from them.
  void assess(const SolutionQuality &quality) {
    const double tol = env_.get(Dbl::FeasibilityTol);
    summary_.primalViolation = std::max(quality.boundViolation, quality.rowViolation);
    summary_.primalResidual = quality.activityResidual;
    summary_.dualViolation = quality.dualViolation;
    summary_.dualResidual = quality.dualResidual;
    if (summary_.status == TVK_OPTIMAL && quality.objective > env_.get(Dbl::Cutoff))
      summary_.status = TVK_CUTOFF;
    if (summary_.status == TVK_UNBOUNDED) return;
    store_.hasObjective = true;
    store_.objVal = quality.objective;
    if (summary_.status == TVK_OPTIMAL) store_.objBound = quality.objective;
    if (summary_.primalViolation <= tol || summary_.status == TVK_OPTIMAL) store_.solCount = 1;
    summary_.objective = model_.data().inCallersSense(quality.objective);
  }

  Model &model_;
  Env &env_;
  SolutionStore &store_;
  SolveControl &control_;
  LpSummary summary_;
};

}  // namespace

void solveLinearModel(Model &model, SolveControl &control) {
  try {
    LinearSolve(model, control).run();
  } catch (...) {
    // It may have been left halfway between two models.
    model.solution().solver.reset();
    throw;
  }
}

}  // namespace tarvik
