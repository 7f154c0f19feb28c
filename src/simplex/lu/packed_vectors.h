// A family of sparse vectors, one for every row of the basis, kept in one pool: the columns of
// L or of U, or their rows. A vector is a slice of the pool with spare room behind it. Vectors
// are first written one after the other; later a vector can lose entries, and one that outgrows
// its room moves to the end of the pool. Its new room is a share of its length, so the garbage
// left behind is within a constant factor of the live entries and is never collected: the
// next factorization starts with an empty pool anyway.
//
// The pool's memory is kept between factorizations.
#pragma once

#include <algorithm>

#include "base/memory.h"
#include "base/types.h"
#include "simplex/lu/find_index.h"
#include "simplex/lu/lu_constants.h"

namespace tarvik::lu {

template <class Real>
class PackedVectors {
 public:
  struct Slice {
    NzIndex start = 0;
    int length = 0;
    int room = 0;
  };

  // Makes m empty vectors.
  void reset(int m) {
    slice_.assign(static_cast<std::size_t>(m), Slice());
    filled_.assign(static_cast<std::size_t>(m), 0);
    used_ = 0;
    numNz_ = 0;
  }
  const Slice &operator[](int i) const { return slice_[i]; }
  const Slice *slices() const { return slice_.data(); }
  // A mark per vector, nonzero unless it is empty: a byte where a slice is a cache line.
  const char *filled() const { return filled_.data(); }
  const int *index() const { return index_.data(); }
  const Real *value() const { return value_.data(); }
  Real *value() { return value_.data(); }
  NzIndex numNz() const { return numNz_; }

  // Writing in sequence: open a vector, push its entries, close it. One is open at a time.
  void open(int i) { slice_[i].start = used_; }
  void push(int index, Real value) {
    if (used_ == static_cast<NzIndex>(index_.size())) grow(1);
    index_[used_] = index;
    value_[used_++] = value;
  }
  void close(int i) {
    Slice &slice = slice_[i];
    slice.length = slice.room = static_cast<int>(used_ - slice.start);
    numNz_ += slice.length;
    filled_[i] = slice.length > 0;
  }
  // Reserves an empty slice of the given room.
  void allot(int i, int room) {
    slice_[i] = {used_, 0, room};
    filled_[i] = 0;
    if (used_ + room > static_cast<NzIndex>(index_.size())) grow(room);
    used_ += room;
  }
  // Adds an entry within the allotted room.
  void put(int i, int index, Real value) {
    Slice &slice = slice_[i];
    const NzIndex at = slice.start + slice.length++;
    index_[at] = index;
    value_[at] = value;
    filled_[i] = 1;
    ++numNz_;
  }
  // Adds an entry and moves the vector when it is full.
  void append(int i, int index, Real value) {
    if (slice_[i].length == slice_[i].room) move(i);
    put(i, index, value);
  }
  // Removes an entry that must be there; the last one takes its place.
  void remove(int i, int index) {
    Slice &slice = slice_[i];
    int *const first = index_.data() + slice.start;
    const int at = findIndex(first, slice.length, index);
    --slice.length;
    --numNz_;
    filled_[i] = slice.length > 0;
    first[at] = first[slice.length];
    value_[slice.start + at] = value_[slice.start + slice.length];
  }
  void clear(int i) {
    numNz_ -= slice_[i].length;
    slice_[i].length = 0;
    filled_[i] = 0;
  }
  // Sees to it that the (empty) vector can take so many entries without moving.
  void makeRoom(int i, int room) {
    if (slice_[i].room < room) allot(i, room);
  }

 private:
  void grow(NzIndex extra) {
    const NzIndex old = static_cast<NzIndex>(index_.size());
    const std::size_t size = static_cast<std::size_t>(std::max(used_ + extra, old + old / 2 + 64));
    index_.resize(size);
    value_.resize(size);
  }
  void move(int i) {
    const Slice old = slice_[i];
    allot(i, old.length + old.length / kRoomShare + kRoomExtra);
    Slice &slice = slice_[i];
    std::copy_n(index_.begin() + old.start, old.length, index_.begin() + slice.start);
    std::copy_n(value_.begin() + old.start, old.length, value_.begin() + slice.start);
    slice.length = old.length;
    filled_[i] = old.length > 0;
  }

  Vec<Slice> slice_;
  Vec<char> filled_;
  RawVec<int> index_;
  RawVec<Real> value_;
  NzIndex used_ = 0;   // end of the occupied part of the pool
  NzIndex numNz_ = 0;  // live entries
};

}  // namespace tarvik::lu
