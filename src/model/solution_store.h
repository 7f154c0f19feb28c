// What solves leave behind and attributes read: everything in the user's space and in the
// user's objective sense is derived at the attribute layer; the store itself holds values of the
// stored (minimization) model. A vector is empty, a double kUndefined, while its data is not
// available. Warm-start data outlives the results: a change of the model clears the results but
// keeps basis, start vectors and the last solution, adapted to the new dimensions.
#pragma once

#include <cstdint>
#include <memory>

#include "base/memory.h"
#include "base/types.h"

namespace tarvik {

class Model;

// What a solver keeps beside its results, opaque to the shell. It answers what attributes ask of
// the final basis: the functions fill the store or return a value, kUndefined when the last
// solve left nothing to compute it from, as one without a final basis does.
class SolverState {
 public:
  virtual ~SolverState() = default;
  virtual void computeRanges(Model &) {}  // the sa... vectors
  virtual double conditionEstimate(Model &) { return kUndefined; }
  virtual double conditionExact(Model &) { return kUndefined; }
  virtual double conditionTwoNorm(Model &) { return kUndefined; }
};

struct SolutionStore {
  int status = 1;  // TVK_LOADED
  bool hasObjective = false;
  double objVal = 0;                 // stored-model sense
  double objBound = kUndefined;      // stored-model sense
  double objBoundC = kUndefined;     // before rounding; kUndefined: the same as objBound
  double poolObjBound = kUndefined;  // stored-model sense
  double mipGap = kUndefined;
  Vec<double> x;            // per variable
  Vec<double> slack;        // per constraint: rhs - activity
  Vec<double> qcSlack;      // per quadratic constraint
  Vec<double> pi, rc;       // duals and reduced costs, stored-model sense
  Vec<double> qcPi;         // per quadratic constraint, stored-model sense
  Vec<double> barX;         // before crossover
  Vec<int> vbasis, cbasis;  // TVK_BASIC and so on; kept as warm start after a change
  Vec<double> vDualNorm, cDualNorm;
  Vec<double> farkasDual, unbdRay;
  double farkasProof = kUndefined;
  int infeasVar = -1, unbdVar = -1;  // variables, then constraints
  double runtime = 0, work = 0;      // seconds, work units
  double iterCount = 0, iterCount0 = 0;
  int barIterCount = 0;
  double nodeCount = 0, openNodeCount = 0, firstSolNode = kUndefined;
  int solCount = 0;
  int concurrentWinMethod = -1, concurrentWinner = -1;
  int tuneResultCount = 0;
  double kappa = kUndefined, kappaExact = kUndefined, n2Kappa = kUndefined;
  // Solution pool, best first; objective values in the stored-model sense.
  Vec<Vec<double>> poolX;
  Vec<double> poolObj;
  // Per scenario, stored-model sense.
  Vec<Vec<double>> scenX;
  Vec<double> scenObjVal, scenObjBound;
  // Sensitivity ranges; objective ranges in the stored-model sense.
  Vec<double> saObjLow, saObjUp, saLbLow, saLbUp, saUbLow, saUbUp, saRhsLow, saRhsUp;
  // Irreducible inconsistent subsystem: 0 or 1 an element.
  bool hasIis = false;
  int iisMinimal = 0;
  Vec<int> iisLb, iisUb, iisConstr, iisSos, iisQConstr, iisGenConstr;
  Vec<int> varPreStat;
  Vec<double> preFixVal;

  // Warm-start data that the caller gave for the next solve: one value a variable (a
  // constraint), dual values in the stored-model sense; empty when there are none.
  Vec<double> pstart, dstart;
  bool extendedPrecision = false;  // the last simplex ended in extended precision
  bool userBasis = false;          // vbasis/cbasis were set by the caller since the last solve
  // The last solve's x after the model changed, kUndefined for new variables.
  Vec<double> previousX;
  // A hash of every variable as it was in the mixed-integer solve that x or previousX is from, 0
  // for new ones; empty when they are from another.
  Vec<std::uint32_t> solvedVars;

  // Outlives changes of the model; null before the first solve.
  std::unique_ptr<SolverState> solver;

  // Counts the times that results were cleared, so that measures know when they are out of date.
  std::uint64_t generation = 0;

  // True when any result of a solve is stored.
  bool hasResults() const { return status != 1 || hasIis || !x.empty(); }
  // A basis that attributes may show: of the last solve, or set by the caller.
  bool basisIsVisible() const { return !vbasis.empty() && (status != 1 || userBasis); }
  // Forgets all results; keeps warm-start data and turns x into previousX.
  void clearResults();
  // Forgets warm-start data too.
  void clearAll();
};

}  // namespace tarvik
