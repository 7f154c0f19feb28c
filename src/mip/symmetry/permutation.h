// A permutation of columns that moves few of them: every moved column with its image.
#pragma once

#include "base/memory.h"

namespace tarvik {

struct Permutation {
  Vec<int> from, to;  // `from` ascending; what is not in it stays

  int size() const { return static_cast<int>(from.size()); }
};

}  // namespace tarvik
