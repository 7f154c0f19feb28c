// The dual of a linear program as a linear program, for models that are easier to solve that way,
// and the way back by the basis alone: complementary bases of the two forms belong together, so
// that the primal simplex needs no more than a factorization to go on from there.
//
// Columns are first shifted so that a finite bound is zero. Then every row of the model becomes a
// free or one-sided column (a range becomes two), every column that is not fixed becomes a row,
// and a column with two bounds brings one more column for the multiplier of its upper bound. The
// objective of the dual form is the negative of the model's.
#pragma once

#include "lp/lp_model.h"

namespace tarvik {

class DualForm {
 public:
  explicit DualForm(const LpModel &lp);

  const LpModel &lp() const { return dual_; }
  // The basis of the model that is complementary to a basis of the dual form.
  Basis primalBasis(const Basis &dual) const;

 private:
  struct DualCols {
    int first = -1, second = -1;  // of a row: for its only or lower bound, for its upper one
  };
  void addRows(const LpModel &lp);
  void addUpperBounds(const LpModel &lp);
  int addColumn(int count, const int *index, const double *value, double cost, double lower,
                double upper);
  double shift(const LpModel &lp, int col) const;

  LpModel dual_;
  Vec<DualCols> colsOfRow_;
  Vec<int> rowOfCol_;    // -1: fixed
  Vec<int> upperCol_;    // of a column with two bounds, else -1
  Vec<VarStatus> rest_;  // where a column sits when it is nonbasic and not at its second bound
};

}  // namespace tarvik
