// Solves one linear program from start to finish: presolve, simplex, postsolve, and a check of
// the result against the full model in its own scale. What the check refuses is repaired: first
// by clean-up iterations on the full model from the mapped basis, then by solves with ever more
// careful settings. A status that nothing proves is never reported; what remains is Numeric.
//
// The driver knows plain data only: no handles, no parameters.
#pragma once

#include <optional>

#include "opt/verify.h"
#include "opt/warm_engine.h"
#include "presolve/presolve.h"
#include "simplex/simplex.h"

namespace tarvik {

struct LpDriverOptions {
  SimplexOptions simplex;
  PresolveOptions presolve;  // level 0: no presolve
  SimplexMethod method = SimplexMethod::Dual;
  // A warm basis that is primal but not dual feasible is solved by the primal simplex instead, and
  // so is what a crash finds.
  bool mayChangeMethod = false;
  // Presolve although there is a warm start, which is then translated.
  bool presolveWarmStart = false;
  // A warm start that needs more iterations than this is given up for a solve from scratch.
  double warmIterationLimit = 1e100;
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
  // Of the solution as the last check measured it, when it did.
  std::optional<SolutionQuality> quality;
};

class LpDriver {
 public:
  // Solves of the full model run in the engine given, which stays loaded.
  LpDriver(const LpModel &lp, const LpDriverOptions &options, SolveControl &control,
           WarmEngine &engine);

  // The basis may be null, and so may the values of its superbasic variables and the edge weights
  // of its basic ones.
  LpOutcome run(const Basis *warmStart, const Vec<double> *superbasicValues,
                const Vec<double> *edgeWeights = nullptr);

 private:
  static constexpr double kNoCap = 1e100;
  // No solve goes on for longer, whatever the caller's limit.
  static constexpr double kMaxIterations = 1e9;
  LpSolution solveFromScratch();
  LpSolution solvePresolved(const Basis *warmStart);
  LpSolution solveReduced(const Presolve &presolve, const Basis *warmStart);
  // Keeps the reduced model's factors and weights for the day when the full model is loaded.
  void passOn(const Simplex &reduced, const Presolve &presolve);
  // By way of the dual form, when that has an optimum; false leaves nothing but a starting basis.
  bool solveDualForm(const LpModel &lp, LpSolution &solution);
  // The full model in the warm engine, from a basis or from scratch.
  LpSolution solveFull(SimplexMethod method, const Basis *start,
                       const Vec<double> *superbasicValues, const Vec<double> *edgeWeights);
  // Any model in an engine of its own, or in one made for it.
  LpSolution solveApart(const LpModel &lp, const SimplexOptions &options, SimplexMethod method,
                        const Basis *start);
  LpSolution solveIn(Simplex &simplex, const LpModel &lp, SimplexMethod method, const Basis *start);
  LpSolution runEngine(Simplex &simplex, SimplexMethod method, bool fromScratch);
  LpSolution solveWithoutRows() const;
  LpStatus stopStatus();
  // Verifies, with fresh reduced costs when the kernel's own do not suffice.
  Verdict judge(LpSolution &solution) const;
  void refreshReducedCosts(LpSolution &solution) const;
  LpOutcome settle(LpSolution &&solution);
  LpOutcome repair(LpSolution &&doubtful, const Verdict &verdict);

  const LpModel &lp_;
  LpDriverOptions options_;
  SolveControl &control_;
  WarmEngine &engine_;
  Tolerances tolerances_;
  bool presolved_ = false;
  bool basisFits_ = true;         // postsolve vouches for the basis of the solution
  double iterationCap_ = kNoCap;  // of solveFull()
  bool extended_ = false;
  double iterations_ = 0;
};

}  // namespace tarvik
