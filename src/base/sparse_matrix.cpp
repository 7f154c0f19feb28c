#include "base/sparse_matrix.h"

namespace tarvik {

SparseMatrix transpose(const SparseMatrix &matrix) {
  SparseMatrix result;
  result.numMajor = matrix.numMinor;
  result.numMinor = matrix.numMajor;
  result.start.assign(static_cast<std::size_t>(matrix.numMinor) + 1, 0);
  const NzIndex nz = matrix.numNz();
  result.index.resize(static_cast<std::size_t>(nz));
  result.value.resize(static_cast<std::size_t>(nz));
  for (NzIndex k = 0; k < nz; ++k) ++result.start[matrix.index[k] + 1];
  for (int i = 0; i < matrix.numMinor; ++i) result.start[i + 1] += result.start[i];
  // Fill with the starts as cursors, then shift them back by one vector.
  for (int j = 0; j < matrix.numMajor; ++j) {
    for (NzIndex k = matrix.start[j]; k < matrix.start[j + 1]; ++k) {
      const NzIndex to = result.start[matrix.index[k]]++;
      result.index[to] = j;
      result.value[to] = matrix.value[k];
    }
  }
  for (int i = matrix.numMinor; i > 0; --i) result.start[i] = result.start[i - 1];
  result.start[0] = 0;
  return result;
}

}  // namespace tarvik
