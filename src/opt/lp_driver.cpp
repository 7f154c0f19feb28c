#include "opt/lp_driver.h"

#include <algorithm>
#include <utility>

#include "base/compensated_sum.h"
#include "presolve/dual_form.h"
#include "presolve/presolve_log.h"

namespace tarvik {

namespace {

// How carefully each further attempt solves a model whose last result was refused.
struct RepairStep {
  double tolFactor;     // of both tolerances
  double markowitzTol;  // at least
  int numericFocus;     // at least
  bool unscaled;
  bool fromLastBasis;
  bool extended;  // unless the caller has fixed the precision
};
constexpr RepairStep kRepairSteps[] = {
    {1.0, 0.0, 0, false, true, false},  // clean-up
    {0.5, 0.1, 1, true, true, false},   // the scaled model's tolerances hide a violation
    {0.1, 0.5, 2, false, true, true},
    {0.1, 0.9, 3, true, false, true},
};

// Optimal but for dual infeasibilities, or unbounded: the primal simplex goes on from there. In
// all other cases the dual simplex either repairs or proves infeasibility.
SimplexMethod repairMethod(const LpSolution &solution, const Verdict &verdict) {
  const bool primal = solution.status == LpStatus::Unbounded ||
                      (solution.status == LpStatus::Optimal && verdict.primalFeasible);
  return primal ? SimplexMethod::Primal : SimplexMethod::Dual;
}

SimplexMethod other(SimplexMethod method) {
  return method == SimplexMethod::Dual ? SimplexMethod::Primal : SimplexMethod::Dual;
}

bool isStop(LpStatus status) {
  switch (status) {
    case LpStatus::IterationLimit:
    case LpStatus::TimeLimit:
    case LpStatus::WorkLimit:
    case LpStatus::MemoryLimit:
    case LpStatus::Interrupted:
    case LpStatus::Callback:
      return true;
    default:
      return false;
  }
}

}  // namespace

LpDriver::LpDriver(const LpModel &lp, const LpDriverOptions &options, SolveControl &control,
                   WarmEngine &engine)
    : lp_(lp), options_(options), control_(control), engine_(engine) {
  tolerances_ = {options.simplex.primalTol, options.simplex.dualTol};
  control_.limits.iterationLimit = std::min(control_.limits.iterationLimit, kMaxIterations);
  if (options_.wantCertificates) options_.presolve.dualReductions = false;
}

LpOutcome LpDriver::run(const Basis *warmStart, const Vec<double> *superbasicValues,
                        const Vec<double> *edgeWeights) {
  if (lp_.numRows == 0) return settle(solveWithoutRows());
  if (!warmStart) return settle(solveFromScratch());
  options_.simplex.exactNorms = false;
  if (options_.presolve.level != 0 && options_.presolveWarmStart)
    return settle(solvePresolved(warmStart));
  // The check of the result is the proof: values updated through a few steps need no second look.
  options_.simplex.quickVerdicts = true;
  iterationCap_ = options_.warmIterationLimit;
  LpSolution solution = solveFull(options_.method, warmStart, superbasicValues, edgeWeights);
  const bool capped = iterations_ >= iterationCap_ && iterations_ < control_.limits.iterationLimit;
  iterationCap_ = kNoCap;
  if (solution.status != LpStatus::IterationLimit || !capped) return settle(std::move(solution));
  control_.log->print("Warning: warm-start basis discarded after %.0f iterations\n", iterations_);
  options_.simplex.quickVerdicts = false;
  return settle(solveFromScratch());
}

LpSolution LpDriver::solveFromScratch() {
  return options_.presolve.level != 0 ? solvePresolved(nullptr)
                                      : solveFull(options_.method, nullptr, nullptr, nullptr);
}

// The result mapped back to the full model, where it is yet to be verified.
LpSolution LpDriver::solvePresolved(const Basis *warmStart) {
  Presolve presolve;
  const PresolveStatus status = presolve.run(lp_, options_.presolve, control_);
  presolved_ = true;
  logPresolve(presolve, status, options_.presolve.name, *control_.log);
  LpSolution full;
  switch (status) {
    case PresolveStatus::Stopped:
      full.status = stopStatus();
      return full;
    case PresolveStatus::Infeasible:
      full.status = LpStatus::Infeasible;
      full.farkas = presolve.farkas();
      return full;
    case PresolveStatus::Unbounded:
      full.status = LpStatus::Unbounded;
      return full;
    case PresolveStatus::InfeasibleOrUnbounded:
      full.status = LpStatus::InfeasibleOrUnbounded;
      return full;
    case PresolveStatus::Unchanged:
    case PresolveStatus::Reduced:
    case PresolveStatus::Solved:
      break;
  }
  LpSolution reduced;
  if (status == PresolveStatus::Solved)
    reduced.status = LpStatus::Optimal;
  else
    reduced = solveReduced(presolve, warmStart);
  basisFits_ = presolve.postsolve(reduced, full);
  full.status = reduced.status;
  full.ray.clear();
  full.farkas.clear();
  full.provingVar = presolve.originalVar(reduced.provingVar);
  if (status == PresolveStatus::Unchanged) {
    full.ray = std::move(reduced.ray);
    full.farkas = std::move(reduced.farkas);
  } else if (reduced.status == LpStatus::Infeasible && !reduced.farkas.empty()) {
    presolve.postsolveFarkas(reduced.farkas, full.farkas);
  }
  return full;
}

LpSolution LpDriver::solveReduced(const Presolve &presolve, const Basis *warmStart) {
  Basis crushed;
  const bool warm = warmStart && presolve.crushBasis(*warmStart, crushed);
  if (warmStart && !warm && options_.method == SimplexMethod::Primal)
    control_.log->print("Warning: Primal crushed basis discarded.\n");
  if (!warm && options_.presolve.preDual > 0) {
    LpSolution solution;
    if (solveDualForm(presolve.reduced(), solution)) return solution;
  }
  Simplex simplex(options_.simplex);
  LpSolution solution =
      solveIn(simplex, presolve.reduced(), options_.method, warm ? &crushed : nullptr);
  if (solution.status == LpStatus::Optimal) passOn(simplex, presolve);
  return solution;
}

void LpDriver::passOn(const Simplex &reduced, const Presolve &presolve) {
  if (options_.simplex.scaleFlag == 0) return;
  const Vec<int> &cols = presolve.originalCol(), &rows = presolve.originalRow();
  const int n = static_cast<int>(cols.size());
  PartialKnowledge known;
  known.scaleFlag = options_.simplex.scaleFlag;
  const Scaling scaling = reduced.scaling();
  known.scaling.row.assign(lp_.numRows, 0.0);
  known.scaling.col.assign(lp_.numCols, 0.0);
  for (int j = 0; j < n; ++j) known.scaling.col[cols[j]] = scaling.col[j];
  for (std::size_t i = 0; i < rows.size(); ++i) known.scaling.row[rows[i]] = scaling.row[i];
  known.weights = reduced.basicWeights();
  for (BasicWeight &w : known.weights)
    w.var = w.var < n ? cols[w.var] : lp_.numCols + rows[w.var - n];
  engine_.learn(std::move(known));
}

bool LpDriver::solveDualForm(const LpModel &lp, LpSolution &solution) {
  const DualForm form(lp);
  if (form.lp().numRows == 0 || form.lp().numCols == 0) return false;
  SimplexOptions options = options_.simplex;
  options.logSign = -options.logSign;
  options.cutoff = 1e100;
  std::swap(options.primalTol, options.dualTol);
  const LpSolution dual = solveApart(form.lp(), options, options_.method, nullptr);
  if (isStop(dual.status)) {
    solution.status = dual.status;
    return true;
  }
  if (dual.status != LpStatus::Optimal) return false;
  const double before = iterations_;
  const Basis basis = form.primalBasis(dual.basis);
  solution = solveApart(lp, options_.simplex, SimplexMethod::Primal, &basis);
  if (iterations_ > before)
    control_.log->print("Extra simplex iterations from dual to original model: %.0f\n",
                        iterations_ - before);
  return true;
}

LpSolution LpDriver::solveFull(SimplexMethod method, const Basis *start,
                               const Vec<double> *superbasicValues,
                               const Vec<double> *edgeWeights) {
  Simplex &simplex = start ? engine_.open(lp_, options_.simplex, *start, superbasicValues)
                           : engine_.openFresh(lp_, options_.simplex);
  if (start) {
    if (edgeWeights && !simplex.standsAt(*start)) simplex.setEdgeWeights(*edgeWeights);
    if (options_.mayChangeMethod && simplex.prefersPrimal(control_)) method = SimplexMethod::Primal;
  }
  simplex.setIterationCap(iterationCap_);
  LpSolution solution = runEngine(simplex, method, !start);
  simplex.setIterationCap(kNoCap);
  return solution;
}

LpSolution LpDriver::solveApart(const LpModel &lp, const SimplexOptions &options,
                                SimplexMethod method, const Basis *start) {
  Simplex simplex(options);
  return solveIn(simplex, lp, method, start);
}

LpSolution LpDriver::solveIn(Simplex &simplex, const LpModel &lp, SimplexMethod method,
                             const Basis *start) {
  simplex.load(lp);
  if (start) simplex.setBasis(*start, nullptr);
  return runEngine(simplex, method, !start);
}

LpSolution LpDriver::runEngine(Simplex &simplex, SimplexMethod method, bool fromScratch) {
  // Engines count their own iterations; the limit is on all of them together.
  const double iterationLimit = control_.limits.iterationLimit;
  control_.limits.iterationLimit = iterationLimit - iterations_;
  const bool mayCrash = options_.mayChangeMethod || options_.simplex.crash > 1;
  if (fromScratch && mayCrash && simplex.crash(control_)) method = SimplexMethod::Primal;
  LpStatus status = simplex.solve(method, control_);
  if (status == LpStatus::InfeasibleOrUnbounded)
    status = simplex.solve(SimplexMethod::Primal, control_);
  control_.limits.iterationLimit = iterationLimit;
  LpSolution solution;
  simplex.getSolution(solution);
  solution.status = status;
  iterations_ += simplex.iterations();
  // What has been trouble once would be trouble in the next stage as well.
  options_.simplex.markowitzTol = std::max(options_.simplex.markowitzTol, simplex.markowitzTol());
  extended_ = simplex.extended();
  return solution;
}

// Every column sits at the bound its cost prefers.
LpSolution LpDriver::solveWithoutRows() const {
  LpSolution solution;
  solution.status = LpStatus::Optimal;
  solution.colValue.resize(lp_.numCols);
  solution.colDual = lp_.cost;
  solution.objective = lp_.offset;
  solution.basis.col.resize(lp_.numCols);
  for (int j = 0; j < lp_.numCols; ++j) {
    const bool noLower = isInf(lp_.colLower[j]), noUpper = isInf(lp_.colUpper[j]);
    const double cost = lp_.cost[j];
    const bool atUpper = cost < 0 ? !noUpper : noLower && !noUpper;
    double &x = solution.colValue[j];
    x = atUpper ? lp_.colUpper[j] : noLower ? 0 : lp_.colLower[j];
    solution.objective += cost * x;
    solution.basis.col[j] = atUpper   ? VarStatus::AtUpper
                            : noLower ? VarStatus::Free
                                      : VarStatus::AtLower;
    if (((cost < 0 && noUpper) || (cost > 0 && noLower)) && solution.ray.empty()) {
      solution.status = LpStatus::Unbounded;
      solution.ray.assign(lp_.numCols, 0);
      solution.ray[j] = cost < 0 ? 1 : -1;
      solution.provingVar = j;
    }
  }
  return solution;
}

// Which limit stopped a kernel that only says that one did.
LpStatus LpDriver::stopStatus() {
  switch (control_.limits.pollNow(control_.work, iterations_)) {
    case StopReason::TimeLimit:
      return LpStatus::TimeLimit;
    case StopReason::WorkLimit:
      return LpStatus::WorkLimit;
    case StopReason::MemoryLimit:
      return LpStatus::MemoryLimit;
    case StopReason::IterationLimit:
      return LpStatus::IterationLimit;
    case StopReason::Callback:
      return LpStatus::Callback;
    case StopReason::Interrupted:
    case StopReason::None:
      break;
  }
  return LpStatus::Interrupted;
}

// Reduced costs exactly as the duals imply them: updated ones drift, and only the duals count.
void LpDriver::refreshReducedCosts(LpSolution &solution) const {
  if (static_cast<int>(solution.rowDual.size()) != lp_.numRows ||
      static_cast<int>(solution.colDual.size()) != lp_.numCols)
    return;
  for (int j = 0; j < lp_.numCols; ++j) {
    CompensatedSum sum(lp_.cost[j]);
    for (NzIndex k = lp_.a.start[j]; k < lp_.a.start[j + 1]; ++k)
      sum.addProduct(-solution.rowDual[lp_.a.index[k]], lp_.a.value[k]);
    solution.colDual[j] = sum.value();
  }
}

Verdict LpDriver::judge(LpSolution &solution) const {
  Verdict verdict = verify(lp_, solution, tolerances_);
  if (verdict.proven || solution.status != LpStatus::Optimal) return verdict;
  refreshReducedCosts(solution);
  return verify(lp_, solution, tolerances_);
}

LpOutcome LpDriver::settle(LpSolution &&solution) {
  // Presolve gave the distinction up, as it was allowed to.
  const bool undecided = solution.status == LpStatus::InfeasibleOrUnbounded && presolved_ &&
                         options_.presolve.dualReductions;
  const Verdict verdict = judge(solution);
  LpOutcome outcome;
  const bool leadsOn = solution.status == LpStatus::Optimal && !basisFits_;
  if ((verdict.proven && !leadsOn) || undecided) {
    outcome.solution = std::move(solution);
    outcome.quality = verdict.quality;
  } else {
    outcome = repair(std::move(solution), verdict);
  }
  outcome.solution.iterations = iterations_;
  outcome.extended = extended_;
  return outcome;
}

// The solution may be proven already while its basis only leads to an optimal one: then one step
// is made, and nothing but another proven optimum replaces it.
LpOutcome LpDriver::repair(LpSolution &&doubtful, const Verdict &verdict) {
  const double iterationsBefore = iterations_;
  const bool wasExtended = extended_;
  options_.simplex.quickVerdicts = false;
  LpOutcome best;
  best.solution = std::move(doubtful);
  Verdict bestVerdict = verdict, lastVerdict = verdict;
  Basis lastBasis = best.solution.basis;
  SimplexMethod method = repairMethod(best.solution, verdict);
  for (const RepairStep &step : kRepairSteps) {
    if (lp_.numRows == 0) break;
    SimplexOptions options = options_.simplex;
    options.primalTol = std::max(1e-9, options.primalTol * step.tolFactor);
    options.dualTol = std::max(1e-9, options.dualTol * step.tolFactor);
    options.markowitzTol = std::max(options.markowitzTol, step.markowitzTol);
    options.numericFocus = std::max(options.numericFocus, step.numericFocus);
    if (step.unscaled) options.scaleFlag = 0;
    if (step.extended && options.quad == -1) {
      options.quad = 1;
      if (!extended_) control_.log->print("Switch to quad precision\n");
    }
    if (!step.fromLastBasis) method = other(options_.method);
    const bool warm = step.fromLastBasis && !lastBasis.empty();
    const bool cleanUp = &step == kRepairSteps && warm;
    LpSolution next = cleanUp ? solveFull(method, &lastBasis, nullptr, nullptr)
                              : solveApart(lp_, options, method, warm ? &lastBasis : nullptr);
    lastVerdict = judge(next);
    method = repairMethod(next, lastVerdict);
    const bool stopped = isStop(next.status);
    if (!next.basis.empty()) lastBasis = next.basis;
    const bool optimal = lastVerdict.proven && next.status == LpStatus::Optimal;
    const bool better =
        stopped ? !bestVerdict.nearlyProven : lastVerdict.violation < bestVerdict.violation;
    if (verdict.proven ? optimal : better || (lastVerdict.proven && !stopped)) {
      best.solution = std::move(next);
      bestVerdict = lastVerdict;
    } else if (verdict.proven) {
      extended_ = wasExtended;
    }
    if (stopped || lastVerdict.proven || verdict.proven) break;
  }
  if (presolved_ && iterations_ > iterationsBefore)
    control_.log->print("Extra simplex iterations after uncrush: %.0f\n",
                        iterations_ - iterationsBefore);
  best.quality = bestVerdict.quality;
  if (bestVerdict.proven || bestVerdict.nearlyProven) return best;
  best.suboptimal = best.solution.status == LpStatus::Optimal && bestVerdict.primalFeasible;
  if (!best.suboptimal) best.solution.status = LpStatus::Numeric;
  return best;
}

}  // namespace tarvik
