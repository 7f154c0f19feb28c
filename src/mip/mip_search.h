// The search: it owns what all explorers share (the open nodes, the incumbent, the counters and the
// log), solves the root with its cuts and heuristics, and drives the tree in rounds. With one
// explorer a round is a node. With several, each thread gets a share of work, measured in counted
// units; what they found is collected in their order afterwards, so that a search depends on the
// number of threads, but never on which of them was faster. Restricted models inside
// heuristics are searched by the same class.
//
// Objectives are in the minimization sense throughout.
#pragma once

#include <array>
#include <functional>
#include <optional>

#include "mip/cuts/cut_pool.h"
#include "mip/cuts/separators.h"
#include "mip/explorer.h"
#include "mip/implications.h"
#include "mip/mip_observer.h"
#include "mip/node_log.h"

namespace tarvik {

using CutCounters = std::array<int, kCutFamilies>;

class MipSearch {
 public:
  MipSearch(const Problem &problem, const MipOptions &options, SolveControl &control,
            UserSpace &user);

  // A solution of the user's model is known. The point is its image in the presolved problem, if
  // presolve's reductions leave it one.
  void knowSolution(double objective, const Vec<double> &image);
  // To an end or a limit.
  MipStatus run();
  // To be called on a new search of the same problem with the bounds that another's root has found.
  void inherit(const MipSearch &other);
  // The bounds of the root.
  const Domain &rootDomain();
  // Nothing better than the incumbent is left.
  MipStatus close();
  // Whether a search that was stopped in the tree can go on with other options: nothing that they
  // ask for was cut off so far.
  bool canGoOn(const MipOptions &options) const;
  MipStatus goOn(const MipOptions &options);
  MipObserver *observer = nullptr;

  bool hasIncumbent() const { return incumbentObjective_ < kUserInf; }
  double incumbentObjective() const { return incumbentObjective_; }
  double bestBound();
  double explored() const { return explored_; }
  double unexplored() const;
  double iterations() const;
  int solutionCount() const { return solutionCount_; }
  CutCounters cutCounters() const;
  // Whether its tree was never entered.
  bool endedAtRoot() const { return !rootDone_; }
  // The root relaxation as it was solved first.
  LpStatus rootStatus() const { return rootStatus_; }
  // Of its relaxation, once solved.
  double rootObjective() const { return root_.objective; }

 private:
  enum class Round { Improved, Stalled, Over };

  // root.cpp
  void solveRoot();
  void reportRoot(double seconds, double work) const;
  void rootCutLoop();
  Round separateAndSolve(int round);
  int separateRound(int round, Vec<Cut> &cuts);
  void removeSlackCuts(int age);
  bool rootPointIsFeasible();
  void rememberRoot();
  void runRootHeuristics();
  void fixNonbasicColumns();
  void moveOnFace();
  void findSymmetries();
  int reportLurkingBounds() const;
  bool isWorthRestart();
  void rootEndsAtCutoff();
  int levelOf(CutFamily family) const;
  void createSeparators();

  // mip_search.cpp
  Explorer &main() { return *explorers_.front(); }
  Worker &worker() { return main().worker(); }
  const Worker &worker() const { return explorers_.front()->worker(); }
  bool take(FoundSolution &&found);
  void mipCheckTermination();
  MipStatus terminationStatus();
  void provenInfeasible();
  void nothingLeft();
  void lowerCutoff();
  // What bounds are compared with: the incumbent, or the worst of the pool that is wanted.
  double reference() const { return pool_.inUse() ? pool_.worst() : incumbentObjective_; }
  void completePool();
  double provenBound() const;
  void focusOnImproving();
  void dismissSideExplorers();
  void checkSoftLimits();
  SearchState state();
  MipProgress progress();
  void alive();
  void observeRoot();
  void observe(const Explorer::Processed &node);
  Explorer::Share share();
  HeuristicContext heuristicContext() { return main().heuristicContext(share()); }

  // rounds.cpp
  void treeSearch();
  void employAll();
  bool giveNodes();
  std::shared_ptr<Node> nextNode();
  void exploreSide(const Explorer::Share &share);
  void shareConflicts();
  void collectNodes(Explorer &explorer);
  void collect(Explorer &explorer, const Explorer::Report &report);

  const Problem &problem_;
  MipOptions options_;
  SolveControl &control_;
  UserSpace &user_;
  NodeLog log_;
  SilentLog silent_;
  RootPoint root_;
  Vec<double> gomoryEfficacy_;  // of the last round that looked at tableau rows
  Vec<std::unique_ptr<SolveControl>> sideControls_;  // of all explorers but the first
  Vec<std::unique_ptr<Explorer>> explorers_;
  Vec<Explorer::Report> reports_;
  NodeQueue queue_;
  ImplicationTable implications_;
  SolutionPool pool_;
  bool completing_ = false;  // the optimum is proven, the pool is being filled
  // While explorers run side by side: what was known when they started.
  std::optional<SearchState> roundState_;
  int cutsTold_ = 0;
  double lastNodeBound_ = -kUserInf;
  Vec<std::unique_ptr<Separator>> separators_;
  BranchSetList branchSets_;
  std::unique_ptr<SymmetryGroup> symmetries_;
  bool symmetriesSought_ = false;

  MipStatus status_ = MipStatus::Running;
  LpStatus rootStatus_ = LpStatus::NotSolved;
  bool rootCutsPay_ = false;  // they moved the bound: the tree gets some, too
  bool rootDone_ = false, infeasible_ = false;
  double explored_ = 0;
  double incumbentObjective_ = kUserInf, cutoff_ = kUserInf;
  Vec<double> incumbent_;
  int solutionCount_ = 0;
  double rootBound_ = -kUserInf, rootIterations_ = 0;
  double unsolvedBound_ = kUserInf;  // the smallest bound of nodes given up
  CutCounters cutCounters_{};
  CutPool cutPool_;                 // of the root
  CutId nextCutId_ = 0;             // of the root
  int sideExplorers_ = 0;           // made so far
  double dismissedIterations_ = 0;  // of explorers that are gone
  std::int64_t firstNodeId_ = 0;    // of the explorers
  std::int64_t picks_ = 0;
  bool inherited_ = false;  // from the search before the restart
  int maxDepth_ = 0, lastInfeasibilities_ = kUnknownCount;
  double startWork_ = 0;
};

}  // namespace tarvik
