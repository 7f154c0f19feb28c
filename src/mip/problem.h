// The presolved problem that a search works on, immutable while it runs: the model with rows by
// row as well as by column, integrality, locks, and what is known of the objective. Bounds here
// are the global ones at the start of the search; a Domain has the current ones.
#pragma once

#include "base/solve_control.h"
#include "mip/mip_model.h"

namespace tarvik {

struct MipTolerances {
  double primal = 1e-6;    // FeasibilityTol
  double dual = 1e-6;      // OptimalityTol
  double integral = 1e-5;  // IntFeasTol
};

class Problem {
 public:
  // Takes the model over; `tolerances` are the user's. Bounds of integral columns are rounded
  // inwards, and may cross then.
  Problem(MipModel &&model, const MipTolerances &tolerances);

  const MipModel &model() const { return model_; }
  const LpModel &lp() const { return model_.lp; }
  int numCols() const { return model_.lp.numCols; }
  int numRows() const { return model_.lp.numRows; }
  const SparseMatrix &rows() const { return rows_; }  // by row
  const SparseMatrix &cols() const { return model_.lp.a; }
  const MipTolerances &tolerances() const { return tolerances_; }

  VarKind kind(int col) const { return model_.kind[col]; }
  bool isIntegral(int col) const { return tarvik::isIntegral(model_.kind[col]); }
  bool isSemi(int col) const { return tarvik::isSemi(model_.kind[col]); }
  bool isBinary(int col) const {
    return model_.kind[col] == VarKind::Integer && lp().colLower[col] == 0 &&
           lp().colUpper[col] == 1;
  }
  // The columns of kind Integer; semi columns and sets are branched on as such.
  const Vec<int> &integers() const { return integers_; }
  const Vec<int> &semis() const { return semis_; }
  int numContinuous() const { return numCols() - numIntegral_; }
  int numIntegral() const { return numIntegral_; }

  // Rows that keep a column from falling (rising).
  int downLocks(int col) const { return downLocks_[col]; }
  int upLocks(int col) const { return upLocks_[col]; }

  // The spacing of the values that the objective can take at integral points, 0: none known.
  // Values are offset + k * objectiveStep().
  double objectiveStep() const { return objectiveStep_; }

  double objective(const Vec<double> &x) const;
  // The largest violation of rows, bounds, integrality (against its own tolerance, scaled to the
  // primal one), semi-continuity and sets; at most tolerances().primal means feasible.
  double violation(const Vec<double> &x) const;

 private:
  void roundIntegralBounds();
  void findObjectiveStep();

  MipModel model_;
  MipTolerances tolerances_;
  SparseMatrix rows_;
  Vec<int> integers_, semis_;
  Vec<int> downLocks_, upLocks_;
  int numIntegral_ = 0;
  double objectiveStep_ = 0;
};

}  // namespace tarvik
