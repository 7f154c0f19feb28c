// The basis and the solution of a core from and to the user's space, and rows that come and go.
#include <algorithm>
#include <cmath>

#include "simplex/simplex_core.h"

namespace tarvik {

template <class Real>
void SimplexCore<Real>::load(const LpModel &lp, const Basis &basis, const Vec<double> *values,
                             const Scaling *known) {
  engine.loadForBasis(lp, known);
  setBasis(basis, values);
}

template <class Real>
void SimplexCore<Real>::setBasis(const Basis &basis, const Vec<double> *values) {
  Engine<Real> &e = engine;
  const int n = e.lp.n, m = e.lp.m;
  e.forgetValues();
  crashed_ = false;
  const bool sameBasics = hasBasics(basis);
  if (!sameBasics) {
    e.head.clear();
    e.position.assign(n + m, -1);
    const auto add = [&](VarIndex j) {
      if (static_cast<int>(e.head.size()) >= m) return;
      e.position[j] = static_cast<int>(e.head.size());
      e.head.push_back(j);
    };
    for (int j = 0; j < n; ++j)
      if (basis.col[j] == VarStatus::Basic) add(j);
    for (int i = 0; i < m; ++i)
      if (basis.row[i] == VarStatus::Basic) add(n + i);
    for (int i = 0; i < m; ++i)
      if (e.position[n + i] < 0) add(n + i);
  }
  e.held.clear();
  e.lower = e.lp.lower;
  e.upper = e.lp.upper;
  std::fill(e.value.begin(), e.value.end(), Real(0));
  for (int j = 0; j < n && values; ++j) e.value[j] = Real((*values)[j]) / e.lp.colScale[j];
  const auto sideOf = [](VarStatus status) {
    return (status == VarStatus::AtLower) - (status == VarStatus::AtUpper);
  };
  for (int j = 0; j < n; ++j) {
    e.move[j] = static_cast<signed char>(sideOf(basis.col[j]));
    e.placeNonbasic(j);
  }
  // Logicals are the negative activities.
  for (int i = 0; i < m; ++i) {
    e.move[n + i] = static_cast<signed char>(-sideOf(basis.row[i]));
    e.placeNonbasic(n + i);
  }
  for (int j = 0; j < n; ++j) e.syncActive(j);
  e.placed = true;
  if (sameBasics) {
    e.valuesFollowed = false;
    return;
  }
  e.rowWeight.assign(m, 1.0);
  e.rowWeightsValid = false;
  e.factored = false;
}

// Whether the basis has exactly the basic variables of the current one.
template <class Real>
bool SimplexCore<Real>::hasBasics(const Basis &basis) const {
  const int n = engine.lp.n, m = engine.lp.m;
  if (static_cast<int>(engine.position.size()) != n + m) return false;
  for (int j = 0; j < n; ++j)
    if ((basis.col[j] == VarStatus::Basic) != (engine.position[j] >= 0)) return false;
  for (int i = 0; i < m; ++i)
    if ((basis.row[i] == VarStatus::Basic) != (engine.position[n + i] >= 0)) return false;
  return true;
}

template <class Real>
bool SimplexCore<Real>::standsAt(const Basis &other) const {
  if (!engine.current) return false;
  const Basis own = basis();
  const auto same = [](const Vec<VarStatus> &mine, const Vec<VarStatus> &theirs) {
    return std::equal(
        mine.begin(), mine.end(), theirs.begin(), theirs.end(),
        [](VarStatus a, VarStatus b) { return a == b && a != VarStatus::Superbasic; });
  };
  return same(own.col, other.col) && same(own.row, other.row);
}

template <class Real>
Vec<double> SimplexCore<Real>::edgeWeights() const {
  Vec<double> weights;
  if (!engine.rowWeightsValid) return weights;
  weights.assign(engine.lp.total(), 1.0);
  for (int i = 0; i < engine.lp.m; ++i) weights[engine.head[i]] = engine.rowWeight[i];
  return weights;
}

template <class Real>
void SimplexCore<Real>::setEdgeWeights(const Vec<double> &weights) {
  for (int i = 0; i < engine.lp.m; ++i) {
    const double weight = weights[engine.head[i]];
    engine.rowWeight[i] = weight > 0 && weight < kInf ? weight : 1.0;
  }
  engine.rowWeightsValid = true;
}

// True bounds and costs on a factored basis; false when that took repairs or failed.
template <class Real>
bool SimplexCore<Real>::prepareBasis(SolveControl &control) {
  const bool placed = engine.placed && !engine.boundsPerturbed;
  engine.control = &control;
  engine.forgetValues();
  engine.stability.startSolve(engine.options, engine.lp.m);
  engine.repaired = false;
  engine.boundShift = ShiftState::None;
  engine.valuesFollowed = false;
  if (!placed) engine.resetWorkingBounds();
  engine.resetWorkingCosts();
  return (engine.factored || engine.refactor()) && !engine.repaired;
}

template <class Real>
bool SimplexCore<Real>::refresh(SolveControl &control) {
  const bool unchanged = prepareBasis(control);
  if (!engine.factored) return false;
  engine.loadBasicBounds();
  engine.computePrimal();
  engine.computeDual();
  return unchanged;
}

template <class Real>
bool SimplexCore<Real>::prefersPrimal(SolveControl &control) {
  // Only bounds have changed since the last optimum: the reduced costs still have their signs, or
  // get them by a change of side.
  if (engine.current) return false;
  if (!prepareBasis(control)) return false;
  engine.primalTol = engine.options.primalTol;
  engine.dualTol = engine.options.dualTol;
  int primal = 0, dual = 0;
  engine.computeDual();
  engine.loadBasicBounds();
  engine.computePrimal();
  engine.prepared = true;
  engine.dualInfeasibilitySum(&dual);
  engine.dualFeasible = dual == 0;
  if (dual == 0) return false;
  engine.primalInfeasibilitySum(&primal);
  return primal == 0;
}

template <class Real>
Basis SimplexCore<Real>::basis() const {
  Basis result;
  const int n = engine.lp.n, m = engine.lp.m;
  const auto status = [&](VarIndex j, bool logical) {
    if (engine.position[j] >= 0) return VarStatus::Basic;
    const Real lo = engine.lp.lower[j], up = engine.lp.upper[j];
    if (engine.move[j] != 0)
      return (engine.move[j] > 0) != logical ? VarStatus::AtLower : VarStatus::AtUpper;
    if (lo == up) return VarStatus::AtLower;
    return lo == -kRealInf<Real> && up == kRealInf<Real> ? VarStatus::Free : VarStatus::Superbasic;
  };
  result.col.resize(n);
  result.row.resize(m);
  for (int j = 0; j < n; ++j) result.col[j] = status(j, false);
  for (int i = 0; i < m; ++i) result.row[i] = status(n + i, true);
  return result;
}

template <class Real>
void SimplexCore<Real>::getSolution(LpStatus status, LpSolution &solution) const {
  const ScaledLp<Real> &lp = engine.lp;
  const int n = lp.n, m = lp.m;
  const auto x = [&](VarIndex j) {
    return engine.position[j] >= 0 ? engine.xB[engine.position[j]] : engine.value[j];
  };
  const auto clean = [](Real v) { return v == Real(0) ? 0.0 : static_cast<double>(v); };
  solution.status = status;
  solution.colValue.resize(n);
  solution.colDual.resize(n);
  solution.rowActivity.resize(m);
  solution.rowDual.resize(m);
  RawVec<Real> multiplier(m);
  for (int i = 0; i < m; ++i) {
    multiplier[i] = engine.position[n + i] >= 0 ? Real(0) : engine.dual[n + i];
    solution.rowActivity[i] = clean(-x(n + i) / lp.rowScale[i]);
    solution.rowDual[i] = clean(-multiplier[i] * lp.rowScale[i]);
  }
  Real objective = lp.offset;
  for (int j = 0; j < n; ++j) {
    solution.colValue[j] = static_cast<double>(x(j) * lp.colScale[j]);
    objective += lp.cost[j] * x(j);
    if (engine.position[j] >= 0) {
      solution.colDual[j] = 0;
      continue;
    }
    Real d = lp.cost[j];
    for (NzIndex k = lp.cols.start[j]; k < lp.cols.start[j + 1]; ++k)
      d += lp.value[k] * multiplier[lp.cols.index[k]];
    solution.colDual[j] = static_cast<double>(d / lp.colScale[j]);
  }
  solution.objective = static_cast<double>(objective);
  solution.basis = basis();
  solution.farkas.clear();
  solution.ray.clear();
  if (status == LpStatus::Infeasible && !engine.certificateRow.empty()) {
    solution.farkas.resize(m);
    for (int i = 0; i < m; ++i)
      solution.farkas[i] = static_cast<double>(engine.certificateRow[i] * lp.rowScale[i]);
  }
  if (status == LpStatus::Unbounded && !engine.rayDirection.empty()) {
    solution.ray.resize(n);
    for (int j = 0; j < n; ++j)
      solution.ray[j] = static_cast<double>(engine.rayDirection[j] * lp.colScale[j]);
  }
  solution.provingVar = engine.provingVar;
  solution.iterations = engine.iterations;
}

template <class Real>
void SimplexCore<Real>::getPoint(Vec<double> &x, Vec<double> &reducedCost,
                                 double &objective) const {
  const ScaledLp<Real> &lp = engine.lp;
  x.resize(lp.n);
  reducedCost.resize(lp.n);
  Real sum = lp.offset;
  for (int j = 0; j < lp.n; ++j) {
    const BasisPos p = engine.position[j];
    const Real value = p >= 0 ? engine.xB[p] : engine.value[j];
    const bool fixed = p >= 0 || lp.lower[j] == lp.upper[j];
    x[j] = static_cast<double>(value * lp.colScale[j]);
    reducedCost[j] = fixed ? 0.0 : static_cast<double>(engine.dual[j] / lp.colScale[j]);
    sum += lp.cost[j] * value;
  }
  objective = static_cast<double>(sum);
}

template <class Real>
void SimplexCore<Real>::addRows(int count, const NzIndex *start, const int *index,
                                const double *value, const double *lower, const double *upper) {
  const int n = engine.lp.n, m = engine.lp.m;
  engine.forgetValues();
  engine.lp.addRows(count, start, index, value, lower, upper);
  const int total = engine.lp.total();
  engine.held.clear();
  engine.lower = engine.lp.lower;
  engine.upper = engine.lp.upper;
  engine.cost = engine.lp.cost;
  engine.move.resize(total, 0);
  engine.value.resize(total, Real(0));
  engine.dual.resize(total, Real(0));
  engine.position.resize(total, -1);
  if (!engine.randomValue.empty()) {
    Random random(static_cast<std::uint64_t>(engine.options.seed) +
                  static_cast<std::uint64_t>(total));
    while (static_cast<int>(engine.randomValue.size()) < total)
      engine.randomValue.push_back(random.uniform());
  }
  for (int i = m; i < m + count; ++i) {
    engine.position[n + i] = i;
    engine.head.push_back(n + i);
    engine.rowWeight.push_back(1.0);
  }
  for (Vec<Real> *v : {&engine.xB, &engine.lB, &engine.uB}) v->resize(m + count, Real(0));
  for (SparseVec<Real> *v : {&engine.rho, &engine.column, &engine.work1, &engine.work2})
    v->resize(m + count);
  engine.rebuildRows();
}

template <class Real>
void SimplexCore<Real>::deleteRows(const Vec<char> &mark) {
  engine.forgetValues();
  Basis kept = basis();
  Vec<double> weightOf(engine.lp.total(), 1.0);
  for (int i = 0; i < engine.lp.m; ++i) weightOf[engine.head[i]] = engine.rowWeight[i];
  const int n = engine.lp.n, oldRows = engine.lp.m;
  // Each deleted row with a nonbasic logical leaves one basic variable too many: the structurals
  // of the row with the largest entry there give way first.
  Vec<char> wanted(oldRows, 0);
  for (int i = 0; i < oldRows; ++i) wanted[i] = mark[i] && kept.row[i] != VarStatus::Basic;
  for (int j = 0; j < n; ++j) {
    if (kept.col[j] != VarStatus::Basic) continue;
    for (NzIndex k = engine.lp.cols.start[j]; k < engine.lp.cols.start[j + 1]; ++k) {
      const int i = engine.lp.cols.index[k];
      if (!wanted[i]) continue;
      wanted[i] = 0;
      kept.col[j] = VarStatus::AtLower;
      break;
    }
  }
  engine.lp.deleteRows(mark);
  const bool random = !engine.randomValue.empty();
  int to = 0;
  for (int i = 0; i < oldRows; ++i) {
    if (mark[i]) continue;
    weightOf[n + to] = weightOf[n + i];
    if (random) engine.randomValue[n + to] = engine.randomValue[n + i];
    kept.row[to++] = kept.row[i];
  }
  kept.row.resize(to);
  const int total = engine.lp.total();
  for (Vec<Real> *v : {&engine.value, &engine.dual}) v->resize(total);
  engine.cost = engine.lp.cost;
  engine.move.resize(total);
  if (random) engine.randomValue.resize(total);
  for (Vec<Real> *v : {&engine.xB, &engine.lB, &engine.uB}) v->assign(to, Real(0));
  for (SparseVec<Real> *v : {&engine.rho, &engine.column, &engine.work1, &engine.work2})
    v->resize(to);
  engine.rebuildRows();
  setBasis(kept, nullptr);
  for (int i = 0; i < to; ++i) engine.rowWeight[i] = weightOf[engine.head[i]];
}

// Solves with the basis matrix in the user's scale.
template <class Real>
void SimplexCore<Real>::ftran(Vec<double> &x, WorkMeter &work) {
  SparseVec<Real> v;
  v.resize(engine.lp.m);
  for (int i = 0; i < engine.lp.m; ++i) v.value[i] = Real(x[i]) * engine.lp.rowScale[i];
  v.rebuild(Real(0));
  engine.factor.ftran(v, 1.0, work);
  for (int i = 0; i < engine.lp.m; ++i)
    x[i] = static_cast<double>(v.value[i] * engine.lp.varScale(engine.head[i]));
}

template <class Real>
void SimplexCore<Real>::btran(Vec<double> &y, WorkMeter &work) {
  SparseVec<Real> v;
  v.resize(engine.lp.m);
  for (int i = 0; i < engine.lp.m; ++i)
    v.value[i] = Real(y[i]) * engine.lp.varScale(engine.head[i]);
  v.rebuild(Real(0));
  engine.factor.btran(v, 1.0, work);
  for (int i = 0; i < engine.lp.m; ++i)
    y[i] = static_cast<double>(v.value[i] * engine.lp.rowScale[i]);
}

template class SimplexCore<double>;
template class SimplexCore<long double>;

}  // namespace tarvik
