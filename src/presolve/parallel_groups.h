// Finds rows or columns that may be multiples of each other (Bixby and Wagner, 1987, by hashing):
// vectors with the same positions, and the same values after division by one of them, get the
// same key. Keys say "perhaps"; whoever acts on them compares the entries.
#pragma once

#include <cstdint>

#include "presolve/workspace.h"

namespace tarvik::presolve {

struct ParallelKey {
  std::uint64_t support;  // of the positions
  float values;           // of the normalised values
  double order;           // orders candidates with the same key
  int index;
  bool sameGroup(const ParallelKey &other) const {
    return support == other.support && values == other.values;
  }
  bool operator<(const ParallelKey &other) const {
    if (support != other.support) return support < other.support;
    if (values != other.values) return values < other.values;
    return order != other.order ? order < other.order : index < other.index;
  }
};

// The key of a vector; `scale` receives the entry that values are divided by.
template <class Entries>
ParallelKey parallelKey(const Entries &entries, int Entry::*position, int index, double &scale) {
  const auto mix = [](std::uint64_t z) {
    z += 0x9e3779b97f4a7c15u;
    z = (z ^ (z >> 30)) * 0xbf58476d1ce4e5b9u;
    z = (z ^ (z >> 27)) * 0x94d049bb133111ebu;
    return z ^ (z >> 31);
  };
  ParallelKey key{0, 0, 0, index};
  double sum = 0;
  std::uint64_t smallest = ~std::uint64_t{0};
  for (const Entry &entry : entries) {
    const std::uint64_t hash = mix(static_cast<std::uint64_t>(entry.*position));
    key.support += hash;
    sum += entry.value * (1 + static_cast<double>(hash >> 11) * 0x1.0p-53);
    if (hash < smallest) {
      smallest = hash;
      scale = entry.value;
    }
  }
  key.values = static_cast<float>(sum / scale);
  return key;
}

}  // namespace tarvik::presolve
