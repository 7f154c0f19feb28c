// What a user callback gets to see: one context for an environment that has a callback. It knows
// which model is being optimized, where the callback is, and the values that may be asked for
// there. The environment reaches it through the hooks of its callback slot.
#pragma once

#include "base/memory.h"
#include "base/solve_control.h"
#include "env/env.h"
#include "model/model.h"

namespace tarvik {

struct CallbackContext : public AccountAllocated {
  static constexpr int kMessageBytes = 513;
  static constexpr int kNowhere = -1;

  std::uint32_t marker = kCallbackMarker;
  Env *env = nullptr;
  TVKcallback function = nullptr;  // null after the callback was taken away
  void *userData = nullptr;

  // --- the optimization that runs; null and zero between optimizations ---
  TVKmodel *model = nullptr;
  const SolveControl *control = nullptr;
  double objSense = 1;
  int abortCode = 0;  // the first nonzero answer of the callback

  // --- the invocation that runs ---
  int where = kNowhere;
  const SimplexProgress *simplex = nullptr;
  const PresolveProgress *presolve = nullptr;
  char message[kMessageBytes] = "";

  // --- statistics ---
  double calls = 0;
  double seconds = 0;
};

// The context of an environment, or null without one.
CallbackContext *callbackContext(const Env &env);
// Registers a callback, making the context first; null takes the callback away and keeps the
// context.
void setUserCallback(Env &env, TVKcallback callback, void *userData);

// Calls the user's function; false when the optimization is to be aborted. An error message that
// was pending before survives what the function calls.
bool invokeCallback(CallbackContext &context, int where);

}  // namespace tarvik
