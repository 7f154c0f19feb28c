// Learning from nodes that came to nothing. What failed (a row under propagation, or the sum of
// rows that proves the relaxation infeasible or beyond the cutoff) names bounds that cannot hold
// together. Going back along the trail, each of them that was derived is replaced by its
// explanation, until one is left of the level at which it came to the end: the first unique
// implication point. The bounds that are left make a disjunction that holds everywhere.
//
// Learning gets a share of the search's work, and a single conflict not too much of it.
//
// Bounds without an explanation (decisions, reduced costs, sets, symmetry) simply stay; bounds of
// continuous columns have to be explained, or nothing is learned.
//
// Literature: Marques-Silva and Sakallah (1999); Achterberg (2007), chapter 11.
#pragma once

#include "mip/conflict/explanation.h"
#include "mip/conflict/relaxation_proof.h"

namespace tarvik {

class ConflictAnalysis {
 public:
  ConflictAnalysis(const Problem &problem, const Domain &domain);

  ConflictStore &store() { return store_; }
  const ConflictStore &store() const { return store_; }

  // The domain has become empty by propagation, if it has.
  void learnFromDomain(WorkMeter &work);
  // The relaxation at the current bounds is infeasible, or (cutOff) at or above the cutoff.
  void learnFromRelaxation(Relaxation &lp, bool cutOff, double cutoff, WorkMeter &work);

 private:
  bool isAffordable(const WorkMeter &work);
  void explainDomain(WorkMeter &work);
  void explainRelaxation(Relaxation &lp, bool cutOff, double cutoff, WorkMeter &work);
  void analyze(WorkMeter &work);
  bool resolve(WorkMeter &work);
  void shorten(WorkMeter &work);
  void mark(int position);
  bool canStay(int position) const;
  Disjunction disjunction() const;

  const Problem &problem_;
  const Domain &domain_;
  ConflictStore store_;
  Explainer explainer_;
  RelaxationProof prover_;
  ProofRow proof_;
  Vec<int> why_;
  Vec<int> heap_;       // marked positions still to be looked at, the latest first
  Vec<char> isMarked_;  // by trail position
  double start_ = -1, spent_ = 0;
  Vec<int> kept_;  // what the conflict consists of
};

}  // namespace tarvik
