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

namespace tarvik {

struct SimplexOptions {
  double primalTol = 1e-6;  // FeasibilityTol
  double dualTol = 1e-6;    // OptimalityTol
  double markowitzTol = 0.0078125;
  double pivotTol = 3e-8;
  double zeroTol = 1e-13;
  double perturbValue = 2e-4;
  double cutoff = 1e100;  // stop when the dual objective (offset included) exceeds it
  int scaleFlag = -1;     // -1 automatic, 0 none, 1 equilibrate, 2 geometric, 3 both
  int pricing = -1;       // SimplexPricing
  int normAdjust = -1;
  int numericFocus = 0;
  int luInterval = 0;  // fixed refactorization interval when positive
  int seed = 0;
  bool primalDualSwitch = true;
  bool wantCertificates = true;  // keep Farkas proof or ray
  bool logging = true;
  double logSign = 1;  // -1 prints objectives of a maximization in its own sense
};

enum class SimplexMethod { Primal, Dual };

class SimplexEngine;

class Simplex {
 public:
  explicit Simplex(const SimplexOptions &options);
  ~Simplex();
  Simplex(Simplex &&) noexcept;
  Simplex &operator=(Simplex &&) noexcept;

  // Loads a model (scaled copy; the argument is not kept) with the slack basis.
  void load(const LpModel &lp);
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

  // Installs a basis (repaired when singular). Superbasic variables keep the given value.
  void setBasis(const Basis &basis, const Vec<double> *superbasicValues = nullptr);
  Basis basis() const;

  // Solves from the current basis. Resumable: a stop by a limit keeps the basis.
  LpStatus solve(SimplexMethod method, SolveControl &control);

  // The result of the last solve.
  double iterations() const;  // of this engine's whole life
  double objective() const;   // primal objective of the current basic solution
  void getSolution(LpSolution &solution) const;

  // Solves with the current basis matrix, in the user's scale. Basis columns are structural
  // columns of A, or unit vectors e_i for the logical of row i.
  void basisHead(Vec<VarIndex> &head);
  void ftran(Vec<double> &x);
  void btran(Vec<double> &y);

 private:
  std::unique_ptr<SimplexEngine> engine_;
};

}  // namespace tarvik
