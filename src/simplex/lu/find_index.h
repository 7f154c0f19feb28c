// Position of an index in a list, or the list's length. Long lists are compared in blocks of
// vectors (an extension that GCC and Clang share; it needs no particular processor).
#pragma once

#include <cstring>

namespace tarvik::lu {

inline int findIndex(const int *list, int length, int wanted) {
  using FourInts = int __attribute__((vector_size(16)));
  using TwoWords = long long __attribute__((vector_size(16)));
  constexpr int kBlock = 16;
  int at = 0;
  for (; at + kBlock <= length; at += kBlock) {
    FourInts part[4];
    std::memcpy(part, list + at, sizeof part);
    const TwoWords equal = reinterpret_cast<TwoWords>(((part[0] == wanted) | (part[1] == wanted)) |
                                                      ((part[2] == wanted) | (part[3] == wanted)));
    if ((equal[0] | equal[1]) != 0) break;
  }
  while (at < length && list[at] != wanted) ++at;
  return at;
}

}  // namespace tarvik::lu
