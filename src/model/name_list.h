// Names in one pool: entry k is the text at start[k], NUL-terminated. An empty list means that
// no name was ever given; an empty text asks for the default name.
#pragma once

#include <string_view>

#include "base/memory.h"
#include "base/types.h"

namespace tarvik {

class NameList {
 public:
  int size() const { return static_cast<int>(start_.size()); }
  bool empty() const { return start_.empty(); }
  const char *get(int k) const { return pool_.data() + start_[k]; }
  void append(std::string_view name) {
    start_.push_back(static_cast<NzIndex>(pool_.size()));
    pool_.insert(pool_.end(), name.begin(), name.end());
    pool_.push_back('\0');
  }
  void reserve(std::size_t names, std::size_t bytes) {
    start_.reserve(names);
    pool_.reserve(bytes);
  }
  void clear() {
    pool_.clear();
    start_.clear();
  }

 private:
  Vec<char> pool_;
  Vec<NzIndex> start_;
};

}  // namespace tarvik
