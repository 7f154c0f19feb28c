// What a user callback gets to see: one context for an environment that has a callback. It knows
// which model is being optimized, where the callback is, and the values that may be asked for
// there. The environment reaches it through the hooks of its callback slot.
#pragma once

#include <functional>

#include "base/memory.h"
#include "base/solve_control.h"
#include "env/env.h"
#include "model/model.h"

namespace tarvik {

// What a mixed-integer search tells; objectives in the minimization sense.
struct MipCallbackValues {
  double bestObjective = kUserInf, bestBound = -kUserInf;
  double explored = 0, unexplored = 0, iterations = 0;
  double nodeBound = -kUserInf;  // of the node that was processed last
  int solutions = 0, cuts = 0, phase = 0;
  int depth = 0, infeasibilities = 0, workers = 1;
  int solutionsTold = 0;  // to the callback, before this one
  // At a new solution: its objective. There and at a node: the point, empty where there is none.
  double objective = kUserInf;
  std::function<const Vec<double> &()> point;
  int nodeStatus = 0;
};

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
  const MipCallbackValues *mip = nullptr;
  double progressTime = 0;  // seconds into the optimization at the latest invocation
  char message[kMessageBytes] = "";

  // --- statistics ---
  double calls = 0;
  double seconds = 0;
  double lastCall = 0;  // when the callback was called last
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
