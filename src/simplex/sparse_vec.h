// A sparse working vector: a dense value array with a list of the positions that may be nonzero.
// With valid() false the list is unknown and the vector must be treated as dense. Positions
// outside the list hold exact zeros; positions in the list may hold zeros too (kTiny marks a
// cancelled entry that must stay in the list exactly once).
#pragma once

#include "base/memory.h"

namespace tarvik {

template <class Real>
struct SparseVec {
  int size = 0;
  int count = 0;  // entries of the list, or -1 when it is unknown
  Vec<Real> value;
  RawVec<int> index;

  // A result that cancels to (near) zero is stored as kTiny, so that "value != 0" says whether
  // a position is in the list.
  static constexpr Real kTiny = Real(1e-100);

  void resize(int n) {
    size = n;
    count = 0;
    value.assign(static_cast<std::size_t>(n), Real(0));
    // One more than entries: rebuild() writes a place ahead.
    index.resize(static_cast<std::size_t>(n) + 1);
  }
  bool valid() const { return count >= 0; }
  double density() const { return size > 0 ? (valid() ? double(count) / size : 1.0) : 0.0; }

  void clear() {
    if (count < 0 || count > size / 4) {
      for (int i = 0; i < size; ++i) value[i] = Real(0);
    } else {
      for (int k = 0; k < count; ++k) value[index[k]] = Real(0);
    }
    count = 0;
  }
  // Adds to a position; keeps the list right (the list must be valid).
  void add(int i, Real x) {
    if (value[i] == Real(0)) index[count++] = i;
    const Real sum = value[i] + x;
    value[i] = (sum < Real(1e-14) && sum > Real(-1e-14)) ? kTiny : sum;
  }
  void set(int i, Real x) {
    if (value[i] == Real(0)) index[count++] = i;
    value[i] = x;
  }
  // Calls f(position, value) for every nonzero.
  template <class F>
  void forEach(F &&f) const {
    if (count < 0) {
      for (int i = 0; i < size; ++i)
        if (value[i] != Real(0)) f(i, value[i]);
    } else {
      for (int k = 0; k < count; ++k) f(index[k], value[index[k]]);
    }
  }
  // Entries that a pass over the vector touches.
  double passLength() const { return count < 0 ? size : count; }
  // Rebuilds the list from the values, dropping entries not above the tolerance.
  void rebuild(Real dropTol) {
    int found = 0;
    Real *values = value.data();
    int *list = index.data();
    // No branch on the values: they are unpredictable.
    for (int i = 0; i < size; ++i) {
      const Real v = values[i];
      const bool kept = v > dropTol || -v > dropTol;
      list[found] = i;
      found += kept;
      values[i] = kept ? v : Real(0);
    }
    count = found;
  }
  // Drops small entries from a valid list.
  void tighten(Real dropTol) {
    if (count < 0) return rebuild(dropTol);
    int kept = 0;
    for (int k = 0; k < count; ++k) {
      const int i = index[k];
      const Real a = value[i] < 0 ? -value[i] : value[i];
      if (a > dropTol)
        index[kept++] = i;
      else
        value[i] = Real(0);
    }
    count = kept;
  }
  void copyFrom(const SparseVec &other) {
    clear();
    if (other.count < 0) {
      value = other.value;
      count = -1;
      return;
    }
    count = other.count;
    for (int k = 0; k < count; ++k) {
      const int i = other.index[k];
      index[k] = i;
      value[i] = other.value[i];
    }
  }
};

}  // namespace tarvik
