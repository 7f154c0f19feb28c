#include "simplex/primal_simplex.h"

#include <algorithm>
#include <cmath>

#include "simplex/tuning.h"

namespace tarvik {

using std::fabs;

namespace {
constexpr int kMaxDisagreements = 200;
constexpr int kRecomputeUpdates = 10;
// Iterations without a step before the bounds are perturbed.
constexpr int kStalledIterations = 300;
// The stability threshold that a tiny pivot asks for.
constexpr double kTinyPivotThreshold = 0.03125;
}  // namespace

template <class Real>
PhaseResult PrimalSimplex<Real>::run(bool perturb, bool keepBounds) {
  const int total = e_.lp.total();
  e_.needRows();
  if (!keepBounds) e_.resetWorkingBounds();
  e_.resetWorkingCosts();
  queue_.resize(total);
  choosePricing();
  costChange_.resize(e_.lp.m);
  costRow_.resize(e_.lp.n);
  stalled_ = disagreements_ = 0;
  if (perturb) perturbBounds();
  RebuildReason reason = RebuildReason::None;
  while (true) {
    if (!rebuild(reason)) return finish(e_.troubleResult());
    e_.log(false);
    if (e_.stop != StopReason::None) return finish(PhaseResult::Stopped);
    const double before = e_.iterations;
    reason = iterate();
    if (reason == RebuildReason::UpdateLimit) continue;
    if (reason == RebuildReason::PivotDisagreement || reason == RebuildReason::UnsafeUpdate) {
      if (++disagreements_ > kMaxDisagreements) return finish(PhaseResult::Trouble);
      continue;
    }
    if (reason == RebuildReason::Limit) return finish(PhaseResult::Stopped);
    if (e_.iterations != before) continue;
    if (!e_.held.empty() ||
        (e_.boundsPerturbed && (phaseOne_ || reason == RebuildReason::PossiblyUnbounded))) {
      // A verdict other than "optimal" must hold for the true bounds.
      e_.resetWorkingBounds();
      continue;
    }
    return finish(verdict(reason));
  }
}

template <class Real>
PhaseResult PrimalSimplex<Real>::verdict(RebuildReason reason) {
  if (reason == RebuildReason::PossiblyUnbounded) {
    if (phaseOne_) return PhaseResult::Trouble;
    e_.rayDirection.assign(e_.lp.total(), Real(0));
    e_.rayDirection[rayVar_] = rayDirection_;
    e_.provingVar = rayVar_;
    for (int i = 0; i < e_.lp.m; ++i)
      e_.rayDirection[e_.head[i]] = -rayDirection_ * e_.column.value[i];
    return PhaseResult::Unbounded;
  }
  if (!phaseOne_) return PhaseResult::Optimal;
  SparseVec<Real> &y = e_.work1;
  y.clear();
  for (int i = 0; i < e_.lp.m; ++i)
    if (e_.cost[e_.head[i]] != Real(0)) y.set(i, e_.cost[e_.head[i]]);
  e_.factor.btran(y, 1.0, e_.control->work);
  const bool proven = e_.proveInfeasible(y);
  y.count = -1;
  y.clear();
  if (!proven) return PhaseResult::Trouble;
  e_.provingVar = mostInfeasible();
  return PhaseResult::Infeasible;
}

// Leaves the engine with true costs and bounds; an optimum that needs the dual says so.
template <class Real>
PhaseResult PrimalSimplex<Real>::finish(PhaseResult result) {
  e_.resetWorkingCosts();
  const bool shifted = e_.boundsPerturbed || e_.boundShift != ShiftState::None;
  if (!shifted) {
    if (phaseOne_) e_.computeDual();
    return result;
  }
  e_.resetWorkingBounds();
  e_.computePrimal();
  e_.computeDual();
  if (result != PhaseResult::Optimal) return result;
  int count = 0;
  e_.primalInfeasibilitySum(&count);
  return count > 0 ? PhaseResult::NeedsDual : PhaseResult::Optimal;
}

template <class Real>
bool PrimalSimplex<Real>::rebuild(RebuildReason reason) {
  const bool verdictPending =
      reason == RebuildReason::PossiblyOptimal || reason == RebuildReason::PossiblyUnbounded;
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
  const bool wasPhaseOne = phaseOne_;
  recompute(check && !e_.repaired);
  if (check && !e_.repaired) {
    e_.noteResiduals();
    e_.stability.noteRegularFactorization();
    if (!wasPhaseOne && !phaseOne_) {
      const Stability::Check answer = e_.checkObjective();
      if (answer == Stability::Check::Fail || answer == Stability::Check::Extend) return false;
      if (answer == Stability::Check::Refactor) {
        if (!e_.refactor()) return false;
        recompute(false);
      }
    }
  }
  e_.updatedObjective = e_.currentObjective();
  e_.valuesFollowed = pricing_.rule() != PricingRule::Partial;
  const bool invalid = !std::all_of(weight_.begin(), weight_.end(),
                                    [](double weight) { return weight > 0 && weight < kInf; });
  if (pricing_.check(e_.iterations) != PricingMode::Change::None || invalid) resetWeights();
  fillQueue();
  return true;
}

// Phase, costs and values from the factors; with compare against the updated ones.
template <class Real>
void PrimalSimplex<Real>::recompute(bool compare) {
  const bool wasPhaseOne = phaseOne_;
  e_.loadBasicBounds();
  e_.computePrimal();
  if (compare) e_.comparePrimal();
  phaseOne_ = false;
  for (int i = 0; i < e_.lp.m && !phaseOne_; ++i) phaseOne_ = phaseOneCost(i) != 0;
  if (phaseOne_) {
    e_.cost.assign(e_.lp.total(), Real(0));
    for (int i = 0; i < e_.lp.m; ++i) e_.cost[e_.head[i]] = Real(phaseOneCost(i));
  } else {
    e_.cost = e_.lp.cost;
  }
  e_.computeDual();
  if (compare && !wasPhaseOne && !phaseOne_) e_.compareDuals();
}

template <class Real>
int PrimalSimplex<Real>::phaseOneCost(BasisPos i) const {
  if (e_.xB[i] < e_.lB[i] - e_.primalTol) return -1;
  if (e_.xB[i] > e_.uB[i] + e_.primalTol) return 1;
  return 0;
}

template <class Real>
VarIndex PrimalSimplex<Real>::mostInfeasible() const {
  BasisPos worst = 0;
  const auto violation = [&](BasisPos i) {
    return std::max(e_.lB[i] - e_.xB[i], e_.xB[i] - e_.uB[i]);
  };
  for (int i = 1; i < e_.lp.m; ++i)
    if (violation(i) > violation(worst)) worst = i;
  return e_.head[worst];
}

template <class Real>
void PrimalSimplex<Real>::perturbBounds() {
  e_.boundsPerturbed = true;
  e_.valuesFollowed = false;
  e_.boundShift = ShiftState::Large;
  const double base = tuning::kBoundPerturbation;
  for (int j = 0; j < e_.lp.total(); ++j) {
    if (e_.lower[j] == e_.upper[j]) continue;
    const double r = base * (1.0 + e_.randomOf(j));
    if (e_.lower[j] != -kRealInf<Real>)
      e_.lower[j] -= Real(r) * std::max(Real(1), fabs(e_.lower[j]));
    if (e_.upper[j] != kRealInf<Real>)
      e_.upper[j] += Real(r) * std::max(Real(1), fabs(e_.upper[j]));
    e_.placeNonbasic(j);
  }
}

template <class Real>
RebuildReason PrimalSimplex<Real>::iterate() {
  while (true) {
    if (!e_.pollAndLog()) return RebuildReason::Limit;
    const VarIndex q = chooseColumn();
    if (q < 0) return RebuildReason::PossiblyOptimal;
    e_.ftranColumn(q, e_.column, true);
    if (!enteringDualAgrees(q)) {
      if (e_.updates > 0) return RebuildReason::PivotDisagreement;
      continue;
    }
    const RebuildReason reason = step(q);
    if (reason != RebuildReason::None) return reason;
    const int patience = e_.options.perturbAfter;
    if (!e_.boundsPerturbed && stalled_ > (patience < 0 ? kStalledIterations : patience)) {
      stalled_ = 0;
      perturbBounds();
      return RebuildReason::UpdateLimit;
    }
  }
}

// The reduced cost from the transformed column against the updated one. Takes the exact value;
// false when it is no longer attractive.
template <class Real>
bool PrimalSimplex<Real>::enteringDualAgrees(VarIndex q) {
  Real exact = e_.cost[q];
  const SparseVec<Real> &column = e_.column;
  const int count = column.valid() ? column.count : e_.lp.m;
  for (int k = 0; k < count; ++k) {
    const int i = column.valid() ? column.index[k] : k;
    exact -= e_.cost[e_.head[i]] * column.value[i];
  }
  e_.dual[q] = exact;
  setDualMerit(q);
  return queue_.merit(q) > 0;
}

template <class Real>
RebuildReason PrimalSimplex<Real>::step(VarIndex q) {
  const Real direction = e_.dual[q] < 0 ? Real(1) : Real(-1);
  const Choice choice = phaseOne_ ? phaseOneRatioTest(q, direction) : ratioTest(q, direction);
  if (choice.flip) {
    movePrimal(q, direction * choice.step);
    e_.move[q] = static_cast<signed char>(-e_.move[q]);
    e_.value[q] = e_.move[q] > 0 ? e_.lower[q] : e_.upper[q];
    if (phaseOne_) updatePhaseOneCosts(-1);
    setDualMerit(q);
    ++e_.iterations;
    stalled_ = 0;
    return RebuildReason::None;
  }
  if (choice.row < 0) {
    rayVar_ = q;
    rayDirection_ = direction;
    return RebuildReason::PossiblyUnbounded;
  }
  const BasisPos p = choice.row;
  const Real alpha = e_.column.value[p];
  const double before = e_.control->work.counted();
  e_.unitBtran(p);
  priceRow();
  pricing_.chargeRow(e_.control->work.counted() - before);
  if (fabs(e_.rowEntry(q) - alpha) >
          Real(tuning::kPivotAgreement) * std::max(Real(1e-2), fabs(alpha)) &&
      e_.updates > 0)
    return RebuildReason::PivotDisagreement;
  const VarIndex out = e_.head[p];
  Real length = choice.step;
  if (length == Real(0)) {
    length = shiftBound(choice, alpha);
    ++stalled_;
  } else {
    stalled_ = 0;
  }
  if (fabs(alpha) < Real(tuning::kTinyPivots * e_.options.pivotTol))
    e_.stability.tighten(kTinyPivotThreshold, e_.warnings());
  const Real entering = e_.value[q] + direction * length;
  movePrimal(q, direction * length);
  if (phaseOne_) updatePhaseOneCosts(p);
  updateDuals(q, p, alpha);
  updateWeights(q, p, alpha, out);
  const Real leavingDual = e_.dual[out];
  const UpdateResult updated = e_.changeBasis(q, p, choice.side, alpha);
  if (updated == UpdateResult::RefactorNow) {
    if (e_.updates == 0) {
      weight_[q] = std::max(weight_[q], 1.0) * 1e6;
      e_.stability.raise(std::min(0.9, e_.stability.markowitz() * 4));
    }
    return RebuildReason::UnsafeUpdate;
  }
  e_.dual[out] = leavingDual;
  e_.xB[p] = entering;
  if (phaseOne_) e_.cost[q] = 0;
  queue_.set(q, 0);
  setDualMerit(out);
  return updated == UpdateResult::RefactorSoon ? RebuildReason::UpdateLimit : RebuildReason::None;
}

template <class Real>
void PrimalSimplex<Real>::movePrimal(VarIndex q, Real signedStep) {
  e_.updatedObjective += e_.dual[q] * signedStep;
  const SparseVec<Real> &column = e_.column;
  const int count = column.valid() ? column.count : e_.lp.m;
  if (signedStep != Real(0)) {
    for (int k = 0; k < count; ++k) {
      const int i = column.valid() ? column.index[k] : k;
      e_.xB[i] -= signedStep * column.value[i];
    }
  }
  e_.chargeWork(3.0 * count);
}

// Basic variables that became feasible or infeasible change the phase-1 cost; the reduced costs
// follow by one more BTRAN and price with the change. The leaving variable's cost becomes 0.
template <class Real>
void PrimalSimplex<Real>::updatePhaseOneCosts(BasisPos leavingRow) {
  const SparseVec<Real> &column = e_.column;
  const int count = column.valid() ? column.count : e_.lp.m;
  costChange_.clear();
  for (int k = 0; k < count; ++k) {
    const int i = column.valid() ? column.index[k] : k;
    if (column.value[i] == Real(0)) continue;
    const Real wanted = i == leavingRow ? Real(0) : Real(phaseOneCost(i));
    Real &kept = e_.cost[e_.head[i]];
    if (wanted == kept) continue;
    costChange_.set(i, wanted - kept);
    kept = wanted;
  }
  e_.chargeWork(3.0 * count);
  if (costChange_.count == 0) return;
  e_.factor.btran(costChange_, e_.rhoDensity, e_.control->work);
  if (!costChange_.valid()) costChange_.rebuild(Real(1e-14));
  priceStructurals(costChange_, costRow_, e_.rowDensity);
  costRow_.forEach([&](int j, Real entry) {
    e_.dual[j] -= entry;
    setPricedMerit(j);
  });
  for (int k = 0; k < costChange_.count; ++k) {
    const VarIndex j = e_.lp.n + costChange_.index[k];
    if (e_.position[j] >= 0) continue;
    e_.dual[j] -= costChange_.value[costChange_.index[k]];
    setDualMerit(j);
  }
  e_.chargeWork(5.0 * (costRow_.passLength() + costChange_.count));
}

template <class Real>
void PrimalSimplex<Real>::updateDuals(VarIndex q, BasisPos p, Real alpha) {
  const Real thetaD = e_.dual[q] / alpha;
  e_.pivotRow.forEach([&](int j, Real entry) { e_.dual[j] -= thetaD * entry; });
  for (int k = 0; k < e_.rho.count; ++k) {
    const int i = e_.rho.index[k];
    if (e_.position[e_.lp.n + i] < 0) e_.dual[e_.lp.n + i] -= thetaD * e_.rho.value[i];
  }
  e_.dual[e_.head[p]] = -thetaD;
}

template class PrimalSimplex<double>;
template class PrimalSimplex<long double>;

}  // namespace tarvik
