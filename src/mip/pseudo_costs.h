// What branching on each column has cost so far: the observed gain of the relaxation's objective
// for each unit that a bound moved, for both directions. Until a column has been observed, the
// average over all columns stands in for its own.
#pragma once

#include "base/memory.h"

namespace tarvik {

class PseudoCosts {
 public:
  explicit PseudoCosts(int numCols) : count_{}, gain_{} {
    for (int d = 0; d < 2; ++d) {
      count_[d].assign(numCols, 0);
      gain_[d].assign(numCols, 0);
      cutoffs_[d].assign(numCols, 0);
    }
  }

  // A branch that moved the value of the column by `distance` (negative: down) raised the
  // relaxation's objective by `gain`.
  void update(int col, double distance, double gain);
  void noteCutoff(int col, bool up) { ++cutoffs_[up][col]; }

  // Adds what was observed between two states of another collection.
  void addObserved(const PseudoCosts &before, const PseudoCosts &after);

  int count(int col, bool up) const { return count_[up][col]; }
  double perUnit(int col, bool up) const;
  // Expected gains of the branches of a column at value x.
  double down(int col, double x) const;
  double up(int col, double x) const;
  // Share of the branches of the column that were infeasible.
  double cutoffRate(int col, bool up) const;
  // Score of a pair of gains (product rule); larger is better.
  static double score(double down, double up);
  double averageScore() const;

 private:
  Vec<int> count_[2], cutoffs_[2];
  Vec<double> gain_[2];
  double totalCount_[2] = {0, 0}, totalGain_[2] = {0, 0};
};

}  // namespace tarvik
