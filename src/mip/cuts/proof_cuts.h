// Cuts from infeasibility proofs. The multipliers of a relaxation that is infeasible, or beyond the
// cutoff, sum up rows and cuts to a row that holds everywhere (RelaxationProof). No point of the
// relaxation that it came from violates it, for it is a sum of that relaxation's rows, but rounding
// it, with bounds of the root alone, may cut off points: proofs wait for the next node that is
// solved and are rounded there. What waited in vain is forgotten.
//
// Literature: Polik (2015); Witzig, Berthold and Heinz (2021).
#pragma once

#include "mip/conflict/relaxation_proof.h"
#include "mip/cuts/mir_kernel.h"

namespace tarvik {

class ProofCuts {
 public:
  // `domain` is the worker's, now at level 0; a copy is kept.
  ProofCuts(const Problem &problem, const Domain &domain, int level);

  // The relaxation at the current bounds is infeasible, or (cutOff) at or above the cutoff.
  void take(Relaxation &lp, bool cutOff, double cutoff, WorkMeter &work);
  void beginNode() { rounds_ = 0; }
  // Adds what cuts off the optimum of the relaxation to it. The number of these cuts; then it is to
  // be solved again.
  int round(Relaxation &lp, WorkMeter &work, CutId &nextCutId);

  int count() const { return count_; }

 private:
  bool isAffordable(const WorkMeter &work);
  void roundProofs(const SeparationPoint &point, Vec<Cut> &cuts);

  const Problem &problem_;
  Domain global_;
  VariableBounds bounds_;
  RelaxationProof prover_;
  int level_;
  Vec<ProofRow> waiting_;
  int rounds_ = 0, count_ = 0;
  double start_ = -1, spent_ = 0;
};

}  // namespace tarvik
