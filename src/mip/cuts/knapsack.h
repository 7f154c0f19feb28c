// Rows relaxed to knapsacks of binary literals: complemented where the weight is negative, all
// other columns at the bound, plain or variable, that leaves most room.
#pragma once

#include "mip/cuts/row_system.h"
#include "mip/cuts/variable_bounds.h"

namespace tarvik {

// A literal: the column, or one minus it.
struct KnapsackItem {
  int col;
  bool complemented;
  double weight;  // positive
  double x;       // of the literal, at the point
};

class Knapsack {
 public:
  Knapsack(const SeparationPoint &point, const RowSystem &rows, const VariableBounds &bounds)
      : point_(&point), rows_(&rows), bounds_(&bounds), weight_(rows.numCols(), 0.0) {}

  // From sign * row <= rhs. False: other columns are without bounds, or everything fits.
  bool take(int row, double sign, double rhs);
  // By column.
  const Vec<KnapsackItem> &items() const { return items_; }
  // Relaxed by the tolerance within which points are feasible.
  double capacity() const { return capacity_; }

 private:
  bool isTighter(const VariableBound &bound, int col, bool below) const;
  bool relaxOther(int col, double coef);
  void add(int col, double coef);
  void collectItems();

  const SeparationPoint *point_;
  const RowSystem *rows_;
  const VariableBounds *bounds_;
  Vec<double> weight_;  // a column
  Vec<int> binaries_;
  Vec<KnapsackItem> items_;
  double capacity_ = 0;
};

}  // namespace tarvik
