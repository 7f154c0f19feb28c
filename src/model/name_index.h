// From names to positions: a hash table over the texts of a name list, with at least 1.4 slots a
// name. Of equal names the first wins. The table is dropped when the names change.
//
// What a lookup in a large model costs is cache misses, so it has two at most: one for the slot
// and one for the text. A slot holds a part of the hash, so that no other text is read, and where
// its text begins. Slots come in groups of one cache line that are searched as a whole; a group
// that is nearly always the right one leaves nothing to mispredict, and the misses of successive
// lookups overlap. Lookups in the order of the list, as loops over a model make them, have no
// miss at all: after two neighbours the next name is tried before the table is.
#pragma once

#include <string_view>

#include "model/name_list.h"

namespace tarvik {

std::uint64_t hashName(std::string_view name);

class NameIndex {
 public:
  NameIndex() = default;
  NameIndex(NameIndex &&) = default;  // a copy would refer to the slots of the original
  NameIndex &operator=(NameIndex &&) = default;

  bool built() const { return !slots_.empty(); }
  void build(const NameList &names);
  // The position of a name, -1 when nothing has it.
  int find(const NameList &names, std::string_view name);

 private:
  struct Slot {
    NzIndex text = 0;  // in the pool of the names
    std::uint32_t tag = 0;
    int position = -1;
  };
  static constexpr int kGroupSize = 4;  // slots of a cache line

  Slot *groupOf(std::uint64_t hash) {
    return groups_ + kGroupSize * ((hash & 0xffffffffu) * numGroups_ >> 32);
  }
  Slot *nextGroup(Slot *group) {
    group += kGroupSize;
    return group == groups_ + kGroupSize * numGroups_ ? groups_ : group;
  }
  // The slot that has the name or else the free one where it belongs, null when the table is full.
  Slot *locate(const NameList &names, std::string_view name, std::uint64_t hash);
  void insert(const NameList &names, int position, std::uint64_t hash);

  Vec<Slot> slots_;
  Slot *groups_ = nullptr;  // the first slot at a cache line
  std::uint64_t numGroups_ = 0;
  bool unique_ = true;    // no two names are equal
  int lastFound_ = -2;    // by the last lookup
  bool inOrder_ = false;  // the last lookup found the successor of the one before
};

}  // namespace tarvik
