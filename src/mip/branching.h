// How a node is split: reliability branching on fractional integral columns (strong branching
// until the pseudo-costs of a column have been observed often enough), then semi-continuous
// columns off their range, then ordered sets.
//
// Literature: Achterberg, Koch and Martin (2005); Linderoth and Savelsbergh (1999); for the use of
// cuts Cornuejols, Liberti and Nannicini (2011), Turner, Berthold, Besancon and Koch (2023).
#pragma once

#include "mip/branch_probe.h"
#include "mip/branch_sets.h"
#include "mip/node_queue.h"
#include "mip/pseudo_costs.h"

namespace tarvik {

struct Branching {
  enum Result {
    None,       // nothing is left to branch on: the point satisfies all discrete conditions
    Split,      // see the children
    Tightened,  // bounds of the node were tightened: solve it again
    Pruned,     // both branches of some column are infeasible or beyond the cutoff
    Refused,    // everything is fixed, but the point was not accepted
    Stopped     // a limit
  } result = None;
  Vec<BoundChange> down, up;
  int col = -1;  // of an integral column's branching
  double value = 0;
  double downBound = -kUserInf, upBound = -kUserInf;  // what strong branching has proven
  double downGain = 0, upGain = 0;                    // expected
  bool upFirst = false;
};

class Brancher {
 public:
  Brancher(const Problem &problem, const MipOptions &options, PseudoCosts &pseudoCosts)
      : problem_(problem), options_(options), pseudoCosts_(pseudoCosts) {}

  // The domain and the relaxation stand at the node, solved to optimality.
  Branching choose(Domain &domain, Relaxation &lp, SolutionSink &sink, SolveControl &control);

  // A split without a relaxation to look at, where it could not be solved.
  Branching chooseBlindly(const Domain &domain) const;
  // The same on holes and sets only: these may be what bounds an unbounded relaxation.
  Branching chooseWithoutPoint(const Domain &domain) const;

  // The point at which the root relaxation was solved, for the choice of the first child.
  void setRootPoint(const Vec<double> &x) { rootX_ = x; }
  // Efficacy of Gomory cuts from the tableau rows of the columns at the root, empty if unknown:
  // columns of deep ones come first as long as nothing has been observed about them.
  void setCutEfficacy(Vec<double> efficacy);
  const Vec<double> &cutEfficacy() const { return cutEfficacy_; }
  // Learns from infeasible branches, and prefers columns that conflicts are about a little.
  void setConflicts(ConflictAnalysis *conflicts) { conflicts_ = conflicts; }
  // Chains of binaries that may be branched on as sets; they outlive the brancher.
  void setBranchSets(const BranchSetList &sets);
  // Hands the proofs of infeasible branches on.
  void setProofs(ProofCuts *proofs) { proofs_ = proofs; }
  const Vec<double> &rootPoint() const { return rootX_; }
  // Iterations of ordinary node solves so far, which strong branching has to stay in proportion to.
  void noteNodeIterations(double iterations) {
    nodeIterations_ += iterations;
    ++nodeSolves_;
  }

 private:
  Branching chooseIntegral(Domain &domain, Relaxation &lp, SolutionSink &sink,
                           SolveControl &control);
  void keepHighestPriority(Vec<int> &cols) const;
  bool holeIsDecided(const Domain &domain, int col) const;
  Branching chooseSemi(const Domain &domain, const Vec<double> &x) const;
  Branching chooseSos(const Domain &domain, const Vec<double> &x) const;
  Branching splitSet(const SosSet &set, const Domain &domain, const Vec<double> &x) const;
  Branching orSet(Branching branching, const Domain &domain, const Vec<double> &x) const;
  Branching chooseOpenSet(const Domain &domain) const;
  Branching chooseAny(const Domain &domain, const Vec<double> &x) const;
  Branching split(int col, double x) const;
  Branching oneBranchLeft(Branching branching, bool up, Domain &domain) const;
  bool upFirst(int col, double x, double downGain, double upGain) const;
  int reliability() const;
  double iterationsPerProbe() const;
  double orderOf(int col, double x) const;
  double scoreOf(int col, double downGain, double upGain) const;

  const Problem &problem_;
  const MipOptions &options_;
  PseudoCosts &pseudoCosts_;
  ConflictAnalysis *conflicts_ = nullptr;
  ProofCuts *proofs_ = nullptr;
  const BranchSetList *branchSets_ = nullptr;
  Vec<int> setOf_;  // by column, the chain that it is in, or -1; empty: there are none
  Vec<double> rootX_, cutEfficacy_;  // the latter relative to the largest
  Vec<int> candidates_;
  double nodeIterations_ = 0, nodeSolves_ = 0, strongIterations_ = 0;
};

}  // namespace tarvik
