// Small steps of an update on one vector; none of them allocates.
#pragma once

#include <utility>

#include "base/memory.h"
#include "model/pending_changes.h"

namespace tarvik {

// Keeps the entries that are not marked, in order.
template <class T>
void removeEntries(Vec<T> &values, const Vec<char> &drop) noexcept {
  std::size_t kept = 0;
  for (std::size_t k = 0; k < values.size(); ++k) {
    if (drop[k]) continue;
    if (kept != k) values[kept] = std::move(values[k]);
    ++kept;
  }
  values.erase(values.begin() + static_cast<std::ptrdiff_t>(kept), values.end());
}

// Stores queued values in order, so that the last one of an element wins.
template <class T, class Target, class Convert>
void storeValues(const ValueQueue<T> &queue, Target &&target, Convert &&convert) noexcept {
  for (std::size_t k = 0; k < queue.index.size(); ++k)
    target[queue.index[k]] = convert(queue.value[k]);
}

template <class T>
void storeValues(const ValueQueue<T> &queue, Vec<T> &target) noexcept {
  storeValues(queue, target, [](T value) { return value; });
}

}  // namespace tarvik
