// The frame of every exported function: handle check, clear-at-entry, the environment's memory
// account, the body, and errors turned into a code and a message. No exception leaves it.
#pragma once

#include <exception>
#include <new>

#include "env/env.h"

namespace tarvik {

// Runs body inside env's frame; env has passed its check. context, when given, is the message
// recorded behind a failure that left none of its own.
template <class Body>
int framedCall(Env &env, const char *context, Body &&body) noexcept {
  int code = 0;
  try {
    AccountScope scope(&env.account());
    body();
  } catch (const Error &error) {
    code = error.code();
    if (!error.message().empty()) env.recordError(code, false, "%s", error.message().c_str());
  } catch (const std::bad_alloc &) {
    code = TVK_ERROR_OUT_OF_MEMORY;
  } catch (...) {
    code = TVK_ERROR_NUMERIC;
  }
  if (code != 0 && context) env.recordError(code, false, "%s", context);
  return env.finishCall(code);
}

template <class Body>
int envCall(TVKenv *env, const char *context, Body &&body) noexcept {
  if (const int code = checkEnv(env)) return code;
  env->clearErrorAtEntry();
  return framedCall(*env, context, [&] { body(static_cast<Env &>(*env)); });
}

}  // namespace tarvik
