#include "base/solve_control.h"

#include <sys/time.h>

#include "base/memory.h"

namespace tarvik {

namespace {
// Work between two looks at the clock: about a millisecond.
constexpr double kClockUnits = 1e6;
}  // namespace

double wallSeconds() {
  timeval now;
  gettimeofday(&now, nullptr);
  return static_cast<double>(now.tv_sec) + 1e-6 * static_cast<double>(now.tv_usec);
}

void Limits::start() {
  startSeconds_ = wallSeconds();
  nextClockUnits_ = 0;
}

double Limits::seconds() const { return wallSeconds() - startSeconds_; }

StopReason Limits::poll(const WorkMeter &work, double iterations) {
  for (const volatile int *flag : stopFlags)
    if (flag && __atomic_load_n(flag, __ATOMIC_RELAXED) != 0) return StopReason::Interrupted;
  if (iterations >= iterationLimit) return StopReason::IterationLimit;
  if (work.workUnits() >= workLimit) return StopReason::WorkLimit;
  if (work.counted() < nextClockUnits_) return StopReason::None;
  nextClockUnits_ = work.counted() + kClockUnits;
  if (memory && memory->softLimitExceeded()) return StopReason::MemoryLimit;
  if (timeLimit < 1e100 && seconds() >= timeLimit) return StopReason::TimeLimit;
  return StopReason::None;
}

StopReason Limits::pollNow(const WorkMeter &work, double iterations) {
  nextClockUnits_ = 0;
  return poll(work, iterations);
}

}  // namespace tarvik
