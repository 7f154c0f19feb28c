#include "base/sparse_clean.h"

#include <cmath>
#include <utility>

#include "base/sort_together.h"

namespace tarvik {

namespace {

constexpr double kRounding = 2.220446049250313e-16;

// Merges sorted entries; same(i, j) compares keys, move(to, from) carries a key along.
template <class Same, class Move>
CleanResult merge(int length, double *val, double tolerance, Same same, Move move) {
  CleanResult result;
  for (int k = 0; k < length; ++k) result.largest = std::fmax(result.largest, std::fabs(val[k]));
  int kept = 0;
  for (int k = 0; k < length; ++k) {
    if (kept > 0 && same(kept - 1, k)) {
      val[kept - 1] += val[k];
      result.largest = std::fmax(result.largest, std::fabs(val[kept - 1]));
    } else {
      move(kept, k);
      val[kept++] = val[k];
    }
  }
  const double cut = tolerance > 0 ? std::fmax(tolerance, kRounding * result.largest) : 0;
  for (int k = 0; k < kept; ++k) {
    const double size = std::fabs(val[k]);
    if (size <= cut) {
      if (tolerance > 0) ++result.cancellations;
      continue;
    }
    move(result.length, k);
    val[result.length++] = val[k];
  }
  return result;
}

}  // namespace

CleanResult cleanPairs(int length, int *ind, double *val, double tolerance) {
  sortTogether(
      length, [&](auto i, auto j) { return ind[i] < ind[j]; },
      [&](auto i, auto j) {
        std::swap(ind[i], ind[j]);
        std::swap(val[i], val[j]);
      });
  return merge(
      length, val, tolerance, [&](int i, int j) { return ind[i] == ind[j]; },
      [&](int to, int from) { ind[to] = ind[from]; });
}

CleanResult cleanTriplets(int length, int *ind0, int *ind1, double *val, double tolerance) {
  sortTogether(
      length,
      [&](auto i, auto j) { return ind0[i] != ind0[j] ? ind0[i] < ind0[j] : ind1[i] < ind1[j]; },
      [&](auto i, auto j) {
        std::swap(ind0[i], ind0[j]);
        std::swap(ind1[i], ind1[j]);
        std::swap(val[i], val[j]);
      });
  return merge(
      length, val, tolerance,
      [&](int i, int j) { return ind0[i] == ind0[j] && ind1[i] == ind1[j]; },
      [&](int to, int from) {
        ind0[to] = ind0[from];
        ind1[to] = ind1[from];
      });
}

}  // namespace tarvik
