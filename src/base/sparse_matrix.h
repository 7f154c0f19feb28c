// A compressed sparse matrix: major vectors (columns or rows) with 64-bit starts and 32-bit
// minor indices. Which dimension is major is said by whoever owns it.
#pragma once

#include "base/memory.h"
#include "base/types.h"

namespace tarvik {

struct SparseMatrix {
  int numMajor = 0;
  int numMinor = 0;
  Vec<NzIndex> start{0};  // numMajor + 1 entries
  Vec<int> index;
  Vec<double> value;

  NzIndex numNz() const { return start.back(); }
  int length(int major) const { return static_cast<int>(start[major + 1] - start[major]); }

  void clear(int minor) {
    numMajor = 0;
    numMinor = minor;
    start.assign(1, 0);
    index.clear();
    value.clear();
  }
  // Appends one major vector.
  void append(int count, const int *ind, const double *val) {
    index.insert(index.end(), ind, ind + count);
    value.insert(value.end(), val, val + count);
    start.push_back(static_cast<NzIndex>(index.size()));
    ++numMajor;
  }
};

// The same matrix with the other dimension major; minor indices come out sorted.
SparseMatrix transpose(const SparseMatrix &matrix);

// Moves the major vectors apart so that each is followed by a gap of its size in `gap`, which has
// numMajor entries; afterwards it holds where the gaps begin. Returns the number of entries moved.
// Throws only if the matrix has no room reserved.
double openGaps(SparseMatrix &matrix, Vec<NzIndex> &gap);

// The two steps of a transposition into arrays of the caller: where the vectors of the other
// dimension start, and their entries.
void transposedStarts(const SparseMatrix &matrix, Vec<NzIndex> &start);
void transposeEntries(const SparseMatrix &matrix, const Vec<NzIndex> &start, int *index,
                      double *value);

}  // namespace tarvik
