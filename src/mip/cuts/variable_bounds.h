// Bounds of a column that depend on a binary one: x <= coef * y + constant, or x >= it, as rows
// with two entries say. Substituting them instead of plain bounds is what makes rounding cuts
// strong on models with fixed charges (Marchand and Wolsey, 2001).
#pragma once

#include "mip/domain.h"

namespace tarvik {

struct VariableBound {
  int binary;
  double coef, constant;
  double at(const Vec<double> &x) const { return coef * x[binary] + constant; }
};

class VariableBounds {
 public:
  // From the rows of a problem; `global` says what is binary.
  VariableBounds(const Problem &problem, const Domain &global);

  const Vec<VariableBound> &upper(int col) const { return upper_[col]; }
  const Vec<VariableBound> &lower(int col) const { return lower_[col]; }
  // The tightest at a point; null: none.
  const VariableBound *leastUpper(int col, const Vec<double> &x) const;
  const VariableBound *greatestLower(int col, const Vec<double> &x) const;
  int count() const { return count_; }

 private:
  void addFrom(int x, double a, int y, double c, double rhs);

  Vec<Vec<VariableBound>> upper_, lower_;
  int count_ = 0;
};

}  // namespace tarvik
