// Brings sparse terms into normal form, in place: sorted by key, equal keys merged by adding,
// vanished entries removed. Nothing is allocated.
#pragma once

namespace tarvik {

struct CleanResult {
  int length = 0;         // what is left
  double largest = 0;     // largest absolute value among inputs and partial sums
  int cancellations = 0;  // entries removed by a positive tolerance
};

// With a positive tolerance an entry also vanishes when its merged absolute value is at or below
// the tolerance, or at or below the rounding error of the largest value met.
CleanResult cleanPairs(int length, int *ind, double *val, double tolerance = 0);
CleanResult cleanTriplets(int length, int *ind0, int *ind1, double *val, double tolerance = 0);

}  // namespace tarvik
