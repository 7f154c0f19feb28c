#include "mip/explorer.h"

#include <algorithm>
#include <cmath>

#include "mip/gap_rules.h"

namespace tarvik {

namespace {
// A plunge ends where the child's bound has eaten this share of the gap, but not before it has
// gone down this share of the tree's depth.
constexpr double kPlungeGap = 0.25;
constexpr int kPlungeShare = 10;
}  // namespace

double searchCutoff(const MipOptions &options, const Problem &problem, double incumbent,
                    const SolutionPool &pool) {
  double cutoff = options.cutoff;
  const double z = pool.inUse() ? pool.worst() : incumbent;
  if (pool.inUse()) cutoff = std::min(cutoff, mipPoolCutoff(options, incumbent));
  if (options.noSolutionCutoff || z >= kUserInf) return cutoff;
  cutoff =
      std::min(cutoff, mipSolutionCutoff(options, z, problem.objectiveStep(), problem.lp().offset));
  return std::min(cutoff, mipPruningBound(options, z));
}

Explorer::Explorer(const Problem &problem, const MipOptions &options, SolveControl &control,
                   UserSpace &user, const RootPoint &root, int index, int count,
                   std::function<bool()> goesOn)
    : problem_(problem),
      options_(options),
      control_(control),
      user_(user),
      root_(root),
      random_(static_cast<std::uint64_t>(options.seed) + 1 + static_cast<std::uint64_t>(index)),
      worker_(problem, options, *this, control),
      heuristics_(options, std::move(goesOn)),
      repair_(problem, options.simplex),
      nextId_(index),
      idStep_(count),
      pool_(problem, options.poolSearchMode > 0 ? options.poolSolutions : 0) {
  lowerCutoff();
}

// --- solutions ---

void Explorer::lowerCutoff() {
  cutoff_ = std::min(cutoff_, searchCutoff(options_, problem_, incumbentObjective_, pool_));
}

void Explorer::learnIncumbent(double objective, const Vec<double> &x) {
  if (objective >= incumbentObjective_) return;
  incumbentObjective_ = objective;
  incumbent_ = x;
  lowerCutoff();
}

void Explorer::learnPool(const SolutionPool &pool) {
  pool_ = pool;
  lowerCutoff();
}

Vec<FoundSolution> Explorer::takeFound() {
  Vec<FoundSolution> result;
  result.swap(found_);
  return result;
}

bool Explorer::accept(const Vec<double> &point, SolutionSource source) {
  FoundSolution found;
  found.objective = problem_.objective(point);
  if (found.objective >= cutoff_ || problem_.violation(point) > problem_.tolerances().primal)
    return false;
  if (!user_.map(point, found.userPoint, found.objective, control_)) return false;
  const double objective = found.objective;
  if (!pool_.inUse() && objective >= incumbentObjective_) return false;
  found.x = point;
  found.source = source;
  found.depth = worker_.domain().level();
  if (onFound) {
    if (!onFound(std::move(found))) return false;
    pool_.add(point, objective);
  } else {
    if (pool_.inUse() && !pool_.add(point, objective)) return false;
    found_.push_back(std::move(found));
  }
  learnIncumbent(objective, point);
  lowerCutoff();
  return true;
}

bool Explorer::submit(const Vec<double> &x, SolutionSource source) {
  Vec<double> candidate(x);
  for (int j = 0; j < problem_.numCols(); ++j) {
    if (problem_.isIntegral(j)) candidate[j] = std::round(candidate[j]);
    candidate[j] =
        std::min(std::max(candidate[j], problem_.lp().colLower[j]), problem_.lp().colUpper[j]);
  }
  if (accept(candidate, source)) return true;
  if (!(problem_.objective(candidate) < kUserInf)) return false;
  Vec<double> repaired;
  return (problem_.violation(candidate) > problem_.tolerances().primal &&
          repair_.run(candidate, control_, repaired) && accept(repaired, source)) ||
         accept(x, source);
}

// --- the tree ---

bool Explorer::applyCutoff() {
  if (cutoff_ >= appliedCutoff_ && rootApplied_) return true;
  appliedCutoff_ = cutoff_;
  rootApplied_ = true;
  worker_.returnToRoot();
  Domain &domain = worker_.domain();
  domain.setCutoff(cutoff_);
  if (!domain.propagate(control_.work)) return false;
  return root_.x.empty() ||
         (worker_.tightenByReducedCosts(root_.x, root_.reducedCost, root_.objective) &&
          domain.propagate(control_.work));
}

void Explorer::numberNodes(std::int64_t last, std::int64_t step) {
  nextId_ = last;
  idStep_ = step;
}

void Explorer::give(std::shared_ptr<Node> node) {
  next_ = std::move(node);
  plungeDepth_ = 0;
}

std::shared_ptr<Node> Explorer::takeNode() {
  std::shared_ptr<Node> node = std::move(next_);
  next_.reset();
  return node;
}

bool Explorer::plungeGoesOn(double openBound, int maxDepth) const {
  if (plungeDepth_ == 0) return true;
  if (plungeDepth_ <= maxDepth / kPlungeShare) return true;
  if (plungeDepth_ > std::max(20, maxDepth)) return false;
  if (!hasIncumbent() || openBound >= kUserInf) return true;
  return next_->bound - openBound <= kPlungeGap * (cutoff_ - openBound);
}

std::shared_ptr<Node> Explorer::makeChild(const Node &node, const NodeResult &result,
                                          const std::shared_ptr<const NodeBasis> &basis,
                                          const Vec<int> &fractional, bool up) {
  const Branching &branching = result.branching;
  auto made = std::allocate_shared<Node>(AccountAllocator<Node>());
  auto path = std::allocate_shared<NodePath>(AccountAllocator<NodePath>());
  path->parent = node.path;
  path->decision = up ? branching.up : branching.down;
  path->preferred = up || branching.col < 0;
  made->path = std::move(path);
  made->basis = basis;
  made->depth = node.depth + 1;
  made->id = nextId_ += idStep_;
  made->bound =
      std::max({node.bound, result.objective, up ? branching.upBound : branching.downBound});
  double estimate = std::max(result.objective, made->bound);
  if (branching.col >= 0 && worker_.lp().status() == LpStatus::Optimal) {
    const Vec<double> &x = worker_.lp().x();
    for (const int j : fractional)
      if (j != branching.col)
        estimate +=
            std::min(worker_.pseudoCosts().down(j, x[j]), worker_.pseudoCosts().up(j, x[j]));
    estimate += up ? branching.upGain : branching.downGain;
    const double f = branching.value - std::floor(branching.value);
    made->branch = {branching.col, up, up ? 1 - f : -f, result.objective};
  }
  made->estimate = estimate;
  return made;
}

void Explorer::branch(const Node &node, const NodeResult &result, Report &report) {
  const auto basis = worker_.lp().basis();
  Vec<int> fractional;
  if (result.branching.col >= 0 && worker_.lp().status() == LpStatus::Optimal)
    fractionalColumns(worker_.domain(), worker_.lp().x(), fractional);
  const bool upFirst = result.branching.upFirst;
  std::shared_ptr<Node> first = makeChild(node, result, basis, fractional, upFirst);
  std::shared_ptr<Node> second = makeChild(node, result, basis, fractional, !upFirst);
  report.maxDepth = std::max(report.maxDepth, node.depth + 1);
  if (first->bound >= cutoff_) first.swap(second);
  if (second->bound < cutoff_) open_.push_back(std::move(second));
  if (first->bound < cutoff_) {
    next_ = std::move(first);
    ++plungeDepth_;
  }
}

void Explorer::handle(const Node &node, const NodeResult &result, Report &report) {
  if (result.unsolved) {
    unsolvedBound_ = std::min(unsolvedBound_, node.bound);
    return;
  }
  report.unbounded = report.unbounded || result.unbounded;
  const bool open =
      result.outcome == NodeOutcome::Solved || result.outcome == NodeOutcome::Unbounded;
  if (open && result.branching.result == Branching::Split && result.objective < cutoff_)
    branch(node, result, report);
}

HeuristicContext Explorer::heuristicContext(const Share &share) {
  HeuristicContext context{};
  context.problem = &problem_;
  context.options = &options_;
  context.domain = &worker_.domain();
  context.lp = &worker_.lp();
  context.sink = this;
  context.completion = &repair_;
  context.control = &control_;
  context.pseudoCosts = &worker_.pseudoCosts();
  context.random = &random_;
  context.nodes = share.explored;
  context.bound = share.openBound;
  return context;
}

// True when a heuristic has proven that nothing is left to find.
bool Explorer::runHeuristics(const Node &node, const Share &share) {
  if (!next_ || node.bound >= cutoff_ || worker_.lp().status() != LpStatus::Optimal) return false;
  HeuristicContext context = heuristicContext(share);
  const Vec<double> x(worker_.lp().x());
  context.x = &x;
  return heuristics_.atNode(context, share.searchWork);
}

// Where a plunge has ended within a share, the best of the nodes left open here comes next.
void Explorer::takeUp() {
  const auto better = [](const std::shared_ptr<Node> &a, const std::shared_ptr<Node> &b) {
    return a->bound != b->bound ? a->bound < b->bound : a->id < b->id;
  };
  const auto best = std::min_element(open_.begin(), open_.end(), better);
  if (best == open_.end()) return;
  std::shared_ptr<Node> node = std::move(*best);
  open_.erase(best);
  give(std::move(node));
}

Vec<std::shared_ptr<Node>> Explorer::takeOpen() {
  Vec<std::shared_ptr<Node>> result;
  result.swap(open_);
  return result;
}

double Explorer::openBound() const {
  double bound = next_ ? std::min(unsolvedBound_, next_->bound) : unsolvedBound_;
  for (const auto &node : open_) bound = std::min(bound, node->bound);
  return bound;
}

void Explorer::step(const Share &share, Report &report) {
  const std::shared_ptr<Node> node = next_;
  if (node->bound >= cutoff_) {
    next_.reset();
    return;
  }
  NodeResult result = worker_.process(*node);
  if (result.stopped) {
    report.stopped = true;
    report.limit = result.limit;
    if (worker_.lp().status() == LpStatus::MemoryLimit) report.limit = MipStatus::MemoryLimit;
    return;
  }
  next_.reset();
  handle(*node, result, report);
  report.processed.push_back({result.outcome, result.objective, node->depth, result.fractional,
                              result.unsolved, std::move(result.x)});
  Share now = share;
  now.explored += static_cast<double>(report.processed.size());
  if (result.outcome == NodeOutcome::Solved && runHeuristics(*node, now)) report.exhausted = true;
}

void Explorer::explore(const Share &share, Report &report) {
  const double end = control_.work.counted() + share.work;
  while (next_) {
    if (!applyCutoff()) report.exhausted = true;
    if (report.exhausted) break;
    step(share, report);
    if (report.stopped || static_cast<int>(report.processed.size()) >= share.nodes ||
        control_.work.counted() >= end)
      break;
    if (next_ && plungeGoesOn(share.openBound, std::max(share.maxDepth, report.maxDepth))) continue;
    if (next_) open_.push_back(takeNode());
    takeUp();
  }
}

}  // namespace tarvik
