#include "mip/presolve/clique_merging.h"

#include <algorithm>
#include <cmath>

#include "mip/cliques.h"
#include "mip/presolve/model_editor.h"

namespace tarvik {

namespace {

// Work in all, and for each entry of the matrix.
constexpr double kWork = 1e6;
constexpr double kWorkShare = 50;
// Members with more neighbours than this are not looked at.
constexpr double kMostNeighbours = 1e5;

class CliqueMerger {
 public:
  CliqueMerger(MipModel &model, const Problem &problem, const Domain &domain, WorkMeter &work)
      : model_(model),
        problem_(problem),
        domain_(domain),
        table_(problem, domain, work),
        work_(work),
        packing_(problem.numRows()),
        rowsOf_(2 * static_cast<std::size_t>(problem.numCols())),
        level_(rowsOf_.size(), 0),
        coverage_(problem.numRows(), 0) {}

  CliqueMergingResult run() {
    Vec<int> order;
    for (int i = 0; i < problem_.numRows(); ++i)
      if (readRow(i)) order.push_back(i);
    std::stable_sort(order.begin(), order.end(), [this](int a, int b) {
      return packing_[a].literals.size() > packing_[b].literals.size();
    });
    ModelEditor editor(model_);
    const double limit =
        work_.counted() + kWork + kWorkShare * static_cast<double>(problem_.rows().numNz());
    for (const int i : order) {
      if (work_.counted() > limit) break;
      if (!packing_[i].gone) treat(i, editor);
    }
    if (result_.rowsRemoved > 0) editor.apply();
    return result_;
  }

 private:
  struct Packing {
    Vec<Literal> literals;
    bool equation = false;
    bool gone = false;
  };

  bool readRow(int row);
  void treat(int row, ModelEditor &editor);
  void findCommonNeighbours(const Vec<Literal> &clique, Vec<Literal> &common);
  void grow(Vec<Literal> &clique, const Vec<Literal> &common);
  void fixFalse(const Vec<Literal> &literals);
  int removeCovered(int row, const Vec<Literal> &clique, ModelEditor &editor);
  bool isFixed(Literal literal) const {
    const int col = columnOf(literal);
    return model_.lp.colLower[col] == model_.lp.colUpper[col];
  }

  MipModel &model_;
  const Problem &problem_;
  const Domain &domain_;
  CliqueTable table_;
  WorkMeter &work_;
  Vec<Packing> packing_;  // by row, without literals if the row is something else
  Vec<Vec<int>> rowsOf_;  // by literal: packing rows
  Vec<int> level_;        // by literal: members of the clique that it excludes, one by one
  Vec<int> coverage_;     // by row: scratch
  CliqueMergingResult result_;
};

// At most one of the literals: coefficients of one size, and a side that says so.
bool CliqueMerger::readRow(int row) {
  const SparseMatrix &rows = problem_.rows();
  const double lower = problem_.lp().rowLower[row], upper = problem_.lp().rowUpper[row];
  if (rows.length(row) < 2 || (isInf(upper) == isInf(lower) && lower != upper)) return false;
  const double size = std::fabs(rows.value[rows.start[row]]);
  double negative = 0;
  for (NzIndex k = rows.start[row]; k < rows.start[row + 1]; ++k) {
    if (!domain_.isBinary(rows.index[k]) || std::fabs(rows.value[k]) != size) return false;
    negative += rows.value[k] < 0;
  }
  const double positive = rows.length(row) - negative;
  Packing &packing = packing_[row];
  packing.equation = lower == upper;
  const bool below = !isInf(upper) && upper / size == 1 - negative;
  const bool above = !isInf(lower) && -lower / size == 1 - positive;
  if (!below && !above) return false;
  for (NzIndex k = rows.start[row]; k < rows.start[row + 1]; ++k) {
    const Literal literal = literalOf(rows.index[k], (rows.value[k] < 0) == below);
    packing.literals.push_back(literal);
    rowsOf_[literal].push_back(row);
  }
  return true;
}

// Raises the level of every literal that excludes all members to their number.
void CliqueMerger::findCommonNeighbours(const Vec<Literal> &clique, Vec<Literal> &common) {
  common.clear();
  Vec<Literal> order(clique);
  for (const Literal literal : clique)
    if (table_.neighbourWork(literal) > kMostNeighbours) return;
  std::iter_swap(order.begin(), std::min_element(order.begin(), order.end(), [this](int a, int b) {
                   return table_.neighbourWork(a) < table_.neighbourWork(b);
                 }));
  Vec<Literal> touched;
  for (std::size_t k = 0; k < order.size(); ++k) {
    const int level = static_cast<int>(k);
    int reached = 0;
    table_.forNeighbours(order[k], [&](Literal other) {
      if (level_[other] != level) return;
      if (level == 0) touched.push_back(other);
      level_[other] = level + 1;
      ++reached;
    });
    work_.charge(table_.neighbourWork(order[k]));
    if (reached == 0) break;
  }
  const int all = static_cast<int>(clique.size());
  for (const Literal literal : touched) {
    if (level_[literal] == all && !isFixed(literal)) common.push_back(literal);
    level_[literal] = 0;
  }
}

// Adds literals that exclude each other as well, those that conflict most first.
void CliqueMerger::grow(Vec<Literal> &clique, const Vec<Literal> &common) {
  Vec<Literal> left(common);
  std::stable_sort(left.begin(), left.end(),
                   [this](Literal a, Literal b) { return rowsOf_[a].size() > rowsOf_[b].size(); });
  while (!left.empty()) {
    const Literal chosen = left.front();
    clique.push_back(chosen);
    if (table_.neighbourWork(chosen) > kMostNeighbours) return;
    table_.forNeighbours(chosen, [&](Literal other) { level_[other] = 1; });
    Vec<Literal> rest;
    for (const Literal other : left)
      if (other != chosen && columnOf(other) != columnOf(chosen) && level_[other] == 1)
        rest.push_back(other);
    table_.forNeighbours(chosen, [&](Literal other) { level_[other] = 0; });
    work_.charge(2 * table_.neighbourWork(chosen));
    left.swap(rest);
  }
}

void CliqueMerger::fixFalse(const Vec<Literal> &literals) {
  for (const Literal literal : literals) {
    const int col = columnOf(literal);
    if (isFixed(literal)) continue;
    model_.lp.colLower[col] = model_.lp.colUpper[col] = isComplemented(literal) ? 1 : 0;
    ++result_.fixed;
  }
}

// Packing rows all of whose literals are in the clique, other than the row itself.
int CliqueMerger::removeCovered(int row, const Vec<Literal> &clique, ModelEditor &editor) {
  int removed = 0;
  Vec<int> seen;
  for (const Literal literal : clique) {
    work_.charge(5.0 * static_cast<double>(rowsOf_[literal].size()));
    for (const int other : rowsOf_[literal]) {
      if (coverage_[other]++ == 0) seen.push_back(other);
      const Packing &packing = packing_[other];
      if (coverage_[other] < static_cast<int>(packing.literals.size()) || other == row) continue;
      if (packing.gone || packing.equation) continue;
      packing_[other].gone = true;
      editor.removeRow(other);
      ++removed;
    }
  }
  for (const int other : seen) coverage_[other] = 0;
  return removed;
}

void CliqueMerger::treat(int row, ModelEditor &editor) {
  Packing &packing = packing_[row];
  Vec<Literal> common;
  findCommonNeighbours(packing.literals, common);
  if (packing.equation) fixFalse(common);
  Vec<Literal> clique(packing.literals);
  if (!packing.equation) grow(clique, common);
  const int removed = removeCovered(row, clique, editor);
  result_.rowsRemoved += removed;
  if (removed == 0 || clique.size() == packing.literals.size()) return;
  Vec<int> cols;
  Vec<double> values;
  double side = 1;
  for (const Literal literal : clique) {
    cols.push_back(columnOf(literal));
    values.push_back(isComplemented(literal) ? -1 : 1);
    side -= isComplemented(literal);
  }
  packing.gone = true;
  editor.removeRow(row);
  editor.addRow(cols, values, -kInf, side);
  ++result_.rowsGrown;
}

}  // namespace

CliqueMergingResult mergeCliques(MipModel &model, const MipTolerances &tolerances,
                                 WorkMeter &work) {
  const Problem problem(MipModel(model), tolerances);
  Domain domain(problem);
  if (!domain.propagate(work)) return {};
  return CliqueMerger(model, problem, domain, work).run();
}

}  // namespace tarvik
