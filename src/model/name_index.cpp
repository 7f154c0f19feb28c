#include "model/name_index.h"

#include <algorithm>
#include <bit>
#include <cstring>

namespace tarvik {

// Words of eight bytes mixed by multiplication (after Yi's wyhash, 2019, in its simplest form).
std::uint64_t hashName(std::string_view name) {
  constexpr std::uint64_t kMix = 0x9e3779b97f4a7c15u;
  std::uint64_t hash = name.size() * kMix;
  const char *p = name.data();
  std::size_t left = name.size();
  for (; left >= 8; p += 8, left -= 8) {
    std::uint64_t word;
    std::memcpy(&word, p, 8);
    hash = (hash ^ word) * kMix;
    hash ^= hash >> 32;
  }
  if (left > 0) {
    std::uint64_t word = 0;
    std::memcpy(&word, p, left);
    hash = (hash ^ word) * kMix;
    hash ^= hash >> 32;
  }
  hash *= kMix;
  return hash ^ (hash >> 29);
}

void NameIndex::build(const NameList &names) {
  const std::size_t wanted = static_cast<std::size_t>(1.4 * names.size()) + 1;
  const std::size_t size = std::bit_ceil(std::max<std::size_t>(wanted, 8));
  Vec<Slot> slots(size);
  for (int k = 0; k < names.size(); ++k) {
    const std::string_view name = names.get(k);
    if (name.empty()) continue;
    const std::uint64_t hash = hashName(name);
    const std::uint32_t tag = static_cast<std::uint32_t>(hash >> 32);
    std::size_t s = hash & (size - 1);
    while (slots[s].position >= 0 && (slots[s].tag != tag || name != names.get(slots[s].position)))
      s = (s + 1) & (size - 1);
    if (slots[s].position < 0) slots[s] = {tag, k};
  }
  mask_ = size - 1;
  slots_ = std::move(slots);
}

int NameIndex::find(const NameList &names, std::string_view name) const {
  if (name.empty()) return -1;
  const std::uint64_t hash = hashName(name);
  const std::uint32_t tag = static_cast<std::uint32_t>(hash >> 32);
  for (std::size_t s = hash & mask_; slots_[s].position >= 0; s = (s + 1) & mask_)
    if (slots_[s].tag == tag && name == names.get(slots_[s].position)) return slots_[s].position;
  return -1;
}

}  // namespace tarvik
