// The row-wise copy of the scaled matrix for forming pivot rows. Each row is partitioned: the
// entries of columns that can enter the basis (nonbasic and not fixed) stand first, the others
// behind, so that a pivot row never touches what the ratio test would skip. Two cross-reference
// arrays between the column-wise and the row-wise copy make a basis change cost O(column length).
// A loose copy goes without partition and arrays: it is made in a third of the time, for solves
// that may end after a few iterations.
#pragma once

#include "base/solve_control.h"
#include "simplex/scaled_lp.h"
#include "simplex/sparse_vec.h"

namespace tarvik {

template <class Real>
class RowMatrix {
 public:
  // Copies the matrix; active[j] says whether column j belongs to the front part.
  void build(const ScaledLp<Real> &lp, const Vec<char> &active);
  void buildLoose(const ScaledLp<Real> &lp, const Vec<char> &active);
  bool built() const { return lp_ != nullptr; }
  bool loose() const { return loose_; }
  void forget() { lp_ = nullptr; }
  // Moves a column's entries to the front (active) or back part of their rows.
  void setActive(ColIndex j, bool active) {
    if ((active_[j] != 0) == active) return;
    active_[j] = active;
    if (!loose_) moveColumn(j, active);
  }
  bool isActive(ColIndex j) const { return active_[j] != 0; }

  // row = rho' A over the active columns. Rows of A when rho is sparse, columns otherwise. A dense
  // result comes without its list and with rounding noise in place of some zeros. Returns an
  // upper bound on the density of the result, for the caller's running average.
  double price(const SparseVec<Real> &rho, SparseVec<Real> &row, double expectedDensity,
               WorkMeter &work) const;

 private:
  double priceByRows(const SparseVec<Real> &rho, SparseVec<Real> &row, bool keepList,
                     WorkMeter &work) const;
  double priceByCols(const SparseVec<Real> &rho, SparseVec<Real> &row, WorkMeter &work) const;
  void countRows(const ScaledLp<Real> &lp, const Vec<char> &active);
  void dropInactive(SparseVec<Real> &row) const;
  void moveColumn(ColIndex j, bool active);
  void swapEntries(NzIndex a, NzIndex b);

  const ScaledLp<Real> *lp_ = nullptr;
  bool loose_ = false;
  Vec<NzIndex> start_, activeEnd_;  // per row: begin, and end of its active part
  RawVec<int> col_;
  RawVec<Real> value_;
  // 32 bits suffice: an interface error stops models with two billion entries long before.
  RawVec<std::uint32_t> place_;   // column-wise entry -> row-wise entry
  RawVec<std::uint32_t> origin_;  // row-wise entry -> column-wise entry
  Vec<char> active_;
};

extern template class RowMatrix<double>;
extern template class RowMatrix<long double>;

}  // namespace tarvik
