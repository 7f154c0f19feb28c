#include "simplex/row_fit.h"

#include <algorithm>
#include <cmath>

namespace tarvik {

namespace {

constexpr int kRounds = 40;
constexpr int kSteps = 20;
// Squared residual, per row, that is none.
constexpr double kNoResidual = 1e-24;
// A round has to take away this share of the squared residual.
constexpr double kLeastProgress = 0.01;

class RowFit {
 public:
  RowFit(const ScaledLp<double> &lp, SolveControl &control, Vec<double> &x, Vec<double> &activity)
      : lp_(lp), control_(control), x_(x), activity_(activity) {}

  void run() {
    residual_.resize(lp_.m);
    change_.resize(lp_.m);
    gradient_.resize(lp_.n);
    weight_.resize(lp_.n);
    for (int k = 0; k < kRounds; ++k) {
      const double before = squares(residuals());
      if (before <= kNoResidual * lp_.m || !round(before)) return;
    }
  }

 private:
  const Vec<double> &residuals() {
    for (int i = 0; i < lp_.m; ++i) {
      const double a = activity_[i];
      residual_[i] = std::clamp(a, -lp_.upper[lp_.n + i], -lp_.lower[lp_.n + i]) - a;
    }
    return residual_;
  }
  static double squares(const Vec<double> &v) {
    double sum = 0;
    for (const double entry : v) sum += entry * entry;
    return sum;
  }

  // The gradient over the columns that may move; returns its square.
  double computeGradient() {
    double sum = 0;
    for (int j = 0; j < lp_.n; ++j) {
      double g = 0;
      if (weight_[j] > 0) lp_.forColumn(j, [&](int i, double a) { g += a * residual_[i]; });
      gradient_[j] = weight_[j] * g;
      sum += gradient_[j] * gradient_[j];
    }
    control_.work.charge(1.5 * static_cast<double>(lp_.cols.numNz()));
    return sum;
  }
  // What a direction changes in the rows; returns its square.
  double computeChange(const Vec<double> &direction) {
    std::fill(change_.begin(), change_.end(), 0.0);
    for (int j = 0; j < lp_.n; ++j) {
      const double d = weight_[j] * direction[j];
      if (d != 0) lp_.forColumn(j, [&](int i, double a) { change_[i] += a * d; });
    }
    control_.work.charge(1.5 * static_cast<double>(lp_.cols.numNz()));
    return squares(change_);
  }

  // Weight 0 holds a variable at a bound that the residual would push it through.
  void setWeights() {
    weight_.assign(lp_.n, 1.0);
    computeGradient();
    for (int j = 0; j < lp_.n; ++j) {
      const double room = gradient_[j] > 0 ? lp_.upper[j] - x_[j] : x_[j] - lp_.lower[j];
      weight_[j] = room > 0 ? 1 : 0;
    }
  }

  bool round(double before) {
    setWeights();
    Vec<double> step(lp_.n, 0.0);
    double size = computeGradient();
    Vec<double> direction(gradient_);
    for (int k = 0; k < kSteps && size > 0; ++k) {
      const double curvature = computeChange(direction);
      if (!(curvature > 0)) break;
      const double length = size / curvature;
      for (int j = 0; j < lp_.n; ++j) step[j] += length * direction[j];
      for (int i = 0; i < lp_.m; ++i) residual_[i] -= length * change_[i];
      const double next = computeGradient();
      const double share = next / size;
      size = next;
      for (int j = 0; j < lp_.n; ++j) direction[j] = gradient_[j] + share * direction[j];
    }
    return take(step, before);
  }

  bool take(const Vec<double> &step, double before) {
    const Vec<double> oldX(x_), oldActivity(activity_);
    for (int j = 0; j < lp_.n; ++j) {
      const double to = std::clamp(x_[j] + weight_[j] * step[j], lp_.lower[j], lp_.upper[j]);
      const double moved = to - x_[j];
      if (moved == 0) continue;
      x_[j] = to;
      lp_.forColumn(j, [&](int i, double a) { activity_[i] += a * moved; });
    }
    const double after = squares(residuals());
    if (after < (1 - kLeastProgress) * before) return true;
    if (after < before) return false;
    x_ = oldX;
    activity_ = oldActivity;
    return false;
  }

  const ScaledLp<double> &lp_;
  SolveControl &control_;
  Vec<double> &x_, &activity_;
  Vec<double> residual_, change_;
  Vec<double> gradient_, weight_;
};

}  // namespace

void fitRows(const ScaledLp<double> &lp, SolveControl &control, Vec<double> &x,
             Vec<double> &activity) {
  RowFit(lp, control, x, activity).run();
}

}  // namespace tarvik
