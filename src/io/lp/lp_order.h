// The order in which an LP text mentions the variables.
//
// A reader numbers the variables as they are mentioned. So all terms and lists of a text follow
// this order: what is read is written as the same text again. In a linear expression those
// mentioned before come first and the others follow by index. Products are sorted by the ranks
// of their variables, and give ranks themselves; the two agree when the order is breadth-first:
// the products of the variable of lowest rank mention its partners, who queue up behind all that
// have a rank.
#pragma once

#include <utility>

#include "model/model_data.h"

namespace tarvik {

struct Product {
  int first, second;
  double value;
};

class LpOrder {
 public:
  // The laziness of the rows in each section that follows the ordinary ones.
  static constexpr int kLazyLevels[] = {1, 2, 3, -1};

  // rows: the linear constraints, sorted; lazy: empty or the laziness of each; unmentioned: the
  // variables that only the first objective mentions, with a coefficient of zero.
  void settle(const ModelData &data, const SparseMatrix &rows, const Vec<int> &lazy,
              const Vec<int> &unmentioned);

  const Vec<int> &vars() const { return vars_; }
  int rank(int var) const { return rank_[var]; }

  // The products by the ranks of their variables, the first of which ranks lower.
  Vec<Product> products(const QuadTerms &q) const;

 private:
  bool hasRank(int var) const { return rank_[var] >= 0; }
  void mention(int var);
  void mentionAll(const Vec<int> &vars);
  void mentionTerms(const Vec<double> &coef);
  void mentionProducts(const QuadTerms &q);
  void mentionObjectives(const ModelData &data, const Vec<int> &unmentioned);
  void mentionRows(const SparseMatrix &rows, const Vec<int> &lazy, int level);

  Vec<int> vars_;  // by rank
  Vec<int> rank_;  // -1: not mentioned yet
};

}  // namespace tarvik
