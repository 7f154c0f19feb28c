#include "mip/mip_starts.h"

#include <algorithm>
#include <cmath>

#include "mip/mip_solve.h"

namespace tarvik {

namespace {

constexpr int kSkipStarts = -3, kKeepContinuous = -2, kAutomatic = -1;
constexpr int kSparseFloor = 100, kMaxSparseWarnings = 5;
constexpr double kSparseShare = 0.9;
// A violation that is told to the caller.
constexpr double kToldViolation = 1e-5;
constexpr double kTellingDifference = 1e-5;
// A relative gain below it is rounding.
constexpr double kGain = 1e-9;

bool isGiven(double value) { return value < kUndefined; }

std::string nameOf(int id) {
  if (id == kPreviousSolve) return "MIP start from previous solve";
  if (id == kOnlyStart) return "user MIP start";
  return std::string("user MIP start ").append(std::to_string(id));
}

// What the search that completes a start tells.
class CompletionWatch : public MipObserver {
 public:
  std::function<void(const Vec<double> &x)> whenFound;
  std::function<void(double nodes)> whenExplored;

  bool onSolution(const MipProgress &, const Vec<double> &x, double) override {
    whenFound(x);
    return true;
  }
  void onProgress(const MipProgress &progress) override {
    if (whenExplored) whenExplored(progress.explored);
  }
};

// Values of a semi column with the hole (low, high), one end of which is zero: what is nearer to
// zero than to the other end becomes zero, the rest of the hole goes to the other end.
double outOfHole(double value, double low, double high) {
  if (high > 0) return value < high / 2 ? 0 : std::max(value, high);
  return value > low / 2 ? 0 : std::min(value, low);
}

}  // namespace

bool MipStarts::prepare(const MipStart &start, Vec<double> &x) const {
  const MipModel &model = problem_.model();
  x = start.x;
  bool complete = true;
  for (int j = 0; j < problem_.numCols(); ++j) {
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

// Defaults but for what keeps the answer right and what limits it.
MipOptions MipStarts::completionOptions(bool zeroObjective) const {
  MipOptions options;
  options.tolerances = options_.tolerances;
  options.simplex = options_.simplex;
  options.simplex.logging = false;
  options.presolve = options_.presolve;
  options.presolve.level = -1;
  options.presolve.logging = false;
  options.subMip = true;
  options.cutoff = zeroObjective ? kUserInf : target_.cutoff();
  options.nodeLimit = options_.startNodeLimit >= 0 ? options_.startNodeLimit : options_.subMipNodes;
  options.threads = options_.threads;
  options.displayInterval = options_.displayInterval;
  options.objSense = options_.objSense;
  return options;
}

void MipStarts::reportProgress(const std::string &name, double nodes) {
  const double now = control_.limits.seconds(), interval = options_.displayInterval;
  if (std::floor(now / interval) == std::floor(lastLine_ / interval)) return;
  lastLine_ = now;
  std::string what(name);
  if (numStarts_ > 1) what.append(" (of ").append(std::to_string(numStarts_)).append(")");
  control_.log->print("Processing %s: %.0f nodes explored in subMIP, total elapsed time %.0fs\n",
                      what.c_str(), nodes, now);
}

// A search with the given values fixed; its status comes back as well.
bool MipStarts::searchAround(const Vec<double> &given, int id, double &objective,
                             MipStatus &status) {
  const std::string name = nameOf(id);
  MipModel fixed = problem_.model();
  const bool zeroObjective = options_.zeroObjStart && id != kPreviousSolve;
  if (zeroObjective) std::fill(fixed.lp.cost.begin(), fixed.lp.cost.end(), 0.0);
  status = MipStatus::Infeasible;
  for (int j = 0; j < problem_.numCols(); ++j) {
    if (!isGiven(given[j])) continue;
    if (given[j] < fixed.lp.colLower[j] || given[j] > fixed.lp.colUpper[j]) return false;
    fixed.lp.colLower[j] = fixed.lp.colUpper[j] = given[j];
    // A value on the right side of its hole is an ordinary bound.
    fixed.kind[j] = withoutHole(fixed.kind[j]);
  }
  bool accepted = false;
  CompletionWatch watch;
  watch.whenFound = [&](const Vec<double> &x) {
    if (!target_.accept(x, objective)) return;
    accepted = true;
    if (id != kPreviousSolve)
      control_.log->print("%s produced solution with objective %g (%.2fs)\n", name.c_str(),
                          options_.objSense * objective + 0.0, control_.limits.seconds());
  };
  if (id != kPreviousSolve) watch.whenExplored = [&](double nodes) { reportProgress(name, nodes); };
  MipSolve solve(fixed, completionOptions(zeroObjective), control_);
  solve.observer = &watch;
  status = solve.run().status;
  return accepted;
}

// The values that differ from where columns rest (zero, or the bound nearest to it), the most
// telling ones first, as far as they do not contradict each other.
Vec<double> MipStarts::consistentPart(const Vec<double> &x) {
  Vec<double> difference(problem_.numCols(), 0);
  Vec<int> order;
  Domain domain(problem_);
  for (int j = 0; j < problem_.numCols(); ++j) {
    if (!isGiven(x[j]) || problem_.kind(j) == VarKind::Continuous) continue;
    const double rest = std::min(std::max(0.0, domain.lower(j)), domain.upper(j));
    difference[j] = std::fabs(x[j] - rest);
    if (difference[j] >= kTellingDifference) order.push_back(j);
  }
  std::stable_sort(order.begin(), order.end(),
                   [&](int a, int b) { return difference[a] > difference[b]; });
  Vec<double> kept(problem_.numCols(), kUndefined);
  if (!domain.propagate(control_.work)) return kept;
  for (const int j : order) {
    const int level = domain.level();
    if (x[j] < domain.lower(j) || x[j] > domain.upper(j)) continue;
    if (domain.decide({{j, BoundSide::Lower, x[j]}, {j, BoundSide::Upper, x[j]}}) &&
        domain.propagate(control_.work))
      kept[j] = x[j];
    else
      domain.backtrackTo(level);
  }
  return kept;
}

bool MipStarts::completeStart(const Vec<double> &x, int id, double &objective) {
  warnOfSparseStart(x, id);
  MipStatus status;
  if (searchAround(x, id, objective, status)) return true;
  // Values that contradict each other, or are too hard to complete. Where a solution is known
  // already, the start may just be no better.
  const bool stuck = status == MipStatus::Infeasible || status == MipStatus::NodeLimit ||
                     status == MipStatus::InfeasibleOrUnbounded;
  if (!stuck || target_.cutoff() < kUserInf) return false;
  const Vec<double> part = consistentPart(x);
  if (std::none_of(part.begin(), part.end(), isGiven)) return false;
  control_.log->print("Another try with MIP start\n");
  return searchAround(part, id, objective, status);
}

// The discrete values of what the previous solve left, with new continuous ones; none of the
// discrete ones is searched for.
bool MipStarts::recomputeContinuous(Vec<double> x, double &objective) {
  if (problem_.numContinuous() == 0) return false;
  for (int j = 0; j < problem_.numCols(); ++j) {
    if (problem_.kind(j) == VarKind::Continuous)
      x[j] = kUndefined;
    else if (!isGiven(x[j]))
      return false;
  }
  MipStatus status;
  return searchAround(x, kPreviousSolve, objective, status);
}

// Continuous values are kept where that is asked for, or where computing them takes long and is
// likely to change little. New ones may be worse when a limit stops their computation: then the
// kept ones serve.
bool MipStarts::takePrevious(const MipStart &start, const Vec<double> &x, double &objective) {
  const int limit = options_.startNodeLimit;
  const bool keeps = limit == kKeepContinuous || (limit == kAutomatic && start.mostlyUnchanged);
  const bool complete = std::all_of(x.begin(), x.end(), isGiven);
  if (keeps && complete && target_.accept(x, objective)) return true;
  const bool recomputed = limit != kKeepContinuous && recomputeContinuous(x, objective);
  if (keeps || !complete) return recomputed;
  const double cutoff = target_.cutoff();
  const bool better = problem_.objective(x) < cutoff - kGain * std::max(1.0, std::fabs(cutoff));
  return (better && target_.accept(x, objective)) || recomputed;
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
  MipStatus status;
  const bool complete = prepare(start, x);
  double objective = 0;
  bool accepted = false;
  if (start.id == kPreviousSolve)
    accepted = takePrevious(start, x, objective);
  else if (complete)
    accepted = target_.accept(x, objective) || searchAround(x, start.id, objective, status);
  else
    accepted = completeStart(x, start.id, objective);
  if (accepted) {
    control_.log->print("Loaded %s with objective %g\n", name.c_str(),
                        options_.objSense * objective + 0.0);
    return;
  }
  control_.log->print("%s did not produce a new incumbent solution\n", name.c_str());
  if (complete) reportViolation(x, name.c_str());
}

void MipStarts::processMipStarts(const Vec<MipStart> &starts) {
  if (starts.empty()) return;
  Log &log = *control_.log;
  if (options_.startNodeLimit == kSkipStarts) {
    log.print("\nSkipped MIP start processing due to StartNodeLimit parameter\n\n");
    return;
  }
  const double seconds = control_.limits.seconds(), work = control_.work.counted();
  numStarts_ = static_cast<int>(starts.size());
  lastLine_ = seconds;
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
