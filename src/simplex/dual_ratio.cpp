// The bound-flipping ratio test. Passing the breakpoint of a boxed variable flips it to its other
// bound and lowers the slope of the dual objective by |alpha| x range; the step ends where the
// slope would turn negative. Breakpoints within the dual tolerance of each other form a group
// (Harris 1973), of which the largest pivot is taken; an earlier group with a much larger pivot
// wins over a later one (Maros 2003; Koberstein 2005).
#include <algorithm>
#include <cmath>

#include "base/multiversion.h"
#include "simplex/dual_simplex.h"
#include "simplex/tuning.h"

namespace tarvik {

using std::fabs;

namespace {

constexpr int kBlock = 32;
constexpr int kChunkBlocks = 64;

// Whether any of a block of variables at their bounds lies within reach of the step: the ratio
// test's filter without a branch per variable.
template <class Real>
inline bool blockInReach(const Real *row, const Real *dual, const signed char *move, Real sign,
                         Real pivotTol, Real reach) {
  int hits = 0;
  for (int k = 0; k < kBlock; ++k) {
    const Real direction = sign * Real(move[k]);
    const Real alpha = row[k] * direction;
    hits += static_cast<int>((alpha > pivotTol) & (dual[k] * Real(move[k]) <= reach * alpha));
  }
  return hits != 0;
}

// Marks the blocks that hold candidates; reach may be infinite.
TARVIK_SIMD void findBlocks(const double *row, const double *dual, const signed char *move,
                            int blocks, double sign, double pivotTol, double reach, char *mark) {
  for (int b = 0; b < blocks; ++b)
    mark[b] =
        blockInReach(row + b * kBlock, dual + b * kBlock, move + b * kBlock, sign, pivotTol, reach);
}

[[maybe_unused]] void findBlocks(const long double *row, const long double *dual,
                                 const signed char *move, int blocks, long double sign,
                                 long double pivotTol, long double reach, char *mark) {
  for (int b = 0; b < blocks; ++b)
    mark[b] =
        blockInReach(row + b * kBlock, dual + b * kBlock, move + b * kBlock, sign, pivotTol, reach);
}

}  // namespace

template <class Real>
void DualSimplex<Real>::collectCandidates(Real sign) {
  const Real pivotTol = e_.rowPivotTol();
  candidates_.clear();
  const Real tol = e_.dualTol;
  // No step passes a variable without an opposite bound: what lies beyond the nearest one so far
  // is not kept.
  Real reach = kRealInf<Real>;
  const auto consider = [&](VarIndex j, Real entry) {
    const int move = e_.move[j];
    const Real alpha = move != 0 ? sign * entry * Real(move) : fabs(entry);
    if (alpha <= pivotTol) return;
    // Drift beyond the tolerance counts as the tolerance, so that no ratio is negative.
    const Real slack = move != 0 ? std::max(e_.dual[j] * Real(move), -tol) : Real(0);
    if (slack > reach * alpha) return;
    candidates_.push_back({j, alpha, slack, width_[j]});
    if (width_[j] == kRealInf<Real> && slack + tol < reach * alpha) reach = (slack + tol) / alpha;
  };
  if (e_.pivotRow.valid()) {
    for (int k = 0; k < e_.pivotRow.count; ++k) {
      const int j = e_.pivotRow.index[k];
      consider(j, e_.pivotRow.value[j]);
    }
  } else {
    // Chunk by chunk, so that the reach found so far filters what follows.
    const Real *row = e_.pivotRow.value.data();
    char mark[kChunkBlocks];
    int j = 0;
    for (; j + kChunkBlocks * kBlock <= e_.lp.n; j += kChunkBlocks * kBlock) {
      findBlocks(row + j, e_.dual.data() + j, e_.move.data() + j, kChunkBlocks, sign, pivotTol,
                 reach, mark);
      for (int b = 0; b < kChunkBlocks; ++b) {
        if (!mark[b]) continue;
        const int first = j + b * kBlock;
        for (int k = first; k < first + kBlock; ++k)
          if (row[k] != Real(0) && e_.move[k] != 0) consider(k, row[k]);
      }
    }
    for (; j < e_.lp.n; ++j)
      if (row[j] != Real(0) && e_.move[j] != 0) consider(j, row[j]);
    for (const VarIndex free : freeNonbasic_)
      if (e_.canEnter(free)) consider(free, row[free]);
  }
  for (int k = 0; k < e_.rho.count; ++k) {
    const int i = e_.rho.index[k];
    const VarIndex j = e_.lp.n + i;
    if (e_.canEnter(j)) consider(j, e_.rho.value[i]);
  }
  e_.chargeWork(4.0 * (e_.pivotRow.passLength() + e_.rho.count));
}

// Orders the candidates that the step can reach into groups; returns the index of the group to
// pivot in. groupStart_ has one more entry than groups.
template <class Real>
int DualSimplex<Real>::selectBreakGroup(Real slope) {
  const Real tol = e_.dualTol;
  const int size = static_cast<int>(candidates_.size());
  Real theta = kRealInf<Real>;
  for (const Candidate &c : candidates_) theta = std::min(theta, (c.slack + tol) / c.alpha);

  // Coarse selection: grow the step bound tenfold until the slope is used up.
  int chosen = 0;
  Real reached = 0;
  Real bound = Real(10) * theta + Real(1e-7);
  while (true) {
    for (int k = chosen; k < size; ++k) {
      if (candidates_[k].slack > bound * candidates_[k].alpha) continue;
      reached += candidates_[k].alpha * candidates_[k].range;
      std::swap(candidates_[k], candidates_[chosen++]);
    }
    e_.chargeWork(2.0 * (size - chosen));
    if (reached >= slope || chosen == size) break;
    bound *= Real(10);
  }
  const auto begin = candidates_.begin();
  std::sort(begin, begin + chosen, [](const Candidate &a, const Candidate &b) {
    const Real left = a.slack * b.alpha, right = b.slack * a.alpha;
    return left != right ? left < right : a.var < b.var;
  });
  suffixTheta_.resize(chosen);
  Real least = kRealInf<Real>;
  for (int k = chosen - 1; k >= 0; --k) {
    least = std::min(least, (candidates_[k].slack + tol) / candidates_[k].alpha);
    suffixTheta_[k] = least;
  }
  groupStart_.clear();
  groupStart_.push_back(0);
  reached = 0;
  int next = 0;
  while (next < chosen) {
    const Real groupTheta = suffixTheta_[next];
    const int first = next;
    while (next < chosen &&
           (next == first || candidates_[next].slack <= groupTheta * candidates_[next].alpha)) {
      reached += candidates_[next].alpha * candidates_[next].range;
      ++next;
    }
    groupStart_.push_back(next);
    if (reached >= slope) break;
  }
  e_.chargeWork(4.0 * chosen);

  const int groups = static_cast<int>(groupStart_.size()) - 1;
  Real overall = 0;
  for (int k = 0; k < groupStart_[groups]; ++k) overall = std::max(overall, candidates_[k].alpha);
  const Real wanted = std::min(Real(0.1) * overall, Real(1));
  for (int g = groups - 1; g >= 0; --g) {
    Real largest = 0;
    for (int k = groupStart_[g]; k < groupStart_[g + 1]; ++k)
      largest = std::max(largest, candidates_[k].alpha);
    if (largest >= wanted) return g;
  }
  return 0;
}

// The score of a candidate: logicals count half, those of added rows a little less; types that
// would put continuous columns first are not known here.
template <class Real>
Real DualSimplex<Real>::ratioWeight(VarIndex j) const {
  if (j < e_.lp.n) return Real(1);
  const Real w = j - e_.lp.n < e_.loadedRows ? Real(1) : Real(0.9375);
  return (Real(0.3) * w + Real(0.7)) * Real(0.5);
}

// The pivot in a group of ties: the largest one, or the smallest relaxed ratio by score among the
// pivots that are not much smaller than the largest.
template <class Real>
int DualSimplex<Real>::choosePivot(int group) const {
  const int first = groupStart_[group], end = groupStart_[group + 1];
  int best = first;
  for (int k = first + 1; k < end; ++k) {
    const Candidate &c = candidates_[k], &b = candidates_[best];
    if (c.alpha > b.alpha || (c.alpha == b.alpha && e_.randomOf(c.var) > e_.randomOf(b.var)))
      best = k;
  }
  if (!e_.options.weighRatios) return best;
  const Real least = Real(tuning::kTiedPivotShare) * candidates_[best].alpha;
  const auto cost = [&](const Candidate &c) {
    return (std::max(c.slack, Real(0)) + e_.dualTol) / (c.alpha * ratioWeight(c.var));
  };
  Real lowest = cost(candidates_[best]);
  for (int k = first; k < end; ++k) {
    if (candidates_[k].alpha < least) continue;
    if (const Real own = cost(candidates_[k]); own < lowest) {
      lowest = own;
      best = k;
    }
  }
  return best;
}

// The entering variable is infeasible within the tolerance: a shift makes the step positive, not
// longer than the ratio test allows, instead of negative.
template <class Real>
void DualSimplex<Real>::makeStepPositive(VarIndex q, int group, Real alpha) {
  const Real violation = fabs(e_.dual[q]);
  const bool small = e_.smallViolation(q, violation);
  const Real longest = std::max(suffixTheta_[groupStart_[group]], Real(0)) * alpha;
  const Real target = std::min(e_.shiftExcess(q, small) * violation, longest);
  e_.shiftCost(q, target * Real(e_.move[q]) - e_.dual[q],
               small ? ShiftState::Small : ShiftState::Large);
}

template <class Real>
VarIndex DualSimplex<Real>::chooseColumn(BasisPos p) {
  flipped_.clear();
  flipDelta_.clear();
  const Real delta = e_.xB[p] < e_.lB[p] ? e_.xB[p] - e_.lB[p] : e_.xB[p] - e_.uB[p];
  const Real sign = delta < 0 ? Real(-1) : Real(1);
  collectCandidates(sign);
  if (candidates_.empty()) return -1;
  const int group = selectBreakGroup(fabs(delta));
  const int best = choosePivot(group);
  const VarIndex q = candidates_[best].var;
  if (candidates_[best].slack <= 0) makeStepPositive(q, group, candidates_[best].alpha);
  thetaD_ = e_.dual[q] / e_.rowEntry(q);
  flipGroupsBefore(group);
  if (e_.options.flipBeyondStep && thetaD_ != Real(0)) flipWithin(group, best, fabs(delta));
  return q;
}

template <class Real>
void DualSimplex<Real>::flipGroupsBefore(int group) {
  for (int k = 0; k < groupStart_[group]; ++k) {
    const VarIndex j = candidates_[k].var;
    if (e_.move[j] == 0 || candidates_[k].range == kRealInf<Real>) continue;
    flipped_.push_back(j);
  }
}

// Boxed variables that a step passes within the pivot's own group, as long as the slope of the dual
// objective stays positive without them.
template <class Real>
void DualSimplex<Real>::flipWithin(int group, int pivot, Real slope) {
  const Real step = fabs(thetaD_);
  for (int k = 0; k < groupStart_[group]; ++k) slope -= candidates_[k].alpha * candidates_[k].range;
  for (int k = groupStart_[group]; k < groupStart_[group + 1]; ++k) {
    const Candidate &c = candidates_[k];
    if (k == pivot || e_.move[c.var] == 0 || c.slack >= step * c.alpha) continue;
    if (!(slope > c.alpha * c.range)) continue;
    slope -= c.alpha * c.range;
    flipped_.push_back(c.var);
  }
}

// Moves the flipped variables to their other bounds and takes their effect out of the basics.
template <class Real>
void DualSimplex<Real>::applyFlips() {
  if (flipped_.empty()) return;
  SparseVec<Real> &sum = e_.work1;
  sum.clear();
  for (const VarIndex j : flipped_) {
    const Real from = e_.value[j];
    e_.move[j] = static_cast<signed char>(-e_.move[j]);
    e_.value[j] = e_.move[j] > 0 ? e_.lower[j] : e_.upper[j];
    const Real change = e_.value[j] - from;
    e_.updatedObjective += e_.dual[j] * change;
    e_.lp.forColumn(j, [&](int i, Real a) { sum.add(i, a * change); });
  }
  e_.factor.ftran(sum, e_.flipDensity, e_.control->work);
  e_.updateDensity(e_.flipDensity, sum);
  const int count = sum.valid() ? sum.count : e_.lp.m;
  for (int k = 0; k < count; ++k) {
    const int i = sum.valid() ? sum.index[k] : k;
    if (sum.value[i] == Real(0)) continue;
    e_.xB[i] -= sum.value[i];
    setInfeasibility(i);
  }
  sum.clear();
  flipped_.clear();
  e_.chargeWork(4.0 * count);
}

template class DualSimplex<double>;
template class DualSimplex<long double>;

}  // namespace tarvik
