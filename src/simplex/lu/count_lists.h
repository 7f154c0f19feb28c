// Doubly linked lists of rows (or columns) by their number of entries: the Markowitz search
// walks them from the shortest on.
#pragma once

#include "base/memory.h"

namespace tarvik::lu {

class CountLists {
 public:
  // Room for so many items with counts up to maxCount; all unlinked.
  void reset(int items, int maxCount) {
    first_.assign(static_cast<std::size_t>(maxCount) + 1, -1);
    next_.resize(static_cast<std::size_t>(items));
    previous_.assign(static_cast<std::size_t>(items), kUnlinked);
  }
  int first(int count) const { return first_[count]; }
  int next(int item) const { return next_[item]; }
  bool linked(int item) const { return previous_[item] != kUnlinked; }
  void link(int item, int count) {
    const int follower = first_[count];
    next_[item] = follower;
    previous_[item] = -2 - count;  // the head of its list
    if (follower >= 0) previous_[follower] = item;
    first_[count] = item;
  }
  void unlink(int item) {
    const int before = previous_[item], after = next_[item];
    if (before >= 0)
      next_[before] = after;
    else
      first_[-2 - before] = after;
    if (after >= 0) previous_[after] = before;
    previous_[item] = kUnlinked;
  }

 private:
  static constexpr int kUnlinked = -1;
  Vec<int> first_, next_, previous_;
};

}  // namespace tarvik::lu
