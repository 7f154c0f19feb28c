#include "mip/cliques.h"

#include <algorithm>
#include <cmath>

namespace tarvik {

namespace {
// Bounds on what is kept, as multiples of the model's entries.
constexpr double kMostLiterals = 10;
constexpr int kMostFromRow = 20;
}  // namespace

CliqueTable::CliqueTable(const Problem &problem, const Domain &global, WorkMeter &work)
    : cliquesOf_(2 * static_cast<std::size_t>(problem.numCols())) {
  const double most = kMostLiterals * static_cast<double>(problem.rows().numNz()) + 1000;
  for (int i = 0; i < problem.numRows(); ++i) {
    const double lower = problem.lp().rowLower[i], upper = problem.lp().rowUpper[i];
    if (!isInf(upper)) addFromRow(problem, global, i, 1, upper);
    if (!isInf(lower)) addFromRow(problem, global, i, -1, -lower);
    work.charge(10.0 * problem.rows().length(i));
    if (static_cast<double>(literals_.size()) > most) return;
  }
}

// sign * row <= rhs, all else at its least.
void CliqueTable::addFromRow(const Problem &problem, const Domain &global, int row, double sign,
                             double rhs) {
  const double least = sign > 0 ? global.minActivity(row) : -global.maxActivity(row);
  if (isInf(least)) return;
  const double capacity = rhs - least + problem.tolerances().primal * std::max(1.0, std::fabs(rhs));
  const SparseMatrix &rows = problem.rows();
  Vec<Item> items;
  for (NzIndex k = rows.start[row]; k < rows.start[row + 1]; ++k) {
    if (!global.isBinary(rows.index[k])) continue;
    const double weight = sign * rows.value[k];
    items.push_back({std::fabs(weight), literalOf(rows.index[k], weight < 0)});
  }
  if (capacity > 0) addFromKnapsack(items, capacity);
}

// Any two of the heaviest items exceed the capacity together; lighter ones take the place of the
// last that they go along with.
void CliqueTable::addFromKnapsack(Vec<Item> &items, double capacity) {
  if (items.size() < 2) return;
  std::sort(items.begin(), items.end(), [](const Item &a, const Item &b) {
    return a.weight != b.weight ? a.weight > b.weight : a.literal < b.literal;
  });
  if (items[0].weight + items[1].weight <= capacity) return;
  std::size_t count = 2;
  while (count < items.size() && items[count - 1].weight + items[count].weight > capacity) ++count;
  Vec<Literal> clique;
  for (std::size_t k = 0; k < count; ++k) clique.push_back(items[k].literal);
  add(clique);
  int made = 1;
  std::size_t with = count - 1;
  for (std::size_t k = count; k < items.size() && made < kMostFromRow; ++k, ++made) {
    while (with > 0 && items[with - 1].weight + items[k].weight <= capacity) --with;
    if (with == 0) return;
    clique.clear();
    for (std::size_t other = 0; other < with; ++other) clique.push_back(items[other].literal);
    clique.push_back(items[k].literal);
    add(clique);
  }
}

void CliqueTable::add(const Vec<Literal> &clique) {
  for (const Literal literal : clique) cliquesOf_[literal].push_back(numCliques());
  literals_.insert(literals_.end(), clique.begin(), clique.end());
  start_.push_back(static_cast<NzIndex>(literals_.size()));
}

double CliqueTable::neighbourWork(Literal literal) const {
  double work = 1;
  for (const int clique : cliquesOf_[literal]) work += size(clique);
  return work;
}

}  // namespace tarvik
