#include "simplex/vertex_push.h"

#include <algorithm>
#include <cmath>

namespace tarvik {

namespace {
// What counts as being at a bound.
constexpr double kAtBound = 1e-9;
// Share of the feasibility tolerance that a basic variable may pass its bound by.
constexpr double kPassShare = 0.1;
// Pushes of one variable that end in refused updates.
constexpr int kAttempts = 3;
}  // namespace

template <class F>
void VertexPush::forColumn(F &&f) const {
  const SparseVec<double> &column = e_.column;
  const int count = column.valid() ? column.count : e_.lp.m;
  for (int k = 0; k < count; ++k) {
    const int i = column.valid() ? column.index[k] : k;
    f(i, column.value[i]);
  }
  e_.chargeWork(3.0 * count);
}

bool VertexPush::run(const Vec<double> &x) {
  moveBounds(x);
  chooseBasis();
  // The ones closest to a bound reach it soonest.
  for (std::size_t k = candidates_.size(); k-- > 0;) {
    const VarIndex j = candidates_[k];
    if (e_.position[j] < 0 && !push(j)) return false;
  }
  e_.rowWeight.assign(e_.lp.m, 1.0);
  e_.rowWeightsValid = false;
  return true;
}

// The row activities at the point; working bounds that hold there.
void VertexPush::moveBounds(const Vec<double> &x) {
  const int n = e_.lp.n, m = e_.lp.m;
  e_.lower = e_.lp.lower;
  e_.upper = e_.lp.upper;
  e_.cost = e_.lp.cost;
  point_.assign(n + m, 0.0);
  for (int j = 0; j < n; ++j) {
    point_[j] = x[j];
    e_.lp.forColumn(j, [&](int i, double a) { point_[n + i] -= a * x[j]; });
  }
  for (int j = n; j < n + m; ++j) {
    const bool fixed = e_.lower[j] == e_.upper[j];
    e_.lower[j] = fixed ? point_[j] : std::min(e_.lower[j], point_[j]);
    e_.upper[j] = fixed ? point_[j] : std::max(e_.upper[j], point_[j]);
  }
  e_.boundsPerturbed = true;
  e_.boundShift = ShiftState::Large;
  e_.valuesFollowed = false;
}

double VertexPush::inside(VarIndex j) const {
  return std::min(point_[j] - e_.lower[j], e_.upper[j] - point_[j]);
}

bool VertexPush::atBound(VarIndex j) const {
  return inside(j) <= kAtBound * (1 + std::fabs(point_[j]));
}

void VertexPush::chooseBasis() {
  const int total = e_.lp.total(), m = e_.lp.m;
  candidates_.clear();
  for (int j = 0; j < total; ++j)
    if (!atBound(j)) candidates_.push_back(j);
  std::sort(candidates_.begin(), candidates_.end(), [&](VarIndex a, VarIndex b) {
    const double insideA = inside(a), insideB = inside(b);
    return insideA != insideB ? insideA > insideB : a < b;
  });
  e_.head.assign(candidates_.begin(),
                 candidates_.begin() + std::min<std::size_t>(m, candidates_.size()));
  e_.position.assign(total, -1);
  for (const VarIndex j : e_.head) e_.position[j] = 0;
  for (int j = e_.lp.n; j < total && static_cast<int>(e_.head.size()) < m; ++j)
    if (e_.position[j] < 0) e_.head.push_back(j);
  SingularRepair repair;
  e_.factor.factor(e_.head, repair, e_.control->work);
  e_.position.assign(total, -1);
  for (int i = 0; i < m; ++i) e_.position[e_.head[i]] = i;
  for (int j = 0; j < total; ++j) {
    e_.move[j] = 0;
    e_.value[j] = point_[j];
    if (e_.position[j] >= 0) continue;
    if (atBound(j)) placeAt(j, point_[j] - e_.lower[j] <= e_.upper[j] - point_[j] ? -1 : 1);
  }
  e_.factored = true;
  e_.updates = 0;
  e_.loadBasicBounds();
  e_.computePrimal();
  for (int j = 0; j < e_.lp.n; ++j) e_.syncActive(j);
}

// A nonbasic variable to its lower (-1) or upper (+1) bound.
void VertexPush::placeAt(VarIndex j, int side) {
  e_.value[j] = side < 0 ? e_.lower[j] : e_.upper[j];
  e_.move[j] = static_cast<signed char>(e_.lower[j] == e_.upper[j] ? 0 : -side);
}

bool VertexPush::renew() {
  if (!e_.refactor()) return false;
  e_.computePrimal();
  return true;
}

// The sign that does not raise the objective; without a slope, towards the nearer bound.
int VertexPush::direction(VarIndex j) const {
  double slope = e_.cost[j];
  forColumn([&](int i, double a) { slope -= e_.cost[e_.head[i]] * a; });
  if (std::fabs(slope) > e_.dualTol) return slope > 0 ? -1 : 1;
  return e_.value[j] - e_.lower[j] <= e_.upper[j] - e_.value[j] ? -1 : 1;
}

// The first basic variable in the way, by Harris's two passes; row -1 when the own bound is nearer.
void VertexPush::findBlock(VarIndex q, Step &step) const {
  const double pivotTol = e_.rowPivotTol(), tol = kPassShare * e_.primalTol;
  const double range = step.sign < 0 ? e_.value[q] - e_.lower[q] : e_.upper[q] - e_.value[q];
  double relaxed = kRealInf<double>;
  forColumn([&](int i, double entry) {
    const double a = step.sign * entry;
    if (a > pivotTol)
      relaxed = std::min(relaxed, (e_.xB[i] - e_.lB[i] + tol) / a);
    else if (a < -pivotTol)
      relaxed = std::min(relaxed, (e_.xB[i] - e_.uB[i] - tol) / a);
  });
  step.row = -1;
  step.length = range;
  if (range <= relaxed) return;
  double largest = pivotTol;
  forColumn([&](int i, double entry) {
    const double a = step.sign * entry;
    if (std::fabs(a) <= largest) return;
    const double t = (e_.xB[i] - (a > 0 ? e_.lB[i] : e_.uB[i])) / a;
    if (t > relaxed) return;
    largest = std::fabs(a);
    step.row = i;
    step.side = a > 0 ? -1 : 1;
    step.length = std::max(t, 0.0);
  });
}

bool VertexPush::push(VarIndex j) {
  for (int attempt = 0; attempt < kAttempts; ++attempt) {
    if (!e_.poll()) return false;
    e_.ftranColumn(j, e_.column, true);
    Step step;
    step.sign = direction(j);
    findBlock(j, step);
    if (step.length == kRealInf<double>) {
      step.sign = -step.sign;
      findBlock(j, step);
    }
    // Nothing in the way on either side: free, and bound by no row.
    if (step.length == kRealInf<double>) return true;
    if (step.row < 0) {
      placeAt(j, step.sign);
      movePrimal(step);
      e_.iterations += 1;
      return true;
    }
    switch (exchange(j, step)) {
      case UpdateResult::Ok:
        return true;
      case UpdateResult::RefactorSoon:
        return renew();
      case UpdateResult::RefactorNow:
        if (e_.updates == 0) return true;
        if (!renew()) return false;
    }
  }
  return true;
}

void VertexPush::movePrimal(const Step &step) {
  forColumn([&](int i, double a) { e_.xB[i] -= step.sign * step.length * a; });
}

// The pushed variable changes places with the one that blocks it. That one takes its bound along
// when it has passed it within the tolerance.
UpdateResult VertexPush::exchange(VarIndex j, const Step &step) {
  const BasisPos row = step.row;
  const VarIndex out = e_.head[row];
  const double entering = e_.value[j] + step.sign * step.length;
  const double alpha = e_.column.value[row];
  const double reached = e_.xB[row] - step.sign * step.length * alpha;
  const UpdateResult updated = e_.changeBasis(j, row, step.side, alpha);
  if (updated == UpdateResult::RefactorNow) return updated;
  if (reached != e_.value[out]) {
    const bool fixed = e_.lower[out] == e_.upper[out];
    if (fixed || step.side < 0) e_.lower[out] = reached;
    if (fixed || step.side > 0) e_.upper[out] = reached;
    e_.value[out] = reached;
  }
  movePrimal(step);
  e_.xB[row] = entering;
  return updated;
}

}  // namespace tarvik
