#include "mip/symmetry/coloured_graph.h"

#include <algorithm>
#include <array>
#include <bit>
#include <numeric>

namespace tarvik {

namespace {

// Vertices with equal keys get equal colours, from `first` on in the order of the keys. Returns the
// first colour that is not used.
template <class Key>
int colourByKey(const Vec<Key> &keys, int first, int *colour) {
  Vec<int> order(keys.size());
  std::iota(order.begin(), order.end(), 0);
  std::sort(order.begin(), order.end(), [&](int a, int b) { return keys[a] < keys[b]; });
  int next = first - 1;
  for (std::size_t k = 0; k < order.size(); ++k) {
    if (k == 0 || keys[order[k - 1]] < keys[order[k]]) ++next;
    colour[order[k]] = next;
  }
  return next + 1;
}

Vec<std::array<double, 6>> columnKeys(const Problem &problem) {
  const LpModel &lp = problem.lp();
  const MipModel &model = problem.model();
  Vec<std::array<double, 6>> keys(lp.numCols);
  for (int j = 0; j < lp.numCols; ++j) {
    const bool hole = problem.isSemi(j);
    // Zeros of both signs are equal.
    keys[j] = {static_cast<double>(problem.kind(j)),
               lp.cost[j] + 0.0,
               lp.colLower[j] + 0.0,
               lp.colUpper[j] + 0.0,
               hole ? model.holeLower[j] + 0.0 : 0.0,
               hole ? model.holeUpper[j] + 0.0 : 0.0};
  }
  return keys;
}

std::uint64_t weightOf(double coefficient) {
  return mixBits(std::bit_cast<std::uint64_t>(coefficient + 0.0));
}

// The order matters in sets of type 2 only.
std::uint64_t weightOf(const SosSet &set, int place) {
  return mixBits(static_cast<std::uint64_t>(set.type == 1 ? 0 : place + 1));
}

}  // namespace

ColouredGraph::ColouredGraph(const Problem &problem) : numCols(problem.numCols()) {
  const Vec<SosSet> &sets = problem.model().sos;
  const int n = numCols, m = problem.numRows();
  numVertices = n + m + static_cast<int>(sets.size());
  start.assign(static_cast<std::size_t>(numVertices) + 1, 0);
  for (int j = 0; j < n; ++j) start[j + 1] += problem.cols().length(j);
  for (int i = 0; i < m; ++i) start[n + i + 1] += problem.rows().length(i);
  for (std::size_t s = 0; s < sets.size(); ++s) {
    start[n + m + s + 1] += static_cast<NzIndex>(sets[s].cols.size());
    for (const int j : sets[s].cols) ++start[j + 1];
  }
  std::partial_sum(start.begin(), start.end(), start.begin());
  neighbour.resize(start.back());
  weight.resize(start.back());
  Vec<NzIndex> next(start.begin(), start.end() - 1);
  const auto connect = [&](int from, int to, std::uint64_t w) {
    neighbour[next[from]] = to;
    weight[next[from]++] = w;
    neighbour[next[to]] = from;
    weight[next[to]++] = w;
  };
  for (int j = 0; j < n; ++j)
    for (NzIndex k = problem.cols().start[j]; k < problem.cols().start[j + 1]; ++k)
      connect(j, n + problem.cols().index[k], weightOf(problem.cols().value[k]));
  for (std::size_t s = 0; s < sets.size(); ++s)
    for (std::size_t k = 0; k < sets[s].cols.size(); ++k)
      connect(sets[s].cols[k], n + m + static_cast<int>(s), weightOf(sets[s], static_cast<int>(k)));

  colour.resize(numVertices);
  int used = colourByKey(columnKeys(problem), 0, colour.data());
  Vec<std::array<double, 2>> rowKeys(m);
  for (int i = 0; i < m; ++i)
    rowKeys[i] = {problem.lp().rowLower[i] + 0.0, problem.lp().rowUpper[i] + 0.0};
  used = colourByKey(rowKeys, used, colour.data() + n);
  for (std::size_t s = 0; s < sets.size(); ++s) colour[n + m + s] = used + sets[s].type;
}

}  // namespace tarvik
