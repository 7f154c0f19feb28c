// Birth, start and death of environments. Masters are counted: a master whose caller has let go
// of it lives on until the last copy made from it is given back.
#pragma once

#include "env/env.h"
#include "env/env_state.h"

namespace tarvik {

struct EnvOptions {
  int apiType = -1;
  int major = TVK_VERSION_MAJOR;
  int minor = TVK_VERSION_MINOR;
  int technical = TVK_VERSION_TECHNICAL;
  MemoryFunctions memory;
  ThreadFunctions threads;
};

// A master that is not started; throws std::bad_alloc.
TVKenv *createEnv(const EnvOptions &options);

// Brings a created master to life: settings file, environment variables, the caller's settings.
void startEnv(Env &env);

// The child number `index` of a list, made on first request as a copy of the parent.
TVKenv *childEnv(Env &parent, ChildList &list, int index);
int nextFreeIndex(const ChildList &list);
void discardChild(ChildList &list, int index) noexcept;
void discardChildEnvs(ChildList &list) noexcept;

// Gives the caller's handle on a master back. A copy belongs to its model, and a master is given
// back only once: the result is then the text that says so, else null.
const char *freeCallersEnv(TVKenv *env) noexcept;

// Takes a user callback off an environment.
void clearUserCallback(Env &env) noexcept;

}  // namespace tarvik
