// A point that moves one column at a time, with the activities of its rows and the list of rows
// that it violates kept up to date. Heuristics that search without a relaxation live on it.
#pragma once

#include "mip/problem.h"

namespace tarvik {

class MovingPoint {
 public:
  MovingPoint(const Problem &problem, Vec<double> x);

  const Vec<double> &x() const { return x_; }
  double value(int col) const { return x_[col]; }
  double activity(int row) const { return activity_[row]; }
  double objective() const { return objective_; }
  // Positive above the upper side, negative below the lower one, 0 within the tolerance.
  double excess(int row) const { return excessOf(row, activity_[row]); }
  double excessOf(int row, double activity) const;
  // Rows with an excess, in no particular order.
  const Vec<int> &violated() const { return violated_; }
  bool isViolated(int row) const { return position_[row] >= 0; }

  void move(int col, double value);
  // How far the column can go up (or down, as a nonnegative number) while the rows that hold
  // remain so and its bounds are respected; kInf when nothing stops it.
  double room(int col, bool up) const;
  double lastWork(int col) const { return 4.0 * problem_->cols().length(col); }

 private:
  void note(int row);

  const Problem *problem_;
  Vec<double> x_, activity_;
  Vec<int> violated_, position_;
  double objective_ = 0;
};

}  // namespace tarvik
