#include "simplex/simplex_core.h"

#include <algorithm>
#include <cmath>
#include <type_traits>

#include "simplex/penalty_crash.h"
#include "simplex/tuning.h"
#include "simplex/vertex_push.h"

namespace tarvik {

namespace {

// Scaled tolerances are tightened down to this when the unscaled solution violates the user's.
constexpr double kTightestTol = 1e-11;
constexpr int kMaxTightenings = 4;
constexpr int kMaxRecoveries = 6;
// Values beyond kHuge with violations beyond kGross are no solution; short solves are not looked
// at.
constexpr double kHuge = 1e20;
constexpr double kGross = 1.0;
constexpr int kFewIterations = 50;
// Condition number from which digits of the solution are in doubt.
constexpr double kBigKappa = 1e12;

}  // namespace

template <class Real>
bool SimplexCore<Real>::start(SolveControl &control) {
  engine.control = &control;
  engine.stop = StopReason::None;
  engine.logSign = engine.options.logSign;
  engine.primalTol = engine.options.primalTol;
  engine.dualTol = engine.options.dualTol;
  engine.stability.startSolve(engine.options, engine.lp.m);
  engine.chargeWork(3 * engine.setupEntries);
  engine.setupEntries = 0;
  engine.certificateRow.clear();
  engine.rayDirection.clear();
  engine.provingVar = -1;
  tightenings_ = recoveries_ = 0;
  return !boundsCross();
}

// Crossing bounds need no iteration; the certificate is the row itself, or none for a column.
template <class Real>
bool SimplexCore<Real>::boundsCross() {
  ScaledLp<Real> &lp = engine.lp;
  const auto crosses = [&](VarIndex j) {
    if (lp.lower[j] <= lp.upper[j] && lp.lower[j] < kRealInf<Real> && lp.upper[j] > -kRealInf<Real>)
      return false;
    const Real tol = engine.options.primalTol / lp.varScale(j);
    if (lp.lower[j] - lp.upper[j] <= tol && lp.lower[j] < kRealInf<Real> &&
        lp.upper[j] > -kRealInf<Real>)
      return false;
    engine.provingVar = j;
    return true;
  };
  // Bounds that cross within the tolerance meet in their middle.
  const auto join = [&](VarIndex j) {
    if (!(lp.lower[j] > lp.upper[j])) return;
    lp.lower[j] = lp.upper[j] = Real(0.5) * (lp.lower[j] + lp.upper[j]);
    engine.prepared = false;
  };
  if (engine.current) {
    if (std::any_of(engine.touched.begin(), engine.touched.end(), crosses)) return true;
    std::for_each(engine.touched.begin(), engine.touched.end(), join);
    return false;
  }
  for (int j = 0; j < lp.total(); ++j) {
    if (crosses(j)) return true;
    join(j);
  }
  return false;
}

template <class Real>
PhaseResult SimplexCore<Real>::runMethod(SimplexMethod method, bool perturb) {
  if (method == SimplexMethod::Dual) {
    crashed_ = false;
    const PhaseResult result = dual_.run(perturb);
    engine.rowWeightsValid = true;
    return result;
  }
  engine.forgetValues();
  const double before = engine.iterations;
  const PhaseResult result = primal_.run(perturb, crashed_);
  crashed_ = false;
  if (engine.iterations != before) engine.rowWeightsValid = false;
  return result;
}

template <class Real>
bool SimplexCore<Real>::crash(SolveControl &control) {
  if constexpr (std::is_same_v<Real, double>) {
    const int option = engine.options.crash;
    if (option == 0 || (option < 0 && !penaltyCrashPays(engine.lp)) || !start(control))
      return false;
    Vec<double> point;
    if (!penaltyCrash(engine.lp, control, point)) return false;
    crashed_ = VertexPush(engine).run(point);
    if (!crashed_) engine.slackBasis();
  }
  return crashed_;
}

// Alternates between the algorithms until one ends with a verdict for the true problem.
template <class Real>
PhaseResult SimplexCore<Real>::run(SimplexMethod method) {
  bool perturb = method == SimplexMethod::Dual && engine.options.perturbValue > 0;
  for (int round = 0; round < tuning::kMaxRounds; ++round) {
    const PhaseResult result = runMethod(method, perturb && round < tuning::kMaxPerturbedRounds);
    perturb = false;
    switch (result) {
      case PhaseResult::NeedsPrimal:
        method = SimplexMethod::Primal;
        break;
      case PhaseResult::NeedsDual:
        method = SimplexMethod::Dual;
        break;
      case PhaseResult::Infeasible:
        if (!loosen()) return result;
        break;
      case PhaseResult::Optimal:
        if (const Violations violations = unscaledViolations(); !tightenIfViolated(violations))
          return polish(violations);
        break;
      case PhaseResult::Trouble:
        switch (recover()) {
          case Recovery::GiveUp:
            return result;
          case Recovery::Extend:
            return PhaseResult::NeedsExtended;
          case Recovery::GoOn:
            break;
        }
        method = method == SimplexMethod::Dual ? SimplexMethod::Primal : SimplexMethod::Dual;
        break;
      default:
        return result;
    }
  }
  return PhaseResult::Trouble;
}

// Infeasible within tightened tolerances is not infeasible: once more with the caller's, which stay
// then. False when they are in use.
template <class Real>
bool SimplexCore<Real>::loosen() {
  if (engine.primalTol >= engine.options.primalTol) return false;
  engine.primalTol = engine.options.primalTol;
  tightenings_ = kMaxTightenings;
  return true;
}

template <class Real>
typename SimplexCore<Real>::Violations SimplexCore<Real>::unscaledViolations() const {
  Violations largest;
  for (int i = 0; i < engine.lp.m; ++i) {
    const VarIndex j = engine.head[i];
    const Real x = engine.xB[i];
    const double violation =
        static_cast<double>(std::max(engine.lp.lower[j] - x, x - engine.lp.upper[j]));
    if (violation > 0) largest.primal = std::max(largest.primal, violation * engine.lp.varScale(j));
  }
  for (int j = 0; j < engine.lp.total(); ++j) {
    const double violation = static_cast<double>(engine.dualInfeasibility(j));
    if (violation > 0) largest.dual = std::max(largest.dual, violation / engine.lp.varScale(j));
  }
  return largest;
}

template <class Real>
bool SimplexCore<Real>::tightenIfViolated(const Violations &violations) {
  if (tightenings_ >= kMaxTightenings) return false;
  bool changed = false;
  const auto tighten = [&](Real &scaledTol, double userTol, double violation) {
    if (violation <= userTol || scaledTol <= kTightestTol) return;
    scaledTol = std::max(Real(kTightestTol), scaledTol * Real(0.5 * userTol / violation));
    changed = true;
  };
  tighten(engine.primalTol, engine.options.primalTol, violations.primal);
  tighten(engine.dualTol, engine.options.dualTol, violations.dual);
  if (!changed) return false;
  ++tightenings_;
  // A run that went on from the values kept would not look at the reduced costs again.
  engine.forgetValues();
  return true;
}

// Goes on with tight tolerances for a few iterations. What does not get better that way is taken
// back: the optimum within the caller's tolerances stands. Unless it is feasible only because many
// small violations make up for a large one: then infeasibility is proven here, and the basic
// solution that shows it misses the caller's tolerance, as it would have on another path.
template <class Real>
PhaseResult SimplexCore<Real>::polish(const Violations &violations) {
  if (!engine.options.polish ||
      (violations.primal <= tuning::kPolishTol && violations.dual <= tuning::kPolishTol))
    return PhaseResult::Optimal;
  const Basis kept = basis();
  const Vec<Real> keptValue = engine.value;
  const Real primalTol = engine.primalTol, dualTol = engine.dualTol;
  engine.primalTol = std::min(engine.primalTol, Real(tuning::kPolishTol));
  engine.dualTol = std::min(engine.dualTol, Real(tuning::kPolishTol));
  const double before = engine.iterations;
  engine.iterationCap = before + tuning::kPolishIterations + tuning::kPolishShare * before;
  PhaseResult result = PhaseResult::NeedsDual;
  for (int round = 0; round < 4; ++round) {
    if (result == PhaseResult::NeedsDual)
      result = dual_.run(false);
    else if (result == PhaseResult::NeedsPrimal)
      result = primal_.run(false);
  }
  engine.iterationCap = 1e100;
  engine.primalTol = primalTol;
  engine.dualTol = dualTol;
  if (result == PhaseResult::Optimal) return result;
  if (result == PhaseResult::Infeasible) {
    if (unscaledViolations().primal > engine.options.primalTol) return result;
    engine.certificateRow.clear();
    engine.provingVar = -1;
  }
  if (engine.stop == StopReason::IterationLimit) engine.stop = StopReason::None;
  engine.stability.clearExtendRequest();
  setBasis(kept, nullptr);
  for (int j = 0; j < engine.lp.total(); ++j)
    if (engine.canEnter(j) && engine.move[j] == 0) engine.value[j] = keptValue[j];
  engine.resetWorkingBounds();
  engine.resetWorkingCosts();
  if (!engine.refactor()) return PhaseResult::Trouble;
  engine.computePrimal();
  engine.computeDual();
  return PhaseResult::Optimal;
}

template <class Real>
bool SimplexCore<Real>::endsWell() {
  Log *log = engine.warnings();
  // A few steps from a basis that has been judged, or from slacks, leave nothing to judge.
  const bool moved = engine.iterations >= kFewIterations || engine.lp.m <= kFewIterations;
  if ((log && moved) || engine.options.statistics > 0) {
    const double kappa = engine.conditionEstimate();
    engine.stability.statistics.kappa.add(kappa);
    if (log && kappa > kBigKappa)
      log->print("Warning: very big Kappa = %g, try parameter NumericFocus\n", kappa);
  }
  if (engine.iterations < lookedAt_ + kFewIterations) return true;
  lookedAt_ = engine.iterations;
  double largestPrimal = 0, largestDual = 0;
  for (int j = 0; j < engine.lp.total(); ++j) {
    const BasisPos p = engine.position[j];
    const Real x = p >= 0 ? engine.xB[p] : engine.value[j];
    const double scale = engine.lp.varScale(j);
    largestPrimal = std::max(largestPrimal, std::fabs(static_cast<double>(x)) * scale);
    largestDual = std::max(largestDual, std::fabs(static_cast<double>(engine.dual[j])) / scale);
  }
  if (largestPrimal <= kHuge && largestDual <= kHuge) return true;
  const Violations violations = unscaledViolations();
  const char *which = largestPrimal > kHuge && violations.primal > kGross ? "primal"
                      : largestDual > kHuge && violations.dual > kGross   ? "dual"
                                                                          : nullptr;
  if (which && log)
    log->print("Numeric error: very large %s solution due to numerically bad basis matrix\n",
               which);
  return !which;
}

// After numerical trouble: more stable factors first, then a fresh start from the slack basis,
// then more precision.
template <class Real>
typename SimplexCore<Real>::Recovery SimplexCore<Real>::recover() {
  if (engine.stop != StopReason::None || engine.stability.hopeless()) return Recovery::GiveUp;
  if (++recoveries_ > kMaxRecoveries) return Recovery::GiveUp;
  engine.stability.raise(recoveries_ > 1 ? 0.9 : 0.5);
  engine.stability.shrinkInterval();
  engine.factored = false;
  if (recoveries_ != kMaxRecoveries / 2) return Recovery::GoOn;
  engine.slackBasis();
  const bool canExtend = engine.options.quad == -1 && sizeof(Real) == sizeof(double);
  return canExtend ? Recovery::Extend : Recovery::GoOn;
}

template class SimplexCore<double>;
template class SimplexCore<long double>;

}  // namespace tarvik
