// One explorer of the tree: a worker with its own heuristics and its own view of the incumbent,
// which goes down plunge after plunge from nodes that it is given. What it finds and what it
// leaves open it keeps for the search to collect, so that explorers may run side by side: what
// one does depends only on what it was told at the start of its share, never on the clock of the
// others. A search with a single explorer listens to it and collects every solution at once.
#pragma once

#include <functional>

#include "mip/heuristics/schedule.h"
#include "mip/point_repair.h"
#include "mip/solution_pool.h"
#include "mip/worker.h"

namespace tarvik {

// The world that the problem was presolved from. map() takes a point back and checks it against
// the user's model, whose objective it tells; false when it does not pass there. It may be called
// by several threads.
class UserSpace {
 public:
  virtual ~UserSpace() = default;
  virtual bool map(const Vec<double> &x, Vec<double> &userPoint, double &objective,
                   SolveControl &control) = 0;
  virtual void keep(Vec<double> &&userPoint, double objective) = 0;
  // Any point taken back, without a check.
  virtual Vec<double> pointOf(const Vec<double> &x) const = 0;
};

struct FoundSolution {
  Vec<double> x, userPoint;
  double objective = kUserInf;
  SolutionSource source = SolutionSource::Node;
  int depth = 0;
};

// What was solved at the root: it goes on telling which bounds an incumbent implies.
struct RootPoint {
  Vec<double> x, reducedCost;
  double objective = -kUserInf;
};

// The cutoff that an incumbent implies, or in a search for several solutions the worst of the pool
// and the gap to the incumbent that the pool allows.
double searchCutoff(const MipOptions &options, const Problem &problem, double incumbent,
                    const SolutionPool &pool);

class Explorer : public SolutionSink {
 public:
  // What an explorer is told before it runs.
  struct Share {
    double work = 0;  // counted units after which it stops, or
    int nodes = 1;    // so many nodes
    double explored = 0;
    double openBound = kUserInf;  // the best of the open nodes
    double searchWork = 0;        // of the whole search so far
    int maxDepth = 0;
  };
  // A node that was processed.
  struct Processed {
    NodeOutcome outcome;
    double objective;
    int depth, fractional;
    bool unsolved = false;
    Vec<double> x;  // where points are kept
  };
  // What it has to tell afterwards.
  struct Report {
    Vec<Processed> processed;
    int maxDepth = 0;
    bool exhausted = false;  // nothing better than the incumbent is left anywhere
    bool unbounded = false;
    bool stopped = false;  // by a limit; the node was kept
    // That limit, where a poll of the limits might not find it again.
    MipStatus limit = MipStatus::Running;
  };

  // `index` of `count` explorers. goesOn is asked between heuristics.
  Explorer(const Problem &problem, const MipOptions &options, SolveControl &control,
           UserSpace &user, const RootPoint &root, int index, int count,
           std::function<bool()> goesOn);

  // Called with every solution that was found, false refuses it; without it they wait for
  // takeFound().
  std::function<bool(FoundSolution &&)> onFound;
  Vec<FoundSolution> takeFound();
  // Called now and then during long work; only on the thread of the search.
  std::function<void()> onAlive;

  Worker &worker() { return worker_; }
  HeuristicSchedule &heuristics() { return heuristics_; }
  HeuristicContext heuristicContext(const Share &share);
  double iterations() const { return worker_.lpIterations() + repair_.iterations(); }

  // Ids of nodes made from now on: steps after the last one.
  void numberNodes(std::int64_t last, std::int64_t step);
  std::int64_t lastNodeId() const { return nextId_; }

  // Another's incumbent; empty: it has no image in this problem.
  void learnIncumbent(double objective, const Vec<double> &x);
  void learnPool(const SolutionPool &pool);

  bool hasNode() const { return next_ != nullptr; }
  double nodeBound() const { return next_->bound; }
  // The nodes that it answers for, with the one in work and those that wait to be collected, and
  // the least of their bounds and of those it has given up. Only while it does not run on another
  // thread.
  int openNodes() const { return static_cast<int>(hasNode()) + static_cast<int>(open_.size()); }
  double openBound() const;
  double unsolvedBound() const { return unsolvedBound_; }
  // What its plunges have left open.
  Vec<std::shared_ptr<Node>> takeOpen();
  void give(std::shared_ptr<Node> node);
  std::shared_ptr<Node> takeNode();
  // Whether the plunge is worth going on with.
  bool plungeGoesOn(double openBound, int maxDepth) const;

  void explore(const Share &share, Report &report);
  // Brings the bounds of the root up to the cutoff. False: nothing better than the incumbent is
  // left.
  bool applyCutoff();

  // SolutionSink
  bool submit(const Vec<double> &x, SolutionSource source) override;
  bool hasIncumbent() const override { return incumbentObjective_ < kUserInf; }
  double incumbentObjective() const override { return incumbentObjective_; }
  const Vec<double> &incumbent() const override { return incumbent_; }
  double cutoff() const override { return cutoff_; }
  bool wantsSeveral() const override { return pool_.inUse(); }
  bool knows(const Vec<double> &x) const override { return pool_.has(x); }
  void alive() override {
    if (onAlive) onAlive();
  }

 private:
  void lowerCutoff();
  bool accept(const Vec<double> &point, SolutionSource source);
  void step(const Share &share, Report &report);
  void handle(const Node &node, const NodeResult &result, Report &report);
  void branch(const Node &node, const NodeResult &result, Report &report);
  std::shared_ptr<Node> makeChild(const Node &node, const NodeResult &result,
                                  const std::shared_ptr<const NodeBasis> &basis,
                                  const Vec<int> &fractional, bool up);
  bool runHeuristics(const Node &node, const Share &share);
  void takeUp();

  const Problem &problem_;
  const MipOptions &options_;
  SolveControl &control_;
  UserSpace &user_;
  const RootPoint &root_;
  Random random_;
  Worker worker_;
  HeuristicSchedule heuristics_;
  PointRepair repair_;
  std::shared_ptr<Node> next_;  // or in work
  Vec<std::shared_ptr<Node>> open_;
  double unsolvedBound_ = kUserInf;  // the smallest of nodes given up
  int plungeDepth_ = 0;
  std::int64_t nextId_, idStep_;
  double incumbentObjective_ = kUserInf, cutoff_ = kUserInf;
  double appliedCutoff_ = kUserInf;  // that the bounds of the root know
  bool rootApplied_ = false;
  Vec<double> incumbent_;
  SolutionPool pool_;
  Vec<FoundSolution> found_;
};

}  // namespace tarvik
