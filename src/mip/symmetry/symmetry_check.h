// Whether a permutation of columns leaves a problem as it is: costs, bounds, kinds, holes, rows and
// sets, each number exactly. Nothing that is found by other means is believed without it.
#pragma once

#include "base/solve_control.h"
#include "mip/problem.h"
#include "mip/symmetry/permutation.h"

namespace tarvik {

class SymmetryCheck {
 public:
  explicit SymmetryCheck(const Problem &problem);

  bool isSymmetry(const Permutation &permutation, WorkMeter &work);

 private:
  int image(int col) const { return image_[col]; }
  bool sameColumns(const Permutation &permutation) const;
  bool mapRows(const Permutation &permutation, WorkMeter &work);
  bool rowGoesTo(int row, int target, WorkMeter &work);
  bool keepsEntries(const Permutation &permutation, WorkMeter &work);
  bool mapSets(const Permutation &permutation, WorkMeter &work);
  bool setGoesTo(int set, int target);

  const Problem &problem_;
  Vec<std::uint64_t> rowHash_;
  Vec<int> byHash_;           // rows in the order of their hashes
  SparseMatrix memberships_;  // by column: sets, the value is the place
  Vec<int> image_;            // of a column
  // Rows with entries in moved columns, and those of them that go elsewhere with their targets.
  Vec<int> met_;
  Vec<char> isMet_, isTarget_;
  Vec<int> target_;
  Vec<std::uint64_t> newHash_;
  Vec<double> entry_;  // a coefficient of a row or column, NaN: none
};

}  // namespace tarvik
