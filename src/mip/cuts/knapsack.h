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

// Both directions of every row of at most `largestRank` that has a logical to relax by, until the
// work is used up: cutFrom(row, sign, bound, cut) tells whether sign * row <= bound gave a cut.
template <class CutFrom>
void cutsFromKnapsacks(const SeparationPoint &point, const RowSystem &rows, CutFamily family,
                       int level, int largestRank, CutFrom &&cutFrom, Vec<Cut> &cuts) {
  const double end = workEnd(point, level);
  for (int i = 0; i < rows.numRows() && point.work->counted() < end; ++i) {
    const int rank = point.lp->rowRank(i);
    if (rank > largestRank || rows.slack(i).side == 0) continue;
    for (const double sign : {1.0, -1.0}) {
      const double bound = sign > 0 ? point.lp->rowUpper(i) : -point.lp->rowLower(i);
      Cut cut;
      cut.family = family;
      cut.rank = rank + 1;
      if (!isInf(bound) && cutFrom(i, sign, bound, cut)) cuts.push_back(std::move(cut));
    }
  }
}

}  // namespace tarvik
