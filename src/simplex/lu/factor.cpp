// Puts the pieces together: the phases of a factorization, the parts of a solve, and the
// bookkeeping that says when factoring again is worth its price.
#include "simplex/lu/factor.h"

#include <cmath>

#include "simplex/lu/forrest_tomlin.h"
#include "simplex/lu/lu_factors.h"
#include "simplex/lu/nucleus.h"
#include "simplex/lu/row_norms.h"
#include "simplex/lu/singletons.h"
#include "simplex/lu/triangular_solve.h"

namespace tarvik {

using lu::Sweep;

template <class Real>
struct Factor<Real>::Impl {
  const SparseMatrix *columns = nullptr;
  const RawVec<Real> *values = nullptr;
  int m = 0;
  FactorOptions options;
  FactorStats stats;

  lu::LuFactors<Real> factors;
  lu::Singletons<Real> singletons;
  lu::Nucleus<Real> nucleus;
  lu::TriangularSolver<Real> solver;
  lu::ForrestTomlin<Real> updates;
  lu::RowNorms<Real> norms;

  void factor(Vec<VarIndex> &head, SingularRepair &repair);
  void repairRows(SingularRepair &repair);
  void startStats(const Vec<VarIndex> &head);
  double ftran(SparseVec<Real> &x, double expectedDensity, bool keepSpike);
  double btran(SparseVec<Real> &y, double expectedDensity, double listDensity);
  void settle(SparseVec<Real> &x, double &work, double listDensity) const;
  double chargeSolve(double lWork, double rWork, double uWork);
  bool wantsRefactor() const;
};

template <class Real>
void Factor<Real>::Impl::factor(Vec<VarIndex> &head, SingularRepair &repair) {
  lu::BasisMatrix<Real> matrix;
  matrix.start = columns->start.data();
  matrix.index = columns->index.data();
  matrix.value = values->data();
  matrix.numCols = columns->numMajor;
  matrix.numRows = m;
  repair.dropped.clear();
  repair.row.clear();
  stats = FactorStats();
  factors.reset(m);
  solver.resize(m);
  updates.reset(m);

  const Real pivotTol = static_cast<Real>(options.pivotTol);
  singletons.run(matrix, head, pivotTol, factors);
  stats.kernelDim = static_cast<int>(singletons.left().size());
  if (stats.kernelDim > 0)
    nucleus.factor(matrix, singletons.left(),
                   {static_cast<Real>(options.markowitzTol), pivotTol,
                    static_cast<Real>(options.dropTol), options.pairLimit},
                   factors);
  repairRows(repair);
  factors.finish();
  for (int i = 0; i < m; ++i) head[i] = factors.basicVar[i];
  startStats(head);
}

// No pivot column has reached the rows that are left, so that their logicals, put last, stay
// unit columns.
template <class Real>
void Factor<Real>::Impl::repairRows(SingularRepair &repair) {
  if (factors.dropped.empty()) return;
  repair.dropped.assign(factors.dropped.begin(), factors.dropped.end());
  for (RowIndex row = 0; row < m; ++row) {
    if (factors.pivoted(row)) continue;
    factors.addLogical(row, columns->numMajor + row);
    repair.row.push_back(row);
  }
}

template <class Real>
void Factor<Real>::Impl::startStats(const Vec<VarIndex> &head) {
  for (const VarIndex var : head)
    stats.basisNz += var < columns->numMajor ? columns->length(var) : 1;
  stats.freshNz = factors.lCols.vectors.numNz() + factors.uCols.vectors.numNz() + m;
  stats.factorNz = stats.freshNz;
  stats.factorWork = factors.work + lu::kUnitsGather * m;
}

template <class Real>
double Factor<Real>::Impl::ftran(SparseVec<Real> &x, double expectedDensity, bool keepSpike) {
  const Real dropTol = static_cast<Real>(options.dropTol);
  double lWork = solver.template solve<Sweep::Forward>(factors.lCols, nullptr, dropTol,
                                                       options.symbolicL ? 0.0 : 1.0, x);
  const double rWork = updates.applyForward(x);
  if (keepSpike) {
    updates.keepSpike(x);
    lWork += x.valid() ? x.count : m;
  }
  const double uWork = solver.template solve<Sweep::Backward>(factors.uCols, factors.pivot.data(),
                                                              dropTol, expectedDensity, x);
  settle(x, lWork, lu::kListDensity);
  return chargeSolve(lWork, rWork, uWork);
}

template <class Real>
double Factor<Real>::Impl::btran(SparseVec<Real> &y, double expectedDensity, double listDensity) {
  const Real dropTol = static_cast<Real>(options.dropTol);
  const int unit = y.count == 1 ? y.index[0] : -1;
  const double uWork =
      solver.template solve<Sweep::Forward>(factors.uRows, factors.pivot.data(), dropTol, 0.0, y);
  double lWork = 0;
  // With a large diagonal the multipliers of an update would suffer from the drop tolerance.
  if (unit >= 0 && y.value[unit] != Real(0) &&
      std::abs(factors.pivot[unit]) <= Real(lu::kMaxKeptPivot)) {
    updates.keepRow(unit, y);
    lWork += y.valid() ? y.count : m;
  }
  const double rWork = updates.applyBackward(y);
  lWork += solver.template solve<Sweep::Backward>(factors.lRows, nullptr, dropTol,
                                                  options.symbolicL ? expectedDensity : 1.0, y);
  settle(y, lWork, listDensity);
  return chargeSolve(lWork, rWork, uWork);
}

// Makes the list of a result that plain loops have left without one, if it is worth having. The
// loop is written without a branch on the values, which nobody could predict.
template <class Real>
void Factor<Real>::Impl::settle(SparseVec<Real> &x, double &work, double listDensity) const {
  if (x.valid()) return;
  const Real dropTol = static_cast<Real>(options.dropTol);
  Real *const value = x.value.data();
  int *const index = x.index.data();
  const int size = m;
  int count = 0;
  for (int i = 0; i < size; ++i) {
    const int keep = static_cast<int>(!(std::abs(value[i]) <= dropTol));
    index[count] = i;
    count += keep;
    value[i] *= static_cast<Real>(keep);
  }
  x.count = count > listDensity * m ? -1 : count;
  work += m;
}

// Counts what the updates since the last factorization have cost this solve: the row
// transformations and the share of U that was not there.
template <class Real>
double Factor<Real>::Impl::chargeSolve(double lWork, double rWork, double uWork) {
  if (stats.updates > 0 && stats.factorNz > 0) {
    const double freshShare = static_cast<double>(stats.freshNz) / stats.factorNz;
    const double extra = rWork + (freshShare < 1 ? (1 - freshShare) * uWork : 0.0);
    stats.solveWork += lu::kUnitsSolve * extra;
  }
  return lu::kUnitsSolve * (lWork + rWork + uWork);
}

// The rebuild that follows a factorization, a dense FTRAN and BTRAN and the product with all
// columns, counts as a part of its price.
template <class Real>
bool Factor<Real>::Impl::wantsRefactor() const {
  if (stats.updates >= options.maxUpdates) return true;
  if (stats.updates < lu::kMinUpdates) return false;
  const double rebuild = lu::kUnitsSolve * (2.0 * static_cast<double>(stats.freshNz) +
                                            static_cast<double>(columns->numNz()) + 4.0 * m);
  return stats.solveWork > stats.factorWork + rebuild ||
         static_cast<double>(stats.factorNz) > lu::kMaxGrowth * static_cast<double>(stats.freshNz);
}

template <class Real>
Factor<Real>::Factor() : impl_(std::make_unique<Impl>()) {}
template <class Real>
Factor<Real>::~Factor() = default;
template <class Real>
Factor<Real>::Factor(Factor &&) noexcept = default;
template <class Real>
Factor<Real> &Factor<Real>::operator=(Factor &&) noexcept = default;

template <class Real>
void Factor<Real>::setup(const SparseMatrix *columns, const RawVec<Real> *values, int m) {
  impl_->columns = columns;
  impl_->values = values;
  impl_->m = m;
}

template <class Real>
FactorOptions &Factor<Real>::options() {
  return impl_->options;
}

template <class Real>
void Factor<Real>::factor(Vec<VarIndex> &head, SingularRepair &repair, WorkMeter &work) {
  impl_->factor(head, repair);
  work.charge(impl_->stats.factorWork);
}

template <class Real>
void Factor<Real>::ftran(SparseVec<Real> &x, double expectedDensity, WorkMeter &work,
                         bool keepSpike) {
  work.charge(impl_->ftran(x, expectedDensity, keepSpike));
}

template <class Real>
void Factor<Real>::btran(SparseVec<Real> &y, double expectedDensity, WorkMeter &work) {
  work.charge(impl_->btran(y, expectedDensity, lu::kListDensity));
}

template <class Real>
void Factor<Real>::btranListed(SparseVec<Real> &y, double expectedDensity, WorkMeter &work) {
  work.charge(impl_->btran(y, expectedDensity, 1.0));
}

template <class Real>
void Factor<Real>::rowNorms(const BasisPos *p, int count, double *norm, WorkMeter &work) {
  work.charge(lu::kUnitsRowNorms *
              impl_->norms.compute(impl_->factors, impl_->updates, p, count, norm));
}

template <class Real>
UpdateResult Factor<Real>::update(BasisPos p, Real alpha, WorkMeter &work) {
  Impl &impl = *impl_;
  double touched = 0;
  const lu::UpdateCheck check = impl.updates.update(
      p, alpha, static_cast<Real>(impl.options.dropTol), impl.factors, impl.solver, touched);
  work.charge(lu::kUnitsSolve * touched);
  impl.stats.solveWork += lu::kUnitsSolve * touched;
  if (check == lu::UpdateCheck::Refused) return UpdateResult::RefactorNow;
  ++impl.stats.updates;
  impl.stats.factorNz = impl.factors.lCols.vectors.numNz() + impl.factors.uCols.vectors.numNz() +
                        impl.updates.numNz() + impl.m;
  const bool soon = check == lu::UpdateCheck::Doubtful || impl.wantsRefactor();
  return soon ? UpdateResult::RefactorSoon : UpdateResult::Ok;
}

template <class Real>
const FactorStats &Factor<Real>::stats() const {
  return impl_->stats;
}

template class Factor<double>;
template class Factor<long double>;

}  // namespace tarvik
