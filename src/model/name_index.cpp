#include "model/name_index.h"

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

namespace {

constexpr std::uintptr_t kCacheLine = 64;

std::uint32_t tagOf(std::uint64_t hash) { return static_cast<std::uint32_t>(hash >> 32); }

}  // namespace

NameIndex::Slot *NameIndex::locate(const NameList &names, std::string_view name,
                                   std::uint64_t hash) {
  const std::uint32_t tag = tagOf(hash);
  Slot *group = groupOf(hash);
  for (std::uint64_t k = 0; k < numGroups_; ++k, group = nextGroup(group)) {
    unsigned matches = 0;
    for (int s = 0; s < kGroupSize; ++s) matches |= static_cast<unsigned>(group[s].tag == tag) << s;
    for (; matches != 0; matches &= matches - 1) {
      Slot &slot = group[std::countr_zero(matches)];
      if (slot.position >= 0 && names.textEquals(slot.text, name)) return &slot;
    }
    for (int s = 0; s < kGroupSize; ++s)
      if (group[s].position < 0) return &group[s];
  }
  return nullptr;
}

void NameIndex::insert(const NameList &names, int position, std::uint64_t hash) {
  Slot *slot = locate(names, names.get(position), hash);
  if (slot->position >= 0)
    unique_ = false;
  else
    *slot = {names.textStart(position), tagOf(hash), position};
}

// Hashes run ahead of the insertions, so that the slots are on their way when they are needed.
void NameIndex::build(const NameList &names) {
  constexpr int kAhead = 32;
  const auto wanted = static_cast<std::uint64_t>(1.4 * names.size()) + 1;
  const std::uint64_t numGroups = (wanted + kGroupSize - 1) / kGroupSize;
  Vec<Slot> slots(kGroupSize * (numGroups + 1));
  slots_ = std::move(slots);
  numGroups_ = numGroups;
  const auto address = reinterpret_cast<std::uintptr_t>(slots_.data());
  groups_ = slots_.data() + (kCacheLine - address % kCacheLine) % kCacheLine / sizeof(Slot);
  unique_ = true;
  lastFound_ = -2;
  inOrder_ = false;

  std::uint64_t hashes[kAhead];
  const int count = names.size();
  for (int k = 0; k < count + kAhead; ++k) {
    std::uint64_t &hash = hashes[k % kAhead];
    if (k >= kAhead && !names.isBlank(k - kAhead)) insert(names, k - kAhead, hash);
    if (k >= count) continue;
    hash = hashName(names.get(k));
    __builtin_prefetch(groupOf(hash), 1);
  }
}

int NameIndex::find(const NameList &names, std::string_view name) {
  if (name.empty()) return -1;
  const int next = lastFound_ + 1;
  if (inOrder_ && unique_ && next < names.size() && names.textEquals(names.textStart(next), name)) {
    return lastFound_ = next;
  }
  const Slot *slot = locate(names, name, hashName(name));
  const int position = slot ? slot->position : -1;
  if (position < 0) return -1;
  inOrder_ = position == next;
  return lastFound_ = position;
}

}  // namespace tarvik
