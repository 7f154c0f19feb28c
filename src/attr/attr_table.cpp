#include "attr/attr_table.h"

#include <string>

#include "model/name_index.h"

namespace tarvik {

namespace {

constexpr std::size_t kMaxKey = 512;

// At most 512 characters, leading underscores kept, later ones dropped, letters in upper case.
std::string_view normalise(const char *name, char (&key)[kMaxKey]) {
  std::size_t length = 0;
  bool leading = true;
  for (std::size_t k = 0; k < kMaxKey && name[k]; ++k) {
    const char c = name[k];
    if (c == '_' && !leading) continue;
    if (c != '_') leading = false;
    key[length++] = c >= 'a' && c <= 'z' ? static_cast<char>(c - 'a' + 'A') : c;
  }
  return {key, length};
}

template <AttrType type>
auto emptyHandlers() {
  if constexpr (type == AttrType::Char)
    return AttrHandlers<char>();
  else if constexpr (type == AttrType::Int)
    return AttrHandlers<int>();
  else if constexpr (type == AttrType::Dbl)
    return AttrHandlers<double>();
  else
    return AttrHandlers<const char *>();
}

}  // namespace

AttrTable::AttrTable()
    : rows_{{
#define TVK_ATTR(name, type, scope, settable, result) \
  {#name,                                             \
   AttrType::type,                                    \
   AttrScope::scope,                                  \
   settable != 0,                                     \
   result != 0,                                       \
   nullptr,                                           \
   emptyHandlers<AttrType::type>()},
#include "attr/attr_table.def"
#undef TVK_ATTR
      }} {
  slots_.fill(-1);
  for (int r = 0; r < kNumAttrs; ++r) {
    char key[kMaxKey];
    keys_[r] = normalise(rows_[r].name, key);
    std::size_t s = hashName(keys_[r]) & (kSlots - 1);
    while (slots_[s] >= 0) s = (s + 1) & (kSlots - 1);
    slots_[s] = static_cast<short>(r);
  }
  registerSizeAttrs(*this);
  registerDataAttrs(*this);
  registerSettingAttrs(*this);
  registerObjectiveAttrs(*this);
  registerScenarioAttrs(*this);
  registerResultAttrs(*this);
  registerStatisticsAttrs(*this);
  registerQualityAttrs(*this);
}

const AttrRow *AttrTable::find(const char *name) const {
  char buffer[kMaxKey];
  const std::string_view key = normalise(name, buffer);
  for (std::size_t s = hashName(key) & (kSlots - 1); slots_[s] >= 0; s = (s + 1) & (kSlots - 1))
    if (keys_[slots_[s]] == key) return &rows_[slots_[s]];
  return nullptr;
}

const AttrTable &attrTable() {
  static const AttrTable table;
  return table;
}

}  // namespace tarvik
