#include "mip/mip_solve.h"

#include <algorithm>
#include <atomic>
#include <cmath>

#include "mip/gap_rules.h"
#include "mip/presolve/network_structure.h"
#include "presolve/presolve_log.h"

namespace tarvik {

// The user's model, its solutions so far, and the map from the presolved problem to it.
class MipSolve::Space : public UserSpace {
 public:
  Space(MipSolve &owner)
      : owner_(owner), problem_(MipModel(owner.model_), owner.options_.tolerances) {}

  bool map(const Vec<double> &x, Vec<double> &userPoint, double &objective,
           SolveControl &control) override {
    return check(owner_.postsolve(x), userPoint, objective, control);
  }

  bool acceptFull(const Vec<double> &x, double &objective) {
    Vec<double> point;
    if (!check(x, point, objective, owner_.control_)) return false;
    const double cutoff = owner_.options_.cutoff;
    if ((cutoff < kUserInf && objective >= cutoff) || !isWelcome(point, objective)) return false;
    keep(std::move(point), objective);
    return true;
  }

  // Rounds, repairs and checks a point of the model.
  bool check(const Vec<double> &x, Vec<double> &point, double &objective, SolveControl &control) {
    point = x;
    for (int j = 0; j < problem_.numCols(); ++j) {
      if (problem_.isIntegral(j)) point[j] = std::round(point[j]);
      point[j] = std::min(std::max(point[j], problem_.lp().colLower[j]), problem_.lp().colUpper[j]);
    }
    const double tolerance = problem_.tolerances().primal;
    Vec<double> repaired;
    if (problem_.violation(point) > tolerance) {
      // Made anew for every point, so that one does not depend on the others before it.
      PointRepair repair(problem_, owner_.options_.simplex);
      const bool done =
          repair.run(point, control, repaired) && problem_.violation(repaired) <= tolerance;
      iterations_ += static_cast<std::int64_t>(repair.iterations());
      if (done)
        point.swap(repaired);
      else if (problem_.violation(x) <= tolerance)
        point = x;
      else
        return false;
    }
    for (double &value : point) value += 0.0;  // zeros have no sign for callers
    objective = problem_.objective(point);
    return true;
  }

  const Problem &problem() const { return problem_; }
  const Vec<MipSolution> &solutions() const { return solutions_; }
  double iterations() const { return static_cast<double>(iterations_); }

  void keep(Vec<double> &&x, double objective) override {
    const auto place = std::lower_bound(
        solutions_.begin(), solutions_.end(), objective,
        [](const MipSolution &solution, double value) { return solution.objective < value; });
    solutions_.insert(place, MipSolution{objective, std::move(x)});
    const std::size_t limit = std::max(1, owner_.options_.poolSolutions);
    if (solutions_.size() > limit) solutions_.resize(limit);
  }

  Vec<double> pointOf(const Vec<double> &x) const override { return owner_.postsolve(x); }

 private:
  // What the observer says to a solution that no search has found.
  bool isWelcome(const Vec<double> &point, double objective) const {
    MipObserver *observer = owner_.observer;
    if (!observer) return true;
    MipProgress progress;
    progress.solutions = static_cast<int>(solutions_.size());
    if (!solutions_.empty()) progress.incumbent = solutions_.front().objective;
    if (objective >= progress.incumbent && !observer->mayRefuse()) return true;
    return observer->onSolution(progress, point, objective) || !observer->mayRefuse();
  }

  MipSolve &owner_;
  Problem problem_;
  std::atomic<std::int64_t> iterations_{0};  // of repairs
  Vec<MipSolution> solutions_;
};

MipSolve::MipSolve(const MipModel &model, const MipOptions &options, SolveControl &control)
    : model_(model), options_(adapted(options)), control_(control) {}
MipSolve::~MipSolve() = default;

MipOptions MipSolve::adapted(MipOptions options) const {
  options.simplex.cutoff = kUserInf;
  // Reductions keep one optimum, not every solution.
  if (options.poolSearchMode > 0) {
    options.presolve.level = 0;
    options.presolveMip = false;
    options.symmetry = 0;
  }
  // Constraints that come later may treat columns differently that the model treats alike.
  if (options.presolve.keepPoints) options.symmetry = 0;
  return options;
}

// What presolve achieved, and what is left.
void MipSolve::logPresolved(const MipModel &model, double seconds) const {
  const MipModel &reduced = lastPresolve().reduced();
  const int rows = model.lp.numRows - reduced.lp.numRows;
  const int cols = model.lp.numCols - reduced.lp.numCols;
  Log &log = *control_.log;
  const MipPresolveStats &stats = lastPresolve().stats();
  logSparsified(stats.sparsified, stats.sparsifiedFrom, log);
  if (rows < 0 || cols < 0)
    log.print("Presolve added %d rows and %d columns\n", std::max(-rows, 0), std::max(-cols, 0));
  if (rows > 0 || cols > 0)
    log.print("Presolve removed %d rows and %d columns\n", std::max(rows, 0), std::max(cols, 0));
  log.print("Presolve time: %.2fs\n", seconds);
  if (lastPresolve().solved()) log.print("Presolve: All rows and columns removed\n");
  if (reduced.lp.numCols == 0) return;
  log.print("Presolved: %d rows, %d columns, %lu nonzeros\n", reduced.lp.numRows,
            reduced.lp.numCols, static_cast<unsigned long>(reduced.lp.a.numNz()));
  if (!reduced.sos.empty())
    log.print("Presolved model has %d SOS constraint(s)\n", static_cast<int>(reduced.sos.size()));
  log.print("\n");
}

// Running: there is something to be searched.
MipStatus MipSolve::presolve(const MipModel &model) {
  const ProgressScope told(control_, observer && !options_.subMip ? observer->progress() : nullptr);
  presolves_.push_back(std::make_unique<MipPresolve>(model, options_, control_));
  const double start = control_.limits.seconds();
  MipStatus status = MipStatus::Running;
  switch (presolves_.back()->run()) {
    case PresolveStatus::Infeasible:
      status = MipStatus::Infeasible;
      break;
    case PresolveStatus::Unbounded:
    case PresolveStatus::InfeasibleOrUnbounded:
      status = MipStatus::InfeasibleOrUnbounded;
      break;
    case PresolveStatus::Stopped:
      status = statusOf(control_.limits.pollNow(control_.work, 0));
      if (status == MipStatus::Running) status = MipStatus::Interrupted;
      break;
    case PresolveStatus::Unchanged:
    case PresolveStatus::Reduced:
    case PresolveStatus::Solved:
      break;
  }
  const double seconds = control_.limits.seconds() - start;
  if (options_.subMip) return status;
  if (status == MipStatus::Running)
    logPresolved(model, seconds);
  else
    control_.log->print("Presolve time: %.2fs\n", seconds);
  return status;
}

Vec<double> MipSolve::postsolve(const Vec<double> &x) const {
  Vec<double> point(x);
  for (auto stage = presolves_.rbegin(); stage != presolves_.rend(); ++stage)
    point = (*stage)->postsolve(point);
  return point;
}

Vec<double> MipSolve::imageOf(const Vec<double> &x) const {
  Vec<double> point(x);
  for (const auto &stage : presolves_) point = stage->imageOf(point);
  return point;
}

bool MipSolve::crushRow(LinearRow &row) const {
  LinearRow result(row);
  for (const auto &stage : presolves_)
    if (!stage->crushRow(result)) return false;
  row = std::move(result);
  return true;
}

void MipSolve::openSearch() {
  MipModel reduced(lastPresolve().reduced());
  findNetwork(reduced);
  auto problem = std::make_unique<Problem>(std::move(reduced), options_.tolerances);
  if (!options_.subMip && !search_ && problem->numCols() > 0) {
    int binary = 0;
    for (int j = 0; j < problem->numCols(); ++j) binary += problem->isBinary(j);
    control_.log->print("Variable types: %d continuous, %d integer (%d binary)\n",
                        problem->numContinuous(), problem->numIntegral(), binary);
  }
  auto search = std::make_unique<MipSearch>(*problem, options_, control_, *space_);
  search->observer = observer;
  for (const MipSolution &known : space_->solutions())
    search->knowSolution(known.objective, imageOf(known.x));
  if (search_) search->inherit(*search_);
  search_ = std::move(search);
  problem_ = std::move(problem);
}

// Presolves once more with the bounds that the root has found.
MipStatus MipSolve::restart() {
  --options_.restarts;
  options_.noRelTime = options_.noRelWork = 0;
  MipModel tightened(problem_->model());
  const Domain &root = search_->rootDomain();
  for (int j = 0; j < problem_->numCols(); ++j) {
    if (isSemi(tightened.kind[j])) continue;  // their bounds are those beyond the hole
    tightened.lp.colLower[j] = root.lower(j);
    tightened.lp.colUpper[j] = root.upper(j);
  }
  if (!options_.subMip) control_.log->print("\nRoot is presolved again with its tighter bounds\n");
  const MipStatus status = presolve(tightened);
  if (status == MipStatus::Running) {
    openSearch();
    return search_->run();
  }
  presolves_.pop_back();
  // Its relaxation had an optimum: unbounded it cannot be.
  const bool nothingLeft =
      status == MipStatus::Infeasible || status == MipStatus::InfeasibleOrUnbounded;
  return nothingLeft ? search_->close() : status;
}

namespace {

// What has a point is not infeasible: nothing is better than it, or it makes the problem unbounded.
void trustSolutions(MipOutcome &outcome) {
  const bool hasPoint = !outcome.solutions.empty();
  if (hasPoint && outcome.status == MipStatus::InfeasibleOrUnbounded)
    outcome.status = MipStatus::Unbounded;
  if (outcome.status == MipStatus::Unbounded) outcome.bound = -kUserInf;
  if (!hasPoint || outcome.status != MipStatus::Infeasible) return;
  outcome.status = MipStatus::Optimal;
  outcome.bound = outcome.solutions.front().objective;
}

}  // namespace

MipOutcome MipSolve::finish(MipStatus status) {
  MipOutcome outcome;
  outcome.status = status;
  outcome.bound = search_->bestBound();
  outcome.explored = search_->explored();
  outcome.unexplored = search_->unexplored();
  outcome.iterations = search_->iterations() + space_->iterations();
  outcome.cuts = search_->cutCounters();
  // A node of the tree is unbounded only with a point.
  if (status == MipStatus::Unbounded && search_->endedAtRoot()) resolveUnbounded(outcome);
  outcome.solutions = space_->solutions();
  trustSolutions(outcome);
  // The root of a restart has bounds that rest on the cutoff. Infinity is one, too.
  const bool evenWithoutCutoff =
      presolves_.size() == 1 && search_->rootStatus() == LpStatus::Infeasible;
  const bool hasCutoff = options_.cutoff < kUserInf || search_->rootObjective() >= kUserInf;
  outcome.cutOff = outcome.status == MipStatus::Infeasible && outcome.solutions.empty() &&
                   hasCutoff && !evenWithoutCutoff;
  return outcome;
}

bool MipSolve::canGoOn(const MipOptions &options) const {
  return search_ && search_->canGoOn(adapted(options));
}

MipOutcome MipSolve::goOn(const MipOptions &options) {
  const ProgressScope quiet(control_, nullptr);
  options_ = adapted(options);
  search_->observer = observer;
  return finish(search_->goOn(options_));
}

// Whether the problem has a point at all. Any makes it unbounded where its relaxation is.
void MipSolve::resolveUnbounded(MipOutcome &outcome) {
  if (!space_->solutions().empty()) return;
  MipOptions options = options_;
  options.iterationLimit -= outcome.iterations;
  const MipOutcome found = findAnyPoint(model_, options, control_, [this] {
    if (observer) observer->onPolling();
  });
  outcome.iterations += found.iterations;
  if (!found.solutions.empty()) return;
  // A limit does not change what is known already.
  const bool tells =
      found.status == MipStatus::Infeasible || found.status == MipStatus::Interrupted;
  outcome.status = tells ? found.status : MipStatus::InfeasibleOrUnbounded;
}

void MipSolve::processStarts() {
  MipStarts::Target target;
  target.cutoff = [this] {
    return std::min(options_.cutoff,
                    space_->solutions().empty() ? kUserInf : space_->solutions().front().objective);
  };
  target.accept = [this, &target](const Vec<double> &x, double &objective) {
    const double cutoff = target.cutoff();
    return space_->acceptFull(x, objective) && objective < cutoff;
  };
  target.rowName = [this](int row) {
    return rowName ? rowName(row) : std::string("R").append(std::to_string(row));
  };
  MipStarts(space_->problem(), options_, control_, target).processMipStarts(starts_);
}

// Holes and sets would keep the vertices of a network from being integral.
void MipSolve::findNetwork(MipModel &reduced) const {
  if (options_.presolve.level == 0 || !options_.presolveMip || options_.presolve.keepPoints ||
      !reduced.sos.empty() || std::any_of(reduced.kind.begin(), reduced.kind.end(), isSemi))
    return;
  const NetworkStructure found = detectNetworkStructure(reduced);
  if (found.continuous > 0 && !options_.subMip)
    control_.log->print("Network structure: %d continuous variables (chg=%d)\n", found.continuous,
                        found.changed ? 1 : 0);
}

MipOutcome MipSolve::run() {
  const ProgressScope quiet(control_, nullptr);
  MipOutcome outcome;
  space_ = std::make_unique<Space>(*this);
  processStarts();
  outcome.status = presolve(model_);
  if (outcome.status != MipStatus::Running) {
    outcome.solutions = space_->solutions();
    trustSolutions(outcome);
    return outcome;
  }
  openSearch();
  MipStatus status = search_->run();
  while (status == MipStatus::Restart) status = restart();
  return finish(status);
}

namespace {

class SearchWatch : public MipObserver {
 public:
  explicit SearchWatch(const std::function<void()> &tell) : tell_(tell) {}
  void onProgress(const MipProgress &) override { tell_(); }

 private:
  const std::function<void()> &tell_;
};

}  // namespace

MipOutcome findAnyPoint(const MipModel &model, const MipOptions &options, SolveControl &control,
                        const std::function<void()> &whileSearching) {
  MipModel feasibility = model;
  std::fill(feasibility.lp.cost.begin(), feasibility.lp.cost.end(), 0.0);
  MipOptions any = nestedOptions(options);
  any.cutoff = kUserInf;
  any.solutionLimit = 1;
  SearchWatch watch(whileSearching);
  MipSolve solve(feasibility, any, control);
  solve.observer = &watch;
  return solve.run();
}

}  // namespace tarvik
