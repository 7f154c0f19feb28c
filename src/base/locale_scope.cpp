#include "base/locale_scope.h"

#include <cstring>
#include <new>

namespace tarvik {

LocaleScope::LocaleScope(bool enabled) {
  if (!enabled) return;
  const char *name = setlocale(LC_NUMERIC, nullptr);
  if (uselocale(nullptr) == LC_GLOBAL_LOCALE && name && std::strcmp(name, "C") == 0) return;
  created_ = newlocale(LC_NUMERIC_MASK, "C", nullptr);
  if (!created_) throw std::bad_alloc();
  previous_ = uselocale(created_);
}

LocaleScope::~LocaleScope() {
  if (!created_) return;
  uselocale(previous_);
  freelocale(created_);
}

}  // namespace tarvik
