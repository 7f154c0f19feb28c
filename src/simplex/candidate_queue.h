// A priority structure for pricing: candidates with positive merits, of which the (nearly) best
// is wanted again and again while a few merits change between two looks. Merits are bucketed by
// exponent and the two leading mantissa bits, so a change costs O(1) and a look scans the top
// bucket only: pricing never passes over all rows or columns. Within the top bucket merits differ
// by at most 19%; of a crowded bucket only a part is scanned.
#pragma once

#include <bit>
#include <cstdint>

#include "base/memory.h"

namespace tarvik {

class CandidateQueue {
 public:
  void resize(int size) {
    merit_.assign(size, 0.0);
    next_.assign(size, -1);
    previous_.assign(size, -1);
    first_.assign(kBuckets, -1);
    for (auto &word : occupied_) word = 0;
  }
  int size() const { return static_cast<int>(merit_.size()); }
  double merit(int item) const { return merit_[item]; }

  // A merit of 0 takes the item out.
  void set(int item, double merit) {
    const double old = merit_[item];
    if (old == 0 && merit == 0) return;
    const int from = old > 0 ? bucketOf(old) : -1;
    const int to = merit > 0 ? bucketOf(merit) : -1;
    merit_[item] = merit;
    if (from == to) return;
    if (from >= 0) unlink(item, from);
    if (to >= 0) link(item, to);
  }

  // The best item, or -1 when the queue is empty.
  int best() {
    const int bucket = topBucket();
    if (bucket < 0) return -1;
    int chosen = -1;
    double bestMerit = 0;
    int scanned = 0;
    for (int item = first_[bucket]; item >= 0 && scanned < kScan; item = next_[item], ++scanned) {
      if (merit_[item] > bestMerit) {
        bestMerit = merit_[item];
        chosen = item;
      }
    }
    lastScan_ = scanned;
    return chosen;
  }
  int lastScan() const { return lastScan_; }

  // Visits items from the best buckets down until visit says no.
  template <class Visitor>
  void descend(Visitor &&visit) const {
    for (int word = kWords - 1; word >= 0; --word)
      for (std::uint64_t left = occupied_[word]; left; left &= ~(std::uint64_t{1} << highest(left)))
        for (int item = first_[(word << 6) + highest(left)]; item >= 0; item = next_[item])
          if (!visit(item)) return;
  }

 private:
  static constexpr int kExponents = 200;  // 2^-100 .. 2^100
  static constexpr int kBuckets = 4 * kExponents;
  static constexpr int kScan = 100;

  static int bucketOf(double merit) {
    const auto bits = std::bit_cast<std::uint64_t>(merit);
    const int code = static_cast<int>(bits >> 50) - ((1023 - kExponents / 2) << 2);
    return code < 0 ? 0 : code >= kBuckets ? kBuckets - 1 : code;
  }
  void link(int item, int bucket) {
    next_[item] = first_[bucket];
    previous_[item] = -1;
    if (first_[bucket] >= 0) previous_[first_[bucket]] = item;
    first_[bucket] = item;
    occupied_[bucket >> 6] |= std::uint64_t{1} << (bucket & 63);
  }
  void unlink(int item, int bucket) {
    if (previous_[item] >= 0)
      next_[previous_[item]] = next_[item];
    else
      first_[bucket] = next_[item];
    if (next_[item] >= 0) previous_[next_[item]] = previous_[item];
    if (first_[bucket] < 0) occupied_[bucket >> 6] &= ~(std::uint64_t{1} << (bucket & 63));
  }
  static int highest(std::uint64_t bits) { return 63 - std::countl_zero(bits); }
  int topBucket() const {
    for (int word = kWords - 1; word >= 0; --word)
      if (occupied_[word]) return (word << 6) + highest(occupied_[word]);
    return -1;
  }

  static constexpr int kWords = (kBuckets + 63) / 64;
  Vec<double> merit_;
  Vec<int> next_, previous_, first_;
  std::uint64_t occupied_[kWords] = {};
  int lastScan_ = 0;
};

}  // namespace tarvik
