#include "mip/problem.h"

#include <algorithm>
#include <cmath>

#include "base/compensated_sum.h"

namespace tarvik {

namespace {

// Objective coefficients that are multiples of a common step up to this relative error count as
// exact ones.
constexpr double kStepError = 1e-11;
// Steps below this share of the largest coefficient say nothing.
constexpr double kSmallestStep = 1e-6;

// Slack with which an integral bound is rounded.
constexpr double kRoundingSlack = 1e-6;

double greatestCommonDivisor(double a, double b, double tolerance) {
  while (b > tolerance) {
    const double rest = a - std::floor(a / b + 0.5) * b;
    a = b;
    b = std::fabs(rest);
  }
  return a;
}

}  // namespace

Problem::Problem(MipModel &&model, const MipTolerances &tolerances)
    : model_(std::move(model)), tolerances_(tolerances), rows_(transpose(model_.lp.a)) {
  roundIntegralBounds();
  const LpModel &lp = model_.lp;
  downLocks_.assign(lp.numCols, 0);
  upLocks_.assign(lp.numCols, 0);
  for (int j = 0; j < lp.numCols; ++j) {
    numIntegral_ += isIntegral(j);
    if (isSemi(j))
      semis_.push_back(j);
    else if (isIntegral(j))
      integers_.push_back(j);
    for (NzIndex k = lp.a.start[j]; k < lp.a.start[j + 1]; ++k) {
      const int i = lp.a.index[k];
      const bool rises = lp.a.value[k] > 0;
      if (!isInf(lp.rowLower[i])) ++(rises ? downLocks_ : upLocks_)[j];
      if (!isInf(lp.rowUpper[i])) ++(rises ? upLocks_ : downLocks_)[j];
    }
  }
  findObjectiveStep();
}

void Problem::roundIntegralBounds() {
  for (int j = 0; j < numCols(); ++j) {
    if (!isIntegral(j)) continue;
    double &lower = model_.lp.colLower[j], &upper = model_.lp.colUpper[j];
    if (!isInf(lower)) lower = std::ceil(lower - kRoundingSlack);
    if (!isInf(upper)) upper = std::floor(upper + kRoundingSlack);
  }
}

void Problem::findObjectiveStep() {
  double step = 0, largest = 0;
  for (int j = 0; j < numCols(); ++j) {
    const double cost = std::fabs(lp().cost[j]);
    if (cost == 0) continue;
    if (!isIntegral(j)) return;
    largest = std::max(largest, cost);
  }
  const double tolerance = kSmallestStep * std::max(1.0, largest) * 0.5;
  for (int j = 0; j < numCols(); ++j)
    if (isIntegral(j) && lp().cost[j] != 0)
      step = greatestCommonDivisor(std::max(step, std::fabs(lp().cost[j])),
                                   std::min(step, std::fabs(lp().cost[j])), tolerance);
  if (step < kSmallestStep * largest || step == 0) return;
  for (int j = 0; j < numCols(); ++j) {
    if (!isIntegral(j)) continue;
    const double multiple = lp().cost[j] / step;
    if (std::fabs(multiple - std::round(multiple)) >
        kStepError * std::max(1.0, std::fabs(multiple)))
      return;
  }
  objectiveStep_ = step;
}

double Problem::objective(const Vec<double> &x) const {
  CompensatedSum sum(lp().offset);
  for (int j = 0; j < numCols(); ++j)
    if (lp().cost[j] != 0) sum.addProduct(lp().cost[j], x[j]);
  return sum.value();
}

namespace {

double holeViolation(double x, double lower, double upper) {
  return std::max(0.0, std::min(x - lower, upper - x));
}

// The least that has to be taken from the members so that the set's rule holds.
double sosViolation(const SosSet &set, const Vec<double> &x) {
  double total = 0, kept = 0;
  const int count = static_cast<int>(set.cols.size());
  for (int k = 0; k < count; ++k) {
    const double here = std::fabs(x[set.cols[k]]);
    const double next = set.type == 2 && k + 1 < count ? std::fabs(x[set.cols[k + 1]]) : 0;
    total += here;
    kept = std::max(kept, here + next);
  }
  return total - kept;
}

}  // namespace

double Problem::violation(const Vec<double> &x) const {
  const LpModel &model = lp();
  double worst = 0;
  const double integralScale = tolerances_.primal / tolerances_.integral;
  for (int j = 0; j < numCols(); ++j) {
    if (std::isnan(x[j])) return kUserInf;
    worst = std::max({worst, model.colLower[j] - x[j], x[j] - model.colUpper[j]});
    if (isIntegral(j)) worst = std::max(worst, std::fabs(x[j] - std::round(x[j])) * integralScale);
    if (isSemi(j))
      worst = std::max(worst, holeViolation(x[j], model_.holeLower[j], model_.holeUpper[j]));
  }
  for (int i = 0; i < numRows(); ++i) {
    CompensatedSum sum;
    for (NzIndex k = rows_.start[i]; k < rows_.start[i + 1]; ++k)
      sum.addProduct(rows_.value[k], x[rows_.index[k]]);
    const double activity = sum.value();
    worst = std::max({worst, model.rowLower[i] - activity, activity - model.rowUpper[i]});
  }
  for (const SosSet &set : model_.sos) worst = std::max(worst, sosViolation(set, x));
  return worst;
}

}  // namespace tarvik
