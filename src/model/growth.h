// Geometric growth of vectors ahead of time: an edit first makes room everywhere, which may
// throw and changes nothing visible, and then appends without a throw.
#pragma once

#include <algorithm>
#include <limits>

#include "base/memory.h"

namespace tarvik {

// Room for `extra` more entries; slack is added on top when the vector has to grow.
template <class T>
void makeRoom(Vec<T> &vector, std::size_t extra, std::size_t slack = 0) {
  if (vector.capacity() - vector.size() >= extra) return;
  const std::size_t needed = vector.size() + extra + slack;
  vector.reserve(std::max(needed, vector.capacity() + vector.capacity() / 2));
}

// Room for a total of `size` entries.
template <class T>
void makeRoomFor(Vec<T> &vector, std::size_t size) {
  if (size > vector.size()) makeRoom(vector, size - vector.size());
}

// A size with some room for later additions.
inline std::size_t withRoom(std::size_t size) { return size + size / 32; }

// Gives back what a vector has reserved beyond such room.
template <class T>
void trim(Vec<T> &vector) {
  const std::size_t wanted = withRoom(vector.size());
  if (vector.capacity() <= wanted) return;
  Vec<T> trimmed;
  trimmed.reserve(wanted);
  trimmed.assign(vector.begin(), vector.end());
  vector.swap(trimmed);
}

}  // namespace tarvik
