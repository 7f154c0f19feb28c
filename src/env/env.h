// The environment: parameter values, error state, log, memory account, termination flag. A
// caller creates master environments; every model works on a private copy that shares with its
// master the reference count, the memory account and the termination flag.
//
// This header is what the rest of the shell uses; life cycle and storage are in env/*.cpp.
#pragma once

#include <cstdarg>
#include <cstdint>

#include "base/error.h"
#include "base/memory.h"
#include "base/solve_control.h"
#include "base/thread.h"
#include "env/param_store.h"
#include "tarvik.h"

namespace tarvik {

inline constexpr std::uint32_t kEnvMarker = 312356226;
inline constexpr std::uint32_t kModelMarker = 589138552;
inline constexpr std::uint32_t kCallbackMarker = 683638213;

struct EnvState;  // everything below the surface, private to src/env

class Env : public AccountAllocated {
 public:
  // Takes the state over; the second form starts from the values of another environment.
  explicit Env(EnvState *state);
  Env(EnvState *state, const ParamStore &params);
  Env(const Env &) = delete;
  Env &operator=(const Env &) = delete;
  ~Env();

  // --- parameters ---
  int get(Int id) const { return params_.getInt(static_cast<int>(id)); }
  double get(Dbl id) const { return params_.getDbl(static_cast<int>(id)); }
  const char *get(Str id) const { return params_.getStr(static_cast<int>(id)); }  // never null
  // Set without a log line, as algorithms do for the duration of a solve.
  void setSilently(Int id, int value);
  void setSilently(Dbl id, double value);
  void setSilently(Str id, const char *value);
  // The store itself: no checks, no log lines.
  ParamStore &params() { return params_; }
  const ParamStore &params() const { return params_; }

  // --- log: lines go to console, file and callbacks as the parameters say ---
  void log(const char *format, ...) __attribute__((format(printf, 2, 3)));
  void vlog(const char *format, va_list args);
  bool logReachesAnybody() const;

  // --- error state ---
  // Keeps a pending message unless overwrite is set; formats into at most 512 bytes.
  void recordError(int code, bool overwrite, const char *format, ...)
      __attribute__((format(printf, 4, 5)));
  void clearErrorAtEntry();
  // Ends an exported call: out-of-memory always gets its text, 0 clears the message, any other
  // code keeps a pending message or gets its default text. Returns code.
  int finishCall(int code);
  const char *errorMessage() const;
  int lastErrorCode() const;
  void holdErrors(bool hold);

  // --- shared with the master ---
  MemoryAccount &account() const;
  Env &master() const;
  bool isMaster() const { return &master() == this; }
  bool started() const;
  int apiType() const;

  // --- termination: a solve polls all three flags ---
  const volatile int *stopFlag(int which) const;
  void requestTermination();
  // Points the second and third flag back at the first and clears all.
  void resetTermination();
  // Lets a group of solves be stopped together: `which` is 1 or 2; the flag outlives the solve.
  void setStopFlag(int which, volatile int *flag);

  // --- machine facts of this environment (environment variables considered) ---
  int logicalProcessors() const;
  int physicalCores() const;
  int effectiveThreads() const;
  const ThreadFunctions &threadFunctions() const;

  EnvState &state() const { return *state_; }
  std::uint32_t marker() const { return marker_; }

 protected:
  std::uint32_t marker_ = kEnvMarker;
  EnvState *state_;
  ParamStore params_;
};

// The check every exported function on an environment begins with: 0, 10002 or 10003.
int checkEnv(const TVKenv *env);

// A copy for a model or a child environment; throws. withLog: opens the same log file too.
TVKenv *copyEnv(Env &source, bool withLog);
// Gives a handle back (master or copy); null is ignored.
void releaseEnv(TVKenv *env) noexcept;

}  // namespace tarvik

struct TVKenv : public tarvik::Env {
  using Env::Env;
};
