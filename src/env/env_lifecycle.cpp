#include "env/env_lifecycle.h"

#include <algorithm>
#include <memory>

#include "env/env_log.h"
#include "env/interrupt.h"
#include "env/param_set.h"
#include "env/process_env.h"

namespace tarvik {

namespace {

void finishMaster(EnvState &state) noexcept {
  if (state.setVeclibThreads) unsetProcessVariable("VECLIB_MAXIMUM_THREADS");
}

// Releases a handle whatever the count says.
void destroyEnv(TVKenv *env) noexcept {
  EnvState &state = env->state();
  MemoryAccount *root = env->isMaster() ? state.root : nullptr;
  if (state.record.hooks) state.record.hooks->release(state.record.context);
  clearUserCallback(*env);
  restoreInterrupt(*env);
  closeLogFile(*env);
  if (root) finishMaster(state);
  forgetAccount(&env->account());
  delete env;
  if (root) MemoryAccount::destroy(root);
}

void discardAllChildren(EnvState &state) noexcept {
  discardChildEnvs(state.concurrentEnvs);
  discardChildEnvs(state.multiObjEnvs);
  discardChildEnvs(state.tuneEnvs);
}

// Subtracts one from the master's count; true when nobody holds it any more.
bool dropReference(EnvState &master) noexcept {
  const std::lock_guard lock(master.mutex);
  return --master.references == 0;
}

// A copy has the flags of the table, and of its source only whether a parameter is locked or was
// set loudly.
void resetCopiedFlags(ParamStore &params, const ParamStore &source) {
  for (int row = 0; row < kNumParams; ++row) {
    params.clearFlags(row, ~0u);
    params.addFlags(row, paramRow(row).flags | (source.flags(row) & (kLocked | kSetLoudly)));
  }
}

void copyState(EnvState &copy, const EnvState &source) {
  copy.master = source.master;
  copy.life = source.life;
  copy.apiType = source.apiType;
  copy.versionCode = source.versionCode;
  copy.root = source.root;
  copy.view.emplace(MemoryAccount::View{}, *source.root);
  copy.threadFunctions = source.threadFunctions;
  copy.log.callback = source.log.callback;
  copy.log.userData = source.log.userData;
  copy.log.workers = source.log.workers;
  for (int k = 0; k < 3; ++k) copy.stopFlags[k] = source.stopFlags[k];
  copy.logicalProcessors = source.logicalProcessors;
  copy.physicalCores = source.physicalCores;
  copy.coreCap = source.coreCap;
  copy.parallelCap = source.parallelCap;
  copy.bindings = source.bindings;
}

}  // namespace

TVKenv *createEnv(const EnvOptions &options) {
  MemoryAccount *root = MemoryAccount::create(options.memory);
  try {
    AccountScope scope(root);
    auto state = std::make_unique<EnvState>();
    state->root = root;
    state->apiType = options.apiType;
    state->versionCode = options.major * 1024 + options.minor * 32 + options.technical;
    state->threadFunctions = options.threads;
    auto *env = new TVKenv(state.get());
    state.release()->master = env;
    return env;
  } catch (...) {
    MemoryAccount::destroy(root);
    throw;
  }
}

TVKenv *copyEnv(Env &source, bool withLog) {
  EnvState &master = source.master().state();
  AccountScope scope(&source.account());
  auto state = std::make_unique<EnvState>();
  copyState(*state, source.state());
  auto *copy = new TVKenv(state.get(), source.params());
  static_cast<void>(state.release());
  {
    const std::lock_guard lock(master.mutex);
    ++master.references;
  }
  try {
    resetCopiedFlags(copy->params(), source.params());
    applyMemoryParams(*copy);
    const CallbackSlot &callback = source.state().callback;
    if (callback.hooks) {
      copy->state().callback.context = callback.hooks->inherit(callback.context, *copy);
      copy->state().callback.hooks = callback.hooks;
    }
    const LogState &log = source.state().log;
    if (withLog && log.file) reopenLogFile(*copy, log.fileName.c_str());
  } catch (...) {
    releaseEnv(copy);
    throw;
  }
  return copy;
}

void releaseEnv(TVKenv *env) noexcept {
  if (!env) return;
  auto *master = static_cast<TVKenv *>(&env->master());
  discardAllChildren(env->state());
  const bool last = dropReference(master->state());
  if (env != master) destroyEnv(env);
  if (last) destroyEnv(master);
}

const char *freeCallersEnv(TVKenv *env) noexcept {
  if (!env->isMaster()) return "Environment copies are freed with the object they belong to";
  {
    EnvState &state = env->state();
    const std::lock_guard lock(state.mutex);
    if (state.callerReleased) return "Environment has already been freed";
    state.callerReleased = true;
  }
  releaseEnv(env);
  return nullptr;
}

void clearUserCallback(Env &env) noexcept {
  CallbackSlot &slot = env.state().callback;
  if (slot.hooks) slot.hooks->release(slot.context);
  slot = {};
}

TVKenv *childEnv(Env &parent, ChildList &list, int index) {
  for (const ChildEnv &child : list)
    if (child.index == index) return child.env;
  list.reserve(list.size() + 1);
  TVKenv *env = copyEnv(parent, true);
  env->params().addFlags(static_cast<int>(Param::LogFile), kLocked);
  list.push_back({index, env});
  return env;
}

int nextFreeIndex(const ChildList &list) {
  int next = 0;
  for (const ChildEnv &child : list) next = std::max(next, child.index + 1);
  return next;
}

void discardChild(ChildList &list, int index) noexcept {
  for (std::size_t k = 0; k < list.size(); ++k) {
    if (list[k].index != index) continue;
    TVKenv *env = list[k].env;
    list.erase(list.begin() + static_cast<std::ptrdiff_t>(k));
    releaseEnv(env);
    return;
  }
}

void discardChildEnvs(ChildList &list) noexcept {
  ChildList children;
  children.swap(list);
  for (const ChildEnv &child : children) releaseEnv(child.env);
}

}  // namespace tarvik
