// Pricing of the primal simplex: devex, steepest edge (both Forrest and Goldfarb 1992), and partial
// pricing, which looks at one section of the structurals until nothing in it is attractive.
#include <algorithm>
#include <cmath>

#include "simplex/primal_simplex.h"
#include "simplex/tuning.h"

namespace tarvik {

using std::fabs;

namespace {
// Automatic partial pricing is for models this much wider than high.
constexpr int kVeryWide = 20;
// Sections shorter than this are not worth their pass over the others.
constexpr int kShortestSection = 500;
}  // namespace

template <class Real>
void PrimalSimplex<Real>::choosePricing() {
  const int m = e_.lp.m, n = e_.lp.n;
  const int option = e_.options.pricing;
  PricingRule rule = option < 0 ? PricingRule::Devex : static_cast<PricingRule>(option);
  const int partial = e_.options.primalPartial;
  if (option < 0 && (partial == 2 || (partial == 1 && n / kVeryWide > m)))
    rule = PricingRule::Partial;
  pricing_.start(rule, m, n);
  sections_ = 1;
  if (rule == PricingRule::Partial)
    sections_ = std::clamp(static_cast<int>(std::pow(m, 0.45)), 1, 1 + n / kShortestSection);
  section_ = 0;
  sectionBegin_ = 0;
  sectionEnd_ = n / sections_;
  if (sections_ == 1) sectionEnd_ = n;
  resetWeights();
}

template <class Real>
void PrimalSimplex<Real>::resetWeights() {
  const int total = e_.lp.total();
  devexErrors_ = 0;
  weight_.assign(total, 1.0);
  inReference_.assign(total, 0);
  for (int j = 0; j < total; ++j) {
    inReference_[j] = e_.position[j] < 0;
    if (pricing_.rule() == PricingRule::SteepestExact) weight_[j] = initialNorm(j);
  }
}

// The norm of an edge from the slack basis, by the formula that NormAdjust selects.
template <class Real>
double PrimalSimplex<Real>::initialNorm(VarIndex j) const {
  double sum = 0, squares = 0, largest = 0;
  e_.lp.forColumn(j, [&](int, Real entry) {
    const double a = std::fabs(static_cast<double>(entry));
    sum += a;
    squares += a * a;
    largest = std::max(largest, a);
  });
  switch (e_.options.normAdjust) {
    case 1:
      return 1 + sum * sum;
    case 2:
      return 1 + largest * largest;
    case 3:
      return 1;
    default:
      return 1 + squares;
  }
}

template <class Real>
void PrimalSimplex<Real>::setDualMerit(VarIndex j) {
  if (sections_ > 1 && j < e_.lp.n && (j < sectionBegin_ || j >= sectionEnd_)) return;
  const Real violation = e_.dualInfeasibility(j);
  queue_.set(
      j, violation > e_.dualTol ? static_cast<double>(violation * violation) / weight_[j] : 0.0);
}

// The same for a structural of a priced row, which is neither basic nor fixed: most of what an
// iteration of a wide model does.
template <class Real>
void PrimalSimplex<Real>::setPricedMerit(ColIndex j) {
  const Real d = e_.dual[j];
  const int move = e_.move[j];
  const Real violation = move > 0 ? -d : move < 0 ? d : fabs(d);
  queue_.set(
      j, violation > e_.dualTol ? static_cast<double>(violation * violation) / weight_[j] : 0.0);
}

template <class Real>
void PrimalSimplex<Real>::fillQueue() {
  for (int j = 0; j < e_.lp.total(); ++j) setDualMerit(j);
  e_.chargeWork(3.0 * e_.lp.total());
}

// The best candidate of the open section, else of the next one that has any.
template <class Real>
VarIndex PrimalSimplex<Real>::chooseColumn() {
  for (int tried = 0; tried <= sections_; ++tried) {
    const VarIndex q = queue_.best();
    e_.chargeWork(queue_.lastScan());
    if (q >= 0 || sections_ == 1) return q;
    openSection((section_ + 1) % sections_);
  }
  return -1;
}

// Reduced costs from the multipliers that the logicals hold.
template <class Real>
void PrimalSimplex<Real>::openSection(int section) {
  for (int j = sectionBegin_; j < sectionEnd_; ++j) queue_.set(j, 0);
  const int n = e_.lp.n;
  section_ = section;
  sectionBegin_ = static_cast<int>(static_cast<std::int64_t>(n) * section / sections_);
  sectionEnd_ = static_cast<int>(static_cast<std::int64_t>(n) * (section + 1) / sections_);
  double touched = 0;
  for (int j = sectionBegin_; j < sectionEnd_; ++j) {
    if (e_.position[j] >= 0) continue;
    Real d = e_.cost[j];
    e_.lp.forColumn(j, [&](int i, Real a) {
      d -= a * (e_.cost[n + i] - e_.dual[n + i]);
      touched += 1;
    });
    e_.dual[j] = d;
    setDualMerit(j);
  }
  e_.chargeWork(4.0 * touched);
}

// rho' A over the structurals whose duals are kept up to date.
template <class Real>
void PrimalSimplex<Real>::priceStructurals(const SparseVec<Real> &rho, SparseVec<Real> &row,
                                           double density) {
  if (sections_ == 1) {
    e_.rows.price(rho, row, density, e_.control->work);
    return;
  }
  row.clear();
  double touched = 0;
  for (int j = sectionBegin_; j < sectionEnd_; ++j) {
    if (!e_.rows.isActive(j)) continue;
    Real sum = 0;
    e_.lp.forColumn(j, [&](int i, Real a) {
      sum += a * rho.value[i];
      touched += 1;
    });
    if (sum != Real(0)) row.set(j, sum);
  }
  e_.chargeWork(4.0 * touched);
}

template <class Real>
void PrimalSimplex<Real>::priceRow() {
  priceStructurals(e_.rho, e_.pivotRow, e_.rowDensity);
  if (sections_ == 1) e_.updateDensity(e_.rowDensity, e_.pivotRow);
}

template <class Real>
void PrimalSimplex<Real>::updateWeights(VarIndex q, BasisPos p, Real alpha, VarIndex out) {
  if (pricing_.steepest())
    updateSteepest(q, p, alpha, out);
  else if (pricing_.rule() == PricingRule::Devex)
    updateDevex(q, p, alpha, out);
  else
    refreshMerits();
}

template <class Real>
void PrimalSimplex<Real>::refreshMerits() {
  e_.pivotRow.forEach([&](int j, Real) { setPricedMerit(j); });
  for (int k = 0; k < e_.rho.count; ++k) setDualMerit(e_.lp.n + e_.rho.index[k]);
  e_.chargeWork(5.0 * (e_.pivotRow.passLength() + e_.rho.count));
}

// w_j := w_j - 2 r_j sigma_j + r_j^2 w_q with r = pivot row / alpha and sigma_j = a_j'B^-T column,
// at least r_j^2 + 1, which the new edge has from the leaving variable alone.
template <class Real>
void PrimalSimplex<Real>::updateSteepest(VarIndex q, BasisPos p, Real alpha, VarIndex out) {
  const double before = e_.control->work.counted();
  SparseVec<Real> &multipliers = e_.work2;
  multipliers.copyFrom(e_.column);
  double exact = 1;
  const int count = e_.column.valid() ? e_.column.count : e_.lp.m;
  for (int k = 0; k < count; ++k) {
    const double a =
        static_cast<double>(e_.column.value[e_.column.valid() ? e_.column.index[k] : k]);
    exact += a * a;
  }
  e_.factor.btran(multipliers, e_.weightDensity, e_.control->work);
  e_.updateDensity(e_.weightDensity, multipliers);
  if (!multipliers.valid()) multipliers.rebuild(Real(1e-14));
  e_.rows.price(multipliers, costRow_, e_.rowDensity, e_.control->work);
  pricing_.chargeNorms(e_.control->work.counted() - before);
  const auto update = [&](VarIndex j, Real entry, Real sigma) {
    const double r = static_cast<double>(entry / alpha);
    const double updated = weight_[j] + r * (r * exact - 2 * static_cast<double>(sigma));
    weight_[j] = std::max(updated, 1 + r * r);
  };
  e_.pivotRow.forEach([&](int j, Real entry) {
    update(j, entry, costRow_.value[j]);
    setPricedMerit(j);
  });
  for (int k = 0; k < e_.rho.count; ++k) {
    const int i = e_.rho.index[k];
    const VarIndex j = e_.lp.n + i;
    if (!e_.canEnter(j)) continue;
    update(j, e_.rho.value[i], multipliers.value[i]);
    setDualMerit(j);
  }
  weight_[out] = std::max(exact / static_cast<double>(alpha * alpha), 1.0);
  weight_[q] = 1.0;
  multipliers.clear();
  e_.chargeWork(5.0 * (e_.pivotRow.passLength() + e_.rho.count) + 3.0 * count);
}

// Devex reference weights, with the exact reference weight of the entering variable; too many
// large errors start a new reference framework.
template <class Real>
void PrimalSimplex<Real>::updateDevex(VarIndex q, BasisPos p, Real alpha, VarIndex out) {
  const SparseVec<Real> &column = e_.column;
  const int count = column.valid() ? column.count : e_.lp.m;
  double exact = inReference_[q];
  for (int k = 0; k < count; ++k) {
    const int i = column.valid() ? column.index[k] : k;
    if (inReference_[e_.head[i]]) {
      const double a = static_cast<double>(column.value[i]);
      exact += a * a;
    }
  }
  exact = std::max(exact, 1.0);
  if (weight_[q] > tuning::kDevexErrorFactor * exact) ++devexErrors_;
  const double pivotWeight = exact / static_cast<double>(alpha * alpha);
  const auto raise = [&](VarIndex j, Real entry) {
    const double a = static_cast<double>(entry);
    weight_[j] = std::max(weight_[j], a * a * pivotWeight + inReference_[j]);
  };
  e_.pivotRow.forEach([&](int j, Real entry) {
    raise(j, entry);
    setPricedMerit(j);
  });
  for (int k = 0; k < e_.rho.count; ++k) {
    const int i = e_.rho.index[k];
    const VarIndex j = e_.lp.n + i;
    if (!e_.canEnter(j)) continue;
    raise(j, e_.rho.value[i]);
    setDualMerit(j);
  }
  weight_[out] = std::max(1.0, pivotWeight);
  weight_[q] = 1.0;
  e_.chargeWork(5.0 * (e_.pivotRow.passLength() + e_.rho.count) + 3.0 * count);
  if (devexErrors_ > tuning::kDevexMaxErrors) {
    resetWeights();
    fillQueue();
  }
}

template class PrimalSimplex<double>;
template class PrimalSimplex<long double>;

}  // namespace tarvik
