// What a kernel may know of the world around it: a deterministic work meter, limits to poll, a
// log to print to and a bridge to user callbacks. One SolveControl lives per running solve;
// kernels hold a reference. Nothing here reads parameters or handles.
#pragma once

#include <atomic>
#include <cstdint>

#include "base/thread.h"

namespace tarvik {

// Deterministic work counter; one work unit is 1e9 counted units. Kernels charge per loop.
class WorkMeter {
 public:
  void charge(double units) { units_ += units; }
  double counted() const { return units_; }
  double workUnits() const { return units_ * 1e-9; }

 private:
  double units_ = 0;
};

enum class StopReason {
  None,
  Interrupted,
  TimeLimit,
  WorkLimit,
  MemoryLimit,
  IterationLimit,
  Callback,  // a user callback asked to abort; its value is in Progress::error()
};

class MemoryAccount;

// Limits of a solve. poll() is cheap enough to be called once every few iterations: the clock
// is read only when enough work has been charged since the last look.
class Limits {
 public:
  double timeLimit = 1e100;       // seconds since the start of the solve
  double workLimit = 1e100;       // work units
  double iterationLimit = 1e100;  // simplex iterations of the whole solve
  // Up to three stop flags; a nonzero one asks for termination. Other threads set them.
  const volatile int *stopFlags[3] = {nullptr, nullptr, nullptr};
  const MemoryAccount *memory = nullptr;

  void start();
  // Seconds since start().
  double seconds() const;
  StopReason poll(const WorkMeter &work, double iterations);
  // As poll(), but always looks at the clock.
  StopReason pollNow(const WorkMeter &work, double iterations);

 private:
  double startSeconds_ = 0;
  double nextClockUnits_ = 0;
};

// Wall-clock seconds with microsecond resolution.
double wallSeconds();

class Log {
 public:
  virtual ~Log() = default;
  virtual void print(const char *format, ...) __attribute__((format(printf, 2, 3))) = 0;
  // False when nothing printed would reach anybody; saves formatting work.
  virtual bool enabled() const { return true; }
};

class SilentLog : public Log {
 public:
  void print(const char *, ...) override {}
  bool enabled() const override { return false; }
};

struct SimplexProgress {
  double iterations = 0;
  double objective = 0;  // in the minimization sense of the kernel
  double primalInfeasibility = 0;
  double dualInfeasibility = 0;
  int perturbed = 0;  // 0 none, 1 small shifts, 2 larger shifts
};

struct PresolveProgress {
  int colsRemoved = 0, rowsRemoved = 0, sensesChanged = 0, boundsChanged = 0, coefsChanged = 0;
};

// Bridge to user callbacks; each returns false to abort the solve.
class Progress {
 public:
  virtual ~Progress() = default;
  virtual bool onSimplex(const SimplexProgress &) { return true; }
  virtual bool onPresolve(const PresolveProgress &) { return true; }
  virtual bool onPolling() { return true; }
};

struct SolveControl {
  ThreadFunctions threads;  // how parallel algorithms make their threads
  WorkMeter work;
  Limits limits;
  Log *log = nullptr;            // never null once a solve runs
  Progress *progress = nullptr;  // may be null
  double displayInterval = 5;    // seconds between periodic log lines
};

}  // namespace tarvik
