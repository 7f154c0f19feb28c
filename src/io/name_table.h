// Names while a file is read: a name list and an open-addressing index over it that grows with
// the list. The hash reads names in words of eight bytes; neighbours in a file are often
// neighbours in the list, which callers use through the guess of find().
#pragma once

#include <cstring>
#include <string_view>

#include "model/name_list.h"

namespace tarvik {

class NameTable {
 public:
  NameTable() { slots_.resize(kFirstSize); }

  int size() const { return names_.size(); }
  const char *get(int k) const { return names_.get(k); }
  bool matches(int k, std::string_view name) const { return name == names_.get(k); }

  // The position of a name, -1 when it is not in the table.
  int find(std::string_view name) const {
    const std::uint64_t hash = hashOf(name);
    const std::uint32_t tag = tagOf(hash);
    for (std::size_t s = hash & mask();; s = (s + 1) & mask()) {
      if (slots_[s].position < 0) return -1;
      if (slots_[s].tag == tag && matches(slots_[s].position, name)) return slots_[s].position;
    }
  }
  // As find(), but looks at the positions guess and guess + 1 first.
  int find(std::string_view name, int guess) const {
    for (int k = guess; k <= guess + 1; ++k)
      if (k >= 0 && k < size() && matches(k, name)) return k;
    return find(name);
  }
  // The position of a name, which is appended when it is new.
  int findOrAdd(std::string_view name) {
    const std::uint64_t hash = hashOf(name);
    const std::uint32_t tag = tagOf(hash);
    std::size_t s = hash & mask();
    for (; slots_[s].position >= 0; s = (s + 1) & mask())
      if (slots_[s].tag == tag && matches(slots_[s].position, name)) return slots_[s].position;
    slots_[s] = {tag, size()};
    names_.append(name);
    if (2 * static_cast<std::size_t>(size()) > slots_.size()) grow();
    return size() - 1;
  }

  // Gives the names away; the table is empty afterwards.
  NameList take() {
    slots_.assign(kFirstSize, Slot());
    return std::move(names_);
  }

 private:
  struct Slot {
    std::uint32_t tag = 0;
    int position = -1;
  };
  static constexpr std::size_t kFirstSize = 256;

  std::size_t mask() const { return slots_.size() - 1; }
  static std::uint32_t tagOf(std::uint64_t hash) { return static_cast<std::uint32_t>(hash >> 32); }

  static std::uint64_t load(const char *p, std::size_t bytes) {
    std::uint64_t word = 0;
    std::memcpy(&word, p, bytes);
    return word;
  }
  static std::uint64_t mix(std::uint64_t a, std::uint64_t b) {
    const auto product = static_cast<unsigned __int128>(a) * b;
    return static_cast<std::uint64_t>(product) ^ static_cast<std::uint64_t>(product >> 64);
  }
  // Multiply-and-fold over whole words, the last of which may overlap the one before.
  static std::uint64_t hashOf(std::string_view name) {
    constexpr std::uint64_t kSeed = 0x9e3779b97f4a7c15u, kOther = 0xe7037ed1a0b428dbu;
    const char *p = name.data();
    std::size_t left = name.size();
    std::uint64_t hash = kSeed ^ left;
    for (; left > 8; p += 8, left -= 8) hash = mix(hash ^ load(p, 8), kOther);
    if (name.size() >= 8)
      hash = mix(hash ^ load(p + left - 8, 8), kOther);
    else if (left >= 4)
      hash = mix(hash ^ load(p, 4) ^ load(p + left - 4, 4) << 32, kOther);
    else if (left > 0)
      hash = mix(hash ^ static_cast<unsigned char>(p[0]) ^
                     static_cast<std::uint64_t>(static_cast<unsigned char>(p[left / 2])) << 8 ^
                     static_cast<std::uint64_t>(static_cast<unsigned char>(p[left - 1])) << 16,
                 kOther);
    return mix(hash, kSeed);
  }

  void grow() {
    Vec<Slot> larger(2 * slots_.size());
    const std::size_t largerMask = larger.size() - 1;
    for (const Slot &slot : slots_) {
      if (slot.position < 0) continue;
      std::size_t s = hashOf(names_.get(slot.position)) & largerMask;
      while (larger[s].position >= 0) s = (s + 1) & largerMask;
      larger[s] = slot;
    }
    slots_ = std::move(larger);
  }

  NameList names_;
  Vec<Slot> slots_;
};

}  // namespace tarvik
