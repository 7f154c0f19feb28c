#include "simplex/dual_simplex.h"

#include <algorithm>
#include <cmath>

#include "base/multiversion.h"
#include "simplex/lu/row_norms.h"
#include "simplex/tuning.h"

namespace tarvik {

using std::fabs;

namespace {
// Refused or doubtful pivots in one phase before the phase gives up.
constexpr int kMaxDisagreements = 200;
// Up to this many updates a verdict is checked with recomputed values on the old factors.
constexpr int kRecomputeUpdates = 10;
// A devex weight of a leaving row that asks for a new reference framework.
constexpr double kDevexReset = 1e6;

TARVIK_SIMD void axpy(int n, double factor, const double *x, double *y) {
  for (int j = 0; j < n; ++j) y[j] += factor * x[j];
}
[[maybe_unused]] void axpy(int n, long double factor, const long double *x, long double *y) {
  for (int j = 0; j < n; ++j) y[j] += factor * x[j];
}
}  // namespace

template <class Real>
PhaseResult DualSimplex<Real>::run(bool perturb) {
  unblockAll();
  allowSmallPivots_ = false;
  nextCutoffTest_ = 0;
  perturbAt_ = 1e100;
  refusedCols_ = 0;
  bestRejected_ = 0;
  resumed_ = resume();
  const bool prepared = e_.prepared;
  dualsFeasible_ = prepared && e_.dualFeasible;
  e_.forgetValues();
  PhaseResult result;
  if (resumed_) {
    result = phase(false);
    if (result == PhaseResult::Optimal) result = finishPhaseTwo();
  } else {
    result = runFromBasis(perturb, prepared);
  }
  if (Log *log = e_.warnings(); log && refusedCols_ > 0)
    log->print("Numeric for %d cols\n", refusedCols_);
  const bool complete = result == PhaseResult::Optimal || result == PhaseResult::Infeasible ||
                        result == PhaseResult::Cutoff || result == PhaseResult::Stopped;
  e_.current = complete && !phaseOne_ && e_.factored && !e_.costsPerturbed && e_.held.empty() &&
               e_.costShift == ShiftState::None && static_cast<int>(queue_.size()) == e_.lp.m;
  return result;
}

// Goes on with the values that the last solve left, after changes of bounds. False: they are of no
// use, and everything is to be computed from the basis.
template <class Real>
bool DualSimplex<Real>::resume() {
  if (!e_.current || !e_.factored || !pricing_.steepest() || e_.options.pricing >= 0 ||
      static_cast<int>(e_.touched.size()) > e_.lp.total() / 4)
    return false;
  SparseVec<Real> &change = e_.work1;
  change.clear();
  for (const VarIndex j : e_.touched) {
    if (followBounds(j, change)) continue;
    change.clear();
    return false;
  }
  e_.chargeWork(4.0 * static_cast<double>(e_.touched.size()));
  if (change.count == 0) return true;
  e_.factor.ftran(change, e_.flipDensity, e_.control->work);
  e_.updateDensity(e_.flipDensity, change);
  change.forEach([&](int i, Real x) { e_.xB[i] -= x; });
  change.clear();
  return true;
}

// Takes over the true bounds of a variable; a nonbasic one moves with them, to the side that its
// reduced cost asks for. False when no side satisfies it.
template <class Real>
bool DualSimplex<Real>::followBounds(VarIndex j, SparseVec<Real> &change) {
  e_.lower[j] = e_.lp.lower[j];
  e_.upper[j] = e_.lp.upper[j];
  width_[j] = e_.upper[j] - e_.lower[j];
  if (const BasisPos p = e_.position[j]; p >= 0) {
    e_.lB[p] = e_.lower[j];
    e_.uB[p] = e_.upper[j];
    return true;
  }
  const Real from = e_.value[j];
  e_.dual[j] = e_.reducedCost(j);
  e_.placeNonbasic(j);
  e_.syncActive(j);
  if (e_.lower[j] < e_.upper[j]) {
    if (e_.move[j] == 0) return false;
    if (e_.dualInfeasibility(j) > e_.dualTol) {
      const Real opposite = e_.move[j] > 0 ? e_.upper[j] : e_.lower[j];
      if (!std::isfinite(static_cast<double>(opposite))) return false;
      e_.move[j] = static_cast<signed char>(-e_.move[j]);
      e_.value[j] = opposite;
    }
  }
  const Real step = e_.value[j] - from;
  if (step == Real(0)) return true;
  e_.updatedObjective += e_.dual[j] * step;
  e_.lp.forColumn(j, [&](int i, Real a) { change.add(i, a * step); });
  return true;
}

template <class Real>
PhaseResult DualSimplex<Real>::runFromBasis(bool perturb, bool prepared) {
  if (!prepared) {
    e_.resetWorkingBounds();
    e_.resetWorkingCosts();
  }
  queue_.resize(e_.lp.m);
  width_.resize(e_.lp.total());
  choosePricing();
  if (!e_.factored && !e_.refactor()) return e_.troubleResult();
  if (wantsExactWeights()) e_.computeExactWeights();
  if (!prepared) e_.computeDual();
  primalFresh_ = prepared;
  freshFlips_ = flips_;
  const int after = e_.options.perturbAfter;
  if (perturb && after > e_.iterations) perturbAt_ = after;
  if (perturb && (after < 0 ? wantsPerturbation() : e_.iterations >= after)) {
    perturbCosts();
    e_.computeDual();
  }
  dualsFresh_ = true;
  for (int attempt = 0; attempt < 3; ++attempt) {
    if (dualsFeasible_ || correctDuals(false) == 0) {
      const PhaseResult result = phase(false);
      return result == PhaseResult::Optimal ? finishPhaseTwo() : result;
    }
    installPhaseOneBoxes();
    dualsFresh_ = primalFresh_ = false;
    const PhaseResult result = phase(true);
    e_.resetWorkingBounds();
    if (result != PhaseResult::Optimal) return result;
    e_.computeDual();
    if (correctDuals(false) == 0) continue;
    if (!e_.costsPerturbed && e_.costShift == ShiftState::None) return PhaseResult::NeedsPrimal;
    // What keeps the reduced costs infeasible may be the perturbation alone.
    e_.resetWorkingCosts();
    e_.computeDual();
  }
  return PhaseResult::NeedsPrimal;
}

// Weights that another rule has kept mean nothing to this one; those of steepest edge are repaired
// one by one as their rows are looked at.
template <class Real>
void DualSimplex<Real>::choosePricing() {
  const int option = e_.options.pricing;
  const PricingRule rule = option < 0 ? PricingRule::Steepest : static_cast<PricingRule>(option);
  if (rule == PricingRule::Devex || rule == PricingRule::Partial) e_.rowWeight.assign(e_.lp.m, 1.0);
  pricing_.start(rule, e_.lp.m, e_.lp.n);
}

template <class Real>
bool DualSimplex<Real>::wantsExactWeights() const {
  const bool asked = e_.options.exactNorms || e_.options.warmBasis > 1;
  return asked && !e_.rowWeightsValid && pricing_.steepest();
}

// Perturbation pays on the long way from the slack basis; a warm basis with few infeasibilities
// left would be spoilt by it.
template <class Real>
bool DualSimplex<Real>::wantsPerturbation() {
  int structurals = 0, primal = 0, dual = 0;
  for (const VarIndex j : e_.head) structurals += j < e_.lp.n;
  if (structurals == 0) return true;
  if (e_.options.warmBasis >= 0) return (e_.options.warmBasis & 1) != 0;
  if (!primalFresh_) {
    e_.loadBasicBounds();
    e_.computePrimal();
    primalFresh_ = true;
  }
  e_.primalInfeasibilitySum(&primal);
  if (!dualsFeasible_) e_.dualInfeasibilitySum(&dual);
  return primal + dual > std::max(tuning::kWarmInfeasibilities, e_.lp.m / 20);
}

// Removes perturbation and shifts at an optimum of the working costs.
template <class Real>
PhaseResult DualSimplex<Real>::finishPhaseTwo() {
  if (!e_.costsPerturbed && e_.costShift == ShiftState::None && e_.held.empty())
    return PhaseResult::Optimal;
  if (!e_.held.empty()) e_.resetWorkingBounds();
  e_.resetWorkingCosts();
  e_.computeDual();
  int count = 0;
  e_.dualInfeasibilitySum(&count);
  return count == 0 ? PhaseResult::Optimal : PhaseResult::NeedsPrimal;
}

template <class Real>
PhaseResult DualSimplex<Real>::phase(bool phaseOne) {
  phaseOne_ = phaseOne;
  disagreements_ = 0;
  RebuildReason reason = RebuildReason::None;
  while (true) {
    if (resumed_) {
      resumed_ = false;
      e_.valuesFollowed = true;
      fillQueue();
    } else if (!rebuild(reason, phaseOne)) {
      return e_.troubleResult();
    }
    if (cutoffProven()) return PhaseResult::Cutoff;
    e_.log(false);
    if (e_.stop != StopReason::None) return PhaseResult::Stopped;
    const double before = e_.iterations;
    reason = iterate();
    if (reason == RebuildReason::UpdateLimit) continue;
    if (reason == RebuildReason::Cutoff) return PhaseResult::Cutoff;
    if (reason == RebuildReason::PivotDisagreement || reason == RebuildReason::UnsafeUpdate) {
      if (++disagreements_ > kMaxDisagreements) return PhaseResult::Trouble;
      continue;
    }
    if (reason == RebuildReason::Limit) return PhaseResult::Stopped;
    if (reason == RebuildReason::TinyPivots) return PhaseResult::NeedsPrimal;
    // A verdict needs values computed from scratch: it counts only right after a rebuild, or where
    // the caller is content with less.
    if (e_.iterations != before && !trusts(reason)) continue;
    const PhaseResult result = verdict(reason, phaseOne);
    if (!retry_) return result;
  }
}

template <class Real>
bool DualSimplex<Real>::trusts(RebuildReason reason) const {
  return e_.options.quickVerdicts && !phaseOne_ && blockedCount_ == 0 &&
         e_.updatesSinceCompute <= tuning::kTrustedUpdates &&
         (reason == RebuildReason::PossiblyOptimal || reason == RebuildReason::PossiblyInfeasible);
}

// Whether the bound that the dual objective is for the true problem has reached the cutoff.
template <class Real>
bool DualSimplex<Real>::cutoffProven() {
  if (phaseOne_ || e_.options.cutoff >= 1e100 ||
      !(static_cast<double>(e_.updatedObjective) > e_.options.cutoff) ||
      e_.iterations < nextCutoffTest_)
    return false;
  nextCutoffTest_ = e_.iterations + tuning::kCutoffTestInterval;
  return e_.dualBound(e_.control->work) > e_.options.cutoff;
}

template <class Real>
PhaseResult DualSimplex<Real>::verdict(RebuildReason reason, bool phaseOne) {
  retry_ = false;
  switch (reason) {
    case RebuildReason::PossiblyOptimal:
      if (blockedCount_ == 0) return PhaseResult::Optimal;
      if (allowSmallPivots_) return PhaseResult::NeedsPrimal;
      // Nothing but small pivots is left: now they are welcome.
      unblockAll();
      allowSmallPivots_ = true;
      retry_ = true;
      return PhaseResult::Trouble;
    case RebuildReason::PossiblyInfeasible:
      if (phaseOne) return PhaseResult::NeedsPrimal;
      if (e_.proveInfeasible(e_.rho)) {
        e_.provingVar = e_.head[troubleRow_];
        return PhaseResult::Infeasible;
      }
      block(troubleRow_);
      retry_ = true;
      return PhaseResult::Trouble;
    default:
      return PhaseResult::Trouble;
  }
}

template <class Real>
bool DualSimplex<Real>::rebuild(RebuildReason reason, bool phaseOne) {
  const bool verdictPending =
      reason == RebuildReason::PossiblyOptimal || reason == RebuildReason::PossiblyInfeasible;
  if (e_.iterations >= perturbAt_) {
    perturbAt_ = 1e100;
    perturbCosts();
    e_.valuesFollowed = false;
  }
  const bool refactor =
      !e_.factored ||
      (e_.updates > 0 && reason != RebuildReason::None &&
       !(verdictPending && e_.options.endFactor < 2 && e_.updates < kRecomputeUpdates));
  const bool check = refactor && e_.updates > 0 && e_.valuesFollowed;
  if (refactor) {
    if (reason == RebuildReason::UnsafeUpdate || reason == RebuildReason::PivotDisagreement)
      e_.noteDoubtfulPivot(disagreements_);
    if (check) e_.keepUpdatedValues();
    if (!e_.refactor()) return false;
  }
  if (reason == RebuildReason::UpdateLimit) {
    unblockAll();
    allowSmallPivots_ = false;
  }
  recompute(phaseOne, check && !e_.repaired);
  if (check && !e_.repaired) {
    e_.noteResiduals();
    e_.stability.noteRegularFactorization();
    const Stability::Check answer = e_.checkObjective();
    if (answer == Stability::Check::Fail || answer == Stability::Check::Extend) return false;
    if (answer == Stability::Check::Refactor) {
      if (!e_.refactor()) return false;
      recompute(phaseOne, false);
    }
  }
  e_.updatedObjective = e_.currentObjective();
  e_.valuesFollowed = true;
  // A row with an overflown weight would never be looked at again.
  const bool invalid = !std::all_of(e_.rowWeight.begin(), e_.rowWeight.end(),
                                    [](double weight) { return weight > 0 && weight < kInf; });
  if (pricing_.check(e_.iterations) != PricingMode::Change::None || invalid)
    e_.rowWeight.assign(e_.lp.m, 1.0);
  fillQueue();
  return true;
}

// Values of the working problem from the factors; with compare against the updated ones.
template <class Real>
void DualSimplex<Real>::recompute(bool phaseOne, bool compare) {
  const bool corrected = dualsFresh_;
  dualsFresh_ = false;
  if (!corrected) e_.computeDual();
  if (compare) e_.compareDuals();
  const double flips = flips_;
  if (!corrected) correctDuals(!phaseOne);
  e_.loadBasicBounds();
  freeNonbasic_.clear();
  for (int j = 0; j < e_.lp.total(); ++j) {
    width_[j] = e_.upper[j] - e_.lower[j];
    if (j < e_.lp.n && e_.move[j] == 0 && e_.canEnter(j)) freeNonbasic_.push_back(j);
  }
  if (!primalFresh_ || flips_ != freshFlips_) e_.computePrimal();
  primalFresh_ = false;
  if (compare && flips_ == flips) e_.comparePrimal();
}

template <class Real>
double DualSimplex<Real>::perturbationSize() const {
  const double value = e_.options.perturbValue;
  if (value > tuning::kDefaultPerturbValue) return value;
  if (value == tuning::kDefaultPerturbValue && e_.iterations == 0 && e_.lp.offset == Real(0) &&
      e_.lp.m > tuning::kSomeRows)
    return tuning::kPerturbFromScratch;
  return value *
         (e_.lp.m <= tuning::kManyRows ? tuning::kPerturbFactor : tuning::kPerturbFactorManyRows);
}

template <class Real>
void DualSimplex<Real>::perturbCosts() {
  const double size = perturbationSize() / tuning::kPerturbFromScratch;
  if (size == 0) return;
  const int n = e_.lp.n, total = e_.lp.total();
  double largest = 0;
  for (int j = 0; j < n; ++j) largest = std::max(largest, static_cast<double>(fabs(e_.cost[j])));
  // Few large costs must not make the perturbation of all the others large.
  if (largest > 100) largest = std::sqrt(std::sqrt(largest));
  int boxed = 0;
  for (int j = 0; j < total; ++j)
    boxed += e_.lower[j] != -kRealInf<Real> && e_.upper[j] != kRealInf<Real> &&
             e_.lower[j] < e_.upper[j];
  if (boxed < 0.01 * total) largest = std::min(largest, 1.0);
  const double base = tuning::kCostPerturbation * size * std::max(largest, 1.0);
  for (int j = 0; j < n; ++j) {
    const bool hasLower = e_.lower[j] != -kRealInf<Real>, hasUpper = e_.upper[j] != kRealInf<Real>;
    if (e_.lower[j] == e_.upper[j] || (!hasLower && !hasUpper)) continue;
    const Real amount =
        Real((static_cast<double>(fabs(e_.cost[j])) + 1.0) * base * (1.0 + e_.randomOf(j)));
    if (hasLower && hasUpper)
      e_.cost[j] += e_.cost[j] >= 0 ? amount : -amount;
    else
      e_.cost[j] += hasLower ? amount : -amount;
  }
  for (int j = n; j < total; ++j) e_.cost[j] += Real((0.5 - e_.randomOf(j)) * 1e-12);
  e_.costsPerturbed = true;
  e_.costShift = ShiftState::Large;
  dualsFeasible_ = false;
}

template <class Real>
void DualSimplex<Real>::installPhaseOneBoxes() {
  for (int j = 0; j < e_.lp.total(); ++j) {
    const bool hasLower = e_.lp.lower[j] != -kRealInf<Real>;
    const bool hasUpper = e_.lp.upper[j] != kRealInf<Real>;
    const Real free = Real(tuning::kFreeBox);
    e_.lower[j] = hasLower ? Real(0) : hasUpper ? Real(-1) : -free;
    e_.upper[j] = hasUpper ? Real(0) : hasLower ? Real(1) : free;
    if (e_.position[j] >= 0) continue;
    e_.move[j] = e_.lower[j] == e_.upper[j] ? 0 : e_.dual[j] >= 0 ? 1 : -1;
    e_.value[j] = e_.move[j] >= 0 ? e_.lower[j] : e_.upper[j];
    e_.syncActive(j);
  }
  e_.loadBasicBounds();
}

template <class Real>
int DualSimplex<Real>::correctDuals(bool mayShift) {
  int remaining = 0;
  const int total = e_.lp.total();
  for (int j = 0; j < total; ++j) {
    if (e_.position[j] >= 0) continue;
    const Real violation = e_.dualInfeasibility(j);
    if (violation <= e_.dualTol) continue;
    const bool boxed = e_.lower[j] != -kRealInf<Real> && e_.upper[j] != kRealInf<Real>;
    if (boxed && e_.move[j] != 0) {
      const Real from = e_.value[j];
      e_.move[j] = static_cast<signed char>(-e_.move[j]);
      e_.value[j] = e_.move[j] > 0 ? e_.lower[j] : e_.upper[j];
      e_.updatedObjective += e_.dual[j] * (e_.value[j] - from);
      ++flips_;
    } else if (mayShift) {
      const Real wanted = e_.shiftExcess(j, false) * violation * Real(e_.move[j]);
      e_.shiftCost(j, wanted - e_.dual[j]);
    } else {
      ++remaining;
    }
  }
  e_.chargeWork(total);
  return remaining;
}

template <class Real>
void DualSimplex<Real>::setInfeasibility(BasisPos i) {
  const Real x = e_.xB[i];
  Real violation = 0;
  if (x < e_.lB[i] - e_.primalTol)
    violation = e_.lB[i] - x;
  else if (x > e_.uB[i] + e_.primalTol)
    violation = x - e_.uB[i];
  else {
    queue_.set(i, 0);
    return;
  }
  if (blockedCount_ > 0 && blocked_[i]) violation = 0;
  queue_.set(i, static_cast<double>(violation * violation) / e_.rowWeight[i]);
}

template <class Real>
void DualSimplex<Real>::block(BasisPos p) {
  if (!blocked_[p]) ++blockedCount_;
  blocked_[p] = 1;
  setInfeasibility(p);
}

// Not even fresh factors make a good pivot of the row's column.
template <class Real>
void DualSimplex<Real>::refuse(BasisPos p) {
  ++refusedCols_;
  block(p);
}

template <class Real>
void DualSimplex<Real>::unblockAll() {
  if (static_cast<int>(blocked_.size()) == e_.lp.m && blockedCount_ == 0) return;
  blocked_.assign(e_.lp.m, 0);
  blockedCount_ = 0;
}

template <class Real>
void DualSimplex<Real>::fillQueue() {
  for (int i = 0; i < e_.lp.m; ++i) setInfeasibility(i);
  checked_.assign(e_.lp.m, 0);
  e_.chargeWork(3.0 * e_.lp.m);
}

template <class Real>
RebuildReason DualSimplex<Real>::iterate() {
  while (true) {
    if (!e_.pollAndLog()) return RebuildReason::Limit;
    if (e_.iterations >= perturbAt_) return RebuildReason::UpdateLimit;
    const BasisPos p = chooseRow();
    if (p < 0) return RebuildReason::PossiblyOptimal;
    const double before = e_.control->work.counted();
    e_.priceRow();
    pricing_.chargeRow(e_.control->work.counted() - before);
    const VarIndex q = chooseColumn(p);
    if (q < 0) {
      troubleRow_ = p;
      return RebuildReason::PossiblyInfeasible;
    }
    const Real size = fabs(e_.rowEntry(q));
    if (size < Real(e_.options.bigTol) && !allowSmallPivots_) {
      bestRejected_ = std::max(bestRejected_, size);
      block(p);
      continue;
    }
    if (e_.options.primalDualSwitch && size >= Real(0.1) * bestRejected_ &&
        size < Real(tuning::kTinyPivots * e_.options.pivotTol))
      return RebuildReason::TinyPivots;
    const RebuildReason reason = pivot(p, q);
    if (reason != RebuildReason::None) return reason;
  }
}

// The row with the largest infeasibility in the steepest-edge norm. Its multipliers (rho) give the
// exact weight; a weight found to be far too small goes back to the queue with its true value.
template <class Real>
BasisPos DualSimplex<Real>::chooseRow() {
  for (bool doubtful = false;; doubtful = true) {
    const BasisPos p = queue_.best();
    e_.chargeWork(queue_.lastScan());
    if (p < 0) return -1;
    if (doubtful && !checked_[p] && e_.rhoDensity >= tuning::kRowNormsDensity) {
      checkBestWeights();
      continue;
    }
    e_.unitBtran(p);
    if (!pricing_.steepest()) return p;
    double exact = 0;
    for (int k = 0; k < e_.rho.count; ++k) {
      const double x = static_cast<double>(e_.rho.value[e_.rho.index[k]]);
      exact += x * x;
    }
    const double kept = e_.rowWeight[p];
    e_.rowWeight[p] = exact;
    checked_[p] = 1;
    if (kept >= tuning::kWeightAgreement * exact) return p;
    setInfeasibility(p);
    if (queue_.best() == p) return p;
  }
}

// Where one weight was far off, its neighbours in the queue are likely to be as well.
template <class Real>
void DualSimplex<Real>::checkBestWeights() {
  BasisPos rows[lu::kMaxRowNorms];
  double exact[lu::kMaxRowNorms];
  int count = 0;
  queue_.descend([&](BasisPos p) {
    if (!checked_[p]) rows[count++] = p;
    return count < lu::kMaxRowNorms;
  });
  e_.factor.rowNorms(rows, count, exact, e_.control->work);
  for (int k = 0; k < count; ++k) {
    e_.rowWeight[rows[k]] = exact[k];
    checked_[rows[k]] = 1;
    setInfeasibility(rows[k]);
  }
}

template <class Real>
RebuildReason DualSimplex<Real>::pivot(BasisPos p, VarIndex q) {
  const Real alphaRow = e_.rowEntry(q);
  e_.ftranColumn(q, e_.column, true);
  const Real alpha = e_.column.value[p];
  const Real difference = fabs(alpha - alphaRow);
  if (difference > Real(tuning::kPivotAgreement) *
                       std::max(Real(1e-2), std::min(fabs(alpha), fabs(alphaRow))) &&
      (e_.updates > 0 || fabs(alpha) < Real(1e-9))) {
    if (e_.updates == 0) refuse(p);
    return RebuildReason::PivotDisagreement;
  }
  const int side = e_.xB[p] < e_.lB[p] ? -1 : 1;
  applyFlips();
  SparseVec<Real> &tau = e_.work2;
  if (pricing_.steepest()) {
    const double before = e_.control->work.counted();
    tau.copyFrom(e_.rho);
    e_.factor.ftran(tau, e_.weightDensity, e_.control->work);
    e_.updateDensity(e_.weightDensity, tau);
    pricing_.chargeNorms(e_.control->work.counted() - before);
  }

  const Real delta = e_.xB[p] - (side < 0 ? e_.lB[p] : e_.uB[p]);
  const Real thetaP = delta / alpha;
  const Real entering = e_.value[q] + thetaP;
  const VarIndex out = e_.head[p];
  const UpdateResult updated = e_.changeBasis(q, p, side, alpha);
  if (updated == UpdateResult::RefactorNow) {
    if (e_.updates == 0) refuse(p);
    return RebuildReason::UnsafeUpdate;
  }
  e_.updatedObjective += thetaD_ * delta;
  updateWeights(p, alpha);
  updatePrimal(thetaP);
  updateDuals(thetaD_);
  e_.dual[q] = 0;
  e_.dual[out] = -thetaD_;
  e_.xB[p] = entering;
  setInfeasibility(p);
  tau.clear();
  if (cutoffProven()) return RebuildReason::Cutoff;
  return updated == UpdateResult::RefactorSoon ? RebuildReason::UpdateLimit : RebuildReason::None;
}

template <class Real>
void DualSimplex<Real>::updateWeights(BasisPos p, Real alpha) {
  if (pricing_.steepest())
    updateSteepest(p, alpha);
  else if (pricing_.rule() == PricingRule::Devex)
    updateDevex(p, alpha);
  else
    e_.rowWeight[p] = 1.0;
}

// w_i := w_i - 2 r_i tau_i + r_i^2 w_p with r = column / alpha (Forrest and Goldfarb 1992).
template <class Real>
void DualSimplex<Real>::updateSteepest(BasisPos p, Real alpha) {
  const double wp = e_.rowWeight[p];
  const SparseVec<Real> &column = e_.column, &tau = e_.work2;
  const int count = column.valid() ? column.count : e_.lp.m;
  for (int k = 0; k < count; ++k) {
    const int i = column.valid() ? column.index[k] : k;
    const double r = static_cast<double>(column.value[i] / alpha);
    if (r == 0 || i == p) continue;
    const double updated = e_.rowWeight[i] + r * (r * wp - 2 * static_cast<double>(tau.value[i]));
    e_.rowWeight[i] = std::max(updated, 1e-4);
  }
  e_.rowWeight[p] = std::max(wp / static_cast<double>(alpha * alpha), 1e-4);
  e_.chargeWork(4.0 * count);
}

// The reference framework is the set of rows that were basic at the last reset.
template <class Real>
void DualSimplex<Real>::updateDevex(BasisPos p, Real alpha) {
  const double wp = e_.rowWeight[p];
  const SparseVec<Real> &column = e_.column;
  const int count = column.valid() ? column.count : e_.lp.m;
  for (int k = 0; k < count; ++k) {
    const int i = column.valid() ? column.index[k] : k;
    const double r = static_cast<double>(column.value[i] / alpha);
    if (r == 0 || i == p) continue;
    e_.rowWeight[i] = std::max(e_.rowWeight[i], r * r * wp);
  }
  e_.rowWeight[p] = std::max(wp / static_cast<double>(alpha * alpha), 1.0);
  e_.chargeWork(4.0 * count);
  if (wp > kDevexReset) {
    e_.rowWeight.assign(e_.lp.m, 1.0);
    fillQueue();
  }
}

template <class Real>
void DualSimplex<Real>::updatePrimal(Real thetaP) {
  const SparseVec<Real> &column = e_.column;
  if (column.valid()) {
    for (int k = 0; k < column.count; ++k) {
      const int i = column.index[k];
      e_.xB[i] -= thetaP * column.value[i];
      setInfeasibility(i);
    }
  } else {
    for (int i = 0; i < e_.lp.m; ++i) {
      if (column.value[i] == Real(0)) continue;
      e_.xB[i] -= thetaP * column.value[i];
      setInfeasibility(i);
    }
  }
  e_.chargeWork(4.0 * (column.valid() ? column.count : e_.lp.m));
}

template <class Real>
void DualSimplex<Real>::updateDuals(Real thetaD) {
  if (thetaD == Real(0)) return;
  if (e_.pivotRow.valid()) {
    for (int k = 0; k < e_.pivotRow.count; ++k) {
      const int j = e_.pivotRow.index[k];
      e_.dual[j] -= thetaD * e_.pivotRow.value[j];
    }
  } else {
    // The row is zero on basic and fixed columns, so one plain pass does.
    axpy(e_.lp.n, -thetaD, e_.pivotRow.value.data(), e_.dual.data());
  }
  for (int k = 0; k < e_.rho.count; ++k) {
    const int i = e_.rho.index[k];
    if (e_.position[e_.lp.n + i] < 0) e_.dual[e_.lp.n + i] -= thetaD * e_.rho.value[i];
  }
  e_.chargeWork(3.0 * (e_.pivotRow.passLength() + e_.rho.count));
}

template class DualSimplex<double>;
template class DualSimplex<long double>;

}  // namespace tarvik
