#include "env/param_store.h"

#include <algorithm>
#include <cstring>

#include "base/memory.h"

namespace tarvik {

namespace {

constexpr int kTextRows[] = {
#define TVK_INT(name, def, min, max, flags)
#define TVK_DBL(name, def, min, max, flags)
#define TVK_STR(name, def, flags) static_cast<int>(Param::name),
#define TVK_END_PUBLIC()
#include "env/param_table.def"
#undef TVK_INT
#undef TVK_DBL
#undef TVK_STR
#undef TVK_END_PUBLIC
};

const char *duplicate(const char *text) {
  const std::size_t bytes = std::strlen(text) + 1;
  char *copy = static_cast<char *>(accountAllocate(currentAccount(), bytes));
  std::memcpy(copy, text, bytes);
  return copy;
}

}  // namespace

ParamStore::ParamStore() noexcept {
  for (const int row : kTextRows) values_[row].s = paramRow(row).stringDef;
  reset();
}

ParamStore::ParamStore(const ParamStore &other) : ParamStore() {
  for (int row = 0; row < kNumParams; ++row)
    if (paramRow(row).type != ParamType::Str) values_[row] = other.values_[row];
  std::copy(other.flags_, other.flags_ + kNumParams, flags_);
  std::copy(other.limits_, other.limits_ + kNumParams, limits_);
  for (const int row : kTextRows) setStr(row, other.values_[row].s);
}

ParamStore::~ParamStore() {
  for (const int row : kTextRows) releaseText(row);
}

void ParamStore::releaseText(int row) {
  if (values_[row].s != paramRow(row).stringDef) accountRelease(const_cast<char *>(values_[row].s));
}

void ParamStore::setStr(int row, const char *value) {
  if (!value) value = "";
  if (value == values_[row].s) return;
  const char *def = paramRow(row).stringDef;
  const char *next = std::strcmp(value, def) == 0 ? def : duplicate(value);
  releaseText(row);
  values_[row].s = next;
}

void ParamStore::reset() noexcept {
  for (int row = 0; row < kNumParams; ++row) {
    const ParamRow &entry = paramRow(row);
    flags_[row] = entry.flags;
    limits_[row] = entry.max;
    switch (entry.type) {
      case ParamType::Int:
        values_[row].i = static_cast<int>(entry.def);
        break;
      case ParamType::Dbl:
        values_[row].d = entry.def;
        break;
      case ParamType::Str:
        releaseText(row);
        values_[row].s = entry.stringDef;
        break;
    }
  }
}

double ParamStore::resetTarget(int row) const { return std::min(paramRow(row).def, limits_[row]); }

bool ParamStore::atResetTarget(int row) const {
  switch (paramRow(row).type) {
    case ParamType::Int:
      return values_[row].i == static_cast<int>(resetTarget(row));
    case ParamType::Dbl:
      return values_[row].d == resetTarget(row);
    default:
      return std::strcmp(values_[row].s, paramRow(row).stringDef) == 0;
  }
}

bool ParamStore::sameValue(int row, const ParamStore &other) const {
  switch (paramRow(row).type) {
    case ParamType::Int:
      return values_[row].i == other.values_[row].i;
    case ParamType::Dbl:
      return values_[row].d == other.values_[row].d;
    default:
      return std::strcmp(values_[row].s, other.values_[row].s) == 0;
  }
}

}  // namespace tarvik
