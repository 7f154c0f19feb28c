// The log of a running solve: lines of the kernels go to the environment's destinations.
#pragma once

#include "base/solve_control.h"
#include "env/env.h"

namespace tarvik {

class EnvLog : public Log {
 public:
  explicit EnvLog(Env &env) : env_(env) {}
  void print(const char *format, ...) override __attribute__((format(printf, 2, 3)));
  bool enabled() const override { return env_.logReachesAnybody(); }

 private:
  Env &env_;
};

}  // namespace tarvik
