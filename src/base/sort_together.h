// Sorting of parallel arrays in place, without extra memory: the caller says how two positions
// compare and how they are exchanged. Introsort (Musser, 1997): quicksort with median of three,
// insertion sort for short ranges, heapsort when the recursion degenerates.
#pragma once

#include <cstdint>

namespace tarvik {

namespace sort_detail {

inline constexpr std::int64_t kShort = 16;

template <class Less, class Swap>
void insertionSort(std::int64_t begin, std::int64_t end, Less less, Swap swap) {
  for (std::int64_t i = begin + 1; i < end; ++i)
    for (std::int64_t j = i; j > begin && less(j, j - 1); --j) swap(j, j - 1);
}

template <class Less, class Swap>
void siftDown(std::int64_t begin, std::int64_t root, std::int64_t size, Less less, Swap swap) {
  for (;;) {
    std::int64_t child = 2 * root + 1;
    if (child >= size) return;
    if (child + 1 < size && less(begin + child, begin + child + 1)) ++child;
    if (!less(begin + root, begin + child)) return;
    swap(begin + root, begin + child);
    root = child;
  }
}

template <class Less, class Swap>
void heapSort(std::int64_t begin, std::int64_t end, Less less, Swap swap) {
  const std::int64_t size = end - begin;
  for (std::int64_t root = size / 2 - 1; root >= 0; --root) siftDown(begin, root, size, less, swap);
  for (std::int64_t last = size - 1; last > 0; --last) {
    swap(begin, begin + last);
    siftDown(begin, 0, last, less, swap);
  }
}

template <class Less, class Swap>
void introSort(std::int64_t begin, std::int64_t end, int depth, Less less, Swap swap) {
  while (end - begin > kShort) {
    if (depth-- == 0) {
      heapSort(begin, end, less, swap);
      return;
    }
    // The median of three goes to the front and serves as the pivot.
    const std::int64_t mid = begin + (end - begin) / 2, last = end - 1;
    if (less(mid, begin)) swap(mid, begin);
    if (less(last, begin)) swap(last, begin);
    if (less(last, mid)) swap(last, mid);
    swap(begin, mid);
    std::int64_t i = begin, j = end;
    for (;;) {
      do ++i;
      while (i < end && less(i, begin));
      do --j;
      while (less(begin, j));
      if (i >= j) break;
      swap(i, j);
    }
    swap(begin, j);
    introSort(begin, j, depth, less, swap);
    begin = j + 1;
  }
  insertionSort(begin, end, less, swap);
}

}  // namespace sort_detail

// Sorts positions 0 .. n-1.
template <class Less, class Swap>
void sortTogether(std::int64_t n, Less less, Swap swap) {
  int depth = 0;
  for (std::int64_t k = n; k > 1; k /= 2) depth += 2;
  sort_detail::introSort(0, n, depth, less, swap);
}

}  // namespace tarvik
