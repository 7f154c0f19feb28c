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
#include "simplex/simplex_options.h"

namespace tarvik {

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

  // True while the engine computes in extended precision.
  bool extended() const;

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
