#include "simplex/simplex.h"

#include <algorithm>
#include <cmath>

#include "simplex/dual_simplex.h"
#include "simplex/primal_simplex.h"
#include "simplex/tuning.h"

namespace tarvik {

namespace {

LpStatus statusOf(StopReason reason) {
  switch (reason) {
    case StopReason::TimeLimit:
      return LpStatus::TimeLimit;
    case StopReason::WorkLimit:
      return LpStatus::WorkLimit;
    case StopReason::MemoryLimit:
      return LpStatus::MemoryLimit;
    case StopReason::IterationLimit:
      return LpStatus::IterationLimit;
    case StopReason::Callback:
      return LpStatus::Callback;
    default:
      return LpStatus::Interrupted;
  }
}

// Scaled tolerances are tightened down to this when the unscaled solution violates the user's.
constexpr double kTightestTol = 1e-11;
constexpr int kMaxTightenings = 4;
constexpr int kMaxRecoveries = 6;

}  // namespace

class SimplexEngine {
 public:
  explicit SimplexEngine(const SimplexOptions &options) : dual_(e_), primal_(e_) {
    e_.options = options;
  }

  LpStatus solve(SimplexMethod method, SolveControl &control);
  Engine<double> &core() { return e_; }
  const Engine<double> &core() const { return e_; }
  void setBasis(const Basis &basis, const Vec<double> *values);
  Basis basis() const;
  void getSolution(LpSolution &solution) const;
  void addRows(int count, const NzIndex *start, const int *index, const double *value,
               const double *lower, const double *upper);
  void deleteRows(const Vec<char> &mark);

 private:
  PhaseResult runMethod(SimplexMethod method, bool perturb);
  PhaseResult runRounds(SimplexMethod method);
  bool boundsCross();
  bool tightenIfViolated();
  bool recover();
  void polish();
  void unscaledViolations(double &primal, double &dual) const;

  Engine<double> e_;
  DualSimplex<double> dual_;
  PrimalSimplex<double> primal_;
  LpStatus status_ = LpStatus::NotSolved;
  int tightenings_ = 0, recoveries_ = 0;
};

LpStatus SimplexEngine::solve(SimplexMethod method, SolveControl &control) {
  e_.control = &control;
  e_.stop = StopReason::None;
  e_.logSign = e_.options.logSign;
  e_.primalTol = e_.options.primalTol;
  e_.dualTol = e_.options.dualTol;
  e_.markowitz = e_.options.markowitzTol;
  e_.singularRepairs = 0;
  e_.certificateRow.clear();
  e_.rayDirection.clear();
  tightenings_ = recoveries_ = 0;
  if (boundsCross()) return status_ = LpStatus::Infeasible;
  const PhaseResult result = runRounds(method);
  switch (result) {
    case PhaseResult::Optimal:
      status_ = LpStatus::Optimal;
      break;
    case PhaseResult::Infeasible:
      status_ = LpStatus::Infeasible;
      break;
    case PhaseResult::Unbounded:
      status_ = LpStatus::Unbounded;
      break;
    case PhaseResult::Cutoff:
      status_ = LpStatus::Cutoff;
      break;
    case PhaseResult::Stopped:
      status_ = statusOf(e_.stop);
      break;
    default:
      status_ = LpStatus::Numeric;
      break;
  }
  if (e_.stop == StopReason::None) e_.log(true);
  return status_;
}

// Crossing bounds need no iteration; the certificate is the row itself, or none for a column.
bool SimplexEngine::boundsCross() {
  for (int j = 0; j < e_.lp.total(); ++j) {
    const double tol = e_.options.primalTol / e_.lp.varScale(j);
    if (e_.lp.lower[j] - e_.lp.upper[j] <= tol && e_.lp.lower[j] < kRealInf<double> &&
        e_.lp.upper[j] > -kRealInf<double>)
      continue;
    return true;
  }
  // Bounds that cross within the tolerance meet in their middle.
  for (int j = 0; j < e_.lp.total(); ++j)
    if (e_.lp.lower[j] > e_.lp.upper[j])
      e_.lp.lower[j] = e_.lp.upper[j] = 0.5 * (e_.lp.lower[j] + e_.lp.upper[j]);
  return false;
}

PhaseResult SimplexEngine::runMethod(SimplexMethod method, bool perturb) {
  return method == SimplexMethod::Dual ? dual_.run(perturb) : primal_.run(perturb);
}

// Alternates between the algorithms until one ends with a verdict for the true problem.
PhaseResult SimplexEngine::runRounds(SimplexMethod method) {
  bool perturb = method == SimplexMethod::Dual && e_.options.perturbValue > 0;
  for (int round = 0; round < tuning::kMaxRounds; ++round) {
    const PhaseResult result = runMethod(method, perturb && round < tuning::kMaxPerturbedRounds);
    perturb = false;
    switch (result) {
      case PhaseResult::NeedsPrimal:
        method = SimplexMethod::Primal;
        break;
      case PhaseResult::NeedsDual:
        method = SimplexMethod::Dual;
        break;
      case PhaseResult::Optimal:
        if (tightenIfViolated()) break;
        polish();
        return result;
      case PhaseResult::Cutoff:
        // With perturbed costs the bound proves nothing: count again with the true ones.
        if (!e_.costsPerturbed && e_.costShift == ShiftState::None) return result;
        break;
      case PhaseResult::Trouble:
        if (!recover()) return result;
        method = method == SimplexMethod::Dual ? SimplexMethod::Primal : SimplexMethod::Dual;
        break;
      default:
        return result;
    }
  }
  return PhaseResult::Trouble;
}

void SimplexEngine::unscaledViolations(double &primal, double &dual) const {
  primal = dual = 0;
  for (int i = 0; i < e_.lp.m; ++i) {
    const VarIndex j = e_.head[i];
    const double violation = std::max(e_.lp.lower[j] - e_.xB[i], e_.xB[i] - e_.lp.upper[j]);
    if (violation > 0) primal = std::max(primal, violation * e_.lp.varScale(j));
  }
  for (int j = 0; j < e_.lp.total(); ++j)
    dual = std::max(dual, e_.dualInfeasibility(j) / e_.lp.varScale(j));
}

bool SimplexEngine::tightenIfViolated() {
  double primal, dual;
  unscaledViolations(primal, dual);
  if (tightenings_ >= kMaxTightenings) return false;
  bool changed = false;
  const auto tighten = [&](double &scaledTol, double userTol, double violation) {
    if (violation <= userTol || scaledTol <= kTightestTol) return;
    scaledTol = std::max(kTightestTol, 0.5 * scaledTol * userTol / violation);
    changed = true;
  };
  tighten(e_.primalTol, e_.options.primalTol, primal);
  tighten(e_.dualTol, e_.options.dualTol, dual);
  if (changed) ++tightenings_;
  return changed;
}

// Goes on with tight tolerances for a few iterations. What does not get better that way is taken
// back: the optimum within the caller's tolerances stands.
void SimplexEngine::polish() {
  double primal, dual;
  unscaledViolations(primal, dual);
  if (primal <= tuning::kPolishTol && dual <= tuning::kPolishTol) return;
  const Basis kept = basis();
  const double primalTol = e_.primalTol, dualTol = e_.dualTol;
  e_.primalTol = std::min(e_.primalTol, tuning::kPolishTol);
  e_.dualTol = std::min(e_.dualTol, tuning::kPolishTol);
  const double before = e_.iterations;
  e_.iterationCap = before + tuning::kPolishIterations + tuning::kPolishShare * before;
  PhaseResult result = PhaseResult::NeedsDual;
  for (int round = 0; round < 4; ++round) {
    if (result == PhaseResult::NeedsDual)
      result = dual_.run(false);
    else if (result == PhaseResult::NeedsPrimal)
      result = primal_.run(false);
  }
  e_.iterationCap = 1e100;
  e_.primalTol = primalTol;
  e_.dualTol = dualTol;
  if (result == PhaseResult::Optimal) return;
  if (e_.stop == StopReason::IterationLimit) e_.stop = StopReason::None;
  setBasis(kept, nullptr);
  e_.resetWorkingBounds();
  e_.resetWorkingCosts();
  if (!e_.refactor()) return;
  e_.computePrimal();
  e_.computeDual();
}

// After numerical trouble: more stable factors first, then a fresh start from the slack basis.
bool SimplexEngine::recover() {
  if (e_.stop != StopReason::None || ++recoveries_ > kMaxRecoveries) return false;
  e_.markowitz = std::max(e_.markowitz, recoveries_ > 1 ? 0.9 : 0.5);
  e_.factored = false;
  if (recoveries_ == kMaxRecoveries / 2) {
    const double markowitz = e_.markowitz;
    e_.slackBasis();
    e_.markowitz = markowitz;
  }
  return true;
}

void SimplexEngine::setBasis(const Basis &basis, const Vec<double> *values) {
  Engine<double> &e = e_;
  const int n = e.lp.n, m = e.lp.m;
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
  e.lower = e.lp.lower;
  e.upper = e.lp.upper;
  for (int j = 0; j < n + m; ++j) {
    VarStatus status = j < n ? basis.col[j] : basis.row[j - n];
    if (j >= n && status == VarStatus::AtLower)
      status = VarStatus::AtUpper;
    else if (j >= n && status == VarStatus::AtUpper)
      status = VarStatus::AtLower;
    e.move[j] = status == VarStatus::AtUpper ? -1 : status == VarStatus::AtLower ? 1 : 0;
    e.value[j] = values && j < n ? (*values)[j] / e.lp.varScale(j) : 0.0;
    e.placeNonbasic(j);
  }
  e.rowWeight.assign(m, 1.0);
  e.rebuildRows();
}

Basis SimplexEngine::basis() const {
  Basis result;
  const int n = e_.lp.n, m = e_.lp.m;
  const auto status = [&](VarIndex j, bool logical) {
    if (e_.position[j] >= 0) return VarStatus::Basic;
    const double lo = e_.lp.lower[j], up = e_.lp.upper[j];
    if (e_.move[j] != 0)
      return (e_.move[j] > 0) != logical ? VarStatus::AtLower : VarStatus::AtUpper;
    if (lo == up) return VarStatus::AtLower;
    return lo == -kRealInf<double> && up == kRealInf<double> ? VarStatus::Free
                                                             : VarStatus::Superbasic;
  };
  result.col.resize(n);
  result.row.resize(m);
  for (int j = 0; j < n; ++j) result.col[j] = status(j, false);
  for (int i = 0; i < m; ++i) result.row[i] = status(n + i, true);
  return result;
}

void SimplexEngine::getSolution(LpSolution &solution) const {
  const ScaledLp<double> &lp = e_.lp;
  const int n = lp.n, m = lp.m;
  const auto x = [&](VarIndex j) {
    return e_.position[j] >= 0 ? e_.xB[e_.position[j]] : e_.value[j];
  };
  solution.status = status_;
  solution.colValue.resize(n);
  solution.colDual.resize(n);
  solution.rowActivity.resize(m);
  solution.rowDual.resize(m);
  for (int i = 0; i < m; ++i) {
    const double s = -x(n + i) / lp.rowScale[i];
    solution.rowActivity[i] = s == 0 ? 0.0 : s;
    const double y = e_.position[n + i] >= 0 ? 0.0 : -e_.dual[n + i];
    solution.rowDual[i] = y == 0 ? 0.0 : y * lp.rowScale[i];
  }
  solution.objective = lp.offset;
  for (int j = 0; j < n; ++j) {
    solution.colValue[j] = x(j) * lp.colScale[j];
    double d = lp.cost[j];
    for (NzIndex k = lp.cols.start[j]; k < lp.cols.start[j + 1]; ++k) {
      const int i = lp.cols.index[k];
      if (e_.position[n + i] < 0) d += lp.value[k] * e_.dual[n + i];
    }
    solution.colDual[j] = e_.position[j] >= 0 ? 0.0 : d / lp.colScale[j];
    solution.objective += lp.cost[j] / lp.colScale[j] * solution.colValue[j];
  }
  solution.basis = basis();
  solution.farkas.clear();
  solution.ray.clear();
  if (status_ == LpStatus::Infeasible && !e_.certificateRow.empty()) {
    solution.farkas.resize(m);
    for (int i = 0; i < m; ++i) solution.farkas[i] = e_.certificateRow[i] * lp.rowScale[i];
  }
  if (status_ == LpStatus::Unbounded && !e_.rayDirection.empty()) {
    solution.ray.resize(n);
    for (int j = 0; j < n; ++j) solution.ray[j] = e_.rayDirection[j] * lp.colScale[j];
  }
  solution.iterations = e_.iterations;
}

void SimplexEngine::addRows(int count, const NzIndex *start, const int *index, const double *value,
                            const double *lower, const double *upper) {
  const int n = e_.lp.n, m = e_.lp.m;
  e_.lp.addRows(count, start, index, value, lower, upper);
  const int total = e_.lp.total();
  e_.lower = e_.lp.lower;
  e_.upper = e_.lp.upper;
  e_.cost = e_.lp.cost;
  e_.move.resize(total, 0);
  e_.value.resize(total, 0.0);
  e_.dual.resize(total, 0.0);
  e_.position.resize(total, -1);
  Random random(static_cast<std::uint64_t>(e_.options.seed) + static_cast<std::uint64_t>(total));
  while (static_cast<int>(e_.randomValue.size()) < total)
    e_.randomValue.push_back(random.uniform());
  for (int i = m; i < m + count; ++i) {
    e_.position[n + i] = i;
    e_.head.push_back(n + i);
    e_.rowWeight.push_back(1.0);
  }
  for (Vec<double> *v : {&e_.xB, &e_.lB, &e_.uB}) v->resize(m + count, 0.0);
  for (SparseVec<double> *v : {&e_.rho, &e_.column, &e_.work1, &e_.work2}) v->resize(m + count);
  e_.rebuildRows();
}

void SimplexEngine::deleteRows(const Vec<char> &mark) {
  Basis kept = basis();
  Vec<double> weightOf(e_.lp.total(), 1.0);
  for (int i = 0; i < e_.lp.m; ++i) weightOf[e_.head[i]] = e_.rowWeight[i];
  const int n = e_.lp.n, oldRows = e_.lp.m;
  // Each deleted row with a nonbasic logical leaves one basic variable too many: the structurals
  // of the row with the largest entry there give way first.
  Vec<char> wanted(oldRows, 0);
  for (int i = 0; i < oldRows; ++i) wanted[i] = mark[i] && kept.row[i] != VarStatus::Basic;
  for (int j = 0; j < n; ++j) {
    if (kept.col[j] != VarStatus::Basic) continue;
    for (NzIndex k = e_.lp.cols.start[j]; k < e_.lp.cols.start[j + 1]; ++k) {
      const int i = e_.lp.cols.index[k];
      if (!wanted[i]) continue;
      wanted[i] = 0;
      kept.col[j] = VarStatus::AtLower;
      break;
    }
  }
  e_.lp.deleteRows(mark);
  int to = 0;
  for (int i = 0; i < oldRows; ++i) {
    if (mark[i]) continue;
    weightOf[n + to] = weightOf[n + i];
    e_.randomValue[n + to] = e_.randomValue[n + i];
    kept.row[to++] = kept.row[i];
  }
  kept.row.resize(to);
  const int total = e_.lp.total();
  for (Vec<double> *v : {&e_.value, &e_.dual}) v->resize(total);
  e_.cost = e_.lp.cost;
  e_.move.resize(total);
  e_.randomValue.resize(total);
  for (Vec<double> *v : {&e_.xB, &e_.lB, &e_.uB}) v->assign(to, 0.0);
  for (SparseVec<double> *v : {&e_.rho, &e_.column, &e_.work1, &e_.work2}) v->resize(to);
  setBasis(kept, nullptr);
  for (int i = 0; i < to; ++i) e_.rowWeight[i] = weightOf[e_.head[i]];
}

// --- the facade ---

Simplex::Simplex(const SimplexOptions &options)
    : engine_(std::make_unique<SimplexEngine>(options)) {}
Simplex::~Simplex() = default;
Simplex::Simplex(Simplex &&) noexcept = default;
Simplex &Simplex::operator=(Simplex &&) noexcept = default;

void Simplex::load(const LpModel &lp) { engine_->core().load(lp); }
SimplexOptions &Simplex::options() { return engine_->core().options; }

void Simplex::setColBounds(ColIndex col, double lower, double upper) {
  engine_->core().lp.setColBounds(col, lower, upper);
}
void Simplex::setRowBounds(RowIndex row, double lower, double upper) {
  engine_->core().lp.setRowBounds(row, lower, upper);
}
void Simplex::setCost(ColIndex col, double cost) { engine_->core().lp.setCost(col, cost); }
void Simplex::setOffset(double offset) { engine_->core().lp.offset = offset; }
void Simplex::addRows(int count, const NzIndex *start, const int *index, const double *value,
                      const double *lower, const double *upper) {
  engine_->addRows(count, start, index, value, lower, upper);
}
void Simplex::deleteRows(const Vec<char> &mark) { engine_->deleteRows(mark); }
void Simplex::setBasis(const Basis &basis, const Vec<double> *superbasicValues) {
  engine_->setBasis(basis, superbasicValues);
}
Basis Simplex::basis() const { return engine_->basis(); }
LpStatus Simplex::solve(SimplexMethod method, SolveControl &control) {
  return engine_->solve(method, control);
}
double Simplex::iterations() const { return engine_->core().iterations; }
double Simplex::objective() const { return static_cast<double>(engine_->core().trueObjective()); }
void Simplex::getSolution(LpSolution &solution) const { engine_->getSolution(solution); }

void Simplex::basisHead(Vec<VarIndex> &head) { head = engine_->core().head; }

void Simplex::ftran(Vec<double> &x) {
  Engine<double> &e = engine_->core();
  SolveControl idle;
  SparseVec<double> v;
  v.resize(e.lp.m);
  for (int i = 0; i < e.lp.m; ++i) v.value[i] = x[i] * e.lp.rowScale[i];
  v.rebuild(0.0);
  e.factor.ftran(v, 1.0, idle.work);
  for (int i = 0; i < e.lp.m; ++i) x[i] = v.value[i] * e.lp.varScale(e.head[i]);
}

void Simplex::btran(Vec<double> &y) {
  Engine<double> &e = engine_->core();
  SolveControl idle;
  SparseVec<double> v;
  v.resize(e.lp.m);
  for (int i = 0; i < e.lp.m; ++i) v.value[i] = y[i] * e.lp.varScale(e.head[i]);
  v.rebuild(0.0);
  e.factor.btran(v, 1.0, idle.work);
  for (int i = 0; i < e.lp.m; ++i) y[i] = v.value[i] * e.lp.rowScale[i];
}

}  // namespace tarvik
