#include "simplex/penalty_crash.h"

#include <algorithm>
#include <cmath>

#include "simplex/row_fit.h"

namespace tarvik {

namespace {

// --- how long ---
// Passes over the variables in all: as many as rows, within these. A basis for more rows costs
// more.
constexpr int kLeastPasses = 200, kMostPasses = 6000;
// Entries to be looked at in all; caps the passes of very large models.
constexpr double kEntryBudget = 2e9;
// Passes between two extrapolations, and between two updates of the multipliers at most.
constexpr int kBlock = 8;
constexpr int kRoundPasses = 200;
// The multipliers are updated when a pass changes the activities by this share of the residual.
constexpr double kInnerShare = 0.05;
// Done at this violation of the rows, relative to the one of the start.
constexpr double kEnough = 1e-6;

// --- the penalty ---
// A round whose violation is not below this share of the last one's raises it by the factor.
constexpr double kGoodRate = 0.5;
constexpr double kPenaltyFactor = 3;
constexpr double kLongestStep = 1000;
constexpr int kNewtonSteps = 4;
constexpr double kHugeValue = 1e15;

// --- which models ---
constexpr int kLeastRows = 100;
constexpr double kLeastWidth = 1.5;       // columns by rows
constexpr double kLeastColumnLength = 4;  // shorter ones are networks, which are easy
constexpr double kMostSingletons = 0.02;  // share of columns; they would be a good basis
constexpr double kUnitTolerance = 1e-9;

// Minimises  cost'x + mu/2 |w|^2  over the bounds, w being the multipliers that the method of
// multipliers would take next: w_i = (u_i - nearest point of row i's bounds to u_i) / mu with
// u = A x + mu * multiplier.
class PenaltyMethod {
 public:
  PenaltyMethod(const ScaledLp<double> &lp, SolveControl &control) : lp_(lp), control_(control) {}

  bool run(Vec<double> &point) {
    start();
    const double budget = kEntryBudget / (1.0 + static_cast<double>(lp_.cols.numNz()));
    const double passes = std::min<double>(std::clamp(lp_.m, kLeastPasses, kMostPasses), budget);
    double last = kRealInf<double>;
    for (passes_ = 0; passes_ < passes;) {
      const bool settled = minimise();
      if (stopped_) return false;
      const double violation = updateMultipliers();
      if (!(violation < kHugeValue)) return false;
      if (violation <= kEnough) break;
      if (settled && violation > kGoodRate * last) setPenalty(mu_ / kPenaltyFactor);
      last = violation;
    }
    if (onlyEqualities()) fitRows(lp_, control_, x_, activity_);
    point.swap(x_);
    return std::all_of(point.begin(), point.end(),
                       [](double x) { return std::fabs(x) < kHugeValue; });
  }

 private:
  double rowLower(RowIndex i) const { return -lp_.upper[lp_.n + i]; }
  double rowUpper(RowIndex i) const { return -lp_.lower[lp_.n + i]; }
  double violation(RowIndex i) const {
    return std::max({0.0, rowLower(i) - activity_[i], activity_[i] - rowUpper(i)});
  }
  bool onlyEqualities() const {
    for (int i = 0; i < lp_.m; ++i)
      if (rowLower(i) != rowUpper(i)) return false;
    return true;
  }

  // The point nearest to zero, and a penalty that weighs its violation about as much as the costs.
  void start() {
    const int n = lp_.n, m = lp_.m;
    x_.resize(n);
    norm_.assign(n, 0.0);
    activity_.assign(m, 0.0);
    multiplier_.assign(m, 0.0);
    slope_.assign(m, 0.0);
    double costs = 0, norms = 0, gaps = 0;
    for (int j = 0; j < n; ++j) {
      x_[j] = std::clamp(0.0, lp_.lower[j], lp_.upper[j]);
      lp_.forColumn(j, [&](int i, double a) {
        norm_[j] += a * a;
        activity_[i] += a * x_[j];
      });
      costs += std::fabs(lp_.cost[j]);
      norms += std::sqrt(norm_[j]);
    }
    for (int i = 0; i < m; ++i) gaps += violation(i);
    size_ = gaps > 0 ? gaps : 1;
    setPenalty(costs > 0 && norms > 0 ? size_ / m * norms / costs : 1);
  }

  double slope(RowIndex i) const {
    const double u = activity_[i] + mu_ * multiplier_[i];
    return (u - std::clamp(u, rowLower(i), rowUpper(i))) / mu_;
  }
  void updateSlopes() {
    for (int i = 0; i < lp_.m; ++i) slope_[i] = slope(i);
  }
  void setPenalty(double mu) {
    mu_ = mu;
    updateSlopes();
  }

  // Passes until they change little, or enough of them. True for the former.
  bool minimise() {
    for (int done = 0; done < kRoundPasses; done += kBlock) {
      keptX_ = x_;
      keptActivity_ = activity_;
      double change = fullPass();
      for (int k = 1; k < kBlock; ++k) change = activePass(k % 2 != 0);
      passes_ += kBlock;
      if (control_.limits.poll(control_.work, 0) != StopReason::None) {
        stopped_ = true;
        return false;
      }
      double residual = 0;
      for (int i = 0; i < lp_.m; ++i) residual += violation(i) * violation(i);
      if (change <= kInnerShare * kInnerShare * residual) return true;
      extrapolate();
    }
    return false;
  }

  // Over all variables; lists those that moved or are inside their bounds, for the other passes of
  // the block: most of a wide model stays at its bounds.
  double fullPass() {
    active_.clear();
    double change = 0;
    for (int j = 0; j < lp_.n; ++j) {
      if (norm_[j] == 0) continue;
      const double moved = moveToMinimum(j);
      change += moved;
      if (moved > 0 || (x_[j] > lp_.lower[j] && x_[j] < lp_.upper[j])) active_.push_back(j);
    }
    control_.work.charge(1.5 * static_cast<double>(lp_.n + lp_.cols.numNz()));
    return change;
  }
  double activePass(bool backward) {
    double change = 0, entries = 0;
    const int count = static_cast<int>(active_.size());
    for (int k = 0; k < count; ++k) {
      const int j = active_[backward ? count - 1 - k : k];
      change += moveToMinimum(j);
      entries += lp_.cols.length(j);
    }
    control_.work.charge(1.5 * (count + 2 * entries));
    return change;
  }

  // A variable to its own minimum, the others fixed. A row without violation counts as if it had
  // one, which can only shorten the step. Returns the squared change of the activities.
  double moveToMinimum(ColIndex j) {
    const NzIndex begin = lp_.cols.start[j], end = lp_.cols.start[j + 1];
    double gradient = lp_.cost[j];
    for (NzIndex p = begin; p < end; ++p) gradient += slope_[lp_.cols.index[p]] * lp_.value[p];
    const double to = std::clamp(x_[j] - gradient * mu_ / norm_[j], lp_.lower[j], lp_.upper[j]);
    const double step = to - x_[j];
    if (step == 0) return 0;
    x_[j] = to;
    for (NzIndex p = begin; p < end; ++p) {
      const int i = lp_.cols.index[p];
      activity_[i] += step * lp_.value[p];
      slope_[i] = slope(i);
    }
    return step * step * norm_[j];
  }

  // Goes on in the direction of the last passes as far as the function falls; bounds cut it short
  // for the variables that reach theirs. Passes alone converge slowly where rows share variables.
  void extrapolate() {
    const double step = std::min(lineSearch(), kLongestStep);
    if (!(step > 0)) return;
    const double before = penalty();
    triedX_ = x_;
    triedActivity_ = activity_;
    for (int i = 0; i < lp_.m; ++i) activity_[i] += step * (activity_[i] - keptActivity_[i]);
    for (int j = 0; j < lp_.n; ++j) {
      const double wanted = x_[j] + step * (x_[j] - keptX_[j]);
      x_[j] = std::clamp(wanted, lp_.lower[j], lp_.upper[j]);
      const double cut = x_[j] - wanted;
      if (cut == 0) continue;
      lp_.forColumn(j, [&](int i, double a) { activity_[i] += a * cut; });
    }
    if (!(penalty() < before)) {
      x_.swap(triedX_);
      activity_.swap(triedActivity_);
    }
    updateSlopes();
  }

  // Newton's method on the piecewise linear slope along the change since the last extrapolation.
  double lineSearch() {
    double costSlope = 0, step = 0;
    for (int j = 0; j < lp_.n; ++j) costSlope += lp_.cost[j] * (x_[j] - keptX_[j]);
    for (int newton = 0; newton < kNewtonSteps; ++newton) {
      double slopeSum = costSlope, curvature = 0;
      for (int i = 0; i < lp_.m; ++i) {
        const double change = activity_[i] - keptActivity_[i];
        const double u = activity_[i] + step * change + mu_ * multiplier_[i];
        const double r = u - std::clamp(u, rowLower(i), rowUpper(i));
        slopeSum += r * change / mu_;
        if (r != 0) curvature += change * change / mu_;
      }
      if (curvature <= 0) break;
      const double correction = -slopeSum / curvature;
      step += correction;
      if (std::fabs(correction) < 0.1 * step) break;
    }
    control_.work.charge(3.0 * (lp_.n + kNewtonSteps * lp_.m));
    return step;
  }

  double penalty() const {
    double sum = 0;
    for (int j = 0; j < lp_.n; ++j) sum += lp_.cost[j] * x_[j];
    for (int i = 0; i < lp_.m; ++i) {
      const double w = slope(i);
      sum += 0.5 * mu_ * w * w;
    }
    return sum;
  }

  // Returns the violation of the rows, relative to that of the start.
  double updateMultipliers() {
    double sum = 0;
    for (int i = 0; i < lp_.m; ++i) sum += violation(i);
    multiplier_ = slope_;
    updateSlopes();
    return sum / size_;
  }

  const ScaledLp<double> &lp_;
  SolveControl &control_;
  Vec<double> x_, activity_;
  Vec<double> norm_;  // squared, of the columns
  Vec<double> multiplier_, slope_;
  Vec<double> keptX_, keptActivity_;    // before the last block of passes
  Vec<double> triedX_, triedActivity_;  // before an extrapolation
  Vec<ColIndex> active_;
  double mu_ = 1, size_ = 1;
  int passes_ = 0;
  bool stopped_ = false;
};

// The sign that the entries of a covering row have: "at least" asks for positive ones, "at most" a
// negative bound for negative ones. 0: the row is neither.
int coverSign(const ScaledLp<double> &lp, RowIndex i) {
  const double lower = lp.lower[lp.n + i], upper = lp.upper[lp.n + i];
  if (lower == -kRealInf<double> && upper < 0) return 1;
  return upper == kRealInf<double> && lower > 0 ? -1 : 0;
}

}  // namespace

bool penaltyCrashPays(const ScaledLp<double> &lp) {
  const int n = lp.n, m = lp.m;
  if (m < kLeastRows || n < kLeastWidth * m ||
      static_cast<double>(lp.cols.numNz()) < kLeastColumnLength * n)
    return false;
  bool allEqual = true, allCovered = true;
  for (int i = 0; i < m; ++i) {
    allEqual &= lp.lower[n + i] == lp.upper[n + i];
    allCovered &= coverSign(lp, i) != 0;
  }
  if (!allEqual && !allCovered) return false;
  int singletons = 0;
  for (int j = 0; j < n; ++j) {
    if (lp.lower[j] != 0 || lp.cost[j] < 0) return false;
    singletons += static_cast<int>(lp.cols.length(j) == 1);
    bool unit = true;
    lp.forColumn(j, [&](int i, double a) {
      const double entry = a / (lp.colScale[j] * lp.rowScale[i]);
      unit &= std::fabs(std::fabs(entry) - 1) <= kUnitTolerance &&
              (allEqual || entry * coverSign(lp, i) > 0);
    });
    if (!unit) return false;
  }
  return singletons <= kMostSingletons * n;
}

bool penaltyCrash(const ScaledLp<double> &lp, SolveControl &control, Vec<double> &point) {
  return PenaltyMethod(lp, control).run(point);
}

}  // namespace tarvik
