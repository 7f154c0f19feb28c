#include "mip/mip_search.h"

#include <algorithm>
#include <cmath>

#include "mip/gap_rules.h"

namespace tarvik {

namespace {

// A plunge ends where the child's bound has eaten this share of the gap, but not before it has
// gone down this share of the tree's depth.
constexpr double kPlungeGap = 0.25;
constexpr int kPlungeShare = 10;
// Every so many picks the node of the best estimate is taken instead of the best bound.
constexpr int kEstimateEvery = 10;

MipStatus statusOf(StopReason reason) {
  switch (reason) {
    case StopReason::TimeLimit:
      return MipStatus::TimeLimit;
    case StopReason::WorkLimit:
      return MipStatus::WorkLimit;
    case StopReason::MemoryLimit:
      return MipStatus::MemoryLimit;
    case StopReason::IterationLimit:
      return MipStatus::IterationLimit;
    case StopReason::None:
      return MipStatus::Running;
    case StopReason::Interrupted:
    case StopReason::Callback:
      break;
  }
  return MipStatus::Interrupted;
}

}  // namespace

MipSearch::MipSearch(const Problem &problem, const MipOptions &options, SolveControl &control,
                     UserSpace &user)
    : problem_(problem),
      options_(options),
      control_(control),
      user_(user),
      log_(options_, control),
      random_(static_cast<std::uint64_t>(options.seed) + 1),
      worker_(problem, options_, *this, control),
      heuristics_(options_,
                  [this] {
                    mipCheckTermination();
                    return status_ == MipStatus::Running;
                  }),
      repair_(problem, options.simplex) {
  lowerCutoff();
}

SearchState MipSearch::state() {
  SearchState state;
  state.explored = explored_;
  state.unexplored = unexplored();
  state.incumbent = incumbentObjective_;
  state.bound = bestBound();
  state.iterations = iterations();
  state.rootIterations = rootIterations_;
  return state;
}

double MipSearch::unexplored() const { return queue_.size() + (next_ ? 1 : 0); }

double MipSearch::iterations() const { return worker_.lpIterations() + repair_.iterations(); }

CutCounters MipSearch::cutCounters() const {
  CutCounters counters = cutCounters_;
  if (const TreeSeparation *tree = worker_.treeSeparation())
    for (int f = 0; f < kCutFamilies; ++f) counters[f] += tree->count(static_cast<CutFamily>(f));
  return counters;
}

double MipSearch::bestBound() {
  if (infeasible_) return std::min(incumbentObjective_, kUserInf);
  if (!rootDone_) return rootBound_;
  double bound = std::min(queue_.bestBound(), unsolvedBound_);
  if (next_) bound = std::min(bound, next_->bound);
  // An exhausted tree proves the incumbent, up to the gap that pruned it.
  const double proven =
      std::min(incumbentObjective_, mipPruningBound(options_, incumbentObjective_));
  bound = std::max(std::min(bound, proven), std::min(rootBound_, incumbentObjective_));
  // At or above the cutoff there is nothing to be found.
  return hasIncumbent() && bound >= cutoff_ ? std::max(bound, proven) : bound;
}

// --- incumbents ---

void MipSearch::lowerCutoff() {
  double cutoff = options_.cutoff;
  if (!options_.noSolutionCutoff && hasIncumbent()) {
    cutoff = std::min(cutoff, mipSolutionCutoff(options_, incumbentObjective_,
                                                problem_.objectiveStep(), problem_.lp().offset));
    cutoff = std::min(cutoff, mipPruningBound(options_, incumbentObjective_));
  }
  if (cutoff >= cutoff_) return;
  cutoff_ = cutoff;
  globalsStale_ = true;
}

void MipSearch::knowSolution(double objective, const Vec<double> &image) {
  incumbentObjective_ = std::min(incumbentObjective_, objective);
  if (problem_.violation(image) <= problem_.tolerances().primal) incumbent_ = image;
  ++solutionCount_;
  lowerCutoff();
}

bool MipSearch::submit(const Vec<double> &x, SolutionSource source) {
  Vec<double> candidate(x);
  for (int j = 0; j < problem_.numCols(); ++j) {
    if (problem_.isIntegral(j)) candidate[j] = std::round(candidate[j]);
    candidate[j] =
        std::min(std::max(candidate[j], problem_.lp().colLower[j]), problem_.lp().colUpper[j]);
  }
  const double tolerance = problem_.tolerances().primal;
  const auto accepted = [&](const Vec<double> &point) {
    const double objective = problem_.objective(point);
    if (objective >= cutoff_ || problem_.violation(point) > tolerance) return false;
    double userObjective = objective;
    if (!user_.accept(point, userObjective) || userObjective >= incumbentObjective_) return false;
    incumbentObjective_ = userObjective;
    incumbent_ = point;
    return true;
  };
  bool found = accepted(candidate);
  if (!found && problem_.objective(candidate) < kUserInf) {
    Vec<double> repaired;
    found = (problem_.violation(candidate) > tolerance &&
             repair_.run(candidate, control_, repaired) && accepted(repaired)) ||
            accepted(x);
  }
  if (!found) return false;
  ++solutionCount_;
  lowerCutoff();
  queue_.prune(cutoff_);
  if (source == SolutionSource::Node)
    log_.nodeLogIncumbentLine(state(), worker_.domain().level());
  else
    log_.nodeLogHeuristicLine(state());
  return true;
}

// --- termination ---

MipStatus MipSearch::terminationStatus() {
  const StopReason stop = control_.limits.pollNow(control_.work, 0);
  if (stop != StopReason::None) return statusOf(stop);
  const double bound = bestBound(), incumbent = incumbentObjective_;
  if (rootDone_ && queue_.empty() && !next_) {
    if (someUnsolved_) return MipStatus::Suboptimal;
    return hasIncumbent() ? MipStatus::Optimal : MipStatus::Infeasible;
  }
  if (bound >= kUserInf) return MipStatus::Infeasible;
  if (hasIncumbent() && (bound >= cutoff_ || mipGapReached(options_, incumbent, bound)))
    return MipStatus::Optimal;
  if (incumbent <= options_.bestObjStop + 1e-10 || bound >= options_.bestBdStop - 1e-10)
    return MipStatus::UserObjectiveLimit;
  if (options_.nodeLimit == 0) {
    if (rootDone_) return MipStatus::NodeLimit;
  } else if (explored_ >= std::max(1.0, options_.nodeLimit)) {
    return MipStatus::NodeLimit;
  }
  if (iterations() >= options_.iterationLimit) return MipStatus::IterationLimit;
  if (solutionCount_ >= options_.solutionLimit) return MipStatus::SolutionLimit;
  const bool improvable = std::fabs(incumbent) < 5e99;
  if (options_.improveStartGap > 0 && improvable &&
      std::fabs(incumbent - bound) / std::max(std::fabs(incumbent), 1e-6) <
          options_.improveStartGap)
    return MipStatus::ImproveStart;
  if (options_.improveStartNodes < kUserInf && explored_ >= options_.improveStartNodes)
    return MipStatus::ImproveStart;
  if (options_.improveStartTime < kUserInf && std::fabs(incumbent) < 1e99 &&
      control_.limits.seconds() > options_.improveStartTime)
    return MipStatus::ImproveStart;
  return MipStatus::Running;
}

void MipSearch::mipCheckTermination() {
  if (status_ != MipStatus::Running) return;
  status_ = terminationStatus();
  if (status_ != MipStatus::ImproveStart) return;
  status_ = MipStatus::Running;
  if (!options_.subMip)
    control_.log->print(
        "\nResetting heuristic parameters to focus on improving solution\n"
        "(using Heuristics=0.5 and RINS=10)...\n\n");
  options_.heuristics = 0.5;
  options_.rins = 10;
  options_.focus = 4;
  options_.improveStartTime = options_.improveStartNodes = kUserInf;
  options_.improveStartGap = 0;
}

// --- the tree ---

void MipSearch::applyGlobalChanges() {
  if (!globalsStale_) return;
  globalsStale_ = false;
  worker_.returnToRoot();
  Domain &domain = worker_.domain();
  domain.setCutoff(cutoff_);
  bool possible = domain.propagate(control_.work);
  if (possible && !rootX_.empty())
    possible = worker_.tightenByReducedCosts(rootX_, rootReducedCost_, rootObjective_) &&
               domain.propagate(control_.work);
  if (!possible) {
    // Nothing better than the incumbent is left.
    queue_.prune(-kUserInf);
    next_.reset();
  }
}

bool MipSearch::plungeGoesOn(const Node &node) {
  if (node.bound >= cutoff_) return false;
  if (plungeDepth_ <= maxDepth_ / kPlungeShare) return true;
  if (plungeDepth_ > std::max(20, maxDepth_)) return false;
  if (!hasIncumbent()) return true;
  const double best = queue_.bestBound();
  if (best >= kUserInf) return true;
  return node.bound - best <= kPlungeGap * (cutoff_ - best);
}

std::shared_ptr<Node> MipSearch::nextNode() {
  if (next_) {
    std::shared_ptr<Node> node = std::move(next_);
    next_.reset();
    if (plungeGoesOn(*node)) {
      ++plungeDepth_;
      return node;
    }
    if (node->bound < cutoff_) queue_.push(std::move(node));
  }
  plungeDepth_ = 0;
  const bool byEstimate =
      !hasIncumbent()
          ? options_.focus != 3 && static_cast<std::int64_t>(explored_) % 2 == 0
          : options_.focus != 3 && static_cast<std::int64_t>(explored_) % kEstimateEvery == 0;
  return byEstimate ? queue_.takeBestEstimate() : queue_.takeBestBound();
}

void MipSearch::branch(const Node &node, const NodeResult &result) {
  const Branching &branching = result.branching;
  const auto basis = worker_.lp().basis();
  const auto child = [&](bool up) {
    auto made = std::allocate_shared<Node>(AccountAllocator<Node>());
    auto path = std::allocate_shared<NodePath>(AccountAllocator<NodePath>());
    path->parent = node.path;
    path->decision = up ? branching.up : branching.down;
    made->path = std::move(path);
    made->basis = basis;
    made->depth = node.depth + 1;
    made->id = nextNodeId_++;
    made->bound =
        std::max({node.bound, result.objective, up ? branching.upBound : branching.downBound});
    double estimate = std::max(result.objective, made->bound);
    if (branching.col >= 0) {
      Vec<int> fractional;
      worker_.brancher().fractionalColumns(worker_.domain(), worker_.lp().x(), fractional);
      for (const int j : fractional)
        if (j != branching.col)
          estimate += std::min(worker_.pseudoCosts().down(j, worker_.lp().x()[j]),
                               worker_.pseudoCosts().up(j, worker_.lp().x()[j]));
      estimate += up ? branching.upGain : branching.downGain;
      const double f = branching.value - std::floor(branching.value);
      made->branch = {branching.col, up, up ? 1 - f : -f, result.objective};
    }
    made->estimate = estimate;
    return made;
  };
  std::shared_ptr<Node> first = child(branching.upFirst), second = child(!branching.upFirst);
  maxDepth_ = std::max(maxDepth_, node.depth + 1);
  if (first->bound >= cutoff_) first.swap(second);
  if (second->bound < cutoff_) queue_.push(std::move(second));
  if (first->bound < cutoff_) next_ = std::move(first);
}

void MipSearch::handle(Node &node, const NodeResult &result) {
  if (result.unsolved) {
    someUnsolved_ = true;
    unsolvedBound_ = std::min(unsolvedBound_, node.bound);
    return;
  }
  if (result.unbounded) status_ = MipStatus::Unbounded;
  const bool open =
      result.outcome == NodeOutcome::Solved || result.outcome == NodeOutcome::Unbounded;
  if (open && result.branching.result == Branching::Split && result.objective < cutoff_)
    branch(node, result);
}

HeuristicContext MipSearch::heuristicContext() {
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
  context.nodes = explored_;
  context.bound = bestBound();
  return context;
}

void MipSearch::provenInfeasible() {
  infeasible_ = true;
  rootBound_ = kUserInf;
  queue_.prune(-kUserInf);
  next_.reset();
}

void MipSearch::runNodeHeuristics(const Node &node) {
  if (node.bound >= cutoff_ || worker_.lp().status() != LpStatus::Optimal) return;
  HeuristicContext context = heuristicContext();
  const Vec<double> x(worker_.lp().x());
  context.x = &x;
  if (heuristics_.atNode(context, control_.work.counted() - startWork_)) provenInfeasible();
}

void MipSearch::treeSearch() {
  while (status_ == MipStatus::Running) {
    applyGlobalChanges();
    mipCheckTermination();
    if (status_ != MipStatus::Running) break;
    std::shared_ptr<Node> node = nextNode();
    if (!node || node->bound >= cutoff_) continue;
    const std::shared_ptr<Node> current = node;
    const NodeResult result = worker_.process(*node);
    if (result.stopped) {
      // The node stays open; its limit is found by the next check, or by a later call.
      next_ = std::move(node);
      mipCheckTermination();
      if (status_ == MipStatus::Running) status_ = MipStatus::Interrupted;
      break;
    }
    ++explored_;
    lastInfeasibilities_ = result.fractional;
    handle(*current, result);
    if (onNode) onNode(*this);
    log_.nodeLogLine(state(), result.outcome, result.objective, current->depth, result.fractional);
    if (result.outcome == NodeOutcome::Solved && next_) runNodeHeuristics(*current);
  }
}

MipStatus MipSearch::run() {
  status_ = MipStatus::Running;
  if (!rootDone_) {
    startWork_ = control_.work.counted();
    mipCheckTermination();
    if (status_ != MipStatus::Running) return status_;
    solveRoot();
  }
  if (status_ == MipStatus::Running) treeSearch();
  if (status_ == MipStatus::NodeLimit && worker_.lp().status() == LpStatus::Optimal) {
    HeuristicContext context = heuristicContext();
    heuristics_.atEnd(context);
  }
  return status_;
}

}  // namespace tarvik
