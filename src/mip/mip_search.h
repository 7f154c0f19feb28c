// The search: it owns what all workers share (the open nodes, the incumbent, the counters and the
// log), solves the root with its cuts and heuristics, and drives the tree. Restricted models inside
// heuristics are searched by the same class.
//
// Objectives are in the minimization sense throughout.
#pragma once

#include <array>
#include <functional>

#include "mip/cuts/cut.h"
#include "mip/cuts/separators.h"
#include "mip/heuristics/schedule.h"
#include "mip/implications.h"
#include "mip/point_repair.h"
#include "mip/worker.h"

namespace tarvik {

enum class MipStatus {
  Running,
  Optimal,
  Infeasible,
  InfeasibleOrUnbounded,
  Unbounded,
  IterationLimit,
  NodeLimit,
  TimeLimit,
  SolutionLimit,
  Interrupted,
  Numeric,
  Suboptimal,  // some relaxations could not be solved
  UserObjectiveLimit,
  WorkLimit,
  MemoryLimit,
  ImproveStart,  // never leaves the search
  SoftLimit
};

using CutCounters = std::array<int, kCutFamilies>;

// The world that the problem was presolved from. accept() maps a point back, checks it against the
// user's model and keeps it; false when it does not pass there. The objective comes back as the
// user's model has it.
class UserSpace {
 public:
  virtual ~UserSpace() = default;
  virtual bool accept(const Vec<double> &x, double &objective) = 0;
};

class MipSearch : public SolutionSink {
 public:
  MipSearch(const Problem &problem, const MipOptions &options, SolveControl &control,
            UserSpace &user);

  // A solution of the user's model is known. The point is its image in the presolved problem, if
  // presolve's reductions leave it one.
  void knowSolution(double objective, const Vec<double> &image);
  // To an end or a limit; may be called again to go on after a limit was lifted.
  MipStatus run();
  // Called after every node.
  std::function<void(const MipSearch &)> onNode;

  // SolutionSink
  bool submit(const Vec<double> &x, SolutionSource source) override;
  bool hasIncumbent() const override { return incumbentObjective_ < kUserInf; }
  double incumbentObjective() const override { return incumbentObjective_; }
  const Vec<double> &incumbent() const override { return incumbent_; }
  double cutoff() const override { return cutoff_; }

  double bestBound();
  double explored() const { return explored_; }
  double unexplored() const;
  double iterations() const;
  int solutionCount() const { return solutionCount_; }
  CutCounters cutCounters() const;
  // The root relaxation as it was solved first.
  LpStatus rootStatus() const { return rootStatus_; }

 private:
  enum class Round { Improved, Stalled, Over };

  // root.cpp
  void solveRoot();
  void reportRoot(double seconds, double work) const;
  void rootCutLoop();
  Round separateAndSolve(int round);
  int separateRound(int round, Vec<Cut> &cuts);
  bool rootPointIsFeasible();
  void rememberRoot();
  void runRootHeuristics();
  int reportLurkingBounds() const;
  int levelOf(CutFamily family) const;
  void createSeparators();

  // mip_search.cpp
  void mipCheckTermination();
  MipStatus terminationStatus();
  void treeSearch();
  std::shared_ptr<Node> nextNode();
  bool plungeGoesOn(const Node &node);
  void handle(Node &node, const NodeResult &result);
  void branch(const Node &node, const NodeResult &result);
  void runNodeHeuristics(const Node &node);
  HeuristicContext heuristicContext();
  void provenInfeasible();
  void applyGlobalChanges();
  void lowerCutoff();
  SearchState state();

  const Problem &problem_;
  MipOptions options_;
  SolveControl &control_;
  UserSpace &user_;
  NodeLog log_;
  Random random_;
  Worker worker_;
  NodeQueue queue_;
  std::shared_ptr<Node> next_;  // the plunge goes on here
  ImplicationTable implications_;
  Vec<std::unique_ptr<Separator>> separators_;
  HeuristicSchedule heuristics_;
  PointRepair repair_;

  MipStatus status_ = MipStatus::Running;
  LpStatus rootStatus_ = LpStatus::NotSolved;
  bool rootCutsPay_ = false;  // they moved the bound: the tree gets some, too
  bool rootDone_ = false, someUnsolved_ = false, globalsStale_ = false, infeasible_ = false;
  double explored_ = 0;
  double incumbentObjective_ = kUserInf, cutoff_ = kUserInf;
  Vec<double> incumbent_;
  int solutionCount_ = 0;
  double rootBound_ = -kUserInf, rootIterations_ = 0;
  double unsolvedBound_ = kUserInf;  // the smallest bound of nodes given up
  Vec<double> rootX_, rootReducedCost_;
  double rootObjective_ = -kUserInf;
  CutCounters cutCounters_{};
  int nextCutId_ = 0;
  std::int64_t nextNodeId_ = 0;
  int plungeDepth_ = 0, maxDepth_ = 0, lastInfeasibilities_ = 0;
  double startWork_ = 0;
};

}  // namespace tarvik
