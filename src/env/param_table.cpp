#include "env/param_table.h"

#include <array>
#include <cstdint>
#include <cstring>

namespace tarvik {

namespace {

constexpr ParamRow kRows[] = {
#define TVK_INT(name, def, min, max, flags) {#name, ParamType::Int, flags, def, min, max, ""},
#define TVK_DBL(name, def, min, max, flags) {#name, ParamType::Dbl, flags, def, min, max, ""},
#define TVK_STR(name, def, flags) {#name, ParamType::Str, flags, 0, 0, 0, def},
#define TVK_END_PUBLIC()
#include "env/param_table.def"
#undef TVK_INT
#undef TVK_DBL
#undef TVK_STR
#undef TVK_END_PUBLIC
};
static_assert(sizeof kRows / sizeof kRows[0] == kNumParams);

constexpr int kMaxName = 512;

// Normalises name into out (kMaxName + 1 bytes) and returns its FNV-1a hash; length is set.
constexpr std::uint32_t normalize(const char *name, char *out, int &length) {
  std::uint32_t hash = 2166136261u;
  length = 0;
  bool leading = true;
  for (int k = 0; k < kMaxName && name[k] != '\0'; ++k) {
    char c = name[k];
    if (c == '_' && !leading) continue;
    if (c != '_') leading = false;
    if (c >= 'a' && c <= 'z') c = static_cast<char>(c - 'a' + 'A');
    out[length++] = c;
    hash = (hash ^ static_cast<unsigned char>(c)) * 16777619u;
  }
  out[length] = '\0';
  return hash ^ (hash >> 15);
}

constexpr int kSlots = 2048;  // a power of two, several times the number of rows

struct NameIndex {
  std::array<std::int16_t, kSlots> row;
  std::array<std::uint32_t, kNumParams> hash;
};

constexpr NameIndex buildIndex() {
  NameIndex index{};
  for (auto &row : index.row) row = -1;
  for (int row = 0; row < kNumParams; ++row) {
    char text[kMaxName + 1] = {};
    int length = 0;
    index.hash[row] = normalize(kRows[row].name, text, length);
    unsigned slot = index.hash[row] % kSlots;
    while (index.row[slot] >= 0) slot = (slot + 1) % kSlots;
    index.row[slot] = static_cast<std::int16_t>(row);
  }
  return index;
}

constexpr NameIndex kIndex = buildIndex();

bool equalsNormalized(const char *name, const char *normalized) {
  char text[kMaxName + 1];
  int length = 0;
  normalize(name, text, length);
  return std::strcmp(text, normalized) == 0;
}

}  // namespace

const ParamRow &paramRow(int row) { return kRows[row]; }

int findParamRow(const char *name) {
  char text[kMaxName + 1];
  int length = 0;
  const std::uint32_t hash = normalize(name, text, length);
  for (unsigned slot = hash % kSlots; kIndex.row[slot] >= 0; slot = (slot + 1) % kSlots) {
    const int row = kIndex.row[slot];
    if (kIndex.hash[row] == hash && equalsNormalized(kRows[row].name, text)) return row;
  }
  return -1;
}

}  // namespace tarvik
