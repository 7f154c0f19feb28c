#include "mip/symmetry/point_stabilizer.h"

#include <algorithm>

#include "base/random.h"

namespace tarvik {

namespace {

// The most that are kept.
constexpr std::size_t kMostGenerators = 24;
// Random elements that are tried; elements that are multiplied at random, at least, and how often
// before the first of them is used.
constexpr int kTrials = 12;
constexpr int kMixed = 6;
constexpr int kWarmUp = 20;

// How the points of an orbit are reached from the first one.
struct SchreierTree {
  Vec<int> generator, parent;  // of a point; generator -1: the root, -2: not in the orbit
};

SchreierTree reach(int root, const Vec<DensePermutation> &generators) {
  SchreierTree tree;
  tree.generator.assign(generators[0].size(), -2);
  tree.parent.assign(generators[0].size(), -1);
  tree.generator[root] = -1;
  Vec<int> orbit{root};
  for (std::size_t k = 0; k < orbit.size(); ++k)
    for (std::size_t g = 0; g < generators.size(); ++g) {
      const int image = generators[g][orbit[k]];
      if (tree.generator[image] != -2) continue;
      tree.generator[image] = static_cast<int>(g);
      tree.parent[image] = orbit[k];
      orbit.push_back(image);
    }
  return tree;
}

DensePermutation inverseOf(const DensePermutation &permutation) {
  DensePermutation inverse(permutation.size());
  for (std::size_t p = 0; p < permutation.size(); ++p)
    inverse[permutation[p]] = static_cast<int>(p);
  return inverse;
}

// First `permutation`, then `next`.
void follow(DensePermutation &permutation, const DensePermutation &next) {
  for (int &image : permutation) image = next[image];
}

bool isIdentity(const DensePermutation &permutation) {
  for (std::size_t p = 0; p < permutation.size(); ++p)
    if (permutation[p] != static_cast<int>(p)) return false;
  return true;
}

}  // namespace

Vec<DensePermutation> stabilizerOf(int point, const Vec<DensePermutation> &generators,
                                   WorkMeter &work) {
  const SchreierTree tree = reach(point, generators);
  if (std::all_of(generators.begin(), generators.end(),
                  [&](const DensePermutation &g) { return g[point] == point; }))
    return generators;
  Vec<DensePermutation> inverses, mixed, result;
  for (const DensePermutation &g : generators) inverses.push_back(inverseOf(g));
  const auto keep = [&](const DensePermutation &element) {
    if (result.size() < kMostGenerators && !isIdentity(element) &&
        std::find(result.begin(), result.end(), element) == result.end())
      result.push_back(element);
  };
  double products = 2.0 * static_cast<double>(generators.size());
  for (std::size_t k = 0; k < std::max<std::size_t>(kMixed, generators.size()); ++k)
    mixed.push_back(generators[k % generators.size()]);
  Random random(static_cast<std::uint64_t>(point));
  for (int trial = -kWarmUp; trial < kTrials; ++trial) {
    const int count = static_cast<int>(mixed.size());
    const int a = random.below(count);
    const int b = (a + 1 + random.below(count - 1)) % count;
    follow(mixed[a], mixed[b]);
    ++products;
    if (trial < 0) continue;
    DensePermutation element(mixed[a]);
    for (int p = element[point]; p != point; p = tree.parent[p], ++products)
      follow(element, inverses[tree.generator[p]]);
    keep(element);
  }
  for (const DensePermutation &g : generators)
    if (g[point] == point) keep(g);
  work.charge(2 * products * static_cast<double>(generators[0].size()));
  return result;
}

}  // namespace tarvik
