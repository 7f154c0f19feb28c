#include "simplex/engine.h"

#include <algorithm>
#include <cmath>

#include "lp/scaling.h"
#include "simplex/tuning.h"

namespace tarvik {

using std::fabs;

namespace {
// Entries of factors count as zero below this share of the zero tolerance: many add up.
constexpr double kDropShare = 0.1;
}  // namespace

template <class Real>
void Engine<Real>::loadProblem(const LpModel &model, Scaling scaling) {
  lp.load(model, std::move(scaling));
  randomValue.clear();
  iterations = 0;
  setupEntries = static_cast<double>(lp.cols.numNz());
  loadedRows = lp.m;
  setWorkRate();
}

template <class Real>
void Engine<Real>::drawRandomValues() {
  randomValue.resize(lp.total());
  Random random(static_cast<std::uint64_t>(options.seed) + 1);
  for (double &r : randomValue) r = random.uniform();
}

template <class Real>
void Engine<Real>::load(const LpModel &model) {
  loadProblem(model, computeScaling(model, options.scaleFlag));
  slackBasis();
}

template <class Real>
void Engine<Real>::loadForBasis(const LpModel &model, const Scaling *known) {
  loadProblem(model, known ? completeScaling(model, options.scaleFlag, *known)
                           : computeScaling(model, options.scaleFlag, tuning::kWarmSpread));
  const int total = lp.total(), m = lp.m;
  cost = lp.cost;
  position.clear();
  move.assign(total, 0);
  for (Vec<Real> *v : {&value, &dual}) v->assign(total, Real(0));
  for (Vec<Real> *v : {&xB, &lB, &uB}) v->assign(m, Real(0));
  resizeScratch();
  rows.forget();
  const double nonzeros = static_cast<double>(lp.cols.numNz());
  columnPrices_ =
      static_cast<int>(tuning::kRowCopyCost * nonzeros / (2 * nonzeros + 6.0 * lp.n + 1));
  factor.setup(&lp.cols, &lp.value, lp.m);
  factored = false;
}

template <class Real>
void Engine<Real>::setWorkRate() {
  workRate = sizeof(Real) > sizeof(double) ? 1.95 : 1.3;
  if (lp.m > 10000) workRate *= std::sqrt(std::log10(lp.m / 1000.0));
}

template <class Real>
void Engine<Real>::resizeScratch() {
  rho.resize(lp.m);
  column.resize(lp.m);
  work1.resize(lp.m);
  work2.resize(lp.m);
  pivotRow.resize(lp.n);
}

template <class Real>
template <class Other>
void Engine<Real>::convertFrom(const Engine<Other> &other) {
  static_cast<EngineState &>(*this) = other;
  lp.convertFrom(other.lp);
  const auto copy = [](Vec<Real> &to, const Vec<Other> &from) {
    to.assign(from.begin(), from.end());
  };
  copy(lower, other.lower);
  copy(upper, other.upper);
  copy(cost, other.cost);
  copy(value, other.value);
  copy(dual, other.dual);
  copy(xB, other.xB);
  copy(lB, other.lB);
  copy(uB, other.uB);
  copy(certificateRow, other.certificateRow);
  copy(rayDirection, other.rayDirection);
  primalTol = static_cast<Real>(other.primalTol);
  dualTol = static_cast<Real>(other.dualTol);
  resizeScratch();
  setWorkRate();
  rebuildRows();
}

template <class Real>
void Engine<Real>::slackBasis() {
  forgetValues();
  held.clear();
  const int total = lp.total(), m = lp.m;
  lower = lp.lower;
  upper = lp.upper;
  cost = lp.cost;
  head.resize(m);
  position.assign(total, -1);
  move.assign(total, 0);
  value.assign(total, Real(0));
  dual.assign(total, Real(0));
  for (int i = 0; i < m; ++i) {
    head[i] = lp.n + i;
    position[lp.n + i] = i;
  }
  for (int j = 0; j < total; ++j) placeNonbasic(j);
  xB.assign(m, Real(0));
  lB.assign(m, Real(0));
  uB.assign(m, Real(0));
  rowWeight.assign(m, 1.0);
  rowWeightsValid = true;
  resizeScratch();
  rebuildRows();
}

template <class Real>
void Engine<Real>::rebuildRows() {
  buildRows();
  factor.setup(&lp.cols, &lp.value, lp.m);
  factored = false;
}

template <class Real>
void Engine<Real>::buildRows() {
  rows.build(lp, enteringColumns());
}

template <class Real>
Vec<char> Engine<Real>::enteringColumns() const {
  Vec<char> active(lp.n);
  for (int j = 0; j < lp.n; ++j) active[j] = canEnter(j);
  return active;
}

template <class Real>
void Engine<Real>::placeNonbasic(VarIndex j) {
  if (position[j] >= 0) {
    move[j] = 0;
    return;
  }
  const Real lo = lower[j], up = upper[j];
  if (lo == up) {
    move[j] = 0;
    value[j] = lo;
  } else if (lo == -kRealInf<Real> && up == kRealInf<Real>) {
    move[j] = 0;
    if (!std::isfinite(static_cast<double>(value[j]))) value[j] = 0;
  } else if (lo == -kRealInf<Real>) {
    move[j] = -1;
    value[j] = up;
  } else if (up == kRealInf<Real>) {
    move[j] = 1;
    value[j] = lo;
  } else {
    // Boxed: keep the side; without one prefer the side that the cost likes, else the one
    // nearer to zero.
    if (move[j] == 0) {
      if (cost[j] != Real(0))
        move[j] = cost[j] > 0 ? 1 : -1;
      else
        move[j] = fabs(lo) <= fabs(up) ? 1 : -1;
    }
    value[j] = move[j] > 0 ? lo : up;
  }
}

template <class Real>
void Engine<Real>::resetWorkingBounds() {
  lower = lp.lower;
  upper = lp.upper;
  if (!held.empty() && control)
    if (Log *log = warnings()) log->print("Release temp fixing\n");
  held.clear();
  for (int j = 0; j < lp.total(); ++j) {
    placeNonbasic(j);
    syncActive(j);
  }
  boundsPerturbed = false;
  boundShift = ShiftState::None;
  valuesFollowed = false;
  loadBasicBounds();
}

template <class Real>
void Engine<Real>::resetWorkingCosts() {
  cost = lp.cost;
  costsPerturbed = false;
  costShift = ShiftState::None;
  valuesFollowed = false;
}

template <class Real>
void Engine<Real>::noteDoubtfulPivot(int k) {
  if (k <= 3) return;
  stability.shrinkInterval();
  stability.tighten(k <= 10 ? 0.125 : 0.25, warnings());
}

template <class Real>
void Engine<Real>::loadBasicBounds() {
  for (int i = 0; i < lp.m; ++i) {
    lB[i] = lower[head[i]];
    uB[i] = upper[head[i]];
  }
}

template <class Real>
void Engine<Real>::permuteWeights(const Vec<VarIndex> &oldHead) {
  oldWeight_.assign(lp.m, 1.0);
  oldWeight_.swap(rowWeight);
  for (int i = 0; i < lp.m; ++i)
    if (const BasisPos p = position[oldHead[i]]; p >= 0) rowWeight[p] = oldWeight_[i];
}

// Dependent variables go to their bounds. False when there were too many repairs.
template <class Real>
bool Engine<Real>::applyRepair(const SingularRepair &repair) {
  for (const VarIndex out : repair.dropped) {
    position[out] = -1;
    move[out] = 0;
    placeNonbasic(out);
  }
  const auto answer =
      stability.noteRepair(static_cast<int>(repair.dropped.size()), iterations > 0, warnings());
  if (answer == Stability::Repair::Stop) return false;
  if (answer == Stability::Repair::GoOn) return hold(repair.dropped);
  slackBasis();
  SingularRepair none;
  factor.factor(head, none, control->work);
  return true;
}

// What made a basis singular would soon be chosen again: it is fixed until the working bounds are
// reset. False when too many are.
template <class Real>
bool Engine<Real>::hold(const Vec<VarIndex> &dropped) {
  if (static_cast<int>(held.size() + dropped.size()) > options.heldLimit) return false;
  for (const VarIndex j : dropped) {
    if (move[j] == 0) continue;
    lower[j] = upper[j] = value[j];
    held.push_back(j);
  }
  return true;
}

template <class Real>
void Engine<Real>::computeExactWeights() {
  for (int i = 0; i < lp.m && poll(); ++i) {
    unitBtran(i);
    double sum = 0;
    rho.forEach([&](int, Real x) { sum += static_cast<double>(x) * static_cast<double>(x); });
    rowWeight[i] = sum;
  }
  rowWeightsValid = true;
}

template <class Real>
bool Engine<Real>::refactor() {
  factor.options().markowitzTol = stability.markowitz();
  factor.options().pivotTol = options.pivotTol;
  factor.options().dropTol = kDropShare * options.zeroTol;
  factor.options().maxUpdates = stability.updateLimit();
  factor.options().pairLimit = options.pairLimit;
  factor.options().symbolicL = options.symbolicL;
  Vec<VarIndex> oldHead = head;
  SingularRepair repair;
  factor.factor(head, repair, control->work);
  repaired = !repair.empty();
  const bool ok = !repaired || applyRepair(repair);
  for (int i = 0; i < lp.m; ++i) {
    position[head[i]] = i;
    move[head[i]] = 0;
  }
  if (repaired)
    for (const VarIndex out : repair.dropped) syncActive(out);
  for (const RowIndex r : repair.row) dual[head[r]] = 0;
  permuteWeights(oldHead);
  loadBasicBounds();
  factored = true;
  updates = 0;
  return ok;
}

template <class Real>
void Engine<Real>::computePrimal() {
  // B xB = -(N xN), all right-hand sides being zero.
  SparseVec<Real> &rhs = work1;
  rhs.clear();
  double entries = lp.total();
  for (int j = 0; j < lp.total(); ++j) {
    if (position[j] >= 0 || value[j] == Real(0)) continue;
    const Real x = value[j];
    lp.forColumn(j, [&](int i, Real a) {
      rhs.value[i] -= a * x;
      entries += 1;
    });
  }
  rhs.rebuild(Real(0));
  factor.ftran(rhs, 1.0, control->work);
  for (int i = 0; i < lp.m; ++i) xB[i] = rhs.value[i];
  rhs.count = -1;
  rhs.clear();
  updatesSinceCompute = 0;
  chargeWork(3 * entries);
}

template <class Real>
void Engine<Real>::computeDual() {
  // y = B^-T c_B, d = c - A'y; sparse y lets the row-wise copy do it, but fixed columns are not
  // in its front part, so their duals are taken as what they are: never needed here.
  SparseVec<Real> &y = work1;
  y.clear();
  for (int i = 0; i < lp.m; ++i)
    if (cost[head[i]] != Real(0)) y.set(i, cost[head[i]]);
  if (y.count > lp.m / 4) y.count = -1;
  factor.btran(y, y.count < 0 ? 1.0 : 0.5, control->work);
  double entries = lp.total();
  if (!y.valid() || y.density() > 0.1 || !rows.built()) {
    for (int j = 0; j < lp.n; ++j) {
      if (position[j] >= 0) {
        dual[j] = 0;
        continue;
      }
      Real sum = cost[j];
      const NzIndex end = lp.cols.start[j + 1];
      for (NzIndex k = lp.cols.start[j]; k < end; ++k)
        sum -= y.value[lp.cols.index[k]] * lp.value[k];
      entries += static_cast<double>(end - lp.cols.start[j]);
      dual[j] = sum;
    }
  } else {
    rows.price(y, pivotRow, 1.0, control->work);
    for (int j = 0; j < lp.n; ++j) dual[j] = position[j] >= 0 ? Real(0) : cost[j];
    pivotRow.forEach([&](int j, Real entry) {
      if (position[j] < 0) dual[j] -= entry;
    });
  }
  for (int i = 0; i < lp.m; ++i) {
    const int j = lp.n + i;
    dual[j] = position[j] >= 0 ? Real(0) : cost[j] - y.value[i];
  }
  y.count = -1;
  y.clear();
  chargeWork(3 * entries);
}

template <class Real>
Real Engine<Real>::dualInfeasibilitySum(int *count) const {
  Real sum = 0;
  int found = 0;
  for (int j = 0; j < lp.total(); ++j) {
    const Real violation = dualInfeasibility(j);
    if (violation > dualTol) {
      sum += violation;
      ++found;
    }
  }
  if (count) *count = found;
  return sum;
}

template <class Real>
Real Engine<Real>::primalInfeasibilitySum(int *count) const {
  Real sum = 0;
  int found = 0;
  for (int i = 0; i < lp.m; ++i) {
    const Real violation = std::max(lB[i] - xB[i], xB[i] - uB[i]);
    if (violation > primalTol) {
      sum += violation;
      ++found;
    }
  }
  if (count) *count = found;
  return sum;
}

template <class Real>
Real Engine<Real>::currentObjective() const {
  Real sum = lp.offset;
  for (int i = 0; i < lp.m; ++i) sum += cost[head[i]] * xB[i];
  for (int j = 0; j < lp.total(); ++j)
    if (position[j] < 0 && value[j] != Real(0)) sum += cost[j] * value[j];
  return sum;
}

template <class Real>
Real Engine<Real>::trueObjective() const {
  Real sum = lp.offset;
  for (int j = 0; j < lp.n; ++j)
    sum += lp.cost[j] * (position[j] >= 0 ? xB[position[j]] : value[j]);
  return sum;
}

// Any multipliers give a bound: those of the basis at the true costs are computed for it, whatever
// the algorithms were about when they stopped.
template <class Real>
double Engine<Real>::dualBound(WorkMeter &work) {
  SparseVec<Real> &y = work1;
  y.clear();
  for (int i = 0; i < lp.m; ++i)
    if (lp.cost[head[i]] != Real(0)) y.set(i, lp.cost[head[i]]);
  factor.btran(y, 1.0, work);
  Real sum = lp.offset;
  bool bounded = true;
  const auto add = [&](VarIndex j, Real d) {
    const Real best = d > 0 ? lp.lower[j] : lp.upper[j];
    if (std::isfinite(static_cast<double>(best)))
      sum += d * best;
    else if (fabs(d) > dualTol)
      bounded = false;
  };
  for (int j = 0; j < lp.n && bounded; ++j) {
    if (position[j] >= 0) continue;
    Real d = lp.cost[j];
    for (NzIndex k = lp.cols.start[j]; k < lp.cols.start[j + 1]; ++k)
      d -= y.value[lp.cols.index[k]] * lp.value[k];
    add(j, d);
  }
  for (int i = 0; i < lp.m; ++i)
    if (position[lp.n + i] < 0) add(lp.n + i, -y.value[i]);
  y.clear();
  work.charge((static_cast<double>(lp.cols.numNz()) + lp.total()) * workRate);
  return bounded ? static_cast<double>(sum) : -kInf;
}

template <class Real>
Real Engine<Real>::reducedCost(VarIndex j) const {
  if (j >= lp.n) return dual[j];
  Real d = cost[j];
  for (NzIndex k = lp.cols.start[j]; k < lp.cols.start[j + 1]; ++k)
    d += lp.value[k] * dual[lp.n + lp.cols.index[k]];
  return d;
}

template <class Real>
void Engine<Real>::updateDensity(double &average, const SparseVec<Real> &x) const {
  average += tuning::kDensityMemory * (x.density() - average);
}

template <class Real>
void Engine<Real>::ftranColumn(VarIndex j, SparseVec<Real> &x, bool keepSpike) {
  x.clear();
  lp.forColumn(j, [&](int i, Real a) { x.set(i, a); });
  factor.ftran(x, columnDensity, control->work, keepSpike);
  updateDensity(columnDensity, x);
}

template <class Real>
void Engine<Real>::unitBtran(BasisPos p) {
  rho.clear();
  rho.set(p, Real(1));
  factor.btranListed(rho, rhoDensity, control->work);
  updateDensity(rhoDensity, rho);
}

template <class Real>
void Engine<Real>::priceByColumns() {
  pivotRow.clear();
  double entries = lp.n;
  for (int j = 0; j < lp.n; ++j) {
    if (!canEnter(j)) continue;
    Real sum = 0;
    const NzIndex end = lp.cols.start[j + 1];
    for (NzIndex k = lp.cols.start[j]; k < end; ++k)
      sum += rho.value[lp.cols.index[k]] * lp.value[k];
    entries += 2.0 * static_cast<double>(end - lp.cols.start[j]);
    pivotRow.value[j] = sum;
  }
  pivotRow.count = -1;
  control->work.charge(entries);
}

template <class Real>
void Engine<Real>::priceRow() {
  if (!rows.built()) {
    if (columnPrices_-- > 0) return priceByColumns();
    rows.buildLoose(lp, enteringColumns());
    loosePrices_ = tuning::kLoosePrices;
  } else if (rows.loose() && loosePrices_-- <= 0) {
    buildRows();
  }
  const double density = rows.price(rho, pivotRow, rowDensity, control->work);
  rowDensity += tuning::kDensityMemory * (density - rowDensity);
}

template <class Real>
UpdateResult Engine<Real>::changeBasis(VarIndex q, BasisPos p, int side, Real alpha) {
  const UpdateResult result = factor.update(p, alpha, control->work);
  if (result == UpdateResult::RefactorNow) return result;
  const VarIndex out = head[p];
  head[p] = q;
  position[q] = p;
  position[out] = -1;
  move[q] = 0;
  dual[q] = 0;
  lB[p] = lower[q];
  uB[p] = upper[q];
  if (lower[out] == upper[out]) {
    move[out] = 0;
    value[out] = lower[out];
  } else if (side < 0) {
    move[out] = 1;
    value[out] = lower[out];
  } else {
    move[out] = -1;
    value[out] = upper[out];
  }
  syncActive(q);
  syncActive(out);
  ++updates;
  ++updatesSinceCompute;
  ++iterations;
  return result;
}

template <class Real>
Real Engine<Real>::rowPivotTol() const {
  const double byAge = updates < tuning::kUsedUpdates  ? tuning::kRowPivotTolFresh
                       : updates < tuning::kOldUpdates ? tuning::kRowPivotTolUsed
                                                       : tuning::kRowPivotTolOld;
  return Real(std::max(byAge, options.pivotTol));
}

template <class Real>
void Engine<Real>::shiftCost(VarIndex j, Real amount, ShiftState state) {
  if (amount == Real(0)) return;
  cost[j] += amount;
  dual[j] += amount;
  updatedObjective += amount * value[j];
  if (static_cast<int>(state) > static_cast<int>(costShift)) costShift = state;
}

// Takes the rounding noise out of y on the basic variables, where y'(A x + s) should have zeros:
// one step of refinement with the residual in extended precision.
template <class Real>
void Engine<Real>::refineRow(Vec<Real> &y) {
  SparseVec<Real> &residual = work2;
  for (int step = 0; step < 2; ++step) {
    residual.clear();
    Real largest = 0;
    for (int i = 0; i < lp.m; ++i) {
      const VarIndex j = head[i];
      long double t = 0;
      lp.forColumn(j, [&](int r, Real a) {
        t += static_cast<long double>(a) * static_cast<long double>(y[r]);
      });
      // The one basic variable that the row belongs to keeps its entry.
      if (t == 0 || std::fabs(static_cast<double>(t)) >= 1e-6) continue;
      residual.value[i] = Real(-t);
      largest = std::max(largest, fabs(residual.value[i]));
    }
    if (largest == Real(0)) return;
    // Solves drop tiny values, which is all that a residual is made of.
    for (int i = 0; i < lp.m; ++i) residual.value[i] /= largest;
    residual.rebuild(Real(0));
    factor.btran(residual, 1.0, control->work);
    for (int i = 0; i < lp.m; ++i) y[i] += largest * residual.value[i];
    residual.count = -1;
    residual.clear();
  }
}

// Does the combination of rows y really exclude every point within the bounds? y'(A x + s) is
// identically zero; the proof is that its range over the bounds excludes zero. Noise on
// variables without the needed bound destroys the proof unless it is negligible.
template <class Real>
bool Engine<Real>::proveInfeasible(const SparseVec<Real> &multipliers) {
  const int total = lp.total();
  Real largest = 0;
  for (int i = 0; i < lp.m; ++i) largest = std::max(largest, fabs(multipliers.value[i]));
  if (!(largest > 0) || !std::isfinite(static_cast<double>(largest))) return false;
  Vec<Real> y(lp.m);
  for (int i = 0; i < lp.m; ++i) y[i] = multipliers.value[i];
  refineRow(y);
  const Real noise = Real(1e-9) * largest;
  long double low = 0, high = 0, size = 0;
  bool lowFinite = true, highFinite = true;
  for (int j = 0; j < total; ++j) {
    long double t = 0;
    lp.forColumn(j, [&](int i, Real a) {
      t += static_cast<long double>(a) * static_cast<long double>(y[i]);
    });
    if (t == 0) continue;
    const double atLower = static_cast<double>(t > 0 ? lp.lower[j] : lp.upper[j]);
    const double atUpper = static_cast<double>(t > 0 ? lp.upper[j] : lp.lower[j]);
    if (std::isfinite(atLower)) {
      low += t * atLower;
      size += std::fabs(t * atLower);
    } else if (std::fabs(t) > noise) {
      lowFinite = false;
    }
    if (std::isfinite(atUpper)) {
      high += t * atUpper;
      size += std::fabs(t * atUpper);
    } else if (std::fabs(t) > noise) {
      highFinite = false;
    }
  }
  const long double margin =
      std::max(static_cast<long double>(Real(0.5) * primalTol), 1e-13L * size);
  if (!(lowFinite && low > margin) && !(highFinite && high < -margin)) return false;
  certificateRow = y;
  if (!(lowFinite && low > margin))
    for (Real &entry : certificateRow) entry = -entry;
  return true;
}

template <class Real>
bool Engine<Real>::poll() {
  stop = iterations >= iterationCap ? StopReason::IterationLimit
                                    : control->limits.poll(control->work, iterations);
  return stop == StopReason::None;
}

template <class Real>
bool Engine<Real>::pollAndLog() {
  if (poll() && iterations >= nextLogLook) log(false);
  return stop == StopReason::None;
}

template <class Real>
void Engine<Real>::logHeader() {
  if (headerPrinted || !options.logging) return;
  headerPrinted = true;
  if (options.logTitle) control->log->print("\n%s\n\n", options.logTitle);
  control->log->print("Iteration    Objective       Primal Inf.    Dual Inf.      Time\n");
}

template <class Real>
void Engine<Real>::log(bool force) {
  nextLogLook = iterations + options.logInterval;
  const bool heard = options.logging && control->log->enabled();
  const double seconds = heard ? control->limits.seconds() : 0;
  const bool due = heard && iterations != lastLogIteration && (force || seconds >= nextLogSeconds);
  if (!due && !control->progress) return;
  progress.iterations = iterations;
  progress.objective = static_cast<double>(trueObjective());
  progress.primalInfeasibility = static_cast<double>(primalInfeasibilitySum());
  progress.dualInfeasibility = static_cast<double>(dualInfeasibilitySum());
  progress.perturbed = std::max(static_cast<int>(costShift), static_cast<int>(boundShift));
  if (control->progress && !control->progress->onSimplex(progress)) stop = StopReason::Callback;
  if (!due) return;
  logHeader();
  nextLogSeconds = (std::floor(seconds / control->displayInterval) + 1) * control->displayInterval;
  lastLogIteration = iterations;
  control->log->print(" %7.0f   %14.7e  %13.6e  %13.6e %6.0fs\n", iterations,
                      logSign * progress.objective + 0.0, progress.primalInfeasibility,
                      progress.dualInfeasibility, seconds);
}

template class Engine<double>;
template class Engine<long double>;
template void Engine<double>::convertFrom(const Engine<long double> &);
template void Engine<long double>::convertFrom(const Engine<double> &);

}  // namespace tarvik
