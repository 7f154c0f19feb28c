// Presolve for linear programs: turns a model into a smaller equivalent one and maps solutions
// of the smaller one back. Every reduction leaves a record on a stack; undoing the stack in
// reverse order restores primal values, row activities, duals, reduced costs and the basis of
// the full model. If the reduced solution is basic, primal and dual feasible, so is the
// restored one, up to rounding: each reduction is an exact statement about the bounds that the
// working model really has at that moment. Bounds that are only implied by rows are either
// removed for good (which needs no undoing) or not used; they never become bounds of the
// reduced model.
//
// Literature: Brearley, Mitra and Williams (1975); Andersen and Andersen (1995); Gondzio (1997);
// Achterberg, Bixby, Gu, Rothberg and Weninger (2020).
#pragma once

#include <memory>

#include "base/solve_control.h"
#include "lp/lp_model.h"

namespace tarvik {

struct PresolveOptions {
  int level = -1;     // -1 automatic, 0 off, 1 conservative, 2 aggressive
  int aggregate = 1;  // 0 no substitutions, 1 moderate, 2 aggressive
  int aggFill = -1;   // entries that one substitution may add; -1 automatic
  // Solve the dual form when positive. Automatic stays with the model: over 130 models, tall ones
  // among them, no rule on the shape told the few that gain from the many that lose.
  int preDual = -1;
  // Removal of dependent equations: -1 automatic, 0 off, 1 on. Automatic leaves pure LPs alone: the
  // simplex method does not mind dependent rows, and finding them takes as long as the other
  // rounds.
  int depRows = -1;
  // Conclusions from bounds that several rows imply together, for models without integral columns:
  // -1 automatic, 0 off, 1 on. Automatic is off: over 155 models the search for them costs what
  // the smaller models save.
  int derivedBounds = -1;
  // Equations added to rows of dense models to cancel entries: -1 automatic, 0 off, 1 on, 2
  // aggressive.
  int sparsify = -1;
  int sparsifyMinSize = 10;       // of rows and of columns that such a model must have
  double sparsifyMinLength = 40;  // of its rows and of its columns, on average
  bool singletonCols = true;
  bool parallel = true;   // rows and columns that are multiples of each other
  bool dominated = true;  // columns that another one makes superfluous
  // No column is replaced by more than so many times another one.
  double multiplierLimit = 1e14;
  int passes = -1;  // limit on the rounds of expensive reductions; negative: none
  // Limit on the number of single reductions, to bisect a wrong answer to the one at fault.
  int reductionLimit = kMaxInt;
  // When false, nothing is done that would confuse an infeasible with an unbounded model.
  bool dualReductions = true;
  // Every column that goes is a constant or an affine function of those left, so that inequalities
  // over the columns can be translated (crushRow). Reductions may still decide for one of several
  // solutions: what is translated must hold for all of them.
  bool affine = false;
  // No feasible point is lost, whatever its cost: constraints may come later. Implies affine, and
  // no dual reductions.
  bool keepPoints = false;
  double primalTol = 1e-6;
  double dualTol = 1e-6;
  double zeroTol = 1e-13;  // entries that cancel below this fraction of their terms vanish
  // Nonzero for columns that must stay integral; null for a pure LP. Reductions then keep the
  // set of integral solutions, and postsolve restores primal values only.
  const Vec<char> *integer = nullptr;
  // Nonzero for columns whose values obey rules that the rows do not tell (holes, ordered sets);
  // null for none. They stay, and nothing but their bounds moves.
  const Vec<char> *restricted = nullptr;
  const char *name = "Presolve";  // how progress lines call this run
  bool logging = true;
};

enum class PresolveStatus {
  Unchanged,  // no reduction was found; reduced() equals the model
  Reduced,
  Solved,  // all rows and columns removed: postsolve an empty solution
  Infeasible,
  Unbounded,  // feasible and unbounded
  InfeasibleOrUnbounded,
  Stopped,  // a limit, an interrupt or a callback; see SolveControl
};

struct PresolveStats {
  int rowsRemoved = 0, colsRemoved = 0;  // net: negative when some were added
  NzIndex nonzerosRemoved = 0;
  int boundsChanged = 0;   // tightened column bounds
  int coefsChanged = 0;    // modified matrix entries
  int sensesChanged = 0;   // inequalities turned into equalities
  NzIndex sparsified = 0;  // entries removed by adding equations to other rows
  NzIndex sparsifiedFrom = 0;
  int reductions = 0;  // single reductions applied
  double seconds = 0;
};

// lower <= value'x <= upper, over the columns of one model.
struct LinearRow {
  Vec<int> cols;
  Vec<double> values;
  double lower = -kInf, upper = kInf;
};

class PresolveRun;

class Presolve {
 public:
  Presolve();
  ~Presolve();
  Presolve(Presolve &&) noexcept;
  Presolve &operator=(Presolve &&) noexcept;

  // Presolves the model, which must outlive this object (postsolve reads it again).
  PresolveStatus run(const LpModel &lp, const PresolveOptions &options, SolveControl &control);

  const LpModel &reduced() const;

  // Maps a solution of the reduced model back. Absent vectors (duals, basis) stay absent; after
  // Solved the reduced solution may be empty. Status, iteration count, ray and certificate are
  // copied as far as they make sense; objective and activities are recomputed in full scale. False
  // when the restored basis may have other duals than those restored, or be singular: then it is a
  // start for the simplex, close to the optimum (see sparsify.h).
  bool postsolve(const LpSolution &reducedSolution, LpSolution &full) const;
  // Maps a Farkas certificate of the reduced model back; the result must be checked with
  // farkasViolation, since a proof may dissolve in tolerances.
  void postsolveFarkas(const Vec<double> &reducedFarkas, Vec<double> &full) const;
  // After Infeasible: a certificate for the full model, or empty when presolve has none to offer
  // (then the simplex has to prove it again). To be checked as above.
  Vec<double> farkas() const;

  // False when a dual argument was used that holds only if the model has an optimum: then an
  // infeasible reduced model may come from an unbounded full one, unless a mapped certificate
  // proves otherwise.
  bool infeasibleMeansInfeasible() const;

  // Translates a basis of the full model for a warm start of the reduced one: statuses of what
  // is left, completed or thinned to exactly one basic variable a row. It may be singular; the
  // simplex repairs it. Returns false when there is nothing to translate.
  bool crushBasis(const Basis &full, Basis &reducedBasis) const;

  // The row over columns of the full model as a row over those of the reduced one: what the reduced
  // columns say of it, whatever values they have. Columns are named once, in ascending order.
  // False, and the row as it was, when a column in it went in a way that cannot be said like that;
  // never so with PresolveOptions::affine. Many threads may call it at the same time.
  bool crushRow(LinearRow &row) const;

  // Column and row of the full model for each one of the reduced model.
  const Vec<int> &originalCol() const;
  const Vec<int> &originalRow() const;
  // The same for a variable counted with the rows behind the columns; -1 stays.
  int originalVar(int reducedVar) const;

  const PresolveStats &stats() const;

 private:
  std::unique_ptr<PresolveRun> run_;
};

}  // namespace tarvik
