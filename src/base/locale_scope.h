// Switches the calling thread to the "C" numeric locale for the life of the scope, so that
// numbers are read and written with a decimal point.
#pragma once

#include <locale.h>

namespace tarvik {

class LocaleScope {
 public:
  // Throws std::bad_alloc when the locale cannot be created.
  explicit LocaleScope(bool enabled = true);
  ~LocaleScope();
  LocaleScope(const LocaleScope &) = delete;
  LocaleScope &operator=(const LocaleScope &) = delete;

 private:
  locale_t created_ = nullptr;
  locale_t previous_ = nullptr;
};

}  // namespace tarvik
