// The primal simplex on an Engine: devex pricing (Forrest and Goldfarb 1992), a two-pass Harris
// ratio test with bound shifting (Harris 1973; Gill, Murray, Saunders and Wright 1989), phase 1 on
// the sum of infeasibilities with a piecewise-linear ratio test (Maros 2003), random bound
// perturbation against stalling. Every rebuild decides anew which phase the basis is in.
#pragma once

#include "simplex/engine.h"
#include "simplex/pricing_mode.h"

namespace tarvik {

template <class Real>
class PrimalSimplex {
 public:
  explicit PrimalSimplex(Engine<Real> &engine) : e_(engine) {}

  // From the engine's basis to a verdict; with perturb the bounds are perturbed from the start,
  // otherwise only when the iterations stall. With keepBounds the engine's working bounds are
  // perturbed already.
  PhaseResult run(bool perturb, bool keepBounds = false);

 private:
  struct Breakpoint {
    Real step;
    Real size;  // |pivot entry|
    BasisPos row;
    int side;  // bound reached: -1 lower, +1 upper
  };
  struct Choice {
    BasisPos row = -1;  // -1: none blocks
    int side = 0;
    Real step = 0;
    Real longest = 0;   // within the tolerances of all rows
    bool flip = false;  // the entering variable reaches its other bound first
  };

  bool rebuild(RebuildReason reason);
  void recompute(bool compare);
  RebuildReason iterate();
  RebuildReason step(VarIndex q);
  PhaseResult verdict(RebuildReason reason);
  PhaseResult finish(PhaseResult result);

  void perturbBounds();
  int phaseOneCost(BasisPos i) const;
  VarIndex mostInfeasible() const;
  void setDualMerit(VarIndex j);
  void setPricedMerit(ColIndex j);
  void fillQueue();
  void choosePricing();
  void resetWeights();
  double initialNorm(VarIndex j) const;
  VarIndex chooseColumn();
  void openSection(int section);
  void priceStructurals(const SparseVec<Real> &rho, SparseVec<Real> &row, double density);
  void priceRow();
  void refreshMerits();
  bool enteringDualAgrees(VarIndex q);
  Choice ratioTest(VarIndex q, Real direction);
  Choice phaseOneRatioTest(VarIndex q, Real direction);
  Real shiftBound(const Choice &choice, Real alpha);
  void movePrimal(VarIndex q, Real signedStep);
  void updatePhaseOneCosts(BasisPos leavingRow);
  void updateDuals(VarIndex q, BasisPos p, Real alpha);
  void updateWeights(VarIndex q, BasisPos p, Real alpha, VarIndex out);
  void updateSteepest(VarIndex q, BasisPos p, Real alpha, VarIndex out);
  void updateDevex(VarIndex q, BasisPos p, Real alpha, VarIndex out);

  Engine<Real> &e_;
  CandidateQueue queue_;  // over all variables
  PricingMode pricing_;
  Vec<double> weight_;  // by variable
  // Partial pricing: structurals are looked at, and their duals are right, in one section at a
  // time; logicals always.
  int sections_ = 1, section_ = 0;
  ColIndex sectionBegin_ = 0, sectionEnd_ = 0;
  Vec<char> inReference_;
  Vec<Breakpoint> breakpoints_;
  SparseVec<Real> costChange_;  // by basis position
  SparseVec<Real> costRow_;     // its effect on the structurals' reduced costs
  bool phaseOne_ = false;
  int devexErrors_ = 0;
  int stalled_ = 0;
  int disagreements_ = 0;
  VarIndex rayVar_ = -1;
  Real rayDirection_ = 0;
};

extern template class PrimalSimplex<double>;
extern template class PrimalSimplex<long double>;

}  // namespace tarvik
