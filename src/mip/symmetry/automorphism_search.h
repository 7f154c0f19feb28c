// Generators of the symmetries of a problem's columns. A path of individualisations goes down to a
// partition that tells all columns apart. Then, from its end up, each other column of the cell that
// was individualised in is tried in place of the one on the path: two partitions are refined side
// by side, and as soon as they differ only in cells of one column, the map between these is a
// candidate, the other columns staying where they are. Every generator is checked against the
// problem itself; what the search misses, at a limit or on a collision of hashes, makes the group
// smaller, never wrong.
//
// Generators found at one level of the path fix the columns individualised above it, so that
// columns in one orbit need one trial only.
//
// Literature: McKay (1981); Darga, Liffiton, Sakallah and Markov (2004); Junttila and Kaski (2007).
#pragma once

#include "base/union_find.h"
#include "mip/symmetry/ordered_partition.h"
#include "mip/symmetry/permutation.h"
#include "mip/symmetry/symmetry_check.h"

namespace tarvik {

struct SymmetrySearchResult {
  Vec<Permutation> generators;
  bool complete = false;  // they generate all symmetries of the columns
};

class AutomorphismSearch {
 public:
  AutomorphismSearch(const Problem &problem, WorkMeter &work, double workLimit);

  SymmetrySearchResult run();

 private:
  struct Level {
    int cell;            // the target cell
    int vertex;          // what is individualised in it on the left
    std::size_t splits;  // of the partitions before that
    std::size_t tracePosition;
  };
  // The columns that were not tried yet in a target cell on the right.
  struct Choices {
    int tried;  // the first one
    bool listed = false;
    Vec<int> others;  // last first, once they are listed
  };

  bool exhausted() const { return work_.counted() > workLimit_; }
  bool descendFirst();
  void tryCell(int level);
  bool findImage(int base, int image);
  bool individualiseBoth(int level, int image);
  bool leftTo(int level);
  void rightTo(int level);
  int preferredImage(int level) const;
  bool nextChoice(int level, Choices &choices, int &image) const;
  bool isMatch(int base);
  bool isSymmetric(int base);

  const Problem &problem_;
  WorkMeter &work_;
  double workLimit_;
  ColouredGraph graph_;
  SymmetryCheck check_;
  OrderedPartition left_, right_;
  RefinementTrace trace_;
  Vec<Level> levels_;
  int leftLevel_ = 0;
  UnionFind orbits_;
  SymmetrySearchResult result_;
};

// Ends soon after workLimit; without a look where that does not reach far.
SymmetrySearchResult findGenerators(const Problem &problem, WorkMeter &work, double workLimit);

}  // namespace tarvik
