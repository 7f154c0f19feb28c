// From names to positions: open addressing over the texts of a name list, with at least 1.4
// slots a name. Of equal names the first wins. The index holds positions only; it is dropped
// when the names change.
#pragma once

#include <string_view>

#include "model/name_list.h"

namespace tarvik {

std::uint64_t hashName(std::string_view name);

class NameIndex {
 public:
  bool built() const { return !slots_.empty(); }
  void build(const NameList &names);
  // The position of a name, -1 when nothing has it.
  int find(const NameList &names, std::string_view name) const;

 private:
  struct Slot {
    std::uint32_t tag = 0;
    int position = -1;
  };
  std::size_t mask_ = 0;
  Vec<Slot> slots_;
};

}  // namespace tarvik
