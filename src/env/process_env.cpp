#include "env/process_env.h"

#include <cstdio>
#include <cstdlib>
#include <mutex>

#include "base/locale_scope.h"

namespace tarvik {

namespace {

std::mutex &processMutex() {
  static std::mutex mutex;
  return mutex;
}

}  // namespace

bool processVariable(const char *name, int &value) {
  std::lock_guard lock(processMutex());
  const char *text = std::getenv(name);
  return text && std::sscanf(text, "%d", &value) == 1;
}

bool processVariable(const char *name, double &value) {
  const LocaleScope locale;
  std::lock_guard lock(processMutex());
  const char *text = std::getenv(name);
  return text && std::sscanf(text, "%lf", &value) == 1;
}

bool processVariableIsSet(const char *name) {
  std::lock_guard lock(processMutex());
  return std::getenv(name) != nullptr;
}

void setProcessVariable(const char *name, const char *value) {
  std::lock_guard lock(processMutex());
  setenv(name, value, 0);
}

void unsetProcessVariable(const char *name) {
  std::lock_guard lock(processMutex());
  unsetenv(name);
}

}  // namespace tarvik
