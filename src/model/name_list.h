// Names in one pool: entry k is the text at start[k], NUL-terminated. An empty list means that
// no name was ever given; an empty text asks for the default name. Replacing and erasing entries
// leaves garbage in the pool, which compact() removes once it outweighs the living texts.
#pragma once

#include <algorithm>
#include <cstring>
#include <string_view>

#include "base/memory.h"
#include "base/types.h"

namespace tarvik {

class NameList {
 public:
  int size() const { return static_cast<int>(start_.size()); }
  bool empty() const { return start_.empty(); }
  const char *get(int k) const { return pool_.data() + start_[k]; }
  bool isBlank(int k) const { return *get(k) == '\0'; }
  std::size_t poolBytes() const { return pool_.size(); }
  // Where the text of an entry begins in the pool, and whether the text there is the given one.
  NzIndex textStart(int k) const { return start_[k]; }
  bool textEquals(NzIndex start, std::string_view text) const {
    return pool_.size() - static_cast<std::size_t>(start) > text.size() &&
           std::memcmp(&pool_[start], text.data(), text.size()) == 0 &&
           pool_[start + static_cast<NzIndex>(text.size())] == '\0';
  }

  // Without reallocation, and so without a throw, once reserve() made room.
  void append(std::string_view name) {
    start_.push_back(static_cast<NzIndex>(pool_.size()));
    pool_.insert(pool_.end(), name.begin(), name.end());
    pool_.push_back('\0');
  }
  void replace(int k, std::string_view name) {
    garbage_ += std::strlen(get(k)) + 1;
    start_[k] = static_cast<NzIndex>(pool_.size());
    pool_.insert(pool_.end(), name.begin(), name.end());
    pool_.push_back('\0');
  }
  // Room for so many names and bytes (terminators included) in total; grows geometrically.
  void reserve(std::size_t names, std::size_t bytes) {
    if (names > start_.capacity()) start_.reserve(std::max(names, start_.capacity() * 3 / 2));
    if (bytes > pool_.capacity()) pool_.reserve(std::max(bytes, pool_.capacity() * 3 / 2));
  }
  // Drops the marked entries; the survivors keep their order.
  void erase(const Vec<char> &dropped) noexcept {
    std::size_t kept = 0;
    for (std::size_t k = 0; k < start_.size(); ++k) {
      if (dropped[k])
        garbage_ += std::strlen(get(static_cast<int>(k))) + 1;
      else
        start_[kept++] = start_[k];
    }
    start_.resize(kept);
  }
  // Gives the garbage back when it is the larger part of the pool.
  void compact() {
    if (garbage_ * 2 <= pool_.size()) return;
    NameList fresh;
    fresh.reserve(start_.size(), pool_.size() - garbage_);
    for (int k = 0; k < size(); ++k) fresh.append(get(k));
    *this = std::move(fresh);
  }
  void clear() {
    pool_.clear();
    start_.clear();
    garbage_ = 0;
  }

 private:
  Vec<char> pool_;
  Vec<NzIndex> start_;
  std::size_t garbage_ = 0;
};

}  // namespace tarvik
