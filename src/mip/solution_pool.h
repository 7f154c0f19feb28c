// The solutions that a search for several keeps: the best ones that differ in their integral
// values. While it is not full, anything feasible is wanted; then what is better than its worst.
#pragma once

#include "mip/problem.h"

namespace tarvik {

class SolutionPool {
 public:
  // `size` solutions are wanted; 0: no pool.
  SolutionPool(const Problem &problem, int size) : problem_(&problem), size_(size) {}

  bool inUse() const { return size_ > 0; }
  // The objective of the worst that is kept, kUserInf while there is room.
  double worst() const {
    return static_cast<int>(members_.size()) < size_ ? kUserInf : members_.back().objective;
  }
  bool has(const Vec<double> &x) const;
  // False when it is known, or not good enough.
  bool add(const Vec<double> &x, double objective);

 private:
  struct Member {
    double objective;
    Vec<double> integral;
  };

  Vec<double> integralPart(const Vec<double> &x) const;

  const Problem *problem_;
  int size_;
  Vec<Member> members_;  // best first
};

}  // namespace tarvik
