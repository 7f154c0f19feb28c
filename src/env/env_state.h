// What lies below the surface of an environment. Private to the environment layer and to the
// modules that hang something on it (user callbacks, child environments of models, recording).
#pragma once

#include <cstdio>
#include <mutex>
#include <optional>

#include "base/thread.h"
#include "base/types.h"
#include "env/env.h"

namespace tarvik {

enum class LifeState { Created, Starting, Started };

// What worker threads of parallel algorithms may print through this environment.
enum class WorkerLog { Everything, FileOnly, Nothing };

enum LogDestination : unsigned {
  kToConsole = 1,
  kToFile = 2,
  kToUserCallback = 4,
  kToLogCallback = 8,
};

struct LogState {
  static constexpr int kBufferBytes = 1024;
  static constexpr int kPieceBytes = 511;

  FILE *file = nullptr;
  AccountString fileName;
  unsigned muted = 0;     // destinations that get nothing for the time being
  bool separate = false;  // writes a log of its own, as the arms of a concurrent solve may
  WorkerLog workers = WorkerLog::Everything;
  TVKlogcallback callback = nullptr;
  void *userData = nullptr;
  // The line that is not yet complete and the destinations it was formatted for.
  char buffer[kBufferBytes];
  int length = 0;
  unsigned destinations = 0;
};

// How the callback module takes part in an environment's life. All functions are given.
struct CallbackHooks {
  // Delivers a completed log line, with its newline, as a message callback.
  void (*message)(void *context, Env &env, const char *text);
  // Before a parameter changes: throws when a running callback forbids it; returns a second
  // environment to change as well, or null.
  Env *(*guard)(void *context, Env &env, bool callbackSettable);
  // The context of a copy made from an environment with this context; may throw.
  void *(*inherit)(void *context, Env &copy);
  void (*release)(void *context);
};

struct CallbackSlot {
  const CallbackHooks *hooks = nullptr;
  void *context = nullptr;
};

// How the recording of calls takes part; the same pattern.
struct RecordHooks {
  void (*paramChanged)(void *context, Env &env, int row);
  void (*release)(void *context);
};

struct RecordSlot {
  const RecordHooks *hooks = nullptr;
  void *context = nullptr;
  bool requested = false;  // Record was accepted; the start of the environment begins to record
};

// Child environments by number; few, but with any numbers.
struct ChildEnv {
  int index;
  TVKenv *env;
};
using ChildList = Vec<ChildEnv>;

struct EnvState : public AccountAllocated {
  static constexpr int kMessageBytes = 513;

  // --- life ---
  Env *master = nullptr;
  LifeState life = LifeState::Created;
  int apiType = -1;
  int versionCode = 0;
  bool warnedExistingModels = false;

  // --- a master's own ---
  std::mutex mutex;
  int references = 1;           // the master and its copies; guarded by the mutex
  bool callerReleased = false;  // the caller has freed the master; guarded by the mutex
  bool setVeclibThreads = false;
  MemoryAccount *root = nullptr;
  ThreadFunctions threadFunctions;

  // --- a copy's own ---
  std::optional<MemoryAccount> view;

  // --- error state ---
  char message[kMessageBytes] = "";
  int lastError = 0;
  bool hold = false;

  LogState log;
  CallbackSlot callback;
  RecordSlot record;

  // --- termination ---
  volatile int ownStopFlag = 0;
  volatile int *stopFlags[3] = {&ownStopFlag, &ownStopFlag, &ownStopFlag};

  // --- child environments ---
  ChildList concurrentEnvs, multiObjEnvs, tuneEnvs;

  // --- processors ---
  int logicalProcessors = 1;
  int physicalCores = 1;
  int coreCap = kMaxInt;
  int parallelCap = kMaxInt;
  Vec<int> bindings;  // -1: the logical processor is not bound
};

}  // namespace tarvik
