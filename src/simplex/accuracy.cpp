// What a refactorization reveals: values updated over many iterations against the same values
// from fresh factors, the residuals of the fresh ones, and the objective both ways.
#include <algorithm>
#include <cmath>
#include <limits>

#include "simplex/engine.h"

namespace tarvik {

using std::fabs;

template <class Real>
void Engine<Real>::keepUpdatedValues() {
  keptDual_ = dual;
  keptPrimal_.assign(lp.total(), Real(0));
  for (int i = 0; i < lp.m; ++i) keptPrimal_[head[i]] = xB[i];
  keptInfeasibility_ = primalInfeasibilitySum();
  seen_ = {};
  seen_.scale = 1;
}

// Changes are kept in units of the rounding error of the largest value.
template <class Real>
void Engine<Real>::noteChange(Real change, Real largest) {
  const Real unit = std::numeric_limits<Real>::epsilon() * (1 + largest);
  seen_.change = std::max(seen_.change, static_cast<double>(change / unit));
}

template <class Real>
void Engine<Real>::compareDuals() {
  Real change = 0, largest = 0;
  for (int j = 0; j < lp.total(); ++j) {
    if (!canEnter(j)) continue;
    change = std::max(change, fabs(dual[j] - keptDual_[j]));
    largest = std::max(largest, fabs(dual[j]));
  }
  noteChange(change, largest);
  chargeWork(3.0 * lp.total());
}

template <class Real>
void Engine<Real>::comparePrimal() {
  Real change = 0, largest = 0;
  for (int i = 0; i < lp.m; ++i) {
    change = std::max(change, fabs(xB[i] - keptPrimal_[head[i]]));
    largest = std::max(largest, fabs(xB[i]));
  }
  noteChange(change, largest);
  const Real loss = primalInfeasibilitySum() - keptInfeasibility_;
  stability.statistics.feasibilityLoss.add(static_cast<double>(std::max(loss, Real(0))));
  chargeWork(3.0 * lp.m);
}

// Largest residual of A x + s = 0, relative to the largest value.
template <class Real>
Real Engine<Real>::primalResidual() {
  SparseVec<Real> &sum = work1;
  sum.clear();
  Real largest = 0;
  double touched = lp.total();
  for (int j = 0; j < lp.total(); ++j) {
    const Real x = position[j] >= 0 ? xB[position[j]] : value[j];
    if (x == Real(0)) continue;
    largest = std::max(largest, fabs(x));
    lp.forColumn(j, [&](int i, Real a) {
      sum.value[i] += a * x;
      touched += 1;
    });
  }
  Real residual = 0;
  for (int i = 0; i < lp.m; ++i) residual = std::max(residual, fabs(sum.value[i]));
  sum.count = -1;
  sum.clear();
  chargeWork(3 * touched);
  return residual / (1 + largest);
}

// Largest reduced cost that a basic variable would have, relative to the largest dual value.
template <class Real>
Real Engine<Real>::dualResidual() {
  const auto multiplier = [&](int i) { return cost[lp.n + i] - dual[lp.n + i]; };
  Real largest = 0, residual = 0;
  for (int i = 0; i < lp.m; ++i) largest = std::max(largest, fabs(multiplier(i)));
  double touched = 2.0 * lp.m;
  for (int p = 0; p < lp.m; ++p) {
    Real sum = cost[head[p]];
    lp.forColumn(head[p], [&](int i, Real a) {
      sum -= a * multiplier(i);
      touched += 1;
    });
    residual = std::max(residual, fabs(sum));
  }
  chargeWork(3 * touched);
  return residual / (1 + largest);
}

template <class Real>
void Engine<Real>::noteResiduals() {
  const double primalError = static_cast<double>(primalResidual());
  const double dualError = static_cast<double>(dualResidual());
  stability.statistics.primalResidual.add(primalError);
  stability.statistics.dualResidual.add(dualError);
  seen_.residual = std::max(primalError, dualError);
  stability.noteDiscrepancy(seen_, warnings());
}

template <class Real>
Stability::Check Engine<Real>::checkObjective() {
  return stability.checkObjective(static_cast<double>(currentObjective()),
                                  static_cast<double>(updatedObjective),
                                  sizeof(Real) > sizeof(double));
}

template class Engine<double>;
template class Engine<long double>;

}  // namespace tarvik
