// Disjoint sets of 0 .. n-1 with path halving; the smallest element represents its set.
#pragma once

#include <numeric>
#include <utility>

#include "base/memory.h"

namespace tarvik {

class UnionFind {
 public:
  explicit UnionFind(int count) : parent_(count) { std::iota(parent_.begin(), parent_.end(), 0); }
  int find(int element) {
    while (parent_[element] != element) {
      parent_[element] = parent_[parent_[element]];
      element = parent_[element];
    }
    return element;
  }
  void unite(int a, int b) {
    a = find(a);
    b = find(b);
    if (a > b) std::swap(a, b);
    parent_[b] = a;
  }

 private:
  Vec<int> parent_;
};

}  // namespace tarvik
