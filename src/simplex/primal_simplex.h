// The primal simplex on an Engine: devex pricing (Forrest and Goldfarb 1992), a two-pass Harris
// ratio test with bound shifting (Harris 1973; Gill, Murray, Saunders and Wright 1989), phase 1 on
// the sum of infeasibilities with a piecewise-linear ratio test (Maros 2003), random bound
// perturbation against stalling. Every rebuild decides anew which phase the basis is in.
#pragma once

#include "simplex/engine.h"

namespace tarvik {

template <class Real>
class PrimalSimplex {
 public:
  explicit PrimalSimplex(Engine<Real> &engine) : e_(engine) {}

  // From the engine's basis to a verdict; with perturb the bounds are perturbed from the start,
  // otherwise only when the iterations stall.
  PhaseResult run(bool perturb);

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
    bool flip = false;  // the entering variable reaches its other bound first
  };

  bool rebuild(RebuildReason reason);
  RebuildReason iterate();
  RebuildReason step(VarIndex q);
  PhaseResult verdict(RebuildReason reason);
  PhaseResult finish(PhaseResult result);

  void perturbBounds();
  int phaseOneCost(BasisPos i) const;
  void setDualMerit(VarIndex j);
  void fillQueue();
  void resetDevex();
  bool enteringDualAgrees(VarIndex q);
  Choice ratioTest(VarIndex q, Real direction);
  Choice phaseOneRatioTest(VarIndex q, Real direction);
  void shiftBoundTo(BasisPos p, int side, Real target);
  void movePrimal(Real signedStep);
  void updatePhaseOneCosts(BasisPos leavingRow);
  void updateDuals(VarIndex q, BasisPos p, Real alpha);
  void updateDevex(VarIndex q, BasisPos p, Real alpha, VarIndex out);

  Engine<Real> &e_;
  CandidateQueue queue_;  // over all variables
  Vec<double> weight_;    // devex, by variable
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

}  // namespace tarvik
