// Sets of binary literals of which at most one can be true: cliques of the conflict graph. They
// come from set packing and knapsack rows. A literal is 2 * column, or 2 * column + 1 for its
// complement; x and its complement exclude one another without being listed.
//
// Literature: Atamturk, Nemhauser and Savelsbergh (2000); Achterberg (2007), section 3.3.5.
#pragma once

#include "mip/domain.h"

namespace tarvik {

using Literal = int;

inline Literal literalOf(int col, bool complemented) { return 2 * col + (complemented ? 1 : 0); }
inline int columnOf(Literal literal) { return literal >> 1; }
inline bool isComplemented(Literal literal) { return (literal & 1) != 0; }
inline Literal negated(Literal literal) { return literal ^ 1; }

class CliqueTable {
 public:
  // From the rows of the problem and the bounds of `global`. Charges its work.
  CliqueTable(const Problem &problem, const Domain &global, WorkMeter &work);

  int numCliques() const { return static_cast<int>(start_.size()) - 1; }
  int size(int clique) const { return static_cast<int>(start_[clique + 1] - start_[clique]); }
  const Literal *members(int clique) const { return literals_.data() + start_[clique]; }
  // The cliques that a literal is in.
  const Vec<int> &cliquesOf(Literal literal) const { return cliquesOf_[literal]; }

  // Calls f(literal) for all that cannot be true together with this one; some of them repeatedly.
  template <class F>
  void forNeighbours(Literal literal, F &&f) const {
    for (const int clique : cliquesOf_[literal])
      for (NzIndex k = start_[clique]; k < start_[clique + 1]; ++k)
        if (literals_[k] != literal) f(literals_[k]);
  }
  double neighbourWork(Literal literal) const;

 private:
  struct Item {
    double weight;
    Literal literal;
  };
  void addFromRow(const Problem &problem, const Domain &global, int row, double sign, double rhs);
  void addFromKnapsack(Vec<Item> &items, double capacity);
  void add(const Vec<Literal> &clique);

  Vec<NzIndex> start_{0};
  Vec<Literal> literals_;
  Vec<Vec<int>> cliquesOf_;
};

}  // namespace tarvik
