#include "callback/callback_context.h"

#include <algorithm>
#include <cstring>
#include <memory>

#include "env/env_state.h"
#include "env/module_hooks.h"

namespace tarvik {

namespace {

// Polling does not come more often.
constexpr double kPollingSeconds = 0.001;

CallbackContext &contextOf(void *context) { return *static_cast<CallbackContext *>(context); }

void deliverMessage(void *slot, Env &, const char *text) {
  CallbackContext &context = contextOf(slot);
  // What the callback itself logs is not reported to it again.
  if (!context.function || context.where != CallbackContext::kNowhere) return;
  std::snprintf(context.message, sizeof context.message, "%s", text);
  invokeCallback(context, TVK_CB_MESSAGE);
}

Env *guardParameter(void *slot, Env &, bool callbackSettable) {
  CallbackContext &context = contextOf(slot);
  if (context.where == CallbackContext::kNowhere || !context.model) return nullptr;
  if (!callbackSettable)
    throw Error(TVK_ERROR_INVALID_ARGUMENT, "Parameter not settable in callback");
  if (context.where == TVK_CB_POLLING)
    throw Error(TVK_ERROR_INVALID_ARGUMENT,
                "In a polling callback parameter changes are not allowed");
  return &context.model->env();
}

void *inheritContext(void *slot, Env &copy);
void releaseContext(void *slot) {
  CallbackContext &context = contextOf(slot);
  context.marker = 0;
  delete &context;
}

constexpr CallbackHooks kHooks{deliverMessage, guardParameter, inheritContext, releaseContext};

std::unique_ptr<CallbackContext> newContext(Env &env, TVKcallback function, void *userData) {
  auto context = std::make_unique<CallbackContext>();
  context->env = &env;
  context->function = function;
  context->userData = userData;
  return context;
}

void *inheritContext(void *slot, Env &copy) {
  const CallbackContext &source = contextOf(slot);
  return newContext(copy, source.function, source.userData).release();
}

// Keeps the environment's pending error over the calls that a callback makes.
class ErrorKeeper {
 public:
  explicit ErrorKeeper(Env &env) : state_(env.state()), lastError_(state_.lastError) {
    std::memcpy(message_, state_.message, sizeof message_);
  }
  ~ErrorKeeper() {
    std::memcpy(state_.message, message_, sizeof message_);
    state_.lastError = lastError_;
  }
  ErrorKeeper(const ErrorKeeper &) = delete;
  ErrorKeeper &operator=(const ErrorKeeper &) = delete;

 private:
  EnvState &state_;
  char message_[EnvState::kMessageBytes];
  int lastError_;
};

bool isToEnd(const Env &env) {
  for (const int which : {0, 1, 2})
    if (__atomic_load_n(env.stopFlag(which), __ATOMIC_RELAXED) != 0) return true;
  return false;
}

}  // namespace

CallbackContext *callbackContext(const Env &env) {
  return static_cast<CallbackContext *>(env.state().callback.context);
}

void setUserCallback(Env &env, TVKcallback callback, void *userData) {
  CallbackSlot &slot = env.state().callback;
  if (!slot.context) {
    slot.context = newContext(env, callback, userData).release();
    slot.hooks = &kHooks;
  } else {
    contextOf(slot.context).function = callback;
    contextOf(slot.context).userData = userData;
  }
}

bool invokeCallback(CallbackContext &context, int where) {
  const bool aborted = context.abortCode != 0;
  if (!context.function || (aborted && where != TVK_CB_MESSAGE)) return !aborted;
  // A solve that is to end tells its solutions and what it logs, nothing else.
  if (where != TVK_CB_MESSAGE && where != TVK_CB_MIPSOL && context.model &&
      isToEnd(context.model->env()))
    return true;
  // A callback from within what a callback has called would see a state of its own.
  if (context.where != CallbackContext::kNowhere) return true;
  if (where == TVK_CB_POLLING && wallSeconds() - context.lastCall < kPollingSeconds) return true;
  if (context.control && where != TVK_CB_MESSAGE)
    context.progressTime = context.control->limits.seconds();
  const ErrorKeeper keeper(*context.env);
  Model *model = context.model;
  // Not before: the call may begin with changes that are still pending.
  if (model) context.objSense = model->data().objSense;
  const double begin = wallSeconds();
  context.where = where;
  if (model) model->insideCallback = true;
  const int answer = context.function(context.model, &context, where, context.userData);
  if (model) model->insideCallback = false;
  context.where = CallbackContext::kNowhere;
  ++context.calls;
  context.lastCall = wallSeconds();
  context.seconds += context.lastCall - begin;
  if (aborted) return false;
  if (answer == 0 || !model) return true;
  context.abortCode = answer;
  model->env().requestTermination();
  return false;
}

void installUserCallback(Env &env, TVKcallback callback, void *userData) {
  setUserCallback(env, callback, userData);
}

}  // namespace tarvik
