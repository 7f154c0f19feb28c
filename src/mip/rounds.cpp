// The tree in rounds. With one explorer a round is a node, and every solution counts at once. With
// several, each runs its share on a thread of its own; afterwards their reports are collected in
// their order and what they learnt is shared.
#include <algorithm>

#include "mip/mip_search.h"

namespace tarvik {

namespace {

// Every so many picks the node of the best estimate is taken instead of the best bound.
constexpr int kEstimateEvery = 10;
// Counted units of a share, and of one while some explorers have nothing to do.
constexpr double kShareWork = 2e7;
constexpr double kShortShareWork = 2e6;
// Ids of an explorer's cuts begin at a multiple of this.
constexpr CutId kCutIdStep = CutId{1} << 40;

}  // namespace

std::shared_ptr<Node> MipSearch::nextNode() {
  const int every = hasIncumbent() ? kEstimateEvery : 2;
  const bool byEstimate = options_.focus != 3 && picks_++ % every == 0;
  return byEstimate ? queue_.takeBestEstimate() : queue_.takeBestBound();
}

// Explorers for the other threads, with the bounds, the cuts and the experience of the first.
void MipSearch::employAll() {
  const int count = observer && observer->mayRefuse() ? 1 : std::max(options_.threads, 1);
  for (const auto &side : sideControls_) {
    side->limits = control_.limits;
    side->threads = control_.threads;
  }
  if (explorers_.size() == 1 && firstNodeId_ > 0) main().numberNodes(firstNodeId_, count);
  while (static_cast<int>(explorers_.size()) < count) {
    auto control = std::make_unique<SolveControl>();
    control->threads = control_.threads;
    control->limits = control_.limits;
    control->log = &silent_;
    SolveControl &own = *control;
    sideControls_.push_back(std::move(control));
    auto explorer = std::make_unique<Explorer>(
        problem_, options_, own, user_, root_, static_cast<int>(explorers_.size()), count,
        [&own] { return own.limits.pollNow(own.work, 0) == StopReason::None; });
    explorer->numberNodes(firstNodeId_ + static_cast<std::int64_t>(explorers_.size()), count);
    explorer->worker().followRootOf(worker());
    explorer->worker().brancher().setBranchSets(branchSets_);
    if (symmetries_) explorer->worker().useSymmetry(*symmetries_);
    // Ids of their own, far enough apart.
    explorer->worker().numberCutsFrom(++sideExplorers_ * kCutIdStep);
    if (worker().treeSeparation()) {
      explorer->worker().separateInTree(
          implications_, [this](CutFamily family) { return levelOf(family); }, cutPool_);
    }
    explorer->learnIncumbent(incumbentObjective_, incumbent_);
    explorer->learnPool(pool_);
    explorers_.push_back(std::move(explorer));
  }
  for (const auto &explorer : explorers_) {
    explorer->worker().keepPoints(observer && observer->wantsNodes());
    if (ConflictStore *conflicts = explorer->worker().conflicts())
      conflicts->shareLearned(explorers_.size() > 1);
  }
  reports_.resize(explorers_.size());
}

// A node for every explorer whose plunge is over, as far as there are any. False: some have none.
bool MipSearch::giveNodes() {
  bool all = true;
  for (const auto &explorer : explorers_) {
    if (explorer->hasNode() && (explorer->nodeBound() >= cutoff_ ||
                                !explorer->plungeGoesOn(queue_.bestBound(), maxDepth_))) {
      std::shared_ptr<Node> node = explorer->takeNode();
      if (node->bound < cutoff_) queue_.push(std::move(node));
    }
    if (!explorer->hasNode())
      if (std::shared_ptr<Node> node = nextNode()) explorer->give(std::move(node));
    all = all && explorer->hasNode();
  }
  return all;
}

void MipSearch::exploreSide(const Explorer::Share &share) {
  const PseudoCosts before(worker().pseudoCosts());
  const double work = control_.work.counted();
  roundState_ = state();
  Vec<Thread> threads;
  for (std::size_t k = 1; k < explorers_.size(); ++k) {
    Explorer &explorer = *explorers_[k];
    explorer.worker().pseudoCosts() = before;
    explorer.learnIncumbent(incumbentObjective_, incumbent_);
    if (pool_.inUse()) explorer.learnPool(pool_);
    sideControls_[k - 1]->work = control_.work;
    if (!explorer.hasNode()) continue;
    threads.emplace_back(control_.threads, [&explorer, &share, report = &reports_[k]] {
      explorer.explore(share, *report);
    });
  }
  main().explore(share, reports_[0]);
  for (Thread &thread : threads) thread.join();
  roundState_.reset();
  for (std::size_t k = 1; k < explorers_.size(); ++k) {
    control_.work.charge(sideControls_[k - 1]->work.counted() - work);
    worker().pseudoCosts().addObserved(before, explorers_[k]->worker().pseudoCosts());
  }
  shareConflicts();
}

void MipSearch::shareConflicts() {
  for (const auto &from : explorers_) {
    ConflictStore *source = from->worker().conflicts();
    if (!source) return;
    for (const Disjunction &conflict : source->takeShared())
      for (const auto &to : explorers_)
        if (to != from) to->worker().conflicts()->receive(conflict);
  }
}

// Nodes of all explorers come before the solutions of any: what is told with a solution includes
// the bound of what is left.
void MipSearch::collectNodes(Explorer &explorer) {
  for (std::shared_ptr<Node> &node : explorer.takeOpen())
    if (node->bound < cutoff_) queue_.push(std::move(node));
  unsolvedBound_ = std::min(unsolvedBound_, explorer.unsolvedBound());
}

void MipSearch::collect(Explorer &explorer, const Explorer::Report &report) {
  for (FoundSolution &found : explorer.takeFound()) take(std::move(found));
  for (const Explorer::Processed &node : report.processed) {
    ++explored_;
    observe(node);
  }
  maxDepth_ = std::max(maxDepth_, report.maxDepth);
  if (report.unbounded) status_ = MipStatus::Unbounded;
}

void MipSearch::treeSearch() {
  employAll();
  const bool alone = explorers_.size() == 1;
  while (status_ == MipStatus::Running) {
    mipCheckTermination();
    checkSoftLimits();
    if (status_ != MipStatus::Running) break;
    const bool all = giveNodes();
    Explorer::Share round = share();
    round.openBound = queue_.bestBound();
    round.nodes = 1;
    if (!alone) {
      round.work = all ? kShareWork : kShortShareWork;
      const double left = std::max(options_.nodeLimit, 1.0) - explored_;
      round.nodes = static_cast<int>(
          std::min(1e6, std::max(1.0, left / static_cast<double>(explorers_.size()))));
    }
    reports_.assign(explorers_.size(), {});
    // Solutions of the others must not change what is known in the midst of a share.
    if (alone) {
      main().explore(round, reports_[0]);
    } else {
      const auto listener = std::move(main().onFound);
      main().onFound = nullptr;
      exploreSide(round);
      main().onFound = listener;
    }
    bool stopped = false, exhausted = false;
    MipStatus limit = MipStatus::Interrupted;
    for (const auto &explorer : explorers_) collectNodes(*explorer);
    for (std::size_t k = 0; k < explorers_.size(); ++k) {
      collect(*explorers_[k], reports_[k]);
      stopped = stopped || reports_[k].stopped;
      if (reports_[k].limit != MipStatus::Running) limit = reports_[k].limit;
      exhausted = exhausted || reports_[k].exhausted;
    }
    main().learnIncumbent(incumbentObjective_, incumbent_);
    if (pool_.inUse()) main().learnPool(pool_);
    for (const Explorer::Report &report : reports_)
      for (const Explorer::Processed &node : report.processed)
        log_.nodeLogLine(state(), node.outcome, node.objective, node.depth, node.fractional);
    if (exhausted) nothingLeft();
    if (!stopped) continue;
    // The limit is found by the check, or by a later call; memory may have been freed again.
    mipCheckTermination();
    if (status_ == MipStatus::Running) status_ = limit;
  }
}

}  // namespace tarvik
