// Measures a solve, or a call that counts as one; the model keeps its time and work on every exit
// path.
#pragma once

#include "model/model.h"
#include "opt/env_log.h"
#include "opt/options.h"

namespace tarvik {

class SolveClock {
 public:
  explicit SolveClock(Model &model) : model_(model), log_(model.env()) {
    control_.log = &log_;
    control_.limits = solveLimits(model.env());
    control_.displayInterval = model.env().get(Int::DisplayInterval);
  }
  ~SolveClock() {
    model_.solution().runtime = control_.limits.seconds();
    model_.solution().work = control_.work.workUnits();
  }
  SolveClock(const SolveClock &) = delete;
  SolveClock &operator=(const SolveClock &) = delete;

  SolveControl &control() { return control_; }

 private:
  Model &model_;
  EnvLog log_;
  SolveControl control_;
};

}  // namespace tarvik
