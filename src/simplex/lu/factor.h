// The factorization of the basis matrix as the engine sees it: factor, FTRAN, BTRAN, update.
//
// The basis matrix B has m columns. Basis positions are identified with rows: after factor(),
// head[i] is the variable that was pivoted on row i (a structural column j < n of A, or n + r for
// the unit vector e_r of row r's logical). So both index spaces coincide and no solve permutes
// its result: FTRAN solves B x = b in place, BTRAN solves B' y = c in place.
#pragma once

#include <memory>

#include "base/solve_control.h"
#include "lp/lp_model.h"
#include "simplex/sparse_vec.h"

namespace tarvik {

struct FactorOptions {
  double markowitzTol = 0.0078125;  // threshold pivoting
  double pivotTol = 3e-8;           // smaller pivots count as zero
  double dropTol = 1e-14;           // entries of factors and results below it are dropped
  int maxUpdates = 100;             // a refactorization is forced after so many
  int pairLimit = 0;                // pairs of columns with the same two rows pivoted first
  bool symbolicL = true;            // solves with L may follow the pattern of the right-hand side
};

enum class UpdateResult {
  Ok,
  RefactorSoon,  // accepted; limit, fill or work says it is time to refactor
  RefactorNow,   // not accepted: numerically unsafe or no room; the factors are unchanged
};

struct FactorStats {
  double factorWork = 0;  // counted units of the last factorization
  double solveWork = 0;   // counted units of solves and updates since then, above fresh ones
  NzIndex basisNz = 0, factorNz = 0, freshNz = 0;
  int updates = 0, kernelDim = 0;
};

// What a singular factorization replaced: dropped[k] left the basis and the logical of row[k]
// took its place (at position row[k]).
struct SingularRepair {
  Vec<VarIndex> dropped;
  Vec<RowIndex> row;
  bool empty() const { return dropped.empty(); }
};

template <class Real>
class Factor {
 public:
  Factor();
  ~Factor();
  Factor(Factor &&) noexcept;
  Factor &operator=(Factor &&) noexcept;

  // Sets the dimension and the matrix whose columns make bases; values may change between
  // factorizations. The matrix is read in factor() only and must outlive the object or be set
  // again.
  void setup(const SparseMatrix *columns, const RawVec<Real> *values, int m);
  FactorOptions &options();

  // Factors the basis of the m variables in head and reorders head by pivot rows. Dependent
  // columns are replaced by logicals, in head too, and reported in repair (the factors are then
  // those of the repaired basis).
  void factor(Vec<VarIndex> &head, SingularRepair &repair, WorkMeter &work);

  // expectedDensity: predicted result density (a running average kept by the caller); steers
  // the choice between hyper-sparse (symbolic) and plain solves. With keepSpike the partly
  // transformed column is kept for the update that follows.
  void ftran(SparseVec<Real> &x, double expectedDensity, WorkMeter &work, bool keepSpike = false);
  void btran(SparseVec<Real> &y, double expectedDensity, WorkMeter &work);
  // The same with a list of the result's entries however many they are.
  void btranListed(SparseVec<Real> &y, double expectedDensity, WorkMeter &work);

  // norm[k] becomes the squared norm of the row of the inverse at position p[k]; up to
  // lu::kMaxRowNorms at once.
  void rowNorms(const BasisPos *p, int count, double *norm, WorkMeter &work);

  // Replaces the column at position p by the one of the last ftran with keepSpike, whose result
  // has the entry alpha at p. Forrest-Tomlin.
  UpdateResult update(BasisPos p, Real alpha, WorkMeter &work);

  const FactorStats &stats() const;

 private:
  struct Impl;
  std::unique_ptr<Impl> impl_;
};

extern template class Factor<double>;
extern template class Factor<long double>;

}  // namespace tarvik
