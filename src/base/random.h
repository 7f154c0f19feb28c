// A small seeded generator (xoshiro256**, Blackman and Vigna, 2018, seeded by splitmix64), the
// same on every platform: random choices are part of the deterministic path of a solve.
#pragma once

#include <cstdint>

namespace tarvik {

class Random {
 public:
  explicit Random(std::uint64_t seed = 0) {
    for (auto &word : state_) {
      seed += 0x9e3779b97f4a7c15u;
      std::uint64_t z = seed;
      z = (z ^ (z >> 30)) * 0xbf58476d1ce4e5b9u;
      z = (z ^ (z >> 27)) * 0x94d049bb133111ebu;
      word = z ^ (z >> 31);
    }
  }
  std::uint64_t next() {
    const std::uint64_t result = rotate(state_[1] * 5, 7) * 9;
    const std::uint64_t t = state_[1] << 17;
    state_[2] ^= state_[0];
    state_[3] ^= state_[1];
    state_[1] ^= state_[2];
    state_[0] ^= state_[3];
    state_[2] ^= t;
    state_[3] = rotate(state_[3], 45);
    return result;
  }
  // Uniform in [0, 1).
  double uniform() { return static_cast<double>(next() >> 11) * 0x1.0p-53; }
  double uniform(double low, double high) { return low + (high - low) * uniform(); }
  // Uniform in 0 .. n-1; n must be positive.
  int below(int n) {
    return static_cast<int>((static_cast<unsigned __int128>(next()) * static_cast<unsigned>(n)) >>
                            64);
  }

 private:
  static std::uint64_t rotate(std::uint64_t x, int k) { return (x << k) | (x >> (64 - k)); }
  std::uint64_t state_[4];
};

// Fisher-Yates shuffle of any random-access range.
template <class Range>
void shuffle(Range &range, Random &random) {
  for (int i = static_cast<int>(range.size()) - 1; i > 0; --i) {
    const int j = random.below(i + 1);
    auto kept = range[i];
    range[i] = range[j];
    range[j] = kept;
  }
}

}  // namespace tarvik
