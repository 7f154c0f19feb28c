// Cuts that left the relaxation because they were slack for a while. Every round of cuts asks the
// pool after the separators: what cuts off the new point as well as the fresh cuts do on average is
// a candidate again, and what is not chosen then is forgotten. Cuts that are multiples of each
// other (found by a hash of their scaled coefficients) are kept once, with the tightest right-hand
// side. A cut that stays in the pool for some rounds is forgotten; where the pool is full, what
// comes is. Candidates that were refused as parallel to a better one never enter: they would swell
// later rounds.
//
// Literature: Achterberg (2007), chapter 8.
#pragma once

#include <cstdint>
#include <memory>

#include "mip/cuts/cut.h"

namespace tarvik {

class CutPool {
 public:
  explicit CutPool(std::size_t capacity = 2000) : capacity_(capacity) {}

  void add(const std::shared_ptr<const Cut> &cut);
  // To the candidates of a round at x; the number of those that were appended.
  int separate(const Vec<double> &x, WorkMeter &work, Vec<Cut> &cuts);
  std::size_t size() const { return pooled_.size(); }

 private:
  struct Pooled {
    std::shared_ptr<const Cut> cut;
    std::uint64_t hash;
    int age;
    int next;  // in its bucket
  };

  void enter(Pooled &&pooled);

  std::size_t capacity_;
  Vec<Pooled> pooled_;
  Vec<int> buckets_;
};

}  // namespace tarvik
