#include "simplex/lu/forrest_tomlin.h"

#include <algorithm>
#include <cmath>

namespace tarvik::lu {

template <class Real>
void ForrestTomlin<Real>::reset(int m) {
  row_.clear();
  start_.assign(1, 0);
  index_.clear();
  value_.clear();
  spike_.owner = kept_.owner = -1;
  work_.resize(m);
}

template <class Real>
double ForrestTomlin<Real>::applyForward(SparseVec<Real> &x) const {
  const bool listed = x.valid();
  for (int k = 0; k < count(); ++k) {
    Real sum = 0;
    for (NzIndex n = start_[k]; n < start_[k + 1]; ++n) sum += value_[n] * x.value[index_[n]];
    if (sum == Real(0)) continue;
    Real &target = x.value[row_[k]];
    if (listed && target == Real(0)) x.index[x.count++] = row_[k];
    target += sum;
    if (target == Real(0)) target = SparseVec<Real>::kTiny;
  }
  return static_cast<double>(numNz()) + count();
}

template <class Real>
double ForrestTomlin<Real>::applyBackward(SparseVec<Real> &y) const {
  const bool listed = y.valid();
  double touched = count();
  for (int k = count() - 1; k >= 0; --k) {
    const Real source = y.value[row_[k]];
    if (source == Real(0)) continue;
    for (NzIndex n = start_[k]; n < start_[k + 1]; ++n) {
      const int i = index_[n];
      Real &target = y.value[i];
      if (listed && target == Real(0)) y.index[y.count++] = i;
      target += value_[n] * source;
      if (target == Real(0)) target = SparseVec<Real>::kTiny;
    }
    touched += static_cast<double>(start_[k + 1] - start_[k]);
  }
  return touched;
}

template <class Real>
void ForrestTomlin<Real>::Packed::pack(const SparseVec<Real> &x) {
  index.clear();
  value.clear();
  const int count = x.valid() ? x.count : x.size;
  for (int k = 0; k < count; ++k) {
    const int i = x.valid() ? x.index[k] : k;
    if (x.value[i] == Real(0)) continue;
    index.push_back(i);
    value.push_back(x.value[i]);
  }
}

template <class Real>
void ForrestTomlin<Real>::keepSpike(const SparseVec<Real> &x) {
  spike_.pack(x);
  spike_.owner = 0;
}

template <class Real>
void ForrestTomlin<Real>::keepRow(RowIndex p, const SparseVec<Real> &z) {
  kept_.pack(z);
  kept_.owner = p;
}

template <class Real>
UpdateCheck ForrestTomlin<Real>::update(RowIndex p, Real alpha, Real dropTol,
                                        LuFactors<Real> &factors, TriangularSolver<Real> &solver,
                                        double &work) {
  if (spike_.owner < 0) return UpdateCheck::Refused;
  if (kept_.owner != p) work += solveRow(p, dropTol, factors, solver);
  const Real expected = alpha * factors.pivot[p];
  const Real diagonal = newDiagonal(p);
  work += 3.0 * static_cast<double>(kept_.index.size() + spike_.index.size());
  const Real size = std::min(std::abs(expected), std::abs(diagonal));
  const Real error = std::abs(expected - diagonal);
  const Real bearable = Real(count() == 0 ? kFreshUpdateTol : kUpdateTol) * size;
  if (!(size > Real(kMinUpdatePivot)) || !(error <= bearable)) return UpdateCheck::Refused;

  work += replaceColumn(p, factors);
  factors.pivot[p] = diagonal;
  addTransformation(p, dropTol);
  spike_.owner = kept_.owner = -1;
  return error <= Real(kUpdateWarnTol) * size ? UpdateCheck::Good : UpdateCheck::Doubtful;
}

// Solves U'z = e_p scaled to z_p = 1.
template <class Real>
double ForrestTomlin<Real>::solveRow(RowIndex p, Real dropTol, const LuFactors<Real> &factors,
                                     TriangularSolver<Real> &solver) {
  work_.set(p, factors.pivot[p]);
  const double work = solver.template solve<Sweep::Forward>(factors.uRows, factors.pivot.data(),
                                                            dropTol, 0.0, work_);
  keepRow(p, work_);
  work_.clear();
  return work;
}

// Scales the kept row to the multipliers and applies them to the spike.
template <class Real>
Real ForrestTomlin<Real>::newDiagonal(RowIndex p) {
  const int length = static_cast<int>(kept_.index.size());
  int own = 0;
  while (own < length && kept_.index[own] != p) ++own;
  if (own == length) return Real(0);
  const Real scale = kept_.value[own];
  for (int k = 0; k < length; ++k) {
    kept_.value[k] /= scale;
    work_.value[kept_.index[k]] = kept_.value[k];
  }
  Real sum = 0;
  for (std::size_t k = 0; k < spike_.index.size(); ++k)
    sum += spike_.value[k] * work_.value[spike_.index[k]];
  for (const int i : kept_.index) work_.value[i] = Real(0);
  return sum;
}

// Takes column and row p out of U and puts the spike in as its last column.
template <class Real>
double ForrestTomlin<Real>::replaceColumn(RowIndex p, LuFactors<Real> &factors) {
  auto &cols = factors.uCols.vectors;
  auto &rows = factors.uRows.vectors;
  double touched = 0;
  const auto column = cols[p];
  for (NzIndex k = column.start; k < column.start + column.length; ++k) {
    touched += rows[cols.index()[k]].length;
    rows.remove(cols.index()[k], p);
  }
  cols.clear(p);
  const auto row = rows[p];
  for (NzIndex k = row.start; k < row.start + row.length; ++k) {
    touched += cols[rows.index()[k]].length;
    cols.remove(rows.index()[k], p);
  }
  rows.clear(p);
  cols.makeRoom(p, static_cast<int>(spike_.index.size()));
  for (std::size_t k = 0; k < spike_.index.size(); ++k) {
    const int i = spike_.index[k];
    if (i == p) continue;
    cols.put(p, i, spike_.value[k]);
    if (factors.uRows.place[i] < 0) factors.uRows.enlist(i);
    rows.append(i, p, spike_.value[k]);
  }
  factors.uCols.moveToEnd(p);
  factors.uRows.moveToEnd(p);
  return touched;
}

template <class Real>
void ForrestTomlin<Real>::addTransformation(RowIndex p, Real dropTol) {
  for (std::size_t k = 0; k < kept_.index.size(); ++k) {
    if (kept_.index[k] == p || std::abs(kept_.value[k]) <= dropTol) continue;
    index_.push_back(kept_.index[k]);
    value_.push_back(kept_.value[k]);
  }
  start_.push_back(static_cast<NzIndex>(index_.size()));
  row_.push_back(p);
}

template class ForrestTomlin<double>;
template class ForrestTomlin<long double>;

}  // namespace tarvik::lu
