#include "simplex/lu/triangular_solve.h"

#include <cmath>

namespace tarvik::lu {

template <class Real>
void TriangularSolver<Real>::resize(int m) {
  const std::size_t size = static_cast<std::size_t>(m);
  mark_.assign(size, 0);
  pattern_.resize(size);
  stackNode_.resize(size);
  stackNext_.resize(size);
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
    const bool found = findPattern(triangle, x, budget);
    work = searched_;
    if (found) return work + solvePattern(triangle.vectors, pivot, dropTol, x);
  }
  return work + length + solvePlain<sweep>(triangle, pivot, dropTol, x);
}

// Finds the positions that the entries of x reach; false, and nothing marked, when the search
// has taken more than its budget.
template <class Real>
bool TriangularSolver<Real>::findPattern(const Triangle<Real> &triangle, const SparseVec<Real> &x,
                                         double budget) {
  patternBegin_ = x.size;
  searched_ = 0;
  for (int k = 0; k < x.count; ++k) {
    const int root = x.index[k];
    if (mark_[root]) continue;
    if (!visit(triangle.vectors, root, budget)) {
      undoMarks();
      return false;
    }
  }
  searched_ += x.count;
  return true;
}

// Depth-first search from one position; false when the budget is used up, with the open nodes
// on the stack.
template <class Real>
bool TriangularSolver<Real>::visit(const PackedVectors<Real> &vectors, int root, double budget) {
  const int *const index = vectors.index();
  mark_[root] = 1;
  depth_ = 0;
  stackNode_[0] = root;
  stackNext_[0] = vectors[root].start;
  while (depth_ >= 0) {
    const int node = stackNode_[depth_];
    const NzIndex begin = stackNext_[depth_];
    const NzIndex end = vectors[node].start + vectors[node].length;
    NzIndex k = begin;
    int child = -1;
    for (; k < end && child < 0; ++k) {
      const int i = index[k];
      if (mark_[i]) continue;
      mark_[i] = 1;
      if (vectors[i].length == 0)
        pattern_[--patternBegin_] = i;
      else
        child = i;
    }
    searched_ += static_cast<double>(k - begin);
    if (child < 0) {
      pattern_[--patternBegin_] = node;
      --depth_;
    } else if (searched_ > budget) {
      mark_[child] = 0;
      return false;
    } else {
      stackNext_[depth_] = k;
      ++depth_;
      stackNode_[depth_] = child;
      stackNext_[depth_] = vectors[child].start;
    }
  }
  return searched_ <= budget;
}

template <class Real>
void TriangularSolver<Real>::undoMarks() {
  for (std::size_t k = patternBegin_; k < pattern_.size(); ++k) mark_[pattern_[k]] = 0;
  for (; depth_ >= 0; --depth_) mark_[stackNode_[depth_]] = 0;
}

template <class Real>
double TriangularSolver<Real>::solvePattern(const PackedVectors<Real> &vectors, const Real *pivot,
                                            Real dropTol, SparseVec<Real> &x) {
  const int *const index = vectors.index();
  const Real *const value = vectors.value();
  Real *const result = x.value.data();
  double touched = 0;
  int count = 0;
  for (int n = patternBegin_; n < x.size; ++n) {
    const int p = pattern_[n];
    mark_[p] = 0;
    Real xp = result[p];
    if (pivot != nullptr) xp /= pivot[p];
    if (std::abs(xp) <= dropTol) {
      result[p] = Real(0);
      continue;
    }
    result[p] = xp;
    x.index[count++] = p;
    const auto slice = vectors[p];
    for (NzIndex k = slice.start; k < slice.start + slice.length; ++k)
      result[index[k]] -= value[k] * xp;
    touched += slice.length;
  }
  x.count = count;
  return touched + (x.size - patternBegin_);
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
    for (NzIndex k = slice.start; k < slice.start + slice.length; ++k)
      result[index[k]] -= value[k] * xp;
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
