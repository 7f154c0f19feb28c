// What a refactorization reveals: values updated over many iterations against the same values
// from fresh factors, the residuals of the fresh ones, and the objective both ways.
#include <algorithm>
#include <cmath>
#include <limits>

#include "simplex/engine.h"

namespace tarvik {

using std::fabs;

namespace {
// Rounding errors that a value carries after an ordinary solve with the factors, in epsilons.
constexpr int kOrdinaryErrors = 64;
// Steps of the norm estimate; two or three are the rule.
constexpr int kNormSteps = 5;
}  // namespace

template <class Real>
void Engine<Real>::keepUpdatedValues() {
  keptDual_ = dual;
  keptPrimal_.assign(lp.total(), Real(0));
  for (int i = 0; i < lp.m; ++i) keptPrimal_[head[i]] = xB[i];
  keptInfeasibility_ = primalInfeasibilitySum();
  seen_ = {};
  seen_.scale = 1;
}

// Changes are kept in units of the ordinary error of the largest value.
template <class Real>
void Engine<Real>::noteChange(Real change, Real largest) {
  const Real unit = kOrdinaryErrors * std::numeric_limits<Real>::epsilon() * (1 + largest);
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
  double entries = lp.total();
  for (int j = 0; j < lp.total(); ++j) {
    const Real x = position[j] >= 0 ? xB[position[j]] : value[j];
    if (x == Real(0)) continue;
    largest = std::max(largest, fabs(x));
    lp.forColumn(j, [&](int i, Real a) {
      sum.value[i] += a * x;
      entries += 1;
    });
  }
  Real residual = 0;
  for (int i = 0; i < lp.m; ++i) residual = std::max(residual, fabs(sum.value[i]));
  sum.count = -1;
  sum.clear();
  chargeWork(3 * entries);
  return residual / (1 + largest);
}

// Largest reduced cost that a basic variable would have, relative to the largest dual value.
template <class Real>
Real Engine<Real>::dualResidual() {
  const auto multiplier = [&](int i) { return cost[lp.n + i] - dual[lp.n + i]; };
  Real largest = 0, residual = 0;
  for (int i = 0; i < lp.m; ++i) largest = std::max(largest, fabs(multiplier(i)));
  double entries = 2.0 * lp.m;
  for (int p = 0; p < lp.m; ++p) {
    Real sum = cost[head[p]];
    lp.forColumn(head[p], [&](int i, Real a) {
      sum -= a * multiplier(i);
      entries += 1;
    });
    residual = std::max(residual, fabs(sum));
  }
  chargeWork(3 * entries);
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

// An estimate from below of the 1-norm condition number of the scaled basis matrix: the norm of the
// inverse by a few steps of ascent (Hager 1984; Higham 1988).
template <class Real>
double Engine<Real>::conditionEstimate() {
  const int m = lp.m;
  if (m == 0 || !factored) return 1;
  Real basisNorm = 0;
  for (int p = 0; p < m; ++p) {
    Real sum = 0;
    lp.forColumn(head[p], [&](int, Real a) { sum += fabs(a); });
    basisNorm = std::max(basisNorm, sum);
  }
  SparseVec<Real> &x = work1;
  x.clear();
  for (int i = 0; i < m; ++i) x.value[i] = Real(1) / m;
  x.count = -1;
  Real inverseNorm = 0;
  int last = -1;
  for (int step = 0; step < kNormSteps; ++step) {
    factor.ftran(x, 1.0, control->work);
    Real norm = 0;
    for (int i = 0; i < m; ++i) norm += fabs(x.value[i]);
    if (norm <= inverseNorm) break;
    inverseNorm = norm;
    for (int i = 0; i < m; ++i) x.value[i] = x.value[i] < 0 ? Real(-1) : Real(1);
    x.count = -1;
    factor.btran(x, 1.0, control->work);
    int largest = 0;
    for (int i = 1; i < m; ++i)
      if (fabs(x.value[i]) > fabs(x.value[largest])) largest = i;
    if (largest == last) break;
    last = largest;
    x.count = -1;
    x.clear();
    x.set(largest, Real(1));
  }
  x.count = -1;
  x.clear();
  chargeWork(3.0 * kNormSteps * m);
  return static_cast<double>(basisNorm * inverseNorm);
}

template class Engine<double>;
template class Engine<long double>;

}  // namespace tarvik
