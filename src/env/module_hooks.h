// What the environment asks of modules above it. They define these functions; a module that does
// not exist yet has a default here, which answers that the request cannot be met.
#pragma once

#include "env/env.h"

namespace tarvik {

// Begins to record the calls on an environment whose start has come to its end.
void beginRecording(Env &env);

// Installs a user callback on an environment that has none.
void installUserCallback(Env &env, TVKcallback callback, void *userData);

}  // namespace tarvik
