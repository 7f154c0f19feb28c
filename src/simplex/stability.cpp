#include "simplex/stability.h"

#include <algorithm>
#include <cmath>

namespace tarvik {

namespace {

constexpr int kMaxRepairs = 99;
constexpr int kMaxHastyRepairs = 4;
// A phase-2 objective from there on is a sign of trouble.
constexpr double kObjectiveLimit = 1e30;
// Relative error of the updated objective that asks for more stable factors.
constexpr double kObjectiveError = 1e-4;
// From this threshold on more stable factors are not to be had.
constexpr double kStableThreshold = 0.5;

struct Severity {
  double change;  // in units of the scale
  double residual;
  double threshold;
};
// The more severe one first.
constexpr Severity kSeverities[] = {{1e7, 4e-10, 0.0625}, {1e6, 1e-10, 0.03125}};

void printRow(Log &log, const char *name, const MeasureStats &stats) {
  log.print("%20s:  %8d  %8.2g  %8.2g  %8.2g  %8.2g\n", name, stats.count, stats.least,
            stats.largest, stats.last, stats.count > 0 ? stats.sum / stats.count : 0.0);
}

}  // namespace

void MeasureStats::add(double value) {
  least = count == 0 ? value : std::min(least, value);
  largest = count == 0 ? value : std::max(largest, value);
  last = value;
  sum += value;
  ++count;
}

void LpStatistics::print(Log &log) const {
  const int others =
      objectiveError.count + feasibilityLoss.count + primalResidual.count + dualResidual.count;
  if (kappa.count <= 1 && others == 0) return;
  log.print("--- LP STATISTICS -----------------------------------------------------\n");
  log.print("%20s   %8s  %8s  %8s  %8s  %8s\n", "", "evals", "min", "max", "final", "average");
  printRow(log, "kappa", kappa);
  printRow(log, "Objective error", objectiveError);
  printRow(log, "feasibility loss", feasibilityLoss);
  printRow(log, "primal residual", primalResidual);
  printRow(log, "dual residual", dualResidual);
  log.print("-----------------------------------------------------------------------\n");
}

void Stability::startSolve(const SimplexOptions &options, int numRows) {
  markowitz_ = options.markowitzTol;
  numRows_ = numRows;
  quad_ = options.quad;
  endFactor_ = options.endFactor;
  quitOnSingular_ = options.quitOnSingular;
  fixedInterval_ = options.luInterval > 0;
  if (fixedInterval_) {
    updateLimit_ = options.luInterval;
  } else {
    const double exponent = 0.7 - 0.1 * options.numericFocus;
    updateLimit_ = std::max(20, static_cast<int>(std::pow(double(numRows), exponent)));
    if (options.numericFocus == 1) updateLimit_ = std::min(updateLimit_, 1000);
    if (options.numericFocus >= 2) updateLimit_ = std::min(updateLimit_, 100);
  }
  repairs_ = troubles_ = 0;
  forced_ = extendRequested_ = hopeless_ = false;
  statistics = {};
}

void Stability::raise(double threshold) { markowitz_ = std::max(markowitz_, threshold); }

void Stability::tighten(double threshold, Log *log) {
  if (threshold <= markowitz_) return;
  markowitz_ = threshold;
  if (log) log->print("Warning: Markowitz tolerance tightened to %g\n", markowitz_);
}

void Stability::shrinkInterval() {
  if (fixedInterval_) return;
  const int root = static_cast<int>(std::sqrt(double(numRows_)));
  const int shorter = std::max(50, std::min(root, static_cast<int>(0.9 * updateLimit_)));
  updateLimit_ = std::min(updateLimit_, shorter);
}

Stability::Repair Stability::noteRepair(int dropped, bool moved, Log *log) {
  ++repairs_;
  statistics.repairs.add(dropped);
  if (log) log->print("Warning: %d variables dropped from basis\n", dropped);
  if (quitOnSingular_ || repairs_ > kMaxRepairs ||
      (endFactor_ == 0 && repairs_ > kMaxHastyRepairs)) {
    hopeless_ = true;
    return Repair::Stop;
  }
  shrinkInterval();
  raise(repairs_ == 1 ? 0.5 : 0.9);
  if (moved) return Repair::GoOn;
  if (repairs_ == 1 && log) log->print("Warning: starting basis discarded\n");
  return repairs_ <= 2 ? Repair::RestartFromSlackBasis : Repair::GoOn;
}

void Stability::noteDiscrepancy(const Discrepancy &seen, Log *log) {
  for (const Severity &severity : kSeverities) {
    if (seen.change <= severity.change * seen.scale && seen.residual <= severity.residual) continue;
    tighten(severity.threshold, log);
    shrinkInterval();
    return;
  }
}

Stability::Check Stability::checkObjective(double recomputed, double updated, bool extended) {
  const double a = std::fabs(recomputed), b = std::fabs(updated);
  const double error = std::fabs(a - b) / (1 + b);
  statistics.objectiveError.add(error);
  if (a < kObjectiveLimit && error <= kObjectiveError) return Check::Fine;
  if (!forced_ && markowitz_ >= kStableThreshold) {
    if (extended || quad_ != -1) return Check::Fail;
    extendRequested_ = true;
    return Check::Extend;
  }
  ++troubles_;
  forced_ = true;
  shrinkInterval();
  raise(kStableThreshold);
  return Check::Refactor;
}

}  // namespace tarvik
