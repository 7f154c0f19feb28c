// A problem as a graph: a vertex for each column, row and set, an edge for each entry. Vertices
// carry colours (what is known of a column by itself, the bounds of a row), edges carry weights
// (coefficients, places in a set). A permutation of columns is a symmetry of the problem exactly
// when it extends to one of the vertices that keeps colours, edges and weights.
//
// Weights are mixed so that sums of them tell multisets apart; that they do so with near certainty
// only is enough for a search whose results are verified.
//
// Literature: Salvagnin (2005); Pfetsch and Rehn (2019).
#pragma once

#include "mip/problem.h"

namespace tarvik {

struct ColouredGraph {
  explicit ColouredGraph(const Problem &problem);

  int numCols = 0;  // the vertices of columns come first
  int numVertices = 0;
  Vec<NzIndex> start;
  Vec<int> neighbour;
  Vec<std::uint64_t> weight;
  Vec<int> colour;  // a vertex; those of columns are smaller than all others
};

// A number in which every bit depends on all bits of `value`.
inline std::uint64_t mixBits(std::uint64_t value) {
  value += 0x9e3779b97f4a7c15u;
  value = (value ^ (value >> 30)) * 0xbf58476d1ce4e5b9u;
  value = (value ^ (value >> 27)) * 0x94d049bb133111ebu;
  return value ^ (value >> 31);
}

}  // namespace tarvik
