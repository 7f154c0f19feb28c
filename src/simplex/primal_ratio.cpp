// Ratio tests of the primal simplex. Phase 2: two passes (Harris 1973), the second one taking the
// largest pivot among rows that block within the tolerance; a row that is already past its bound
// gets its bound shifted instead of a backward step. Phase 1: the sum of infeasibilities is
// piecewise linear in the step; breakpoints are passed while its slope stays negative.
#include <algorithm>
#include <cmath>

#include "simplex/primal_simplex.h"
#include "simplex/tuning.h"

namespace tarvik {

using std::fabs;

template <class Real>
typename PrimalSimplex<Real>::Choice PrimalSimplex<Real>::ratioTest(VarIndex q, Real direction) {
  const SparseVec<Real> &column = e_.column;
  const int count = column.valid() ? column.count : e_.lp.m;
  const Real pivotTol = e_.rowPivotTol();
  const Real tol = e_.primalTol;
  Real relaxed = kRealInf<Real>;
  for (int k = 0; k < count; ++k) {
    const int i = column.valid() ? column.index[k] : k;
    const Real a = direction * column.value[i];
    if (a > pivotTol) {
      if (e_.lB[i] != -kRealInf<Real>) relaxed = std::min(relaxed, (e_.xB[i] - e_.lB[i] + tol) / a);
    } else if (a < -pivotTol) {
      if (e_.uB[i] != kRealInf<Real>) relaxed = std::min(relaxed, (e_.xB[i] - e_.uB[i] - tol) / a);
    }
  }
  e_.chargeWork(5.0 * count);
  Choice choice;
  const Real range = e_.upper[q] - e_.lower[q];
  if (e_.move[q] != 0 && range <= relaxed && range < kRealInf<Real>) {
    choice.flip = true;
    choice.step = range;
    return choice;
  }
  if (relaxed == kRealInf<Real>) return choice;
  choice.longest = std::max(relaxed, Real(0));
  Real largest = 0;
  for (int k = 0; k < count; ++k) {
    const int i = column.valid() ? column.index[k] : k;
    const Real a = direction * column.value[i];
    Real step;
    int side;
    if (a > pivotTol && e_.lB[i] != -kRealInf<Real>) {
      step = (e_.xB[i] - e_.lB[i]) / a;
      side = -1;
    } else if (a < -pivotTol && e_.uB[i] != kRealInf<Real>) {
      step = (e_.xB[i] - e_.uB[i]) / a;
      side = 1;
    } else {
      continue;
    }
    if (step > relaxed || fabs(a) <= largest) continue;
    largest = fabs(a);
    choice.row = i;
    choice.side = side;
    choice.step = std::max(step, Real(0));
  }
  return choice;
}

template <class Real>
typename PrimalSimplex<Real>::Choice PrimalSimplex<Real>::phaseOneRatioTest(VarIndex q,
                                                                            Real direction) {
  const SparseVec<Real> &column = e_.column;
  const int count = column.valid() ? column.count : e_.lp.m;
  const Real pivotTol = Real(std::max(e_.options.pivotTol, e_.updates < tuning::kOldUpdates
                                                               ? tuning::kRowPivotTolFresh
                                                               : tuning::kRowPivotTolUsed));
  const Real tol = e_.primalTol;
  breakpoints_.clear();
  for (int k = 0; k < count; ++k) {
    const int i = column.valid() ? column.index[k] : k;
    const Real a = direction * column.value[i];
    const Real size = fabs(a);
    if (size <= pivotTol) continue;
    const Real x = e_.xB[i], lo = e_.lB[i], up = e_.uB[i];
    if (a > 0) {
      if (x > up + tol) breakpoints_.push_back({(x - up) / size, size, i, 1});
      if (x >= lo - tol && lo != -kRealInf<Real>)
        breakpoints_.push_back({std::max(Real(0), x - lo) / size, size, i, -1});
    } else {
      if (x < lo - tol) breakpoints_.push_back({(lo - x) / size, size, i, -1});
      if (x <= up + tol && up != kRealInf<Real>)
        breakpoints_.push_back({std::max(Real(0), up - x) / size, size, i, 1});
    }
  }
  e_.chargeWork(5.0 * count);
  std::sort(breakpoints_.begin(), breakpoints_.end(), [](const Breakpoint &a, const Breakpoint &b) {
    return a.step != b.step ? a.step < b.step : a.size != b.size ? a.size > b.size : a.row < b.row;
  });
  Choice choice;
  const Real range = e_.move[q] != 0 ? e_.upper[q] - e_.lower[q] : kRealInf<Real>;
  Real slope = -fabs(e_.dual[q]);
  Real largest = 0;
  int last = -1;
  const int size = static_cast<int>(breakpoints_.size());
  for (int k = 0; k < size && slope < 0; ++k) {
    if (breakpoints_[k].step > range) break;
    slope += breakpoints_[k].size;
    largest = std::max(largest, breakpoints_[k].size);
    last = k;
  }
  if (slope < 0 && range < kRealInf<Real>) {
    choice.flip = true;
    choice.step = range;
    return choice;
  }
  if (last < 0) return choice;
  int chosen = last;
  while (chosen > 0 && breakpoints_[chosen].size < Real(0.1) * largest) --chosen;
  const Breakpoint &point = breakpoints_[chosen];
  choice.row = point.row;
  choice.side = point.side;
  choice.step = point.step;
  return choice;
}

// The working bound that a blocking row has passed within the tolerance moves a little beyond the
// row's value, so that the pivot makes a short step forward instead of a backward one; those of a
// fixed variable only onto its value (crashed models took four times as many iterations). Returns
// the step.
template <class Real>
Real PrimalSimplex<Real>::shiftBound(const Choice &choice, Real alpha) {
  const BasisPos p = choice.row;
  const VarIndex j = e_.head[p];
  const Real sign = Real(choice.side);  // of the way out of the bounds
  Real &bound = choice.side < 0 ? e_.lower[j] : e_.upper[j];
  const Real passed = (e_.xB[p] - bound) * sign;
  if (!(passed > 0)) return 0;
  const bool fixed = e_.lower[j] == e_.upper[j];
  const Real excess = fixed ? Real(0) : Real(std::floor(200 * e_.randomOf(j)) / 1000);
  const Real step = std::min(excess * passed / fabs(alpha), choice.longest);
  const Real target = e_.xB[p] + sign * step * fabs(alpha);
  if (fixed)
    e_.lower[j] = e_.upper[j] = e_.lB[p] = e_.uB[p] = target;
  else
    bound = (choice.side < 0 ? e_.lB[p] : e_.uB[p]) = target;
  const ShiftState state =
      passed < Real(0.001) * e_.primalTol ? ShiftState::Small : ShiftState::Large;
  if (static_cast<int>(state) > static_cast<int>(e_.boundShift)) e_.boundShift = state;
  return step;
}

template class PrimalSimplex<double>;
template class PrimalSimplex<long double>;

}  // namespace tarvik
