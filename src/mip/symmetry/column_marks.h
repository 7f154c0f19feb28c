// What tells columns apart along a path of decisions: the bounds that decisions have set. Columns
// without any are alike. Marks are undone in the reverse order.
#pragma once

#include "mip/domain.h"

namespace tarvik {

class ColumnMarks {
 public:
  explicit ColumnMarks(int numCols) : lower_(numCols, -kInf), upper_(numCols, kInf) {}

  double lower(int col) const { return lower_[col]; }
  double upper(int col) const { return upper_[col]; }
  bool alike(int a, int b) const { return lower_[a] == lower_[b] && upper_[a] == upper_[b]; }
  const Vec<int> &marked() const { return marked_; }

  void add(const BoundChange &change) {
    const int j = change.col;
    const bool isNew = lower_[j] == -kInf && upper_[j] == kInf;
    trail_.push_back({j, lower_[j], upper_[j], isNew});
    if (isNew) marked_.push_back(j);
    if (change.side == BoundSide::Lower)
      lower_[j] = std::max(lower_[j], change.value);
    else
      upper_[j] = std::min(upper_[j], change.value);
  }
  std::size_t size() const { return trail_.size(); }
  void undoTo(std::size_t size) {
    while (trail_.size() > size) {
      const Entry &entry = trail_.back();
      lower_[entry.col] = entry.lower;
      upper_[entry.col] = entry.upper;
      if (entry.isNew) marked_.pop_back();
      trail_.pop_back();
    }
  }

 private:
  struct Entry {
    int col;
    double lower, upper;
    bool isNew;
  };

  Vec<double> lower_, upper_;
  Vec<int> marked_;
  Vec<Entry> trail_;
};

}  // namespace tarvik
