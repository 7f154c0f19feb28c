// Transposition of matrices of every size and pattern: small ones, large ones whose entries lie
// near the diagonal and large ones whose entries are scattered take different ways.
#include "base/sparse_matrix.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <random>
#include <set>
#include <tuple>
#include <vector>

namespace {

using tarvik::SparseMatrix;

SparseMatrix randomMatrix(int numMajor, int numMinor, int length, bool banded, unsigned seed) {
  std::mt19937 random(seed);
  SparseMatrix matrix;
  matrix.clear(numMinor);
  for (int j = 0; j < numMajor; ++j) {
    std::set<int> minors;
    const int wanted = static_cast<int>(random() % (2 * length + 1));
    for (int k = 0; k < wanted; ++k)
      minors.insert(
          static_cast<int>(banded ? (j + random() % 20) % numMinor : random() % numMinor));
    std::vector<int> index(minors.begin(), minors.end());
    std::shuffle(index.begin(), index.end(), random);
    std::vector<double> value;
    for (const int i : index) value.push_back(i + 1e-7 * j);
    matrix.append(static_cast<int>(index.size()), index.data(), value.data());
  }
  return matrix;
}

TEST(SparseMatrixTest, TransposeHasTheSameEntriesInOrder) {
  const std::tuple<int, int, int, bool> shapes[] = {
      {0, 5, 1, false},         {5, 0, 0, false},        {7, 3, 2, false},
      {30000, 20000, 4, true},  {40000, 3, 1, false},    {30000, 100000, 4, false},
      {3, 90000, 40000, false}, {90000, 65536, 3, false}};
  for (const auto &[numMajor, numMinor, length, banded] : shapes) {
    const SparseMatrix matrix = randomMatrix(numMajor, numMinor, length, banded, 5);
    const SparseMatrix other = transpose(matrix);
    ASSERT_EQ(other.numMajor, numMinor);
    ASSERT_EQ(other.numMinor, numMajor);
    ASSERT_EQ(other.numNz(), matrix.numNz());
    std::vector<tarvik::NzIndex> next(other.start.begin(), other.start.end());
    for (int j = 0; j < numMajor; ++j) {
      for (auto k = matrix.start[j]; k < matrix.start[j + 1]; ++k) {
        const auto at = next[matrix.index[k]]++;
        ASSERT_EQ(other.index[at], j);
        ASSERT_EQ(other.value[at], matrix.value[k]);
      }
    }
    for (int i = 0; i < numMinor; ++i) ASSERT_EQ(next[i], other.start[i + 1]);
  }
}

}  // namespace
