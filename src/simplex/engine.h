// The state that the dual and the primal simplex share: the scaled problem with its working
// bounds and costs, the basis heading with its factors, primal values, reduced costs, edge
// weights, and the operations that recompute any of them from the others. The algorithms
// (dual_simplex.h, primal_simplex.h) iterate on it; only a rebuild() refactorises.
//
// Invariants: head and position are inverse; a nonbasic variable j has value[j] at the bound that
// move[j] says: +1 at its lower (may rise), -1 at its upper (may fall), 0 fixed, free or
// superbasic. Basic values live in xB by basis position, their working bounds in lB and uB.
#pragma once

#include <cmath>

#include "base/random.h"
#include "simplex/candidate_queue.h"
#include "simplex/lu/factor.h"
#include "simplex/row_matrix.h"
#include "simplex/scaled_lp.h"
#include "simplex/simplex.h"
#include "simplex/stability.h"

namespace tarvik {

// Why an algorithm's inner loop ended and a rebuild is due.
enum class RebuildReason {
  None,
  UpdateLimit,         // the factors say that a refactorization pays
  PossiblyOptimal,     // no candidate left
  PossiblyInfeasible,  // dual: no entering candidate
  PossiblyUnbounded,   // primal: no blocking variable
  PivotDisagreement,   // row and column disagree on the pivot
  UnsafeUpdate,        // the factor refused the update
  TinyPivots,          // dual: nothing but tiny pivots is left
  Cutoff,
  Limit,  // a limit or a stop request; see Engine::stop
};

// How a phase of an algorithm ended.
enum class PhaseResult {
  Optimal,      // no infeasibility left for the working problem
  Infeasible,   // dual: proven primal infeasible; primal phase 1: positive optimum
  Unbounded,    // primal: a ray was found
  NeedsPrimal,  // dual: go on with the primal simplex
  NeedsDual,    // primal: go on with the dual simplex
  Cutoff,
  Stopped,        // see Engine::stop
  NeedsExtended,  // more precision is asked for
  Trouble,        // numerical; the driver decides
};

// How far the working costs or bounds are from the true ones.
enum class ShiftState : int { None = 0, Small = 1, Large = 2 };

// What an engine knows apart from its numbers; a change of precision copies it as it is.
struct EngineState {
  SimplexOptions options;
  Stability stability;

  // --- basis ---
  Vec<VarIndex> head;      // m
  Vec<BasisPos> position;  // n + m, -1 when nonbasic
  Vec<signed char> move;   // n + m
  Vec<double> rowWeight;   // m, dual steepest-edge weights
  bool rowWeightsValid = false;
  int loadedRows = 0;  // rows beyond have been added since the load

  // --- running densities ---
  double rhoDensity = 0, rowDensity = 0, columnDensity = 0, weightDensity = 0, flipDensity = 0;

  // --- shift bookkeeping ---
  ShiftState costShift = ShiftState::None;
  ShiftState boundShift = ShiftState::None;
  bool costsPerturbed = false, boundsPerturbed = false;
  // n + m, in [0, 1), fixed for the engine's life; drawn when the first one is asked for.
  Vec<double> randomValue;
  // Nonbasic variables fixed where they are in the working bounds, since they were dependent in a
  // basis; resetWorkingBounds() lets them go.
  Vec<VarIndex> held;

  // --- run state ---
  SolveControl *control = nullptr;
  double iterations = 0;
  double iterationCap = 1e100;  // an algorithm stops here too, with StopReason::IterationLimit
  StopReason stop = StopReason::None;
  VarIndex provingVar = -1;  // of a verdict other than optimal; see LpSolution
  SimplexProgress progress;
  double logSign = 1;
  double lastLogIteration = -1, nextLogSeconds = 0, nextLogLook = 0;
  bool headerPrinted = false;
};

template <class Real>
class Engine : public EngineState {
 public:
  // --- problem ---
  ScaledLp<Real> lp;
  Vec<Real> lower, upper;                 // working bounds, n + m
  Vec<Real> cost;                         // working costs, n + m
  Real primalTol = 1e-6, dualTol = 1e-6;  // in the scaled space

  // --- basis ---
  Vec<Real> value;       // n + m, of nonbasic variables
  Vec<Real> dual;        // n + m, reduced costs; 0 for basic variables
  Vec<Real> xB, lB, uB;  // m
  Factor<Real> factor;
  RowMatrix<Real> rows;
  bool factored = false;
  int updates = 0;  // basis changes since the factorization

  // --- shared scratch ---
  SparseVec<Real> rho;       // BTRAN of a unit vector (pivot row multipliers)
  SparseVec<Real> pivotRow;  // structurals' part of the pivot row
  SparseVec<Real> column;    // FTRAN of the entering column
  SparseVec<Real> work1, work2;

  // --- what refactorizations check ---
  Real updatedObjective = 0;    // of the working problem, followed through every change
  bool valuesFollowed = false;  // false after changes that nothing was updated by
  bool repaired = false;        // the last factorization changed the basis

  // --- what the last solve left ---
  // The working problem is the true one except at the bounds of the touched variables, and values,
  // reduced costs and weights belong to the basis: a dual run goes on from here without computing
  // any of it again.
  bool current = false;
  Vec<VarIndex> touched;
  int updatesSinceCompute = 0;  // basis changes since the values were computed from the factors
  // Nonbasic variables stand at the true bounds, as setBasis() puts them.
  bool placed = false;
  // In addition values and reduced costs of the true problem have been computed from the factors:
  // a run begins without computing them again.
  bool prepared = false;
  bool dualFeasible = false;  // with prepared: no reduced cost is beyond the tolerance

  // --- verdicts ---
  Vec<Real> certificateRow;  // dual ray of a proven infeasibility: multipliers by row
  Vec<Real> rayDirection;    // primal ray, n + m

  void load(const LpModel &model);
  // The same without a basis, which is to follow. The row-wise copy of the matrix waits until more
  // than a few pivot rows are asked for: many a re-solve ends before. Scale factors
  // that are known already may be null.
  void loadForBasis(const LpModel &model, const Scaling *known);
  // Takes over the state of an engine of the other precision; the basis is factored again.
  template <class Other>
  void convertFrom(const Engine<Other> &other);
  void slackBasis();
  // Values and moves of nonbasic variables from the working bounds; keeps sides where possible.
  void placeNonbasic(VarIndex j);
  void resetWorkingBounds();  // true bounds into lower/upper; nonbasics follow
  void resetWorkingCosts();
  // The squared norms of the rows of the inverse basis as edge weights, by one solve a row.
  void computeExactWeights();
  void rebuildRows();
  void needRows() {
    if (!rows.built() || rows.loose()) buildRows();
  }
  // Says that true bounds have changed.
  void touch(VarIndex j) {
    if (current) touched.push_back(j);
    placed = prepared = false;
  }
  void forgetValues() {
    current = placed = prepared = false;
    touched.clear();
  }
  bool canEnter(VarIndex j) const { return position[j] < 0 && lower[j] < upper[j]; }
  void syncActive(VarIndex j) {
    if (j < lp.n && rows.built()) rows.setActive(j, canEnter(j));
  }

  // The verdict of an algorithm whose rebuild has failed.
  PhaseResult troubleResult() const {
    return stability.extendRequested() ? PhaseResult::NeedsExtended : PhaseResult::Trouble;
  }
  Log *warnings() const { return options.logging ? control->log : nullptr; }

  // Factors the basis; repairs a singular one. False when it cannot be repaired any more.
  bool refactor();
  void computePrimal();
  void computeDual();

  // Around a refactorization in the course of an algorithm: keep what was updated, compare it
  // with what was computed afresh (as far as nothing else has changed it), look at the residuals.
  void keepUpdatedValues();
  void compareDuals();
  void comparePrimal();
  void noteResiduals();
  Stability::Check checkObjective();
  double conditionEstimate();
  // More stable factors after the k-th doubtful pivot of an algorithm.
  void noteDoubtfulPivot(int k);
  void loadBasicBounds();
  Real primalInfeasibilitySum(int *count = nullptr) const;
  Real dualInfeasibilitySum(int *count = nullptr) const;
  Real dualInfeasibility(VarIndex j) const {
    if (position[j] >= 0 || lower[j] == upper[j]) return 0;
    const Real d = dual[j];
    if (move[j] > 0) return d < 0 ? -d : Real(0);
    if (move[j] < 0) return d > 0 ? d : Real(0);
    return d < 0 ? -d : d;
  }
  Real currentObjective() const;  // working costs, scaled space values, offset included
  Real trueObjective() const;
  // What the multipliers of the current basis prove for the true problem: no point within the
  // bounds is better. Reduced costs within the tolerance count as zero where a bound is missing.
  double dualBound(WorkMeter &work);
  // The reduced cost of a structural variable at the multipliers that the logicals show.
  Real reducedCost(VarIndex j) const;

  void ftranColumn(VarIndex j, SparseVec<Real> &x, bool keepSpike);
  void unitBtran(BasisPos p);  // rho = e_p' B^-1
  void priceRow();             // pivotRow from rho
  // The pivot row's entry for any nonbasic variable.
  Real rowEntry(VarIndex j) const { return j < lp.n ? pivotRow.value[j] : rho.value[j - lp.n]; }

  // Replaces the basic variable at p by q; the leaving variable goes to its bound by side (-1
  // lower, +1 upper). Values, duals and weights are the algorithms' business.
  UpdateResult changeBasis(VarIndex q, BasisPos p, int side, Real alpha);

  // Smallest entry of a pivot row or column that a ratio test may take: what the factorization
  // treats as zero at least, more with the age of the factors.
  Real rowPivotTol() const;
  void shiftCost(VarIndex j, Real amount, ShiftState state = ShiftState::Large);
  double randomOf(VarIndex j) {
    if (randomValue.empty()) drawRandomValues();
    return randomValue[j];
  }
  void drawRandomValues();
  // A wrong sign of this size is small: a shift that mends it may go beyond by as much again.
  bool smallViolation(VarIndex j, Real violation) const {
    return violation < Real(0.0005) * dualTol ||
           (violation < Real(0.05) * dualTol &&
            (upper[j] - lower[j]) * violation < Real(0.1) * dualTol);
  }
  // By how much a shift goes beyond zero, as a share of what it mends.
  Real shiftExcess(VarIndex j, bool small) {
    const double r = randomOf(j);
    return small ? Real(r) : Real((std::floor(500 * r) + 111) / 1000);
  }
  // Checks that y'(A x + s) = 0 cannot hold within the true bounds; keeps y as the certificate.
  bool proveInfeasible(const SparseVec<Real> &y);
  bool poll();        // false: stop (reason in `stop`)
  bool pollAndLog();  // the same in an iteration, which may be due for a log line
  void chargeWork(double entries) { control->work.charge(entries * workRate); }
  void log(bool force);
  void logHeader();
  // Iterations and the log begin again, as for a new solve of the caller.
  void restartCounting() {
    iterations = 0;
    lastLogIteration = -1;
    nextLogSeconds = nextLogLook = 0;
    headerPrinted = false;
  }
  void updateDensity(double &average, const SparseVec<Real> &x) const;

  double workRate = 1.3;
  double setupEntries = 0;  // of the load that no solve has been charged for

 private:
  void loadProblem(const LpModel &model, Scaling scaling);
  void resizeScratch();
  void buildRows();
  Vec<char> enteringColumns() const;
  void priceByColumns();
  void setWorkRate();
  void noteChange(Real change, Real largest);
  Real primalResidual();
  Real dualResidual();
  void refineRow(Vec<Real> &y);
  void permuteWeights(const Vec<VarIndex> &oldHead);
  bool applyRepair(const SingularRepair &repair);
  bool hold(const Vec<VarIndex> &dropped);
  // How many more pivot rows may be formed column by column before the row-wise copy is made.
  int columnPrices_ = 0;
  int loosePrices_ = 0;    // before the loose row-wise copy becomes a partitioned one
  Vec<double> oldWeight_;  // scratch by row
  Vec<Real> keptDual_, keptPrimal_;
  Real keptInfeasibility_ = 0;
  Discrepancy seen_;
};

extern template class Engine<double>;
extern template class Engine<long double>;

}  // namespace tarvik
