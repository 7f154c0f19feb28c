#include "mip/mip_search.h"

#include <algorithm>
#include <cmath>
#include <tuple>

#include "mip/gap_rules.h"

namespace tarvik {

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

MipSearch::MipSearch(const Problem &problem, const MipOptions &options, SolveControl &control,
                     UserSpace &user)
    : problem_(problem),
      options_(options),
      control_(control),
      user_(user),
      log_(options_, control),
      pool_(problem, options.poolSearchMode > 0 ? options.poolSolutions : 0) {
  const int count = std::max(options_.threads, 1);
  explorers_.push_back(
      std::make_unique<Explorer>(problem, options_, control, user, root_, 0, count, [this] {
        alive();
        if (observer && !options_.subMip) observer->onProgress(progress());
        // Side by side with others nothing but its own limits may stop it.
        if (roundState_) return control_.limits.pollNow(control_.work, 0) == StopReason::None;
        mipCheckTermination();
        return status_ == MipStatus::Running;
      }));
  main().onAlive = [this] { alive(); };
  main().onFound = [this](FoundSolution &&found) { return take(std::move(found)); };
  lowerCutoff();
}

SearchState MipSearch::state() {
  if (roundState_) return *roundState_;
  SearchState state;
  state.explored = explored_;
  state.unexplored = unexplored();
  state.incumbent = completing_ ? pool_.worst() : incumbentObjective_;
  state.bound = bestBound();
  state.iterations = iterations();
  state.rootIterations = rootIterations_;
  return state;
}

MipProgress MipSearch::progress() {
  MipProgress progress{state()};
  progress.incumbent = incumbentObjective_;
  progress.solutions = solutionCount_;
  if (!roundState_) {
    cutsTold_ = 0;
    for (const int count : cutCounters()) cutsTold_ += count;
  }
  progress.cuts = cutsTold_;
  progress.depth = maxDepth_;
  progress.workers = static_cast<int>(explorers_.size());
  if (completing_)
    progress.phase = MipPhase::CompletingPool;
  else if (options_.focus == kImproveFocus)
    progress.phase = MipPhase::Improving;
  progress.nodeBound = lastNodeBound_;
  if (lastInfeasibilities_ < kUnknownCount) progress.infeasibilities = lastInfeasibilities_;
  return progress;
}

// --- what is told ---

Vec<double> ObservedNode::userPoint() const { return space->pointOf(*x); }

void MipSearch::observeRoot() {
  lastNodeBound_ = root_.objective;
  if (!observer) return;
  observer->onProgress(progress());
  if (!observer->wantsNodes()) return;
  ObservedNode node;
  node.bound = root_.objective;
  node.x = &root_.x;
  node.space = &user_;
  observer->onNode(progress(), node);
}

void MipSearch::observe(const Explorer::Processed &processed) {
  lastInfeasibilities_ = processed.fractional;
  lastNodeBound_ = processed.objective;
  if (!observer) return;
  observer->onProgress(progress());
  if (!observer->wantsNodes()) return;
  ObservedNode node;
  if (processed.unsolved)
    node.status = ObservedNode::Unsolved;
  else if (processed.outcome == NodeOutcome::Infeasible)
    node.status = ObservedNode::Infeasible;
  else if (processed.outcome == NodeOutcome::Cutoff)
    node.status = ObservedNode::Cutoff;
  else if (processed.outcome == NodeOutcome::Unbounded)
    node.status = ObservedNode::Unbounded;
  node.bound = processed.objective;
  if (node.status == ObservedNode::Optimal && !processed.x.empty()) node.x = &processed.x;
  node.space = &user_;
  observer->onNode(progress(), node);
}

void MipSearch::alive() {
  if (options_.subMip) {
    if (observer) observer->onProgress(progress());
    return;
  }
  if (observer) observer->onPolling();
  if (!log_.due()) return;
  if (!log_.tableBegun()) return log_.nodeLogElapsed(nullptr);
  const int unknown = (std::min(problem_.numRows(), problem_.numIntegral()) + 1) / 2;
  log_.nodeLogProgressLine(state(), queue_,
                           lastInfeasibilities_ < kUnknownCount ? lastInfeasibilities_ : unknown);
}

double MipSearch::unexplored() const {
  double count = queue_.size();
  for (const auto &explorer : explorers_) count += explorer->openNodes();
  return count;
}

double MipSearch::iterations() const {
  double sum = dismissedIterations_;
  for (const auto &explorer : explorers_) sum += explorer->iterations();
  return sum;
}

CutCounters MipSearch::cutCounters() const {
  CutCounters counters = cutCounters_;
  for (const auto &explorer : explorers_)
    if (const ProofCuts *proofs = explorer->worker().proofCuts())
      counters[static_cast<int>(CutFamily::InfProof)] += proofs->count();
  for (const auto &explorer : explorers_)
    if (const TreeSeparation *tree = explorer->worker().treeSeparation())
      for (int f = 0; f < kCutFamilies; ++f) counters[f] += tree->count(static_cast<CutFamily>(f));
  return counters;
}

// An exhausted tree proves the incumbent, up to the gap that pruned it.
double MipSearch::provenBound() const {
  const double goal = reference();
  return std::min(goal, mipPruningBound(options_, goal));
}

double MipSearch::bestBound() {
  const double goal = reference(), proven = provenBound();
  if (infeasible_) return proven;
  double bound = rootBound_;
  if (rootDone_) {
    bound = std::min(queue_.bestBound(), unsolvedBound_);
    for (const auto &explorer : explorers_) bound = std::min(bound, explorer->openBound());
    bound = std::max(std::min(bound, proven), std::min(rootBound_, goal));
  }
  // At or above the cutoff there is nothing to be found.
  return hasIncumbent() && bound >= cutoff_ ? std::max(bound, proven) : bound;
}

// --- incumbents ---

void MipSearch::lowerCutoff() {
  cutoff_ = std::min(cutoff_, searchCutoff(options_, problem_, incumbentObjective_, pool_));
}

void MipSearch::knowSolution(double objective, const Vec<double> &image) {
  const bool hasImage = problem_.violation(image) <= problem_.tolerances().primal;
  if (objective < incumbentObjective_) {
    incumbentObjective_ = objective;
    incumbent_ = hasImage ? image : Vec<double>();
  }
  main().learnIncumbent(objective, hasImage ? image : Vec<double>());
  if (hasImage && pool_.add(image, objective)) main().learnPool(pool_);
  ++solutionCount_;
  lowerCutoff();
}

bool MipSearch::take(FoundSolution &&found) {
  const bool improves = found.objective < incumbentObjective_;
  if (!pool_.inUse() && !improves) return false;
  if (observer && (improves || observer->mayRefuse()) &&
      !observer->onSolution(progress(), found.userPoint, found.objective) && observer->mayRefuse())
    return false;
  if (pool_.inUse() && !pool_.add(found.x, found.objective)) return false;
  user_.keep(std::move(found.userPoint), found.objective);
  ++solutionCount_;
  if (improves) {
    incumbentObjective_ = found.objective;
    incumbent_ = std::move(found.x);
  }
  lowerCutoff();
  queue_.prune(cutoff_);
  if (!improves) return true;
  if (found.source == SolutionSource::Node)
    log_.nodeLogIncumbentLine(state(), found.depth);
  else
    log_.nodeLogHeuristicLine(state());
  return true;
}

// --- termination ---

MipStatus MipSearch::terminationStatus() {
  const StopReason stop = control_.limits.pollNow(control_.work, 0);
  if (stop != StopReason::None) return statusOf(stop);
  const double bound = bestBound(), incumbent = incumbentObjective_;
  if (rootDone_ && unexplored() == 0) {
    if (unsolvedBound_ < kUserInf) return MipStatus::Suboptimal;
    return hasIncumbent() ? MipStatus::Optimal : MipStatus::Infeasible;
  }
  if (bound >= kUserInf) return MipStatus::Infeasible;
  if (hasIncumbent() && (bound >= cutoff_ || mipGapReached(options_, reference(), bound)))
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

// The optimum of a search for several solutions is known: from now on lines tell about the pool.
void MipSearch::completePool() {
  if (!pool_.inUse() || completing_ || !rootDone_ || !hasIncumbent()) return;
  if (incumbentObjective_ - bestBound() > 1e-10) return;
  completing_ = true;
  log_.enterCompletion();
  if (!options_.subMip)
    control_.log->print("\nOptimal solution found at node %g - now completing solution pool...\n",
                        explored_);
}

void MipSearch::mipCheckTermination() {
  if (status_ != MipStatus::Running) return;
  status_ = terminationStatus();
  if (status_ == MipStatus::Running) completePool();
  if (status_ != MipStatus::ImproveStart) return;
  status_ = MipStatus::Running;
  focusOnImproving();
}

void MipSearch::focusOnImproving() {
  if (!options_.subMip)
    control_.log->print(
        "\nResetting heuristic parameters to focus on improving solution\n"
        "(using Heuristics=0.5 and RINS=10)...\n\n");
  options_.heuristics = kImproveHeuristics;
  options_.rins = kImproveRins;
  options_.focus = kImproveFocus;
  options_.improveStartTime = options_.improveStartNodes = kUserInf;
  options_.improveStartGap = 0;
}

void MipSearch::checkSoftLimits() {
  if (status_ != MipStatus::Running) return;
  if (options_.softWorkLimit < 1e99 && control_.work.counted() > options_.softWorkLimit)
    status_ = MipStatus::SoftLimit;
  else if (options_.softTimeLimit < 1e99 && control_.limits.seconds() > options_.softTimeLimit)
    status_ = MipStatus::TimeLimit;
}

void MipSearch::nothingLeft() {
  queue_.prune(-kUserInf);
  for (const auto &explorer : explorers_) explorer->takeNode();
}

void MipSearch::provenInfeasible() {
  infeasible_ = true;
  rootBound_ = kUserInf;
  nothingLeft();
}

Explorer::Share MipSearch::share() {
  Explorer::Share share;
  share.explored = explored_;
  share.openBound = bestBound();
  share.searchWork = control_.work.counted() - startWork_;
  share.maxDepth = maxDepth_;
  return share;
}

MipStatus MipSearch::run() {
  status_ = MipStatus::Running;
  if (!rootDone_) {
    if (!inherited_) startWork_ = control_.work.counted();
    mipCheckTermination();
    if (status_ != MipStatus::Running) return status_;
    solveRoot();
  }
  if (status_ == MipStatus::Running) {
    findSymmetries();
    treeSearch();
  }
  if (status_ == MipStatus::NodeLimit && worker().lp().status() == LpStatus::Optimal) {
    HeuristicContext context = heuristicContext();
    main().heuristics().atEnd(context);
  }
  return status_;
}

// --- restarts ---

void MipSearch::inherit(const MipSearch &other) {
  rootBound_ = std::max(rootBound_, other.rootBound_);
  solutionCount_ = std::max(solutionCount_, other.solutionCount_);
  dismissedIterations_ = other.iterations();
  startWork_ = other.startWork_;
  inherited_ = true;
}

const Domain &MipSearch::rootDomain() {
  worker().returnToRoot();
  return worker().domain();
}

MipStatus MipSearch::close() {
  provenInfeasible();
  rootDone_ = true;
  return status_ = hasIncumbent() ? MipStatus::Optimal : MipStatus::Infeasible;
}

// --- going on ---

bool MipSearch::canGoOn(const MipOptions &options) const {
  const auto structure = [](const MipOptions &o) {
    return std::make_tuple(o.tolerances.primal, o.tolerances.dual, o.tolerances.integral,
                           o.poolSearchMode, o.poolSolutions, o.presolve.level, o.presolveMip);
  };
  if (!rootDone_ || infeasible_ || structure(options) != structure(options_)) return false;
  // With another cutoff solutions that are known may be refused, or open nodes be missing.
  if (options.cutoff != options_.cutoff) return false;
  // Images of what the tree looks for may be gone.
  if (options.symmetry == 0 && symmetries_) return false;
  const double wanted = searchCutoff(options, problem_, incumbentObjective_, pool_);
  if (pool_.inUse()) return wanted <= cutoff_;
  return std::min(wanted, incumbentObjective_) <= cutoff_;
}

MipStatus MipSearch::goOn(const MipOptions &options) {
  const bool improving = options_.focus == kImproveFocus;
  if (options.threads != options_.threads) dismissSideExplorers();
  options_ = options;
  if (improving)
    focusOnImproving();
  else
    control_.log->print("\nContinuing optimization...\n\n");
  lowerCutoff();
  queue_.prune(cutoff_);
  return run();
}

// What they have learnt the first one knows already.
void MipSearch::dismissSideExplorers() {
  firstNodeId_ = main().lastNodeId();
  for (std::size_t k = 1; k < explorers_.size(); ++k) {
    Explorer &explorer = *explorers_[k];
    firstNodeId_ = std::max(firstNodeId_, explorer.lastNodeId());
    dismissedIterations_ += explorer.iterations();
    if (const TreeSeparation *tree = explorer.worker().treeSeparation())
      for (int f = 0; f < kCutFamilies; ++f)
        cutCounters_[f] += tree->count(static_cast<CutFamily>(f));
    // A fresh copy: the queue may still know the node itself as one that was taken.
    if (explorer.hasNode()) {
      auto node = std::allocate_shared<Node>(AccountAllocator<Node>(), *explorer.takeNode());
      node->taken = false;
      queue_.push(std::move(node));
    }
  }
  explorers_.resize(1);
  sideControls_.clear();
}

}  // namespace tarvik
