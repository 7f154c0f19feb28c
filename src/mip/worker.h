// One worker of the search: a domain and a relaxation that move from node to node, and what it
// learns on the way. It shares nothing that changes with others while it runs.
#pragma once

#include <optional>

#include "mip/branching.h"
#include "mip/conflict/conflict_analysis.h"
#include "mip/cuts/tree_separation.h"
#include "mip/mip_status.h"
#include "mip/node_log.h"
#include "mip/symmetry/orbital_fixing.h"

namespace tarvik {

struct NodeResult {
  NodeOutcome outcome = NodeOutcome::Solved;
  double objective = -kUserInf;
  int fractional = 0;
  Branching branching;
  bool stopped = false;                  // by a limit; the node remains open
  MipStatus limit = MipStatus::Running;  // where a search within the node has met it
  bool unbounded = false;  // with all holes and sets decided, and with an integral point
  bool unsolved = false;   // numerical trouble kept it from being solved and from being split
  Vec<double> x;           // the optimum of its relaxation, if points are kept
};

class Worker {
 public:
  Worker(const Problem &problem, const MipOptions &options, SolutionSink &sink,
         SolveControl &control);

  Domain &domain() { return domain_; }
  const Domain &domain() const { return domain_; }
  Relaxation &lp() { return lp_; }
  const Relaxation &lp() const { return lp_; }
  PseudoCosts &pseudoCosts() { return pseudoCosts_; }
  // With those of searches within nodes.
  double lpIterations() const { return lp_.iterations() + nestedIterations_; }
  double lpObjective() const { return lp_.objective(); }
  Brancher &brancher() { return brancher_; }
  // What it has learned from conflicts; null: it does not.
  ConflictStore *conflicts() { return conflicts_ ? &conflicts_->store() : nullptr; }

  // The id of its first cut; to be called before it is told to make cuts.
  void numberCutsFrom(CutId first) { nextCutId_ = first; }
  // From now on nodes get cuts, fresh ones and those of a copy of the pool. The domain is at level
  // 0; the table outlives the worker.
  void separateInTree(const ImplicationTable &implications,
                      const std::function<int(CutFamily)> &levelOf, const CutPool &pool);
  const TreeSeparation *treeSeparation() const { return treeSeparation_.get(); }
  // From now on proofs of infeasible relaxations become cuts. The domain is at level 0.
  void cutByProofs(int level);
  const ProofCuts *proofCuts() const { return proofCuts_.get(); }

  // Whether results come with the points of their relaxations.
  void keepPoints(bool keep) { keepsPoints_ = keep; }

  // From now on bounds are tightened by symmetry; the group outlives the worker.
  void useSymmetry(const SymmetryGroup &group);

  // Moves to the node, solves its relaxation, tightens and chooses a branching.
  NodeResult process(Node &node);
  // Takes over bounds, cuts and experience of another worker at level 0.
  void followRootOf(Worker &other);
  // Back at level 0; decisions of the node that was processed last are undone.
  void returnToRoot();

  // Bounds that reduced costs at an optimum imply under the cutoff; at the current level.
  // False: the domain became empty.
  bool tightenByReducedCosts(const Vec<double> &x, const Vec<double> &reducedCost,
                             double objective);

 private:
  bool moveTo(const Node &node);
  bool enterConflicts();
  void learnFromDomain();
  void learnFromRelaxation(bool cutOff);
  bool propagate();
  LpStatus solveRelaxation();
  void learnFrom(const Node &node, LpStatus status);
  bool pointIsCutOff() const;
  NodeOutcome outcomeOf(LpStatus status) const;
  void lookForPoint(NodeResult &result);

  const Problem &problem_;
  const MipOptions &options_;
  SolutionSink &sink_;
  SolveControl &control_;
  Domain domain_;
  Relaxation lp_;
  PseudoCosts pseudoCosts_;
  Brancher brancher_;
  std::unique_ptr<Propagator> sosPropagator_;
  std::unique_ptr<ConflictAnalysis> conflicts_;
  std::optional<OrbitalFixing> orbitalFixing_;
  std::unique_ptr<TreeSeparation> treeSeparation_;
  std::unique_ptr<ProofCuts> proofCuts_;
  CutId nextCutId_ = 0;
  bool keepsPoints_ = false;
  double nestedIterations_ = 0;
  std::shared_ptr<const NodePath> path_;
  Vec<std::shared_ptr<const NodePath>> chain_;  // the decisions in force, root first
};

}  // namespace tarvik
