// The log of an environment: where a line goes, the file it is written to, and the mark that
// worker threads of parallel algorithms carry.
#pragma once

#include "env/env.h"

namespace tarvik {

// Closes the current log file and, unless name is empty, opens another in append mode; an
// environment that is not started leaves that to its start. Throws Error 10013 when the file
// cannot be opened; the previous one then stays open.
void switchLogFile(Env &env, const char *name, bool withHeader);
void closeLogFile(Env &env) noexcept;
// Opens a log file that another environment writes to, without a header; a file that cannot be
// opened leaves the environment without one.
void reopenLogFile(Env &env, const char *name);

// Gives an arm of a concurrent solve a log of its own, named after base and number.
void openSeparateLog(Env &env, const char *base, int number, const char *tag);

// Keeps destinations (see LogDestination) silent for the life of the scope.
class LogMuteScope {
 public:
  LogMuteScope(Env &env, unsigned destinations);
  ~LogMuteScope();
  LogMuteScope(const LogMuteScope &) = delete;
  LogMuteScope &operator=(const LogMuteScope &) = delete;

 private:
  Env &env_;
  unsigned previous_;
};

// Marks the calling thread as a worker for the life of the scope; see WorkerLog.
class WorkerLogScope {
 public:
  WorkerLogScope();
  ~WorkerLogScope();
  WorkerLogScope(const WorkerLogScope &) = delete;
  WorkerLogScope &operator=(const WorkerLogScope &) = delete;

 private:
  bool previous_;
};

}  // namespace tarvik
