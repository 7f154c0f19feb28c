// The squared norms of several rows of the inverse of the basis at once: steepest-edge weights that
// were guessed and turn out wrong come in groups, and one sweep over the factors serves all of a
// group. The rows' values lie side by side, so that an entry of the factors is read once and
// multiplied by all of them. That pays while the rows are not hyper-sparse: the sweep passes over
// the whole pivot order.
#pragma once

#include <array>

#include "simplex/lu/forrest_tomlin.h"
#include "simplex/lu/lu_factors.h"

namespace tarvik::lu {

inline constexpr int kMaxRowNorms = 8;

template <class Real>
class RowNorms {
 public:
  // norm[k] becomes the squared norm of the row of B^-1 that belongs to pivot p[k], for at most
  // kMaxRowNorms pivots. Returns the number of entries touched.
  double compute(const LuFactors<Real> &factors, const ForrestTomlin<Real> &updates,
                 const BasisPos *p, int count, double *norm);

 private:
  using Lanes = std::array<Real, kMaxRowNorms>;

  template <bool forward>
  double sweep(const Triangle<Real> &triangle, const Real *pivot);
  void reach(int i) {
    pattern_[count_] = i;
    count_ += static_cast<int>(!mark_[i]);
    mark_[i] = 1;
  }

  // Zero between calls, but for the pattern.
  Vec<Lanes> value_;
  Vec<char> mark_;
  RawVec<int> pattern_;  // reached entries; one spare place, as reach() writes before it knows
  int count_ = 0;
};

extern template class RowNorms<double>;
extern template class RowNorms<long double>;

}  // namespace tarvik::lu
