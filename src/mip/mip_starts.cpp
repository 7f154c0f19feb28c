#include "mip/mip_starts.h"

#include <algorithm>
#include <cmath>

#include "mip/mip_solve.h"

namespace tarvik {

namespace {

constexpr int kSkipStarts = -3, kKeepContinuous = -2;
constexpr int kSparseFloor = 100, kMaxSparseWarnings = 5;
constexpr double kSparseShare = 0.9;
// A violation that is told to the caller.
constexpr double kToldViolation = 1e-5;

bool isGiven(double value) { return value < kUndefined; }

std::string nameOf(int id) {
  if (id == kPreviousSolve) return "MIP start from previous solve";
  if (id == kOnlyStart) return "user MIP start";
  return std::string("user MIP start ").append(std::to_string(id));
}

// Out of the hole, to the end that the middle of the hole says.
double outOfHole(double value, double low, double high) {
  if (value <= low || value >= high) return value;
  return value < (low + high) / 2 ? low : high;
}

}  // namespace

bool MipStarts::prepare(const MipStart &start, Vec<double> &x) const {
  const MipModel &model = problem_.model();
  x = start.x;
  bool complete = true;
  for (int j = 0; j < problem_.numCols(); ++j) {
    const bool continuous = model.kind[j] == VarKind::Continuous;
    if (continuous && start.id == kPreviousSolve && options_.startNodeLimit != kKeepContinuous &&
        options_.startNodeLimit != -1)
      x[j] = kUndefined;
    if (!isGiven(x[j])) {
      complete = false;
      continue;
    }
    if (problem_.isIntegral(j)) x[j] = std::floor(x[j] + 0.5);
    if (problem_.isSemi(j)) x[j] = outOfHole(x[j], model.holeLower[j], model.holeUpper[j]);
  }
  return complete;
}

void MipStarts::warnOfSparseStart(const Vec<double> &x, int id) {
  if (id == kPreviousSolve || sparseWarnings_ >= kMaxSparseWarnings) return;
  int discrete = 0, unset = 0;
  for (int j = 0; j < problem_.numCols(); ++j) {
    if (problem_.kind(j) == VarKind::Continuous) continue;
    ++discrete;
    unset += !isGiven(x[j]);
  }
  if (unset <= kSparseFloor || unset <= kSparseShare * discrete) return;
  ++sparseWarnings_;
  control_.log->print(
      "Warning: Completing partial solution with %d unfixed non-continuous variables out of %d\n",
      unset, discrete);
}

bool MipStarts::completeStart(const Vec<double> &x, int id, double &objective) {
  if (id == kPreviousSolve) return false;
  warnOfSparseStart(x, id);
  MipModel fixed = problem_.model();
  for (int j = 0; j < problem_.numCols(); ++j) {
    if (!isGiven(x[j])) continue;
    if (x[j] < fixed.lp.colLower[j] || x[j] > fixed.lp.colUpper[j]) return false;
    fixed.lp.colLower[j] = fixed.lp.colUpper[j] = x[j];
    // A value on the right side of its hole is an ordinary bound.
    if (isSemi(fixed.kind[j]))
      fixed.kind[j] = isIntegral(fixed.kind[j]) ? VarKind::Integer : VarKind::Continuous;
  }
  MipOptions options = options_;
  options.subMip = true;
  options.simplex.logging = false;
  options.cutoff = target_.cutoff();
  options.nodeLimit = options_.startNodeLimit >= 0 ? options_.startNodeLimit : options_.subMipNodes;
  SilentLog silent;
  Log *log = control_.log;
  control_.log = &silent;
  const MipOutcome outcome = MipSolve(fixed, options, control_).run();
  control_.log = log;
  if (outcome.solutions.empty()) return false;
  control_.log->print("%s produced solution with objective %g (%.2fs)\n", nameOf(id).c_str(),
                      options_.objSense * outcome.solutions.front().objective,
                      control_.limits.seconds());
  return target_.accept(outcome.solutions.front().x, objective);
}

// Names the worst violated constraint of a start that is complete.
void MipStarts::reportViolation(const Vec<double> &x, const char *name) const {
  const SparseMatrix &rows = problem_.rows();
  const LpModel &lp = problem_.lp();
  int worst = -1;
  double most = kToldViolation;
  for (int i = 0; i < rows.numMajor; ++i) {
    CompensatedSum sum;
    for (NzIndex k = rows.start[i]; k < rows.start[i + 1]; ++k)
      sum.addProduct(rows.value[k], x[rows.index[k]]);
    const double violation = std::max(lp.rowLower[i] - sum.value(), sum.value() - lp.rowUpper[i]);
    if (violation <= most) continue;
    most = violation;
    worst = i;
  }
  if (worst >= 0)
    control_.log->print("%s violates constraint %s by %.9f\n", name, target_.rowName(worst).c_str(),
                        most);
}

void MipStarts::processOneStart(const MipStart &start) {
  const std::string name = nameOf(start.id);
  Vec<double> x;
  const bool complete = prepare(start, x);
  double objective = 0;
  bool accepted = complete && target_.accept(x, objective);
  if (!accepted) accepted = completeStart(x, start.id, objective);
  if (accepted) {
    control_.log->print("Loaded %s with objective %g\n", name.c_str(),
                        options_.objSense * objective);
    return;
  }
  if (complete) reportViolation(x, name.c_str());
  control_.log->print("%s did not produce a new incumbent solution\n", name.c_str());
}

void MipStarts::processMipStarts(const Vec<MipStart> &starts) {
  if (starts.empty()) return;
  Log &log = *control_.log;
  if (options_.startNodeLimit == kSkipStarts) {
    log.print("\nSkipped MIP start processing due to StartNodeLimit parameter\n\n");
    return;
  }
  const double seconds = control_.limits.seconds(), work = control_.work.counted();
  log.print("\n");
  for (const MipStart &start : starts) {
    if (std::none_of(start.x.begin(), start.x.end(), isGiven))
      log.print("No start values specified in MIP start\n");
    else
      processOneStart(start);
  }
  const double elapsed = control_.limits.seconds() - seconds;
  if (elapsed > 1) {
    const std::string what =
        starts.size() == 1 ? "MIP start" : std::to_string(starts.size()).append(" MIP starts");
    log.print("Processed %s in %.2f seconds (%.2f work units)\n", what.c_str(), elapsed,
              (control_.work.counted() - work) * 1e-9);
  }
  log.print("\n");
}

}  // namespace tarvik
