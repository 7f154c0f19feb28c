// A row over the columns of the full model on its way to the reduced one: the columns that went are
// replaced by what they are in terms of others, in the order in which they went. All columns have a
// place; what cancels down to rounding vanishes.
#pragma once

#include "presolve/postsolve_stack.h"

namespace tarvik::presolve {

class RowImage {
 public:
  explicit RowImage(int numCols) : values_(static_cast<std::size_t>(numCols), 0.0) {}

  double value(int col) const { return values_[col]; }
  void add(int col, double value);
  // Takes the column out and returns its coefficient.
  double take(int col);
  void addConstant(double value) { constant_.add(value); }
  double constant() const { return constant_.value(); }
  // The column is (side - entries'x) / coef.
  void substitute(int col, double coef, double side, const StoredEntries &entries);

 private:
  Vec<double> values_;
  CompensatedSum constant_;
};

}  // namespace tarvik::presolve
