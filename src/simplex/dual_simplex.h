// The dual simplex on an Engine: bounded, two-phase, with dual steepest-edge pricing (Forrest and
// Goldfarb 1992), a bound-flipping ratio test with Harris tolerances (Harris 1973; Fourer 1994;
// Maros 2003), cost perturbation and shifting (Koberstein 2005), and hyper-sparse updates (Hall
// and McKinnon 2005).
//
// Phase 1 solves the problem with artificial boxes: its optimum is zero exactly when the
// reduced costs can be made feasible. Phase 2 ends optimal for the working (perturbed, shifted)
// costs; run() removes those and says whether primal clean-up is needed.
#pragma once

#include "simplex/engine.h"
#include "simplex/pricing_mode.h"

namespace tarvik {

template <class Real>
class DualSimplex {
 public:
  explicit DualSimplex(Engine<Real> &engine) : e_(engine) {}

  // From the engine's basis to a verdict; perturb says whether costs may be perturbed.
  PhaseResult run(bool perturb);

 private:
  struct Candidate {
    VarIndex var;
    Real alpha;  // > 0: size of the pivot row entry in the improving direction
    Real slack;  // reduced cost in its feasible direction (negative: infeasible within tolerance)
    Real range;  // width of the box, infinite when it has none
  };

  PhaseResult runFromBasis(bool perturb, bool prepared);
  bool resume();
  bool followBounds(VarIndex j, SparseVec<Real> &change);
  PhaseResult phase(bool phaseOne);
  bool trusts(RebuildReason reason) const;
  bool cutoffProven();
  PhaseResult finishPhaseTwo();
  PhaseResult verdict(RebuildReason reason, bool phaseOne);
  bool rebuild(RebuildReason reason, bool phaseOne);
  void recompute(bool phaseOne, bool compare);
  RebuildReason iterate();
  RebuildReason pivot(BasisPos p, VarIndex q);

  bool wantsPerturbation();
  bool wantsExactWeights() const;
  double perturbationSize() const;
  void perturbCosts();
  void installPhaseOneBoxes();
  // Nonbasic variables to the side their reduced cost asks for; what no flip can mend is shifted
  // when allowed. Returns the number of infeasibilities that remain.
  int correctDuals(bool mayShift);

  BasisPos chooseRow();
  void checkBestWeights();
  VarIndex chooseColumn(BasisPos p);
  void collectCandidates(Real sign);
  int selectBreakGroup(Real slope);
  int choosePivot(int group) const;
  Real ratioWeight(VarIndex j) const;
  void makeStepPositive(VarIndex q, int group, Real alpha);
  void flipGroupsBefore(int group);
  void flipWithin(int group, int pivot, Real slope);
  void applyFlips();
  void updatePrimal(Real thetaP);
  void updateDuals(Real thetaD);
  void choosePricing();
  void updateWeights(BasisPos p, Real alpha);
  void updateSteepest(BasisPos p, Real alpha);
  void updateDevex(BasisPos p, Real alpha);
  void setInfeasibility(BasisPos i);
  void fillQueue();
  void block(BasisPos p);
  void refuse(BasisPos p);
  void unblockAll();

  Engine<Real> &e_;
  CandidateQueue queue_;
  PricingMode pricing_;
  Vec<Real> width_;             // upper - lower, by variable
  Vec<VarIndex> freeNonbasic_;  // structurals that may leave their value both ways
  Vec<Candidate> candidates_;
  Vec<int> groupStart_;
  Vec<Real> suffixTheta_;
  Vec<VarIndex> flipped_;
  Vec<Real> flipDelta_;
  Vec<char> blocked_;  // rows that may not leave until progress is made
  int blockedCount_ = 0;
  Vec<char> checked_;  // rows whose weight has been exact since the queue was filled
  bool allowSmallPivots_ = false;
  Real bestRejected_ = 0;  // largest of the pivots put off
  bool resumed_ = false;
  double perturbAt_ = 1e100;   // iterations from which on costs are perturbed
  double nextCutoffTest_ = 0;  // iterations; a test that failed is not repeated at once
  bool retry_ = false;         // the verdict asks for another try without the row it blocked
  double flips_ = 0;           // of reduced costs mended by a change of side
  // Values computed at the start of a run that its first rebuild need not compute again: reduced
  // costs with the right signs, and primal values that hold as long as no flip was made since.
  bool dualsFresh_ = false, primalFresh_ = false;
  bool dualsFeasible_ = false;  // from the preparation of the basis
  double freshFlips_ = 0;
  Real thetaD_ = 0;
  BasisPos troubleRow_ = -1;
  bool phaseOne_ = false;
  int disagreements_ = 0;
  int refusedCols_ = 0;  // pivots that even fresh factors refused
};

extern template class DualSimplex<double>;
extern template class DualSimplex<long double>;

}  // namespace tarvik
