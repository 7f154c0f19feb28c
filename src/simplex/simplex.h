// The simplex kernel as its callers see it: an engine that holds a scaled copy of an LP, keeps
// its factorized basis between calls and continues from it after changes. The MIP search,
// crossover and the LP driver all live on this interface: bounds and costs are changed in place,
// rows are appended and deleted, and no solve copies the model.
//
// All values that cross this interface are in the user's (unscaled) space.
#pragma once

#include <memory>

#include "base/solve_control.h"
#include "lp/lp_model.h"
#include "lp/scaling.h"
#include "simplex/simplex_options.h"

namespace tarvik {

enum class SimplexMethod { Primal, Dual };

class SimplexEngine;
template <class Real>
class Engine;

// The steepest-edge weight of a basic variable.
struct BasicWeight {
  VarIndex var;
  double weight;
};

class Simplex {
 public:
  explicit Simplex(const SimplexOptions &options);
  ~Simplex();
  Simplex(Simplex &&) noexcept;
  Simplex &operator=(Simplex &&) noexcept;

  // Loads a model (scaled copy; the argument is not kept) with the slack basis.
  void load(const LpModel &lp);
  // The same with a basis, as setBasis() takes it; cheaper than one after the other. Known
  // scale factors, as completeScaling() takes them, spare it most of its own.
  void load(const LpModel &lp, const Basis &basis, const Vec<double> *superbasicValues,
            const Scaling *known = nullptr);
  SimplexOptions &options();

  // Changes in place; the basis and its factorization stay.
  void setColBounds(ColIndex col, double lower, double upper);
  void setRowBounds(RowIndex row, double lower, double upper);
  void setCost(ColIndex col, double cost);
  void setOffset(double offset);
  // New rows enter with their logicals basic. Entries are by row: starts, columns, values.
  void addRows(int count, const NzIndex *start, const int *index, const double *value,
               const double *lower, const double *upper);
  // Deletes the rows with a nonzero mark; a deleted row whose logical is nonbasic costs a
  // refactorization with repair.
  void deleteRows(const Vec<char> &mark);

  // Installs a basis (repaired when singular). Superbasic variables keep the given value. The
  // factors and the edge weights of a basis that has the same basic variables stay in use.
  void setBasis(const Basis &basis, const Vec<double> *superbasicValues = nullptr);
  Basis basis() const;

  // Dual steepest-edge weights by variable, columns first, in the engine's scale; entries of
  // nonbasic variables mean nothing and come out as 1. Empty: the weights are not known.
  Vec<double> edgeWeights() const;
  bool knowsEdgeWeights() const;
  void setEdgeWeights(const Vec<double> &weights);
  // The weights as far as they are known by guess: pivots of the primal simplex leave them as they
  // are, and a part of the model may be where they come from. Basic variables that are not named
  // keep theirs.
  Vec<BasicWeight> basicWeights() const;
  void guessEdgeWeights(const Vec<BasicWeight> &weights);

  // The stability threshold that the last solve has come to; it only grows in a solve.
  double markowitzTol() const;

  // The factors that the loaded model was scaled with.
  Scaling scaling() const;

  // The next solve stops, with IterationLimit, once iterations() reaches this.
  void setIterationCap(double iterations);

  // Replaces the slack basis by one that a penalty method and a push to a vertex find close to an
  // optimum; a solve by the primal simplex has to follow. False when the options or the model do
  // not ask for it, or when it failed: then the slack basis stands.
  bool crash(SolveControl &control);

  // Solves from the current basis. Resumable: a stop by a limit keeps the basis.
  LpStatus solve(SimplexMethod method, SolveControl &control);

  // True while the engine computes in extended precision.
  bool extended() const;

  // Iterations and the log begin again at zero.
  void restartCounting();

  // Factors of the current basis with the values and reduced costs of the true problem, as a
  // solve leaves them. False when a singular basis had to be changed for it.
  bool refresh(SolveControl &control);
  // True when the current basis is primal feasible, but not dual feasible. A solve that follows
  // at once uses the values that were computed for the answer.
  bool prefersPrimal(SolveControl &control);
  bool hasBasics(const Basis &basis) const;
  // True when the engine has this basis, without superbasic variables, and can go on from the
  // values of the last solve: setBasis() would only make it compute them again.
  bool standsAt(const Basis &basis) const;

  // The result of the last solve.
  double iterations() const;  // since load() or restartCounting()
  double objective() const;   // primal objective of the current basic solution
  void getSolution(LpSolution &solution) const;
  // The part of it that a search looks at after every solve: values, reduced costs (zero for fixed
  // columns) and the objective.
  void getPoint(Vec<double> &x, Vec<double> &reducedCost, double &objective) const;
  // A bound on every solution within the current bounds, from the multipliers of the current basis.
  double dualBound(WorkMeter &work);
  bool logicalIsBasic(RowIndex row) const;

  // Solves with the current basis matrix, in the user's scale. Basis columns are structural
  // columns of A, or unit vectors e_i for the logical of row i.
  const Vec<VarIndex> &basisHead() const;
  void ftran(Vec<double> &x, WorkMeter &work);
  void btran(Vec<double> &y, WorkMeter &work);

  // The state behind the interface, for the analysis of a basis; not in extended precision.
  Engine<double> &core();

 private:
  std::unique_ptr<SimplexEngine> engine_;
};

}  // namespace tarvik
