// Solves one linear program from start to finish: presolve, simplex, postsolve, and a check of
// the result against the full model in its own scale. What the check refuses is repaired: first
// by clean-up iterations on the full model from the mapped basis, then by solves with ever more
// careful settings. A status that nothing proves is never reported; what remains is Numeric.
//
// The driver knows plain data only: no handles, no parameters.
#pragma once

#include <optional>

#include "opt/verify.h"
#include "presolve/presolve.h"
#include "simplex/simplex.h"

namespace tarvik {

struct LpDriverOptions {
  SimplexOptions simplex;
  PresolveOptions presolve;  // level 0: no presolve
  SimplexMethod method = SimplexMethod::Dual;
  // Presolve although there is a warm start, which is then translated.
  bool presolveWarmStart = false;
  // The caller wants Farkas proofs and rays of the full model, and infeasible told apart from
  // unbounded.
  bool wantCertificates = false;
};

struct LpOutcome {
  LpSolution solution;
  // Primal feasible, but optimality within the tolerances could not be reached.
  bool suboptimal = false;
  // The last simplex ran in extended precision.
  bool extended = false;
};

class LpDriver {
 public:
  LpDriver(const LpModel &lp, const LpDriverOptions &options, SolveControl &control);

  // The basis may be null, and so may the values of its superbasic variables.
  LpOutcome run(const Basis *warmStart, const Vec<double> *superbasicValues);

 private:
  LpSolution solvePresolved(const Basis *warmStart);
  LpSolution solveReduced(const Presolve &presolve, const Basis *warmStart);
  LpSolution solveSimplex(const LpModel &lp, const SimplexOptions &options, SimplexMethod method,
                          const Basis *start, const Vec<double> *superbasicValues);
  LpSolution solveWithoutRows() const;
  void logPresolve(const Presolve &presolve, PresolveStatus status) const;
  LpStatus stopStatus();
  LpOutcome settle(LpSolution &&solution);
  LpOutcome repair(LpSolution &&doubtful, const Verdict &verdict);

  const LpModel &lp_;
  LpDriverOptions options_;
  SolveControl &control_;
  Tolerances tolerances_;
  bool presolved_ = false;
  bool extended_ = false;
  double iterations_ = 0;
};

}  // namespace tarvik
