// One complete solver in one precision: the engine's state, both algorithms on it, and what goes
// on between them. A solve alternates between dual and primal rounds until one ends with a verdict
// for the true problem; then it tightens what the unscaled solution violates and polishes the
// optimum. Trouble leads to more stable factors, to a fresh start from the slack basis and, when
// the options leave the choice, to a request for extended precision: the owner then converts the
// core and the solve goes on.
#pragma once

#include "simplex/dual_simplex.h"
#include "simplex/primal_simplex.h"

namespace tarvik {

template <class Real>
class SimplexCore {
 public:
  explicit SimplexCore(const SimplexOptions &options) : dual_(engine), primal_(engine) {
    engine.options = options;
  }
  // Continues where a core of the other precision stands.
  template <class Other>
  explicit SimplexCore(const SimplexCore<Other> &other) : SimplexCore(other.engine.options) {
    engine.convertFrom(other.engine);
    tightenings_ = other.tightenings();
    recoveries_ = other.recoveries();
  }

  // Prepares the engine for a solve; false when crossing bounds decide it.
  bool start(SolveControl &control);
  // See Simplex::crash; only in double precision.
  bool crash(SolveControl &control);
  // To a verdict; NeedsExtended asks for a conversion and another call.
  PhaseResult run(SimplexMethod method);

  // Looks at an optimum: false, with a message, when its values blew up.
  bool endsWell();

  void load(const LpModel &lp, const Basis &basis, const Vec<double> *values, const Scaling *known);
  void setBasis(const Basis &basis, const Vec<double> *values);
  Basis basis() const;
  void getSolution(LpStatus status, LpSolution &solution) const;
  void getPoint(Vec<double> &x, Vec<double> &reducedCost, double &objective) const;
  void addRows(int count, const NzIndex *start, const int *index, const double *value,
               const double *lower, const double *upper);
  void deleteRows(const Vec<char> &mark);
  void ftran(Vec<double> &x, WorkMeter &work);
  void btran(Vec<double> &y, WorkMeter &work);
  bool hasBasics(const Basis &basis) const;
  bool standsAt(const Basis &basis) const;
  Vec<double> edgeWeights() const;
  void setEdgeWeights(const Vec<double> &weights);
  bool refresh(SolveControl &control);
  bool prefersPrimal(SolveControl &control);
  int tightenings() const { return tightenings_; }
  int recoveries() const { return recoveries_; }

  Engine<Real> engine;

 private:
  enum class Recovery { GoOn, Extend, GiveUp };

  bool prepareBasis(SolveControl &control);
  PhaseResult runMethod(SimplexMethod method, bool perturb);
  bool boundsCross();
  // Largest violations of the bounds and of the reduced costs' signs in the user's scale.
  struct Violations {
    double primal = 0, dual = 0;
  };
  Violations unscaledViolations() const;
  bool loosen();
  bool tightenIfViolated(const Violations &violations);
  Recovery recover();
  PhaseResult polish(const Violations &violations);

  DualSimplex<Real> dual_;
  PrimalSimplex<Real> primal_;
  int tightenings_ = 0, recoveries_ = 0;
  bool crashed_ = false;  // the working bounds are those of a crash, for the next primal run
  double lookedAt_ = 0;   // iterations when the size of the values was looked at last
};

extern template class SimplexCore<double>;
extern template class SimplexCore<long double>;

}  // namespace tarvik
