// The rows of the relaxation as equations with slacks, and their sums: the raw material of all
// cuts that come from combinations of rows.
//
// Variables are the columns, then a slack a row. The slack of a row belongs to the side that is
// nearest at the point: activity + slack = upper, or activity - slack = lower, slack >= 0; the
// slack of an equation is zero. Sums of rows with any weights whatever are valid equations, so
// no error in the weights can make a cut invalid; coefficients are summed in doubled precision.
#pragma once

#include "base/compensated_sum.h"
#include "mip/cuts/cut.h"
#include "mip/relaxation.h"

namespace tarvik {

struct SlackInfo {
  int side = 0;      // 1: of the upper side, -1: of the lower one, 0: the row has no finite side
  double rhs = 0;    // of that side
  double value = 0;  // at the point
  double upper = 0;  // the width of the row
  double step = 0;   // the slack is an integral multiple of it at integral points; 0: continuous
};

class RowSystem {
 public:
  explicit RowSystem(const SeparationPoint &point);
  // True while the system describes this point.
  bool describes(const SeparationPoint &point) const;

  const Problem &problem() const { return *problem_; }
  int numCols() const { return problem_->numCols(); }
  int numRows() const { return static_cast<int>(slack_.size()); }
  const SlackInfo &slack(int row) const { return slack_[row]; }
  double norm(int row) const { return norm_[row]; }
  const Vec<double> &x() const { return x_; }

 private:
  void describeRow(const Relaxation &lp, int row);
  double stepOf(const int *index, const double *value, int count, double rhs) const;

  const Problem *problem_;
  Vec<double> x_;
  Vec<SlackInfo> slack_;
  Vec<double> norm_;
  CutId lastCutId_ = -1;
};

// sum coef * variable = rhs. Slacks with a step count in steps, so that they are integral.
struct BaseRow {
  Vec<int> var;  // a column, or the number of columns + a row
  Vec<double> coef;
  double rhs = 0;
  int rank = 0;  // the largest of the rows in it
};

class RowCombiner {
 public:
  explicit RowCombiner(const Relaxation &lp, const RowSystem &rows);

  void clear();
  void add(int row, double weight);
  double coef(int col) const { return sum_[col].value(); }
  const Vec<int> &columns() const { return touched_; }  // that have, or had, a coefficient
  int entries() const { return static_cast<int>(touched_.size()); }
  // The sum so far. Charges nothing; its length is entries() and the number of rows added.
  void get(BaseRow &row) const;

 private:
  const Relaxation *lp_;
  const RowSystem *rows_;
  Vec<CompensatedSum> sum_;  // a column
  Vec<char> isTouched_;
  Vec<int> touched_;
  Vec<int> used_;
  Vec<double> weight_;
  CompensatedSum rhs_;
};

}  // namespace tarvik
