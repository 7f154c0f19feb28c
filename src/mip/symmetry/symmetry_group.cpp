#include "mip/symmetry/symmetry_group.h"

#include <algorithm>
#include <tuple>

namespace tarvik {

namespace {
// Counted units of a column in a permutation or a matrix.
constexpr double kColumnWork = 8;
// The size of what is followed by stabilizers.
constexpr std::size_t kMostPoints = 1000, kMostGenerators = 40;
}  // namespace

SymmetryGroup::SymmetryGroup(Vec<Permutation> generators, int numCols)
    : generators_(std::move(generators)), place_(numCols, -1) {
  for (const Permutation &g : generators_)
    for (const int j : g.from)
      if (place_[j] < 0) {
        place_[j] = 0;
        moved_.push_back(j);
      }
  std::sort(moved_.begin(), moved_.end());
  for (std::size_t k = 0; k < moved_.size(); ++k) place_[moved_[k]] = static_cast<int>(k);
  const Vec<Permutation> all(generators_);
  matrices_ = extractMatrices(generators_, numCols);
  index();
  findSmallPart(all);
}

// The generators that move columns together with others, where these are more than matrices.
void SymmetryGroup::findSmallPart(const Vec<Permutation> &all) {
  UnionFind sets(static_cast<int>(moved_.size()));
  for (const Permutation &g : all)
    for (const int j : g.from) sets.unite(place_[g.from[0]], place_[j]);
  const auto setOf = [&](const Permutation &g) { return sets.find(place_[g.from[0]]); };
  Vec<int> count(moved_.size(), 0);
  Vec<char> mixed(moved_.size(), 0);
  for (const Permutation &g : all) ++count[setOf(g)];
  for (const Permutation &g : generators_) mixed[setOf(g)] = count[setOf(g)] > 1;
  points_.assign(moved_.size(), -1);
  for (std::size_t k = 0; k < moved_.size(); ++k)
    if (mixed[sets.find(static_cast<int>(k))]) {
      points_[k] = static_cast<int>(smallCols_.size());
      smallCols_.push_back(moved_[k]);
    }
  if (smallCols_.size() <= kMostPoints)
    for (const Permutation &g : all) {
      if (!mixed[setOf(g)]) continue;
      DensePermutation dense(smallCols_.size());
      std::iota(dense.begin(), dense.end(), 0);
      for (int k = 0; k < g.size(); ++k) dense[pointOf(g.from[k])] = pointOf(g.to[k]);
      small_.push_back(std::move(dense));
    }
  if (small_.size() > kMostGenerators) small_.clear();
}

void SymmetryGroup::index() {
  const std::size_t count = moved_.size() + 1;
  cellStarts_.assign(count, 0);
  moveStarts_.assign(count, 0);
  for (const ColumnMatrix &matrix : matrices_)
    for (const Vec<int> &cols : matrix.places)
      for (const int j : cols) ++cellStarts_[place_[j] + 1];
  for (const Permutation &g : generators_)
    for (const int j : g.from) ++moveStarts_[place_[j] + 1];
  for (std::size_t k = 1; k < count; ++k) {
    cellStarts_[k] += cellStarts_[k - 1];
    moveStarts_[k] += moveStarts_[k - 1];
  }
  cells_.resize(cellStarts_.back());
  moves_.resize(moveStarts_.back());
  Vec<NzIndex> nextCell(cellStarts_), nextMove(moveStarts_);
  for (std::size_t m = 0; m < matrices_.size(); ++m)
    for (std::size_t p = 0; p < matrices_[m].places.size(); ++p)
      for (int r = 0; r < matrices_[m].rows; ++r)
        cells_[nextCell[place_[matrices_[m].places[p][r]]]++] = {static_cast<int>(m),
                                                                 static_cast<int>(p), r};
  for (std::size_t g = 0; g < generators_.size(); ++g)
    for (int k = 0; k < generators_[g].size(); ++k)
      moves_[nextMove[place_[generators_[g].from[k]]]++] = {static_cast<int>(g),
                                                            generators_[g].to[k]};
}

// Those that take a marked column to one that is marked otherwise.
Vec<char> SymmetryGroup::brokenGenerators(const ColumnMarks &marks) const {
  Vec<char> broken(generators_.size(), 0);
  for (const int j : marks.marked()) {
    if (place_[j] < 0) continue;
    for (NzIndex k = moveStarts_[place_[j]]; k < moveStarts_[place_[j] + 1]; ++k)
      if (!marks.alike(j, moves_[k].image)) broken[moves_[k].generator] = 1;
  }
  return broken;
}

// Places without marks are alike, others when the same rows are marked with the same bounds.
void SymmetryGroup::uniteAlikePlaces(int matrix, const ColumnMarks &marks, const Vec<Cell> &marked,
                                     UnionFind &sets) const {
  const Vec<Vec<int>> &places = matrices_[matrix].places;
  using Signature = Vec<std::tuple<int, double, double>>;
  Vec<Signature> signatures(places.size());
  for (const Cell &cell : marked)
    if (cell.matrix == matrix) {
      const int j = places[cell.place][cell.row];
      signatures[cell.place].emplace_back(cell.row, marks.lower(j), marks.upper(j));
    }
  Vec<int> order(places.size());
  std::iota(order.begin(), order.end(), 0);
  for (Signature &signature : signatures) std::sort(signature.begin(), signature.end());
  std::stable_sort(order.begin(), order.end(),
                   [&](int a, int b) { return signatures[a] < signatures[b]; });
  for (std::size_t k = 1; k < order.size(); ++k) {
    if (signatures[order[k - 1]] != signatures[order[k]]) continue;
    const Vec<int> &a = places[order[k - 1]], &b = places[order[k]];
    for (std::size_t r = 0; r < a.size(); ++r) sets.unite(place_[a[r]], place_[b[r]]);
  }
}

Orbits SymmetryGroup::collect(UnionFind &sets) const {
  // Each set as a run, in the order of the representatives, which are the smallest members.
  Vec<int> size(moved_.size(), 0), start(moved_.size(), -1);
  for (std::size_t k = 0; k < moved_.size(); ++k) ++size[sets.find(static_cast<int>(k))];
  Orbits orbits;
  int end = 0;
  for (std::size_t k = 0; k < moved_.size(); ++k)
    if (size[k] > 1) {
      start[k] = end;
      end += size[k];
      orbits.starts.push_back(end);
    }
  orbits.members.resize(end);
  for (std::size_t k = 0; k < moved_.size(); ++k) {
    const int set = sets.find(static_cast<int>(k));
    if (size[set] > 1) orbits.members[start[set]++] = moved_[k];
  }
  return orbits;
}

Orbits SymmetryGroup::orbitsUnder(const ColumnMarks &marks, const Vec<DensePermutation> &stabilizer,
                                  WorkMeter &work) const {
  UnionFind sets(static_cast<int>(moved_.size()));
  const Vec<char> broken = brokenGenerators(marks);
  double columns = static_cast<double>(moved_.size());
  for (std::size_t g = 0; g < generators_.size(); ++g) {
    if (broken[g]) continue;
    columns += generators_[g].size();
    for (int k = 0; k < generators_[g].size(); ++k)
      sets.unite(place_[generators_[g].from[k]], place_[generators_[g].to[k]]);
  }
  for (const DensePermutation &element : stabilizer) {
    columns += static_cast<double>(element.size());
    for (std::size_t p = 0; p < element.size(); ++p)
      sets.unite(place_[smallCols_[p]], place_[smallCols_[element[p]]]);
  }
  Vec<Cell> marked;
  for (const int j : marks.marked())
    if (place_[j] >= 0)
      marked.insert(marked.end(), cells_.begin() + cellStarts_[place_[j]],
                    cells_.begin() + cellStarts_[place_[j] + 1]);
  for (std::size_t m = 0; m < matrices_.size(); ++m) {
    columns += matrices_[m].rows * static_cast<double>(matrices_[m].places.size());
    uniteAlikePlaces(static_cast<int>(m), marks, marked, sets);
  }
  work.charge(kColumnWork * columns);
  return collect(sets);
}

}  // namespace tarvik
