#include "base/sparse_matrix.h"

#include <algorithm>
#include <cstring>
#include <numeric>

namespace tarvik {

namespace {

// Below so many entries everything fits into the caches near the core.
constexpr NzIndex kMinBlockedEntries = 1 << 16;
// Entries of the result that are written in one go by the blocked variant: half a megabyte.
constexpr NzIndex kBlockEntries = 1 << 15;
constexpr int kMaxBlocks = 512;

// Puts entry after entry where it belongs; next holds the next free position of each vector.
void scatterDirectly(const SparseMatrix &matrix, Vec<NzIndex> &next, int *index, double *value) {
  for (int j = 0; j < matrix.numMajor; ++j) {
    for (NzIndex k = matrix.start[j]; k < matrix.start[j + 1]; ++k) {
      const NzIndex to = next[matrix.index[k]]++;
      index[to] = j;
      value[to] = matrix.value[k];
    }
  }
}

// Whether successive vectors of the matrix mostly go where entries were put shortly before, judged
// by some of them: the minor indices, eight to a cache line, are looked for in a small table of
// lines touched last.
bool isLocal(const SparseMatrix &matrix) {
  constexpr int kLines = 1024, kStretches = 32, kStretchEntries = 4096;
  Vec<int> touched(kLines, -1);
  NzIndex seen = 0, misses = 0;
  const NzIndex nz = matrix.numNz();
  for (int s = 0; s < kStretches; ++s) {
    const NzIndex from = nz / kStretches * s, to = std::min(nz, from + kStretchEntries);
    for (NzIndex k = from; k < to; ++k) {
      const int line = matrix.index[k] / 8;
      misses += touched[line % kLines] != line;
      touched[line % kLines] = line;
    }
    seen += to - from;
  }
  return misses * 4 <= seen;
}

struct Entry {
  int minor, major;
  double value;
};

// First distributes the entries into blocks of neighbouring vectors of the result, each block in
// sequence, then the entries of each block within the part of the result that is in the cache: no
// step jumps over more memory than a cache holds.
void scatterByBlocks(const SparseMatrix &matrix, const Vec<NzIndex> &start, Vec<NzIndex> &next,
                     int *index, double *value) {
  const NzIndex nz = matrix.numNz();
  const NzIndex wanted = std::clamp<NzIndex>(nz / kBlockEntries, 1, kMaxBlocks);
  int shift = 0;
  while ((static_cast<NzIndex>(matrix.numMinor) >> shift) >= wanted) ++shift;
  const int numBlocks = (matrix.numMinor >> shift) + 1;
  Vec<NzIndex> blockNext(static_cast<std::size_t>(numBlocks));
  for (int b = 0; b < numBlocks; ++b) blockNext[b] = start[static_cast<NzIndex>(b) << shift];
  Vec<Entry> entries(static_cast<std::size_t>(nz));
  for (int j = 0; j < matrix.numMajor; ++j) {
    for (NzIndex k = matrix.start[j]; k < matrix.start[j + 1]; ++k) {
      const int minor = matrix.index[k];
      entries[blockNext[minor >> shift]++] = {minor, j, matrix.value[k]};
    }
  }
  for (const Entry &entry : entries) {
    const NzIndex to = next[entry.minor]++;
    index[to] = entry.major;
    value[to] = entry.value;
  }
}

}  // namespace

void transposedStarts(const SparseMatrix &matrix, Vec<NzIndex> &start) {
  start.assign(static_cast<std::size_t>(matrix.numMinor) + 1, 0);
  for (const int i : matrix.index) ++start[i + 1];
  for (int i = 0; i < matrix.numMinor; ++i) start[i + 1] += start[i];
}

void transposeEntries(const SparseMatrix &matrix, const Vec<NzIndex> &start, int *index,
                      double *value) {
  Vec<NzIndex> next = start;
  if (matrix.numNz() < kMinBlockedEntries || isLocal(matrix))
    scatterDirectly(matrix, next, index, value);
  else
    scatterByBlocks(matrix, start, next, index, value);
}

SparseMatrix transpose(const SparseMatrix &matrix) {
  SparseMatrix result;
  result.numMajor = matrix.numMinor;
  result.numMinor = matrix.numMajor;
  transposedStarts(matrix, result.start);
  result.index.resize(static_cast<std::size_t>(matrix.numNz()));
  result.value.resize(static_cast<std::size_t>(matrix.numNz()));
  transposeEntries(matrix, result.start, result.index.data(), result.value.data());
  return result;
}

// To the right, the last vector first. Neighbours without a gap between them move as one block.
double openGaps(SparseMatrix &matrix, Vec<NzIndex> &gap) {
  NzIndex missing = std::accumulate(gap.begin(), gap.end(), NzIndex{0});
  const NzIndex oldSize = matrix.numNz();
  matrix.index.resize(static_cast<std::size_t>(oldSize + missing));
  matrix.value.resize(static_cast<std::size_t>(oldSize + missing));
  double moved = 0;
  for (int last = matrix.numMajor - 1; last >= 0 && missing > 0;) {
    int first = last;
    while (first > 0 && gap[first - 1] == 0) --first;
    const NzIndex begin = matrix.start[first], end = matrix.start[last + 1];
    const NzIndex shift = missing - gap[last];
    const std::size_t size = static_cast<std::size_t>(end - begin);
    if (shift > 0 && size > 0) {
      std::memmove(&matrix.index[begin + shift], &matrix.index[begin], size * sizeof(int));
      std::memmove(&matrix.value[begin + shift], &matrix.value[begin], size * sizeof(double));
    }
    matrix.start[last + 1] = end + missing;
    gap[last] = end + shift;
    for (int j = first; j < last; ++j) gap[j] = matrix.start[j + 1] += shift;
    missing = shift;
    last = first - 1;
    moved += static_cast<double>(size);
  }
  return moved;
}

}  // namespace tarvik
