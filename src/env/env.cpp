#include "env/env.h"

#include <algorithm>
#include <cstdio>

#include "env/env_state.h"
#include "env/param_set.h"

namespace tarvik {

namespace {
constexpr int kMaxAutomaticThreads = 32;
}

Env::Env(EnvState *state) : state_(state) {}

Env::Env(EnvState *state, const ParamStore &params) : state_(state), params_(params) {}

Env::~Env() {
  // A stale handle must not pass its check while the memory still stands.
  *static_cast<volatile std::uint32_t *>(&marker_) = 0;
  delete state_;
}

void Env::setSilently(Int id, int value) { setIntParam(*this, static_cast<int>(id), value, true); }

void Env::setSilently(Dbl id, double value) {
  setDblParam(*this, static_cast<int>(id), value, true);
}

void Env::setSilently(Str id, const char *value) {
  setStrParam(*this, static_cast<int>(id), value, true);
}

void Env::recordError(int code, bool overwrite, const char *format, ...) {
  if (code == 0) return;
  state_->lastError = code;
  if (state_->message[0] != '\0' && (!overwrite || state_->hold)) return;
  va_list args;
  va_start(args, format);
  std::vsnprintf(state_->message, EnvState::kMessageBytes - 1, format, args);
  va_end(args);
}

void Env::clearErrorAtEntry() {
  if (state_->hold) return;
  state_->message[0] = '\0';
  state_->lastError = 0;
}

int Env::finishCall(int code) {
  if (code == 0) {
    clearErrorAtEntry();
    return 0;
  }
  state_->lastError = code;
  if (code == TVK_ERROR_OUT_OF_MEMORY) {
    std::snprintf(state_->message, EnvState::kMessageBytes, "%s", defaultErrorText(code));
  } else if (state_->message[0] == '\0') {
    if (const char *text = defaultErrorText(code))
      recordError(code, false, "%s", text);
    else
      recordError(code, false, "Error number %d", code);
  }
  return code;
}

const char *Env::errorMessage() const { return state_->message; }
int Env::lastErrorCode() const { return state_->lastError; }
void Env::holdErrors(bool hold) { state_->hold = hold; }

MemoryAccount &Env::account() const { return state_->view ? *state_->view : *state_->root; }
Env &Env::master() const { return *state_->master; }
bool Env::started() const { return state_->life == LifeState::Started; }
int Env::apiType() const { return state_->apiType; }

const volatile int *Env::stopFlag(int which) const { return state_->stopFlags[which]; }

void Env::requestTermination() { __atomic_store_n(state_->stopFlags[0], 1, __ATOMIC_RELAXED); }

void Env::resetTermination() {
  state_->stopFlags[1] = state_->stopFlags[2] = state_->stopFlags[0];
  __atomic_store_n(state_->stopFlags[0], 0, __ATOMIC_RELAXED);
}

void Env::setStopFlag(int which, volatile int *flag) { state_->stopFlags[which] = flag; }

int Env::logicalProcessors() const { return state_->logicalProcessors; }
int Env::physicalCores() const { return state_->physicalCores; }

int Env::effectiveThreads() const {
  int threads = get(Int::Threads);
  if (threads <= 0) {
    const int limit = static_cast<int>(params_.limit(static_cast<int>(Param::Threads)));
    threads = std::min({state_->logicalProcessors, state_->coreCap, limit, kMaxAutomaticThreads});
  }
  return std::max(1, std::min(threads, state_->parallelCap));
}

const ThreadFunctions &Env::threadFunctions() const { return state_->threadFunctions; }

int checkEnv(const TVKenv *env) {
  if (!env) return TVK_ERROR_NULL_ARGUMENT;
  if (env->marker() != kEnvMarker) return TVK_ERROR_INVALID_ARGUMENT;
  if (env->master().marker() != kEnvMarker) {
    if (env->get(Int::OutputFlag) > 0)
      std::puts("Warning: invalid Tarvik environment. Was it freed too early?");
    return TVK_ERROR_INVALID_ARGUMENT;
  }
  return 0;
}

}  // namespace tarvik
