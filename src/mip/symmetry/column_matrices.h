// Matrices of columns whose matrix columns ("places") may be permuted at will, in all rows at once:
// equal machines, colours, bins. They are found among generators that exchange two places each and
// together connect all places.
//
// Literature: Kaibel and Pfetsch (2008); Pfetsch and Rehn (2019).
#pragma once

#include "base/types.h"
#include "mip/symmetry/permutation.h"

namespace tarvik {

struct ColumnMatrix {
  int rows = 0;
  Vec<Vec<int>> places;  // the columns at a place, by row
};

// Those of three places and more; what makes them up leaves the generators.
Vec<ColumnMatrix> extractMatrices(Vec<Permutation> &generators, int numCols);

}  // namespace tarvik
