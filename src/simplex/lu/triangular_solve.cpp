#include "simplex/lu/triangular_solve.h"

#include <cmath>

namespace tarvik::lu {

namespace {

// result -= factor * (a sparse vector).
template <class Real>
inline void subtractMultiple(const int *__restrict index, const Real *__restrict value, int length,
                             Real factor, Real *__restrict result) {
#pragma GCC unroll 4
  for (int k = 0; k < length; ++k) result[index[k]] -= value[k] * factor;
}

}  // namespace

template <class Real>
void TriangularSolver<Real>::resize(int m) {
  const std::size_t size = static_cast<std::size_t>(m);
  mark_.assign(size, 0);
  pattern_.resize(size);
  stack_.resize(size);
}

template <class Real>
template <Sweep sweep>
double TriangularSolver<Real>::solve(const Triangle<Real> &triangle, const Real *pivot,
                                     Real dropTol, double expectedDensity, SparseVec<Real> &x) {
  const double length = static_cast<double>(triangle.order.size());
  if (length == 0) return 0;
  double work = 0;
  if (x.valid() && x.count <= kSparseRhsDensity * x.size &&
      expectedDensity <= kSparseResultDensity) {
    const double budget = kSearchBudget * length + kSearchBudget * kSearchBudget * x.size;
    const bool found = findPattern(triangle.vectors, x, budget);
    work = searched_;
    if (found) return work + solvePattern(triangle.vectors, pivot, dropTol, x);
  }
  return work + length + solvePlain<sweep>(triangle, pivot, dropTol, x);
}

// Finds the positions that the entries of x reach; false, and nothing marked, when the search
// has taken more than its budget.
template <class Real>
bool TriangularSolver<Real>::findPattern(const PackedVectors<Real> &vectors,
                                         const SparseVec<Real> &x, double budget) {
  const char *const filled = vectors.filled();
  patternBegin_ = x.size;
  searched_ = 0;
  for (int k = 0; k < x.count; ++k) {
    const int root = x.index[k];
    if (mark_[root]) continue;
    mark_[root] = 1;
    if (!filled[root]) {
      pattern_[--patternBegin_] = root;
    } else if (!visit(vectors, root, budget)) {
      undoMarks();
      return false;
    }
  }
  searched_ += x.count;
  return true;
}

// Depth-first search from one position; false when the budget is used up, with the open nodes
// on the stack. Members are copied to locals because a store to a mark may alias them.
template <class Real>
bool TriangularSolver<Real>::visit(const PackedVectors<Real> &vectors, int root, double budget) {
  const int *const index = vectors.index();
  const char *const filled = vectors.filled();
  const auto *const slice = vectors.slices();
  char *const mark = mark_.data();
  int *pattern = pattern_.data() + patternBegin_;
  OpenNode *const bottom = stack_.data();
  OpenNode *top = bottom;
  NzIndex left = static_cast<NzIndex>(budget - searched_);
  top->node = root;
  top->next = slice[root].start;
  top->end = top->next + slice[root].length;
  left -= slice[root].length;
  while (top >= bottom && left >= 0) {
    NzIndex k = top->next;
    const NzIndex end = top->end;
    int child = -1;
    for (; k < end; ++k) {
      const int i = index[k];
      if (mark[i]) continue;
      mark[i] = 1;
      if (filled[i]) {
        child = i;
        ++k;
        break;
      }
      *--pattern = i;
    }
    if (child < 0) {
      *--pattern = top->node;
      --top;
    } else {
      top->next = k;
      ++top;
      top->node = child;
      top->next = slice[child].start;
      top->end = top->next + slice[child].length;
      left -= slice[child].length;
    }
  }
  patternBegin_ = static_cast<int>(pattern - pattern_.data());
  depth_ = static_cast<int>(top - bottom);
  searched_ = budget - static_cast<double>(left);
  return left >= 0;
}

template <class Real>
void TriangularSolver<Real>::undoMarks() {
  for (std::size_t k = patternBegin_; k < pattern_.size(); ++k) mark_[pattern_[k]] = 0;
  for (; depth_ >= 0; --depth_) mark_[stack_[depth_].node] = 0;
}

template <class Real>
double TriangularSolver<Real>::solvePattern(const PackedVectors<Real> &vectors, const Real *pivot,
                                            Real dropTol, SparseVec<Real> &x) {
  const int *const index = vectors.index();
  const Real *const value = vectors.value();
  const char *const filled = vectors.filled();
  Real *const result = x.value.data();
  int *listed = x.index.data();
  NzIndex touched = 0;
  for (int n = patternBegin_; n < x.size; ++n) mark_[pattern_[n]] = 0;
  for (int n = patternBegin_; n < x.size; ++n) {
    const int p = pattern_[n];
    Real xp = result[p];
    if (pivot != nullptr) xp /= pivot[p];
    if (std::abs(xp) <= dropTol) {
      result[p] = Real(0);
      continue;
    }
    result[p] = xp;
    *listed++ = p;
    if (!filled[p]) continue;
    const auto slice = vectors[p];
    subtractMultiple(index + slice.start, value + slice.start, slice.length, xp, result);
    touched += slice.length;
  }
  x.count = static_cast<int>(listed - x.index.data());
  return static_cast<double>(touched + (x.size - patternBegin_));
}

template <class Real>
template <Sweep sweep>
double TriangularSolver<Real>::solvePlain(const Triangle<Real> &triangle, const Real *pivot,
                                          Real dropTol, SparseVec<Real> &x) {
  const auto &vectors = triangle.vectors;
  const int *const index = vectors.index();
  const Real *const value = vectors.value();
  Real *const result = x.value.data();
  const int length = static_cast<int>(triangle.order.size());
  double touched = 0;
  for (int n = 0; n < length; ++n) {
    const int p = triangle.order[sweep == Sweep::Forward ? n : length - 1 - n];
    if (p < 0) continue;
    Real xp = result[p];
    if (xp == Real(0)) continue;
    if (pivot != nullptr) xp /= pivot[p];
    if (std::abs(xp) <= dropTol) {
      result[p] = Real(0);
      continue;
    }
    result[p] = xp;
    const auto slice = vectors[p];
    subtractMultiple(index + slice.start, value + slice.start, slice.length, xp, result);
    touched += slice.length;
  }
  x.count = -1;
  return touched;
}

template class TriangularSolver<double>;
template class TriangularSolver<long double>;
template double TriangularSolver<double>::solve<Sweep::Forward>(const Triangle<double> &,
                                                                const double *, double, double,
                                                                SparseVec<double> &);
template double TriangularSolver<double>::solve<Sweep::Backward>(const Triangle<double> &,
                                                                 const double *, double, double,
                                                                 SparseVec<double> &);
template double TriangularSolver<long double>::solve<Sweep::Forward>(const Triangle<long double> &,
                                                                     const long double *,
                                                                     long double, double,
                                                                     SparseVec<long double> &);
template double TriangularSolver<long double>::solve<Sweep::Backward>(const Triangle<long double> &,
                                                                      const long double *,
                                                                      long double, double,
                                                                      SparseVec<long double> &);

}  // namespace tarvik::lu
