// Bounds that follow from fixing a binary column, as probing finds them: what rows imply together,
// not one at a time.
#pragma once

#include "mip/domain.h"

namespace tarvik {

struct Implication {
  int binary;
  bool one;  // the value of the binary that implies the bound
  int col;
  BoundSide side;
  double bound;
};

class ImplicationTable {
 public:
  // Those beyond `capacity` are forgotten.
  explicit ImplicationTable(std::size_t capacity = 0) : capacity_(capacity) {}

  void add(const Implication &implication) {
    if (all_.size() < capacity_) all_.push_back(implication);
  }
  bool isFull() const { return all_.size() >= capacity_; }
  const Vec<Implication> &all() const { return all_; }

 private:
  std::size_t capacity_;
  Vec<Implication> all_;
};

}  // namespace tarvik
